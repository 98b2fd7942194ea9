// Figures that repeat: stripes, dots, waves, spirals, rays, and what S. Truchet's tiles make (1704).

#include "OssEvaluation/Kernels/Families.h"
#include "OssEvaluation/Kernels/Pattern/PatternRow.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "OssEvaluation/Kernels/Pattern/Lines.cpp"
#include <hwy/foreach_target.h>
// The order matters: the line above includes this file once for each instruction set.
#include "OssEvaluation/Kernels/Pattern/PatternStrip-inl.h"

#ifndef OSSEV_LINES_VALUES
#define OSSEV_LINES_VALUES

namespace OssEvPattern {

struct Stripes
{
    /// Periods along u and along v: whole numbers, so that sides meet.
    float alongU;
    float alongV;
    float width;
    float offset;
};

struct Dots
{
    float columns;
    float rows;
    float stagger;
    float radius;
    float variation;
    std::uint32_t seed;
};

struct Swings
{
    enum Profile { Sine, Triangle };

    int profile;
    float count;
    float waves;
    float amplitude;
    float width;
};

/// Lines that turn around the middle.
struct Turning
{
    float arms;
    float perRadius;
    float width;
    std::array<float, 2> middle;
};

struct Truchet
{
    enum Style { Arcs, Diagonals, Triangles };

    int style;
    float columns;
    float width;
    std::uint32_t seed;
};

} // namespace OssEvPattern
#endif

HWY_BEFORE_NAMESPACE();

