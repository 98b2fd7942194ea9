// Kernels that change what colour something has: hue, white, encodings, tone of light.

#include "OssEvaluation/Kernels/Adjust/ColorMatrices.h"
#include "OssEvaluation/Kernels/Families.h"
#include "OssEvaluation/Kernels/MaskedKernel.h"
#include "OssEvaluation/Kernels/PointKernel.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "OssEvaluation/Kernels/Adjust/Color.cpp"
#include <hwy/foreach_target.h>
// The order matters: the line above includes this file once for each instruction set.
#include "OssEvaluation/Kernels/Adjust/Change-inl.h"
#include "OssEvaluation/Kernels/Simd-inl.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <vector>

#ifndef OSSEV_COLOR_VALUES
#define OSSEV_COLOR_VALUES

namespace OssEvColorChange {

struct HslValues
{
    float hue;
    float saturation; ///< what it is multiplied by
    float lightness;
    float tint; ///< saturation of all colours, where they are given one hue
    bool colorize;
    OssEvWorkingSpace working;
};

struct ReplaceValues
{
    std::array<float, 3> from;
    std::array<float, 3> to;
    std::array<float, 3> fromDisplay;
    float tolerance;
    float softness;
    float shading; ///< 1 / luminance of `from`; 0 lets the new colour be flat
    OssEvWorkingSpace working;
};

struct TonemapValues
{
    enum Curve { Reinhard, Filmic, Contrasty };

    int curve;
    float gain;
    float white;
    bool keepHue;
    OssEvWorkingSpace::Weights luminance;
};

struct CdlValues
{
    std::array<float, 3> slope;
    std::array<float, 3> offset;
    std::array<float, 3> power;
    float saturation;
    bool clamps;
    OssEvWorkingSpace::Weights luminance;
};

} // namespace OssEvColorChange
#endif

HWY_BEFORE_NAMESPACE();

namespace OssEvSimd::HWY_NAMESPACE {
namespace {

using namespace OssEvColorChange;

HWY_INLINE Channels<3> toDisplay(const Channels<3> &light, const OssEvWorkingSpace &working)
{
    Channels<3> result = working.isBt709 ? light : times(working.toBt709, light);
    for (V &channel : result.c)
        channel = toSrgb(channel);
    return result;
}

HWY_INLINE Channels<3> toLight(const Channels<3> &display, const OssEvWorkingSpace &working)
{
    Channels<3> result;
    for (int k = 0; k < 3; ++k)
        result.c[k] = fromSrgb(display.c[k]);
    return working.isBt709 ? result : times(working.fromBt709, result);
}

struct HslChange
{
    const HslValues &v;

    HWY_INLINE V lighter(V x) const
    {
        const V white = hn::Max(x, splat(1.0F));
        return v.lightness < 0.0F ? hn::Mul(x, splat(1.0F + v.lightness))
                                  : mix(x, white, splat(v.lightness));
    }

    HWY_INLINE void apply(Channels<1> &x) const { x.c[0] = fromSrgb(lighter(toSrgb(x.c[0]))); }

    HWY_INLINE void apply(Channels<3> &x) const
    {
        Channels<3> display = toDisplay(x, v.working);
        const V high = hn::Max(display.c[0], hn::Max(display.c[1], display.c[2]));
        const V low = hn::Min(display.c[0], hn::Min(display.c[1], display.c[2]));
        const V range = hn::Sub(high, low);
        const V middle = hn::Mul(hn::Add(high, low), splat(0.5F));
        // As far as a colour of this lightness goes before it leaves 0 to 1.
        const V room = hn::Mul(hn::Min(middle, hn::Sub(splat(1.0F), middle)), splat(2.0F));
        const V widest = hn::Max(room, zero());
        V hue = splat(v.hue);
        V wanted = hn::Mul(widest, splat(v.tint));
        if (!v.colorize) {
            hue = hn::Add(hue, hueOf(display, high, range));
            wanted = hn::Min(hn::Mul(range, splat(v.saturation)), hn::Max(widest, range));
        }
        const V top = hn::MulAdd(wanted, splat(0.5F), middle);
        display.c[0] = lighter(hueChannel(hue, 0.0F, top, wanted));
        display.c[1] = lighter(hueChannel(hue, 4.0F / 6.0F, top, wanted));
        display.c[2] = lighter(hueChannel(hue, 2.0F / 6.0F, top, wanted));
        x = toLight(display, v.working);
    }
};

void hsl(const OssEvStrip &strip, const HslValues &values)
{
    adjust(strip, HslChange{values});
}

HWY_INLINE V smoothStep(V t)
{
    const V x = clamp(t, zero(), splat(1.0F));
    return hn::Mul(hn::Mul(x, x), hn::NegMulAdd(splat(2.0F), x, splat(3.0F)));
}

struct ReplaceChange
{
    const ReplaceValues &v;

