#include "OssEvaluation/Files/OssEvColorSpaces.h"

#include <OpenColorIO/OpenColorIO.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <map>
#include <mutex>
#include <set>
#include <sstream>

namespace Ocio = OCIO_NAMESPACE;

namespace {

constexpr const char *BuiltIn = R"(ocio_profile_version: 2
environment: {}
search_path: ""
strictparsing: true
luma: [0.2126, 0.7152, 0.0722]
roles:
  aces_interchange: ACES2065-1
  color_picking: sRGB
  data: Raw
  default: Raw
  scene_linear: Linear
  texture_paint: sRGB
file_rules:
  - !<Rule> {name: Default, colorspace: default}
displays:
  sRGB:
    - !<View> {name: Standard, colorspace: sRGB}
    - !<View> {name: Raw, colorspace: Raw}
active_displays: []
active_views: []
colorspaces:
  - !<ColorSpace>
    name: Linear
    description: Scene-linear with the primaries of BT.709
    isdata: false
  - !<ColorSpace>
    name: sRGB
    description: What screens and most image files hold
    isdata: false
    to_scene_reference: !<ExponentWithLinearTransform> {gamma: [2.4, 2.4, 2.4, 1], offset: [0.055, 0.055, 0.055, 0]}
  - !<ColorSpace>
    name: Gamma 2.2
    isdata: false
    to_scene_reference: !<ExponentTransform> {value: [2.2, 2.2, 2.2, 1]}
  - !<ColorSpace>
    name: ACEScg
    description: Scene-linear with the primaries AP1, for film
    isdata: false
    to_scene_reference: !<GroupTransform>
      children:
        - !<BuiltinTransform> {style: ACEScg_to_ACES2065-1}
        - !<BuiltinTransform> {style: UTILITY - ACES-AP0_to_CIE-XYZ-D65_BFD}
        - !<MatrixTransform> {matrix: [3.2409699419045, -1.5373831775701, -0.49861076029300, 0, -0.96924363628087, 1.8759675015077, 0.041555057407176, 0, 0.055630079696994, -0.20397695888898, 1.0569715142429, 0, 0, 0, 0, 1]}
  - !<ColorSpace>
    name: ACES2065-1
    description: Scene-linear with the primaries AP0, for exchange
    isdata: false
    to_scene_reference: !<GroupTransform>
      children:
        - !<BuiltinTransform> {style: UTILITY - ACES-AP0_to_CIE-XYZ-D65_BFD}
        - !<MatrixTransform> {matrix: [3.2409699419045, -1.5373831775701, -0.49861076029300, 0, -0.96924363628087, 1.8759675015077, 0.041555057407176, 0, 0.055630079696994, -0.20397695888898, 1.0569715142429, 0, 0, 0, 0, 1]}
  - !<ColorSpace>
    name: Raw
    description: Numbers that are no colours
    isdata: true
)";

using Processor = Ocio::ConstCPUProcessorRcPtr;

/// Red, green and blue.
constexpr std::array<float, 12> Primaries{1, 0, 0, 1, 0, 1, 0, 1, 0, 0, 1, 1};

struct FilmWeights
{
    const char *space;
    OssEvWorkingSpace::Weights weights;
};

/// Luminance in spaces whose white is another than that of BT.709, from which it cannot be reckoned
/// (Academy S-2014-004, SMPTE ST 2065-1).
constexpr std::array<FilmWeights, 2> AllFilmWeights{
    {{"ACEScg", {0.2722287168F, 0.6740817658F, 0.0536895174F}},
     {"ACES2065-1", {0.3439664498F, 0.7281660966F, -0.0721325464F}}}};

/// What configurations call the built-in spaces, the likeliest first.
struct UsualNames
{
    const char *own;
    std::vector<const char *> others;
};

const std::vector<UsualNames> &usualNames()
{
    static const std::vector<UsualNames> all{
        {OssEvColorSpaces::Screen,
         {"sRGB - Texture", "srgb_texture", "srgb_tx", "Utility - sRGB - Texture",
          "sRGB Encoded Rec.709 (sRGB)"}},
        {OssEvColorSpaces::Light,
         {"Linear Rec.709 (sRGB)", "lin_rec709", "lin_srgb", "Utility - Linear - sRGB",
          "Utility - Linear - Rec.709"}},
        {"ACEScg", {"ACES - ACEScg", "acescg"}},
        {"ACES2065-1", {"ACES - ACES2065-1", "aces2065_1"}},
        {OssEvColorSpaces::Data, {Ocio::ROLE_DATA}}};
    return all;
}

std::string bytesOf(const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
}

