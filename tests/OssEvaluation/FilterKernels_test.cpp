// Filters and placement, against the same done slowly in double precision.

#include "OssEvaluation/FlatMesh.h"
#include "OssEvaluation/Geometry/OssEvSurfaceMap.h"
#include "OssEvaluation/KernelBench.h"

#include <algorithm>
#include <cmath>

namespace {

// Weights of a filter from the middle outwards.
std::vector<double> gaussian(double sigma)
{
    std::vector<double> weights;
    for (int i = 0; i <= int(std::ceil(5.0 * sigma)); ++i)
        weights.push_back(sigma > 0.0 ? std::exp(-0.5 * i * i / (sigma * sigma)) : 1.0);
    return weights;
}

std::vector<double> box(double radius)
{
    return std::vector<double>(std::size_t(radius) + 1, 1.0);
}

Picture channelOf(const Picture &picture, int channel)
{
    Picture result(picture.width, picture.height, 1);
    result.planes[0] = picture.planes[std::size_t(channel)];
    return result;
}

// Across, then down.
Picture filtered(const Picture &from, const std::vector<double> &weights)
{
    double sum = -weights[0];
    for (const double weight : weights)
        sum += 2.0 * weight;
    const int radius = int(weights.size()) - 1;
    const auto pass = [&](const Picture &source, int dx, int dy) {
        const std::vector<float> &values = source.planes[0];
        return pictureOf(source.width, source.height, 1, [&](int, int x, int y) {
            double value = 0.0;
            for (int i = -radius; i <= radius; ++i) {
                const int fromX = std::clamp(x + i * dx, 0, source.width - 1);
                const int fromY = std::clamp(y + i * dy, 0, source.height - 1);
                value +=
                    weights[std::size_t(std::abs(i))]
                    * values[std::size_t(fromY) * std::size_t(source.width) + std::size_t(fromX)];
            }
            return value / sum;
        });
    };
    return pass(pass(from, 1, 0), 0, 1);
}

// What a user gives for a length in texels of a picture this wide.
double given(double texels, int width)
{
    return texels * 1024.0 / width;
}

// Mean over the texels that are `margin` away from the edges.
double differenceFrom(const Picture &reference, const Picture &picture, int channel, int margin = 0)
{
    double sum = 0.0;
    double count = 0.0;
    for (int y = margin; y < picture.height - margin; ++y) {
        for (int x = margin; x < picture.width - margin; ++x) {
            sum += std::abs(reference.at(0, x, y) - picture.at(channel, x, y));
            count += 1.0;
        }
    }
    return sum / count;
}

TEST(FilterKernels, gaussianBlurOfEverySize)
{
    const Picture input = randomPicture(384, 256, 4, 51);
    for (const double sigma : {0.0, 0.4, 1.3, 4.0, 8.0, 15.0, 16.0, 22.0, 33.0}) {
        KernelBench blur("blur", {{"Radius", given(sigma, 384)}});
        const Picture result = blur.input("Input", input).run(384, 256);
        // What lies beyond the edges of a reduced input is the edge of the reduced input.
        const int margin = sigma > 16.0 ? int(3.5 * sigma) : 0;
        for (const int channel : {0, 3}) {
            const Picture wanted = filtered(channelOf(input, channel), gaussian(sigma));
            EXPECT_LE(differenceFrom(wanted, result, channel, margin), MeanErrorBound)
                << "sigma " << sigma << ", channel " << channel;
        }
    }
}

TEST(FilterKernels, boxBlur)
{
    const Picture input = randomPicture(256, 256, 1, 52);
    for (const double radius : {1.0, 5.0, 31.0}) {
        KernelBench blur("blur", {{"Radius", given(radius, 256)}, {"Quality", std::string("Box")}});
        const Picture result = blur.input("Input", input).run(256, 256);
        EXPECT_LE(differenceFrom(filtered(channelOf(input, 0), box(radius)), result, 0),
                  MeanErrorBound)
            << radius;
    }
}

TEST(FilterKernels, varyingBlurMeetsTheFixedOnes)
{
    const Picture input = randomPicture(256, 128, 1, 53);
    for (const double part : {0.0, 0.25, 0.5, 1.0}) {
        const Picture map = pictureOf(256, 128, 1, [part](int, int, int) { return part; });
        SCOPED_TRACE(part);
        KernelBench varying("blur", {{"Radius", 6.0}});
        KernelBench fixed("blur", {{"Radius", 6.0 * part}});
        const Picture wanted = fixed.input("Input", input).run(256, 128);
        expectPicture(
            varying.input("Input", input).input("Radius", map).run(256, 128),
            [&wanted](int x, int y) { return wanted.texel(x, y); }, 1e-6);
    }
}

// Charts must not take colour from the empty space around them.
TEST(FilterKernels, blurLooksAtCoveredTexelsOnly)
{
    const auto mesh = square(0.25F, 0.25F, 0.75F, 0.75F);
    ASSERT_TRUE(mesh->finish("chart"));
    const auto map = OssEvSurfaceMap::make(mesh, {256, 256, 1001, 1.0}, nullptr);
    const Picture input = pictureOf(256, 256, 4, [&map](int channel, int x, int y) {
        return channel == 3 ? 1.0 : map->isCovered(x, y) ? 0.5 : 100.0;
    });
    for (const double sigma : {3.0, 9.0, 30.0}) {
        KernelBench blur("blur", {{"Radius", given(sigma, 256)}});
        const Picture result = blur.input("Input", input).surface(map).run(256, 256);
        // Beyond what the operation reduces itself, coverage is known by samples only.
        const double slack = sigma > 16.0 ? 30.0 : 1e-3;
        for (int i = 64; i < 192; ++i) {
            ASSERT_NEAR(result.at(0, 64, i), 0.5, slack) << sigma;
            ASSERT_NEAR(result.at(0, i, 191), 0.5, slack) << sigma;
        }
        ASSERT_NEAR(result.at(0, 128, 128), 0.5, slack) << sigma;
    }
}

TEST(FilterKernels, sharpenAddsWhatABlurTakes)
{
    const Picture input = randomPicture(256, 128, 3, 54);
    KernelBench sharpen("sharpen", {{"Amount", 1.5}, {"Radius", given(2.0, 256)}});
    const Picture result = sharpen.input("Input", input).run(256, 128);
    const Picture blurred = filtered(channelOf(input, 2), gaussian(2.0));
    const Picture wanted = pictureOf(256, 128, 1, [&](int, int x, int y) {
        return input.at(2, x, y) * 2.5 - 1.5 * blurred.at(0, x, y);
    });
    EXPECT_LE(differenceFrom(wanted, result, 2), MeanErrorBound);
}

TEST(FilterKernels, edgesOfAStepAreOneWhereTheStepIs)
{
    const Picture input = pictureOf(256, 128, 1,
                                    [](int, int x, int) { return x < 128 ? 0.0 : 1.0; });
    for (const double width : {4.0, 5.0}) {
        KernelBench edges("edgeDetect", {{"Width", given(width, 256)}});
        const Picture result = edges.input("Input", input).run(256, 128);
        EXPECT_NEAR(result.at(0, 128, 60), 1.0, 0.06) << width;
        EXPECT_NEAR(result.at(0, 128 + int(3 * width), 60), 0.0, 0.01) << width;
        EXPECT_NEAR(result.at(0, 10, 60), 0.0, 1e-6);
    }
}

TEST(FilterKernels, normalsLeanAwayFromTheSlope)
{
    const Picture heights = pictureOf(256, 128, 1, [](int, int x, int) { return x / 16.0; });
    KernelBench normals("heightToNormal", {{"Strength", 2.0}});
    const Picture result = normals.input("Height", heights).run(256, 128);
    // A slope of 16 across the patch, at 2 / 32 of its width: 45 degrees.
    EXPECT_NEAR(result.at(0, 100, 50), 0.5 - 0.5 * std::sqrt(0.5), 1e-4);
    EXPECT_NEAR(result.at(1, 100, 50), 0.5, 1e-4);
    EXPECT_NEAR(result.at(2, 100, 50), 0.5 + 0.5 * std::sqrt(0.5), 1e-4);
}

Texel bilinear(const Picture &picture, double x, double y, bool repeat)
{
    const int left = int(std::floor(x - 0.5));
    const int top = int(std::floor(y - 0.5));
    const double s = x - 0.5 - left;
    const double t = y - 0.5 - top;
    const auto texel = [&](int i, int j) {
        if (repeat) {
            i = (i % picture.width + picture.width) % picture.width;
            j = (j % picture.height + picture.height) % picture.height;
        }
        const bool inside = i >= 0 && j >= 0 && i < picture.width && j < picture.height;
        return inside ? picture.texel(i, j) : Texel{};
    };
    const Texel corners[] = {texel(left, top), texel(left + 1, top), texel(left, top + 1),
                             texel(left + 1, top + 1)};
    Texel result{};
    for (std::size_t k = 0; k < 4; ++k) {
        result[k] = (corners[0][k] * (1 - s) + corners[1][k] * s) * (1 - t)
                    + (corners[2][k] * (1 - s) + corners[3][k] * s) * t;
    }
    return result;
}

TEST(FilterKernels, transformMovesTurnsAndScalesAboutItsPivot)
{
    const Picture input = randomPicture(256, 256, 4, 55);
    KernelBench transform("transform", {{"Translate", OssEvVector2{0.1, -0.05}},
                                        {"Rotate", 30.0},
                                        {"Scale", OssEvVector2{1.5, 0.8}},
                                        {"Pivot", OssEvVector2{0.3, 0.6}}});
    const Picture result = transform.input("Input", input).run(256, 256);
    const double angle = 30.0 * std::acos(-1.0) / 180.0;
    expectPicture(result, [&](int x, int y) {
        const double du = (x + 0.5) / 256.0 - 0.1 - 0.3;
        const double dv = 1.0 - (y + 0.5) / 256.0 + 0.05 - 0.6;
        const double u = (std::cos(angle) * du + std::sin(angle) * dv) / 1.5 + 0.3;
        const double v = (-std::sin(angle) * du + std::cos(angle) * dv) / 0.8 + 0.6;
        return bilinear(input, u * 256.0, (1.0 - v) * 256.0, false);
    });
}

TEST(FilterKernels, tiledRepeatsFromTheLowerLeftCorner)
{
    const Picture input = randomPicture(256, 256, 3, 56);
    KernelBench tiled("tiled", {{"RepeatU", 1.5}, {"RepeatV", 1.25}});
    const Picture result = tiled.input("TileImage", input).run(256, 256);
    expectPicture(result, [&](int x, int y) {
        const double u = (x + 0.5) / 256.0 * 1.5;
        const double v = (1.0 - (y + 0.5) / 256.0) * 1.25;
        return bilinear(input, u * 256.0, (1.0 - v) * 256.0, true);
    });
}

// Texels stepped over would flicker; their mean is what a far picture shows.
TEST(FilterKernels, manyRepeatsShowTheMean)
{
    const Picture input = pictureOf(256, 256, 1,
                                    [](int, int x, int y) { return (x + y) % 2 == 0 ? 1.0 : 0.0; });
    KernelBench tiled("tiled", {{"RepeatU", 16.0}, {"RepeatV", 16.0}});
    expectPicture(
        tiled.input("TileImage", input).run(256, 256),
        [](int, int) {
            return Texel{0.5, 0, 0, 0};
        },
        1e-3);
}

TEST(FilterKernels, warpMovesByItsVectorsAndNoFarther)
{
    const Picture input = randomPicture(256, 256, 4, 57);
    Picture vectors = randomPicture(256, 256, 3, 58, -1.0, 1.0);
    vectors.at(0, 17, 17) = 50.0F;
    KernelBench warp(
        "warp",
        {{"Amount", 0.1}, {"VectorSpace", std::string("UV")}, {"Border", std::string("Repeat")}});
    const Picture result = warp.input("Input", input).input("Vector", vectors).run(256, 256);
    expectPicture(result, [&](int x, int y) {
        const double du = std::clamp(double(vectors.at(0, x, y)), -1.0, 1.0) * 0.1;
        const double dv = std::clamp(double(vectors.at(1, x, y)), -1.0, 1.0) * 0.1;
        return bilinear(input, x + 0.5 + du * 256.0, y + 0.5 - dv * 256.0, true);
    });
}

TEST(FilterKernels, triPlanarShowsEachDirectionItsImage)
{
    const auto cube = OssEvShapes::cube();
    const auto solid = [](double r, double g, double b) {
        return pictureOf(128, 128, 4, [color = Texel{r, g, b, 1.0}](int channel, int, int) {
            return color[std::size_t(channel)];
        });
    };
    const std::array<std::array<double, 3>, 6> wanted{
        {{1, 0, 0}, {0, 0, 1}, {1, 0, 0}, {0, 0, 1}, {0, 1, 0}, {0, 1, 0}}};
    for (int side = 0; side < 6; ++side) {
        const OssEvFrame frame{128, 128, 1001 + side, 1.0};
        KernelBench bench("triPlanar");
        bench.input("frontImage", solid(1, 0, 0)).input("topImage", solid(0, 1, 0));
        bench.input("rightImage", solid(0, 0, 1));
        bench.surface(OssEvSurfaceMap::make(cube, frame, nullptr)).patch(1001 + side);
        const Picture result = bench.run(128, 128);
        for (int k = 0; k < 3; ++k)
            EXPECT_NEAR(result.at(k, 64, 64), wanted[std::size_t(side)][std::size_t(k)], 1e-4);
    }
}

} // namespace