    HWY_INLINE V likeness(V squares) const
    {
        const V away = hn::Sub(hn::Sqrt(squares), splat(v.tolerance));
        return hn::Sub(splat(1.0F), smoothStep(hn::Div(away, splat(v.softness))));
    }

    HWY_INLINE void apply(Channels<1> &x) const
    {
        const V away = hn::Sub(x.c[0], splat(v.from[0]));
        x.c[0] = mix(x.c[0], splat(v.to[0]), likeness(hn::Mul(away, away)));
    }

    HWY_INLINE void apply(Channels<3> &x) const
    {
        const Channels<3> display = toDisplay(x, v.working);
        V squares = zero();
        for (std::size_t k = 0; k < 3; ++k) {
            const V away = hn::Sub(display.c[k], splat(v.fromDisplay[k]));
            squares = hn::MulAdd(away, away, squares);
        }
        const V part = likeness(hn::Mul(squares, splat(1.0F / 3.0F)));
        V light = splat(1.0F);
        if (v.shading > 0.0F)
            light = hn::Mul(luminance(x.c[0], x.c[1], x.c[2], v.working.luminance),
                            splat(v.shading));
        for (std::size_t k = 0; k < 3; ++k)
            x.c[k] = mix(x.c[k], hn::Mul(light, splat(v.to[k])), part);
    }
};

void replaceColor(const OssEvStrip &strip, const ReplaceValues &values)
{
    adjust(strip, ReplaceChange{values});
}

HWY_INLINE V coded(V x, OssEvColorWay::Code code)
{
    if (code == OssEvColorWay::FromSrgb)
        return fromSrgb(x);
    if (code == OssEvColorWay::ToSrgb)
        return toSrgb(x);
    if (code == OssEvColorWay::Cube)
        return hn::Mul(hn::Mul(x, x), x);
    if (code == OssEvColorWay::CubeRoot)
        return hn::CopySign(power(hn::Abs(x), splat(1.0F / 3.0F)), x);
    return x;
}

struct WayChange
{
    const OssEvColorWay &v;

    HWY_INLINE void apply(Channels<1> &x) const
    {
        if (v.hasGrey)
            x.c[0] = coded(coded(x.c[0], v.before), v.after);
    }

    HWY_INLINE void apply(Channels<3> &x) const
    {
        x = times(v.first, x);
        for (V &channel : x.c)
            channel = coded(channel, v.before);
        x = times(v.middle, x);
        for (V &channel : x.c)
            channel = coded(channel, v.after);
        x = times(v.last, x);
    }
};

void colorWay(const OssEvStrip &strip, const OssEvColorWay &values)
{
    adjust(strip, WayChange{values});
}

struct TonemapChange
{
    const TonemapValues &v;

    // E. Reinhard et al., "Photographic Tone Reproduction for Digital Images", 2002, with a white.
    HWY_INLINE static V reinhard(V x, V white)
    {
        const V square = hn::Mul(white, white);
        return hn::Div(hn::Mul(x, hn::Add(splat(1.0F), hn::Div(x, square))),
                       hn::Add(splat(1.0F), x));
    }

    // J. Hable, "Filmic Tonemapping for Real-time Rendering", 2010.
    HWY_INLINE static V shoulder(V x)
    {
        const V above = hn::MulAdd(x, hn::MulAdd(x, splat(0.15F), splat(0.05F)), splat(0.004F));
        const V below = hn::MulAdd(x, hn::MulAdd(x, splat(0.15F), splat(0.5F)), splat(0.06F));
        return hn::Sub(hn::Div(above, below), splat(0.02F / 0.30F));
    }

    // K. Narkowicz, "ACES Filmic Tone Mapping Curve", 2016, stretched so that the white is 1.
    HWY_INLINE static V steep(V x)
    {
        const V above = hn::Mul(x, hn::MulAdd(x, splat(2.51F), splat(0.03F)));
        const V below = hn::MulAdd(x, hn::MulAdd(x, splat(2.43F), splat(0.59F)), splat(0.14F));
        return hn::Div(above, below);
    }

