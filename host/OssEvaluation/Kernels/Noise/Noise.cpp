// Noise in space: gradient noise after K. Perlin, "Improving Noise" (2002), summed over octaves,
// and cellular noise after S. Worley, "A Cellular Texture Basis Function" (1996).

#include "OssEvaluation/Kernels/Families.h"
#include "OssEvaluation/Kernels/PointKernel.h"
#include "OssEvaluation/Kernels/Position.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "OssEvaluation/Kernels/Noise/Noise.cpp"
#include <hwy/foreach_target.h>
// The order matters: the line above includes this file once for each instruction set.
#include "OssEvaluation/Kernels/Noise/Lattice-inl.h"

#include <cmath>

#ifndef OSSEV_NOISE_VALUES
#define OSSEV_NOISE_VALUES

namespace OssEvNoise {

struct FractalValues
{
    enum Kind { Fractal, Turbulence, Ridged };

    bool vector;
    int octaves;
    float lacunarity;
    float gain;
    /// 1 by the sum of the octaves' weights.
    float normaliser;
    int kind;
    std::uint32_t seed;
};

struct CellularValues
{
    enum Distance { Euclidean, Manhattan, Chebyshev };

    enum Feature { Nearest, Second, Difference, Id };

    int feature;
    int distance;
    float jitter;
    std::uint32_t seed;
};

} // namespace OssEvNoise
#endif

HWY_BEFORE_NAMESPACE();

