#include "OssEvaluation/Files/OssEvImageFiles.h"
#include "OssEvaluation/Files/OssEvImageWriter.h"
#include "OssEvaluation/Paint/OssEvPaintBake.h"
#include "OssEvaluation/Paint/OssEvPaintBuffer.h"
#include "OssEvaluation/Paint/OssEvStroke.h"
#include "OssEvaluation/PlainExr.h"
#include "OssEvaluation/TestFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr int Size = OssEvPaintTile::Size;
using Texel = OssEvPaintTile::Texel;
using Place = OssEvPaintBuffer::Place;
const Texel Bare{0.0F, 0.0F, 0.0F, 0.0F, 1.0F};

/// A tile with one value in its red, all of it.
OssEvPaintTilePointer redTile(float red)
{
    auto tile = std::make_shared<OssEvPaintTile>();
    for (int i = 0; i < OssEvPaintTile::Texels; ++i)
        tile->setTexel(i, {red, 0.0F, 0.0F, 1.0F, 0.0F});
    return tile;
}

Texel texelOf(const OssEvPaintBuffer &buffer, int patch, int x, int y)
{
    const OssEvPaintTilePointer tile = buffer.tile({patch, x / Size, y / Size});
    return tile ? tile->texel(y % Size * Size + x % Size) : Bare;
}

// --- buffer

TEST(PaintTiles, changeNothingUntilTheyArePainted)
{
    const OssEvPaintTile tile;
    for (const int i : {0, 1, 8191, OssEvPaintTile::Texels - 1})
        EXPECT_EQ(tile.texel(i), Bare);
    OssEvPaintTile painted;
    const Texel texel{0.5F, 0.25F, 2.0F, 0.75F, 0.125F};
    painted.setTexel(77, texel);
    EXPECT_EQ(painted.texel(77), texel);
    EXPECT_EQ(painted.texel(76), Bare);
    EXPECT_EQ(painted.texel(78), Bare);
    OssEvPaintTile copy(painted);
    copy.setTexel(77, Bare);
    EXPECT_EQ(painted.texel(77), texel) << "a copy is another tile";
}

TEST(PaintTiles, aBufferHoldsWhatWasPutAndForgetsWhatWasTaken)
{
    OssEvPaintBuffer buffer(512);
    EXPECT_TRUE(buffer.isEmpty());
    const Place places[] = {{1011, 0, 0}, {1001, 1, 0}, {1001, 0, 1}, {1003, 3, 3}};
    for (const Place &place : places)
        buffer.setTile(place, redTile(0.5F));
    EXPECT_EQ(buffer.patches(), (std::vector<int>{1001, 1003, 1011}));
    EXPECT_EQ(buffer.bytes(), 4 * OssEvPaintTile::Bytes);
    EXPECT_EQ(buffer.tile({1001, 0, 0}), nullptr);
    EXPECT_EQ(buffer.tile({1001, 1, 1}), nullptr);
    const OssEvPaintBuffer copy = buffer;
    buffer.setTile({1003, 3, 3}, nullptr);
    buffer.setTile({1003, 3, 3}, nullptr);
    EXPECT_EQ(buffer.patches(), (std::vector<int>{1001, 1011}));
    EXPECT_EQ(buffer.tiles().size(), 3U);
    EXPECT_EQ(copy.tiles().size(), 4U);
    EXPECT_EQ(copy.tile({1001, 1, 0}), buffer.tile({1001, 1, 0})) << "copies share their tiles";
    buffer.clear();
    EXPECT_TRUE(buffer.isEmpty());
    EXPECT_EQ(buffer.bytes(), 0U);
    EXPECT_EQ(buffer.resolution(), 512);
}

