// Kernels that fold, bend and cut the plane.

#include "OssEvaluation/Kernels/Families.h"
#include "OssEvaluation/Kernels/Space/Remapping.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <utility>

namespace {

using Edge = OssEvRemapping::Edge;
using Operation = std::shared_ptr<const OssEvOperation>;

constexpr double Turn = 6.283185307179586;

double part(double value)
{
    return value - std::floor(value);
}

/// One look, by a function of the place alone.
class Bend : public OssEvRemapping
{
public:
    /// False where there is nothing.
    using Function = std::function<bool(OssEvPlace *place)>;

    Bend(const OssEvFrame &frame, Function function)
        : OssEvRemapping(frame, 1)
        , m_function(std::move(function))
    {
    }

protected:
    bool find(int /*look*/, const OssEvPlace &place, Maps * /*maps*/, Source *source) const override
    {
        source->place = place;
        return m_function(&source->place);
    }

private:
    Function m_function;
};

Operation bend(const OssEvKernelSetup &setup, Bend::Function function)
{
    auto operation = std::make_shared<Bend>(setup.frame(), std::move(function));
    operation->setEdge(OssEvEdgeOf(setup));
    return operation;
}

OssEvPlace rotated(const OssEvPlace &place, double angle)
{
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    return {c * place.u - s * place.v, s * place.u + c * place.v};
}

Operation makeMirror(const OssEvKernelSetup &setup)
{
    const int axis = setup.integer("Axis");
    const double position = setup.real("Position");
    const bool flip = setup.flag("Flip");
    const auto folded = [position, flip](double value) {
        return (value > position) == flip ? value : 2.0 * position - value;
    };
    return bend(setup, [axis, folded, flip](OssEvPlace *place) {
        if (axis == 0 || axis == 2)
            place->u = folded(place->u);
        if (axis == 1 || axis == 2)
            place->v = folded(place->v);
        if (axis == 3 && (place->u > place->v) != flip)
            std::swap(place->u, place->v);
        return true;
    });
}

Operation makeKaleidoscope(const OssEvKernelSetup &setup)
{
    const double segment = Turn / setup.integer("Segments");
    const OssEvVector2 center = setup.vector("Center");
    const double rotation = setup.real("Rotation") / 360.0 * Turn;
    const double source = setup.real("SourceRotation") / 360.0 * Turn;
    const double zoom = setup.real("Zoom");
    return bend(setup, [=](OssEvPlace *place) {
        const double u = place->u - center[0];
        const double v = place->v - center[1];
        const double turns = (std::atan2(v, u) - rotation) / segment;
        // There and back within each segment.
        const double angle = std::abs(turns - std::round(turns)) * segment + source;
        const double radius = std::hypot(u, v) / zoom;
        *place = {center[0] + radius * std::cos(angle), center[1] + radius * std::sin(angle)};
        return true;
    });
}

Operation makePolar(const OssEvKernelSetup &setup)
{
    const bool unwraps = setup.integer("Direction") == 1;
    const OssEvVector2 center = setup.vector("Center");
    const double radius = setup.real("Radius");
    const double repeats = setup.integer("Repeats");
    const double rotation = setup.real("Rotation") / 360.0;
    return bend(setup, [=](OssEvPlace *place) {
        if (unwraps) {
            const double angle = (place->u * repeats + rotation) * Turn;
            const double away = place->v * radius;
            *place = {center[0] + away * std::cos(angle), center[1] + away * std::sin(angle)};
            return true;
        }
        const double u = place->u - center[0];
        const double v = place->v - center[1];
        *place = {part(std::atan2(v, u) / Turn - rotation) * repeats, std::hypot(u, v) / radius};
        return true;
    });
}

Operation makeSwirl(const OssEvKernelSetup &setup)
{
    const OssEvVector2 center = setup.vector("Center");
    const double radius = setup.real("Radius");
    const double angle = setup.real("Angle") / 360.0 * Turn;
    return bend(setup, [=](OssEvPlace *place) {
        const OssEvPlace away{place->u - center[0], place->v - center[1]};
        const double left = 1.0 - std::hypot(away.u, away.v) / radius;
        if (left <= 0.0)
            return true;
        const OssEvPlace turned = rotated(away, angle * left * left * (3.0 - 2.0 * left));
        *place = {center[0] + turned.u, center[1] + turned.v};
        return true;
    });
}

Operation makeBulge(const OssEvKernelSetup &setup)
{
    const OssEvVector2 center = setup.vector("Center");
    const double radius = setup.real("Radius");
    // More would turn the middle inside out.
    constexpr double Strongest = 0.8;
    const double amount = setup.real("Amount") * Strongest;
    return bend(setup, [=](OssEvPlace *place) {
        const double u = place->u - center[0];
        const double v = place->v - center[1];
        const double left = 1.0 - (u * u + v * v) / (radius * radius);
        if (left <= 0.0)
            return true;
        const double factor = 1.0 - amount * left * left;
        *place = {center[0] + u * factor, center[1] + v * factor};
        return true;
    });
}

using Projection = std::array<double, 9>;

// From the unit square to four corners: P. S. Heckbert, "Fundamentals of Texture Mapping and Image
// Warping", 1989. Corners: lower left, lower right, upper right, upper left.
Projection fromSquare(const std::array<OssEvVector2, 4> &c)
{
    const double dx1 = c[1][0] - c[2][0];
    const double dx2 = c[3][0] - c[2][0];
    const double dy1 = c[1][1] - c[2][1];
    const double dy2 = c[3][1] - c[2][1];
    const double sx = c[0][0] - c[1][0] + c[2][0] - c[3][0];
    const double sy = c[0][1] - c[1][1] + c[2][1] - c[3][1];
    const double determinant = dx1 * dy2 - dx2 * dy1;
    const bool flat = std::abs(determinant) < 1e-12;
    const double g = flat ? 0.0 : (sx * dy2 - dx2 * sy) / determinant;
    const double h = flat ? 0.0 : (dx1 * sy - sx * dy1) / determinant;
    return {c[1][0] - c[0][0] + g * c[1][0],
            c[3][0] - c[0][0] + h * c[3][0],
            c[0][0],
            c[1][1] - c[0][1] + g * c[1][1],
            c[3][1] - c[0][1] + h * c[3][1],
            c[0][1],
            g,
            h,
            1.0};
}

// But for a factor, which does not matter here; the sign is kept.
Projection inverse(const Projection &m)
{
    Projection result{
        m[4] * m[8] - m[5] * m[7], m[2] * m[7] - m[1] * m[8], m[1] * m[5] - m[2] * m[4],
        m[5] * m[6] - m[3] * m[8], m[0] * m[8] - m[2] * m[6], m[2] * m[3] - m[0] * m[5],
        m[3] * m[7] - m[4] * m[6], m[1] * m[6] - m[0] * m[7], m[0] * m[4] - m[1] * m[3]};
    const double determinant = m[0] * result[0] + m[1] * result[3] + m[2] * result[6];
    for (double &value : result)
        value = std::abs(determinant) < 1e-12 ? 0.0 : value / determinant;
    return result;
}

Operation makePerspective(const OssEvKernelSetup &setup)
{
    const Projection onto = fromSquare({setup.vector("LowerLeft"), setup.vector("LowerRight"),
                                        setup.vector("UpperRight"), setup.vector("UpperLeft")});
    const Projection m = setup.integer("Direction") == 0 ? inverse(onto) : onto;
    return bend(setup, [m](OssEvPlace *place) {
        const double depth = m[6] * place->u + m[7] * place->v + m[8];
        if (!(depth > 1e-9))
            return false;
        *place = {(m[0] * place->u + m[1] * place->v + m[2]) / depth,
                  (m[3] * place->u + m[4] * place->v + m[5]) / depth};
        return true;
    });
}

Operation makeCrop(const OssEvKernelSetup &setup)
{
    const double left = setup.real("Left");
    const double right = setup.real("Right");
    const double bottom = setup.real("Bottom");
    const double top = setup.real("Top");
    const bool fills = setup.integer("Fit") == 1;
    auto operation = std::make_shared<Bend>(setup.frame(), [=](OssEvPlace *place) {
        if (fills) {
            *place = {left + place->u * (right - left), bottom + place->v * (top - bottom)};
            return right > left && top > bottom;
        }
        return place->u >= left && place->u < right && place->v >= bottom && place->v < top;
    });
    operation->setEdge(Edge::Clamp);
    return operation;
}

Operation makeTileOffset(const OssEvKernelSetup &setup)
{
    const OssEvVector2 offset = setup.vector("Offset");
    const double columns = setup.integer("TilesU");
    const double rows = setup.integer("TilesV");
    const double shift = setup.real("RowShift");
    auto operation = std::make_shared<Bend>(setup.frame(), [=](OssEvPlace *place) {
        const double v = (place->v - offset[1]) * rows;
        const bool odd = part(std::floor(v) / 2.0) >= 0.5;
        *place = {part((place->u - offset[0]) * columns - (odd ? shift : 0.0)), part(v)};
        return true;
    });
    operation->setEdge(Edge::Repeat);
    return operation;
}

} // namespace

