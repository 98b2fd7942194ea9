// Noise of waves in cells: after A. Lagae and others, "Procedural Noise using Sparse Gabor Convolution"
// (2009), and T. Tricard and others, "Procedural Phasor Noise" (2019).

#include "OssEvaluation/Kernels/Families.h"
#include "OssEvaluation/Kernels/Noise/NoiseRow.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "OssEvaluation/Kernels/Noise/Waves.cpp"
#include <hwy/foreach_target.h>
// The order matters: the line above includes this file once for each instruction set.
#include "OssEvaluation/Kernels/Noise/Feature-inl.h"
#include "OssEvaluation/Kernels/Noise/NoiseStrip-inl.h"

#ifndef OSSEV_WAVE_NOISE_VALUES
#define OSSEV_WAVE_NOISE_VALUES

namespace OssEvNoise {

struct Waves
{
    enum Profile { Sine, Triangle, Square, Saw };

    /// To a cell.
    float frequency;
    float cosine;
    float sine;
    float spread;
    int profile;

    static Waves of(const OssEvKernelSetup &setup, int profile)
    {
        const double angle = setup.real("Direction") * 0.017453292519943295;
        return {float(setup.real("Waves")), float(std::cos(angle)), float(std::sin(angle)),
                float(setup.real("Spread")), profile};
    }
};

} // namespace OssEvNoise
#endif

HWY_BEFORE_NAMESPACE();

namespace OssEvSimd::HWY_NAMESPACE {
namespace {

using namespace OssEvNoise;

/// Adds the waves of a cell, as a part in phase and one a quarter behind. Where `InPhase`, crests of
/// neighbours meet as they would in phasor noise.
template <bool Flat, bool InPhase>
struct AddWave
{
    const Waves &w;
    V *real;
    V *imaginary;

    HWY_INLINE void at(VW bits, const Place &to) const
    {
        const V near = saturate(1.0F - dot(to, to) * (1.0F / 1.44F));
        const V weight = hn::Mul(hn::Mul(near, near), near);
        const VW more = otherBits(bits, 21);
        Place direction{splat(w.cosine), splat(w.sine), zero()};
        if (Flat) {
            const V turns = (tenBits<0>(more) - 0.5F) * (w.spread * 0.5F);
            const V c = cosineOfTurns(turns);
            const V s = sineOfTurns(turns);
            direction = {hn::NegMulAdd(direction.y, s, hn::Mul(direction.x, c)),
                         hn::MulAdd(direction.y, c, hn::Mul(direction.x, s)), zero()};
        } else {
            direction = towards(direction, chanceDirection<false>(more), w.spread);
        }
        const V phase = hn::MulAdd(dot(direction, to), splat(w.frequency), tenBits<20>(more));
        *real = hn::MulAdd(weight, cosineOfTurns(phase), *real);
        if (InPhase)
            *imaginary = hn::MulAdd(weight, sineOfTurns(phase), *imaginary);
    }
};

struct Gabor
{
    template <bool Flat>
    static HWY_INLINE V at(const Noise<Waves> &n, const Spot &s)
    {
        V real = zero();
        V imaginary = zero();
        aroundSpot<Flat>(s, 1.0F, n.seed, 1, AddWave<Flat, false>{n.own, &real, &imaginary});
        aroundSpot<Flat>(s, 1.0F, n.seed + 1U, 1, AddWave<Flat, false>{n.own, &real, &imaginary});
        return real * 0.4F + 0.5F;
    }
};

struct Phasor
{
    template <bool Flat>
    static HWY_INLINE V at(const Noise<Waves> &n, const Spot &s)
    {
        V real = zero();
        V imaginary = zero();
        aroundSpot<Flat>(s, 1.0F, n.seed, 1, AddWave<Flat, true>{n.own, &real, &imaginary});
        aroundSpot<Flat>(s, 1.0F, n.seed + 1U, 1, AddWave<Flat, true>{n.own, &real, &imaginary});
        const V turns = turnsOf(imaginary, real);
        if (n.own.profile == Waves::Saw)
            return turns + 0.5F;
        if (n.own.profile == Waves::Triangle)
            return hn::Abs(turns) * 2.0F;
        const V sine = cosineOfTurns(turns);
        if (n.own.profile == Waves::Sine)
            return sine * 0.5F + 0.5F;
        // A crest passes over so many texels as are a part of a wave.
        const V edge = s.texel * (6.2831853F * n.own.frequency);
        return saturate(hn::Div(sine, edge) + 0.5F);
    }
};

void gabor(const OssEvStrip &strip, const Noise<Waves> &n)
{
    noiseOver<Gabor>(strip, n);
}

void phasor(const OssEvStrip &strip, const Noise<Waves> &n)
{
    noiseOver<Phasor>(strip, n);
}

} // namespace
} // namespace OssEvSimd::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace OssEvSimd {
HWY_EXPORT(gabor);
HWY_EXPORT(phasor);
} // namespace OssEvSimd

void OssEvFamilies::addWaveNoises(std::vector<OssEvKernel> *kernels)
{
    using namespace OssEvNoise;
    using namespace OssEvSimd;
    using namespace OssEvDescribe;
    using Setup = OssEvKernelSetup;
    add(kernels,
        {"gaborNoise",
         8,
         0,
         0,
         0,
         {real("Waves", 2, 0.1, 20), real("Direction", 0, -360, 360), real("Spread", 0.15, 0, 1)}},
        [](const Setup &setup) {
            return make(&HWY_DYNAMIC_DISPATCH(gabor), setup, Waves::of(setup, Waves::Sine));
        });
    add(kernels,
        {"phasorNoise",
         6,
         0,
         0,
         0,
         {choice("Profile", {"Sine", "Triangle", "Square", "Saw"}), real("Waves", 2, 0.1, 20),
          real("Direction", 0, -360, 360), real("Spread", 0.5, 0, 1)}},
        [](const Setup &setup) {
            return make(&HWY_DYNAMIC_DISPATCH(phasor), setup,
                        Waves::of(setup, setup.integer("Profile")));
        });
}
#endif
