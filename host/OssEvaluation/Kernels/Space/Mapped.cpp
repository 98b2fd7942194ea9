// Kernels that read their input where maps tell them to, and where chance does.

#include "OssEvaluation/Kernels/Families.h"
#include "OssEvaluation/Kernels/PointKernel.h"
#include "OssEvaluation/Kernels/Space/Remapping.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

namespace {

using Edge = OssEvRemapping::Edge;
using Operation = std::shared_ptr<const OssEvOperation>;

constexpr double Turn = 6.283185307179586;

/// Along an edge of a patch, with what lies around it.
constexpr int MostCells = 1024;

double part(double value)
{
    return value - std::floor(value);
}

int modulo(int value, int divisor)
{
    const int rest = value % divisor;
    return rest < 0 ? rest + divisor : rest;
}

OssEvPlace rotated(const OssEvPlace &place, double angle)
{
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    return {c * place.u - s * place.v, s * place.u + c * place.v};
}

double finite(float value, double farthest)
{
    return std::isfinite(value) ? std::clamp(double(value), -farthest, farthest) : 0.0;
}

/// Numbers from 0 to 1 that a cell always has.
class Chance
{
public:
    Chance(int x, int y, int seed)
        : m_state(std::uint32_t(x) * 0x9E3779B1U ^ std::uint32_t(y) * 0x85EBCA77U
                  ^ std::uint32_t(seed) * 0xC2B2AE3DU)
    {
        next();
    }

    double next()
    {
        m_state += 0x9E3779B9U;
        std::uint32_t bits = m_state;
        bits = (bits ^ (bits >> 16)) * 0x21F0AAADU;
        bits = (bits ^ (bits >> 15)) * 0x735A2D97U;
        m_state ^= bits << 7;
        return double((bits ^ (bits >> 15)) >> 8) / 16777216.0;
    }

    /// From -1 to 1.
    double sway() { return 2.0 * next() - 1.0; }

private:
    std::uint32_t m_state;
};

class RotateByMap : public OssEvRemapping
{
public:
    explicit RotateByMap(const OssEvKernelSetup &setup)
        : OssEvRemapping(setup.frame(), 1, {1})
        , m_angle(setup.real("Angle") / 360.0 * Turn)
        , m_center(setup.vector("Center"))
        , m_tiles{double(setup.integer("TilesU")), double(setup.integer("TilesV"))}
    {
        setEdge(OssEvEdgeOf(setup));
    }

protected:
    bool find(int /*look*/, const OssEvPlace &place, Maps *maps, Source *source) const override
    {
        const double column = std::floor(place.u * m_tiles[0]);
        const double row = std::floor(place.v * m_tiles[1]);
        const OssEvPlace away{place.u * m_tiles[0] - column - m_center[0],
                              place.v * m_tiles[1] - row - m_center[1]};
        const OssEvPlace turned = rotated(away, -m_angle * finite(maps->at(0, place)[0], 1e3));
        source->place = {(column + m_center[0] + turned.u) / m_tiles[0],
                         (row + m_center[1] + turned.v) / m_tiles[1]};
        return true;
    }

private:
    double m_angle;
    OssEvVector2 m_center;
    std::array<double, 2> m_tiles;
};

/// Follows the vectors in steps, so that it flows along them instead of jumping.
class VectorWarp : public OssEvRemapping
{
public:
    explicit VectorWarp(const OssEvKernelSetup &setup)
        : OssEvRemapping(setup.frame(), 1, {1}, std::abs(setup.real("Amount")) * Longest)
        , m_amount(setup.real("Amount"))
        , m_steps(setup.integer("Steps"))
        , m_aroundHalf(setup.integer("Encoding") == 0)
    {
        setEdge(OssEvEdgeOf(setup));
    }

protected:
    bool find(int /*look*/, const OssEvPlace &place, Maps *maps, Source *source) const override
    {
        source->place = place;
        for (int step = 0; step < m_steps; ++step) {
            const OssEvSampler::Texel vector = maps->at(0, source->place);
            source->place.u += component(vector[0]) * m_amount / m_steps;
            source->place.v += component(vector[1]) * m_amount / m_steps;
        }
        return true;
    }

private:
    /// Of a vector.
    static constexpr double Longest = 1.0;

    double component(float value) const
    {
        const double signedValue = m_aroundHalf ? 2.0 * double(value) - 1.0 : double(value);
        return std::isfinite(signedValue) ? std::clamp(signedValue, -Longest, Longest) : 0.0;
    }