namespace OssEvSimd::HWY_NAMESPACE {
namespace {

using namespace OssEvNoise;

// Sum of octaves; -1 to 1 for the plain kind, 0 to 1 for the others.
template <bool Flat>
HWY_INLINE V octaves(const FractalValues &values, Place p, std::uint32_t seed)
{
    V sum = zero();
    float weight = values.normaliser;
    for (int octave = 0; octave < values.octaves; ++octave) {
        V noise = gradientNoise<Flat>(p, seed + std::uint32_t(octave) * 101U);
        if (values.kind != FractalValues::Fractal)
            noise = hn::Abs(noise);
        if (values.kind == FractalValues::Ridged) {
            noise = hn::Sub(splat(1.0F), noise);
            noise = hn::Mul(noise, noise);
        }
        sum = hn::MulAdd(noise, splat(weight), sum);
        weight *= values.gain;
        const V lacunarity = splat(values.lacunarity);
        p = {hn::Mul(p.x, lacunarity), hn::Mul(p.y, lacunarity), hn::Mul(p.z, lacunarity)};
    }
    return sum;
}

HWY_INLINE Place placeAt(const OssEvPositions &positions, std::size_t i, V frequency)
{
    return {hn::Mul(load(positions.plane[0] + i), frequency),
            hn::Mul(load(positions.plane[1] + i), frequency),
            hn::Mul(load(positions.plane[2] + i), frequency)};
}

template <bool Flat>
void fractalIn(const OssEvStrip &strip, const FractalValues &values,
               const OssEvPositions &positions)
{
    const V half = splat(0.5F);
    for (std::size_t i = 0; i < strip.texels(); i += hn::Lanes(Floats())) {
        const Place p = placeAt(positions, i, load(strip.inputs[0].plane[0] + i));
        const bool plain = values.kind == FractalValues::Fractal;
        if (!values.vector) {
            V sum = octaves<Flat>(values, p, values.seed);
            if (plain)
                sum = hn::MulAdd(sum, half, half);
            store(clamp(sum, zero(), splat(1.0F)), strip.output[0] + i);
            continue;
        }
        for (std::uint32_t k = 0; k < 3; ++k) {
            V sum = octaves<Flat>(values, p, values.seed + k * 7919U);
            if (!plain)
                sum = hn::MulSub(sum, splat(2.0F), splat(1.0F));
            store(sum, strip.output[k] + i);
        }
    }
}

void fractalNoise(const OssEvStrip &strip, const FractalValues &values)
{
    const OssEvPositions positions = OssEvPositions::of(strip, 1);
    if (positions.flat)
        fractalIn<true>(strip, values, positions);
    else
        fractalIn<false>(strip, values, positions);
}

struct Nearest
{
    V first;
    V second;
    V id;
};

HWY_INLINE V distanceOf(int kind, V x, V y, V z)
{
    const V ax = hn::Abs(x);
    const V ay = hn::Abs(y);
    const V az = hn::Abs(z);
    if (kind == CellularValues::Manhattan)
        return hn::Add(ax, hn::Add(ay, az));
    if (kind == CellularValues::Chebyshev)
        return hn::Max(ax, hn::Max(ay, az));
    return hn::MulAdd(x, x, hn::MulAdd(y, y, hn::Mul(z, z)));
}

// Offset of a cell's point from the cell's first corner, of `bits` shifted by 10 for each axis.
HWY_INLINE V pointIn(VW bits, float jitter)
{
    const Words d;
    const VI low = hn::BitCast(Ints(), hn::And(bits, hn::Set(d, 0x3FFU)));
    const V chance = hn::Mul(hn::ConvertTo(Floats(), low), splat(1.0F / 1023.0F));
    return hn::MulAdd(hn::Sub(chance, splat(0.5F)), splat(jitter), splat(0.5F));
}

// The nearest and second nearest point in the surrounding cells; only z = 0 when `flat`.
HWY_INLINE Nearest nearestPoints(const CellularValues &values, const Place &p, bool flat)
{
    const Floats d;
    const Ints di;
    const V cell[3] = {hn::Floor(p.x), hn::Floor(p.y), flat ? zero() : hn::Floor(p.z)};
    const VI base[3] = {hn::ConvertTo(di, cell[0]), hn::ConvertTo(di, cell[1]),
                        hn::ConvertTo(di, cell[2])};
    const V in[3] = {hn::Sub(p.x, cell[0]), hn::Sub(p.y, cell[1]), hn::Sub(p.z, cell[2])};
    Nearest best{splat(1e30F), splat(1e30F), zero()};
    const int depth = flat ? 0 : 1;
    for (int z = -depth; z <= depth; ++z) {
        for (int y = -1; y <= 1; ++y) {
            for (int x = -1; x <= 1; ++x) {
                const VW bits = hash(hn::Add(base[0], hn::Set(di, x)),
                                     hn::Add(base[1], hn::Set(di, y)),
                                     hn::Add(base[2], hn::Set(di, z)), values.seed);
                const V dx = hn::Sub(hn::Add(pointIn(bits, values.jitter), hn::Set(d, float(x))),
                                     in[0]);
                const V dy = hn::Sub(
                    hn::Add(pointIn(hn::ShiftRight<10>(bits), values.jitter), hn::Set(d, float(y))),
                    in[1]);
                const V dz = flat
                                 ? zero()
                                 : hn::Sub(hn::Add(pointIn(hn::ShiftRight<20>(bits), values.jitter),
                                                   hn::Set(d, float(z))),
                                           in[2]);
                const V distance = distanceOf(values.distance, dx, dy, dz);
                const auto nearer = hn::Lt(distance, best.first);
                best.second = hn::Min(best.second, hn::Max(distance, best.first));
                best.first = hn::Min(distance, best.first);
                best.id = hn::IfThenElse(nearer, hn::BitCast(d, bits), best.id);
            }
        }
    }
    return best;
}

HWY_INLINE V feature(const CellularValues &values, const Nearest &found)
{
    const bool squared = values.distance == CellularValues::Euclidean;
    const V first = squared ? hn::Sqrt(found.first) : found.first;
    const V second = squared ? hn::Sqrt(found.second) : found.second;
    if (values.feature == CellularValues::Nearest)
        return first;
    if (values.feature == CellularValues::Second)
        return second;
    if (values.feature == CellularValues::Difference)
        return hn::Sub(second, first);
    const Words d;
    // The bits have placed the point; another round makes the number independent of that.
    const VW bits = hn::Mul(hn::BitCast(d, found.id), hn::Set(d, 0x9E3779B1U));
    return unit(hn::Xor(bits, hn::ShiftRight<15>(bits)));
}

void cellular(const OssEvStrip &strip, const CellularValues &values)
{
    const OssEvPositions positions = OssEvPositions::of(strip, 1);
    for (std::size_t i = 0; i < strip.texels(); i += hn::Lanes(Floats())) {
        const Place p = placeAt(positions, i, load(strip.inputs[0].plane[0] + i));
        store(feature(values, nearestPoints(values, p, positions.flat)), strip.output[0] + i);
    }
}

} // namespace
} // namespace OssEvSimd::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace OssEvSimd {
HWY_EXPORT(fractalNoise);
HWY_EXPORT(cellular);
} // namespace OssEvSimd