/// The bytes of all files that a transform reads.
void addFiles(const Ocio::ConstConfigRcPtr &config, const Ocio::ConstTransformRcPtr &transform,
              OssEvKeyBuilder *key)
{
    if (const auto group = OCIO_DYNAMIC_POINTER_CAST<const Ocio::GroupTransform>(transform)) {
        for (int i = 0; i < group->getNumTransforms(); ++i)
            addFiles(config, group->getTransform(i), key);
    }
    const auto file = OCIO_DYNAMIC_POINTER_CAST<const Ocio::FileTransform>(transform);
    if (file == nullptr)
        return;
    try {
        const auto context = config->getCurrentContext();
        key->add(bytesOf(context->resolveFileLocation(file->getSrc())));
    } catch (const Ocio::Exception &) {
        key->add("missing");
    }
}

} // namespace

struct OssEvColorSpaces::Private
{
    Ocio::ConstConfigRcPtr config;
    bool isBuiltIn = false;
    std::string working;
    OssEvKey key;
    mutable std::mutex mutex;
    mutable std::map<std::string, Processor> processors;

    static std::unique_ptr<Private> make(const Ocio::ConstConfigRcPtr &config, bool isBuiltIn,
                                         const std::string &working)
    {
        auto inside = std::make_unique<Private>();
        inside->config = config;
        inside->isBuiltIn = isBuiltIn;
        inside->working = working;
        if (!isBuiltIn || working != Light)
            inside->key = inside->makeKey();
        return inside;
    }

    /// Empty where it is none of the configuration's.
    std::string ownName(const std::string &space) const
    {
        const auto named = [this](const char *name) -> std::string {
            const auto found = config->getColorSpace(name);
            return found == nullptr ? std::string() : std::string(found->getName());
        };
        std::string own = named(space.c_str());
        for (const UsualNames &names : usualNames()) {
            for (std::size_t i = 0; own.empty() && names.own == space && i < names.others.size();
                 ++i)
                own = named(names.others[i]);
        }
        return own;
    }

    /// May throw.
    Ocio::ConstProcessorRcPtr between(const std::string &from, const std::string &to) const
    {
        const std::string source = ownName(from);
        const std::string target = ownName(to);
        if (!source.empty() && !target.empty())
            return config->getProcessor(source.c_str(), target.c_str());
        const std::string &foreign = source.empty() ? from : to;
        const auto &known = builtIn()->d->config;
        if (isBuiltIn || known->getColorSpace(foreign.c_str()) == nullptr
            || config->getColorSpace(Ocio::ROLE_INTERCHANGE_SCENE) == nullptr)
            throw Ocio::Exception(("The color configuration knows no \"" + foreign + "\"").c_str());
        return source.empty() ? Ocio::Config::GetProcessorFromConfigs(known, from.c_str(), config,
                                                                      target.c_str())
                              : Ocio::Config::GetProcessorFromConfigs(config, source.c_str(), known,
                                                                      to.c_str());
    }

    /// Made once for each name; `make` may throw.
    template <class Make>
    Processor processor(const std::string &name, const Make &make) const
    {
        {
            const std::lock_guard<std::mutex> lock(mutex);
            const auto found = processors.find(name);
            if (found != processors.end())
                return found->second;
        }
        const Processor made = make()->getDefaultCPUProcessor();
        const std::lock_guard<std::mutex> lock(mutex);
        return processors.emplace(name, made).first->second;
    }

    Processor into(const std::string &space) const
    {
        return processor("from " + space, [&] { return between(space, working); });
    }

    Processor outOf(const std::string &space) const
    {
        return processor("to " + space, [&] { return between(working, space); });
    }

    template <class Find>
    static OssEvResult apply(const Find &find, float *rgba, std::size_t count)
    {
        try {
            Ocio::PackedImageDesc image(rgba, long(count), 1, 4);
            find()->apply(image);
            return {};
        } catch (const Ocio::Exception &fault) {
            return OssEvResult::failure(fault.what());
        }
    }

    std::string pickedSpace() const
    {
        const auto role = config->getColorSpace(Ocio::ROLE_COLOR_PICKING);
        return role == nullptr ? std::string(Screen) : std::string(role->getName());
    }

