// Which of several inputs shows: by number, by name, by comparing, by a mask; and numbers drawn by chance.

#include "OssEvaluation/Kernels/Chance.h"
#include "OssEvaluation/Kernels/Families.h"
#include "OssEvaluation/Kernels/Logic/Pick.h"
#include "OssEvaluation/Kernels/PointKernel.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <string_view>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "OssEvaluation/Kernels/Logic/Switches.cpp"
#include <hwy/foreach_target.h>
// The order matters: the line above includes this file once for each instruction set.
#include "OssEvaluation/Kernels/Noise/Place-inl.h"
#include "OssEvaluation/Kernels/Simd-inl.h"

#ifndef OSSEV_SWITCHES_VALUES
#define OSSEV_SWITCHES_VALUES

namespace OssEvSwitches {

struct CompareValues
{
    enum Operation { Greater, GreaterOrEqual, Less, LessOrEqual, Equal, NotEqual };

    enum Output { Chosen, Mask };

    int operation;
    int output;
    float tolerance;
    float softness;
};

struct BlendValues
{
    float balance;
    float contrast;
    bool invert;
};

} // namespace OssEvSwitches
#endif

HWY_BEFORE_NAMESPACE();

namespace OssEvSimd::HWY_NAMESPACE {
namespace {

using namespace OssEvSwitches;

/// 1 above 0, over a width about it; without one a step, which counts 0 in or not.
HWY_INLINE V above(V value, float softness, bool withZero)
{
    if (softness > 0.0F)
        return smoothStep(-0.5F * softness, 0.5F * softness, value);
    return hn::IfThenElseZero(withZero ? hn::Ge(value, zero()) : hn::Gt(value, zero()),
                              splat(1.0F));
}

HWY_INLINE V compared(const CompareValues &values, V a, V b)
{
    const V ahead = hn::Sub(a, b);
    switch (values.operation) {
    case CompareValues::Greater:
    case CompareValues::GreaterOrEqual:
        return above(ahead, values.softness, values.operation == CompareValues::GreaterOrEqual);
    case CompareValues::Less:
    case CompareValues::LessOrEqual:
        return above(hn::Neg(ahead), values.softness,
                     values.operation == CompareValues::LessOrEqual);
    default: {
        const V equal = above(values.tolerance - hn::Abs(ahead), values.softness, true);
        return values.operation == CompareValues::Equal ? equal : 1.0F - equal;
    }
    }
}

void compare(const OssEvStrip &strip, const CompareValues &values)
{
    for (std::size_t i = 0; i < strip.texels(); i += hn::Lanes(Floats())) {
        const V t = compared(values, load(strip.inputs[0].plane[0] + i),
                             load(strip.inputs[1].plane[0] + i));
        if (values.output == CompareValues::Mask) {
            store(t, strip.output[0] + i);
            continue;
        }
        for (std::size_t k = 0; k < 4; ++k) {
            store(mix(load(strip.inputs[3].plane[k] + i), load(strip.inputs[2].plane[k] + i), t),
                  strip.output[k] + i);
        }
    }
}

void blend(const OssEvStrip &strip, const BlendValues &values)
{
    for (std::size_t i = 0; i < strip.texels(); i += hn::Lanes(Floats())) {
        V t = saturate(load(strip.inputs[2].plane[0] + i));
        t = saturate(hn::MulAdd(t - (1.0F - values.balance), splat(values.contrast), splat(0.5F)));
        if (values.invert)
            t = 1.0F - t;
        for (std::size_t k = 0; k < 4; ++k) {
            store(mix(load(strip.inputs[0].plane[k] + i), load(strip.inputs[1].plane[k] + i), t),
                  strip.output[k] + i);
        }
    }
}

} // namespace
} // namespace OssEvSimd::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace OssEvSimd {
HWY_EXPORT(compare);
HWY_EXPORT(blend);
} // namespace OssEvSimd

