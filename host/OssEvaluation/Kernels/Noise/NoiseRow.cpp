#include "OssEvaluation/Kernels/Noise/NoiseRow.h"

#include <algorithm>

namespace OssEvNoise {

NoiseLayers NoiseLayers::of(int octaves, double gain, double lacunarity)
{
    double sum = 0.0;
    double weight = 1.0;
    for (int i = 0; i < octaves; ++i) {
        sum += weight;
        weight *= gain;
    }
    return {octaves, float(lacunarity), float(gain), float(1.0 / sum)};
}

NoiseLayers NoiseLayers::of(const OssEvKernelSetup &setup)
{
    return of(setup.integer("Octaves"), setup.real("Roughness"));
}

NoiseShared NoiseShared::of(const OssEvKernelSetup &setup)
{
    NoiseShared noise;
    noise.output = setup.output();
    noise.flat = setup.integer("Space") == 1;
    noise.tile = setup.flag("Tile");
    noise.scale = float(setup.real("Scale"));
    noise.middle = float(1.0 - setup.real("Balance"));
    noise.contrast = float(1.0 / std::max(1.0 - setup.real("Contrast"), 0.01));
    noise.invert = setup.flag("Invert");
    noise.low = setup.premultiplied("ColorA");
    noise.high = setup.premultiplied("ColorB");
    noise.seed = std::uint32_t(setup.integer("Seed")) * 2654435769U;
    return noise;
}

void add(std::vector<OssEvKernel> *kernels, const NoiseRow &row, Make make)
{
    using namespace OssEvDescribe;
    OssEvKernel kernel;
    kernel.name = row.name;
    kernel.inputs = {{"Scale", 1}, {"Position", 3}};
    kernel.outputs = {{"Output", 1}, {"Color", 4}};
    kernel.outputs.insert(kernel.outputs.end(), row.extra.begin(), row.extra.end());
    kernel.parameters = {real("Scale", row.scale, 0.01, 2000)};
    if (row.octaves > 0) {
        kernel.parameters.push_back(integer("Octaves", row.octaves, 1, 12));
        kernel.parameters.push_back(real("Roughness", row.gain, 0, 1));
    }
    kernel.parameters.insert(kernel.parameters.end(), row.own.begin(), row.own.end());
    const std::vector<OssEvParameterDescription> shared{choice("Space", {"Surface", "UV"}),
                                                        flag("Tile", true),
                                                        real("Balance", 0.5, 0, 1),
                                                        real("Contrast", row.contrast, 0, 1),
                                                        flag("Invert", false),
                                                        color("ColorA", {0, 0, 0, 1}),
                                                        color("ColorB", {1, 1, 1, 1}),
                                                        integer("Seed", 1, 0, 9999)};
    kernel.parameters.insert(kernel.parameters.end(), shared.begin(), shared.end());
    kernel.usesSurface = true;
    kernel.costly = true;
    kernel.make = make;
    kernels->push_back(kernel);
}

} // namespace OssEvNoise