    HWY_INLINE V mapped(V light) const
    {
        // Beyond it the curves say nothing more.
        const V x = clamp(light, zero(), splat(1e6F));
        const V white = splat(v.white);
        if (v.curve == TonemapValues::Reinhard)
            return reinhard(x, white);
        if (v.curve == TonemapValues::Filmic)
            return hn::Div(shoulder(x), shoulder(white));
        return hn::Div(steep(x), steep(white));
    }

    HWY_INLINE void apply(Channels<1> &x) const
    {
        x.c[0] = hn::Min(mapped(hn::Mul(x.c[0], splat(v.gain))), splat(1.0F));
    }

    HWY_INLINE void apply(Channels<3> &x) const
    {
        for (V &channel : x.c)
            channel = hn::Mul(channel, splat(v.gain));
        if (v.keepHue) {
            const V light = luminance(x.c[0], x.c[1], x.c[2], v.luminance);
            const auto dark = hn::Lt(light, splat(1e-9F));
            const V safe = hn::IfThenElse(dark, splat(1.0F), light);
            const V factor = hn::IfThenElseZero(hn::Not(dark), hn::Div(mapped(safe), safe));
            for (V &channel : x.c)
                channel = hn::Mul(channel, factor);
        } else {
            for (V &channel : x.c)
                channel = mapped(channel);
        }
        for (V &channel : x.c)
            channel = clamp(channel, zero(), splat(1.0F));
    }
};

void tonemap(const OssEvStrip &strip, const TonemapValues &values)
{
    adjust(strip, TonemapChange{values});
}

// ASC Color Decision List, release 1.2: slope, offset and power, then saturation.
struct CdlChange
{
    const CdlValues &v;

    template <int N>
    HWY_INLINE void apply(Channels<N> &x) const
    {
        for (std::size_t k = 0; k < N; ++k) {
            V y = hn::MulAdd(x.c[k], splat(v.slope[k]), splat(v.offset[k]));
            if (v.clamps)
                y = clamp(y, zero(), splat(1.0F));
            const V raised = v.power[k] == 1.0F ? y : power(y, splat(v.power[k]));
            x.c[k] = hn::IfThenElse(hn::Gt(y, zero()), raised, y);
        }
        if constexpr (N == 3) {
            const V grey = luminance(x.c[0], x.c[1], x.c[2], v.luminance);
            for (V &channel : x.c) {
                channel = mix(grey, channel, splat(v.saturation));
                if (v.clamps)
                    channel = clamp(channel, zero(), splat(1.0F));
            }
        }
    }
};

void cdl(const OssEvStrip &strip, const CdlValues &values)
{
    adjust(strip, CdlChange{values});
}

} // namespace
} // namespace OssEvSimd::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace OssEvSimd {
HWY_EXPORT(hsl);
HWY_EXPORT(replaceColor);
HWY_EXPORT(colorWay);
HWY_EXPORT(tonemap);
HWY_EXPORT(cdl);
} // namespace OssEvSimd

