// Kernels that move texels: warp, transform, tiling, projection along the axes of the object.

#include "OssEvaluation/Geometry/OssEvSurfaceMap.h"
#include "OssEvaluation/Kernels/Families.h"
#include "OssEvaluation/Kernels/Sampler.h"
#include "OssEvaluation/Kernels/SurfaceAxes.h"
#include "OssEvaluation/Values/OssEvPatch.h"

#include <algorithm>
#include <cmath>

namespace {

using Border = OssEvTileGrid::Border;

constexpr double DegreesToRadians = 0.017453292519943295;

bool isCancelled(const OssEvBlock &block)
{
    return block.cancel != nullptr && block.cancel->isCancelled();
}

void put(const OssEvBlock &block, int x, int y, const OssEvSampler::Texel &texel)
{
    const std::ptrdiff_t offset = std::ptrdiff_t(y) * block.stride + x;
    for (int k = 0; k < block.outputChannels; ++k)
        block.output[std::size_t(k)][offset] = texel[std::size_t(k)];
}

/// Texture coordinates of a texel of the block, within the patch.
struct Place
{
    double u;
    double v;

    Place(const OssEvBlock &block, int x, int y)
        : u((block.region.x + x + 0.5) / block.frame.width)
        , v(1.0 - (block.region.y + y + 0.5) / block.frame.height)
    {
    }

    Place(double alongU, double alongV)
        : u(alongU)
        , v(alongV)
    {
    }
};

class Warp : public OssEvAreaOperation
{
public:
    enum Space { Tangent, Uv, Object };

    enum Edge { AcrossSeams, ClampEdge, RepeatEdge };

    Warp(double amount, int space, int edge, const OssEvFrame &frame)
        : OssEvAreaOperation({{0, 0}, {1, 0}})
        , m_amount(amount)
        , m_space(space)
        , m_edge(edge)
        , m_frame(frame)
    {
    }

    OssEvRegion needed(std::size_t tap, const OssEvRegion &block) const override
    {
        if (tap == 1)
            return block;
        const double size = std::max(m_frame.width, m_frame.height);
        const OssEvRegion region = block.expanded(int(std::ceil(std::abs(m_amount) * size)) + 2);
        const bool inside = region.intersected(m_frame.region()) == region;
        return m_edge == RepeatEdge && !inside ? m_frame.region() : region;
    }

    void run(const OssEvBlock &block) const override
    {
        OssEvScratch scratch;
        OssEvSampler vectors(block.inputs[1], Border::Clamp, &scratch);
        OssEvSampler colors(block.inputs[0], m_edge == RepeatEdge ? Border::Repeat : Border::Clamp,
                            &scratch);
        const bool seams = m_edge == AcrossSeams && block.surface != nullptr;
        for (int y = 0; y < block.region.height && !isCancelled(block); ++y) {
            for (int x = 0; x < block.region.width; ++x) {
                const double column = block.region.x + x + 0.5;
                const double line = block.region.y + y + 0.5;
                const Place shift = shiftOf(block, vectors.at(column, line), x, y);
                const double fromX = column + shift.u * block.frame.width;
                const double fromY = line - shift.v * block.frame.height;
                put(block, x, y,
                    seams ? colors.covered(fromX, fromY, *block.surface) : colors.at(fromX, fromY));
            }
        }
    }

private:
    // In texture coordinates, no farther than the amount: the block knows no more texels.
    Place shiftOf(const OssEvBlock &block, const OssEvSampler::Texel &vector, int x, int y) const
    {
        double u = vector[0];
        double v = vector[1];
        if (m_space != Uv && block.surface != nullptr)
            project(block, vector, x, y, &u, &v);
        const auto limited = [this](double value) {
            return std::isfinite(value) ? std::clamp(value, -1.0, 1.0) * m_amount : 0.0;
        };
        return {limited(u), limited(v)};
    }

