// Patterns and noise, against scalar references in double precision.

#include "OssEvaluation/Geometry/OssEvMesh.h"
#include "OssEvaluation/Geometry/OssEvSurfaceMap.h"
#include "OssEvaluation/KernelBench.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace {

constexpr int Width = 256;
constexpr int Height = 128;

double u(int x)
{
    return (x + 0.5) / Width;
}

double v(int y)
{
    return 1.0 - (y + 0.5) / Height;
}

Texel mix(const Texel &a, const Texel &b, double t)
{
    Texel result{};
    for (std::size_t k = 0; k < 4; ++k)
        result[k] = a[k] + (b[k] - a[k]) * t;
    return result;
}

std::uint32_t hash(std::int32_t x, std::int32_t y, std::int32_t z, std::uint32_t seed)
{
    std::uint32_t h = std::uint32_t(x) * 0x9E3779B1U ^ std::uint32_t(y) * 0x85EBCA77U
                      ^ std::uint32_t(z) * 0xC2B2AE3DU ^ seed * 0x27D4EB2FU;
    h = (h ^ (h >> 15)) * 0x2C1B3C6DU;
    h = (h ^ (h >> 12)) * 0x297A2D39U;
    return h ^ (h >> 15);
}

TEST(SourceKernels, constants)
{
    KernelBench color("constant", {{"Color", OssEvColor{0.2F, 0.4F, 0.6F, 0.5F}}});
    const Picture plain = color.run(128, 1);
    ASSERT_EQ(plain.channels, 4);
    EXPECT_FLOAT_EQ(float(plain.at(1, 3, 0)), 0.2F) << "premultiplied";
    KernelBench scalar("constant", {{"Value", 0.7}});
    const Picture value = scalar.run(128, 1);
    ASSERT_EQ(value.channels, 1);
    EXPECT_FLOAT_EQ(float(value.at(0, 3, 0)), 0.7F);
}

TEST(SourceKernels, checkerAndGradient)
{
    const Texel a{0.1, 0.2, 0.3, 1.0};
    const Texel b{0.25, 0.5, 0.0, 0.5};
    const OssEvColor colorA{0.1F, 0.2F, 0.3F, 1.0F};
    const OssEvColor colorB{0.5F, 1.0F, 0.0F, 0.5F};
    KernelBench checker("checker", {{"ColorA", colorA}, {"ColorB", colorB}, {"Scale", 7.3}});
    expectPicture(checker.run(Width, Height), [&](int x, int y) {
        const int sum = int(std::floor(u(x) * 7.3) + std::floor(v(y) * 7.3));
        return sum % 2 == 0 ? a : b;
    });
    const std::array<double (*)(int, int), 3> directions{
        [](int x, int) { return u(x); }, [](int, int y) { return v(y); },
        [](int x, int y) {
            return std::min(1.0, 2.0 * std::hypot(u(x) - 0.5, v(y) - 0.5));
        }};
    for (std::size_t i = 0; i < directions.size(); ++i) {
        KernelBench gradient(
            "gradient",
            {{"StartColor", colorA}, {"EndColor", colorB}, {"Direction", std::int64_t(i)}});
        SCOPED_TRACE(i);
        expectPicture(gradient.run(Width, Height),
                      [&](int x, int y) { return mix(a, b, directions[i](x, y)); });
    }
}

TEST(SourceKernels, gridLinesHaveTheirWidth)
{
    KernelBench grid("grid", {{"Columns", 5.0},
                              {"Rows", 3.0},
                              {"LineWidth", 0.1},
                              {"LineColor", OssEvColor{1, 1, 1, 1}},
                              {"Background", OssEvColor{0, 0, 0, 1}}});
    const auto line = [](double place, double count, int texels) {
        const double cell = place * count + 0.5;
        const double distance = std::abs(cell - std::floor(cell) - 0.5);
        return std::clamp((0.05 - distance) * texels / count + 0.5, 0.0, 1.0);
    };
    expectPicture(grid.run(Width, Height), [&](int x, int y) {
        const double t = std::max(line(u(x), 5, Width), line(v(y), 3, Height));
        return Texel{t, t, t, 1.0};
    });
}

