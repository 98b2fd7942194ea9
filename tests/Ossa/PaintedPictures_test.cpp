#include "Ossa/Painting/PaintComposer.h"
#include "PaintFixture.h"

#include <QSignalSpy>

#include <cmath>

namespace {

/// What views draw of paint that is not baked.
class PaintedPictures : public PaintFixture
{};

TEST_F(PaintedPictures, ofANodeThatIsGoneNothingStaysOnThePictures)
{
    stroke({0.2, 0.5}, {0.8, 0.5});
    QSignalSpy painted(m_session.get(), &PaintSession::painted);
    m_network->removeNodes({m_paint});
    EXPECT_FALSE(hasPaint());
    EXPECT_FALSE(painted.isEmpty());
}

TEST_F(PaintedPictures, picturesShowPaintOverTheValuesBeneath)
{
    m_pictures.begin({1001}, Resolution, {});
    const auto tile = tileOf(4, {0.0F, 0.0F, 1.0F, 1.0F});
    ViewerLook look;
    look.raw = true;
    m_pictures.setLook(look);
    OssEvBrush brush = Brushes::instance()->brush();
    brush.opacity = 0.5;
    Brushes::instance()->setBrush(brush);
    dab();
    // A tile that comes later has the paint on it as well.
    m_pictures.setTile(1001, Resolution, {0, 0}, ViewerPixels::picture(*tile, look), tile);
    const QRgb half = m_pictures.picture(1001).pixel(32, 32);
    EXPECT_NEAR(qRed(half), 128, 1);
    EXPECT_NEAR(qBlue(half), 128, 1);
    EXPECT_EQ(m_pictures.picture(1001).pixelColor(5, 5), QColor(Qt::blue));
    QVector<float> values;
    ASSERT_TRUE(m_pictures.values(1001, {32, 32}, &values));
    EXPECT_NEAR(values.at(0), 0.5F, 1e-3F);

    // Behind other nodes an eraser shows what the fresh paint lies on, on its own also below.
    brush.opacity = 1.0;
    brush.tool = OssEvBrush::Tool::Eraser;
    Brushes::instance()->setBrush(brush);
    dab();
    EXPECT_EQ(m_pictures.picture(1001).pixelColor(32, 32), QColor(Qt::blue));
    m_pictures.setShowsOwnImages(true);
    m_pictures.showPaint(1001, {0.0, 0.0, 1.0, 1.0});
    EXPECT_EQ(m_pictures.picture(1001).pixelColor(32, 32).alpha(), 0);
}

TEST_F(PaintedPictures, viewsAreToldWhatToDrawAndWhatIsOnlyBaked)
{
    QSignalSpy painted(m_session.get(), &PaintSession::painted);
    QSignalSpy settled(m_session.get(), &PaintSession::settled);
    const std::tuple<const char *, std::function<void()>, const char *> steps[] = {
        {"stroke", [this] { dab(); }, "painted"},
        {"undo", [] { history()->undo(); }, "painted"},
        {"redo", [] { history()->redo(); }, "painted"},
        {"clear", [this] { m_session->clear(); }, "painted"},
        {"undo clearing", [] { history()->undo(); }, "painted"},
        {"bake", [this] { EXPECT_TRUE(m_session->bake()); }, "baked"}, // it looks as before
        {"clear nothing", [this] { m_session->clear(); }, ""},
        {"begin", [this] { m_session->begin(QPointF(0.25, 0.25)); }, "painted"},
        {"cancel", [this] { m_session->cancel(); }, "painted"},
    };
    for (const auto &[name, act, wanted] : steps) {
        painted.clear();
        settled.clear();
        act();
        EXPECT_EQ(!painted.isEmpty(), text(wanted) == text("painted")) << name;
        if (text(wanted) == text("baked"))
            EXPECT_FALSE(settled.isEmpty()) << name;
    }
}

TEST_F(PaintedPictures, onlyPatchesWithOtherPaintAreComposedAnew)
{
    PaintComposer composer;
    const auto composed = [&] {
        QMap<int, QString> pixels;
        EXPECT_TRUE(composer.compose(m_session->buffer(), images(), &pixels));
        return pixels;
    };
    dab();
    const QMap<int, QString> first = composed();
    EXPECT_EQ(first.keys(), QList<int>{1001});
    EXPECT_EQ(composed(), first);
    setBrush(Qt::green);
    dab();
    EXPECT_NE(composed(), first);
    history()->undo();
    EXPECT_EQ(composed(), first);
}

} // namespace
