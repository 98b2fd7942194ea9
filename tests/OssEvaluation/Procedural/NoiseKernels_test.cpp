// Kinds of noise, against scalar references in double precision.

#include "OssEvaluation/KernelBench.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace {

constexpr int Width = 256;
constexpr int Height = 128;

using Point = std::array<double, 3>;
using Noise = std::function<double(const Point &p, std::uint32_t seed, int period)>;

std::uint32_t hash(int x, int y, int z, std::uint32_t seed)
{
    std::uint32_t h = std::uint32_t(x) * 0x9E3779B1U ^ std::uint32_t(y) * 0x85EBCA77U
                      ^ std::uint32_t(z) * 0xC2B2AE3DU ^ seed * 0x27D4EB2FU;
    h = (h ^ (h >> 15)) * 0x2C1B3C6DU;
    h = (h ^ (h >> 12)) * 0x297A2D39U;
    return h ^ (h >> 15);
}

std::uint32_t other(std::uint32_t bits, std::uint32_t salt)
{
    std::uint32_t h = (bits ^ salt * 0x9E3779B1U) * 0x2C1B3C6DU;
    h = (h ^ (h >> 15)) * 0x297A2D39U;
    return h ^ (h >> 16);
}

double unit(std::uint32_t bits)
{
    return double(bits >> 8) / 16777216.0;
}

int wrapped(int i, int period)
{
    return period == 0 ? i : ((i % period) + period) % period;
}

std::uint32_t seedOf(int seed)
{
    return std::uint32_t(seed) * 2654435769U;
}

double slope(std::uint32_t bits, double x, double y, double z)
{
    const bool high = (bits & 8U) != 0;
    const bool low = (bits & 4U) != 0;
    const double a = high ? y : x;
    const double b = high || low ? (high && low ? x : z) : y;
    return ((bits & 1U) != 0 ? -a : a) + ((bits & 2U) != 0 ? -b : b);
}

double fade(double t)
{
    return t * t * t * (t * (t * 6 - 15) + 10);
}

/// Between the eight corners of a lattice cell; a lattice that repeats lies in the plane.
double between(const Point &p, int period,
               const std::function<double(std::array<int, 3> corner, Point from)> &at)
{
    double sum = 0.0;
    for (int corner = 0; corner < 8; ++corner) {
        std::array<int, 3> cell{};
        Point from{};
        double weight = period > 0 && corner >= 4 ? 0.0 : 1.0;
        for (int k = 0; k < (period > 0 ? 2 : 3); ++k) {
            const auto axis = std::size_t(k);
            const int low = int(std::floor(p[axis]));
            const int step = corner >> k & 1;
            const double t = fade(p[axis] - low);
            weight *= step == 1 ? t : 1.0 - t;
            cell[axis] = k < 2 ? wrapped(low + step, period) : low + step;
            from[axis] = p[axis] - low - step;
        }
        if (weight > 0.0)
            sum += weight * at(cell, from);
    }
    return sum;
}

double gradient(const Point &p, std::uint32_t seed, int period)
{
    return between(p, period, [seed](std::array<int, 3> c, Point from) {
        return slope(hash(c[0], c[1], c[2], seed), from[0], from[1], from[2]);
    });
}

double value(const Point &p, std::uint32_t seed, int period)
{
    return between(p, period, [seed](std::array<int, 3> c, Point /*from*/) {
        return unit(hash(c[0], c[1], c[2], seed)) * 2.0 - 1.0;
    });
}

/// The sum over all points of the lattice that are near, of which each has even rows and odd rows.
double simplexInPlane(const Point &p, std::uint32_t seed, int period)
{
    double sum = 0.0;
    const int row = int(std::floor(p[1]));
    for (int j = row - 2; j <= row + 3; ++j) {
        const int first = int(std::floor(p[0] + 0.5 * j));
        for (int i = first - 2; i <= first + 3; ++i) {
            const double x = p[0] - (i - 0.5 * j);
            const double y = p[1] - j;
            const double near = std::max(0.8 - x * x - y * y, 0.0);
            const int turns = period == 0 ? 0 : int(std::floor((j + 0.5) / period));
            const std::uint32_t bits = hash(wrapped(i - turns * period / 2, period),
                                            j - turns * period, 0, seed);
            sum += std::pow(near, 4) * slope(bits, x, y, 0.0);
        }
    }
    return std::clamp(sum * 8.0, -1.0, 1.0);
}

struct Layers
{
    int octaves;
    double roughness;
    int period; ///< of the first
};