    /// What no colour would be left of: twice the light is twice the number, and black is 0.
    bool isLinear(const std::string &space) const
    {
        std::array<float, 8> texels{0.125F, 0.25F, 0.5F, 1.0F, 0.25F, 0.5F, 1.0F, 1.0F};
        if (!apply([&] { return outOf(space); }, texels.data(), 2))
            return false;
        bool linear = true;
        for (std::size_t i = 0; i < 3; ++i)
            linear = linear
                     && std::abs(texels[i + 4] - 2.0F * texels[i])
                            <= 1e-3F * (std::abs(texels[i]) + 0.1F);
        return linear;
    }

private:
    OssEvKey makeKey() const
    {
        OssEvKeyBuilder builder;
        builder.add("with luminance of its own").add(working);
        std::ostringstream text;
        config->serialize(text);
        builder.add(text.str());
        for (int i = 0; i < config->getNumColorSpaces(); ++i) {
            const auto space = config->getColorSpace(config->getColorSpaceNameByIndex(i));
            addFiles(config, space->getTransform(Ocio::COLORSPACE_DIR_TO_REFERENCE), &builder);
            addFiles(config, space->getTransform(Ocio::COLORSPACE_DIR_FROM_REFERENCE), &builder);
        }
        return builder.key();
    }
};

OssEvColorSpaces::OssEvColorSpaces(std::unique_ptr<Private> inside)
    : d(std::move(inside))
{
}

OssEvColorSpaces::~OssEvColorSpaces() = default;

OssEvColorSpaces::Pointer OssEvColorSpaces::builtIn()
{
    static const Pointer spaces = [] {
        std::istringstream text(BuiltIn);
        const auto config = Ocio::Config::CreateFromStream(text);
        config->validate();
        return Pointer(new OssEvColorSpaces(Private::make(config, true, Light)));
    }();
    return spaces;
}

OssEvResult OssEvColorSpaces::read(const std::string &path, Pointer *spaces)
{
    const auto refused = [&path](const std::string &reason) {
        return OssEvResult::failure("Cannot read \"" + path + "\": " + reason);
    };
    try {
        const auto config = Ocio::Config::CreateFromFile(path.c_str());
        config->validate();
        const auto light = config->getColorSpace(Ocio::ROLE_SCENE_LINEAR);
        if (light == nullptr)
            return refused("it has no scene-linear role");
        spaces->reset(new OssEvColorSpaces(Private::make(config, false, light->getName())));
        return {};
    } catch (const Ocio::Exception &fault) {
        return refused(fault.what());
    }
}

OssEvResult OssEvColorSpaces::readEnvironment(Pointer *spaces)
{
    const char *path = std::getenv(Variable);
    if (path == nullptr || *path == 0)
        return OssEvResult::failure(std::string("The environment names no color configuration: $")
                                    + Variable + " is empty");
    return read(path, spaces);
}

OssEvResult OssEvColorSpaces::withWorking(const std::string &space, Pointer *spaces) const
{
    const std::string own = d->ownName(space);
    if (own.empty())
        return OssEvResult::failure("The color configuration knows no \"" + space + "\"");
    if (isData(own))
        return OssEvResult::failure("\"" + space + "\" holds no colors");
    try {
        spaces->reset(new OssEvColorSpaces(Private::make(d->config, d->isBuiltIn, own)));
        return {};
    } catch (const Ocio::Exception &fault) {
        return OssEvResult::failure(fault.what());
    }
}

bool OssEvColorSpaces::isBuiltIn() const
{
    return d->isBuiltIn;
}

const std::string &OssEvColorSpaces::working() const
{
    return d->working;
}

const OssEvKey &OssEvColorSpaces::key() const
{
    return d->key;
}

std::vector<std::string> OssEvColorSpaces::names() const
{
    std::vector<std::string> names;
    names.reserve(std::size_t(d->config->getNumColorSpaces()));
    for (int i = 0; i < d->config->getNumColorSpaces(); ++i)
        names.emplace_back(d->config->getColorSpaceNameByIndex(i));
    return names;
}

std::vector<std::string> OssEvColorSpaces::linearNames() const
{
    std::vector<std::string> linear;
    for (const std::string &name : names()) {
        const std::string encoding = d->config->getColorSpace(name.c_str())->getEncoding();
        const bool isLinear = encoding.empty() ? d->isLinear(name) : encoding == "scene-linear";
        if (!isData(name) && isLinear)
            linear.push_back(name);
    }
    return linear;
}

std::string OssEvColorSpaces::spaceOfFile(const std::string &path) const
{
    try {
        std::size_t rule = 0;
        const char *space = d->config->getColorSpaceFromFilepath(path.c_str(), rule);
        const bool isLast = rule + 1 >= d->config->getFileRules()->getNumEntries();
        return isLast || space == nullptr ? std::string() : d->ownName(space);
    } catch (const Ocio::Exception &) {
        return {}; // a rule without a colour space
    }
}