namespace {

using namespace OssEvNoise;
using namespace OssEvSimd;
using Operation = std::shared_ptr<const OssEvOperation>;

Operation makeFractal(const OssEvKernelSetup &setup)
{
    const int octaves = setup.integer("Octaves");
    const double gain = setup.real("Gain");
    double sum = 0.0;
    double weight = 1.0;
    for (int i = 0; i < octaves; ++i) {
        sum += weight;
        weight *= gain;
    }
    const FractalValues values{setup.output() == 1,
                               octaves,
                               float(setup.real("Lacunarity")),
                               float(gain),
                               float(1.0 / sum),
                               setup.integer("Kind"),
                               std::uint32_t(setup.integer("Seed"))};
    return OssEvMakePoint(&HWY_DYNAMIC_DISPATCH(fractalNoise), values,
                          {OssEvScalar(setup.real("Frequency"))});
}

Operation makeCellular(const OssEvKernelSetup &setup)
{
    const bool id = setup.output() == 1;
    const CellularValues values{id ? int(CellularValues::Id) : setup.integer("Feature"),
                                setup.integer("Distance"), float(setup.real("Jitter")),
                                std::uint32_t(setup.integer("Seed"))};
    return OssEvMakePoint(&HWY_DYNAMIC_DISPATCH(cellular), values,
                          {OssEvScalar(setup.real("Scale"))});
}

} // namespace

void OssEvFamilies::addNoise(std::vector<OssEvKernel> *kernels)
{
    using namespace OssEvDescribe;
    OssEvKernel fractal;
    fractal.name = "fractalNoise";
    fractal.inputs = {{"Frequency", 1}, {"Position", 3}};
    fractal.outputs = {{"Output", 1}, {"Vector", 3, true}};
    fractal.parameters = {real("Frequency", 4, 0.01, 500),
                          integer("Octaves", 6, 1, 12),
                          real("Lacunarity", 2, 1, 4),
                          real("Gain", 0.5, 0, 1),
                          choice("Kind", {"Fractal", "Turbulence", "Ridged"}),
                          integer("Seed", 1, 0, 9999)};
    fractal.usesSurface = true;
    fractal.costly = true;
    fractal.make = makeFractal;
    kernels->push_back(fractal);

    OssEvKernel cellular;
    cellular.name = "cellular";
    cellular.inputs = {{"Scale", 1}, {"Position", 3}};
    cellular.outputs = {{"Output", 1}, {"Cell Id", 1}};
    cellular.parameters = {real("Scale", 8, 0.1, 500), real("Jitter", 1, 0, 1),
                           choice("Distance", {"Euclidean", "Manhattan", "Chebyshev"}),
                           choice("Feature", {"F1", "F2", "F2 minus F1"}),
                           integer("Seed", 1, 0, 9999)};
    cellular.usesSurface = true;
    cellular.costly = true;
    cellular.make = makeCellular;
    kernels->push_back(cellular);
}
#endif
