// Kernels below Kernels/Height: what heights and normals must be, whatever they are made of.

#include "OssEvaluation/KernelBench.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int Size = 256;
constexpr double Pi = 3.14159265358979324;

Picture hills(double high = 0.2)
{
    return pictureOf(Size, Size, 1, [high](int, int x, int y) {
        const double u = (x + 0.5) / Size;
        const double v = (y + 0.5) / Size;
        return 0.5 + high * std::sin(4.0 * Pi * u) * std::sin(6.0 * Pi * v);
    });
}

Picture ramp(double slope)
{
    return pictureOf(Size, Size, 1, [slope](int, int x, int) { return slope * (x + 0.5) / Size; });
}

Picture normalsOf(const Picture &heights, double strength)
{
    return KernelBench("heightToNormal", {{"Strength", strength}})
        .input("Height", heights)
        .run(Size, Size);
}

double mean(const Picture &picture, int margin)
{
    double sum = 0.0;
    for (int y = margin; y < Size - margin; ++y) {
        for (int x = margin; x < Size - margin; ++x)
            sum += picture.at(0, x, y);
    }
    return sum / std::pow(Size - 2.0 * margin, 2.0);
}

TEST(HeightKernels, heightsOfNormalsAreThoseTheyWereMadeOf)
{
    const Picture heights = hills();
    const Picture normals = normalsOf(heights, 4.0);
    const Picture found =
        KernelBench("normalToHeight", {{"Strength", 4.0}}).input("Normal", normals).run(Size, Size);
    // The edges know nothing of what is beyond them.
    const double shift = mean(heights, 48) - mean(found, 48);
    double worst = 0.0;
    for (int y = 48; y < Size - 48; ++y) {
        for (int x = 48; x < Size - 48; ++x)
            worst = std::max(worst, std::abs(found.at(0, x, y) + shift - heights.at(0, x, y)));
    }
    EXPECT_LT(worst, 0.09) << "of a range of 0.4";
}

TEST(HeightKernels, anglesOfSlopes)
{
    for (const double slope : {0.0, 8.0, 32.0}) {
        const Picture result = KernelBench("slopeFromHeight", {{"High", 90.0}, {"Strength", 1.0}})
                                   .input("Height", ramp(slope))
                                   .run(Size, Size);
        EXPECT_NEAR(result.at(0, 128, 128), std::atan(slope / 32.0) / (Pi / 2.0), 1e-3) << slope;
    }
}

TEST(HeightKernels, curvatureCavityAndOcclusionTellHillsFromHollows)
{
    const Picture heights = hills();
    const auto run = [&heights](const char *kernel, const OssEvParameters &parameters,
                                const char *output = "Output") {
        return KernelBench(kernel, parameters)
            .input("Height", heights)
            .output(output)
            .run(Size, Size);
    };
    // A hill at u 1/8, v 1/12; a hollow at u 3/8.
    const int hillX = Size / 8;
    const int hollowX = 3 * Size / 8;
    const int line = Size / 12;
    const Picture bends = run("curvatureFromHeight", {{"Radius", 0.03}});
    EXPECT_GT(bends.at(0, hillX, line), 0.52);
    EXPECT_LT(bends.at(0, hollowX, line), 0.48);
    EXPECT_NEAR(bends.at(0, Size / 4, line), 0.5, 0.01);
    const Picture edges = run("curvatureFromHeight", {{"Radius", 0.03}}, "Edges");
    const Picture hollows = run("curvatureFromHeight", {{"Radius", 0.03}}, "Hollows");
    EXPECT_NEAR(edges.at(0, hillX, line), hollows.at(0, hollowX, line), 0.01);
    EXPECT_EQ(edges.at(0, hollowX, line), 0.0);
    const Picture cavity = run("cavity", {{"Radius", 0.03}});
    EXPECT_EQ(cavity.at(0, hillX, line), 1.0);
    EXPECT_LT(cavity.at(0, hollowX, line), 0.95);
    const Picture open = run("occlusionFromHeight", {{"Strength", 10.0}, {"Radius", 0.1}});
    EXPECT_NEAR(open.at(0, hillX, line), 1.0, 1e-3);
    EXPECT_LT(open.at(0, hollowX, line), 0.8);
}