TEST(PaintTiles, rowsTellWhetherThereIsPaintOnThem)
{
    OssEvPaintBuffer buffer(512);
    buffer.setTile({1001, 2, 1}, redTile(0.5F)); // columns 256 to 383, rows 128 to 255

    struct Case
    {
        int resolution;
        int x;
        int y;
        int count;
        bool painted;
    };

    const Case cases[] = {
        {512, 0, 130, 512, true},   {512, 0, 127, 512, false},  {512, 0, 256, 512, false},
        {512, 0, 200, 256, false},  {512, 0, 200, 257, true},   {512, 384, 200, 128, false},
        {512, 383, 200, 1, true},   {128, 0, 40, 128, true},    {128, 0, 70, 128, false},
        {1024, 512, 300, 10, true}, {1024, 0, 300, 512, false}, {4, 0, 1, 4, true},
        {4, 0, 3, 4, false},
    };
    for (const Case &row : cases) {
        std::vector<Texel> texels(std::size_t(row.count), Texel{9, 9, 9, 9, 9});
        EXPECT_EQ(buffer.readRow(1001, row.resolution, row.x, row.y, row.count, texels.data()),
                  row.painted)
            << "case " << &row - cases;
        EXPECT_EQ(texels.front()[0] == 9.0F, !row.painted) << "nothing is written then";
    }
    std::vector<Texel> texels(512);
    EXPECT_FALSE(buffer.readRow(1002, 512, 0, 130, 512, texels.data())) << "another patch";
}

TEST(PaintTiles, rowsHoldTheMeanOfWhatTheyStandFor)
{
    OssEvPaintBuffer buffer(300); // three tiles, the last of 44 texels
    for (int x = 0; x < 3; ++x)
        buffer.setTile({1001, x, 0}, redTile(float(x + 1)));
    // Every texel of the row, across the borders of tiles.
    std::vector<Texel> texels(300);
    ASSERT_TRUE(buffer.readRow(1001, 300, 0, 5, 300, texels.data()));
    for (int x = 0; x < 300; ++x)
        EXPECT_EQ(texels[std::size_t(x)][0], float(x / Size + 1)) << x;
    // Four texels each way; 128 is a multiple of it.
    ASSERT_TRUE(buffer.readRow(1001, 75, 0, 0, 75, texels.data()));
    for (int x = 0; x < 75; ++x) {
        EXPECT_NEAR(texels[std::size_t(x)][0], float(x * 4 / Size + 1), 1e-5F) << x;
        EXPECT_EQ(texels[std::size_t(x)][OssEvPaintTile::Keep], 0.0F);
    }
    // Rows 100 to 199 are half painted.
    ASSERT_TRUE(buffer.readRow(1001, 3, 0, 1, 1, texels.data()));
    EXPECT_NEAR(texels[0][0], 28.0F / 100.0F, 1e-4F);
    EXPECT_NEAR(texels[0][OssEvPaintTile::Keep], 72.0F / 100.0F, 1e-4F);
    // What lies beyond the picture is as its edge.
    ASSERT_TRUE(buffer.readRow(1001, 3, 2, 0, 3, texels.data()));
    EXPECT_EQ(texels[1][0], 3.0F);
    EXPECT_EQ(texels[1][OssEvPaintTile::Keep], 0.0F);
}

// --- strokes

constexpr int Resolution = 300;
const std::vector<int> OnePatch{1001};

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

