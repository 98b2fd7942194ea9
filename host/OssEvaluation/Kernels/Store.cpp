// What keeping an image in files of a certain depth makes of its values.
#include "OssEvaluation/Kernels/Families.h"
#include "OssEvaluation/Kernels/PointKernel.h"
#include "OssEvaluation/Values/OssEvDepth.h"
#include "OssEvaluation/Values/Texels.h"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace {

// What files of whole numbers count instead of light, by the name of their colour space.
struct Counting
{
    std::string_view space;
    float (*fromLight)(float light);
    float (*toLight)(float counted);
};

float same(float value)
{
    return value;
}

float screenFromLight(float light)
{
    return light <= 0.0031308F ? light * 12.92F : 1.055F * std::pow(light, 1.0F / 2.4F) - 0.055F;
}

float lightFromScreen(float counted)
{
    return counted <= 0.04045F ? counted / 12.92F : std::pow((counted + 0.055F) / 1.055F, 2.4F);
}

float gammaFromLight(float light)
{
    return std::pow(std::max(light, 0.0F), 1.0F / 2.2F);
}

float lightFromGamma(float counted)
{
    return std::pow(counted, 2.2F);
}

/// The first is the usual one.
constexpr Counting Countings[] = {{"sRGB", screenFromLight, lightFromScreen},
                                  {"Linear", same, same},
                                  {"Raw", same, same},
                                  {"Gamma 2.2", gammaFromLight, lightFromGamma}};

const Counting *countingOf(const std::string &space)
{
    const auto *found = std::find_if(std::begin(Countings), std::end(Countings),
                                     [&](const Counting &one) { return one.space == space; });
    return found == std::end(Countings) ? Countings : found;
}

struct StoreValues
{
    OssEvDepth depth;
    const Counting *counting; ///< of colours; numbers are counted as they are
};

float wholeNumber(float value, float largest)
{
    return std::round(std::clamp(value, 0.0F, 1.0F) * largest) / largest;
}

void toHalves(const OssEvStrip &strip)
{
    std::vector<std::uint16_t> buffer(strip.texels() + 16);
    // Conversion wants 32-byte aligned rows.
    const auto misplaced = reinterpret_cast<std::uintptr_t>(buffer.data()) % 32;
    std::uint16_t *halves = buffer.data() + (misplaced == 0 ? 0 : (32 - misplaced) / 2);
    for (std::size_t k = 0; k < std::size_t(strip.outputChannels); ++k) {
        OssEvTexels::floatToHalf(strip.inputs[0].plane[k], halves, strip.texels());
        OssEvTexels::halfToFloat(halves, strip.output[k], strip.texels());
    }
}

void numbersToWhole(const OssEvStrip &strip, float largest)
{
    for (std::size_t k = 0; k < std::size_t(strip.outputChannels); ++k) {
        const float *from = strip.inputs[0].plane[k];
        std::transform(from, from + strip.texels(), strip.output[k],
                       [largest](float value) { return wholeNumber(value, largest); });
    }
}

// Files of whole numbers hold colours that are not premultiplied.
void colorsToWhole(const OssEvStrip &strip, float largest, const Counting &counting)
{
    for (std::size_t i = 0; i < strip.texels(); ++i) {
        const float alpha = strip.inputs[0].plane[3][i];
        const float kept = wholeNumber(alpha, largest);
        for (std::size_t k = 0; k < 3; ++k) {
            const float light = strip.inputs[0].plane[k][i] / (alpha > 0.0F ? alpha : 1.0F);
            strip.output[k][i] = kept
                                 * counting.toLight(
                                     wholeNumber(counting.fromLight(light), largest));
        }
        strip.output[3][i] = kept;
    }
}

void store(const OssEvStrip &strip, const StoreValues &values)
{
    if (values.depth == OssEvDepth::Half) {
        toHalves(strip);
    } else if (values.depth == OssEvDepth::Float) {
        for (std::size_t k = 0; k < std::size_t(strip.outputChannels); ++k)
            std::copy_n(strip.inputs[0].plane[k], strip.texels(), strip.output[k]);
    } else {
        const float largest = values.depth == OssEvDepth::Byte ? 255.0F : 65535.0F;
        if (values.counting == nullptr || strip.outputChannels < 4)
            numbersToWhole(strip, largest);
        else
            colorsToWhole(strip, largest, *values.counting);
    }
}

/// The second output holds what a half cannot.
OssEvKernel storeKernel(const char *name, int channels)
{
    using namespace OssEvDescribe;
    OssEvKernel kernel;
    kernel.name = name;
    kernel.inputs = {{"Input", channels}};
    kernel.outputs = {{"Output", channels}, {"Precise", channels, true}};
    kernel.parameters = {
        choice("Depth", std::vector<std::string>(OssEvDepthNames.begin(), OssEvDepthNames.end())),
        choice("ColorSpace", {"Color", "Scalar"}), text("FileSpace")};
    kernel.uniform = true;
    kernel.keepsPrecision = true;
    kernel.make = [](const OssEvKernelSetup &setup) {
        const bool isColor = setup.integer("ColorSpace") == 0;
        return OssEvMakePoint(store,
                              StoreValues{OssEvDepth(setup.integer("Depth")),
                                          isColor ? countingOf(setup.text("FileSpace")) : nullptr});
    };
    return kernel;
}

} // namespace

void OssEvFamilies::addStore(std::vector<OssEvKernel> *kernels)
{
    kernels->push_back(storeKernel("store", 0));
    kernels->push_back(storeKernel("storeScalar", 1));
}
