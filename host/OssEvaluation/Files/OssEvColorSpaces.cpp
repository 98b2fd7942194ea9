#include "OssEvaluation/Files/OssEvColorSpaces.h"

#include <OpenColorIO/OpenColorIO.h>

#include <array>
#include <cmath>
#include <map>
#include <mutex>
#include <sstream>

namespace Ocio = OCIO_NAMESPACE;

namespace {

constexpr const char *BuiltIn = R"(ocio_profile_version: 2
environment: {}
search_path: ""
strictparsing: true
luma: [0.2126, 0.7152, 0.0722]
roles:
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
    name: Raw
    description: Numbers that are no colours
    isdata: true
)";

using Processor = Ocio::ConstCPUProcessorRcPtr;

} // namespace

struct OssEvColorSpaces::Private
{
    Ocio::ConstConfigRcPtr config;
    mutable std::mutex mutex;
    mutable std::map<std::string, Processor> processors;

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

    template <class Make>
    OssEvResult apply(const std::string &name, const Make &make, float *rgba,
                      std::size_t count) const
    {
        try {
            Ocio::PackedImageDesc image(rgba, long(count), 1, 4);
            processor(name, make)->apply(image);
            return {};
        } catch (const Ocio::Exception &fault) {
            return OssEvResult::failure(fault.what());
        }
    }
};

OssEvColorSpaces::OssEvColorSpaces(std::unique_ptr<Private> inside)
    : d(std::move(inside))
{
}

OssEvColorSpaces::~OssEvColorSpaces() = default;

std::shared_ptr<const OssEvColorSpaces> OssEvColorSpaces::builtIn()
{
    static const std::shared_ptr<const OssEvColorSpaces> spaces = [] {
        std::istringstream text(BuiltIn);
        auto inside = std::make_unique<Private>();
        inside->config = Ocio::Config::CreateFromStream(text);
        inside->config->validate();
        return std::shared_ptr<const OssEvColorSpaces>(new OssEvColorSpaces(std::move(inside)));
    }();
    return spaces;
}

OssEvResult OssEvColorSpaces::read(const std::string &path,
                                   std::shared_ptr<const OssEvColorSpaces> *spaces)
{
    const auto refused = [&path](const std::string &reason) {
        return OssEvResult::failure("Cannot read \"" + path + "\": " + reason);
    };
    try {
        auto inside = std::make_unique<Private>();
        inside->config = Ocio::Config::CreateFromFile(path.c_str());
        inside->config->validate();
        if (inside->config->getColorSpace(Ocio::ROLE_SCENE_LINEAR) == nullptr)
            return refused("it has no scene-linear role");
        spaces->reset(new OssEvColorSpaces(std::move(inside)));
        return {};
    } catch (const Ocio::Exception &fault) {
        return refused(fault.what());
    }
}

std::vector<std::string> OssEvColorSpaces::names() const
{
    std::vector<std::string> names;
    names.reserve(std::size_t(d->config->getNumColorSpaces()));
    for (int i = 0; i < d->config->getNumColorSpaces(); ++i)
        names.emplace_back(d->config->getColorSpaceNameByIndex(i));
    return names;
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

OssEvResult OssEvColorSpaces::toScene(const std::string &space, float *rgba,
                                      std::size_t count) const
{
    const auto make = [this, &space] {
        return d->config->getProcessor(space.c_str(), Ocio::ROLE_SCENE_LINEAR);
    };
    return d->apply("from " + space, make, rgba, count);
}

OssEvResult OssEvColorSpaces::fromScene(const std::string &space, float *rgba,
                                        std::size_t count) const
{
    const auto make = [this, &space] {
        return d->config->getProcessor(Ocio::ROLE_SCENE_LINEAR, space.c_str());
    };
    return d->apply("to " + space, make, rgba, count);
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
        look->setSrc(Ocio::ROLE_SCENE_LINEAR);
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
    return d->apply(name.str(), make, rgba, count);
}
