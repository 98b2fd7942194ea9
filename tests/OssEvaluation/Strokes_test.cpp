#include "OssEvaluation/Paint/OssEvStroke.h"
#include "OssEvaluation/PaintTexels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>

namespace {

constexpr int Resolution = 300;
using Texel = OssEvPaintTile::Texel;

struct Dab
{
    double x; // texels from the left of patch 1001, to the right
    double y; // texels from the top of patch 1001, downwards
};

/// Where dabs fall along a line, as the distance between them says.
std::vector<Dab> dabsBetween(const Dab &from, const Dab &to, double radius)
{
    const double step = OssEvBrush().spacing * radius;
    const double length = std::hypot(to.x - from.x, to.y - from.y);
    std::vector<Dab> dabs;
    for (double at = 0.0; at <= length; at += step)
        dabs.push_back(
            {from.x + (to.x - from.x) * at / length, from.y + (to.y - from.y) * at / length});
    return dabs;
}

/// What a stroke makes of a texel, in plain words: the most that one dab covers, with the stroke's
/// opacity over what was there.
Texel painted(Texel before, const std::vector<Dab> &dabs, const OssEvBrush &brush, double x,
              double y)
{
    double most = 0.0;
    for (const Dab &dab : dabs) {
        const double distance = std::hypot(x + 0.5 - dab.x, y + 0.5 - dab.y);
        const double edge = std::max(1.0, brush.radius * (1.0 - brush.hardness));
        const double t = std::min(1.0, std::max(0.0, (brush.radius + 0.5 - distance) / edge));
        most = std::max(most, t * t * (3.0 - 2.0 * t));
    }
    const double alpha = most * brush.opacity;
    for (std::size_t plane = 0; plane < before.size(); ++plane) {
        double source = 0.0;
        if (!brush.erases() && plane < 3)
            source = double(brush.color[plane]);
        if (!brush.erases() && plane == 3)
            source = 1.0;
        before[plane] = float(alpha * source + (1.0 - alpha) * double(before[plane]));
    }
    return before;
}

/// Alpha at a place counted from patch 1001, also beyond its borders; below 0 where no patch is.
float alphaAt(const OssEvPaintBuffer &buffer, int x, int y)
{
    const bool right = x >= Resolution;
    const bool above = y < 0;
    if (right && above)
        return -1.0F;
    const int patch = right ? 1002 : above ? 1011 : 1001;
    return texelOf(buffer, patch, right ? x - Resolution : x, above ? y + Resolution : y)[3];
}

const std::vector<int> OnePatch{1001};
/// Patches 1001 and 1002 lie side by side, 1011 above 1001.
const std::vector<int> Patches{1001, 1002, 1011};

OssEvStroke::Areas draw(OssEvPaintBuffer *buffer, const OssEvBrush &brush, const Dab &from,
                        const Dab &to, const std::vector<int> &patches = Patches)
{
    OssEvFlatStroke stroke(buffer, brush, patches);
    OssEvStroke::Areas areas = stroke.moveTo(from.x / Resolution, 1.0 - from.y / Resolution);
    stroke.moveTo(to.x / Resolution, 1.0 - to.y / Resolution);
    for (const auto &area : stroke.finish())
        areas[area.first] = area.second;
    return areas;
}

OssEvStroke::Areas moved(OssEvStroke *stroke, double x, double y, double pressure = 1.0)
{
    return stroke->moveTo(x / Resolution, 1.0 - y / Resolution, pressure);
}

OssEvBrush hardBrush(double radius)
{
    OssEvBrush brush;
    brush.radius = radius;
    brush.hardness = 1.0;
    return brush;
}

int paintedTexels(const OssEvPaintBuffer &buffer, int patch = 1001)
{
    int count = 0;
    for (int y = 0; y < buffer.resolution(); ++y) {
        for (int x = 0; x < buffer.resolution(); ++x)
            count += texelOf(buffer, patch, x, y)[3] > 0.5F ? 1 : 0;
    }
    return count;
}

TEST(Strokes, strokesAreTheMostThatADabCoversOverWhatWasThere)
{
    OssEvPaintBuffer buffer(Resolution);
    std::map<std::pair<int, int>, Texel> expected;
    OssEvBrush brush;

    struct Stroke
    {
        Dab from;
        Dab to;
        double radius;
        double hardness;
        double opacity;
        bool erases;
    };

    const Stroke strokes[] = {{{60, 60}, {200, 120}, 20, 0.3, 0.7, false},
                              {{200, 40}, {50, 140}, 7.5, 1.0, 1.0, false},
                              {{128, 20}, {128, 200}, 12, 0.0, 0.6, true},
                              {{127, 127}, {129, 129}, 0.5, 1.0, 1.0, false}};
    float shade = 0.25F;
    for (const Stroke &stroke : strokes) {
        brush.radius = stroke.radius;
        brush.hardness = stroke.hardness;
        brush.opacity = stroke.opacity;
        brush.tool = stroke.erases ? OssEvBrush::Tool::Eraser : OssEvBrush::Tool::Brush;
        brush.color = {shade, 4.0F * shade, 1.0F - shade};
        shade += 0.2F;
        const auto dabs = dabsBetween(stroke.from, stroke.to, std::max(brush.radius, 4.0));
        for (int y = 0; y < Resolution; ++y) {
            for (int x = 0; x < Resolution; ++x) {
                Texel &texel = expected.emplace(std::pair(x, y), Bare).first->second;
                texel = painted(texel, dabs, brush, x, y);
            }
        }
        draw(&buffer, brush, stroke.from, stroke.to);
    }
    double worst = 0.0;
    for (const auto &[place, wanted] : expected) {
        const Texel now = texelOf(buffer, 1001, place.first, place.second);
        for (std::size_t plane = 0; plane < now.size(); ++plane)
            worst = std::max(worst, double(std::abs(now[plane] - wanted[plane])));
    }
    // Half floats up to 2, rounded once for each stroke.
    EXPECT_LT(worst, 4.0 / 2048.0);
    EXPECT_LT(texelOf(buffer, 1001, 128, 60)[OssEvPaintTile::Keep], 0.5F) << "the eraser erased";
}

TEST(Strokes, aStrokeDoesNotCareHowOftenThePointerWasSeen)
{
    OssEvBrush brush;
    brush.radius = 16;
    OssEvPaintBuffer once(Resolution);
    draw(&once, brush, {40, 40}, {200, 170});
    OssEvPaintBuffer often(Resolution);
    OssEvFlatStroke stroke(&often, brush, Patches);
    for (int i = 0; i <= 100; ++i)
        stroke.moveTo((40.0 + 1.6 * i) / Resolution, 1.0 - (40.0 + 1.3 * i) / Resolution);
    stroke.finish();
    float worst = 0.0F;
    for (int y = 0; y < Resolution; ++y) {
        for (int x = 0; x < Resolution; ++x)
            worst = std::max(
                worst, std::abs(texelOf(once, 1001, x, y)[3] - texelOf(often, 1001, x, y)[3]));
    }
    EXPECT_LT(worst, 0.002F);
}

TEST(Strokes, aStrokeGoesOnOverTheBordersOfPatches)
{
    OssEvBrush brush;
    brush.radius = 20;
    brush.hardness = 0.5;
    const Dab from{244, 30};
    const Dab to{364, -40}; // over the corner where four patches meet
    OssEvPaintBuffer buffer(Resolution);
    const OssEvStroke::Areas areas = draw(&buffer, brush, from, to);
    const auto dabs = dabsBetween(from, to, brush.radius);
    float worst = 0.0F;
    for (int y = -100; y < 100; ++y) {
        for (int x = 100; x < 450; ++x) {
            const float seen = alphaAt(buffer, x, y);
            if (seen >= 0.0F)
                worst = std::max(worst, std::abs(seen - painted(Bare, dabs, brush, x, y)[3]));
        }
    }
    EXPECT_LT(worst, 0.001F);
    EXPECT_EQ(buffer.patches(), Patches);
    for (const int patch : Patches)
        EXPECT_EQ(areas.count(patch), 1U) << patch;
}

TEST(Strokes, whatAStrokeSaysItChangedLeadsBackAndForth)
{
    OssEvPaintBuffer buffer(Resolution);
    OssEvBrush brush;
    draw(&buffer, brush, {30, 30}, {60, 60});
    const OssEvPaintBuffer before = buffer;
    OssEvFlatStroke stroke(&buffer, brush, Patches);
    stroke.moveTo(0.4, 0.6);
    stroke.moveTo(0.9, 0.2);
    const OssEvPaintBuffer after = buffer;
    for (const OssEvStroke::Change &change : stroke.changes())
        buffer.setTile(change.place, change.before);
    EXPECT_EQ(buffer.tiles(), before.tiles());
    for (const OssEvStroke::Change &change : stroke.changes())
        buffer.setTile(change.place, change.after);
    EXPECT_EQ(buffer.tiles(), after.tiles());
    EXPECT_NE(before.tiles(), after.tiles());
    EXPECT_LT(texelOf(before, 1001, 120, 120)[3], 0.01F)
        << "tiles before a stroke stay as they were";
}

TEST(Strokes, theAreaThatIsToldHoldsEverythingThatChanged)
{
    OssEvPaintBuffer buffer(Resolution);
    OssEvFlatStroke stroke(&buffer, hardBrush(18), OnePatch);
    const double path[][2] = {{120, 120}, {136, 136}, {40, 250}, {290, 260}, {299, 2}, {150, 150}};
    std::vector<Texel> before(std::size_t(Resolution) * Resolution, Bare);
    for (const auto &place : path) {
        const OssEvStroke::Areas areas = moved(&stroke, place[0], place[1]);
        if (&place == &path[1]) { // it is painted when it is known where to go on
            EXPECT_TRUE(areas.empty());
            continue;
        }
        ASSERT_EQ(areas.size(), 1U);
        const OssEvRegion area = areas.at(1001);
        EXPECT_EQ(area.intersected({0, 0, Resolution, Resolution}), area) << "within the patch";
        int changed = 0;
        for (int y = 0; y < Resolution; ++y) {
            for (int x = 0; x < Resolution; ++x) {
                Texel &old = before[std::size_t(y * Resolution + x)];
                const Texel now = texelOf(buffer, 1001, x, y);
                if (now != old) {
                    ASSERT_TRUE(area.contains(x, y)) << x << ", " << y;
                    ++changed;
                }
                old = now;
            }
        }
        EXPECT_GT(changed, 0);
    }
    EXPECT_TRUE(moved(&stroke, 150, 150).empty()) << "nothing new";
}

TEST(Strokes, pressureMakesTheBrushSmallerDownToADot)
{
    const auto discOf = [](double pressure) {
        OssEvPaintBuffer buffer(Resolution);
        OssEvFlatStroke stroke(&buffer, hardBrush(40), OnePatch);
        moved(&stroke, 150.5, 150.5, pressure);
        return paintedTexels(buffer);
    };
    constexpr double Pi = 3.14159265;
    EXPECT_NEAR(discOf(1.0), Pi * 40 * 40, 130);
    EXPECT_NEAR(discOf(0.5), Pi * 20 * 20, 70);
    EXPECT_NEAR(discOf(0.25), Pi * 10 * 10, 40);
    EXPECT_GE(discOf(0.0), 1) << "what is touched is painted";
    EXPECT_LE(discOf(0.0), 5);
    OssEvPaintBuffer buffer(Resolution);
    OssEvFlatStroke stroke(&buffer, hardBrush(40), OnePatch);
    moved(&stroke, 50, 150, 0.1);
    moved(&stroke, 250, 150, 1.0); // grows on the way
    stroke.finish();
    const auto heightAt = [&buffer](int x) {
        int count = 0;
        for (int y = 0; y < Resolution; ++y)
            count += texelOf(buffer, 1001, x, y)[3] > 0.5F ? 1 : 0;
        return count;
    };
    EXPECT_LT(heightAt(60), heightAt(130));
    EXPECT_LT(heightAt(130), heightAt(230));
}

TEST(Strokes, placesInALineMakeTheStraightStrokeHoweverFarApartTheyAre)
{
    OssEvPaintBuffer straight(Resolution);
    draw(&straight, hardBrush(9), {20, 40}, {260, 200});
    OssEvPaintBuffer uneven(Resolution);
    OssEvFlatStroke stroke(&uneven, hardBrush(9), Patches);
    for (const double way : {0.0, 0.01, 0.012, 0.4, 0.4, 0.41, 0.99, 1.0})
        moved(&stroke, 20 + 240 * way, 40 + 160 * way);
    stroke.finish();
    for (int y = 0; y < Resolution; ++y) {
        for (int x = 0; x < Resolution; ++x)
            ASSERT_NEAR(texelOf(uneven, 1001, x, y)[3], texelOf(straight, 1001, x, y)[3], 0.02)
                << x << ", " << y;
    }
}

TEST(Strokes, aFewPlacesOnACircleMakeACircle)
{
    constexpr double Pi = 3.14159265358979;
    const auto onCircle = [](double degrees) {
        return Dab{150 + 80 * std::cos(degrees * Pi / 180),
                   150 + 80 * std::sin(degrees * Pi / 180)};
    };
    OssEvPaintBuffer buffer(Resolution);
    OssEvFlatStroke stroke(&buffer, hardBrush(2), Patches);
    for (int degrees = 0; degrees <= 240; degrees += 40)
        moved(&stroke, onCircle(degrees).x, onCircle(degrees).y);
    EXPECT_EQ(texelOf(buffer, 1001, int(onCircle(220).x), int(onCircle(220).y))[3], 0.0F)
        << "where it goes on from there shapes it";
    stroke.finish();
    // A chord between two places would be five texels off.
    for (int degrees = 45; degrees < 195; degrees += 5)
        EXPECT_GT(texelOf(buffer, 1001, int(onCircle(degrees).x), int(onCircle(degrees).y))[3],
                  0.5F)
            << degrees;
    EXPECT_GT(texelOf(buffer, 1001, int(onCircle(240).x), int(onCircle(240).y))[3], 0.5F);
    EXPECT_TRUE(stroke.finish().empty());
}

TEST(Strokes, paintGoesOnlyWhereThereIsSomethingToPaintOn)
{
    OssEvPaintBuffer buffer(Resolution);
    OssEvFlatStroke stroke(&buffer, hardBrush(30), {1002});
    EXPECT_TRUE(moved(&stroke, 100, 100).empty());
    moved(&stroke, 310, 100);
    const auto areas = stroke.finish();
    EXPECT_EQ(areas.count(1001), 0U);
    EXPECT_EQ(areas.count(1002), 1U);
    EXPECT_EQ(buffer.patches(), std::vector<int>{1002});
    OssEvFlatStroke outside(&buffer, hardBrush(30), OnePatch);
    EXPECT_TRUE(moved(&outside, -500, -500).empty());
    EXPECT_TRUE(outside.changes().empty());
}

TEST(Strokes, aDabAtTheCornerIsCutThere)
{
    OssEvPaintBuffer buffer(Resolution);
    OssEvFlatStroke stroke(&buffer, hardBrush(20), OnePatch);
    moved(&stroke, 0, 0);
    EXPECT_NEAR(paintedTexels(buffer), 3.14159 * 400 / 4, 40);
    EXPECT_EQ(texelOf(buffer, 1001, 0, 0)[3], 1.0F);
    OssEvFlatStroke last(&buffer, hardBrush(20), OnePatch);
    const auto areas = moved(&last, Resolution, Resolution);
    EXPECT_EQ(areas.at(1001).right(), Resolution);
    EXPECT_EQ(areas.at(1001).bottom(), Resolution);
    EXPECT_EQ(texelOf(buffer, 1001, 299, 299)[3], 1.0F);
}

TEST(Strokes, hardBrushesAreFullWithinAndSoftOnesFallOffEvenly)
{
    for (const double radius : {0.5, 1.0, 10.0, 100.0}) {
        for (const double hardness : {0.0, 0.5, 1.0}) {
            OssEvBrush brush;
            brush.radius = radius;
            brush.hardness = hardness;
            const OssEvDabShape dab(brush, radius, 1.0, 0.0, 0);
            EXPECT_EQ(dab.atSquare(dab.reach() * dab.reach()), 0.0F);
            EXPECT_EQ(dab.atSquare(1e6), 0.0F);
            const double core = radius + 0.5 - std::max(1.0, radius * (1.0 - hardness));
            float last = 1.0F;
            for (double at = 0.0; at <= dab.reach(); at += 0.05) {
                const float covered = dab.atSquare(at * at);
                EXPECT_LE(covered, last);
                EXPECT_TRUE(at > core || covered == 1.0F) << at;
                EXPECT_TRUE(at < core + 0.06 || covered < 1.0F) << at;
                last = covered;
            }
        }
    }
}

TEST(Strokes, whatIsPaintedOverAndOverIsPaintedOnce)
{
    OssEvBrush brush = hardBrush(12);
    brush.opacity = 0.5;
    OssEvPaintBuffer buffer(Resolution);
    OssEvFlatStroke stroke(&buffer, brush, OnePatch);
    for (int i = 0; i < 20; ++i)
        moved(&stroke, 100 + i % 2 * 50, 100);
    EXPECT_NEAR(texelOf(buffer, 1001, 125, 100)[3], 0.5F, 1e-3F);
    OssEvFlatStroke second(&buffer, brush, OnePatch);
    moved(&second, 125, 100);
    EXPECT_NEAR(texelOf(buffer, 1001, 125, 100)[3], 0.75F, 1e-3F) << "the next stroke adds up";
    brush.opacity = 0.0;
    OssEvFlatStroke unseen(&buffer, brush, OnePatch);
    moved(&unseen, 200, 200);
    EXPECT_EQ(texelOf(buffer, 1001, 200, 200), Bare);
}

} // namespace
