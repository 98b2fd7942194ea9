// What lies around scattered points: distances, borders, facets, cracks. Borders after I. Quilez,
// "Voronoi Borders" (2012).

#include "OssEvaluation/Kernels/Families.h"
#include "OssEvaluation/Kernels/Noise/NoiseRow.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "OssEvaluation/Kernels/Noise/Cells.cpp"
#include <hwy/foreach_target.h>
// The order matters: the line above includes this file once for each instruction set.
#include "OssEvaluation/Kernels/Noise/Feature-inl.h"
#include "OssEvaluation/Kernels/Noise/NoiseStrip-inl.h"

#ifndef OSSEV_CELLS_VALUES
#define OSSEV_CELLS_VALUES

namespace OssEvNoise {

struct Points
{
    enum Feature { First, Second, Difference, Edges, Id };

    enum Distance { Euclidean, Manhattan, Chebyshev };

    int feature;
    int distance;
    float jitter;
};

struct Facets
{
    float jitter;
    float detail;
};

struct Cracks
{
    float jitter;
    float width;
    float soft;
    float distort;
    /// Of finer cracks within the pieces.
    float fine;
};

} // namespace OssEvNoise
#endif

HWY_BEFORE_NAMESPACE();

namespace OssEvSimd::HWY_NAMESPACE {
namespace {

using namespace OssEvNoise;

struct Found
{
    V first;
    V second;
    Place to;
    V id;
};

HWY_INLINE Found nothingFound()
{
    return {splat(1e30F), splat(1e30F), {zero(), zero(), zero()}, zero()};
}

struct FindNearest
{
    int distance;
    Found *best;

    HWY_INLINE V length(const Place &to) const
    {
        const V x = hn::Abs(to.x);
        const V y = hn::Abs(to.y);
        const V z = hn::Abs(to.z);
        if (distance == Points::Manhattan)
            return hn::Add(x, hn::Add(y, z));
        if (distance == Points::Chebyshev)
            return hn::Max(x, hn::Max(y, z));
        return dot(to, to);
    }

    HWY_INLINE void at(VW bits, const Place &to) const
    {
        const V far = length(to);
        const auto nearer = hn::Lt(far, best->first);
        best->second = hn::Min(best->second, hn::Max(far, best->first));
        best->first = hn::Min(far, best->first);
        best->to = {hn::IfThenElse(nearer, to.x, best->to.x),
                    hn::IfThenElse(nearer, to.y, best->to.y),
                    hn::IfThenElse(nearer, to.z, best->to.z)};
        best->id = hn::IfThenElse(nearer, hn::BitCast(Floats(), bits), best->id);
    }
};

/// To the plane halfway between the nearest point and each other.
struct FindBorder
{
    Place nearest;
    V *best;

    HWY_INLINE void at(VW /*bits*/, const Place &to) const
    {
        const Place across = to - nearest;
        const V square = dot(across, across);
        const V far = hn::Div(dot(to + nearest, across) * 0.5F,
                              hn::Sqrt(hn::Max(square, splat(1e-12F))));
        *best = hn::Min(*best, hn::IfThenElse(hn::Gt(square, splat(1e-6F)), far, splat(1e30F)));
    }
};

template <bool Flat>
HWY_NOINLINE V borderOf(const Spot &s, const Found &found, float jitter, std::uint32_t seed)
{
    V best = splat(2.0F);
    aroundSpot<Flat>(s, jitter, seed, Flat ? 2 : 1, FindBorder{found.to, &best});
    return hn::Max(best, zero());
}

struct Worley
{
    template <bool Flat>
    static HWY_INLINE V at(const Noise<Points> &n, const Spot &s)
    {
        Found best = nothingFound();
        aroundSpot<Flat>(s, n.own.jitter, n.seed, 1, FindNearest{n.own.distance, &best});
        if (n.own.feature == Points::Id || n.output == OssEvNoise::Extra)
            return unit(otherBits(hn::BitCast(Words(), best.id), 3));
        if (n.own.feature == Points::Edges)
            return borderOf<Flat>(s, best, n.own.jitter, n.seed) * 2.0F;
        const bool squared = n.own.distance == Points::Euclidean;
        const V first = squared ? hn::Sqrt(best.first) : best.first;
        const V second = squared ? hn::Sqrt(best.second) : best.second;
        return n.own.feature == Points::First    ? first
               : n.own.feature == Points::Second ? second * 0.8F
                                                 : hn::Sub(second, first);
    }
};

/// Blocks that stand askew: the distance to the nearest point as each point measures it along axes of its
/// own, which makes flat faces and sharp edges.
struct FindBlock
{
    bool flat;
    Found *best;

    template <bool Flat>
    HWY_INLINE V length(VW bits, const Place &to) const
    {
        const Place a = chanceDirection<Flat>(otherBits(bits, 11));
        const V along = hn::Abs(dot(a, to));
        if (Flat) {
            const V across = hn::Abs(hn::MulSub(a.x, to.y, hn::Mul(a.y, to.x)));
            return hn::Max(along, across * 1.6F);
        }
        const V second = hn::Abs(dot(chanceDirection<Flat>(otherBits(bits, 12)), to));
        const V third = hn::Abs(dot(chanceDirection<Flat>(otherBits(bits, 13)), to));
        const V size = hn::Sqrt(dot(to, to)) * 0.6F;
        return hn::Max(hn::Max(along, second * 1.3F), hn::Max(third, size));
    }

