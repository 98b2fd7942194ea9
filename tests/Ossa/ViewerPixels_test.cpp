#include "Ossa/Viewer/ViewerPixels.h"

#include "Ossa/Viewer/ViewerPictures.h"
#include "OssEvaluation/Paint/OssEvPaintBuffer.h"
#include "support/Text.h"

#include <gtest/gtest.h>

#include <QColor>
#include <QSignalSpy>

#include <limits>

namespace {

using Look = ViewerLook;

Look look(Look::Channels channels, double exposure = 0.0, bool raw = true, double gamma = 1.0)
{
    Look look;
    look.channels = channels;
    look.exposure = exposure;
    look.gamma = gamma;
    look.raw = raw;
    return look;
}

OssEvTilePointer tileOf(int channels, const std::array<float, 4> &values)
{
    return std::make_shared<OssEvTile>(channels, OssEvTile::Format::Half, values);
}

QRgb shown(int channels, const std::array<float, 4> &values, const Look &look)
{
    return ViewerPixels::picture(*tileOf(channels, values), look).pixel(20, 100);
}

TEST(ViewerPixels, areWhatTheChosenChannelsAndTheExposureSay)
{
    // Half covered: straight 0.5, 0.25, 0.
    const std::array<float, 4> colour{0.25F, 0.125F, 0.0F, 0.5F};
    const std::array<float, 4> outside{9.0F, -1.0F, std::numeric_limits<float>::infinity(), 1.0F};
    const std::tuple<int, std::array<float, 4>, Look, QRgb> cases[] = {
        {4, colour, look(Look::Color), qRgba(128, 64, 0, 128)},
        {4, colour, look(Look::Red), qRgba(128, 128, 128, 255)},
        {4, colour, look(Look::Green), qRgba(64, 64, 64, 255)},
        {4, colour, look(Look::Blue), qRgba(0, 0, 0, 255)},
        {4, colour, look(Look::Alpha), qRgba(128, 128, 128, 255)},
        {4, colour, look(Look::Alpha, 0.0, false), qRgba(128, 128, 128, 255)},
        {4, {0.5F, 0.25F, 0.0F, 0.0F}, look(Look::Color), qRgba(128, 64, 0, 0)},
        {4, colour, look(Look::Color, -1.0), qRgba(64, 32, 0, 128)},
        {4, outside, look(Look::Color), qRgba(255, 0, 255, 255)},
        // A mask is numbers, whatever the screen is.
        {1, {0.25F}, look(Look::Color), qRgba(64, 64, 64, 255)},
        {1, {0.25F}, look(Look::Color, 0.0, false), qRgba(64, 64, 64, 255)},
        {1, {0.25F}, look(Look::Color, 1.0, false), qRgba(128, 128, 128, 255)},
        {3, {0.25F, 0.5F, 1.0F}, look(Look::Color), qRgba(64, 128, 255, 255)},
    };
    for (const auto &[channels, values, how, wanted] : cases)
        EXPECT_EQ(QByteArray::number(shown(channels, values, how), 16),
                  QByteArray::number(wanted, 16))
            << channels << " " << how.channels << " " << how.exposure;
}

TEST(ViewerPixels, ofColoursAreSentThroughTheScreensTransformOnce)
{
    const std::array<float, 4> grey{0.18F, 0.18F, 0.18F, 1.0F};
    const std::array<float, 4> brighter{0.36F, 0.36F, 0.36F, 1.0F};
    const int plain = qRed(shown(4, grey, look(Look::Color, 0.0, false)));
    EXPECT_GT(plain, 100) << "light, not a number: that would be 46";
    EXPECT_LT(plain, 140);
    EXPECT_NEAR(qRed(shown(4, grey, look(Look::Color, 1.0, false))),
                qRed(shown(4, brighter, look(Look::Color, 0.0, false))), 1);
    EXPECT_EQ(qRed(shown(4, grey, look(Look::Red, 0.0, false))), plain);
    EXPECT_GT(qRed(shown(4, grey, look(Look::Color, 0.0, false, 2.0))), plain + 20);
    EXPECT_EQ(qRed(shown(4, grey, look(Look::Color, 0.0, true, 2.0))), 46) << "raw means raw";
    Look nowhere = look(Look::Color, 0.0, false);
    nowhere.screen = {"Wall", "Standard"};
    EXPECT_EQ(shown(4, grey, nowhere), qRgb(255, 0, 255)) << "no such display";
}

TEST(ViewerPixels, anyDifferenceIsAnotherLook)
{
    EXPECT_TRUE(Look() == look(Look::Color, 0.0, false));
    const Look others[] = {look(Look::Red, 0.0, false), look(Look::Color, 0.5, false),
                           look(Look::Color, 0.0, true), look(Look::Color, 0.0, false, 1.5)};
    for (const Look &other : others)
        EXPECT_FALSE(Look() == other) << &other - others;
}

// --- pictures of patches

/// Pictures of four tiles, that are looked at as they are.
class Pictures : public testing::Test
{
protected:
    static constexpr int Tile = OssEvTile::Size;
    static constexpr int Resolution = 2 * Tile;

    Pictures()
    {
        m_pictures.setLook(look(Look::Color));
        m_pictures.begin({1001}, Resolution, {});
    }

    void setTile(float red, const QPoint &place = {0, 0}, int resolution = Resolution,
                 int patch = 1001)
    {
        const OssEvTilePointer tile = tileOf(4, {red, 0.0F, 0.0F, 1.0F});
        m_pictures.setTile(patch, resolution, place,
                           ViewerPixels::picture(*tile, look(Look::Color)), tile);
    }