    void project(const OssEvBlock &block, const OssEvSampler::Texel &vector, int x, int y,
                 double *u, double *v) const
    {
        const OssEvSurfaceAxes axes = OssEvSurfaceAxes::of(*block.surface, block.region.x + x,
                                                           block.region.y + y, vector);
        if (!axes.exist) {
            *u = 0.0;
            *v = 0.0;
        } else if (m_space == Tangent) {
            *u /= std::sqrt(axes.uu);
            *v /= std::sqrt(axes.vv);
        } else {
            *u = axes.u;
            *v = axes.v;
        }
    }

    double m_amount;
    int m_space;
    int m_edge;
    OssEvFrame m_frame;
};

/// Reads the input at a place that depends on the texel's own by an even mapping.
class Mapping : public OssEvAreaOperation
{
public:
    /// u' = a[0] u + a[1] v + a[2], v' = b[0] u + b[1] v + b[2].
    struct Matrix
    {
        std::array<double, 3> a;
        std::array<double, 3> b;
    };

    Mapping(const Matrix &matrix, bool repeat, bool mirror, const OssEvFrame &frame)
        : OssEvAreaOperation({{0, reductionOf(matrix, frame)}})
        , m_matrix(matrix)
        , m_repeat(repeat)
        , m_mirror(mirror)
        , m_frame(frame)
        , m_source(OssEvReduced(frame, taps()[0].reduction))
    {
    }

    OssEvRegion needed(std::size_t /*tap*/, const OssEvRegion &block) const override
    {
        double left = 1e9;
        double right = -1e9;
        double top = 1e9;
        double bottom = -1e9;
        for (int corner = 0; corner < 4; ++corner) {
            const double x = (corner & 1) != 0 ? block.right() : block.x;
            const double y = (corner & 2) != 0 ? block.bottom() : block.y;
            const Place from = map({x / m_frame.width, 1.0 - y / m_frame.height});
            left = std::min(left, from.u * m_source.width);
            right = std::max(right, from.u * m_source.width);
            top = std::min(top, (1.0 - from.v) * m_source.height);
            bottom = std::max(bottom, (1.0 - from.v) * m_source.height);
        }
        const auto texel = [](double value) {
            return int(std::clamp(value, -1e8, 1e8));
        };
        const int x = texel(std::floor(left)) - 2;
        const int y = texel(std::floor(top)) - 2;
        const OssEvRegion region{x, y, texel(std::ceil(right)) + 2 - x,
                                 texel(std::ceil(bottom)) + 2 - y};
        const bool inside = region.intersected(m_source.region()) == region;
        if (m_repeat && !inside)
            return m_source.region();
        return region.intersected(m_source.region().expanded(2));
    }

    void run(const OssEvBlock &block) const override
    {
        OssEvScratch scratch;
        OssEvSampler sampler(block.inputs[0], m_repeat ? Border::Repeat : Border::Zero, &scratch);
        for (int y = 0; y < block.region.height && !isCancelled(block); ++y) {
            for (int x = 0; x < block.region.width; ++x) {
                Place from = map(Place(block, x, y));
                if (m_mirror) {
                    from.u = mirrored(from.u);
                    from.v = mirrored(from.v);
                }
                put(block, x, y,
                    sampler.at(from.u * m_source.width, (1.0 - from.v) * m_source.height));
            }
        }
    }

private:
    static int reductionOf(const Matrix &matrix, const OssEvFrame & /*frame*/)
    {
        // The direction in which it shrinks least decides: blurring is worse than a little noise.
        return OssEvReductionFor(
            std::min(std::hypot(matrix.a[0], matrix.b[0]), std::hypot(matrix.a[1], matrix.b[1])));
    }

    static double mirrored(double place)
    {
        const double turn = place - 2.0 * std::floor(place / 2.0);
        return turn <= 1.0 ? turn : 2.0 - turn;
    }

    Place map(const Place &place) const
    {
        return {m_matrix.a[0] * place.u + m_matrix.a[1] * place.v + m_matrix.a[2],
                m_matrix.b[0] * place.u + m_matrix.b[1] * place.v + m_matrix.b[2]};
    }