namespace {

using namespace OssEvColorChange;
using namespace OssEvSimd;
using Operation = std::shared_ptr<const OssEvOperation>;

Operation makeHsl(const OssEvKernelSetup &setup)
{
    const double saturation = setup.real("Saturation");
    constexpr double Most = 100.0;
    const double factor = saturation < 0.0 ? 1.0 + saturation
                                           : std::min(Most, 1.0 / std::max(1.0 - saturation, 1e-9));
    const HslValues values{float(setup.real("Hue") / 360.0), float(factor),
                           float(setup.real("Lightness")),   float(0.5 + 0.5 * saturation),
                           setup.flag("Colorize"),           setup.working()};
    return OssEvMakePoint(&HWY_DYNAMIC_DISPATCH(hsl), values, OssEvMasked::defaults());
}

Operation makeReplace(const OssEvKernelSetup &setup)
{
    const OssEvWorkingSpace &working = setup.working();
    const OssEvColor from = setup.color("From");
    const OssEvColor to = setup.color("To");
    ReplaceValues values{{from[0], from[1], from[2]},
                         {to[0], to[1], to[2]},
                         OssEvDisplayed({from[0], from[1], from[2]}, working),
                         float(setup.real("Tolerance")),
                         float(std::max(setup.real("Softness"), 1e-4)),
                         0.0F,
                         working};
    double light = 0.0;
    for (std::size_t k = 0; k < 3; ++k)
        light += double(working.luminance[k]) * double(from[k]);
    if (setup.flag("Shading") && light > 1e-4)
        values.shading = float(1.0 / light);
    return OssEvMakePoint(&HWY_DYNAMIC_DISPATCH(replaceColor), values, OssEvMasked::defaults());
}

Operation makeWay(const OssEvColorWay &way)
{
    return OssEvMakePoint(&HWY_DYNAMIC_DISPATCH(colorWay), way, OssEvMasked::defaults());
}

Operation makeTonemap(const OssEvKernelSetup &setup)
{
    const TonemapValues values{setup.integer("Curve"), float(std::exp2(setup.real("Exposure"))),
                               float(setup.real("White")), setup.flag("KeepHue"),
                               setup.working().luminance};
    return OssEvMakePoint(&HWY_DYNAMIC_DISPATCH(tonemap), values, OssEvMasked::defaults());
}

Operation makeCdl(const OssEvKernelSetup &setup)
{
    const auto triple = [&setup](const std::string &what) {
        return std::array<float, 3>{float(setup.real(what + "Red")),
                                    float(setup.real(what + "Green")),
                                    float(setup.real(what + "Blue"))};
    };
    const CdlValues values{triple("Slope"),     triple("Offset"),
                           triple("Power"),     float(setup.real("Saturation")),
                           setup.flag("Clamp"), setup.working().luminance};
    return OssEvMakePoint(&HWY_DYNAMIC_DISPATCH(cdl), values, OssEvMasked::defaults());
}

std::vector<OssEvParameterDescription> cdlParameters()
{
    using namespace OssEvDescribe;
    std::vector<OssEvParameterDescription> parameters;
    for (const char *channel : {"Red", "Green", "Blue"})
        parameters.push_back(real(std::string("Slope") + channel, 1, 0, 8));
    for (const char *channel : {"Red", "Green", "Blue"})
        parameters.push_back(real(std::string("Offset") + channel, 0, -1, 1));
    for (const char *channel : {"Red", "Green", "Blue"})
        parameters.push_back(real(std::string("Power") + channel, 1, 0.05, 8));
    parameters.push_back(real("Saturation", 1, 0, 4));
    parameters.push_back(flag("Clamp", true));
    return parameters;
}

} // namespace

void OssEvFamilies::addColorChanges(std::vector<OssEvKernel> *kernels)
{
    using namespace OssEvDescribe;
    kernels->push_back(OssEvMasked::kernel("hsl", 0,
                                           {real("Hue", 0, -180, 180), real("Saturation", 0, -1, 1),
                                            real("Lightness", 0, -1, 1), flag("Colorize", false)},
                                           makeHsl));
    kernels->push_back(OssEvMasked::kernel(
        "replaceColor", 0,
        {color("From", {0.5F, 0.1F, 0.05F, 1}), color("To", {0.05F, 0.2F, 0.5F, 1}),
         real("Tolerance", 0.15, 0, 1), real("Softness", 0.15, 0, 1), flag("Shading", true)},
        makeReplace));
    kernels->push_back(OssEvMasked::kernel(
        "whiteBalance", 0, {real("Temperature", 6500, 2000, 20000), real("Tint", 0, -1, 1)},
        [](const OssEvKernelSetup &setup) {
            return makeWay(
                OssEvWhiteBalance(setup.real("Temperature"), setup.real("Tint"), setup.working()));
        }));
    const auto spaces = OssEvColorSpaceNames();
    kernels->push_back(
        OssEvMasked::kernel("colorSpace", 0, {choice("From", spaces), choice("To", spaces, 2)},
                            [](const OssEvKernelSetup &setup) {
                                return makeWay(OssEvColorSpaceWay(
                                    setup.integer("From"), setup.integer("To"), setup.working()));
                            }));
    kernels->push_back(OssEvMasked::kernel(
        "tonemap", 0,
        {choice("Curve", {"Reinhard", "Filmic", "High Contrast"}), real("Exposure", 0, -10, 10),
         real("White", 4, 0.1, 100), flag("KeepHue", false)},
        makeTonemap));
    kernels->push_back(OssEvMasked::kernel("ascCdl", 0, cdlParameters(), makeCdl));
}
#endif
