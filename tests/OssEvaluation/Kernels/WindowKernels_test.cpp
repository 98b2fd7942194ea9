// Kernels below Kernels/Filter, against the same done slowly.

#include "OssEvaluation/FlatMesh.h"
#include "OssEvaluation/Geometry/OssEvSurfaceMap.h"
#include "OssEvaluation/KernelBench.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int Size = 256;

// Of a window of one radius in texels about a texel.
void forDisc(double radius, const std::function<void(int dx, int dy)> &visit)
{
    const int reach = int(radius);
    for (int dy = -reach; dy <= reach; ++dy) {
        for (int dx = -reach; dx <= reach; ++dx) {
            if (dx * dx + dy * dy <= (radius + 0.25) * (radius + 0.25))
                visit(dx, dy);
        }
    }
}

TEST(WindowKernels, medianIsTheValueInTheMiddle)
{
    const Picture input = randomPicture(Size, 128, 4, 61);
    for (const double percentile : {0.0, 0.3, 0.5, 1.0}) {
        KernelBench bench("median", {{"Radius", 3.0 / Size}, {"Percentile", percentile}});
        expectPicture(bench.input("Input", input).run(Size, 128), [&](int x, int y) {
            Texel texel{};
            for (int k = 0; k < 4; ++k) {
                std::vector<double> values;
                forDisc(3.0, [&](int dx, int dy) {
                    values.push_back(input.clamped(k, x + dx, y + dy));
                });
                std::sort(values.begin(), values.end());
                const double place = std::min(std::floor(percentile * double(values.size())),
                                              double(values.size()) - 1.0);
                texel[std::size_t(k)] = values[std::size_t(place)];
            }
            return texel;
        });
    }
}

TEST(WindowKernels, bilateralWeighsByPlaceAndColor)
{
    const Picture input = randomPicture(Size, 128, 3, 62);
    KernelBench bench("bilateral", {{"Radius", 4.0 / Size}, {"Tolerance", 0.15}});
    expectPicture(bench.input("Input", input).run(Size, 128), [&](int x, int y) {
        Texel sum{};
        double weights = 0.0;
        forDisc(4.0, [&](int dx, int dy) {
            double square = 0.0;
            for (int k = 0; k < 3; ++k)
                square += std::pow(input.clamped(k, x + dx, y + dy) - input.at(k, x, y), 2.0);
            const double weight = std::exp(-2.0 * (dx * dx + dy * dy) / 16.0)
                                  * std::exp(-square / (2.0 * 0.15 * 0.15));
            weights += weight;
            for (int k = 0; k < 3; ++k)
                sum[std::size_t(k)] += weight * input.clamped(k, x + dx, y + dy);
        });
        for (double &value : sum)
            value /= weights;
        return sum;
    });
}

TEST(WindowKernels, dilateAndErodeAreTheExtremesOfADisc)
{
    const Picture input = randomPicture(Size, 128, 4, 63);
    for (const bool shrinks : {false, true}) {
        for (const double radius : {0.0, 1.0, 4.0, 4.5}) {
            KernelBench bench(shrinks ? "growDark" : "growBright", {{"Radius", radius / Size}});
            SCOPED_TRACE(radius);
            expectPicture(bench.input("Input", input).run(Size, 128), [&](int x, int y) {
                Texel texel{};
                for (int k = 0; k < 4; ++k) {
                    const auto extreme = [&](double size) {
                        double most = input.at(k, x, y);
                        forDisc(size, [&](int dx, int dy) {
                            const double value = input.clamped(k, x + dx, y + dy);
                            most = shrinks ? std::min(most, value) : std::max(most, value);
                        });
                        return most;
                    };
                    const double inner = extreme(std::floor(radius));
                    texel[std::size_t(k)] = inner
                                            + (extreme(std::ceil(radius)) - inner)
                                                  * (radius - std::floor(radius));
                }
                return texel;
            });
        }
    }
}

/// A disc with a soft rim of two texels.
Picture discPicture(int size, double radius)
{
    return pictureOf(size, size, 1, [=](int, int x, int y) {
        const double away = std::hypot(x + 0.5 - size / 2.0, y + 0.5 - size / 2.0);
        return std::clamp((radius * size - away) / 2.0 + 0.5, 0.0, 1.0);
    });
}