Reference bricks(int output)
{
    return [output](int x, int y) {
        constexpr double Rows = 6.0;
        constexpr double PerRow = 3.0;
        const double down = v(y) * Rows;
        const double row = std::floor(down);
        const double along = u(x) * PerRow + (std::fmod(row, 2.0) != 0.0 ? 0.5 : 0.0);
        const double column = std::floor(along);
        const double fu = along - column;
        const double fv = down - row;
        const double inside = std::min(std::min(fu, 1.0 - fu) * Rows / PerRow,
                                       std::min(fv, 1.0 - fv))
                              - 0.05;
        const double mask = std::clamp(inside * Height / Rows + 0.5, 0.0, 1.0);
        if (output == 1)
            return Texel{mask, 0, 0, 0};
        if (output == 2) {
            const double t = std::clamp(inside * 2.0 / 0.4, 0.0, 1.0);
            return Texel{t * t * (3.0 - 2.0 * t), 0, 0, 0};
        }
        const double chance = (hash(int(std::fmod(column, PerRow)), int(row), 0, 9) >> 8)
                              / 16777216.0;
        const double light = 1.0 + 0.3 * (2.0 * chance - 1.0);
        return mix({0.4, 0.38, 0.35, 1.0}, {0.5 * light, 0.1 * light, 0.05 * light, 1.0}, mask);
    };
}

TEST(SourceKernels, bricksWithMortarAndHeight)
{
    const char *outputs[] = {"Output", "Mask", "Height"};
    for (int output = 0; output < 3; ++output) {
        KernelBench brick("brick", {{"Rows", 6.0},
                                    {"BricksPerRow", 3.0},
                                    {"MortarWidth", 0.1},
                                    {"Bevel", 0.4},
                                    {"Variation", 0.3},
                                    {"Seed", 9.0},
                                    {"BrickColor", OssEvColor{0.5F, 0.1F, 0.05F, 1.0F}}});
        SCOPED_TRACE(outputs[output]);
        expectPicture(brick.output(outputs[output]).run(Width, Height), bricks(output));
    }
}

double fade(double t)
{
    return t * t * t * (t * (t * 6.0 - 15.0) + 10.0);
}

double slope(std::uint32_t h, double x, double y, double z)
{
    const bool high = (h & 8U) != 0;
    const bool low = (h & 4U) != 0;
    const double first = high ? y : x;
    const double second = high || low ? (high && low ? x : z) : y;
    return ((h & 1U) != 0 ? -first : first) + ((h & 2U) != 0 ? -second : second);
}

double gradientNoise(double x, double y, double z, std::uint32_t seed)
{
    const double fx = std::floor(x);
    const double fy = std::floor(y);
    const double fz = std::floor(z);
    double sum = 0.0;
    for (int corner = 0; corner < 8; ++corner) {
        const int i = corner & 1;
        const int j = (corner >> 1) & 1;
        const int k = corner >> 2;
        const double tx = fade(x - fx);
        const double ty = fade(y - fy);
        const double tz = fade(z - fz);
        const double weight = (i != 0 ? tx : 1 - tx) * (j != 0 ? ty : 1 - ty)
                              * (k != 0 ? tz : 1 - tz);
        const std::uint32_t h = hash(int(fx) + i, int(fy) + j, int(fz) + k, seed);
        sum += weight * slope(h, x - fx - i, y - fy - j, z - fz - k);
    }
    return sum;
}

double fractal(double x, double y, double z, int kind)
{
    double sum = 0.0;
    double weights = 0.0;
    double weight = 1.0;
    for (int octave = 0; octave < 4; ++octave) {
        double noise = gradientNoise(x, y, z, 7U + std::uint32_t(octave) * 101U);
        if (kind > 0)
            noise = std::abs(noise);
        if (kind == 2)
            noise = (1.0 - noise) * (1.0 - noise);
        sum += weight * noise;
        weights += weight;
        weight *= 0.6;
        x *= 2.1;
        y *= 2.1;
        z *= 2.1;
    }
    sum /= weights;
    return std::clamp(kind == 0 ? 0.5 + 0.5 * sum : sum, 0.0, 1.0);
}

TEST(SourceKernels, fractalNoiseInThePlaneAndInSpace)
{
    const Picture places = pictureOf(Width, Height, 3, [](int channel, int x, int y) {
        return channel == 0 ? 0.013 * x - 1.0 : channel == 1 ? 0.017 * y : 0.006 * (x - y);
    });
    for (int kind = 0; kind < 3; ++kind) {
        const OssEvParameters parameters{
            {"Frequency", 6.0},           {"Octaves", 4.0}, {"Gain", 0.6}, {"Lacunarity", 2.1},
            {"Kind", std::int64_t(kind)}, {"Seed", 7.0}};
        SCOPED_TRACE(kind);
        expectPicture(KernelBench("fractalNoise", parameters).patch(1012).run(Width, Height),
                      [kind](int x, int y) {
                          return Texel{fractal((u(x) + 1) * 6, (v(y) + 1) * 6, 0, kind), 0, 0, 0};
                      });
        KernelBench space("fractalNoise", parameters);
        expectPicture(space.input("Position", places).run(Width, Height),
                      [kind, &places](int x, int y) {
                          const Texel p = places.texel(x, y);
                          return Texel{fractal(p[0] * 6, p[1] * 6, p[2] * 6, kind), 0, 0, 0};
                      });
    }
}

