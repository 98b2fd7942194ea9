// Noise without a size of its own: a number for each cell of a fine lattice.

#include "OssEvaluation/Kernels/Families.h"
#include "OssEvaluation/Kernels/Noise/NoiseRow.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "OssEvaluation/Kernels/Noise/Grain.cpp"
#include <hwy/foreach_target.h>
// The order matters: the line above includes this file once for each instruction set.
#include "OssEvaluation/Kernels/Noise/Feature-inl.h"
#include "OssEvaluation/Kernels/Noise/NoiseStrip-inl.h"

#ifndef OSSEV_GRAIN_VALUES
#define OSSEV_GRAIN_VALUES

namespace OssEvNoise {

struct Grain
{
    int distribution;
};

} // namespace OssEvNoise
#endif

HWY_BEFORE_NAMESPACE();

namespace OssEvSimd::HWY_NAMESPACE {
namespace {

using namespace OssEvNoise;

struct CellOf
{
    VI x;
    VI y;
    VI z;

    template <bool Flat>
    static HWY_INLINE CellOf at(const Place &p)
    {
        const Ints di;
        return {hn::ConvertTo(di, hn::Floor(p.x)), hn::ConvertTo(di, hn::Floor(p.y)),
                Flat ? hn::Zero(di) : hn::ConvertTo(di, hn::Floor(p.z))};
    }
};

struct White
{
    template <bool Flat>
    static HWY_INLINE V at(const Noise<Grain> &n, const Spot &s)
    {
        const CellOf c = CellOf::at<Flat>(s.p);
        const VW bits = hash(wrapped(c.x, s.period), wrapped(c.y, s.period), c.z, n.seed);
        if (n.own.distribution == 0)
            return unit(bits);
        // The sum of three chances is close to a bell.
        const V sum = hn::Add(hn::Add(tenBits<0>(bits), tenBits<10>(bits)), tenBits<20>(bits));
        return sum * (1.0F / 3.0F);
    }
};

/// White noise less what its surroundings have in common, which leaves high frequencies; a logistic curve
/// makes the values even again.
struct Blue
{
    template <bool Flat>
    static HWY_INLINE V at(const NoiseShared &n, const Spot &s)
    {
        const Ints di;
        const CellOf c = CellOf::at<Flat>(s.p);
        V around = zero();
        V middle = zero();
        const int depth = Flat ? 0 : 1;
        for (int z = -depth; z <= depth; ++z) {
            for (int y = -1; y <= 1; ++y) {
                for (int x = -1; x <= 1; ++x) {
                    const V chance = unit(hash(wrapped(hn::Add(c.x, hn::Set(di, x)), s.period),
                                               wrapped(hn::Add(c.y, hn::Set(di, y)), s.period),
                                               hn::Add(c.z, hn::Set(di, z)), n.seed));
                    if (x == 0 && y == 0 && z == 0)
                        middle = chance;
                    else
                        around = hn::Add(around, chance);
                }
            }
        }
        constexpr float Others = Flat ? 8.0F : 26.0F;
        const float deviation = std::sqrt((1.0F + 1.0F / Others) / 12.0F);
        const V high = hn::Sub(middle, around * (1.0F / Others));
        const V power = hn::Exp(Floats(), high * (-1.702F / deviation));
        return hn::Div(splat(1.0F), power + 1.0F);
    }
};

void white(const OssEvStrip &strip, const Noise<Grain> &n)
{
    noiseOver<White>(strip, n);
}

void blue(const OssEvStrip &strip, const Noise<Nothing> &n)
{
    noiseOver<Blue>(strip, n);
}

} // namespace
} // namespace OssEvSimd::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace OssEvSimd {
HWY_EXPORT(white);
HWY_EXPORT(blue);
} // namespace OssEvSimd

void OssEvFamilies::addGrain(std::vector<OssEvKernel> *kernels)
{
    using namespace OssEvNoise;
    using namespace OssEvSimd;
    using namespace OssEvDescribe;
    add(kernels, {"whiteNoise", 256, 0, 0, 0, {choice("Distribution", {"Uniform", "Bell"})}},
        [](const OssEvKernelSetup &setup) {
            return make(&HWY_DYNAMIC_DISPATCH(white), setup, Grain{setup.integer("Distribution")});
        });
    add(kernels, {"blueNoise", 256}, [](const OssEvKernelSetup &setup) {
        return make(&HWY_DYNAMIC_DISPATCH(blue), setup, Nothing{});
    });
}
#endif
