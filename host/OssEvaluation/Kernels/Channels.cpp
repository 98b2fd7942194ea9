// Kernels that move values between channels and wires without changing them.

#include "OssEvaluation/Kernels/Families.h"
#include "OssEvaluation/Kernels/PointKernel.h"

#include <algorithm>

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
                                                     OssEvScalar(0.0)};
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

OssEvKernel imageKernel()
{
    using namespace OssEvDescribe;
    OssEvKernel kernel;
    kernel.name = "image";
    kernel.outputs = {{"Output", 4}};
    kernel.parameters = {text("File"), choice("ColorSpace", {"Automatic", "Color", "Data"})};
    kernel.make = [](const OssEvKernelSetup &setup) {
        auto operation = std::make_shared<OssEvImageOperation>();
        operation->name = setup.text("File");
        operation->colorSpace = OssEvImageOperation::ColorSpace(setup.integer("ColorSpace"));
        return operation;
    };
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
    kernels->push_back(uniformKernel(
        "material",
        {{"Base Color", 4}, {"Roughness", 1}, {"Metallic", 1}, {"Normal", 3}, {"Displacement", 1}},
        {{"Material", 4},
         {"Base Color", 4},
         {"Roughness", 1},
         {"Metallic", 1},
         {"Normal", 3},
         {"Displacement", 1}},
        {color("BaseColor", {0.5F, 0.5F, 0.5F, 1.0F}), real("Roughness", 0.5, 0, 1),
         real("Metallic", 0, 0, 1), real("NormalStrength", 1, 0, 4), real("Height", 0.1, 0, 10)},
        makeMaterial));
}