Point finer(const Point &p, double times)
{
    return {p[0] * times + 0.37 * (times - 1), p[1] * times + 0.71 * (times - 1),
            p[2] * times + 0.19 * (times - 1)};
}

double layered(const Noise &noise, const Point &p, const Layers &layers, std::uint32_t seed,
               bool folded = false)
{
    double sum = 0.0;
    double all = 0.0;
    double weight = 1.0;
    for (int octave = 0; octave < layers.octaves; ++octave) {
        const double here = noise(finer(p, 1 << octave), seed + std::uint32_t(octave) * 101U,
                                  layers.period << octave);
        sum += weight * (folded ? std::abs(here) : here);
        all += weight;
        weight *= layers.roughness;
    }
    return sum / all;
}

double ridged(const Point &p, const Layers &layers, std::uint32_t seed)
{
    double sum = 0.0;
    double all = 0.0;
    double weight = 1.0;
    double before = 1.0;
    for (int octave = 0; octave < layers.octaves; ++octave) {
        const double noise = gradient(finer(p, 1 << octave), seed + std::uint32_t(octave) * 101U,
                                      layers.period << octave);
        const double crest = std::clamp(1.0 - std::abs(noise) * 1.5, 0.0, 1.0);
        const double signal = crest * crest * before;
        sum += weight * signal;
        all += weight;
        before = std::clamp(signal * 2.0 * 0.75 + 0.25, 0.0, 1.0);
        weight *= layers.roughness;
    }
    return sum / all;
}

double limited(double v)
{
    return std::clamp(v, 0.0, 1.0);
}

/// In the plane with a lattice of six cells that repeats, and in space, where it does not.
void compare(const std::string &kernel, OssEvParameters parameters,
             const std::function<double(const Point &p, int period)> &reference,
             bool inSpace = true)
{
    SCOPED_TRACE(kernel);
    parameters.insert({{"Scale", 6.0}, {"Contrast", 0.0}, {"Seed", 7.0}});
    expectPicture(KernelBench(kernel, parameters).patch(1012).run(Width, Height),
                  [&](int x, int y) {
                      const double u = (x + 0.5) / Width + 1;
                      const double v = 1.0 - (y + 0.5) / Height + 1;
                      return Texel{limited(reference({u * 6, v * 6, 0}, 6)), 0, 0, 0};
                  });
    if (!inSpace)
        return;
    const Picture places = pictureOf(Width, 32, 3, [](int channel, int x, int y) {
        return channel == 0 ? 0.0131 * x - 1.0 : channel == 1 ? 0.0171 * y : 0.0063 * (x - y);
    });
    KernelBench space(kernel, parameters);
    expectPicture(space.input("Position", places).run(Width, 32), [&](int x, int y) {
        const Texel p = places.texel(x, y);
        return Texel{limited(reference({p[0] * 6, p[1] * 6, p[2] * 6}, 0)), 0, 0, 0};
    });
}

TEST(NoiseKernels, sumsOfOctaves)
{
    const OssEvParameters layers{{"Octaves", 4.0}, {"Roughness", 0.6}};
    const std::uint32_t seed = seedOf(7);
    const auto of = [](int period) {
        return Layers{4, 0.6, period};
    };
    compare("perlinNoise", layers, [&](const Point &p, int period) {
        return layered(gradient, p, of(period), seed) * 0.75 + 0.5;
    });
    compare("valueNoise", layers, [&](const Point &p, int period) {
        return layered(value, p, of(period), seed) * 0.75 + 0.5;
    });
    compare("billowNoise", layers, [&](const Point &p, int period) {
        return layered(gradient, p, of(period), seed, true) * 1.6;
    });
    compare(
        "simplexNoise", layers,
        [&](const Point &p, int period) {
            return layered(simplexInPlane, p, of(period), seed) * 0.75 + 0.5;
        },
        false);
    OssEvParameters ridges = layers;
    ridges.insert({{"Smoothness", 0.25}, {"Sharpness", 1.5}});
    compare("ridgedNoise", ridges,
            [&](const Point &p, int period) { return ridged(p, of(period), seed); });
}

/// Offsets of the points around a place, and the bits of their cells.
struct Feature
{
    Point to;
    std::uint32_t bits;
};

