#include "OssEvaluation/Files/OssEvImageFiles.h"

#include "OssEvaluation/Files/OssEvImageForm.h"
#include "OssEvaluation/Files/OssEvImageRows.h"
#include "OssEvaluation/Files/OssEvUdim.h"
#include "OssEvaluation/Files/SvgInput.h"

#include <OpenImageIO/imageio.h>
#include <sys/stat.h>

#include <algorithm>
#include <exception>
#include <list>
#include <mutex>
#include <new>

namespace {

// Files that stay open between two rows of tiles.
constexpr std::size_t MaximumOpen = 8;

using Input = std::unique_ptr<OIIO::ImageInput>;

OssEvResult refused(const std::string &path, const std::string &reason)
{
    return OssEvResult::failure("Cannot read \"" + path + "\": " + reason);
}

std::string sizeText(const OIIO::ImageSpec &spec)
{
    return std::to_string(spec.width) + " x " + std::to_string(spec.height);
}

OssEvResult checkSpec(const std::string &path, const OIIO::ImageSpec &spec)
{
    if (spec.deep)
        return refused(path, "deep images hold no plain colours");
    if (spec.width <= 0 || spec.height <= 0 || spec.depth > 1 || spec.nchannels <= 0)
        return refused(path, "it holds no picture");
    if (spec.width > OssEvImageFiles::MaximumSize || spec.height > OssEvImageFiles::MaximumSize
        || (long long)(spec.width) * spec.height > OssEvImageFiles::MaximumTexels)
        return refused(path, "it is too large (" + sizeText(spec) + ")");
    constexpr int MaximumChannels = 64;
    if (spec.nchannels > MaximumChannels)
        return refused(path, "it has " + std::to_string(spec.nchannels) + " channels");
    return {};
}

OssEvResult openFile(const std::string &path, Input *input)
{
    struct stat status = {};
    if (::stat(path.c_str(), &status) != 0)
        return refused(path, "there is no such file");
    if (!S_ISREG(status.st_mode))
        return refused(path, "it is not a file");
    OssEvSvgInput::makeKnown();
    OIIO::ImageSpec wishes;
    // Premultiplied here, after the colours have become linear.
    wishes["oiio:UnassociatedAlpha"] = 1;
    *input = OIIO::ImageInput::open(path, &wishes);
    if (*input == nullptr) {
        const std::string reason = OIIO::geterror();
        return refused(path, reason.empty() ? "its format is not known" : reason);
    }
    return checkSpec(path, (*input)->spec());
}

bool isInteger(const OIIO::ImageSpec &spec)
{
    return !spec.format.is_floating_point();
}

/// As the writer of EXR files puts it.
std::string saidSpace(const OIIO::ImageSpec &spec)
{
    return spec.get_string_attribute(OssEvImageForm::SpaceAttribute);
}

// Whether rows cost less together: formats that are packed from the top downwards, unless the image
// is so large that its tiles would push everything else out of the cache.
bool isReadWhole(const OIIO::ImageInput &input)
{
    constexpr long long MaximumBytes = 256LL << 20;
    constexpr long long TexelBytes = 8;
    const OIIO::ImageSpec &spec = input.spec();
    const bool rowsAreApart = std::string(input.format_name()) == "openexr";
    return !rowsAreApart && TexelBytes * spec.width * spec.height <= MaximumBytes;
}

} // namespace

struct OssEvImageFiles::Private
{
    using Meaning = OssEvImageRows::Meaning;

    struct Open
    {
        std::string path;
        Input input;
    };

    OssEvFileColors colors;
    std::shared_ptr<OssEvFileContents> contents; ///< may be null
    std::mutex mutex;
    /// Latest used last.
    std::list<Open> idle;

