#include "OssEvaluation/Paint/OssEvStroke.h"
#include "OssEvaluation/PaintTexels.h"
#include "OssEvaluation/TestFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <set>

namespace {

constexpr int Resolution = 256;

/// What strokes with a brush leave on a patch.
class Brushes : public testing::Test
{
protected:
    Brushes()
    {
        m_brush.radius = 20.0;
        m_brush.hardness = 1.0;
    }

    void dab(double x, double y, double pressure = 1.0)
    {
        OssEvFlatStroke stroke(&m_buffer, m_brush, {1001});
        stroke.moveTo(x / Resolution, 1.0 - y / Resolution, pressure);
        stroke.finish();
    }

    void line(double fromX, double fromY, double toX, double toY)
    {
        OssEvFlatStroke stroke(&m_buffer, m_brush, {1001});
        stroke.moveTo(fromX / Resolution, 1.0 - fromY / Resolution);
        stroke.moveTo(toX / Resolution, 1.0 - toY / Resolution);
        stroke.finish();
    }

    float at(int x, int y) const { return texelOf(m_buffer, 1001, x, y)[3]; }

    double sum() const
    {
        double sum = 0.0;
        for (int y = 0; y < Resolution; ++y) {
            for (int x = 0; x < Resolution; ++x)
                sum += double(at(x, y));
        }
        return sum;
    }

    OssEvPaintBuffer m_buffer{Resolution};
    OssEvBrush m_brush;
};

TEST_F(Brushes, flowAddsUpToTheOpacityAndNoFurther)
{
    m_brush.flow = 0.1;
    m_brush.opacity = 0.6;
    dab(128, 128);
    EXPECT_NEAR(at(128, 128), 0.06F, 2e-3F);
    m_buffer.clear();
    OssEvFlatStroke stroke(&m_buffer, m_brush, {1001});
    float last = 0.0F;
    for (int i = 0; i < 40; ++i) {
        stroke.moveTo((118.0 + i % 2 * 20.0) / Resolution, 0.5);
        EXPECT_GE(at(128, 128), last);
        last = at(128, 128);
    }
    EXPECT_NEAR(last, 0.6F, 2e-3F);
}

TEST_F(Brushes, flatDabsLieAlongTheirAngleAndTurnWithTheStroke)
{
    m_brush.roundness = 0.25;
    dab(128, 128);
    EXPECT_EQ(at(145, 128), 1.0F);
    EXPECT_EQ(at(128, 136), 0.0F);
    m_buffer.clear();
    m_brush.angle = 45.0; // against the clock: from below on the left to above on the right
    dab(128, 128);
    EXPECT_EQ(at(139, 116), 1.0F);
    EXPECT_EQ(at(139, 139), 0.0F);
    m_buffer.clear();
    m_brush.angle = 0.0;
    m_brush.followsStroke = true;
    line(128, 200, 128, 60); // upwards: the dabs stand upright
    EXPECT_EQ(at(128, 130), 1.0F);
    EXPECT_EQ(at(136, 130), 0.0F);
}

TEST_F(Brushes, spacingSetsDabsApart)
{
    m_brush.radius = 5.0;
    m_brush.spacing = 4.0;
    line(20, 128, 220, 128);
    EXPECT_EQ(at(20, 128), 1.0F);
    EXPECT_EQ(at(30, 128), 0.0F);
    EXPECT_EQ(at(40, 128), 1.0F);
}

TEST_F(Brushes, pressureDoesWhatTheBrushSays)
{
    dab(128, 128, 0.5);
    EXPECT_EQ(at(135, 128), 1.0F);
    EXPECT_EQ(at(145, 128), 0.0F) << "smaller";
    m_buffer.clear();
    m_brush.pressureSizes = false;
    m_brush.pressureCovers = true;
    dab(128, 128, 0.5);
    EXPECT_NEAR(at(145, 128), 0.5F, 1e-3F) << "as large, and lighter";
}

TEST_F(Brushes, chanceMakesDabsDifferAndTheSameStrokeTheSame)
{
    m_brush.radius = 8.0;
    m_brush.spacing = 3.0;
    line(20, 128, 230, 128);
    const double even = sum();
    m_buffer.clear();
    m_brush.sizeJitter = 0.8;
    line(20, 128, 230, 128);
    const double smaller = sum();
    EXPECT_LT(smaller, 0.9 * even);
    m_buffer.clear();
    line(20, 128, 230, 128);
    EXPECT_EQ(sum(), smaller);
    m_buffer.clear();
    m_brush.sizeJitter = 0.0;
    m_brush.placeJitter = 1.0;
    line(20, 128, 230, 128);
    EXPECT_NEAR(sum(), even, 0.2 * even);
    std::set<int> rows;
    for (int y = 0; y < Resolution; ++y) {
        for (int x = 0; x < Resolution; ++x) {
            if (at(x, y) > 0.5F)
                rows.insert(y);
        }
    }
    EXPECT_GT(*rows.rbegin() - *rows.begin(), 20) << "put aside";
}

TEST_F(Brushes, stampsCoverAsTheirPictureSaysUprightAndTurned)
{
    // Its upper half is covered.
    constexpr int Size = 16;
    std::vector<float> half(std::size_t(Size) * Size, 0.0F);
    std::fill_n(half.begin(), half.size() / 2, 1.0F);
    m_brush.stamp = std::make_shared<OssEvStamp>(Size, half);
    dab(128, 128);
    EXPECT_EQ(at(128, 118), 1.0F);
    EXPECT_EQ(at(145, 111), 1.0F) << "squares have corners";
    EXPECT_EQ(at(128, 138), 0.0F);
    m_buffer.clear();
    m_brush.angle = 90.0;
    dab(128, 128);
    EXPECT_EQ(at(118, 128), 1.0F) << "above is left now";
    EXPECT_EQ(at(138, 128), 0.0F);
    m_buffer.clear();
    m_brush.radius = 2.0;
    m_brush.angle = 0.0;
    dab(128, 128);
    EXPECT_NEAR(sum(), 8.0, 1.5) << "as much of a small one";
}

TEST_F(Brushes, stampsAreReadFromInkAndFromAlphaAndRefusedWithTheFilesName)
{
    TestFolder folder;
    OssEvStamp::Pointer stamp;
    // 4 x 2 pixels, the left half black: on paper of its own, ink covers where it is dark.
    const std::string path = folder.path("ink.pgm");
    std::ofstream(path) << "P2 4 2 255 0 0 255 255 0 0 255 255";
    ASSERT_TRUE(OssEvStamp::read(path, &stamp).ok());
    EXPECT_GT(stamp->coverage(-0.5, 0.0, 4.0), 0.9F);
    EXPECT_LT(stamp->coverage(0.6, 0.0, 4.0), 0.1F);
    EXPECT_LT(stamp->coverage(-0.5, 0.9, 4.0), 0.2F) << "what is not square is centred";
    std::ofstream(path) << "P2 2 2 255 255 255 255 255";
    EXPECT_NE(OssEvStamp::read(path, &stamp).error().find("is empty"), std::string::npos);
    stamp.reset();
    const OssEvResult none = OssEvStamp::read("/no/such.png", &stamp);
    EXPECT_FALSE(none.ok());
    EXPECT_NE(none.error().find("/no/such.png"), std::string::npos);
    EXPECT_EQ(stamp, nullptr);
}

} // namespace