std::vector<Feature> features(const Point &p, std::uint32_t seed, int period, double jitter,
                              bool flat, int reach)
{
    std::vector<Feature> found;
    for (int z = flat ? 0 : -reach; z <= (flat ? 0 : reach); ++z) {
        for (int y = -reach; y <= reach; ++y) {
            for (int x = -reach; x <= reach; ++x) {
                const std::array<int, 3> cell{int(std::floor(p[0])) + x, int(std::floor(p[1])) + y,
                                              flat ? 0 : int(std::floor(p[2])) + z};
                const std::uint32_t bits = hash(wrapped(cell[0], period), wrapped(cell[1], period),
                                                cell[2], seed);
                Feature feature{{}, bits};
                for (std::size_t k = 0; k < (flat ? 2U : 3U); ++k) {
                    const double chance = double(bits >> (10 * k) & 0x3FFU) / 1023.0;
                    feature.to[k] = cell[k] + 0.5 + (chance - 0.5) * jitter - p[k];
                }
                found.push_back(feature);
            }
        }
    }
    std::sort(found.begin(), found.end(), [](const Feature &a, const Feature &b) {
        return std::hypot(a.to[0], a.to[1], a.to[2]) < std::hypot(b.to[0], b.to[1], b.to[2]);
    });
    return found;
}

/// The distance at which walking away from the nearest point first meets what is nearer to another.
double border(const std::vector<Feature> &near)
{
    double best = 2.0;
    for (std::size_t i = 1; i < near.size(); ++i) {
        double along = 0.0;
        double length = 0.0;
        for (std::size_t k = 0; k < 3; ++k) {
            const double across = near[i].to[k] - near[0].to[k];
            along += (near[i].to[k] + near[0].to[k]) / 2.0 * across;
            length += across * across;
        }
        best = std::min(best, along / std::sqrt(length));
    }
    return best;
}

TEST(NoiseKernels, distancesToScatteredPoints)
{
    const std::uint32_t seed = seedOf(7);
    const std::vector<std::string> names{"F1", "F2", "F2 minus F1", "Edges", "Cell Id"};
    for (int feature = 0; feature < 5; ++feature) {
        SCOPED_TRACE(names[std::size_t(feature)]);
        compare("worleyNoise", {{"Feature", names[std::size_t(feature)]}, {"Jitter", 0.8}},
                [&](const Point &p, int period) {
                    const bool flat = period > 0;
                    const auto near = features(p, seed, period, 0.8, flat, 1);
                    const Point &a = near[0].to;
                    const Point &b = near[1].to;
                    const double first = std::hypot(a[0], a[1], a[2]);
                    const double second = std::hypot(b[0], b[1], b[2]);
                    if (feature == 4)
                        return unit(other(near[0].bits, 3));
                    if (feature == 3)
                        return 2 * border(features(p, seed, period, 0.8, flat, flat ? 2 : 1));
                    return feature == 0 ? first : feature == 1 ? second * 0.8 : second - first;
                });
    }
}

TEST(NoiseKernels, grain)
{
    const std::uint32_t seed = seedOf(7);
    const auto chance = [seed](const Point &p, int period, int x, int y, int z) {
        return unit(hash(wrapped(int(std::floor(p[0])) + x, period),
                         wrapped(int(std::floor(p[1])) + y, period), int(std::floor(p[2])) + z,
                         seed));
    };
    compare("whiteNoise", {},
            [&](const Point &p, int period) { return chance(p, period, 0, 0, 0); });
    compare("blueNoise", {}, [&](const Point &p, int period) {
        const int depth = period > 0 ? 0 : 1;
        double around = 0.0;
        int count = -1;
        for (int z = -depth; z <= depth; ++z) {
            for (int i = 0; i < 9; ++i, ++count)
                around += chance(p, period, i % 3 - 1, i / 3 - 1, z);
        }
        const double middle = chance(p, period, 0, 0, 0);
        const double high = middle - (around - middle) / count;
        return 1.0 / (1.0 + std::exp(-1.702 * high / std::sqrt((1.0 + 1.0 / count) / 12.0)));
    });
}

// Levels, inversion and colours come after the noise.
TEST(NoiseKernels, levelsAndColors)
{
    const Picture plain = KernelBench("perlinNoise").run(128, 32);
    const OssEvParameters parameters{{"Balance", 0.7},
                                     {"Contrast", 0.5},
                                     {"Invert", true},
                                     {"ColorA", OssEvColor{1.0F, 0.0F, 0.5F, 0.5F}},
                                     {"ColorB", OssEvColor{0.0F, 1.0F, 0.25F, 1.0F}}};
    KernelBench colored("perlinNoise", parameters);
    expectPicture(colored.output("Color").run(128, 32), [&plain](int x, int y) {
        const double t = 1.0 - limited((plain.at(0, x, y) - 0.3) * 2.0 + 0.5);
        return Texel{0.5 - 0.5 * t, t, 0.25, 0.5 + 0.5 * t};
    });
}

} // namespace