    Input take(const std::string &path)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        const auto found = std::find_if(idle.begin(), idle.end(),
                                        [&path](const Open &open) { return open.path == path; });
        if (found == idle.end())
            return nullptr;
        Input input = std::move(found->input);
        idle.erase(found);
        return input;
    }

    void keep(const std::string &path, Input input)
    {
        Input closed;
        const std::lock_guard<std::mutex> lock(mutex);
        idle.push_back({path, std::move(input)});
        if (idle.size() > MaximumOpen) {
            closed = std::move(idle.front().input);
            idle.pop_front();
        }
    }

    /// Data, or the colour space of the file.
    std::string spaceOf(const Image &image, const std::string &path, Identity identity,
                        const OIIO::ImageSpec &spec) const
    {
        const OssEvFileColors::File file{path, spec.nchannels, isInteger(spec), saidSpace(spec)};
        if (image.colorSpace != ColorSpace::Data && !image.space.empty())
            return image.space;
        switch (image.colorSpace) {
        case ColorSpace::Data:
            return OssEvFileColors::Data;
        case ColorSpace::Color:
            return colors.colorSpaceOf(file);
        case ColorSpace::Automatic:
            break;
        }
        if (identity == Identity::Content || isInteger(spec))
            return colors.spaceOf(file);
        const bool isColor = file.channels > 1 && !colors.spaces()->isData(file.space);
        const std::string light = file.space.empty() ? OssEvColorSpaces::Light : file.space;
        return isColor ? light : std::string(OssEvFileColors::Data);
    }

    /// How the numbers of a file become colours.
    OssEvResult findMeaning(const Image &image, const std::string &path, Identity identity,
                            const OIIO::ImageSpec &spec, Meaning *meaning) const
    {
        const std::string space = spaceOf(image, path, identity, spec);
        const bool isColor = space != OssEvFileColors::Data && !colors.spaces()->isData(space);
        meaning->spaces = colors.spaces();
        // A grey image that is meant as a colour is one, but floats are numbers.
        const bool isGrey = spec.nchannels == 1 && !(isColor && isInteger(spec));
        meaning->channels = isGrey ? 1 : 4;
        if (isColor && !isGrey && !colors.spaces()->isWorking(space)) {
            OssEvResult result = colors.spaces()->tellConversion(space, &meaning->conversion);
            if (!result)
                return refused(path, result.error());
            meaning->space = space;
        }
        const bool separate = spec.get_int_attribute("oiio:UnassociatedAlpha", 0) != 0;
        meaning->premultiply = isColor && separate && spec.alpha_channel >= 0;
        meaning->associated = !meaning->space.empty() && !separate && spec.alpha_channel >= 0;
        const auto type = spec.format.basetype;
        // Halves are enough for what is counted as the screen counts.
        const bool isScreen = isColor && space == OssEvColorSpaces::Screen;
        const bool precise = type == OIIO::TypeDesc::FLOAT || type == OIIO::TypeDesc::DOUBLE
                             || (!isScreen && spec.format.basesize() > 1 && isInteger(spec));
        meaning->format = precise ? OssEvTile::Format::Float : OssEvTile::Format::Half;
        return {};
    }

    /// What keeps the pixels of one file apart from all others.
    OssEvKey contentOf(const std::string &path, Identity identity, const Meaning &meaning) const
    {
        OssEvKeyBuilder key;
        const OssEvKey content = contents != nullptr && identity == Identity::Content
                                     ? contents->of(path)
                                     : OssEvKey();
        if (content.isNull())
            key.add(looksOf(path));
        else
            key.add(content);
        return key.add(meaning.conversion)
            .add(int(meaning.premultiply))
            .add(meaning.channels)
            .add(int(meaning.format))
            .key();
    }

private:
    static std::string looksOf(const std::string &path)
    {
        struct stat status = {};
        ::stat(path.c_str(), &status);
        return path + '\n' + std::to_string(status.st_mtim.tv_sec) + '.'
               + std::to_string(status.st_mtim.tv_nsec) + '\n' + std::to_string(status.st_size);
    }
};

OssEvImageFiles::OssEvImageFiles(OssEvFileColors colors,
                                 std::shared_ptr<OssEvFileContents> contents)
    : d(std::make_unique<Private>())
{
    d->contents = std::move(contents);
    d->colors = std::move(colors);
}

OssEvImageFiles::~OssEvImageFiles() = default;