    double m_amount;
    int m_steps;
    bool m_aroundHalf;
};

/// Looks along several directions at once, as far as the map is away from one half.
class MultiWarp : public OssEvRemapping
{
public:
    explicit MultiWarp(const OssEvKernelSetup &setup)
        : OssEvRemapping(setup.frame(), 1 << setup.integer("Directions"), {1},
                         std::abs(setup.real("Amount")))
        , m_amount(setup.real("Amount"))
        , m_angle(setup.real("Angle") / 360.0 * Turn)
        , m_step(Turn / (1 << setup.integer("Directions")))
    {
        setEdge(OssEvEdgeOf(setup));
        setCombine(Combine(setup.integer("Mode")));
    }

protected:
    bool find(int look, const OssEvPlace &place, Maps *maps, Source *source) const override
    {
        const double away = m_amount
                            * (std::clamp(finite(maps->at(0, place)[0], 1.0), 0.0, 1.0) - 0.5);
        const double angle = m_angle + look * m_step;
        source->place = {place.u + away * std::cos(angle), place.v + away * std::sin(angle)};
        return true;
    }

private:
    double m_amount;
    double m_angle;
    double m_step;
};

class UvFromMap : public OssEvRemapping
{
public:
    explicit UvFromMap(const OssEvKernelSetup &setup)
        : OssEvRemapping(setup.frame(), 1, {1})
        , m_connected(setup.isConnected(1))
        , m_offset(setup.vector("Offset"))
        , m_scale(setup.vector("Scale"))
    {
        setEdge(OssEvEdgeOf(setup));
    }

protected:
    bool find(int /*look*/, const OssEvPlace &place, Maps *maps, Source *source) const override
    {
        OssEvPlace from = place;
        if (m_connected) {
            const OssEvSampler::Texel uv = maps->at(0, place);
            from = {finite(uv[0], 1e3), finite(uv[1], 1e3)};
        }
        source->place = {from.u * m_scale[0] + m_offset[0], from.v * m_scale[1] + m_offset[1]};
        return true;
    }

private:
    bool m_connected;
    OssEvVector2 m_offset;
    OssEvVector2 m_scale;
};

/// Stamps in cells, each of which may reach into its neighbours. Whole numbers of cells make it tile.
class Bombing : public OssEvRemapping
{
public:
    explicit Bombing(const OssEvKernelSetup &setup)
        : OssEvRemapping(setup.frame(), Neighbours * Neighbours)
        , m_cells(setup.integer("Cells"))
        , m_size(setup.real("Size"))
        , m_sizeVariation(setup.real("SizeVariation"))
        , m_rotation(setup.real("Rotation") / 360.0 * Turn)
        , m_shift(setup.real("Shift"))
        , m_shown(setup.real("Shown"))
        , m_brightness(setup.real("Brightness"))
        , m_density(setup.real("Density"))
        , m_feather(std::max(setup.real("Feather"), 1e-3))
        , m_isRound(setup.integer("Shape") == 0)
        , m_seed(setup.integer("Seed"))
    {
        setCombine(Combine::Over);
    }

protected:
    bool find(int look, const OssEvPlace &place, Maps * /*maps*/, Source *source) const override
    {
        const double x = place.u * m_cells;
        const double y = place.v * m_cells;
        const int column = int(std::floor(x)) + look % Neighbours - Neighbours / 2;
        const int row = int(std::floor(y)) + look / Neighbours - Neighbours / 2;
        Chance chance(modulo(column, m_cells), modulo(row, m_cells), m_seed);
        if (chance.next() >= m_density)
            return false;
        const OssEvPlace middle{column + 0.5 + 0.5 * m_shift * chance.sway(),
                                row + 0.5 + 0.5 * m_shift * chance.sway()};
        const double size = m_size * (1.0 - m_sizeVariation * chance.next());
        const OssEvPlace turned = rotated({x - middle.u, y - middle.v}, m_rotation * chance.sway());
        source->piece = column * MostCells + row;
        source->gain = 1.0 + m_brightness * chance.sway();
        source->order = chance.next();
        // What a stamp shows of the picture, and which part of it.
        const double free = 1.0 - m_shown;
        const OssEvPlace from{free * (chance.next() - 0.5), free * (chance.next() - 0.5)};
        const double scale = m_isRound ? size : size * SquareScale;
        const OssEvPlace inside{turned.u / scale, turned.v / scale};
        source->place = {0.5 + from.u + inside.u * m_shown, 0.5 + from.v + inside.v * m_shown};
        source->weight = cover(inside);
        return true;
    }

private:
    static constexpr int Neighbours = 3;
    /// Their corners must not reach farther than discs do by much.
    static constexpr double SquareScale = 0.75;