namespace OssEvSimd::HWY_NAMESPACE {
namespace {

using namespace OssEvPattern;

/// Within a line of a width in periods, in periods.
HWY_INLINE V withinLine(V phase, float width)
{
    return 0.5F * width - hn::Abs(fraction(phase) - 0.5F);
}

struct StripesKind
{
    static HWY_INLINE V at(const FigureOf<Stripes> &f, V u, V v)
    {
        const V phase = hn::MulAdd(u, splat(f.own.alongU), v * f.own.alongV) + f.own.offset;
        const float slope = std::hypot(f.own.alongU, f.own.alongV);
        return withinLine(phase, f.own.width) * (1.0F / std::max(slope, 1.0F));
    }
};

struct DotsKind
{
    static HWY_INLINE V at(const FigureOf<Dots> &f, V u, V v)
    {
        const V y = v * f.own.rows;
        const V row = hn::Floor(y);
        const V x = hn::MulAdd(oddness(row), splat(f.own.stagger), u * f.own.columns);
        const V column = hn::Floor(x);
        const V dx = (hn::Sub(x, column) - 0.5F) * (1.0F / f.own.columns);
        const V dy = (hn::Sub(y, row) - 0.5F) * (1.0F / f.own.rows);
        const V chance = unit(
            chanceOf(around(column, f.own.columns), around(row, f.own.rows), f.own.seed));
        const V radius = (1.0F - chance * f.own.variation)
                         * (f.own.radius / std::max(f.own.columns, f.own.rows));
        return hn::Sub(radius, hn::Sqrt(hn::MulAdd(dx, dx, hn::Mul(dy, dy))));
    }
};

struct WavesKind
{
    static HWY_INLINE V at(const FigureOf<Swings> &f, V u, V v)
    {
        const V turns = u * f.own.waves;
        V swing;
        V slope; // of the swing along u
        if (f.own.profile == Swings::Sine) {
            swing = sineOfTurns(turns);
            slope = cosineOfTurns(turns) * (6.2831853F * f.own.waves);
        } else {
            const V part = fraction(turns + 0.25F);
            swing = 1.0F - hn::Abs(part * 4.0F - 2.0F);
            slope = splat(4.0F * f.own.waves);
        }
        const V phase = hn::MulAdd(swing, splat(f.own.amplitude), v * f.own.count);
        const V across = slope * f.own.amplitude;
        const V steep = hn::Sqrt(hn::MulAdd(across, across, splat(f.own.count * f.own.count)));
        return hn::Div(withinLine(phase, f.own.width), steep);
    }
};

struct TurningKind
{
    static HWY_INLINE V at(const FigureOf<Turning> &f, V u, V v)
    {
        const V x = u - f.own.middle[0];
        const V y = v - f.own.middle[1];
        const V r = hn::Sqrt(hn::MulAdd(x, x, hn::Mul(y, y)));
        const V phase = hn::MulAdd(r, splat(f.own.perRadius), turnsOf(y, x) * -f.own.arms);
        const V turning = hn::Div(splat(f.own.arms * 0.15915494F), hn::Max(r, splat(1e-4F)));
        const V steep = hn::Sqrt(
            hn::MulAdd(turning, turning, splat(f.own.perRadius * f.own.perRadius + 1e-6F)));
        return hn::Div(withinLine(phase, f.own.width), steep);
    }
};

struct TruchetKind
{
    static HWY_INLINE V at(const FigureOf<Truchet> &f, V u, V v)
    {
        const V x = u * f.own.columns;
        const V y = v * f.own.columns;
        const V i = hn::Floor(x);
        const V j = hn::Floor(y);
        const VW bits = chanceOf(around(i, f.own.columns), around(j, f.own.columns), f.own.seed);
        const V side = hn::Sub(x, i);
        const V a = hn::IfThenElse(hasBit<7>(bits), side, 1.0F - side);
        const V b = hn::Sub(y, j);
        const float size = 1.0F / f.own.columns;
        if (f.own.style == Truchet::Triangles)
            return withSign<9>(hn::Sub(a, b), bits) * (0.70710678F * size);
        if (f.own.style == Truchet::Diagonals) {
            const V far = hn::Abs(hn::Sub(a, b)) * 0.70710678F;
            // Ends of the lines in the next tiles reach into this one.
            const V c = 1.0F - a;
            const V d = 1.0F - b;
            const V corner = hn::Sqrt(
                hn::Min(hn::MulAdd(a, a, hn::Mul(d, d)), hn::MulAdd(c, c, hn::Mul(b, b))));
            return (0.5F * f.own.width - hn::Min(far, corner)) * size;
        }
        const V c = 1.0F - a;
        const V d = 1.0F - b;
        const V near = hn::Abs(hn::Sqrt(hn::MulAdd(a, a, hn::Mul(b, b))) - 0.5F);
        const V other = hn::Abs(hn::Sqrt(hn::MulAdd(c, c, hn::Mul(d, d))) - 0.5F);
        return (0.5F * f.own.width - hn::Min(near, other)) * size;
    }
};

void stripes(const OssEvStrip &strip, const FigureOf<Stripes> &f)
{
    figureOver<StripesKind>(strip, f);
}

void dots(const OssEvStrip &strip, const FigureOf<Dots> &f)
{
    figureOver<DotsKind>(strip, f);
}

void waves(const OssEvStrip &strip, const FigureOf<Swings> &f)
{
    figureOver<WavesKind>(strip, f);
}

void turning(const OssEvStrip &strip, const FigureOf<Turning> &f)
{
    figureOver<TurningKind>(strip, f);
}

void truchet(const OssEvStrip &strip, const FigureOf<Truchet> &f)
{
    figureOver<TruchetKind>(strip, f);
}

} // namespace
} // namespace OssEvSimd::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace OssEvSimd {
HWY_EXPORT(stripes);
HWY_EXPORT(dots);
HWY_EXPORT(waves);
HWY_EXPORT(turning);
HWY_EXPORT(truchet);
} // namespace OssEvSimd

