// Kernels that move values between channels and wires without changing them.

#include "OssEvaluation/Kernels/Families.h"
#include "OssEvaluation/Kernels/PointKernel.h"
#include "OssEvaluation/Values/Texels.h"

#include <algorithm>
#include <functional>

namespace {

using Operation = std::shared_ptr<const OssEvOperation>;

struct NoValues
{};

struct OpacityValues
{
    std::size_t input;
    float opacity;
};

struct ShuffleValues
{
    enum Source { Red, Green, Blue, Alpha, Zero, One };

    std::array<int, 4> sources;
};

struct PickValues
{
    std::size_t input;
    std::size_t firstChannel;
};

struct MaterialNormalValues
{
    float strength;
};

// One channel of a file: what of its input it takes, and how.
struct PackChannel
{
    enum From { Red, Green, Blue, Alpha, Luminance };

    int from;
    bool inverts;
};

struct PackValues
{
    std::array<PackChannel, 4> channels;
    OssEvWorkingSpace::Weights luminance;
    bool premultiplies;
};

constexpr std::array<const char *, 4> PackNames{"Red", "Green", "Blue", "Alpha"};

// Colours without their alpha; what comes without one has an alpha of 1.
void pack(const OssEvStripInput &input, const PackChannel &channel,
          const OssEvWorkingSpace::Weights &luminance, float *to, std::size_t texels)
{
    const float *alpha = input.plane[3];
    if (channel.from == PackChannel::Alpha) {
        std::copy_n(alpha, texels, to);
    } else if (channel.from == PackChannel::Luminance) {
        OssEvTexels::luminance(input.plane[0], input.plane[1], input.plane[2], luminance, to,
                               texels);
        OssEvTexels::unmultiply(to, alpha, to, texels);
    } else {
        OssEvTexels::unmultiply(input.plane[std::size_t(channel.from)], alpha, to, texels);
    }
    if (channel.inverts)
        std::transform(to, to + texels, to, [](float value) { return 1.0F - value; });
}

void pack(const OssEvStrip &strip, const PackValues &values)
{
    const auto count = std::size_t(strip.outputChannels);
    for (std::size_t k = 0; k < count; ++k)
        pack(strip.inputs[k], values.channels[k], values.luminance, strip.output[k],
             strip.texels());
    for (std::size_t k = 0; values.premultiplies && count == 4 && k < 3; ++k)
        std::transform(strip.output[k], strip.output[k] + strip.texels(), strip.output[3],
                       strip.output[k], std::multiplies<>());
}

void combine(const OssEvStrip &strip, const NoValues & /*values*/)
{
    for (std::size_t k = 0; k < 4; ++k)
        std::copy_n(strip.inputs[k].plane[0], strip.texels(), strip.output[k]);
}

void shuffle(const OssEvStrip &strip, const ShuffleValues &values)
{
    for (std::size_t k = 0; k < 4; ++k) {
        const int source = values.sources[k];
        if (source >= ShuffleValues::Zero)
            std::fill_n(strip.output[k], strip.texels(),
                        source == ShuffleValues::One ? 1.0F : 0.0F);
        else
            std::copy_n(strip.inputs[0].plane[std::size_t(source)], strip.texels(),
                        strip.output[k]);
    }
}

// Channels of one input, from one on, as many as the output has.
void pick(const OssEvStrip &strip, const PickValues &values)
{
    const OssEvStripInput &input = strip.inputs[values.input];
    for (std::size_t k = 0; k < std::size_t(strip.outputChannels); ++k)
        std::copy_n(input.plane[values.firstChannel + k], strip.texels(), strip.output[k]);
}

void opacity(const OssEvStrip &strip, const OpacityValues &values)
{
    for (std::size_t k = 0; k < 4; ++k) {
        const float *from = strip.inputs[values.input].plane[k];
        std::transform(from, from + strip.texels(), strip.output[k],
                       [&values](float value) { return value * values.opacity; });
    }
}

// Normals are stored as colours around one half; their tilt is scaled, not their length.
void materialNormal(const OssEvStrip &strip, const MaterialNormalValues &values)
{
    for (std::size_t k = 0; k < 3; ++k) {
        const float *from = strip.inputs[3].plane[k];
        const float factor = k < 2 ? values.strength : 1.0F;
        std::transform(from, from + strip.texels(), strip.output[k],
                       [factor](float value) { return 0.5F + (value - 0.5F) * factor; });
    }
}

Operation makeCombine(const OssEvKernelSetup & /*setup*/)
{
    return OssEvMakePoint(combine, NoValues(), {{}, {}, {}, OssEvScalar(1.0)});
}

Operation makePack(const OssEvKernelSetup &setup)
{
    PackValues values{{}, setup.working().luminance, setup.flag("Premultiply")};
    std::vector<std::array<float, 4>> defaults;
    for (std::size_t k = 0; k < PackNames.size(); ++k) {
        const std::string name = PackNames[k];
        values.channels[k] = {setup.integer(name + "From"), setup.flag(name + "Invert")};
        const auto value = float(setup.real(name));
        defaults.push_back({value, value, value, 1.0F});
    }
    return OssEvMakePoint<PackValues>(pack, values, defaults);
}

Operation makeShuffle(const OssEvKernelSetup &setup)
{
    return OssEvMakePoint(shuffle, ShuffleValues{{setup.integer("Red"), setup.integer("Green"),
                                                  setup.integer("Blue"), setup.integer("Alpha")}});
}

Operation makeSplit(const OssEvKernelSetup &setup)
{
    return OssEvMakePoint(pick, PickValues{0, std::size_t(setup.output())});
}

Operation makePass(const OssEvKernelSetup & /*setup*/)
{
    return OssEvMakePoint(pick, PickValues{0, 0});
}

Operation makeImageSet(const OssEvKernelSetup &setup)
{
    // While there is no image, what feeds the node goes through.
    const std::size_t input = setup.isConnected(0) ? 0 : 1;
    return OssEvMakePoint(opacity, OpacityValues{input, float(setup.real("Opacity"))}, {},
                          int(input));
}

// The material itself looks like its base colour; behind it each of its channels can be had.
Operation makeMaterial(const OssEvKernelSetup &setup)
{
    const std::size_t channel = setup.output() == 0 ? 0 : std::size_t(setup.output()) - 1;
    const std::vector<std::array<float, 4>> defaults{setup.premultiplied("BaseColor"),
                                                     OssEvScalar(setup.real("Roughness")),
                                                     OssEvScalar(setup.real("Metallic")),
                                                     {0.5F, 0.5F, 1.0F, 0.0F},
                                                     OssEvScalar(0.0),
                                                     setup.premultiplied("Emission"),
                                                     OssEvScalar(setup.real("Opacity")),
                                                     OssEvScalar(1.0),
                                                     OssEvScalar(setup.real("ClearCoat")),
                                                     OssEvScalar(setup.real("ClearCoatRoughness"))};
    if (channel == 3) {
        const MaterialNormalValues values{float(setup.real("NormalStrength"))};
        return OssEvMakePoint(materialNormal, values, defaults, int(channel));
    }
    return OssEvMakePoint(pick, PickValues{channel, 0}, defaults, int(channel));
}

OssEvKernel uniformKernel(const char *name, std::vector<OssEvKernelInput> inputs,
                          std::vector<OssEvKernelOutput> outputs,
                          std::vector<OssEvParameterDescription> parameters,
                          Operation (*make)(const OssEvKernelSetup &))
{
    OssEvKernel kernel;
    kernel.name = name;
    kernel.inputs = std::move(inputs);
    kernel.outputs = std::move(outputs);
    kernel.parameters = std::move(parameters);
    kernel.uniform = true;
    kernel.keepsPrecision = true;
    kernel.make = make;
    return kernel;
}

// Puts channels of several streams into one file. What comes out is not premultiplied unless that is
// asked for. The outputs that are called precise hold what a half cannot.
OssEvKernel packKernel()
{
    using namespace OssEvDescribe;
    OssEvKernel kernel = uniformKernel("pack", {}, {}, {flag("Premultiply", false)}, makePack);
    for (const std::string name : PackNames) {
        kernel.inputs.push_back({name, 4});
        kernel.parameters.push_back(
            choice(name + "From", {"Red", "Green", "Blue", "Alpha", "Luminance"}, 0));
        kernel.parameters.push_back(flag(name + "Invert", false));
        kernel.parameters.push_back(real(name, 0));
    }
    kernel.outputs = {{"1", 1},
                      {"3", 3},
                      {"4", 4},
                      {"Precise 1", 1, true},
                      {"Precise 3", 3, true},
                      {"Precise 4", 4, true}};
    return kernel;
}

OssEvKernel imageKernel()
{
    using namespace OssEvDescribe;
    OssEvKernel kernel;
    kernel.name = "image";
    kernel.outputs = {{"Output", 4}};
    kernel.parameters = {text("File"), choice("ColorSpace", {"Automatic", "Color", "Data"}),
                         text("FileSpace")};
    kernel.make = [](const OssEvKernelSetup &setup) {
        auto operation = std::make_shared<OssEvImageOperation>();
        operation->name = setup.text("File");
        operation->colorSpace = OssEvImageOperation::ColorSpace(setup.integer("ColorSpace"));
        operation->space = setup.text("FileSpace");
        return operation;
    };
    return kernel;
}

OssEvKernel materialKernel()
{
    using namespace OssEvDescribe;
    OssEvKernel kernel = uniformKernel(
        "material",
        {{"Base Color", 4},
         {"Roughness", 1},
         {"Metallic", 1},
         {"Normal", 3},
         {"Displacement", 1},
         {"Emission", 4},
         {"Opacity", 1},
         {"Ambient Occlusion", 1},
         {"Clear Coat", 1},
         {"Clear Coat Roughness", 1}},
        {{"Material", 4}},
        {color("BaseColor", {0.5F, 0.5F, 0.5F, 1.0F}), real("Roughness", 0.5, 0, 1),
         real("Metallic", 0, 0, 1), real("NormalStrength", 1, 0, 4), real("Height", 0.1, 0, 10),
         color("Emission", {0.0F, 0.0F, 0.0F, 1.0F}), real("Opacity", 1, 0, 1),
         real("ClearCoat", 0, 0, 1), real("ClearCoatRoughness", 0.1, 0, 1)},
        makeMaterial);
    for (const OssEvKernelInput &input : kernel.inputs)
        kernel.outputs.push_back({input.name, input.channels});
    return kernel;
}

} // namespace