TEST(WindowKernels, distancesOfADiscAtAnySize)
{
    for (const int size : {256, 512}) {
        const Picture input = discPicture(size, 0.2);
        const double texel = 1.0 / size;
        const auto away = [size](int x, int y) {
            return 0.2 - std::hypot(x + 0.5 - size / 2.0, y + 0.5 - size / 2.0) / size;
        };
        // Within 64 texels, and beyond them, in a halved picture.
        for (const double reach : {0.1, 0.3}) {
            KernelBench outside("distance", {{"Distance", reach}});
            expectPicture(
                outside.input("Input", input).run(size, size),
                [&](int x, int y) { return Texel{std::clamp(1.0 + away(x, y) / reach, 0.0, 1.0)}; },
                2.0 * texel / reach);
            KernelBench bevel("bevel", {{"Distance", reach}, {"Profile", std::string("Linear")}});
            expectPicture(
                bevel.input("Input", input).run(size, size),
                [&](int x, int y) { return Texel{std::clamp(away(x, y) / reach, 0.0, 1.0)}; },
                2.0 * texel / reach);
        }
        for (const char *place : {"Inside", "Outside"}) {
            const double middle = std::string(place) == "Inside" ? 0.02 : -0.02;
            KernelBench outline("outline", {{"Width", 0.04}, {"Place", std::string(place)}});
            expectPicture(
                outline.input("Input", input).run(size, size),
                [&](int x, int y) {
                    return Texel{
                        std::clamp((0.02 - std::abs(away(x, y) - middle)) * size + 0.5, 0.0, 1.0)};
                },
                0.005);
        }
    }
}

TEST(WindowKernels, directionalBlurSmearsAlongItsAngle)
{
    const Picture dot = pictureOf(
        Size, Size, 1, [](int, int x, int y) { return x == 128 && y == 128 ? 1.0 : 0.0; });
    KernelBench across("directionalBlur",
                       {{"Length", 32.0 / Size}, {"Profile", std::string("Even")}});
    const Picture result = across.input("Input", dot).run(Size, Size);
    double sum = 0.0;
    for (int x = 0; x < Size; ++x) {
        sum += result.at(0, x, 128);
        EXPECT_NEAR(result.at(0, x, 128), std::abs(x - 128) <= 16 ? 1.0 / 33.0 : 0.0, 1e-5) << x;
    }
    EXPECT_NEAR(sum, 1.0, 1e-5);
    KernelBench upwards("directionalBlur", {{"Length", 32.0 / Size}, {"Angle", 90.0}});
    const Picture soft = upwards.input("Input", dot).run(Size, Size);
    EXPECT_GT(soft.at(0, 128, 120), 0.01);
    EXPECT_LT(soft.at(0, 120, 128), 1e-6);
}

TEST(WindowKernels, blursOfEvenPicturesLeaveThem)
{
    const Picture even = pictureOf(Size, Size, 4,
                                   [](int channel, int, int) { return 0.2 * (channel + 1); });
    for (const char *kernel :
         {"directionalBlur", "anisotropicBlur", "radialBlur", "slopeBlur", "bilateral", "median",
          "kuwahara", "growBright", "growDark", "unsharpMask", "pixelate", "upscale", "makeTile"}) {
        SCOPED_TRACE(kernel);
        const Picture map = randomPicture(Size, Size, 1, 64);
        KernelBench bench(kernel);
        bench.input("Input", even);
        if (std::string(kernel) == "slopeBlur")
            bench.input("Slope", map);
        expectPicture(
            bench.run(Size, Size), [&](int x, int y) { return even.texel(x, y); }, 1e-5);
    }
    const Picture grey = KernelBench("highPass").input("Input", even).run(Size, Size);
    EXPECT_NEAR(grey.at(1, 50, 50), 0.4, 1e-5) << "half of the alpha";
}

TEST(WindowKernels, radialBlurKeepsRingsAndRays)
{
    const Picture rings = pictureOf(Size, Size, 1, [](int, int x, int y) {
        return std::sin(std::hypot(x - 127.5, y - 127.5) * 0.1);
    });
    expectPicture(
        KernelBench("radialBlur", {{"Amount", 0.05}}).input("Input", rings).run(Size, Size),
        [&](int x, int y) { return rings.texel(x, y); }, 0.02);
    const Picture rays = pictureOf(Size, Size, 1, [](int, int x, int y) {
        return std::sin(4.0 * std::atan2(y - 127.5, x - 127.5));
    });
    KernelBench zoom("radialBlur", {{"Amount", 0.2}, {"Mode", std::string("Zoom")}});
    expectPicture(
        zoom.input("Input", rays).run(Size, Size), [&](int x, int y) { return rays.texel(x, y); },
        0.02);
}