namespace {

using namespace OssEvPattern;

Stripes stripesOf(const OssEvKernelSetup &setup)
{
    const double angle = setup.real("Angle") * 0.017453292519943295;
    const double count = setup.integer("Count");
    double u = std::round(count * std::cos(angle));
    const double v = std::round(count * std::sin(angle));
    if (u == 0.0 && v == 0.0)
        u = 1.0;
    return {float(u), float(v), float(setup.real("Width")), float(setup.real("Offset"))};
}

Dots dotsOf(const OssEvKernelSetup &setup)
{
    const int columns = setup.integer("Columns");
    const bool stagger = setup.flag("Stagger");
    // Rows by twos, where every other one is shifted.
    const int rows = stagger ? std::max(2, (columns + 1) / 2 * 2) : columns;
    return {float(columns),
            float(rows),
            stagger ? 0.5F : 0.0F,
            float(setup.real("Radius")),
            float(setup.real("SizeVariation")),
            std::uint32_t(setup.integer("Seed"))};
}

std::array<float, 2> middleOf(const OssEvKernelSetup &setup)
{
    const OssEvVector2 middle = setup.vector("Center");
    return {float(middle[0]), float(middle[1])};
}

void addTurning(std::vector<OssEvKernel> *kernels)
{
    using namespace OssEvDescribe;
    using Setup = OssEvKernelSetup;
    using namespace OssEvSimd;
    add(kernels, "spiral",
        {integer("Arms", 1, 1, 50), real("Turns", 6, 0.1, 200), real("Width", 0.5, 0, 1),
         vector("Center", {0.5, 0.5})},
        [](const Setup &s) {
            const Turning own{float(s.integer("Arms")), float(s.real("Turns") * 2.0),
                              float(s.real("Width")), middleOf(s)};
            return makeFigure(&HWY_DYNAMIC_DISPATCH(turning), s, own);
        });
    add(kernels, "rays",
        {integer("Count", 16, 1, 500), real("Width", 0.5, 0, 1), real("Twist", 0, -20, 20),
         vector("Center", {0.5, 0.5})},
        [](const Setup &s) {
            const double count = s.integer("Count");
            const Turning own{float(count), float(s.real("Twist") * count), float(s.real("Width")),
                              middleOf(s)};
            return makeFigure(&HWY_DYNAMIC_DISPATCH(turning), s, own);
        });
}

} // namespace

void OssEvFamilies::addLines(std::vector<OssEvKernel> *kernels)
{
    using namespace OssEvSimd;
    using namespace OssEvDescribe;
    using Setup = OssEvKernelSetup;
    add(kernels, "stripes",
        {integer("Count", 10, 1, 1000), real("Angle", 45, -360, 360), real("Width", 0.5, 0, 1),
         real("Offset", 0, -1, 1)},
        [](const Setup &s) { return makeFigure(&HWY_DYNAMIC_DISPATCH(stripes), s, stripesOf(s)); });
    add(kernels, "dots",
        {integer("Columns", 10, 1, 1000), real("Radius", 0.3, 0, 0.5),
         real("SizeVariation", 0, 0, 1), flag("Stagger", true), integer("Seed", 1, 0, 9999)},
        [](const Setup &s) { return makeFigure(&HWY_DYNAMIC_DISPATCH(dots), s, dotsOf(s)); });
    add(kernels, "waves",
        {integer("Count", 10, 1, 1000), integer("Waves", 4, 0, 200), real("Amplitude", 0.5, 0, 10),
         choice("Profile", {"Sine", "Triangle"}), real("Width", 0.5, 0, 1)},
        [](const Setup &s) {
            const Swings own{s.integer("Profile"), float(s.integer("Count")),
                             float(s.integer("Waves")), float(s.real("Amplitude")),
                             float(s.real("Width"))};
            return makeFigure(&HWY_DYNAMIC_DISPATCH(waves), s, own);
        });
    addTurning(kernels);
    add(kernels, "truchet",
        {integer("Columns", 10, 1, 500), choice("Style", {"Arcs", "Diagonals", "Triangles"}),
         real("Width", 0.25, 0, 1), integer("Seed", 1, 0, 9999)},
        [](const Setup &s) {
            const Truchet own{s.integer("Style"), float(s.integer("Columns")),
                              float(s.real("Width")), std::uint32_t(s.integer("Seed"))};
            return makeFigure(&HWY_DYNAMIC_DISPATCH(truchet), s, own);
        });
}
#endif
