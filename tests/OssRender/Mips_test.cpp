#include "OssEvaluation/FlatMesh.h"
#include "OssEvaluation/Values/OssEvHalf.h"
#include "OssRender/Surface/OssRdMips.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

constexpr int Size = 64;

/// A triangle whose edges lie on no texel's; it leaves most of the patch bare.
std::shared_ptr<const OssEvMesh> triangle()
{
    return flat({{0.13F, 0.11F}, {0.71F, 0.23F}, {0.37F, 0.83F}}, {{0, 1, 2}});
}

/// Red where the triangle is, black beside it.
template <class Value>
std::vector<Value> picture(const OssRdCoverage &coverage, Value red)
{
    std::vector<Value> texels(std::size_t(Size) * Size * 4, 0);
    const std::uint8_t *weights = coverage.weights(Size);
    for (std::size_t i = 0; i < std::size_t(Size) * Size; ++i) {
        texels[4 * i] = weights[i] > 0 ? red : 0;
        texels[4 * i + 3] = red;
    }
    return texels;
}

template <class Value>
void expectNoSeam(Value red)
{
    const auto coverage = OssRdCoverage::make(triangle(), 1001);
    ASSERT_NE(coverage, nullptr);
    const std::vector<Value> texels = picture<Value>(*coverage, red);
    OssRdMips<Value> mips(Size, coverage);
    mips.update({0, 0, Size, Size}, [&](int y) { return &texels[std::size_t(y) * Size * 4]; });
    ASSERT_EQ(mips.levels(), 6);
    for (int level = 0; level < mips.levels(); ++level) {
        const int size = mips.size(level);
        const std::uint8_t *weights = coverage->weights(size);
        const auto covered = [&](int x, int y) {
            const bool isInside = x >= 0 && y >= 0 && x < size && y < size;
            return isInside && weights[std::size_t(y) * std::size_t(size) + std::size_t(x)] > 0;
        };
        int bare = 0;
        for (int y = 0; y < size; ++y) {
            for (int x = 0; x < size; ++x) {
                bool isNear = false;
                for (int i = 0; i < 9; ++i)
                    isNear = isNear || covered(x + i % 3 - 1, y + i / 3 - 1);
                const auto at = std::size_t(y) * std::size_t(size) + std::size_t(x);
                EXPECT_EQ(mips.texels(level)[4 * at], isNear ? red : Value(0))
                    << level << ": " << x << ", " << y;
                bare += isNear ? 0 : 1;
            }
        }
        EXPECT_TRUE(bare > 0 || size < 8);
    }
}

TEST(Mips, whatLiesBetweenChartsIsInNoSmallerCopy)
{
    expectNoSeam<std::uint8_t>(200);
    expectNoSeam<std::uint16_t>(OssEvHalf::fromFloat(0.75F));
}

TEST(Mips, followingAnAreaGivesWhatAllOfItWouldGive)
{
    const auto coverage = OssRdCoverage::make(triangle(), 1001);
    std::vector<std::uint8_t> texels = picture<std::uint8_t>(*coverage, 200);
    const auto rowFrom = [&](int left) {
        return [&texels, left](int y) {
            return &texels[(std::size_t(y) * Size + std::size_t(left)) * 4];
        };
    };
    OssRdMips<std::uint8_t> followed(Size, coverage);
    followed.update({0, 0, Size, Size}, rowFrom(0));
    const OssEvRegion area{14, 30, 10, 12};
    for (int y = area.y; y < area.bottom(); ++y) {
        for (int x = area.x; x < area.right(); ++x)
            texels[(std::size_t(y) * Size + std::size_t(x)) * 4 + 1] = std::uint8_t(x * 7 + y);
    }
    const std::vector<OssEvRegion> changed = followed.update(area, rowFrom(area.x));
    OssRdMips<std::uint8_t> whole(Size, coverage);
    whole.update({0, 0, Size, Size}, rowFrom(0));
    ASSERT_EQ(changed.size(), std::size_t(whole.levels()));
    for (int level = 0; level < whole.levels(); ++level) {
        const OssEvRegion all{0, 0, whole.size(level), whole.size(level)};
        EXPECT_EQ(followed.texels(level, all), whole.texels(level, all)) << level;
        EXPECT_LT(changed[std::size_t(level)].width, area.width + 4);
    }
}

TEST(Mips, withoutCoverageCopiesAreMeans)
{
    std::vector<std::uint8_t> texels(std::size_t(4) * 4 * 4, 0);
    for (std::size_t i = 0; i < 16; ++i)
        texels[4 * i] = std::uint8_t(i < 8 ? 100 : 20 * (i % 2));
    OssRdMips<std::uint8_t> mips(4, nullptr);
    mips.update({0, 0, 4, 4}, [&](int y) { return &texels[std::size_t(y) * 16]; });
    EXPECT_EQ(mips.texels(0)[0], 100);
    EXPECT_EQ(mips.texels(0)[8], 10);
    EXPECT_EQ(mips.texels(1)[0], 55);
}

} // namespace
