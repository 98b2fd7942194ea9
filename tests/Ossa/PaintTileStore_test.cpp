#include "Ossa/Painting/PaintTileStore.h"

#include "support/ExpectedLog.h"
#include "support/SystemCallFaults.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace {

constexpr std::size_t Room = 2 * OssEvPaintTile::Bytes;

OssEvPaintTilePointer tileOf(float value)
{
    auto tile = std::make_shared<OssEvPaintTile>();
    tile->setTexel(7, {value, 0.0F, 0.0F, 1.0F, 0.0F});
    return tile;
}

TEST(PaintTileStore, whatDoesNotFitComesBackFromTheFile)
{
    const auto store = std::make_shared<PaintTileStore>(Room);
    std::vector<std::shared_ptr<PaintTileStore::Kept>> kept;
    kept.reserve(8);
    for (int i = 0; i < 6; ++i)
        kept.push_back(store->keep(tileOf(float(i))));
    store->trim();
    EXPECT_EQ(store->bytesInMemory(), Room);
    // A slot that is free is used again, and no other tile's.
    kept.erase(kept.begin() + 1);
    for (const float value : {6.0F, 7.0F}) {
        kept.push_back(store->keep(tileOf(value)));
        store->trim();
    }
    EXPECT_EQ(store->bytesInMemory(), Room);
    const float values[] = {0, 2, 3, 4, 5, 6, 7};
    for (std::size_t i = 0; i < kept.size(); ++i)
        EXPECT_EQ(kept[i]->tile()->texel(7)[0], values[i]) << i;
    kept.clear();
    EXPECT_EQ(store->bytesInMemory(), 0U);
}

TEST(PaintTileStore, stepsShareTilesAndThoseInUseStay)
{
    const auto store = std::make_shared<PaintTileStore>(0);
    const OssEvPaintTilePointer used = tileOf(1.0F);
    const auto after = store->keep(used);
    EXPECT_EQ(store->keep(used), after);
    EXPECT_EQ(store->keep(nullptr), nullptr);
    const auto unused = store->keep(tileOf(2.0F));
    store->trim();
    EXPECT_EQ(store->bytesInMemory(), OssEvPaintTile::Bytes);
    EXPECT_EQ(after->tile(), used);
    EXPECT_EQ(unused->tile()->texel(7)[0], 2.0F);
}

TEST(PaintTileStore, whatCannotBeWrittenStaysInMemory)
{
    const ExpectedLog told("PaintTileStore", ExpectedLog::Possible);
    const ExpectedLog full("No space left", ExpectedLog::Needed);
    bool reached = true;
    int number = 1;
    for (; reached; ++number) {
        const auto store = std::make_shared<PaintTileStore>(0);
        const auto first = store->keep(tileOf(1.0F));
        const auto second = store->keep(tileOf(2.0F));
        {
            const SystemCallFaults fault(number, ENOSPC);
            store->trim();
            reached = SystemCallFaults::happened();
        }
        EXPECT_EQ(store->bytesInMemory() > 0, reached) << number;
        EXPECT_EQ(first->tile()->texel(7)[0], 1.0F) << number;
        EXPECT_EQ(second->tile()->texel(7)[0], 2.0F) << number;
        store->trim();
        EXPECT_EQ(store->bytesInMemory(), 0U) << number;
        EXPECT_EQ(first->tile()->texel(7)[0], 1.0F) << number;
        EXPECT_EQ(second->tile()->texel(7)[0], 2.0F) << number;
    }
    EXPECT_GT(number, 3);
}

} // namespace