    HWY_INLINE void at(VW bits, const Place &to) const
    {
        const V far = flat ? length<true>(bits, to) : length<false>(bits, to);
        const auto nearer = hn::Lt(far, best->first);
        best->first = hn::Min(far, best->first);
        const Place tilt = flat ? chanceDirection<true>(otherBits(bits, 14))
                                : chanceDirection<false>(otherBits(bits, 14));
        const V face = hn::MulAdd(dot(tilt, to), splat(0.75F), tenBits<20>(otherBits(bits, 15)))
                       - 0.5F;
        best->id = hn::IfThenElse(nearer, face, best->id);
    }
};

/// Each block is a plane of a height and a tilt of its own; finer ones lie on coarser ones.
struct Crystal
{
    template <bool Flat>
    static HWY_INLINE V at(const Noise<Facets> &n, const Spot &s)
    {
        V sum = zero();
        float weight = 0.8F;
        for (int octave = 0; octave < 3; ++octave) {
            Found best = nothingFound();
            aroundSpot<Flat>(finer(s, float(1 << octave)), n.own.jitter, octaveSeed(n.seed, octave),
                             1, FindBlock{Flat, &best});
            const V edge = best.first * 0.35F - 0.12F;
            sum = hn::MulAdd(hn::Sub(best.id, edge), splat(weight), sum);
            weight *= n.own.detail;
        }
        return sum + 0.5F;
    }
};

struct VoronoiCracks
{
    template <bool Flat>
    static HWY_NOINLINE V crack(const Noise<Cracks> &n, const Spot &s, float width,
                                std::uint32_t seed)
    {
        Found best = nothingFound();
        aroundSpot<Flat>(s, n.own.jitter, seed, 1, FindNearest{Points::Euclidean, &best});
        const V border = borderOf<Flat>(s, best, n.own.jitter, seed);
        const V open = lineCover(border, splat(width * 0.5F), s.texel);
        const V slope = saturate(1.0F - border * (1.0F / std::max(n.own.soft * 0.5F, 1e-4F)));
        return hn::Max(open, hn::Mul(slope, slope) * 0.8F);
    }

    template <bool Flat>
    static HWY_INLINE V at(const Noise<Cracks> &n, const Spot &s)
    {
        const Spot moved = warped<Flat>(finer(s, 1.0F), NoiseLayers{3, 2.0F, 0.5F, 0.5714F},
                                        n.own.distort, n.seed);
        V cracks = crack<Flat>(n, moved, n.own.width, n.seed);
        if (n.own.fine > 0.0F) {
            const Spot small = finer(moved, 3.0F);
            cracks = hn::Max(cracks, crack<Flat>(n, small, n.own.width, n.seed + 5U) * n.own.fine);
        }
        return 1.0F - cracks;
    }
};

void worley(const OssEvStrip &strip, const Noise<Points> &n)
{
    noiseOver<Worley>(strip, n);
}

void crystal(const OssEvStrip &strip, const Noise<Facets> &n)
{
    noiseOver<Crystal>(strip, n);
}

void cracks(const OssEvStrip &strip, const Noise<Cracks> &n)
{
    noiseOver<VoronoiCracks>(strip, n);
}

} // namespace
} // namespace OssEvSimd::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace OssEvSimd {
HWY_EXPORT(worley);
HWY_EXPORT(crystal);
HWY_EXPORT(cracks);
} // namespace OssEvSimd

void OssEvFamilies::addCells(std::vector<OssEvKernel> *kernels)
{
    using namespace OssEvNoise;
    using namespace OssEvSimd;
    using namespace OssEvDescribe;
    using Setup = OssEvKernelSetup;
    add(kernels,
        {"worleyNoise",
         8,
         0,
         0,
         0,
         {choice("Feature", {"F1", "F2", "F2 minus F1", "Edges", "Cell Id"}),
          choice("Distance", {"Euclidean", "Manhattan", "Chebyshev"}), real("Jitter", 1, 0, 1)},
         {{"Cell Id", 1}}},
        [](const Setup &setup) {
            const Points own{setup.integer("Feature"), setup.integer("Distance"),
                             float(setup.real("Jitter"))};
            return make(&HWY_DYNAMIC_DISPATCH(worley), setup, own);
        });
    add(kernels, {"crystalNoise", 5, 0, 0, 0, {real("Jitter", 1, 0, 1), real("Detail", 0.4, 0, 1)}},
        [](const Setup &setup) {
            const Facets own{float(setup.real("Jitter")), float(setup.real("Detail"))};
            return make(&HWY_DYNAMIC_DISPATCH(crystal), setup, own);
        });
    add(kernels,
        {"voronoiCracks",
         6,
         0,
         0,
         0,
         {real("Width", 0.04, 0, 0.5), real("Slope", 0.12, 0, 1), real("Jitter", 1, 0, 1),
          real("Distortion", 0.15, 0, 1), real("FineCracks", 0.4, 0, 1)}},
        [](const Setup &setup) {
            const Cracks own{float(setup.real("Jitter")), float(setup.real("Width")),
                             float(setup.real("Slope")), float(setup.real("Distortion")),
                             float(setup.real("FineCracks"))};
            return make(&HWY_DYNAMIC_DISPATCH(cracks), setup, own);
        });
}
#endif