    // 1 in the middle and 0 at the edge of what runs from -0.5 to 0.5.
    double cover(const OssEvPlace &inside) const
    {
        const double away = m_isRound ? std::hypot(inside.u, inside.v)
                                      : std::max(std::abs(inside.u), std::abs(inside.v));
        const double t = std::clamp((1.0 - 2.0 * away) / m_feather, 0.0, 1.0);
        return t * t * (3.0 - 2.0 * t);
    }

    int m_cells;
    double m_size;
    double m_sizeVariation;
    double m_rotation;
    double m_shift;
    double m_shown;
    double m_brightness;
    double m_density;
    double m_feather;
    bool m_isRound;
    int m_seed;
};

/// Hides that a picture repeats: M. S. Mikkelsen, "Practical Real-Time Hex-Tiling", 2022. The corners
/// of the triangles are counted so that they, too, repeat from patch to patch.
class HexTiling : public OssEvRemapping
{
public:
    explicit HexTiling(const OssEvKernelSetup &setup)
        : OssEvRemapping(setup.frame(), 3)
        , m_columns(setup.integer("Cells"))
        , m_rows(std::max(2, 2 * int(std::lround(setup.integer("Cells") / std::sqrt(3.0)))))
        , m_repeats(setup.real("Repeats"))
        , m_rotation(setup.real("Rotation") / 360.0 * Turn)
        , m_sharpness(Sharpest + (1.0 - Sharpest) * std::sqrt(setup.real("Blend")))
        , m_seed(setup.integer("Seed"))
    {
    }

protected:
    bool find(int look, const OssEvPlace &place, Maps * /*maps*/, Source *source) const override
    {
        const double y = place.v * m_rows;
        const double x = place.u * m_columns - 0.5 * y;
        const double s = part(x);
        const double t = part(y);
        const bool upper = s + t >= 1.0;
        // Two corners are those of both triangles.
        const std::array<double, 3> weights = upper ? std::array<double, 3>{s + t - 1.0, 1.0 - t,
                                                                            1.0 - s}
                                                    : std::array<double, 3>{1.0 - s - t, s, t};
        int a = int(std::floor(x)) + (look == 1 || (look == 0 && upper) ? 1 : 0);
        int b = int(std::floor(y)) + (look == 2 || (look == 0 && upper) ? 1 : 0);
        const OssEvPlace corner{(a + 0.5 * b) / m_columns, double(b) / m_rows};
        const int row = modulo(b, m_rows);
        source->piece = a * MostCells + b;
        a = modulo(a + (b - row) / 2, m_columns);
        Chance chance(a, row, m_seed);
        const OssEvPlace turned = rotated({place.u - corner.u, place.v - corner.v},
                                          m_rotation * chance.sway());
        source->place = {turned.u * m_repeats + chance.next(),
                         turned.v * m_repeats + chance.next()};
        const double most = *std::max_element(weights.begin(), weights.end());
        source->weight = std::pow(weights[std::size_t(look)] / most, m_sharpness);
        return source->weight > 1e-4;
    }

private:
    static constexpr double Sharpest = 24.0;

    int m_columns;
    int m_rows;
    double m_repeats;
    double m_rotation;
    double m_sharpness;
    int m_seed;
};

/// Lets what lies beyond the edges of a smaller part run over its opposite edges.
class MakeTile : public OssEvRemapping
{
public:
    explicit MakeTile(const OssEvKernelSetup &setup)
        : OssEvRemapping(setup.frame(), 4)
        , m_width(setup.real("Width"))
        , m_sharpness(1.0 / std::max(1.0 - setup.real("Sharpness"), 0.02))
        , m_across(setup.integer("Direction") != 2)
        , m_upwards(setup.integer("Direction") != 1)
    {
        setEdge(Edge::Clamp);
    }

protected:
    bool find(int look, const OssEvPlace &place, Maps * /*maps*/, Source *source) const override
    {
        const Part u = partOf(place.u, (look & 1) != 0, m_across);
        const Part v = partOf(place.v, (look & 2) != 0, m_upwards);
        source->place = {u.place, v.place};
        source->weight = u.weight * v.weight;
        return source->weight > 1e-6;
    }

private:
    struct Part
    {
        double place;
        double weight;
    };