    Matrix m_matrix;
    bool m_repeat;
    bool m_mirror;
    OssEvFrame m_frame;
    OssEvFrame m_source;
};

std::shared_ptr<const OssEvOperation> makeTransform(const OssEvKernelSetup &setup)
{
    constexpr double Smallest = 1e-4;
    const OssEvVector2 move = setup.vector("Translate");
    const OssEvVector2 pivot = setup.vector("Pivot");
    OssEvVector2 scale = setup.vector("Scale");
    for (double &factor : scale)
        factor = std::abs(factor) < Smallest ? Smallest : factor;
    const double angle = setup.real("Rotate") * DegreesToRadians;
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    // Backwards: from where a texel lands to where it comes from.
    const double x = -move[0] - pivot[0];
    const double y = -move[1] - pivot[1];
    const Mapping::Matrix matrix{
        {c / scale[0], s / scale[0], (c * x + s * y) / scale[0] + pivot[0]},
        {-s / scale[1], c / scale[1], (-s * x + c * y) / scale[1] + pivot[1]}};
    return std::make_shared<Mapping>(matrix, false, false, setup.frame());
}

std::shared_ptr<const OssEvOperation> makeTiled(const OssEvKernelSetup &setup)
{
    const double u = setup.real("RepeatU");
    const double v = setup.real("RepeatV");
    const double angle = setup.real("Rotation") * DegreesToRadians;
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    // Turned about the middle of the patch, then repeated from its lower left corner.
    const Mapping::Matrix matrix{{u * c, u * s, u * (0.5 - 0.5 * c - 0.5 * s)},
                                 {-v * s, v * c, v * (0.5 + 0.5 * s - 0.5 * c)}};
    return std::make_shared<Mapping>(matrix, true, setup.flag("Mirror"), setup.frame());
}

class TriPlanar : public OssEvAreaOperation
{
public:
    explicit TriPlanar(const OssEvKernelSetup &setup)
        : OssEvAreaOperation(tapsOf(setup))
        , m_source(OssEvReduced(setup.frame(), taps()[0].reduction))
        , m_scale(setup.real("Scale"))
        , m_exponent(Sharpest + (1.0 - Sharpest) * setup.real("Blend"))
    {
        // Directions without an image of their own show the front one.
        for (std::size_t i = 0; i < 3; ++i)
            m_image[i] = setup.isConnected(i) ? i : 0;
    }

    OssEvRegion needed(std::size_t /*tap*/, const OssEvRegion & /*block*/) const override
    {
        return m_source.region();
    }

    void run(const OssEvBlock &block) const override
    {
        OssEvScratch scratch;
        std::vector<OssEvSampler> samplers;
        for (std::size_t i = 0; i < 3; ++i)
            samplers.emplace_back(block.inputs[i], Border::Repeat, &scratch);
        const int width = block.region.width;
        const OssEvPlane positions(&scratch, width, 3);
        const OssEvPlane normals(&scratch, width, 3);
        for (int y = 0; y < block.region.height && !isCancelled(block); ++y) {
            readSurface(block, y, positions, normals);
            for (int x = 0; x < width; ++x)
                put(block, x, y, mixed(&samplers, positions, normals, x));
        }
    }

private:
    /// Exponent of the normals' components at which directions hardly mix.
    static constexpr double Sharpest = 16.0;

    static std::vector<OssEvTap> tapsOf(const OssEvKernelSetup &setup)
    {
        const int reduction = OssEvReductionFor(setup.real("Scale"));
        return {{0, reduction}, {1, reduction}, {2, reduction}};
    }

    static void readSurface(const OssEvBlock &block, int y, const OssEvPlane &positions,
                            const OssEvPlane &normals)
    {
        const int width = block.region.width;
        if (block.surface != nullptr) {
            const int line = block.region.y + y;
            block.surface->positions(block.region.x, line, width,
                                     {positions.row(0), positions.row(1), positions.row(2)});
            block.surface->normals(block.region.x, line, width,
                                   {normals.row(0), normals.row(1), normals.row(2)});
            return;
        }
        for (int x = 0; x < width; ++x) {
            const Place place(block, x, y);
            positions.row(0)[x] = float(place.u - 0.5);
            positions.row(1)[x] = float(place.v - 0.5);
            positions.row(2)[x] = 0.0F;
            normals.row(0)[x] = 0.0F;
            normals.row(1)[x] = 0.0F;
            normals.row(2)[x] = 1.0F;
        }
    }

