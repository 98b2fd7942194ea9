#include "OssEvaluation/ImageFilesFixture.h"
#include "OssEvaluation/Paint/OssEvPaintBake.h"
#include "OssEvaluation/Paint/OssEvStroke.h"
#include "OssEvaluation/PaintTexels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr int Size = OssEvPaintTile::Size;
using Texel = OssEvPaintTile::Texel;
using Place = OssEvPaintBuffer::Place;

/// A tile with one value in its red, all of it.
OssEvPaintTilePointer redTile(float red)
{
    auto tile = std::make_shared<OssEvPaintTile>();
    for (int i = 0; i < OssEvPaintTile::Texels; ++i)
        tile->setTexel(i, {red, 0.0F, 0.0F, 1.0F, 0.0F});
    return tile;
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
    for (int x = 0; x < 300; ++x) {
        const int tile = x / Size;
        EXPECT_EQ(texels[std::size_t(x)][0], float(tile + 1)) << x;
    }
    // Four texels each way; 128 is a multiple of it.
    ASSERT_TRUE(buffer.readRow(1001, 75, 0, 0, 75, texels.data()));
    for (int x = 0; x < 75; ++x) {
        const int tile = x * 4 / Size;
        EXPECT_NEAR(texels[std::size_t(x)][0], float(tile + 1), 1e-5F) << x;
        EXPECT_EQ(texels[std::size_t(x)][OssEvPaintTile::Keep], 0.0F);
    }
    // Rows 100 to 199 are half painted.
    ASSERT_TRUE(buffer.readRow(1001, 3, 0, 1, 1, texels.data()));
    EXPECT_NEAR(texels[0][0], 28.0F / 100.0F, 1e-4F);
    EXPECT_NEAR(texels[0][OssEvPaintTile::Keep], 72.0F / 100.0F, 1e-4F);
    // A texel of the paint stands for several where the picture is finer.
    ASSERT_TRUE(buffer.readRow(1001, 1200, 510, 20, 4, texels.data()));
    for (int x = 0; x < 4; ++x)
        EXPECT_EQ(texels[std::size_t(x)][0], x < 2 ? 1.0F : 2.0F) << x;
    // What lies beyond the picture is as its edge.
    ASSERT_TRUE(buffer.readRow(1001, 3, 2, 0, 3, texels.data()));
    EXPECT_EQ(texels[1][0], 3.0F);
    EXPECT_EQ(texels[1][OssEvPaintTile::Keep], 0.0F);
}

class PaintBaking : public ImageFilesFixture
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

    /// A square image of floats; its path.
    std::string image(const std::string &name, int size,
                      decltype(PlainExr::value) value = PlainExr().value)
    {
        PlainExr whole;
        whole.width = whole.height = size;
        whole.isHalf = false;
        whole.value = std::move(value);
        return folder.write(name, whole.bytes());
    }

    std::array<float, 4> baked(int x, int y)
    {
        const Image image = read(folder.path("baked.exr"));
        EXPECT_EQ(image.result.error(), "");
        std::array<float, 4> color{};
        for (int c = 0; c < 4; ++c)
            color[std::size_t(c)] = image.texel(c, x, y);
        return color;
    }
};