std::vector<std::string> OssEvColorSpaces::displays() const
{
    std::vector<std::string> names;
    names.reserve(std::size_t(d->config->getNumDisplays()));
    for (int i = 0; i < d->config->getNumDisplays(); ++i)
        names.emplace_back(d->config->getDisplay(i));
    return names;
}

std::vector<std::string> OssEvColorSpaces::views(const std::string &display) const
{
    std::vector<std::string> names;
    names.reserve(std::size_t(d->config->getNumViews(display.c_str())));
    for (int i = 0; i < d->config->getNumViews(display.c_str()); ++i)
        names.emplace_back(d->config->getView(display.c_str(), i));
    return names;
}

bool OssEvColorSpaces::isWorking(const std::string &space) const
{
    return isData(space) || d->ownName(space) == d->working;
}

bool OssEvColorSpaces::isData(const std::string &space) const
{
    const auto found = d->config->getColorSpace(d->ownName(space).c_str());
    return space == Data || (found != nullptr && found->isData());
}

OssEvResult OssEvColorSpaces::tellConversion(const std::string &space, std::string *text) const
{
    try {
        *text = d->into(space)->getCacheID();
        return {};
    } catch (const Ocio::Exception &fault) {
        return OssEvResult::failure(fault.what());
    }
}

OssEvWorkingSpace OssEvColorSpaces::workingSpace() const
{
    std::array<float, 12> from = Primaries;
    std::array<float, 12> to = Primaries;
    OssEvWorkingSpace made;
    if (isWorking(Light) || !toWorking(Light, from.data(), 3) || !fromWorking(Light, to.data(), 3))
        return made;
    made.isBt709 = false;
    for (std::size_t i = 0; i < 9; ++i) {
        made.fromBt709[i] = from[i % 3 * 4 + i / 3];
        made.toBt709[i] = to[i % 3 * 4 + i / 3];
    }
    for (const FilmWeights &known : AllFilmWeights) {
        std::array<float, 12> same = Primaries;
        const bool isIt = toWorking(known.space, same.data(), 3)
                          && std::equal(same.begin(), same.end(), Primaries.begin(),
                                        [](float a, float b) { return std::abs(a - b) < 1e-4F; });
        if (isIt) {
            made.luminance = known.weights;
            return made;
        }
    }
    for (std::size_t k = 0; k < 3; ++k) {
        made.luminance[k] = 0.0F;
        for (std::size_t row = 0; row < 3; ++row)
            made.luminance[k] += OssEvWorkingSpace::Bt709Luminance[row] * made.toBt709[3 * row + k];
    }
    return made;
}

OssEvResult OssEvColorSpaces::toWorking(const std::string &space, float *rgba,
                                        std::size_t count) const
{
    return Private::apply([&] { return d->into(space); }, rgba, count);
}

OssEvResult OssEvColorSpaces::fromWorking(const std::string &space, float *rgba,
                                          std::size_t count) const
{
    return Private::apply([&] { return d->outOf(space); }, rgba, count);
}

OssEvResult OssEvColorSpaces::toWorkingFromPicked(float *rgba, std::size_t count) const
{
    return toWorking(d->pickedSpace(), rgba, count);
}

OssEvResult OssEvColorSpaces::toPickedFromWorking(float *rgba, std::size_t count) const
{
    return fromWorking(d->pickedSpace(), rgba, count);
}

OssEvResult OssEvColorSpaces::toDisplay(const std::string &display, const std::string &view,
                                        double exposure, double gamma, float *rgba,
                                        std::size_t count) const
{
    const auto make = [&] {
        const double gain = std::exp2(exposure);
        const double power = gamma > 0.0 ? 1.0 / gamma : 1.0;
        const auto group = Ocio::GroupTransform::Create();
        const auto light = Ocio::MatrixTransform::Create();
        const std::array<double, 16> matrix{gain, 0, 0,    0, 0, gain, 0, 0,
                                            0,    0, gain, 0, 0, 0,    0, 1};
        light->setMatrix(matrix.data());
        group->appendTransform(light);
        const auto look = Ocio::DisplayViewTransform::Create();
        look->setSrc(d->working.c_str());
        look->setDisplay(display.c_str());
        look->setView(view.c_str());
        group->appendTransform(look);
        const auto curve = Ocio::ExponentTransform::Create();
        curve->setValue({power, power, power, 1.0});
        group->appendTransform(curve);
        return d->config->getProcessor(group);
    };
    std::ostringstream name;
    name << "display " << display << '\n' << view << '\n' << exposure << '\n' << gamma;
    return Private::apply([&] { return d->processor(name.str(), make); }, rgba, count);
}