    // The picture's last part lies over its first: at the very edge it alone, then less and less.
    Part partOf(double place, bool second, bool tiles) const
    {
        if (!tiles)
            return {place, second ? 0.0 : 1.0};
        const double shown = 1.0 - m_width;
        const double inside = place * shown;
        const double t = std::clamp((inside / m_width - 0.5) * m_sharpness + 0.5, 0.0, 1.0);
        const double first = t * t * (3.0 - 2.0 * t);
        return {second ? inside + shown : inside, second ? 1.0 - first : first};
    }

    double m_width;
    double m_sharpness;
    bool m_across;
    bool m_upwards;
};

template <class Remapping>
Operation makeMapped(const OssEvKernelSetup &setup)
{
    return std::make_shared<Remapping>(setup);
}

// Without a map nothing moves.
Operation makeMultiWarp(const OssEvKernelSetup &setup)
{
    auto warp = std::make_shared<MultiWarp>(setup);
    warp->defaults = {{}, OssEvScalar(0.5)};
    return warp;
}

Operation makeVectorWarp(const OssEvKernelSetup &setup)
{
    auto warp = std::make_shared<VectorWarp>(setup);
    const float still = setup.integer("Encoding") == 0 ? 0.5F : 0.0F;
    warp->defaults = {{}, {still, still, still, 1.0F}};
    return warp;
}

} // namespace

void OssEvFamilies::addMapped(std::vector<OssEvKernel> *kernels)
{
    using namespace OssEvDescribe;
    const auto edge = OssEvDescribeEdge();
    kernels->push_back(
        OssEvSpaceKernel("rotateByMap",
                         {real("Angle", 360, -3600, 3600), vector("Center", {0.5, 0.5}),
                          integer("TilesU", 1, 1, 256), integer("TilesV", 1, 1, 256), edge},
                         makeMapped<RotateByMap>, {{"Map", 1}}));
    OssEvKernel vectors = OssEvSpaceKernel("vectorWarp",
                                           {real("Amount", 0.1, -1, 1), integer("Steps", 4, 1, 32),
                                            choice("Encoding", {"Around 0.5", "Signed"}),
                                            OssEvDescribeEdge(Edge::AcrossSeams)},
                                           makeVectorWarp, {{"Vector", 3}});
    vectors.usesSurface = true;
    kernels->push_back(vectors);
    OssEvKernel multi = OssEvSpaceKernel("multiWarp",
                                         {real("Amount", 0.1, -1, 1), real("Angle", 0, -360, 360),
                                          choice("Directions", {"1", "2", "4", "8"}, 2),
                                          choice("Mode", {"Average", "Lightest", "Darkest"}),
                                          OssEvDescribeEdge(Edge::AcrossSeams)},
                                         makeMultiWarp, {{"Intensity", 1}});
    multi.usesSurface = true;
    kernels->push_back(multi);
    kernels->push_back(OssEvSpaceKernel("uvFromMap",
                                        {vector("Offset", {0, 0}), vector("Scale", {1, 1}), edge},
                                        makeMapped<UvFromMap>, {{"UV", 3}}));
    kernels->push_back(OssEvSpaceKernel(
        "textureBombing",
        {integer("Cells", 6, 1, 128), real("Size", 1.9, 0.1, 2),
         real("SizeVariation", 0.2, 0, 0.95), real("Rotation", 180, 0, 180),
         real("Shift", 0.5, 0, 1), real("Shown", 0.35, 0.01, 1), real("Brightness", 0.15, 0, 1),
         real("Density", 1, 0, 1), real("Feather", 0.5, 0, 1), choice("Shape", {"Round", "Square"}),
         integer("Seed", 1, 0, 999999)},
        makeMapped<Bombing>));
    kernels->push_back(
        OssEvSpaceKernel("makeTile",
                         {real("Width", 0.2, 0.01, 0.5), real("Sharpness", 0.3, 0, 1),
                          choice("Direction", {"Both", "Horizontal", "Vertical"})},
                         makeMapped<MakeTile>));
    kernels->push_back(OssEvSpaceKernel("hexTiling",
                                        {integer("Cells", 6, 2, 128), real("Repeats", 2, 0.1, 64),
                                         real("Rotation", 180, 0, 180), real("Blend", 0.2, 0, 1),
                                         integer("Seed", 1, 0, 999999)},
                                        makeMapped<HexTiling>));
}
