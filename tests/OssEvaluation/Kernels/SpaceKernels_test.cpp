// Kernels below Kernels/Space: where each texel comes from.

#include "OssEvaluation/KernelBench.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int Size = 256;
constexpr double Pi = 3.14159265358979324;

/// A picture of its own coordinates, which bilinear reading gives back as they are.
Picture coordinates()
{
    return pictureOf(Size, Size, 3, [](int channel, int x, int y) {
        return channel == 0 ? (x + 0.5) / Size : channel == 1 ? 1.0 - (y + 0.5) / Size : 1.0;
    });
}

struct Place
{
    double u;
    double v;
};

using Way = std::function<Place(Place)>;

/// What was read lies where the way leads, for places within the patch that are not at its edges.
void expectWay(const std::string &kernel, const OssEvParameters &parameters, const Way &way,
               int least = 3000)
{
    SCOPED_TRACE(kernel);
    const Picture input = coordinates();
    const Picture result = KernelBench(kernel, parameters).input("Input", input).run(Size, Size);
    int looked = 0;
    for (int y = 1; y < Size - 1; y += 3) {
        for (int x = 1; x < Size - 1; x += 3) {
            const Place wanted = way({(x + 0.5) / Size, 1.0 - (y + 0.5) / Size});
            const double edge = std::max(std::abs(wanted.u - 0.5), std::abs(wanted.v - 0.5));
            // Where the picture shrinks, the mean of the field is what is read.
            if (!(edge < 0.47))
                continue;
            ++looked;
            ASSERT_NEAR(result.at(0, x, y), wanted.u, 4e-3) << x << ", " << y;
            ASSERT_NEAR(result.at(1, x, y), wanted.v, 4e-3) << x << ", " << y;
        }
    }
    EXPECT_GT(looked, least);
}

Place turned(Place place, double angle)
{
    return {std::cos(angle) * place.u - std::sin(angle) * place.v,
            std::sin(angle) * place.u + std::cos(angle) * place.v};
}

TEST(SpaceKernels, mirrorsFoldAtTheirPlace)
{
    expectWay("mirror", {{"Position", 0.4}}, [](Place p) {
        return Place{p.u > 0.4 ? 0.8 - p.u : p.u, p.v};
    });
    expectWay("mirror", {{"Axis", std::string("Both")}, {"Flip", true}}, [](Place p) {
        return Place{std::max(p.u, 1.0 - p.u), std::max(p.v, 1.0 - p.v)};
    });
    expectWay("mirror", {{"Axis", std::string("Diagonal")}}, [](Place p) {
        return Place{std::min(p.u, p.v), std::max(p.u, p.v)};
    });
}

TEST(SpaceKernels, swirlAndBulgeLeaveWhatIsBeyondTheirRadius)
{
    expectWay("swirl", {{"Angle", 90.0}, {"Radius", 0.4}}, [](Place p) {
        const Place away{p.u - 0.5, p.v - 0.5};
        const double left = std::max(0.0, 1.0 - std::hypot(away.u, away.v) / 0.4);
        const Place to = turned(away, Pi / 2.0 * left * left * (3.0 - 2.0 * left));
        return Place{to.u + 0.5, to.v + 0.5};
    });
    for (const double amount : {-1.0, 0.5, 1.0}) {
        expectWay("bulge", {{"Amount", amount}, {"Radius", 0.3}}, [amount](Place p) {
            const double square = ((p.u - 0.5) * (p.u - 0.5) + (p.v - 0.5) * (p.v - 0.5)) / 0.09;
            const double left = std::max(0.0, 1.0 - square);
            const double factor = 1.0 - 0.8 * amount * left * left;
            return Place{0.5 + (p.u - 0.5) * factor, 0.5 + (p.v - 0.5) * factor};
        });
    }
}

TEST(SpaceKernels, polarUnwrapsWhatItWraps)
{
    expectWay("polar", {{"Direction", std::string("Unwrap")}, {"Radius", 0.4}}, [](Place p) {
        const Place to = turned({0.4 * p.v, 0.0}, 2.0 * Pi * p.u);
        return Place{0.5 + to.u, 0.5 + to.v};
    });
    expectWay("polar", {{"Radius", 0.5}}, [](Place p) {
        const double angle = std::atan2(p.v - 0.5, p.u - 0.5) / (2.0 * Pi);
        const double away = std::hypot(p.u - 0.5, p.v - 0.5) / 0.5;
        // In the middle one texel is many.
        return Place{away < 0.1 ? 9.0 : angle - std::floor(angle), away};
    });
}

TEST(SpaceKernels, kaleidoscopesAreTheSameInEverySlice)
{
    const Picture input = randomPicture(Size, Size, 4, 21);
    const Picture result =
        KernelBench("kaleidoscope", {{"Segments", 4.0}}).input("Input", input).run(Size, Size);
    for (int i = 3; i < 120; i += 7) {
        for (int k = 0; k < 4; ++k) {
            // A turn by a quarter, and the mirror of each slice.
            EXPECT_NEAR(result.at(k, 200, 128 + i), result.at(k, 127 - i, 200), 2e-3);
            EXPECT_NEAR(result.at(k, 200, 128 + i), result.at(k, 200, 127 - i), 2e-3);
        }
    }
}

