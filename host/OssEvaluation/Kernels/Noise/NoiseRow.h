#pragma once

#include "OssEvaluation/Graph/OssEvKernel.h"
#include "OssEvaluation/Kernels/PointKernel.h"

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

/// What all kinds of noise have in common: where they are read, how a number becomes gray or a colour,
/// and the parameters that say so.
namespace OssEvNoise {

/// Octaves that are added up.
struct NoiseLayers
{
    int octaves = 1;
    float lacunarity = 2.0F;
    float gain = 0.5F;
    /// 1 by the sum of the octaves' weights.
    float normaliser = 1.0F;

    static NoiseLayers of(int octaves, double gain, double lacunarity = 2.0);
    /// Of a kind whose octaves are parameters.
    static NoiseLayers of(const OssEvKernelSetup &setup);
};

enum Output { Gray, Colored, Extra };

struct NoiseShared
{
    int output = Gray;
    /// Texture coordinates even where there is a surface.
    bool flat = false;
    bool tile = false;
    float scale = 1.0F;
    NoiseLayers layers;
    float middle = 0.5F; ///< what becomes a half
    float contrast = 1.0F;
    bool invert = false;
    std::array<float, 4> low{};
    std::array<float, 4> high{};
    std::uint32_t seed = 0;

    static NoiseShared of(const OssEvKernelSetup &setup);
};

/// With the numbers that one kind has beyond them.
template <class Own>
struct Noise : NoiseShared
{
    Own own;
};

/// A kind of noise as it is described: defaults of what all have, and parameters of its own.
struct NoiseRow
{
    std::string name;
    double scale = 8.0;
    /// 0 where there are no octaves to choose.
    int octaves = 0;
    double gain = 0.5;
    double contrast = 0.0;
    std::vector<OssEvParameterDescription> own{};
    /// A third output, where it has one.
    std::vector<OssEvKernelOutput> extra{};
};

using Make = std::shared_ptr<const OssEvOperation> (*)(const OssEvKernelSetup &setup);

void add(std::vector<OssEvKernel> *kernels, const NoiseRow &row, Make make);

template <class Own>
std::shared_ptr<const OssEvOperation> make(void (*function)(const OssEvStrip &, const Noise<Own> &),
                                           const OssEvKernelSetup &setup, const Own &own,
                                           const NoiseLayers &layers = {})
{
    Noise<Own> noise;
    static_cast<NoiseShared &>(noise) = NoiseShared::of(setup);
    noise.layers = layers;
    noise.own = own;
    return OssEvMakePoint(function, noise, {OssEvScalar(setup.real("Scale"))});
}

struct Nothing
{};

} // namespace OssEvNoise