void OssEvFamilies::addChannels(std::vector<OssEvKernel> *kernels)
{
    using namespace OssEvDescribe;
    const std::vector<std::string> sources{"Red", "Green", "Blue", "Alpha", "Zero", "One"};
    kernels->push_back(imageKernel());
    kernels->push_back(uniformKernel("combine",
                                     {{"Red", 1}, {"Green", 1}, {"Blue", 1}, {"Alpha", 1}},
                                     {{"Output", 4}}, {}, makeCombine));
    kernels->push_back(uniformKernel("shuffle", {{"Input", 4, true}}, {{"Output", 4}},
                                     {choice("Red", sources, 0), choice("Green", sources, 1),
                                      choice("Blue", sources, 2), choice("Alpha", sources, 3)},
                                     makeShuffle));
    kernels->push_back(uniformKernel("split", {{"Input", 4, true}},
                                     {{"Red", 1}, {"Green", 1}, {"Blue", 1}, {"Alpha", 1}}, {},
                                     makeSplit));
    kernels->push_back(uniformKernel("pass", {{"Input", 0}}, {{"Output", 0}}, {}, makePass));
    kernels->push_back(uniformKernel("imageSet", {{"Image", 4, false, "Image"}, {"Input", 4}},
                                     {{"Output", 4}}, {text("Image"), real("Opacity", 1, 0, 1)},
                                     makeImageSet));
    kernels->push_back(packKernel());
    kernels->push_back(materialKernel());
}