    void setCoarse(float red) { setTile(red, {0, 0}, Tile); }

    int redAt(int x, int y) const { return qRed(m_pictures.picture(1001).pixel(x, y)); }

    /// Empty where there are none.
    QVector<float> valuesAt(int x, int y, int patch = 1001) const
    {
        QVector<float> values;
        return m_pictures.values(patch, {x, y}, &values) ? values : QVector<float>();
    }

    ViewerPictures m_pictures;
};

TEST_F(Pictures, aCoarseTileIsShownEnlargedUntilItsPixelsCome)
{
    QSignalSpy changed(&m_pictures, &ViewerPictures::changed);
    setCoarse(0.5F);
    EXPECT_EQ(redAt(Resolution - 5, Resolution - 5), 128);
    EXPECT_EQ(changed.takeFirst().at(1).toRect(), QRect(0, 0, Resolution, Resolution));
    EXPECT_TRUE(valuesAt(10, 10).isEmpty()) << "it has none";
    setTile(1.0F, {Tile, 0});
    EXPECT_EQ(changed.takeFirst().at(1).toRect(), QRect(Tile, 0, Tile, Tile));
    EXPECT_EQ(redAt(Tile + 10, 10), 255);
    EXPECT_EQ(redAt(10, 10), 128);
    EXPECT_EQ(valuesAt(Tile + 10, 10), (QVector<float>{1.0F, 0.0F, 0.0F, 1.0F}));
    EXPECT_TRUE(valuesAt(10, 10).isEmpty());
    EXPECT_TRUE(valuesAt(10, 10, 1002).isEmpty());
}

TEST_F(Pictures, anotherBeginningKeepsWhatIsShownButNoValues)
{
    m_pictures.begin({1002, 1001}, Resolution, {});
    EXPECT_EQ(m_pictures.patches(), (QList<int>{1001, 1002}));
    for (const int patch : {1001, 1002})
        setTile(1.0F, {0, 0}, Resolution, patch);
    m_pictures.begin({1001}, Resolution, text("no light"));
    EXPECT_EQ(m_pictures.problem(), text("no light"));
    EXPECT_EQ(m_pictures.patches(), QList<int>{1001});
    EXPECT_EQ(redAt(10, 10), 255) << "no flicker";
    EXPECT_TRUE(valuesAt(10, 10).isEmpty());
    setTile(1.0F, {0, 0}, Resolution, 1002);
    EXPECT_FALSE(m_pictures.has(1002)) << "a late tile of a patch that is gone";
    m_pictures.begin({1001}, 2 * Resolution, {});
    EXPECT_EQ(m_pictures.picture(1001).width(), 2 * Resolution);
    EXPECT_EQ(qAlpha(m_pictures.picture(1001).pixel(10, 10)), 0);
}

TEST_F(Pictures, noCoarsePictureComesBetweenTwoThatAreTheSame)
{
    setTile(1.0F);
    m_pictures.expectSamePicture();
    m_pictures.begin({1001}, Resolution, {});
    setCoarse(0.5F);
    EXPECT_EQ(redAt(10, 10), 255);
    setTile(0.25F);
    EXPECT_EQ(redAt(10, 10), 64) << "but its own pixels";
    m_pictures.begin({1001}, Resolution, {});
    setCoarse(0.5F);
    EXPECT_EQ(redAt(10, 10), 128) << "it holds for one beginning";
}

TEST_F(Pictures, paintLiesOnCoarseTilesToo)
{
    OssEvPaintBuffer paint(Resolution);
    auto dab = std::make_shared<OssEvPaintTile>();
    dab->setTexel(3, {0.0F, 0.5F, 0.0F, 0.5F, 0.5F});
    paint.setTile({1001, 0, 0}, dab);
    m_pictures.setPaint(&paint);
    setCoarse(1.0F);
    const QRgb painted = m_pictures.picture(1001).pixel(3, 0);
    EXPECT_NEAR(qRed(painted), 128, 1);
    EXPECT_NEAR(qGreen(painted), 128, 1);
    EXPECT_EQ(redAt(4, 0), 255);
    setTile(0.5F);
    EXPECT_NEAR(redAt(3, 0), 64, 1) << "the fine tile is what lies beneath now";
    m_pictures.setPaint(nullptr);
    m_pictures.showPaint(1002, {0.0, 0.0, 1.0, 1.0});
    m_pictures.showPaint(1001, {0.0, 0.0, 1.0, 1.0});
    EXPECT_EQ(redAt(3, 0), 128) << "and where paint is gone, all that is";
}

TEST_F(Pictures, paintOverTheBorderOfTilesLeavesEachItsOwnColour)
{
    OssEvPaintBuffer paint(Resolution);
    setTile(0.25F);
    setTile(0.75F, {Tile, 0});
    setTile(0.5F, {0, Tile});
    const int left = redAt(Tile - 1, 3);
    const int right = redAt(Tile, 3);
    m_pictures.setPaint(&paint);
    m_pictures.showPaint(1001, {0.25, 0.0, 0.5, 0.75});
    EXPECT_EQ(redAt(Tile - 1, 3), left);
    EXPECT_EQ(redAt(Tile, 3), right);
    EXPECT_EQ(redAt(Tile + 20, 3), right);
    EXPECT_EQ(redAt(Tile - 1, Tile + 3), 128);
    EXPECT_EQ(qAlpha(m_pictures.picture(1001).pixel(Tile + 3, Tile + 3)), 0) << "has not come yet";
    m_pictures.showPaint(1001, {2.0, 2.0, 0.5, 0.5});
    EXPECT_EQ(redAt(Tile, 3), right) << "nothing of it is there";
}

} // namespace
