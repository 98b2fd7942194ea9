// Single figures by their signed distances, and what joins them. Distances and the smooth minimum after
// I. Quilez, "2D distance functions" and "Smooth minimum" (2013).

#include "OssEvaluation/Kernels/Families.h"
#include "OssEvaluation/Kernels/Pattern/PatternRow.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "OssEvaluation/Kernels/Pattern/Shapes.cpp"
#include <hwy/foreach_target.h>
// The order matters: the line above includes this file once for each instruction set.
#include "OssEvaluation/Kernels/Pattern/PatternStrip-inl.h"

#ifndef OSSEV_SHAPES_VALUES
#define OSSEV_SHAPES_VALUES

namespace OssEvPattern {

/// Where a figure lies, and what is done with its outline.
struct Placed
{
    std::array<float, 2> middle;
    float cosine;
    float sine;
    float rounding;
    float outline; ///< 0 is the whole figure
};

struct Corners : Placed
{
    float count;
    float radius;
    float inner;
};

struct Simple : Placed
{
    enum Shape { Circle, Box, Capsule, Cross, Ring, Moon, Heart };

    int shape;
    float radius;
    float aspect;
    float thickness;
};

struct Joining
{
    enum Operation { Union, Intersection, Subtraction, Exclusion };

    int operation;
    float smooth;
    float rounding;
    float outline;
};

struct Outline
{
    float offset;
    float width;
    float rings;
    float spacing;
};

} // namespace OssEvPattern
#endif

HWY_BEFORE_NAMESPACE();

namespace OssEvSimd::HWY_NAMESPACE {
namespace {

using namespace OssEvPattern;

struct Point
{
    V x;
    V y;
};

HWY_INLINE V lengthOf(V x, V y)
{
    return hn::Sqrt(hn::MulAdd(x, x, hn::Mul(y, y)));
}

HWY_INLINE Point pointIn(const Placed &placed, V u, V v)
{
    const V x = u - placed.middle[0];
    const V y = v - placed.middle[1];
    return {hn::MulAdd(x, splat(placed.cosine), y * placed.sine),
            hn::MulSub(y, splat(placed.cosine), x * placed.sine)};
}

/// Of a distance that is negative inside.
HWY_INLINE V outlined(V distance, float width)
{
    return width > 0.0F ? 0.5F * width - hn::Abs(distance) : hn::Neg(distance);
}

/// The outline goes straight from each tip to the notch beside it.
struct CornersKind
{
    static HWY_INLINE V at(const FigureOf<Corners> &f, V u, V v)
    {
        const Corners &own = f.own;
        const Point p = pointIn(own, u, v);
        const V r = lengthOf(p.x, p.y);
        // The sector of a tip, folded at its middle; the first tip points upwards.
        const V turns = turnsOf(p.y, p.x) - 0.25F;
        const V sector = hn::Abs(hn::Sub(turns * own.count, hn::Round(turns * own.count)))
                         * (1.0F / own.count);
        const V x = hn::Mul(r, cosineOfTurns(sector));
        const V y = hn::Mul(r, sineOfTurns(sector));
        const float half = 3.14159265F / own.count;
        const float keep = 1.0F - own.rounding;
        const float tip = own.radius * keep;
        const float notchX = own.inner * keep * std::cos(half);
        const float notchY = own.inner * keep * std::sin(half);
        const float alongX = notchX - tip;
        const float square = std::max(alongX * alongX + notchY * notchY, 1e-12F);
        const V fromX = x - tip;
        const V t = saturate(hn::MulAdd(fromX, splat(alongX), y * notchY) * (1.0F / square));
        const V far = lengthOf(hn::NegMulAdd(t, splat(alongX), fromX),
                               hn::NegMulAdd(t, splat(notchY), y));
        const V side = hn::MulSub(fromX, splat(notchY), y * alongX);
        const V distance = hn::CopySign(far, side) - own.rounding * own.inner * std::cos(half);
        return outlined(distance, own.outline);
    }
};

HWY_INLINE V boxDistance(V x, V y, float width, float height)
{
    const V dx = hn::Abs(x) - width;
    const V dy = hn::Abs(y) - height;
    const V outside = lengthOf(hn::Max(dx, zero()), hn::Max(dy, zero()));
    return hn::Add(outside, hn::Min(hn::Max(dx, dy), zero()));
}

HWY_INLINE V heartDistance(V x, V y)
{
    const V side = hn::Abs(x);
    const V lobe = lengthOf(side - 0.25F, y - 0.75F) - 0.35355339F;
    const V up = y - 1.0F;
    const V slope = hn::Max(hn::Add(side, y), zero()) * 0.5F;
    const V near = hn::Min(lengthOf(side, up), lengthOf(hn::Sub(side, slope), hn::Sub(y, slope)));
    const V point = hn::CopySign(near, hn::Sub(side, y));
    return hn::IfThenElse(hn::Gt(hn::Add(side, y), splat(1.0F)), lobe, point);
}

struct SimpleKind
{
    static HWY_INLINE V distance(const Simple &own, V x, V y)
    {
        const float r = own.radius;
        const float rounding = own.rounding * r * std::min(1.0F, own.aspect);
        const V round = lengthOf(x, y);
        switch (own.shape) {
        case Simple::Box:
            return boxDistance(x, y, r - rounding, r * own.aspect - rounding) - rounding;
        case Simple::Capsule: {
            const float thick = r * own.thickness;
            const V along = hn::Max(hn::Abs(x) - std::max(r - thick, 0.0F), zero());
            return lengthOf(along, y) - thick;
        }
        case Simple::Cross: {
            const float thick = r * own.thickness;
            const float corner = std::min(rounding, thick);
            return hn::Min(boxDistance(x, y, r - corner, thick - corner),
                           boxDistance(x, y, thick - corner, r - corner))
                   - corner;
        }
        case Simple::Ring:
            return hn::Abs(round - r * (1.0F - 0.5F * own.thickness)) - r * 0.5F * own.thickness;
        case Simple::Moon: {
            const V hole = lengthOf(x - r * (1.0F - own.thickness) * 0.8F, y) - r * 0.85F;
            return hn::Max(round - r, hn::Neg(hole));
        }
        case Simple::Heart:
            return heartDistance(x * (0.6F / r), y * (0.6F / r) + 0.55F) * (r / 0.6F);
        default:
            // Of an ellipse nearly: exact where it is a circle.
            const V flat = y * (1.0F / own.aspect);
            const V wide = lengthOf(x, flat);
            const V steep = hn::Max(lengthOf(x, flat * (1.0F / own.aspect)), splat(1e-9F));
            return hn::Div(hn::Mul(wide, wide - r), steep);
        }
    }