OssEvResult OssEvImageFiles::readHeader(const std::string &path, OssEvImageHeader *header)
{
    try {
        Input input;
        OssEvResult result = openFile(path, &input);
        if (!result)
            return result;
        const OIIO::ImageSpec &spec = input->spec();
        *header = {spec.width,
                   spec.height,
                   spec.nchannels,
                   isInteger(spec),
                   spec.format == OIIO::TypeDesc::FLOAT,
                   input->format_name(),
                   saidSpace(spec)};
        return {};
    } catch (const std::exception &fault) {
        return refused(path, fault.what());
    }
}

OssEvResult OssEvImageFiles::describe(const Image &image, OssEvImageInfo *info)
{
    return describeFile(image, Identity::Content, info);
}

OssEvResult OssEvImageFiles::describeFile(const Image &image, Identity identity,
                                          OssEvImageInfo *info)
{
    const std::string pattern = OssEvUdim::pattern(image.name);
    const std::string path = OssEvUdim::file(pattern, image.patch);
    const std::string looks = OssEvFileContents::quickLook(path);
    if (looks.empty() && OssEvUdim::isPattern(pattern) && !OssEvUdim::patches(pattern).empty()) {
        *info = {};
        return {};
    }
    try {
        Input input = looks.empty() ? nullptr : d->take(looks);
        if (input == nullptr) {
            OssEvResult result = openFile(path, &input);
            if (!result)
                return result;
        }
        const OIIO::ImageSpec &spec = input->spec();
        OssEvImageRows::Meaning meaning;
        OssEvResult result = d->findMeaning(image, path, identity, spec, &meaning);
        if (!result)
            return result;
        info->width = spec.width;
        info->height = spec.height;
        info->channels = meaning.channels;
        info->format = meaning.format;
        info->isSequential = isReadWhole(*input);
        info->content = d->contentOf(path, identity, meaning);
        d->keep(looks, std::move(input));
        return {};
    } catch (const std::exception &fault) {
        return refused(path, fault.what());
    }
}

OssEvResult OssEvImageFiles::read(const Image &image, int reduction, int tileRow,
                                  const OssEvCancel &cancel, const Deliver &deliver)
{
    return readFile(image, Identity::Content, reduction, tileRow, cancel, deliver);
}

OssEvResult OssEvImageFiles::readFile(const Image &image, Identity identity, int reduction,
                                      int tileRow, const OssEvCancel &cancel,
                                      const Deliver &deliver)
{
    const std::string path = OssEvUdim::file(OssEvUdim::pattern(image.name), image.patch);
    const std::string looks = OssEvFileContents::quickLook(path);
    if (looks.empty())
        return refused(path, "there is no such file");
    try {
        Input input = d->take(looks);
        if (input == nullptr) {
            OssEvResult result = openFile(path, &input);
            if (!result)
                return result;
        }
        OssEvImageRows::Meaning meaning;
        const OssEvResult found = d->findMeaning(image, path, identity, input->spec(), &meaning);
        if (!found)
            return found;
        if (!image.content.isNull() && d->contentOf(path, identity, meaning) != image.content)
            return refused(path, "it is another one by now");
        OssEvImageRows rows(input.get(), meaning);
        const bool sequential = isReadWhole(*input);
        int height = input->spec().height;
        for (int i = 0; i < reduction; ++i)
            height = (height + 1) / 2;
        const int first = sequential ? 0 : tileRow;
        const int last = sequential ? OssEvTilesAcross(height) - 1 : tileRow;
        for (int row = first; row <= last && !cancel.isCancelled(); ++row) {
            const OssEvResult result = rows.readTiles(reduction, row, deliver);
            if (!result)
                return refused(path, result.error());
        }
        const bool isTouched = OssEvFileContents::quickLook(path) != looks;
        if (isTouched && d->contentOf(path, identity, meaning) != image.content)
            return refused(path, "it was written to while it was read");
        d->keep(looks, std::move(input));
        return {};
    } catch (const std::bad_alloc &) {
        return refused(path, "there is not enough memory");
    } catch (const std::exception &fault) {
        return refused(path, fault.what());
    }
}
