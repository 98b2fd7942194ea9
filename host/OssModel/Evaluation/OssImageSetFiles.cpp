#include "OssModel/Evaluation/OssImageSetFiles.h"

#include "OssCore/Values/OssColor.h"
#include "OssEvaluation/Paint/OssEvPatchImage.h"
#include "OssModel/Evaluation/OssPatchList.h"
#include "OssModel/Evaluation/PaintedImages.h"
#include "OssModel/Graph/OssShaderNetworkUtils.h"
#include "OssModel/Images/OssPixelStore.h"
#include "OssModel/Nodes/OssSnBakePointNode.h"
#include "OssModel/Objects/OssImageSet.h"

#include <array>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace {

/// Starts the name of a set. Lines follow, one for each patch: number, blank, path.
const std::string SetMark = "image set\n";
/// The line that says that the pixels are no colours.
const char *const DataMark = "data";
/// Starts the line that tells the colour of patches without a file.
const char *const FillMark = "fill ";
/// Starts the line that names paint that is in no file yet.
const char *const PaintMark = "paint ";

/// The rest of the line that begins so; empty where there is none.
std::string lineOf(const std::string &name, const char *mark)
{
    if (name.compare(0, SetMark.size(), SetMark) != 0)
        return {};
    const std::size_t begin = name.rfind(std::string("\n") + mark);
    if (begin == std::string::npos)
        return {};
    const std::size_t value = begin + 1 + std::strlen(mark);
    return name.substr(value, name.find('\n', value) - value);
}

} // namespace

QString OssImageSetFiles::nameOf(const OssSnBaseNode *node)
{
    const OssImageSet *set = OssShaderNetworkUtils::imageSetOf(node);
    if (!set || (set->pixels().isEmpty() && !set->livePaint()))
        return {};
    const auto *bakePoint = qobject_cast<const OssSnBakePointNode *>(node);
    const bool isLimited = bakePoint && bakePoint->limitBake();
    const QList<int> limit = isLimited ? OssPatchList::fromText(bakePoint->limitBakeRange())
                                       : QList<int>();
    const QString folder = OssPixelStore::projectFolder();
    QString name = QString::fromStdString(SetMark);
    const QMap<int, QString> pixels = set->pixels();
    for (auto at = pixels.cbegin(); at != pixels.cend(); ++at) {
        const QString path = OssPixelStore::find(at.value(), folder);
        if (!path.isEmpty() && (!isLimited || limit.contains(at.key())))
            name += QStringLiteral("%1 %2\n").arg(at.key()).arg(path);
    }
    if (set->isScalar())
        name += QString::fromLatin1(DataMark) + QLatin1Char('\n');
    const OssColor fill = isLimited ? bakePoint->limitBakeBackground() : set->fillColor();
    if (fill.alpha() > 0.0)
        name += QString::fromLatin1(FillMark) + fill.toString() + QLatin1Char('\n');
    if (set->livePaint() && !isLimited)
        name += QString::fromLatin1(PaintMark) + QString::number(set->livePaint()->id())
                + QLatin1Char('\n');
    return name;
}

std::string OssImageSetFiles::fillOf(const Image &image)
{
    return lineOf(image.name, FillMark);
}

OssEvResult OssImageSetFiles::findPaint(const Image &image, OssLivePaint::Pointer *live)
{
    const std::string id = lineOf(image.name, PaintMark);
    if (id.empty())
        return {};
    *live = OssLivePaint::find(std::strtoull(id.c_str(), nullptr, 10));
    if (!*live)
        return OssEvResult::failure("Cannot read paint: it is another one by now");
    if (!(*live)->has(image.patch))
        live->reset();
    return {};
}