namespace {

using namespace OssEvSwitches;
using namespace OssEvSimd;
using namespace OssEvDescribe;
using OssEvPick::Most;
using Operation = std::shared_ptr<const OssEvOperation>;

std::string_view trimmed(std::string_view text)
{
    const std::size_t begin = text.find_first_not_of(" \t");
    return begin == std::string_view::npos
               ? std::string_view()
               : text.substr(begin, text.find_last_not_of(" \t") - begin + 1);
}

/// Which of the names between commas it is, from 1 on; 0 for none.
int numberOf(std::string_view names, std::string_view wanted)
{
    for (int number = 1; number <= Most; ++number) {
        const std::size_t end = names.find(',');
        if (trimmed(names.substr(0, end)) == trimmed(wanted))
            return number;
        if (end == std::string_view::npos)
            break;
        names.remove_prefix(end + 1);
    }
    return 0;
}

OssEvKernel switchKernel(const char *name)
{
    OssEvKernel kernel;
    kernel.name = name;
    for (int i = 1; i <= Most; ++i)
        kernel.inputs.push_back({"Input " + std::to_string(i), 0});
    kernel.outputs = {{"Output", 0}};
    kernel.uniform = true;
    kernel.keepsPrecision = true;
    return kernel;
}

void addSwitchKernels(std::vector<OssEvKernel> *kernels)
{
    OssEvKernel byNumber = switchKernel("switch");
    byNumber.parameters = {integer("Number", 1, 1, Most)};
    byNumber.make = [](const OssEvKernelSetup &setup) {
        return OssEvPick::make(setup.integer("Number"));
    };
    kernels->push_back(byNumber);

    OssEvKernel byName = switchKernel("switchByName");
    byName.parameters = {text("Name"), text("Names")};
    byName.parameters[0].fallback = std::string("Clean");
    byName.parameters[1].fallback = std::string("Clean, Worn, Ruined");
    byName.check = [](const OssEvParameters &parameters) {
        const auto &wanted = std::get<std::string>(parameters.at("Name"));
        const auto &names = std::get<std::string>(parameters.at("Names"));
        return numberOf(names, wanted) > 0
                   ? OssEvResult()
                   : OssEvResult::failure("none of its inputs is named \"" + wanted + "\"");
    };
    byName.make = [](const OssEvKernelSetup &setup) {
        return OssEvPick::make(numberOf(setup.text("Names"), setup.text("Name")));
    };
    kernels->push_back(byName);
}

struct Drawn
{
    std::array<float, 4> value;
};

void drawn(const OssEvStrip &strip, const Drawn &values)
{
    for (std::size_t k = 0; k < std::size_t(strip.outputChannels); ++k)
        std::fill_n(strip.output[k], strip.texels(), values.value[k]);
}

Operation makeSeed(const OssEvKernelSetup &setup)
{
    const auto seed = std::uint32_t(setup.integer("Seed"));
    constexpr std::uint32_t Patches = 10000;
    const auto patch = setup.flag("PerPatch") ? std::uint32_t(setup.frame().patch) : 0U;
    const std::uint32_t number = std::uint32_t(setup.integer("Index")) * Patches + patch;
    Drawn values{{0.0F, 0.0F, 0.0F, 1.0F}};
    if (setup.output() == 1) {
        for (std::uint32_t k = 0; k < 3; ++k)
            values.value[k] = float(OssEvChance(number, seed, k + 1));
    } else {
        const double low = setup.real("Minimum");
        const double high = setup.real("Maximum");
        const double part = OssEvChance(number, seed);
        const bool isWhole = setup.flag("Whole");
        values.value[0] = float(isWhole ? std::floor(low + part * (high - low + 1.0))
                                        : low + part * (high - low));
    }
    return OssEvMakePoint(drawn, values);
}

/// The value comes from the document, which knows the groups.
Operation makeGroupAttribute(const OssEvKernelSetup &setup)
{
    const bool isColor = setup.flag("IsColor");
    const std::array<float, 4> color = setup.premultiplied("Color");
    const auto value = float(setup.real("Value"));
    Drawn values{{value, value, value, 1.0F}};
    if (isColor)
        values.value = color;
    if (isColor && setup.output() == 0) {
        values.value[0] = 0.0F;
        for (std::size_t k = 0; k < 3; ++k)
            values.value[0] += color[k] * setup.working().luminance[k];
    }
    return OssEvMakePoint(drawn, values);
}

void addGroupAttribute(std::vector<OssEvKernel> *kernels)
{
    OssEvKernel kernel;
    kernel.name = "groupAttribute";
    kernel.outputs = {{"Output", 1, true}, {"Color", 4, true}};
    kernel.parameters = {text("Attribute"), real("Value", 0), color("Color", {0, 0, 0, 1}),
                         flag("IsColor", false), text("Problem")};
    kernel.uniform = true;
    kernel.check = [](const OssEvParameters &parameters) {
        const auto &problem = std::get<std::string>(parameters.at("Problem"));
        return problem.empty() ? OssEvResult() : OssEvResult::failure(problem);
    };
    kernel.make = makeGroupAttribute;
    kernels->push_back(kernel);
}

void addCompare(std::vector<OssEvKernel> *kernels)
{
    OssEvKernel compares;
    compares.name = "compare";
    compares.inputs = {{"A", 1}, {"B", 1}, {"True", 4}, {"False", 4}};
    compares.outputs = {{"Output", 4}, {"Mask", 1}};
    compares.parameters = {choice("Operation", {"Greater", "Greater or Equal", "Less",
                                                "Less or Equal", "Equal", "Not Equal"}),
                           real("A", 0.5, -1e6, 1e6),
                           real("B", 0.5, -1e6, 1e6),
                           real("Tolerance", 0.01, 0, 1000),
                           real("Softness", 0, 0, 1),
                           color("TrueColor", {1, 1, 1, 1}),
                           color("FalseColor", {0, 0, 0, 1})};
    compares.uniform = true;
    compares.make = [](const OssEvKernelSetup &setup) {
        return OssEvMakePoint(
            &HWY_DYNAMIC_DISPATCH(compare),
            CompareValues{setup.integer("Operation"), setup.output(),
                          float(setup.real("Tolerance")), float(setup.real("Softness"))},
            {OssEvScalar(setup.real("A")), OssEvScalar(setup.real("B")),
             setup.premultiplied("TrueColor"), setup.premultiplied("FalseColor")});
    };
    kernels->push_back(compares);
}

} // namespace