    static HWY_INLINE V at(const FigureOf<Simple> &f, V u, V v)
    {
        const Point p = pointIn(f.own, u, v);
        return outlined(distance(f.own, p.x, p.y), f.own.outline);
    }
};

void corners(const OssEvStrip &strip, const FigureOf<Corners> &f)
{
    figureOver<CornersKind>(strip, f);
}

void simple(const OssEvStrip &strip, const FigureOf<Simple> &f)
{
    figureOver<SimpleKind>(strip, f);
}

/// The lesser of two; within `smooth` of each other they run into one.
HWY_INLINE V smoothLesser(V a, V b, float smooth)
{
    if (!(smooth > 0.0F))
        return hn::Min(a, b);
    const V near = saturate(1.0F - hn::Abs(hn::Sub(a, b)) * (1.0F / smooth));
    return hn::NegMulAdd(hn::Mul(near, near), splat(0.25F * smooth), hn::Min(a, b));
}

void join(const OssEvStrip &strip, const FigureOf<Joining> &f)
{
    const float smooth = f.own.smooth;
    for (std::size_t i = 0; i < strip.texels(); i += hn::Lanes(Floats())) {
        const V a = load(strip.inputs[2].plane[0] + i);
        const V b = load(strip.inputs[3].plane[0] + i);
        V distance;
        if (f.own.operation == Joining::Union)
            distance = smoothLesser(a, b, smooth);
        else if (f.own.operation == Joining::Intersection)
            distance = hn::Neg(smoothLesser(hn::Neg(a), hn::Neg(b), smooth));
        else if (f.own.operation == Joining::Subtraction)
            distance = hn::Neg(smoothLesser(hn::Neg(a), b, smooth));
        else
            distance = hn::Max(smoothLesser(a, b, smooth),
                               smoothLesser(hn::Neg(a), hn::Neg(b), smooth));
        finishFigure(strip, f, i, outlined(distance - f.own.rounding, f.own.outline));
    }
}

void outline(const OssEvStrip &strip, const FigureOf<Outline> &f)
{
    for (std::size_t i = 0; i < strip.texels(); i += hn::Lanes(Floats())) {
        const V distance = load(strip.inputs[2].plane[0] + i) - f.own.offset;
        // The ring that is nearest, of those that there are.
        const V ring = clamp(hn::Round(distance * (1.0F / f.own.spacing)), zero(),
                             splat(f.own.rings - 1.0F));
        const V far = hn::NegMulAdd(ring, splat(f.own.spacing), distance);
        finishFigure(strip, f, i, 0.5F * f.own.width - hn::Abs(far));
    }
}

} // namespace
} // namespace OssEvSimd::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace OssEvSimd {
HWY_EXPORT(corners);
HWY_EXPORT(simple);
HWY_EXPORT(join);
HWY_EXPORT(outline);
} // namespace OssEvSimd