TEST(SpaceKernels, perspectiveMeetsItsCornersBothWays)
{
    const OssEvParameters corners{{"LowerLeft", OssEvVector2{0.1, 0.2}},
                                  {"LowerRight", OssEvVector2{0.9, 0.1}},
                                  {"UpperRight", OssEvVector2{0.7, 0.8}},
                                  {"UpperLeft", OssEvVector2{0.2, 0.9}}};
    OssEvParameters from = corners;
    from["Direction"] = std::string("From");
    const Picture input = coordinates();
    const Picture taken = KernelBench("perspective", from).input("Input", input).run(Size, Size);
    EXPECT_NEAR(taken.at(0, 0, 255), 0.1, 0.01);
    EXPECT_NEAR(taken.at(1, 0, 255), 0.2, 0.01);
    EXPECT_NEAR(taken.at(0, 255, 0), 0.7, 0.01);
    EXPECT_NEAR(taken.at(1, 255, 0), 0.8, 0.01);
    const Picture back = KernelBench("perspective", corners).input("Input", taken).run(Size, Size);
    for (const int i : {80, 128, 170}) {
        EXPECT_NEAR(back.at(0, i, 128), (i + 0.5) / Size, 5e-3) << "there and back";
        EXPECT_NEAR(back.at(1, 128, i), 1.0 - (i + 0.5) / Size, 5e-3);
    }
    EXPECT_EQ(back.at(2, 2, 128), 0.0) << "nothing beside the corners";
}

TEST(SpaceKernels, cropsAndTiles)
{
    const Picture input = coordinates();
    const Picture kept = KernelBench("crop").input("Input", input).run(Size, Size);
    EXPECT_EQ(kept.at(2, 60, 128), 0.0);
    EXPECT_NEAR(kept.at(0, 70, 128), 70.5 / Size, 1e-5);
    expectWay("crop", {{"Fit", std::string("Fill Patch")}}, [](Place p) {
        return Place{0.25 + 0.5 * p.u, 0.25 + 0.5 * p.v};
    });
    const auto part = [](double value) {
        return value - std::floor(value);
    };
    expectWay("tileOffset", {}, [part](Place p) {
        return Place{part(p.u - 0.5), part(p.v - 0.5)};
    });
    expectWay(
        "tileOffset",
        {{"TilesU", 2.0}, {"TilesV", 4.0}, {"RowShift", 0.25}, {"Offset", OssEvVector2{0, 0}}},
        [part](Place p) {
            const double shift = int(std::floor(4.0 * p.v)) % 2 == 1 ? 0.25 : 0.0;
            return Place{part(2.0 * p.u - shift), part(4.0 * p.v)};
        });
    expectWay(
        "makeTile", {{"Width", 0.25}, {"Sharpness", 0.0}},
        [](Place p) {
            const bool alone = 0.75 * p.u > 0.25 && 0.75 * p.v > 0.25;
            return Place{alone ? 0.75 * p.u : 9.0, 0.75 * p.v};
        },
        2000);
}

TEST(SpaceKernels, whatIsMadeToTileDoes)
{
    const Picture input = pictureOf(Size, Size, 1,
                                    [](int, int x, int y) { return x * 0.01 + y * 0.003; });
    for (const char *kernel : {"makeTile", "textureBombing", "hexTiling"}) {
        const Picture result = KernelBench(kernel).input("Input", input).run(Size, Size);
        double across = 0.0;
        double beside = 0.0;
        for (int i = 0; i < Size; ++i) {
            across += std::abs(result.at(0, 0, i) - result.at(0, 255, i));
            across += std::abs(result.at(0, i, 0) - result.at(0, i, 255));
            beside += std::abs(result.at(0, 100, i) - result.at(0, 101, i));
            beside += std::abs(result.at(0, i, 100) - result.at(0, i, 101));
        }
        EXPECT_LT(across, 3.0 * beside + 2.0) << kernel;
    }
}

TEST(SpaceKernels, mapsMoveAsFarAsTheySay)
{
    const Picture input = coordinates();
    const auto constant = [](double value, int channels) {
        return pictureOf(Size, Size, channels, [value](int, int, int) { return value; });
    };
    const Picture full = constant(1.0, 3);
    const Picture half = constant(0.5, 1);
    const Picture moved = KernelBench("vectorWarp", {{"Amount", 0.1}})
                              .input("Input", input)
                              .input("Vector", full)
                              .run(Size, Size);
    EXPECT_NEAR(moved.at(0, 100, 100), 100.5 / Size + 0.1, 1e-3);
    EXPECT_NEAR(moved.at(1, 100, 100), 1.0 - 100.5 / Size + 0.1, 1e-3);
    for (const char *kernel : {"vectorWarp", "multiWarp", "uvFromMap"}) {
        const Picture still = KernelBench(kernel).input("Input", input).run(Size, Size);
        EXPECT_NEAR(still.at(0, 100, 100), 100.5 / Size, 1e-5) << kernel << " without a map";
    }
    const Picture one = constant(1.0, 1);
    KernelBench multi("multiWarp",
                      {{"Amount", 0.2}, {"Directions", std::string("1")}, {"Angle", 90.0}});
    const Picture up = multi.input("Input", input).input("Intensity", one).run(Size, Size);
    EXPECT_NEAR(up.at(1, 100, 128), 1.0 - 128.5 / Size + 0.1, 1e-3);
    KernelBench brightest("multiWarp", {{"Amount", 0.2}, {"Mode", std::string("Lightest")}});
    const Picture lit = brightest.input("Input", input).input("Intensity", one).run(Size, Size);
    EXPECT_NEAR(lit.at(0, 100, 128) + lit.at(1, 100, 128), 100.5 / Size + 1.0 - 128.5 / Size + 0.1,
                2e-3);
    const Picture quarter = KernelBench("rotateByMap", {{"Angle", 180.0}})
                                .input("Input", input)
                                .input("Map", half)
                                .run(Size, Size);
    // Turned to the left by 90 degrees: what is right of the middle comes from below it.
    EXPECT_NEAR(quarter.at(0, 192, 128), 0.5, 4e-3);
    EXPECT_NEAR(quarter.at(1, 192, 128), 1.0 - 192.5 / Size, 4e-3);
}

} // namespace
