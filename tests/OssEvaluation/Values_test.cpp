#include "OssEvaluation/Values/OssEvBuffer.h"
#include "OssEvaluation/Values/OssEvHalf.h"
#include "OssEvaluation/Values/OssEvParameter.h"
#include "OssEvaluation/Values/OssEvRamp.h"
#include "OssEvaluation/Values/OssEvRegion.h"
#include "OssEvaluation/Values/OssEvRotation.h"
#include "OssEvaluation/Values/OssEvTile.h"
#include "OssEvaluation/Values/Texels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <set>

#include <malloc.h>

namespace {

constexpr int Size = OssEvTile::Size;
constexpr float Endless = std::numeric_limits<float>::infinity();

// --- half floats

TEST(Halves, everyOneReadsBackAsItself)
{
    for (int i = 0; i < 65536; ++i) {
        const auto half = std::uint16_t(i);
        const float value = OssEvHalf::toFloat(half);
        const bool none = (half & 0x7C00U) == 0x7C00U && (half & 0x3FFU) != 0;
        EXPECT_EQ(std::isnan(value), none) << i;
        if (none)
            EXPECT_TRUE(std::isnan(OssEvHalf::toFloat(OssEvHalf::fromFloat(value)))) << i;
        else
            ASSERT_EQ(OssEvHalf::fromFloat(value), half) << i << ": " << value;
    }
    EXPECT_EQ(OssEvHalf::toFloat(0x3C00), 1.0F);
    EXPECT_EQ(OssEvHalf::toFloat(0x0001), std::ldexp(1.0F, -24));
    EXPECT_EQ(OssEvHalf::toFloat(0xFBFF), -65504.0F);
}

TEST(Halves, theNearestIsTakenAndOfTwoTheEvenOne)
{
    for (int i = 0; i < 0x7BFF; ++i) {
        const auto low = std::uint16_t(i);
        const auto high = std::uint16_t(i + 1);
        const float a = OssEvHalf::toFloat(low);
        const float b = OssEvHalf::toFloat(high);
        const float middle = a + (b - a) / 2.0F; // exact: a float has the digits
        const std::uint16_t even = (low & 1U) == 0 ? low : high;
        ASSERT_EQ(OssEvHalf::fromFloat(middle), even) << middle;
        ASSERT_EQ(OssEvHalf::fromFloat(std::nextafter(middle, 0.0F)), low) << middle;
        ASSERT_EQ(OssEvHalf::fromFloat(std::nextafter(middle, Endless)), high) << middle;
        ASSERT_EQ(OssEvHalf::fromFloat(-middle), even | 0x8000U) << middle;
    }
    EXPECT_EQ(OssEvHalf::fromFloat(65519.99F), 0x7BFF);
    EXPECT_EQ(OssEvHalf::fromFloat(65520.0F), 0x7C00) << "too large";
    EXPECT_EQ(OssEvHalf::fromFloat(-Endless), 0xFC00);
    EXPECT_EQ(OssEvHalf::fromFloat(std::ldexp(1.0F, -25)), 0) << "half of the smallest";
    EXPECT_EQ(OssEvHalf::fromFloat(-1e-30F), 0x8000);
}

TEST(TexelKernels, rowsOfTexelsAreConvertedLikeSingleOnes)
{
    // Tiles hold nothing but finite halves.
    alignas(64) static std::array<std::uint16_t, 65536> halves;
    alignas(64) static std::array<float, 65536> floats;
    for (std::size_t i = 0; i < halves.size(); ++i)
        halves[i] = (i & 0x7C00U) == 0x7C00U ? std::uint16_t(0) : std::uint16_t(i);
    const auto before = halves;
    OssEvTexels::halfToFloat(halves.data(), floats.data(), floats.size());
    for (std::size_t i = 0; i < halves.size(); ++i)
        ASSERT_EQ(floats[i], OssEvHalf::toFloat(halves[i])) << i;
    OssEvTexels::floatToHalf(floats.data(), halves.data(), halves.size());
    for (std::size_t i = 0; i < halves.size(); ++i) {
        // Processors without half floats lose the smallest ones.
        const bool isSmall = (before[i] & 0x7C00U) == 0;
        ASSERT_NEAR(OssEvHalf::toFloat(halves[i]), floats[i], isSmall ? 6.2e-5 : 0.0) << i;
    }
}

TEST(TexelKernels, halvesAreNearAndAlwaysFinite)
{
    alignas(64) std::array<float, 64> floats{};
    alignas(64) std::array<std::uint16_t, 64> halves{};
    alignas(64) std::array<float, 64> back{};
    const std::array<float, 10> cases{0.0F,  -0.0F,   1.0F,    0.1F,  65504.0F,
                                      1e-7F, 6.1e-5F, -2.718F, 3e-5F, 1.0009766F};
    std::copy(cases.begin(), cases.end(), floats.begin());
    floats[10] = 1e9F;
    floats[11] = -std::numeric_limits<float>::infinity();
    floats[12] = std::numeric_limits<float>::quiet_NaN();
    OssEvTexels::floatToHalf(floats.data(), halves.data(), floats.size());
    OssEvTexels::halfToFloat(halves.data(), back.data(), back.size());
    for (std::size_t i = 0; i < cases.size(); ++i) {
        // Some processors round, others cut off.
        EXPECT_NEAR(back[i], cases[i], std::abs(cases[i]) * 1e-3F + 7e-8F);
        EXPECT_NEAR(OssEvHalf::toFloat(OssEvHalf::fromFloat(cases[i])), cases[i],
                    std::abs(cases[i]) * 5e-4F + 4e-8F);
    }
    EXPECT_EQ(back[10], 65504.0F);
    EXPECT_EQ(back[11], -65504.0F);
    EXPECT_EQ(back[12], 0.0F);
}

TEST(TexelKernels, finiteMeansFiniteAndLeavesTheOthers)
{
    alignas(64) std::array<float, 32> values{};
    values[0] = Endless;
    values[1] = -Endless;
    values[2] = std::numeric_limits<float>::quiet_NaN();
    values[3] = std::numeric_limits<float>::max();
    values[31] = -0.5F;
    OssEvTexels::makeFinite(values.data(), values.size());
    EXPECT_EQ(values[0], std::numeric_limits<float>::max());
    EXPECT_EQ(values[1], std::numeric_limits<float>::lowest());
    EXPECT_EQ(values[2], 0.0F);
    EXPECT_EQ(values[3], std::numeric_limits<float>::max());
    EXPECT_EQ(values[31], -0.5F);
}

TEST(TexelKernels, oneTexelThatDiffersIsSeenWhereverItIs)
{
    alignas(64) std::array<float, 256> values{};
    values.fill(0.25F);
    EXPECT_TRUE(OssEvTexels::isUniform(values.data(), values.size()));
    for (std::size_t i = 0; i < values.size(); ++i) {
        values[i] = 0.2500001F;
        EXPECT_FALSE(OssEvTexels::isUniform(values.data(), values.size())) << i;
        values[i] = 0.25F;
    }
}

TEST(TexelKernels, texelsReadInOtherNumbersOfChannels)
{
    const std::array<float, 4> texel{0.5F, 0.25F, 1.0F, 0.125F};
    const float luminance = 0.2126F * 0.5F + 0.7152F * 0.25F + 0.0722F;
    const float mean = 1.75F / 3.0F;
    const auto convert = [&texel](int from, int to) {
        return OssEvTexels::convert(texel, from, to, OssEvWorkingSpace::Bt709Luminance);
    };
    EXPECT_EQ(convert(4, 4), texel);
    EXPECT_EQ(convert(1, 4), (std::array<float, 4>{0.5F, 0.5F, 0.5F, 1.0F}));
    EXPECT_EQ(convert(3, 4), (std::array<float, 4>{0.5F, 0.25F, 1.0F, 1.0F}));
    EXPECT_NEAR(convert(4, 1)[0], luminance, 1e-6F);
    EXPECT_NEAR(convert(3, 1)[0], mean, 1e-6F);
    EXPECT_EQ(OssEvTexels::convert(texel, 4, 1, {0.0F, 1.0F, 0.0F})[0], 0.25F);
    const auto vector = convert(1, 3);
    EXPECT_EQ(vector[2], 0.5F);
}

// --- regions

TEST(Regions, emptyOnesAreKnownAndIntersectionsAreExact)
{
    const OssEvRegion region{2, 3, 10, 20};
    EXPECT_EQ(region.intersected({0, 0, 5, 5}), (OssEvRegion{2, 3, 3, 2}));
    EXPECT_EQ(region.intersected(region), region);
    EXPECT_TRUE(region.intersected({12, 3, 5, 5}).isEmpty()) << "side by side";
    EXPECT_TRUE(region.intersected({2, 23, 5, 5}).isEmpty());
    EXPECT_TRUE(region.intersected({-50, -50, 10, 10}).isEmpty());
    EXPECT_TRUE((OssEvRegion{0, 0, 0, 5}).isEmpty());
    EXPECT_TRUE((OssEvRegion{0, 0, 5, -1}).isEmpty());
    EXPECT_EQ(region.expanded(3), (OssEvRegion{-1, 0, 16, 26}));
    EXPECT_TRUE(region.contains(2, 3) && region.contains(11, 22));
    EXPECT_FALSE(region.contains(12, 3) || region.contains(2, 23) || region.contains(1, 3));
}

// --- ramps, curves

TEST(Ramps, placesAndAlphaStayWithinTheirRangeAndStopsAreSorted)
{
    const OssEvRamp ramp(
        {{2.0, {1, 0, 0, 3}}, {0.5, {0, 1, 0, 1}}, {-1.0, {0, 0, 1, -2}}, {0.5, {0, 0, 0, 1}}});
    ASSERT_EQ(ramp.stops().size(), 4U);
    EXPECT_EQ(ramp.stops()[0].place, 0.0);
    EXPECT_EQ(ramp.stops()[0].color[3], 0.0F);
    EXPECT_EQ(ramp.stops()[1].color[1], 1.0F) << "of two at one place the first stays first";
    EXPECT_EQ(ramp.stops()[3].place, 1.0);
    EXPECT_EQ(ramp.stops()[3].color[3], 1.0F);
}

TEST(Ramps, areConstantBeyondTheirStopsAndMixPremultipliedBetween)
{
    using Color = std::array<double, 4>;
    const OssEvRamp ramp({{0.25, {1, 0, 0, 0.5F}}, {0.75, {0, 1, 0, 1}}});
    for (const auto mix : {OssEvRamp::Mix::Linear, OssEvRamp::Mix::Smooth, OssEvRamp::Mix::Step}) {
        EXPECT_EQ(ramp.at(-3.0, mix), (Color{0.5, 0, 0, 0.5}));
        EXPECT_EQ(ramp.at(0.25, mix), (Color{0.5, 0, 0, 0.5}));
        EXPECT_EQ(ramp.at(0.75, mix), (Color{0, 1, 0, 1}));
        EXPECT_EQ(ramp.at(9.0, mix), (Color{0, 1, 0, 1}));
    }
    const auto near = [](const Color &a, const Color &b) {
        for (std::size_t k = 0; k < 4; ++k)
            EXPECT_NEAR(a[k], b[k], 1e-12) << k;
    };
    near(ramp.at(0.375, OssEvRamp::Mix::Linear), {0.375, 0.25, 0, 0.625});
    const double smooth = 0.25 * 0.25 * 2.5;
    near(ramp.at(0.375, OssEvRamp::Mix::Smooth),
         {0.5 - 0.5 * smooth, smooth, 0, 0.5 + 0.5 * smooth});
    near(ramp.at(0.7499, OssEvRamp::Mix::Step), {0.5, 0, 0, 0.5});
    near(OssEvRamp().at(0.3, OssEvRamp::Mix::Linear), {0.3, 0.3, 0.3, 1.0});
    near(OssEvRamp().at(7.0, OssEvRamp::Mix::Linear), {1, 1, 1, 1});
    const OssEvRamp jump({{0.5, {0, 0, 0, 1}}, {0.5, {1, 1, 1, 1}}});
    EXPECT_EQ(jump.at(0.4999, OssEvRamp::Mix::Linear)[0], 0.0);
    EXPECT_EQ(jump.at(0.5, OssEvRamp::Mix::Linear)[0], 1.0) << "two stops at one place are a jump";
}

TEST(Ramps, textsReadBackTheSameAndBadOnesAreRefused)
{
    const OssEvRamp ramp({{0.0, {0.1F, 1e-7F, 12.5F, 1}}, {1.0 / 3.0, {-1, 0, 0, 0.3F}}});
    OssEvRamp back;
    ASSERT_TRUE(OssEvRamp::fromText(ramp.toText(), &back));
    EXPECT_TRUE(back == ramp) << ramp.toText();
    ASSERT_TRUE(OssEvRamp::fromText("", &back));
    EXPECT_TRUE(back.stops().empty());
    for (const char *bad : {"0", "0,0,0,0", "0,0,0,0,1,2", "0,0,0,0,x", "0 0 0 0 1", "nan,0,0,0,1",
                            "0,inf,0,0,1", "0,0,0,0,1;1,0,0,0,1", "0,0,0,0,1e999"}) {
        const OssEvResult result = OssEvRamp::fromText(bad, &back);
        EXPECT_NE(result.error().find(bad), std::string::npos) << bad;
        EXPECT_TRUE(back.stops().empty()) << "what was there stays";
    }
}

TEST(Curves, listsOfNumbersEndSomewhere)
{
    std::string text;
    for (int i = 0; i < 1024; ++i)
        text += std::to_string(i) + ",1 ";
    OssEvCurve curve;
    ASSERT_TRUE(OssEvCurve::fromText(text, &curve));
    EXPECT_EQ(curve.points().size(), 1024U);
    EXPECT_FALSE(OssEvCurve::fromText(text + "2000,1", &curve));
    EXPECT_TRUE(OssEvCurve::fromText("\t0,0\n 1,1 \n", &curve));
    EXPECT_EQ(curve.points().size(), 2U);
    for (const char *bad : {"0", "0,", "0,0 x", "0,0;1,1", "nan,1", "1,2,3", ",1", "1,,2", "+1,2",
                            "0x1,2", "1 ,2", "inf,0", "0,-inf"})
        EXPECT_FALSE(OssEvCurve::fromText(bad, &curve)) << bad;
}

TEST(Curves, pointsAreSortedAndTheLastOfOnePlaceCounts)
{
    const double none = std::numeric_limits<double>::quiet_NaN();
    const OssEvCurve curve({{1.0, 2.0},
                            {0.5, 9.0},
                            {none, 1.0},
                            {0.0, 1.0},
                            {0.5, 1.5},
                            {0.25, std::numeric_limits<double>::infinity()}});
    ASSERT_EQ(curve.points().size(), 3U);
    EXPECT_EQ(curve.at(0.5), 1.5);
    EXPECT_EQ(curve.at(0.0), 1.0);
    EXPECT_EQ(curve.at(1.0), 2.0);
    EXPECT_NEAR(curve.at(0.25), 1.25, 1e-12) << "points on a line are a line";
    EXPECT_EQ(curve.at(none), 1.0) << "what is no place is before the first point";
    const OssEvCurve one({{0.5, 7.0}});
    for (const double x : {-1.0, 0.5, 2.0})
        EXPECT_EQ(one.at(x), 7.0);
    EXPECT_EQ(OssEvCurve().at(0.3), 0.3) << "without points what goes in comes out";
}

TEST(Curves, turnAtTheirHighestPointAndStayBetweenTheirNeighbours)
{
    std::mt19937 random(7);
    std::uniform_real_distribution<double> number(0.0, 1.0);
    for (int round = 0; round < 200; ++round) {
        std::vector<OssEvVector2> points;
        points.reserve(6);
        for (int i = 0; i < 6; ++i)
            points.push_back({double(i) + 0.8 * number(random), std::pow(number(random), 4.0)});
        const OssEvCurve curve(points);
        for (std::size_t i = 0; i + 1 < points.size(); ++i) {
            const auto [low, high] = std::minmax(points[i][1], points[i + 1][1]);
            const double way = points[i + 1][1] - points[i][1];
            double last = points[i][1];
            for (int step = 0; step <= 20; ++step) {
                const double x = points[i][0] + (points[i + 1][0] - points[i][0]) * step / 20.0;
                ASSERT_GE(curve.at(x), low - 1e-12);
                ASSERT_LE(curve.at(x), high + 1e-12);
                ASSERT_GE((curve.at(x) - last) * way, -1e-12) << "never back";
                last = curve.at(x);
            }
        }
    }
}

// --- keys

TEST(Keys, everyPartOfAParameterCounts)
{
    const OssEvParameter values[] = {
        1.0,
        2.0,
        std::int64_t(1),
        std::int64_t(2),
        true,
        false,
        std::string("1"),
        std::string(),
        OssEvColor{1, 2, 3, 4},
        OssEvColor{1, 2, 3, 5},
        OssEvColor{2, 1, 3, 4},
        OssEvVector2{1, 2},
        OssEvVector2{1, 3},
        OssEvCurve(),
        OssEvCurve({{0, 0}, {1, 1}}),
        OssEvCurve({{0, 0}, {1, 2}}),
        OssEvRamp(),
        OssEvRamp(std::vector<OssEvRamp::Stop>{{0.0, {0, 0, 0, 1}}}),
        OssEvRamp(std::vector<OssEvRamp::Stop>{{0.0, {0, 0, 1, 1}}}),
    };
    std::set<OssEvKey> keys;
    for (const OssEvParameter &value : values) {
        OssEvKeyBuilder first;
        OssEvAddToKey(&first, value);
        OssEvKeyBuilder second;
        OssEvAddToKey(&second, value);
        EXPECT_EQ(first.key(), second.key());
        EXPECT_FALSE(first.key().isNull());
        EXPECT_TRUE(keys.insert(first.key()).second) << "value " << &value - values;
    }
    const auto bytes = [](const char *text, std::size_t size) {
        return OssEvKeyBuilder().addBytes(text, size).key();
    };
    EXPECT_NE(bytes("abcd", 4), bytes("abcd", 3));
    EXPECT_NE(bytes("abcd", 4), bytes("abce", 4));
    const auto both = [](const char *a, const char *b) {
        return OssEvKeyBuilder().add(std::string_view(a)).add(std::string_view(b)).key();
    };
    EXPECT_NE(both("ab", "c"), both("a", "bc")) << "parts cannot be mistaken for each other";
    EXPECT_EQ(OssEvKeyBuilder().add(0.0).key(), OssEvKeyBuilder().add(-0.0).key());
}

// --- memory

TEST(Buffers, areAlignedGrowAndHandTheirMemoryOver)
{
    for (const std::size_t size : {std::size_t(1), std::size_t(63), std::size_t(64),
                                   std::size_t(20000), std::size_t(600) << 10}) {
        OssEvBuffer buffer(size);
        EXPECT_GE(buffer.size(), size);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(buffer.as<char>()) % OssEvBuffer::Alignment, 0U);
        std::memset(buffer.as<char>(), 1, buffer.size());
        char *memory = buffer.as<char>();
        buffer.reserve(size / 2);
        EXPECT_EQ(buffer.as<char>(), memory) << "large enough already";
        OssEvBuffer moved(std::move(buffer));
        EXPECT_EQ(moved.as<char>(), memory);
        EXPECT_EQ(buffer.size(), 0U); // NOLINT(*Move,*-use-after-move): that is what is looked at
        moved.reserve(4 * moved.size());
        EXPECT_GE(moved.size(), 4 * size);
    }
    const OssEvBuffer none(0);
    EXPECT_EQ(none.size(), 0U);
    EXPECT_EQ(none.as<char>(), nullptr);
}