namespace {

using namespace OssEvPattern;
using Setup = OssEvKernelSetup;

Placed placedOf(const Setup &setup)
{
    const OssEvVector2 middle = setup.vector("Center");
    const double angle = setup.real("Rotation") * 0.017453292519943295;
    return {{float(middle[0]), float(middle[1])},
            float(std::cos(angle)),
            float(std::sin(angle)),
            float(setup.real("Rounding")),
            float(setup.real("Outline"))};
}

Parameters placed(Parameters own)
{
    using namespace OssEvDescribe;
    own.push_back(real("Rounding", 0, 0, 1));
    own.push_back(real("Outline", 0, 0, 1));
    own.push_back(real("Rotation", 0, -360, 360));
    own.push_back(vector("Center", {0.5, 0.5}));
    return own;
}

/// What takes distances, instead of places.
void addJoining(std::vector<OssEvKernel> *kernels, const std::string &name, const Parameters &own,
                const std::vector<OssEvKernelInput> &distances, Make make)
{
    add(kernels, name, own, make);
    std::vector<OssEvKernelInput> &inputs = kernels->back().inputs;
    inputs.pop_back();
    inputs.insert(inputs.end(), distances.begin(), distances.end());
}

void addFigures(std::vector<OssEvKernel> *kernels)
{
    using namespace OssEvDescribe;
    using namespace OssEvSimd;
    add(kernels, "polygon", placed({integer("Sides", 6, 3, 100), real("Radius", 0.4, 0, 2)}),
        [](const Setup &s) {
            const double sides = s.integer("Sides");
            const double radius = s.real("Radius");
            // A notch in the middle of a straight edge.
            const Corners own{placedOf(s), float(sides), float(radius),
                              float(radius * std::cos(3.14159265358979 / sides))};
            return makeFigure(&HWY_DYNAMIC_DISPATCH(corners), s, own);
        });
    add(kernels, "star",
        placed({integer("Points", 5, 2, 100), real("Radius", 0.4, 0, 2),
                real("InnerRadius", 0.45, 0, 1)}),
        [](const Setup &s) {
            const double radius = s.real("Radius");
            const Corners own{placedOf(s), float(s.integer("Points")), float(radius),
                              float(radius * s.real("InnerRadius"))};
            return makeFigure(&HWY_DYNAMIC_DISPATCH(corners), s, own);
        });
    add(kernels, "shape",
        placed({choice("Shape", {"Circle", "Box", "Capsule", "Cross", "Ring", "Moon", "Heart"}),
                real("Radius", 0.35, 0.001, 2), real("Aspect", 1, 0.01, 1),
                real("Thickness", 0.35, 0, 1)}),
        [](const Setup &s) {
            const Simple own{placedOf(s), s.integer("Shape"), float(s.real("Radius")),
                             float(s.real("Aspect")), float(s.real("Thickness"))};
            return makeFigure(&HWY_DYNAMIC_DISPATCH(simple), s, own);
        });
}

} // namespace

void OssEvFamilies::addShapes(std::vector<OssEvKernel> *kernels)
{
    using namespace OssEvDescribe;
    using namespace OssEvSimd;
    addFigures(kernels);
    addJoining(kernels, "shapeBlend",
               {choice("Operation", {"Union", "Intersection", "Subtraction", "Exclusion"}),
                real("Smoothness", 0.05, 0, 1), real("Rounding", 0, -1, 1),
                real("Outline", 0, 0, 1)},
               {{"A", 1, true}, {"B", 1, true}}, [](const Setup &s) {
                   const Joining own{s.integer("Operation"), float(s.real("Smoothness")),
                                     float(s.real("Rounding")), float(s.real("Outline"))};
                   return makeFigure(&HWY_DYNAMIC_DISPATCH(join), s, own);
               });
    addJoining(kernels, "shapeOutline",
               {real("Offset", 0, -1, 1), real("Width", 0.02, 0, 1), integer("Rings", 1, 1, 100),
                real("Spacing", 0.05, 0.001, 1)},
               {{"A", 1, true}}, [](const Setup &s) {
                   const Outline own{float(s.real("Offset")), float(s.real("Width")),
                                     float(s.integer("Rings")), float(s.real("Spacing"))};
                   return makeFigure(&HWY_DYNAMIC_DISPATCH(outline), s, own);
               });
}
#endif