TEST(Strokes, theAreaThatIsToldHoldsEverythingThatChanged)
{
    OssEvPaintBuffer buffer(Resolution);
    OssEvStroke stroke(&buffer, hardBrush(18), OnePatch);
    const double path[][2] = {{120, 120}, {136, 136}, {40, 250}, {290, 260}, {299, 2}, {150, 150}};
    std::vector<Texel> before(std::size_t(Resolution) * Resolution, Bare);
    for (const auto &place : path) {
        const OssEvStroke::Areas areas = moved(&stroke, place[0], place[1]);
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
        OssEvStroke stroke(&buffer, hardBrush(40), OnePatch);
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
    OssEvStroke stroke(&buffer, hardBrush(40), OnePatch);
    moved(&stroke, 50, 150, 0.1);
    moved(&stroke, 250, 150, 1.0); // grows on the way
    const auto heightAt = [&buffer](int x) {
        int count = 0;
        for (int y = 0; y < Resolution; ++y)
            count += texelOf(buffer, 1001, x, y)[3] > 0.5F ? 1 : 0;
        return count;
    };
    EXPECT_LT(heightAt(60), heightAt(130));
    EXPECT_LT(heightAt(130), heightAt(230));
}

TEST(Strokes, paintGoesOnlyWhereThereIsSomethingToPaintOn)
{
    OssEvPaintBuffer buffer(Resolution);
    OssEvStroke stroke(&buffer, hardBrush(30), {1002});
    EXPECT_TRUE(moved(&stroke, 100, 100).empty());
    const auto areas = moved(&stroke, 310, 100);
    EXPECT_EQ(areas.count(1001), 0U);
    EXPECT_EQ(areas.count(1002), 1U);
    EXPECT_EQ(buffer.patches(), std::vector<int>{1002});
    OssEvStroke outside(&buffer, hardBrush(30), OnePatch);
    EXPECT_TRUE(moved(&outside, -500, -500).empty());
    EXPECT_TRUE(outside.changes().empty());
}

TEST(Strokes, aDabAtTheCornerIsCutThere)
{
    OssEvPaintBuffer buffer(Resolution);
    OssEvStroke stroke(&buffer, hardBrush(20), OnePatch);
    moved(&stroke, 0, 0);
    EXPECT_NEAR(paintedTexels(buffer), 3.14159 * 400 / 4, 40);
    EXPECT_EQ(texelOf(buffer, 1001, 0, 0)[3], 1.0F);
    OssEvStroke last(&buffer, hardBrush(20), OnePatch);
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
            EXPECT_EQ(brush.coverage(brush.reach()), 0.0F);
            EXPECT_EQ(brush.coverage(brush.reach() + 50.0), 0.0F);
            EXPECT_EQ(brush.coverage(std::min(0.0, brush.core())), 1.0F);
            EXPECT_GE(brush.reach() - brush.core(), 1.0) << "over a texel at least";
            float last = 1.0F;
            for (double at = 0.0; at <= brush.reach(); at += 0.05) {
                const float covered = brush.coverage(at);
                EXPECT_LE(covered, last);
                EXPECT_TRUE(at > brush.core() || covered == 1.0F);
                last = covered;
            }
        }
    }
}

TEST(Strokes, oneWithoutOpacityChangesNothingThatIsSeen)
{
    OssEvPaintBuffer buffer(Resolution);
    OssEvBrush brush = hardBrush(20);
    brush.opacity = 0.0;
    OssEvStroke stroke(&buffer, brush, OnePatch);
    moved(&stroke, 100, 100);
    EXPECT_EQ(texelOf(buffer, 1001, 100, 100), Bare);
}

TEST(Strokes, whatIsPaintedOverAndOverIsPaintedOnce)
{
    OssEvBrush brush = hardBrush(12);
    brush.opacity = 0.5;
    OssEvPaintBuffer buffer(Resolution);
    OssEvStroke stroke(&buffer, brush, OnePatch);
    for (int i = 0; i < 20; ++i)
        moved(&stroke, 100 + i % 2 * 50, 100);
    EXPECT_NEAR(texelOf(buffer, 1001, 125, 100)[3], 0.5F, 1e-3F);
    OssEvStroke second(&buffer, brush, OnePatch);
    moved(&second, 125, 100);
    EXPECT_NEAR(texelOf(buffer, 1001, 125, 100)[3], 0.75F, 1e-3F) << "the next stroke adds up";
}

// --- baking

class PaintBaking : public testing::Test
{
protected:
    OssEvPaintBake::Job job(int resolution, const std::string &beneath)
    {
        OssEvPaintBake::Job result;
        result.paint = OssEvPaintBuffer(resolution);
        result.beneath = beneath;
        result.path = folder.path("baked.exr");
        result.isPrecise = true;
        return result;
    }

    std::array<float, 4> baked(int x, int y)
    {
        OssEvImageFiles files;
        const OssEvImageProvider::Image image{folder.path("baked.exr")};
        std::array<float, 4> color{-1, -1, -1, -1};
        const OssEvResult result = files.read(
            image, 0, y / Size, {}, [&](int tileX, int, const OssEvTilePointer &tile) {
                for (int c = 0; tileX == x / Size && c < tile->channels(); ++c)
                    color[std::size_t(c)] = tile->texel(c, x % Size, y % Size);
            });
        EXPECT_EQ(result.error(), "");
        return color;
    }