TEST_F(PaintBaking, composesThePaintOverTheImage)
{
    constexpr int Resolution = 256;
    const auto beneath = [](const std::string &channel, int x, int y) {
        const float alpha = float(x + 1) / 256.0F;
        return channel == "R"   ? alpha * 0.5F
               : channel == "G" ? alpha * float(y) / 256.0F
               : channel == "B" ? alpha * 3.0F
                                : alpha;
    };
    auto what = job(Resolution, image("beneath.exr", Resolution, beneath));
    OssEvBrush brush;
    brush.color = {0.9F, 0.1F, 2.0F};
    brush.opacity = 0.6;
    OssEvFlatStroke painted(&what.paint, brush, {1001});
    painted.moveTo(0.25, 0.75);
    painted.moveTo(0.75, 0.65);
    brush.tool = OssEvBrush::Tool::Eraser;
    OssEvFlatStroke erased(&what.paint, brush, {1001});
    erased.moveTo(0.4, 0.9);
    erased.moveTo(0.45, 0.15);
    erased.finish();
    ASSERT_EQ(OssEvPaintBake::run(what).error(), "");
    for (const auto &[x, y] :
         {std::pair(64, 64), {105, 70}, {110, 200}, {127, 76}, {128, 76}, {250, 250}}) {
        const Texel paint = texelOf(what.paint, 1001, x, y);
        const auto now = baked(x, y);
        const char *const names[] = {"R", "G", "B", "A"};
        for (std::size_t c = 0; c < 4; ++c)
            EXPECT_NEAR(now[c], paint[c] + paint[OssEvPaintTile::Keep] * beneath(names[c], x, y),
                        1e-5F)
                << x << ", " << y << " channel " << c;
    }
    EXPECT_GT(texelOf(what.paint, 1001, 64, 64)[3], 0.5F);
    EXPECT_LT(texelOf(what.paint, 1001, 110, 200)[OssEvPaintTile::Keep], 0.5F);

    what.beneath = folder.path("gone.exr");
    const OssEvResult result = OssEvPaintBake::run(what);
    EXPECT_NE(result.error().find("gone.exr"), std::string::npos) << result.error();
    what.beneath.clear();
    ASSERT_TRUE(OssEvPaintBake::run(what).ok());
    EXPECT_EQ(baked(250, 250), (std::array<float, 4>{}));
    EXPECT_NEAR(baked(64, 64)[3], 0.6F, 1e-3F);
}

TEST_F(PaintBaking, imagesOfAnotherResolutionAreFittedBeneath)
{
    // A ramp is the same however finely it is sampled.
    for (const int size : {96, 300}) {
        const auto ramp = [size](const std::string &channel, int x, int y) {
            return (float(channel == "R" ? x : y) + 0.5F) / float(size);
        };
        ASSERT_EQ(OssEvPaintBake::run(job(256, image("ramp.exr", size, ramp))).error(), "");
        for (const int at : {10, 127, 128, 200, 240}) {
            const auto now = baked(at, 256 - at);
            EXPECT_NEAR(now[0], (at + 0.5) / 256, 1e-4) << size;
            EXPECT_NEAR(now[1], (256 - at + 0.5) / 256, 1e-4) << size;
        }
    }
}

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
    const auto what = job(150, image("two.exr", 2, [](const std::string &channel, int x, int y) {
                              return channel == "A" ? 1.0F : float(x + 2 * y);
                          }));
    ASSERT_EQ(OssEvPaintBake::run(what).error(), "");
    EXPECT_EQ(baked(0, 0)[0], 0.0F);
    EXPECT_EQ(baked(149, 0)[0], 1.0F);
    EXPECT_EQ(baked(0, 149)[0], 2.0F);
    EXPECT_EQ(baked(149, 149)[0], 3.0F);
    EXPECT_NEAR(baked(74, 0)[0] + baked(75, 0)[0], 1.0F, 1e-4F) << "evenly between them";
}

TEST_F(PaintBaking, anImageThatIsFittedFillsThePictureWhereItsTilesEnd)
{
    const auto what = job(300, image("whole.exr", Size));
    ASSERT_EQ(OssEvPaintBake::run(what).error(), "");
    for (const int x : {0, 150, 299}) {
        EXPECT_EQ(baked(x, 299)[0], 0.5F) << x;
        EXPECT_EQ(baked(299, x)[0], 0.5F) << x;
    }
}

TEST_F(PaintBaking, aDamagedImageBeneathIsAFaultAndLeavesNoFile)
{
    auto what = job(300, image("beneath.exr", 300));
    const std::string whole = folder.content("beneath.exr");
    folder.write("beneath.exr", whole.substr(0, whole.size() / 2));
    const OssEvResult result = OssEvPaintBake::run(what);
    EXPECT_NE(result.error().find("beneath.exr"), std::string::npos) << result.error();
    EXPECT_EQ(folder.names(), std::vector<std::string>{"beneath.exr"});
    what = job(300, {});
    what.path = folder.path("none/baked.exr");
    EXPECT_NE(OssEvPaintBake::run(what).error().find("none/baked.exr"), std::string::npos);
}

} // namespace