void OssEvFamilies::addSwitches(std::vector<OssEvKernel> *kernels)
{
    addSwitchKernels(kernels);
    addGroupAttribute(kernels);
    addCompare(kernels);

    OssEvKernel blends;
    blends.name = "blendByMask";
    blends.inputs = {{"A", 4}, {"B", 4}, {"Mask", 1}};
    blends.outputs = {{"Output", 4}};
    blends.parameters = {color("ColorA", {0, 0, 0, 1}), color("ColorB", {1, 1, 1, 1}),
                         real("Mask", 0.5, 0, 1),       real("Balance", 0.5, 0, 1),
                         real("Contrast", 0, 0, 1),     flag("Invert", false)};
    blends.uniform = true;
    blends.keepsPrecision = true;
    blends.make = [](const OssEvKernelSetup &setup) {
        return OssEvMakePoint(&HWY_DYNAMIC_DISPATCH(blend),
                              BlendValues{float(setup.real("Balance")),
                                          float(1.0 / std::max(1.0 - setup.real("Contrast"), 0.01)),
                                          setup.flag("Invert")},
                              {setup.premultiplied("ColorA"), setup.premultiplied("ColorB"),
                               OssEvScalar(setup.real("Mask"))});
    };
    kernels->push_back(blends);

    OssEvKernel draws;
    draws.name = "seed";
    draws.outputs = {{"Output", 1, true}, {"Color", 4}};
    draws.parameters = {integer("Seed", 1, 0, 999999), integer("Index", 0, 0, 999999),
                        real("Minimum", 0, -1e6, 1e6), real("Maximum", 1, -1e6, 1e6),
                        flag("Whole", false),          flag("PerPatch", false)};
    draws.uniform = true;
    draws.make = makeSeed;
    kernels->push_back(draws);
}
#endif