TEST(HeightKernels, normalsAreTurnedFlippedAndCombined)
{
    const Picture normals = normalsOf(hills(), 6.0);
    const auto same = [&normals](int x, int y) {
        return normals.texel(x, y);
    };
    const auto once = [&normals](const char *kernel, const OssEvParameters &parameters) {
        return KernelBench(kernel, parameters).input("Normal", normals).run(Size, Size);
    };
    expectPicture(once("rotateNormal", {{"Angle", 360.0}}), same, 1e-5);
    expectPicture(
        once("rotateNormal", {}),
        [&](int x, int y) {
            return Texel{1.0 - normals.at(1, x, y), normals.at(0, x, y), normals.at(2, x, y)};
        },
        1e-5);
    expectPicture(
        once("flipNormal", {{"FlipX", true}, {"Swap", true}}),
        [&](int x, int y) {
            return Texel{1.0 - normals.at(1, x, y), 1.0 - normals.at(0, x, y), normals.at(2, x, y)};
        },
        1e-5);
    expectPicture(once("sharpenNormal", {{"Amount", 0.0}}), same, 1e-5);
    for (const char *mode : {"Reoriented", "Whiteout", "Slopes"}) {
        SCOPED_TRACE(mode);
        const OssEvParameters parameters{{"Mode", std::string(mode)}};
        expectPicture(
            KernelBench("normalCombine", parameters).input("Base", normals).run(Size, Size), same,
            1e-5);
        expectPicture(
            KernelBench("normalCombine", parameters).input("Detail", normals).run(Size, Size), same,
            1e-5);
    }
    const Picture slopes = normalsOf(ramp(32.0), 1.0);
    KernelBench twice("normalCombine", {{"Mode", std::string("Slopes")}});
    const Picture steeper = twice.input("Base", slopes).input("Detail", slopes).run(Size, Size);
    const double x = 2.0 * steeper.at(0, 128, 128) - 1.0;
    const double z = 2.0 * steeper.at(2, 128, 128) - 1.0;
    EXPECT_NEAR(x / z, -2.0, 1e-3) << "slopes add up";
}

TEST(HeightKernels, whatIsHigherShows)
{
    const Picture a = pictureOf(Size, 128, 4, [](int channel, int, int) {
        return channel == 0 || channel == 3 ? 1.0 : 0.0;
    });
    const Picture b = pictureOf(Size, 128, 4, [](int channel, int, int) {
        return channel == 2 || channel == 3 ? 1.0 : 0.0;
    });
    const Picture low = pictureOf(Size, 128, 1, [](int, int x, int) { return x / 255.0; });
    KernelBench blend("heightBlend", {{"Softness", 0.2}});
    blend.input("A", a).input("B", b).input("HeightA", low);
    expectPicture(blend.run(Size, 128), [](int x, int) {
        const double share = std::clamp(0.5 + 0.5 * (0.5 - x / 255.0) / 0.2, 0.0, 1.0);
        return Texel{1.0 - share, 0.0, share, 1.0};
    });
    for (const double mask : {0.0, 1.0}) {
        KernelBench all("heightBlend", {{"Mask", mask}});
        const Picture result = all.input("A", a).input("B", b).input("HeightA", low).run(Size, 128);
        EXPECT_EQ(result.at(2, 0, 0), mask) << "the mask has the last word";
        EXPECT_EQ(result.at(2, 255, 0), mask);
    }
}

TEST(HeightKernels, erosionMovesWhatIsThere)
{
    // A cone: steep, and far from the edges.
    const Picture cone = pictureOf(Size, Size, 1, [](int, int x, int y) {
        return std::max(0.0, 1.0 - std::hypot(x - 127.5, y - 127.5) / 30.0);
    });
    for (const char *kernel : {"thermalErosion", "hydraulicErosion"}) {
        SCOPED_TRACE(kernel);
        const Picture result =
            KernelBench(kernel, {{"Strength", 8.0}}).input("Height", cone).run(Size, Size);
        EXPECT_NEAR(mean(result, 0), mean(cone, 0), 0.002) << "nothing is lost";
        EXPECT_LT(result.at(0, 128, 128), 0.97) << "the top wears off";
        EXPECT_GT(result.at(0, 128 + 31, 128), 0.004) << "and lies below";
        const Picture still =
            KernelBench(kernel, {{"Steps", 0.0}}).input("Height", cone).run(Size, Size);
        EXPECT_NEAR(still.at(0, 140, 128), cone.at(0, 140, 128), 1e-5);
    }
    const Picture rest = KernelBench("thermalErosion", {{"Angle", 80.0}, {"Strength", 1.0}})
                             .input("Height", cone)
                             .run(Size, Size);
    EXPECT_NEAR(rest.at(0, 128, 128), cone.at(0, 128, 128), 1e-5) << "flat enough to rest";
}

} // namespace