    TestFolder folder;
};

TEST_F(PaintBaking, aGreyImageBeneathIsGreyAndOpaque)
{
    PlainExr grey;
    grey.channels = {"Y"};
    grey.width = grey.height = 200;
    grey.value = [](const std::string &, int x, int) {
        return float(x) / 256.0F;
    };
    for (const int resolution : {200, 100}) {
        auto what = job(resolution, folder.write("grey.exr", grey.bytes()));
        ASSERT_EQ(OssEvPaintBake::run(what).error(), "");
        const auto color = baked(resolution / 2, 150 * resolution / 200);
        EXPECT_NEAR(color[0], 100.0F / 256.0F, 0.004F);
        EXPECT_EQ(color[1], color[0]);
        EXPECT_EQ(color[2], color[0]);
        EXPECT_EQ(color[3], 1.0F);
    }
}

TEST_F(PaintBaking, onlyThePatchThatIsMeantIsBaked)
{
    auto what = job(130, {});
    what.paint.setTile({1002, 0, 0}, redTile(0.5F));
    what.paint.setTile({1001, 1, 1}, redTile(0.25F));
    ASSERT_EQ(OssEvPaintBake::run(what).error(), "");
    EXPECT_EQ(baked(5, 5), (std::array<float, 4>{}));
    EXPECT_EQ(baked(129, 129), (std::array<float, 4>{0.25F, 0, 0, 1})) << "in the last tile, too";
    what.patch = 1002;
    ASSERT_EQ(OssEvPaintBake::run(what).error(), "");
    EXPECT_EQ(baked(5, 5), (std::array<float, 4>{0.5F, 0, 0, 1}));
    EXPECT_EQ(baked(129, 129), (std::array<float, 4>{}));
}

TEST_F(PaintBaking, edgesOfAnImageThatIsFittedAreItsOwn)
{
    PlainExr two;
    two.width = two.height = 2;
    two.isHalf = false;
    two.value = [](const std::string &channel, int x, int y) {
        return channel == "A" ? 1.0F : float(x + 2 * y);
    };
    auto what = job(150, folder.write("two.exr", two.bytes()));
    ASSERT_EQ(OssEvPaintBake::run(what).error(), "");
    EXPECT_EQ(baked(0, 0)[0], 0.0F);
    EXPECT_EQ(baked(149, 0)[0], 1.0F);
    EXPECT_EQ(baked(0, 149)[0], 2.0F);
    EXPECT_EQ(baked(149, 149)[0], 3.0F);
    EXPECT_NEAR(baked(74, 0)[0] + baked(75, 0)[0], 1.0F, 1e-4F) << "evenly between them";
}

TEST_F(PaintBaking, anImageThatIsFittedFillsThePictureWhereItsTilesEnd)
{
    PlainExr whole;
    whole.width = whole.height = Size;
    whole.value = [](const std::string &, int, int) {
        return 0.5F;
    };
    auto what = job(300, folder.write("whole.exr", whole.bytes()));
    ASSERT_EQ(OssEvPaintBake::run(what).error(), "");
    for (const int x : {0, 150, 299}) {
        EXPECT_EQ(baked(x, 299)[0], 0.5F) << x;
        EXPECT_EQ(baked(299, x)[0], 0.5F) << x;
    }
}

TEST_F(PaintBaking, aDamagedImageBeneathIsAFaultAndLeavesNoFile)
{
    PlainExr image;
    image.width = image.height = 300;
    image.value = [](const std::string &, int, int) {
        return 0.5F;
    };
    const std::string whole = image.bytes();
    auto what = job(300, folder.write("beneath.exr", whole.substr(0, whole.size() / 2)));
    const OssEvResult result = OssEvPaintBake::run(what);
    EXPECT_NE(result.error().find("beneath.exr"), std::string::npos) << result.error();
    EXPECT_EQ(folder.names(), std::vector<std::string>{"beneath.exr"});
    what = job(300, {});
    what.path = folder.path("none/baked.exr");
    EXPECT_NE(OssEvPaintBake::run(what).error().find("none/baked.exr"), std::string::npos);
}

} // namespace