TEST(WindowKernels, softAndPaintedPicturesKeepTheirEdges)
{
    const Picture step = pictureOf(Size, 128, 1,
                                   [](int, int x, int) { return x < 128 ? 0.2 : 0.8; });
    for (const char *kernel : {"bilateral", "median", "kuwahara"}) {
        const Picture result =
            KernelBench(kernel, {{"Radius", 0.03}}).input("Input", step).run(Size, 128);
        EXPECT_NEAR(result.at(0, 124, 64), 0.2, 0.05) << kernel;
        EXPECT_NEAR(result.at(0, 132, 64), 0.8, 0.05) << kernel;
    }
    // Light from the right brightens what falls off to the right.
    KernelBench emboss("emboss", {{"Angle", 0.0}});
    const Picture lit = emboss.input("Input", step).run(Size, 128);
    EXPECT_LT(lit.at(0, 128, 64), 0.3);
    EXPECT_NEAR(lit.at(0, 20, 64), 0.5, 1e-5);
    const Picture sharp =
        KernelBench("unsharpMask", {{"Threshold", 0.5}}).input("Input", step).run(Size, 128);
    EXPECT_NEAR(sharp.at(0, 128, 64), 0.8, 1e-5) << "less than the threshold";
}

TEST(WindowKernels, pixelsAreMeansOfTheirCells)
{
    const Picture input = pictureOf(Size, Size, 1,
                                    [](int, int x, int y) { return (x + 2.0 * y) / 768.0; });
    expectPicture(
        KernelBench("pixelate", {{"Columns", 16.0}}).input("Input", input).run(Size, Size),
        [](int x, int y) { return Texel{(x / 16 * 16 + 7.5 + 2.0 * (y / 16 * 16 + 7.5)) / 768.0}; },
        2e-3);
}

TEST(WindowKernels, upscaledLinesAreSmootherThanTheirPixels)
{
    const auto line = [](double x, double y) {
        return x + 0.5 * y < 170.0 ? 0.0 : 1.0;
    };
    const Picture input = pictureOf(Size, Size, 1, [&](int, int x, int y) { return line(x, y); });
    const auto errorOf = [&](double edges) {
        KernelBench bench("upscale", {{"Factor", std::string("8")}, {"Edges", edges}});
        return meanError(bench.input("Input", input).run(Size, Size),
                         [&](int x, int y) { return input.texel(x, y); });
    };
    EXPECT_LT(errorOf(1.0), 0.85 * errorOf(0.0));
}

// What no face covers has no say in what a face gets.
TEST(WindowKernels, windowsLookAtCoveredTexelsOnly)
{
    const auto mesh = square(0.25F, 0.25F, 0.75F, 0.75F);
    ASSERT_TRUE(mesh->finish("chart"));
    const auto map = OssEvSurfaceMap::make(mesh, {Size, Size, 1001, 1.0}, nullptr);
    const Picture input = pictureOf(
        Size, Size, 3, [&map](int, int x, int y) { return map->isCovered(x, y) ? 0.5 : 100.0; });
    for (const char *kernel :
         {"directionalBlur", "anisotropicBlur", "bilateral", "median", "kuwahara", "growBright",
          "unsharpMask", "emboss", "autoLevels", "equalize"}) {
        SCOPED_TRACE(kernel);
        const Picture result =
            KernelBench(kernel).input("Input", input).surface(map).run(Size, Size);
        for (int i = 66; i < 190; i += 3) {
            ASSERT_LT(result.at(0, 65, i), 1.1) << i;
            ASSERT_LT(result.at(1, i, 190), 1.1) << i;
        }
    }
    const Picture distance = KernelBench("distance", {{"Side", std::string("Inside")}})
                                 .input("Input", pictureOf(Size, Size, 1,
                                                           [&map](int, int x, int y) {
                                                               return map->isCovered(x, y) ? 1.0
                                                                                           : 0.0;
                                                           }))
                                 .surface(map)
                                 .run(Size, Size);
    EXPECT_EQ(distance.at(0, 66, 128), 1.0) << "the edge of a chart is no edge of the shape";
}

} // namespace