TEST(Buffers, twoThatLiveAtOnceNeverShareMemory)
{
    for (int round = 0; round < 3; ++round) {
        std::vector<OssEvBuffer> buffers;
        std::set<char *> seen;
        for (int i = 0; i < 50; ++i) {
            buffers.emplace_back(std::size_t(32) << 10);
            EXPECT_TRUE(seen.insert(buffers.back().as<char>()).second);
        }
    }
}

TEST(Buffers, littleOfWhatIsNoLongerNeededIsKept)
{
    const auto inUse = [] {
        const struct mallinfo2 info = ::mallinfo2();
        return info.uordblks + info.hblkhd;
    };
    OssEvBuffer::releaseKept();
    const std::size_t before = inUse();
    {
        std::vector<OssEvBuffer> many;
        many.reserve(400);
        for (int i = 0; i < 400; ++i)
            many.emplace_back(std::size_t(400) << 10);
    }
    EXPECT_LE(inUse(), before + (std::size_t(50) << 20)) << "of 160 MB";
    OssEvBuffer::releaseKept();
    EXPECT_LE(inUse(), before + (std::size_t(1) << 20));
}

TEST(Tiles, ofOneValueCostNothingAndReadLikeOthers)
{
    const OssEvTile constant(3, OssEvTile::Format::Half, {0.5F, 2.0F, -1.0F, 0.0F});
    EXPECT_TRUE(constant.isConstant());
    EXPECT_LT(constant.bytes(), 200U);
    EXPECT_EQ(constant.texel(1, 127, 127), 2.0F);
    const OssEvTile half(1, OssEvTile::Format::Half);
    const OssEvTile full(4, OssEvTile::Format::Float);
    EXPECT_FALSE(half.isConstant());
    EXPECT_GE(half.bytes(), std::size_t(OssEvTile::Texels) * 2);
    EXPECT_GE(full.bytes(), std::size_t(OssEvTile::Texels) * 16);
    for (int k = 0; k < 4; ++k) {
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(full.floatPlane(k)) % 64, 0U);
        full.floatPlane(k)[5 * Size + 7] = float(k);
    }
    for (int k = 0; k < 4; ++k)
        EXPECT_EQ(full.texel(k, 7, 5), float(k));
    for (const auto &count : {std::pair(0, 0), {1, 1}, {128, 1}, {129, 2}, {256, 2}})
        EXPECT_EQ(OssEvTilesAcross(count.first), count.second);
}

} // namespace

TEST(Rotation, isFoundAgainFromItsAxes)
{
    const double angles[] = {-180.0, -90.0, -35.0, 0.0, 20.0, 90.0, 160.0};
    for (const double x : angles) {
        for (const double y : angles) {
            for (const double z : angles) {
                const OssEvRotation::Axes axes = OssEvRotation::axesOf({x, y, z});
                const OssEvRotation::Axes again = OssEvRotation::axesOf(
                    OssEvRotation::anglesOf(axes));
                for (std::size_t k = 0; k < 9; ++k)
                    EXPECT_NEAR(again[k / 3][k % 3], axes[k / 3][k % 3], 1e-5)
                        << x << ' ' << y << ' ' << z;
            }
        }
    }
}