void OssEvFamilies::addBending(std::vector<OssEvKernel> *kernels)
{
    using namespace OssEvDescribe;
    const auto edge = OssEvDescribeEdge();
    const auto center = vector("Center", {0.5, 0.5});
    const auto radius = real("Radius", 0.5, 0.01, 2);
    kernels->push_back(
        OssEvSpaceKernel("mirror",
                         {choice("Axis", {"Horizontal", "Vertical", "Both", "Diagonal"}),
                          real("Position", 0.5, 0, 1), flag("Flip", false), edge},
                         makeMirror));
    kernels->push_back(
        OssEvSpaceKernel("kaleidoscope",
                         {integer("Segments", 6, 1, 64), center, real("Rotation", 0, -360, 360),
                          real("SourceRotation", 0, -360, 360), real("Zoom", 1, 0.05, 20), edge},
                         makeKaleidoscope));
    kernels->push_back(
        OssEvSpaceKernel("polar",
                         {choice("Direction", {"Wrap Around", "Unwrap"}), center, radius,
                          integer("Repeats", 1, 1, 64), real("Rotation", 0, -360, 360), edge},
                         makePolar));
    kernels->push_back(OssEvSpaceKernel(
        "swirl", {real("Angle", 180, -1440, 1440), center, radius, edge}, makeSwirl));
    kernels->push_back(
        OssEvSpaceKernel("bulge", {real("Amount", 0.6, -1, 1), center, radius, edge}, makeBulge));
    kernels->push_back(
        OssEvSpaceKernel("perspective",
                         {choice("Direction", {"Onto", "From"}), vector("LowerLeft", {0, 0}),
                          vector("LowerRight", {1, 0}), vector("UpperRight", {0.75, 0.8}),
                          vector("UpperLeft", {0.25, 0.8}), OssEvDescribeEdge(Edge::Empty)},
                         makePerspective));
    kernels->push_back(OssEvSpaceKernel("crop",
                                        {real("Left", 0.25, 0, 1), real("Right", 0.75, 0, 1),
                                         real("Bottom", 0.25, 0, 1), real("Top", 0.75, 0, 1),
                                         choice("Fit", {"Keep Place", "Fill Patch"})},
                                        makeCrop));
    kernels->push_back(OssEvSpaceKernel("tileOffset",
                                        {vector("Offset", {0.5, 0.5}), integer("TilesU", 1, 1, 64),
                                         integer("TilesV", 1, 1, 64), real("RowShift", 0, 0, 1)},
                                        makeTileOffset));
}