    OssEvSampler::Texel mixed(std::vector<OssEvSampler> *samplers, const OssEvPlane &positions,
                              const OssEvPlane &normals, int x) const
    {
        const std::array<double, 3> p{positions.row(0)[x], positions.row(1)[x],
                                      positions.row(2)[x]};
        // Seen from +z, +y and +x, u to the right and v upwards.
        const std::array<Place, 3> places{Place(p[0], p[1]), Place(p[0], -p[2]),
                                          Place(-p[2], p[1])};
        std::array<double, 3> weights{};
        double sum = 0.0;
        for (std::size_t i = 0; i < 3; ++i) {
            weights[i] = std::pow(std::abs(double(normals.row(2 - int(i))[x])), m_exponent);
            sum += weights[i];
        }
        OssEvSampler::Texel result{};
        for (std::size_t i = 0; i < 3; ++i) {
            if (!(weights[i] > sum * 1e-4))
                continue;
            const double u = places[i].u * m_scale + 0.5;
            const double v = places[i].v * m_scale + 0.5;
            const OssEvSampler::Texel texel = (*samplers)[m_image[i]].at(
                (u - std::floor(u)) * m_source.width,
                (1.0 - (v - std::floor(v))) * m_source.height);
            for (std::size_t k = 0; k < 4; ++k)
                result[k] += texel[k] * float(weights[i] / sum);
        }
        return result;
    }

    OssEvFrame m_source;
    double m_scale;
    double m_exponent;
    std::array<std::size_t, 3> m_image{};
};

} // namespace

void OssEvFamilies::addPlacement(std::vector<OssEvKernel> *kernels)
{
    using namespace OssEvDescribe;
    OssEvKernel warp;
    warp.name = "warp";
    warp.inputs = {{"Input", 0, true}, {"Vector", 3}};
    warp.outputs = {{"Output", 0}};
    warp.parameters = {real("Amount", 0.14, -1, 1),
                       choice("VectorSpace", {"Tangent", "UV", "Object"}),
                       choice("Border", {"Across Seams", "Clamp", "Repeat"})};
    warp.usesSurface = true;
    warp.keepsPrecision = true;
    warp.make = [](const OssEvKernelSetup &setup) {
        return std::make_shared<Warp>(setup.real("Amount"), setup.integer("VectorSpace"),
                                      setup.integer("Border"), setup.frame());
    };
    kernels->push_back(warp);

    OssEvKernel transform;
    transform.name = "transform";
    transform.inputs = {{"Input", 0, true}};
    transform.outputs = {{"Output", 0}};
    transform.parameters = {vector("Translate", {0, 0}), real("Rotate", 0, -360, 360),
                            vector("Scale", {1, 1}), vector("Pivot", {0.5, 0.5})};
    transform.keepsPrecision = true;
    transform.make = makeTransform;
    kernels->push_back(transform);

    OssEvKernel tiled;
    tiled.name = "tiled";
    tiled.inputs = {{"TileImage", 0, true, "TileImage"}};
    tiled.outputs = {{"Output", 0}};
    tiled.parameters = {text("TileImage"), real("RepeatU", 1, 0.01, 100),
                        real("RepeatV", 1, 0.01, 100), real("Rotation", 0, -360, 360),
                        flag("Mirror", false)};
    tiled.make = makeTiled;
    kernels->push_back(tiled);

    OssEvKernel triPlanar;
    triPlanar.name = "triPlanar";
    triPlanar.inputs = {{"frontImage", 4, true, "frontImage"},
                        {"topImage", 4, false, "topImage"},
                        {"rightImage", 4, false, "rightImage"}};
    triPlanar.outputs = {{"Output", 4}};
    triPlanar.parameters = {text("frontImage"), text("topImage"), text("rightImage"),
                            real("Scale", 1, 0.001, 100), real("Blend", 0.2, 0, 1)};
    triPlanar.usesSurface = true;
    triPlanar.make = [](const OssEvKernelSetup &setup) {
        return std::make_shared<TriPlanar>(setup);
    };
    kernels->push_back(triPlanar);
}