bool OssImageSetFiles::toFile(const Image &image, Image *file, Identity *identity)
{
    *file = image;
    *identity = Identity::Content;
    if (image.name.compare(0, SetMark.size(), SetMark) != 0)
        return true;
    *identity = Identity::Looks;
    if (image.name.find(std::string("\n") + DataMark + '\n') != std::string::npos)
        file->colorSpace = ColorSpace::Data;
    for (std::size_t begin = SetMark.size(); begin < image.name.size();) {
        const std::size_t end = std::min(image.name.find('\n', begin), image.name.size());
        const std::string line = image.name.substr(begin, end - begin);
        const std::size_t blank = line.find(' ');
        if (blank != std::string::npos && std::atoi(line.c_str()) == image.patch) {
            file->name = line.substr(blank + 1);
            return true;
        }
        begin = end + 1;
    }
    return false;
}

OssEvResult OssImageSetFiles::describeBeneath(const Image &image, OssEvImageInfo *info)
{
    Image file;
    Identity identity = Identity::Content;
    *info = {};
    return toFile(image, &file, &identity) ? describeFile(file, identity, info) : OssEvResult();
}

OssEvResult OssImageSetFiles::describe(const Image &image, OssEvImageInfo *info)
{
    OssLivePaint::Pointer live;
    OssEvResult result = findPaint(image, &live);
    if (!result)
        return result;
    Image file;
    Identity identity = Identity::Content;
    if (live || toFile(image, &file, &identity)) {
        result = describeBeneath(image, info);
        if (live && result)
            *info = PaintedImages::describe(*live, image.patch, *info);
        return result;
    }
    *info = {};
    const std::string fill = fillOf(image);
    if (!fill.empty()) {
        info->width = 1;
        info->height = 1;
        OssEvKeyBuilder key;
        info->content = key.add(std::string_view(fill)).key();
    }
    return {};
}

OssEvResult OssImageSetFiles::read(const Image &image, int reduction, int tileRow,
                                   const OssEvCancel &cancel, const Deliver &deliver)
{
    OssLivePaint::Pointer live;
    const OssEvResult found = findPaint(image, &live);
    if (!found)
        return found;
    if (live)
        return readPainted(*live, image, reduction, tileRow, cancel, deliver);
    Image file;
    Identity identity = Identity::Content;
    if (toFile(image, &file, &identity))
        return readFile(file, identity, reduction, tileRow, cancel, deliver);
    const std::string fill = fillOf(image);
    if (!fill.empty()) {
        const OssColor color = OssColor::fromString(QString::fromStdString(fill));
        const auto alpha = float(color.alpha());
        deliver(0, 0,
                std::make_shared<OssEvTile>(
                    4, OssEvTile::Format::Half,
                    std::array<float, 4>{float(color.red()) * alpha, float(color.green()) * alpha,
                                         float(color.blue()) * alpha, alpha}));
    }
    return {};
}

OssEvResult OssImageSetFiles::readPainted(const OssLivePaint &live, const Image &image,
                                          int reduction, int tileRow, const OssEvCancel &cancel,
                                          const Deliver &deliver)
{
    const int across = PaintedImages::across(live, reduction);
    Image file;
    Identity identity = Identity::Content;
    OssEvImageInfo beneath;
    const OssEvResult described = describeBeneath(image, &beneath);
    if (!described)
        return described;
    if (beneath.width == live.paint().resolution() && beneath.height == beneath.width) {
        toFile(image, &file, &identity);
        file.content = beneath.content;
        return readFile(file, identity, reduction, tileRow, cancel,
                        [&](int x, int y, const OssEvTilePointer &tile) {
                            deliver(x, y,
                                    PaintedImages::tile(live, image.patch, reduction, x, y, tile));
                        });
    }
    // Enlarged or reduced to the paint's size.
    OssEvPatchImage below(
        across, toFile(image, &file, &identity) && file.colorSpace == ColorSpace::Data, m_spaces);
    OssEvResult result = beneath.width > 0 ? below.open(file.name) : OssEvResult();
    if (result)
        result = below.need(tileRow);
    for (int column = 0; result && column < OssEvTilesAcross(across); ++column) {
        if (cancel.isCancelled())
            break;
        OssEvTilePointer under;
        if (!below.isEmpty())
            under = below.tile(column, tileRow);
        deliver(column, tileRow,
                PaintedImages::tile(live, image.patch, reduction, column, tileRow, under));
    }
    return result;
}
