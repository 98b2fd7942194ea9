#include "OssEvaluation/Schedule/OssEvTileCache.h"
#include "OssEvaluation/Values/OssEvHalf.h"
#include "OssEvaluation/Values/OssEvTileGrid.h"
#include "OssEvaluation/Values/Texels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>

namespace {

constexpr int Size = OssEvTile::Size;

class CacheOfTiles : public testing::Test
{
protected:
    static OssEvTileKey at(int x) { return {{1, 2}, x, 0}; }

    OssEvTilePointer m_tile = std::make_shared<OssEvTile>(1, OssEvTile::Format::Half);
    OssEvTileCache m_cache{4 * m_tile->bytes()};
};

TEST_F(CacheOfTiles, whatWasAskedForLongestAgoGoesFirst)
{
    for (int i = 0; i < 4; ++i)
        m_cache.insert(at(i), m_tile, 1.0);
    m_cache.find(at(0));
    m_cache.insert(at(4), m_tile, 1.0);
    EXPECT_NE(m_cache.find(at(0)), nullptr);
    EXPECT_EQ(m_cache.find(at(1)), nullptr);
    EXPECT_EQ(m_cache.evictions(), 1U);
    m_cache.setBudget(2 * m_tile->bytes());
    EXPECT_EQ(m_cache.count(), 2U);
    EXPECT_NE(m_cache.find(at(0)), nullptr) << "just asked for";
    EXPECT_NE(m_cache.find(at(4)), nullptr);
}

TEST_F(CacheOfTiles, aTileThatComesTwiceIsCountedOnce)
{
    const auto other = std::make_shared<OssEvTile>(1, OssEvTile::Format::Half);
    m_cache.insert(at(1), m_tile, 1.0);
    m_cache.insert(at(1), other, 50.0);
    EXPECT_EQ(m_cache.count(), 1U);
    EXPECT_EQ(m_cache.bytes(), m_tile->bytes());
    EXPECT_EQ(m_cache.find(at(1)), m_tile) << "who has the first one keeps seeing it";
    for (int i = 0; i < 100; ++i)
        m_cache.insert(at(i), m_tile, 1.0);
    EXPECT_EQ(m_cache.bytes(), 4 * m_tile->bytes());
    EXPECT_EQ(m_cache.count(), 4U);
}

TEST_F(CacheOfTiles, everyPartOfTheKeyCounts)
{
    m_cache.insert({{1, 2}, 3, 4}, m_tile, 1.0);
    for (const OssEvTileKey &other : {OssEvTileKey{{9, 2}, 3, 4}, OssEvTileKey{{1, 9}, 3, 4},
                                      OssEvTileKey{{1, 2}, 4, 3}, OssEvTileKey{{1, 2}, -3, 4}})
        EXPECT_EQ(m_cache.find(other), nullptr);
    EXPECT_NE(m_cache.find({{1, 2}, 3, 4}), nullptr);
}

TEST_F(CacheOfTiles, theBudgetHoldsWhateverComesAndGoes)
{
    std::mt19937 random(3);
    std::set<int> held;
    for (int i = 0; i < 5000; ++i) {
        const int channels = 1 + int(random() % 4);
        const auto format = random() % 2 == 0 ? OssEvTile::Format::Half : OssEvTile::Format::Float;
        const bool constant = random() % 3 == 0;
        const auto tile = constant ? std::make_shared<OssEvTile>(channels, format,
                                                                 std::array<float, 4>{})
                                   : std::make_shared<OssEvTile>(channels, format);
        m_cache.insert(at(int(random() % 50)), tile, double(random() % 1000));
        m_cache.find(at(int(random() % 50)));
        if (i % 500 == 0)
            m_cache.setBudget((2 + random() % 5) * m_tile->bytes());
        ASSERT_LE(m_cache.bytes(), m_cache.budget());
    }
    std::size_t bytes = 0;
    for (int i = 0; i < 50; ++i) {
        if (const OssEvTilePointer tile = m_cache.find(at(i)))
            bytes += tile->bytes();
    }
    EXPECT_EQ(bytes, m_cache.bytes()) << "what it says is what it holds";
}

TEST_F(CacheOfTiles, clearingForgetsTheTilesAndNotTheBudget)
{
    m_cache.insert(at(1), m_tile, 1.0);
    const OssEvTilePointer held = m_cache.find(at(1));
    m_cache.clear();
    EXPECT_EQ(m_cache.bytes(), 0U);
    EXPECT_EQ(m_cache.count(), 0U);
    EXPECT_EQ(m_cache.find(at(1)), nullptr);
    EXPECT_EQ(held->texel(0, 0, 0), held->texel(0, 0, 0)) << "who holds it still has it";
    EXPECT_EQ(m_cache.budget(), 4 * m_tile->bytes());
    m_cache.insert(at(1), m_tile, 1.0);
    EXPECT_EQ(m_cache.count(), 1U);
    m_cache.setBudget(0);
    EXPECT_EQ(m_cache.count(), 0U);
    m_cache.insert(at(1), m_tile, 1.0);
    EXPECT_EQ(m_cache.count(), 0U);
    EXPECT_GT(OssEvTileCache::defaultBudget(), std::size_t(64) << 20);
}

TEST_F(CacheOfTiles, keepsWhatIsDearAndWhatIsAskedFor)
{
    const auto tile = std::make_shared<OssEvTile>(1, OssEvTile::Format::Half);
    OssEvTileCache cache(10 * tile->bytes());
    const OssEvKey key{1, 2};
    for (int i = 0; i < 5; ++i)
        cache.insert({key, 1000 + i, 0}, tile, 1e9);
    for (int i = 0; i < 100; ++i) {
        cache.insert({key, i, 0}, tile, 1e3);
        EXPECT_NE(cache.find({key, 0, 0}), nullptr) << "asked for all the time, at " << i;
        EXPECT_LE(cache.bytes(), cache.budget());
    }
    for (int i = 0; i < 5; ++i)
        EXPECT_NE(cache.find({key, 1000 + i, 0}), nullptr) << "dear";
    EXPECT_EQ(cache.find({key, 50, 0}), nullptr);
    EXPECT_EQ(cache.count(), 10U);
    cache.setBudget(3 * tile->bytes());
    EXPECT_EQ(cache.count(), 3U);
    cache.insert({key, 5000, 0}, std::make_shared<OssEvTile>(4, OssEvTile::Format::Float), 1.0);
    EXPECT_EQ(cache.find({key, 5000, 0}), nullptr) << "larger than the whole cache";
}

TEST_F(CacheOfTiles, whatIsDearGivesWayInTheEnd)
{
    m_cache.insert(at(0), m_tile, 100.0);
    for (int i = 1; i < 2000; ++i)
        m_cache.insert(at(i), m_tile, 1.0);
    EXPECT_EQ(m_cache.find(at(0)), nullptr) << "nobody asked for it";
    EXPECT_NE(m_cache.find(at(1999)), nullptr);
}

// --- grids

float valueAt(int channel, int x, int y)
{
    return float((x * 31 + y * 17 + channel * 7) % 64) / 64.0F;
}

OssEvTilePointer patternTile(int channels, OssEvTile::Format format, int tileX, int tileY)
{
    auto tile = std::make_shared<OssEvTile>(channels, format);
    for (int k = 0; k < channels; ++k) {
        for (int i = 0; i < OssEvTile::Texels; ++i) {
            const float value = valueAt(k, tileX * Size + i % Size, tileY * Size + i / Size);
            if (format == OssEvTile::Format::Half)
                tile->halfPlane(k)[i] = OssEvHalf::fromFloat(value);
            else
                tile->floatPlane(k)[i] = value;
        }
    }
    return tile;
}

int wrapped(int value, int size)
{
    return (value % size + size) % size;
}

TEST(TileGrids, everyBorderGoesOnAsItSays)
{
    using Border = OssEvTileGrid::Border;
    const OssEvFrame frame{300, 140, 1001, 1.0};
    OssEvTileGrid grid(frame, frame.region(), 4);
    ASSERT_EQ(grid.tiles(), (OssEvRegion{0, 0, 3, 2}));
    for (int y = 0; y < 2; ++y) {
        for (int x = 0; x < 3; ++x) {
            const auto format = (x + y) % 2 == 0 ? OssEvTile::Format::Half
                                                 : OssEvTile::Format::Float;
            grid.setTile(x, y, patternTile(4, format, x, y));
        }
    }
    const OssEvRegion regions[] = {{-5, -5, 310, 150},  {120, 120, 20, 30},  {299, 139, 1, 1},
                                   {-700, 10, 900, 2},  {310, 200, 5, 5},    {-20, -300, 30, 700},
                                   {250, 100, 700, 80}, {-128, -128, 64, 64}};
    for (const OssEvRegion &region : regions) {
        const int stride = region.width + 3;
        std::vector<float> plane(std::size_t(stride) * std::size_t(region.height));
        for (const Border border : {Border::Clamp, Border::Repeat, Border::Zero}) {
            for (const int channel : {0, 3}) {
                grid.assemble(channel, region, border, plane.data(), stride);
                for (int y = 0; y < region.height; ++y) {
                    for (int x = 0; x < region.width; ++x) {
                        int px = region.x + x;
                        int py = region.y + y;
                        const bool inside = frame.region().contains(px, py);
                        if (border == Border::Repeat) {
                            px = wrapped(px, frame.width);
                            py = wrapped(py, frame.height);
                        }
                        px = std::clamp(px, 0, frame.width - 1);
                        py = std::clamp(py, 0, frame.height - 1);
                        const float expected = !inside && border == Border::Zero
                                                   ? 0.0F
                                                   : valueAt(channel, px, py);
                        ASSERT_EQ(plane[std::size_t(y * stride + x)], expected)
                            << int(border) << ": " << region.x + x << ", " << region.y + y;
                    }
                }
            }
        }
    }
}

TEST(TileGrids, channelsAreReadAsTheyAreAskedFor)
{
    const OssEvFrame frame{128, 128, 1001, 1.0};
    const auto read = [&frame](const OssEvTilePointer &tile, int wanted, int channel) {
        OssEvTileGrid grid(frame, frame.region(), wanted);
        grid.setTile(0, 0, tile);
        float value = 0.0F;
        grid.assemble(channel, {5, 9, 1, 1}, OssEvTileGrid::Border::Clamp, &value, 1);
        return value;
    };
    for (const auto format : {OssEvTile::Format::Half, OssEvTile::Format::Float}) {
        for (const bool constant : {false, true}) {
            for (const int stored : {1, 3, 4}) {
                std::array<float, 4> texel{};
                for (int k = 0; k < stored; ++k)
                    texel[std::size_t(k)] = valueAt(k, 5, 9);
                const OssEvTilePointer tile = constant ? std::make_shared<OssEvTile>(stored, format,
                                                                                     texel)
                                                       : patternTile(stored, format, 0, 0);
                for (const int wanted : {1, 3, 4}) {
                    const auto expected = OssEvTexels::convert(texel, stored, wanted,
                                                               OssEvWorkingSpace::Bt709Luminance);
                    for (int k = 0; k < wanted; ++k)
                        EXPECT_NEAR(read(tile, wanted, k), expected[std::size_t(k)], 1e-3)
                            << stored << " as " << wanted << ", channel " << k;
                }
            }
        }
    }
}

TEST(TileGrids, colorsReadAsOneChannelAreTheirLuminanceInTheirSpace)
{
    const OssEvFrame frame{128, 128, 1001, 1.0};
    OssEvTileGrid grid(frame, frame.region(), 1, {0.0F, 1.0F, 0.0F});
    grid.setTile(0, 0, patternTile(4, OssEvTile::Format::Float, 0, 0));
    float value = 0.0F;
    grid.assemble(0, {5, 9, 1, 1}, OssEvTileGrid::Border::Clamp, &value, 1);
    EXPECT_EQ(value, valueAt(1, 5, 9));
}

TEST(TileGrids, whereTheGridHasNoTileTheNearestTexelStandsIn)
{
    const OssEvFrame frame{600, 600, 1001, 1.0};
    OssEvTileGrid grid(frame, OssEvRegion{200, 260, 100, 10}, 1); // tiles 1 and 2 of row 2
    ASSERT_EQ(grid.tiles(), (OssEvRegion{1, 2, 2, 1}));
    for (int x = 1; x < 3; ++x)
        grid.setTile(x, 2, patternTile(1, OssEvTile::Format::Float, x, 2));
    const OssEvRegion region{100, 240, 320, 160};
    std::vector<float> plane(320 * 160);
    grid.assemble(0, region, OssEvTileGrid::Border::Clamp, plane.data(), 320);
    for (int y = 0; y < 160; ++y) {
        for (int x = 0; x < 320; ++x)
            ASSERT_EQ(plane[std::size_t(y * 320 + x)],
                      valueAt(0, std::clamp(100 + x, 128, 383), std::clamp(240 + y, 256, 383)))
                << x << ", " << y;
    }
    const OssEvTileGrid beyond(frame, OssEvRegion{900, -400, 50, 50}, 1);
    EXPECT_EQ(beyond.tiles(), (OssEvRegion{4, 0, 1, 1})) << "the nearest tile";
}

TEST(TileGrids, oneValueStandsForAnImage)
{
    const OssEvTileGrid grid({300, 300, 1001, 1.0}, std::array<float, 4>{0.25F, 0.5F, 0.75F, 1.0F},
                             4);
    EXPECT_TRUE(grid.isConstant());
    std::array<float, 12> plane{};
    grid.assemble(2, {-3, 1000, 4, 3}, OssEvTileGrid::Border::Zero, plane.data(), 4);
    for (const float value : plane)
        EXPECT_EQ(value, 0.75F);
}

} // namespace