TEST(SourceKernels, noiseContinuesOnTheNextPatch)
{
    const Picture a = KernelBench("fractalNoise").patch(1001).run(Width, Height);
    const Picture b = KernelBench("fractalNoise").patch(1002).run(Width, Height);
    double seam = 0.0;
    double inside = 0.0;
    for (int y = 0; y < Height; ++y) {
        seam += std::abs(a.at(0, Width - 1, y) - b.at(0, 0, y));
        inside += std::abs(a.at(0, 100, y) - a.at(0, 101, y));
    }
    EXPECT_LT(seam, 2.0 * inside);
}

// The sphere's seam runs where u is 0 and 1: one meridian.
TEST(SourceKernels, noiseOnTheSphereHasNoSeam)
{
    const OssEvFrame frame{512, 256, 1001, 1.0};
    const auto map = OssEvSurfaceMap::make(OssEvShapes::sphere(), frame, nullptr);
    KernelBench noise("fractalNoise", {{"Frequency", 3.0}});
    const Picture result = noise.surface(map).run(512, 256);
    double seam = 0.0;
    double inside = 0.0;
    for (int y = 20; y < 236; ++y) {
        seam += std::abs(result.at(0, 0, y) - result.at(0, 511, y));
        inside += std::abs(result.at(0, 200, y) - result.at(0, 201, y));
    }
    EXPECT_LT(seam, 2.0 * inside);
    EXPECT_GT(inside, 0.0);
}

double distanceOf(int kind, double x, double y, double z)
{
    if (kind == 0)
        return std::hypot(x, y, z);
    return kind == 1 ? std::abs(x) + std::abs(y) + std::abs(z)
                     : std::max({std::abs(x), std::abs(y), std::abs(z)});
}

// Where the point of a cell lies, seen from `at`.
std::array<double, 3> pointOf(const std::array<int, 3> &cell, const std::array<double, 3> &at)
{
    std::uint32_t bits = hash(cell[0], cell[1], cell[2], 3);
    std::array<double, 3> result{};
    for (std::size_t k = 0; k < 3; ++k) {
        result[k] = cell[k] + (double(bits & 0x3FFU) / 1023.0 - 0.5) * 0.8 + 0.5 - at[k];
        bits >>= 10;
    }
    return result;
}

double cellular(double x, double y, double z, bool flat, int distance, int feature)
{
    const std::array<double, 3> at{x, y, flat ? 0.0 : z};
    std::vector<double> distances;
    for (int i = 0; i < (flat ? 9 : 27); ++i) {
        const std::array<int, 3> cell{int(std::floor(x)) + i % 3 - 1,
                                      int(std::floor(y)) + i / 3 % 3 - 1,
                                      flat ? 0 : int(std::floor(z)) + i / 9 - 1};
        const std::array<double, 3> point = pointOf(cell, at);
        distances.push_back(distanceOf(distance, point[0], point[1], flat ? 0.0 : point[2]));
    }
    std::sort(distances.begin(), distances.end());
    return feature == 0 ? distances[0] : feature == 1 ? distances[1] : distances[1] - distances[0];
}

TEST(SourceKernels, cellularByDistanceAndFeature)
{
    const Picture places = pictureOf(Width, 16, 3, [](int channel, int x, int y) {
        return 0.01 * x * (channel + 1) - 0.05 * y;
    });
    for (int distance = 0; distance < 3; ++distance) {
        for (int feature = 0; feature < 3; ++feature) {
            const OssEvParameters parameters{{"Scale", 5.0},
                                             {"Jitter", 0.8},
                                             {"Seed", 3.0},
                                             {"Distance", std::int64_t(distance)},
                                             {"Feature", std::int64_t(feature)}};
            SCOPED_TRACE(std::to_string(distance) + ", " + std::to_string(feature));
            expectPicture(
                KernelBench("cellular", parameters).run(Width, Height), [=](int x, int y) {
                    return Texel{cellular(u(x) * 5, v(y) * 5, 0, true, distance, feature), 0, 0, 0};
                });
            KernelBench space("cellular", parameters);
            expectPicture(
                space.input("Position", places).run(Width, 16), [=, &places](int x, int y) {
                    const Texel p = places.texel(x, y);
                    return Texel{cellular(p[0] * 5, p[1] * 5, p[2] * 5, false, distance, feature),
                                 0, 0, 0};
                });
        }
    }
    KernelBench ids("cellular", {{"Scale", 4.0}});
    const Picture cells = ids.output("Cell Id").run(Width, Height);
    std::vector<float> values = cells.planes[0];
    std::sort(values.begin(), values.end());
    const auto distinct = std::unique(values.begin(), values.end()) - values.begin();
    EXPECT_GT(distinct, 8);
    EXPECT_LT(distinct, 40) << "one number for each cell";
}

} // namespace
