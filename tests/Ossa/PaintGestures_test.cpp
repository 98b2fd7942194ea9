#include "../support/ModelFixture.h"
#include "Ossa/Viewer/PaintSession.h"
#include "Ossa/Viewer/UvView.h"
#include "Ossa/Viewer/ViewerPictures.h"
#include "OssInterface/Popups/OssApplication.h"
#include "OssModel/Nodes/OssSnImageSetNodeBase.h"
#include "OssModel/Objects/OssImageSet.h"

#include <QPaintEvent>
#include <QSignalSpy>
#include <QTabletEvent>
#include <QTest>
#include <QWheelEvent>

namespace {

/// The 2-D view with two patches of 64 texels, each 200 pixels wide, as a canvas.
class PaintGestures : public ModelFixture
{
protected:
    static constexpr int Resolution = 64;

    void SetUp() override
    {
        ModelFixture::SetUp();
        m_popups = OssApplication::popupsAllowed();
        OssApplication::setPopupsAllowed(false);
        m_network->geoEntity()->setGeometry(QStringLiteral("cube"));
        auto *node = qobject_cast<OssSnImageSetNodeBase *>(m_network->createPaintableNode({}));
        ASSERT_TRUE(node && node->imageSet());
        node->imageSet()->setResolution(Resolution);
        m_session = std::make_unique<PaintSession>();
        m_pictures.setPaint(&m_session->buffer());
        QObject::connect(m_session.get(), &PaintSession::painted, &m_pictures,
                         &ViewerPictures::showPaint);
        m_pictures.begin({1001, 1002}, Resolution, {});
        m_canvas = std::make_unique<UvView>(&m_pictures, m_session.get());
        m_canvas->resize(448, 248);
        m_canvas->show();
        m_canvas->frameAll();
        OssEvBrush brush;
        brush.radius = 3.0;
        brush.hardness = 1.0;
        brush.color = {1.0F, 0.0F, 0.0F};
        m_session->setBrush(brush);
        ASSERT_TRUE(m_session->setNode(node));
        m_canvas->setPainting(true);
        OssUndoManager::instance()->clear();
    }

    void TearDown() override
    {
        ModelFixture::TearDown();
        m_canvas.reset();
        m_session.reset();
        OssApplication::setPopupsAllowed(m_popups);
    }

    /// Where a place in patches is on the widget.
    static QPoint at(double u, double v)
    {
        return {int(24.0 + u * 200.0), int(24.0 + (1.0 - v) * 200.0)};
    }

    void move(const QPoint &to, Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers = {})
    {
        QMouseEvent event(QEvent::MouseMove, to, Qt::NoButton, buttons, modifiers);
        QApplication::sendEvent(m_canvas.get(), &event);
    }

    void drag(Qt::MouseButton button, const QPoint &from, const QPoint &to,
              Qt::KeyboardModifiers modifiers = {})
    {
        QTest::mousePress(m_canvas.get(), button, modifiers, from);
        move(to, button, modifiers);
        QTest::mouseRelease(m_canvas.get(), button, modifiers, to);
    }

    void dab(const QPoint &place, Qt::KeyboardModifiers modifiers = {})
    {
        drag(Qt::LeftButton, place, place, modifiers);
    }

    QRgb shownAt(double u, double v)
    {
        return m_pictures.picture(1001).pixel(int(u * Resolution), int((1.0 - v) * Resolution));
    }

    void key(Qt::Key key) { QTest::keyClick(m_canvas.get(), key); }

    ViewerPictures m_pictures;
    std::unique_ptr<PaintSession> m_session;
    std::unique_ptr<UvView> m_canvas;
    bool m_popups = true;
};

TEST_F(PaintGestures, shiftGoesOnInAStraightLineFromTheLastStroke)
{
    dab(at(0.2, 0.3), Qt::ShiftModifier);
    EXPECT_NE(qAlpha(shownAt(0.2, 0.3)), 0) << "the first has nothing to go on from";
    dab(at(0.8, 0.3));
    EXPECT_EQ(qAlpha(shownAt(0.5, 0.3)), 0);
    dab(at(0.8, 0.7), Qt::ShiftModifier);
    EXPECT_NE(qAlpha(shownAt(0.8, 0.5)), 0);
    EXPECT_EQ(undoCount(), 3);
    OssUndoManager::instance()->undo();
    EXPECT_EQ(qAlpha(shownAt(0.8, 0.5)), 0);
    EXPECT_NE(qAlpha(shownAt(0.8, 0.3)), 0);
}

TEST_F(PaintGestures, controlTakesTheColourThatLiesThereAndPaintsNothing)
{
    const auto tile = std::make_shared<OssEvTile>(4, OssEvTile::Format::Half,
                                                  std::array<float, 4>{0.0F, 0.25F, 0.5F, 0.5F});
    m_pictures.setTile(1001, Resolution, {0, 0}, ViewerPixels::picture(*tile, {}), tile);
    OssEvBrush brush = m_session->brush();
    brush.erases = true;
    m_session->setBrush(brush);
    dab(at(0.5, 0.5), Qt::ControlModifier);
    EXPECT_EQ(m_session->brush().color, (std::array<float, 3>{0.0F, 0.5F, 1.0F}));
    EXPECT_FALSE(m_session->brush().erases) << "who takes a colour wants to paint";
    dab(at(1.5, 0.5), Qt::ControlModifier);
    EXPECT_EQ(m_session->brush().color, (std::array<float, 3>{0.0F, 0.5F, 1.0F})) << "no values";
    const auto mask = std::make_shared<OssEvTile>(1, OssEvTile::Format::Half,
                                                  std::array<float, 4>{0.25F});
    m_pictures.setTile(1002, Resolution, {0, 0}, ViewerPixels::picture(*mask, {}), mask);
    dab(at(1.5, 0.5), Qt::ControlModifier);
    EXPECT_EQ(m_session->brush().color, (std::array<float, 3>{0.25F, 0.25F, 0.25F}));
    EXPECT_EQ(undoCount(), 0);
}

TEST_F(PaintGestures, escapeTakesTheStrokeInHandBack)
{
    dab(at(0.2, 0.2));
    QTest::mousePress(m_canvas.get(), Qt::LeftButton, {}, at(0.3, 0.5));
    move(at(0.7, 0.5), Qt::LeftButton);
    EXPECT_NE(qAlpha(shownAt(0.5, 0.5)), 0);
    key(Qt::Key_Escape);
    EXPECT_EQ(qAlpha(shownAt(0.5, 0.5)), 0);
    move(at(0.7, 0.8), Qt::LeftButton);
    QTest::mouseRelease(m_canvas.get(), Qt::LeftButton, {}, at(0.7, 0.8));
    EXPECT_EQ(undoCount(), 1);
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, {});
    escape.accept();
    QApplication::sendEvent(m_canvas.get(), &escape);
    EXPECT_FALSE(escape.isAccepted()) << "without a stroke it is the window's";
    EXPECT_NE(qAlpha(shownAt(0.2, 0.2)), 0);
}

TEST_F(PaintGestures, aStrokeEndsWithTheFocusAndWithPainting)
{
    const std::function<void()> ends[] = {
        [this] {
            QFocusEvent out(QEvent::FocusOut);
            QApplication::sendEvent(m_canvas.get(), &out);
        },
        [this] { m_canvas->setPainting(false); },
    };
    int strokes = 0;
    for (const auto &end : ends) {
        m_canvas->setPainting(true);
        QTest::mousePress(m_canvas.get(), Qt::LeftButton, {}, at(0.3, 0.5));
        end();
        EXPECT_FALSE(m_session->isPainting());
        EXPECT_EQ(undoCount(), ++strokes);
        QTest::mouseRelease(m_canvas.get(), Qt::LeftButton, {}, at(0.7, 0.8));
    }
    EXPECT_EQ(m_canvas->cursor().shape(), Qt::ArrowCursor);
}

TEST_F(PaintGestures, keysKeepTheBrushWithinItsLimits)
{
    const struct
    {
        Qt::Key key;
        double OssEvBrush::*value;
        double limit;
    } cases[] = {
        {Qt::Key_BracketLeft, &OssEvBrush::radius, 0.5},
        {Qt::Key_BracketRight, &OssEvBrush::radius, 2048.0},
        {Qt::Key_BraceLeft, &OssEvBrush::hardness, 0.0},
        {Qt::Key_BraceRight, &OssEvBrush::hardness, 1.0},
    };

    for (const auto &c : cases) {
        for (int i = 0; i < 60; ++i)
            key(c.key);
        EXPECT_DOUBLE_EQ(m_session->brush().*c.value, c.limit) << c.key;
    }
    EXPECT_EQ(m_canvas->cursor().shape(), Qt::CrossCursor);
    m_canvas->setPainting(false);
    const OssEvBrush brush = m_session->brush();
    key(Qt::Key_BracketLeft);
    key(Qt::Key_E);
    EXPECT_EQ(m_session->brush().radius, brush.radius) << "they are the brush's while painting";
    EXPECT_FALSE(m_session->brush().erases);
}

TEST_F(PaintGestures, dragsThatLookMoveThePictureAndPaintNothing)
{
    const struct
    {
        bool painting;
        Qt::MouseButton button;
        Qt::KeyboardModifiers modifiers;
    } cases[] = {
        {true, Qt::MiddleButton, {}},
        {true, Qt::LeftButton, Qt::AltModifier},
        {false, Qt::LeftButton, {}},
    };

    for (const auto &c : cases) {
        m_canvas->setPainting(c.painting);
        m_canvas->frameAll();
        QSignalSpy focus(m_canvas.get(), &UvView::focusMoved);
        drag(c.button, at(0.5, 0.5), at(0.75, 0.5), c.modifiers);
        ASSERT_EQ(focus.size(), 1) << &c - cases;
        EXPECT_NEAR(focus.first().first().toPointF().x(), 0.75, 1e-6);
        focus.clear();
        m_canvas->resize(m_canvas->width() + 50, 248);
        EXPECT_TRUE(focus.isEmpty()) << "what the user looks at stays when the view changes";
        m_canvas->resize(448, 248);
        m_pictures.begin({1001, 1002}, Resolution, {});
        EXPECT_TRUE(focus.isEmpty());
        key(Qt::Key_F);
        m_canvas->resize(500, 248);
        EXPECT_EQ(focus.size(), 2) << "until all is asked for again";
        m_canvas->resize(448, 248);
    }
    m_canvas->setPainting(true);
    drag(Qt::RightButton, at(0.5, 0.5), at(0.75, 0.5));
    EXPECT_EQ(undoCount(), 0);
}

TEST_F(PaintGestures, theWheelZoomsAtThePointerWithinLimits)
{
    const auto placeAt = [this](const QPoint &place) {
        QSignalSpy told(m_canvas.get(), &UvView::pointed);
        move(place, Qt::NoButton);
        return told.last().first().toString();
    };
    const auto turn = [this](const QPoint &place, int steps) {
        QWheelEvent event(place, m_canvas->mapToGlobal(place), {}, {0, 120 * steps}, Qt::NoButton,
                          {}, Qt::NoScrollPhase, false);
        QApplication::sendEvent(m_canvas.get(), &event);
    };
    const QPoint pointer = at(0.25, 0.75) + QPoint(1, 1);
    const QString before = placeAt(pointer);
    EXPECT_EQ(before, QStringLiteral("1001  16, 16"));
    EXPECT_EQ(placeAt(at(0.5, 0.0)), QStringLiteral("1001  32, 63")) << "its last row";
    EXPECT_EQ(placeAt(at(0.0, 0.5)), QStringLiteral("1001  0, 32"));
    turn(pointer, 4);
    EXPECT_EQ(placeAt(pointer), before);
    EXPECT_NE(placeAt(at(0.1, 0.9)), QStringLiteral("1001  6, 6"));
    // As far as it goes, and nothing is lost on the way back.
    for (const int steps : {200, -400}) {
        turn(pointer, steps);
        turn(pointer, steps);
        EXPECT_EQ(placeAt(pointer).left(4), QStringLiteral("1001"));
    }
    EXPECT_TRUE(placeAt(pointer + QPoint(40, 0)).isEmpty()) << "small, and nothing beside it";
    EXPECT_FALSE(placeAt(pointer + QPoint(6, 0)).isEmpty()) << "but to be seen";
    key(Qt::Key_F);
    EXPECT_EQ(placeAt(pointer), before) << "no values yet";
    const auto tile = std::make_shared<OssEvTile>(1, OssEvTile::Format::Half,
                                                  std::array<float, 4>{0.25F});
    m_pictures.setTile(1001, Resolution, {0, 0}, ViewerPixels::picture(*tile, {}), tile);
    EXPECT_EQ(placeAt(pointer), before + QStringLiteral("  0.2500"));
    const auto otherPatches = [this] {
        QSignalSpy focus(m_canvas.get(), &UvView::focusMoved);
        m_pictures.begin({1001, 1002, 1003}, Resolution, {});
        return focus.size();
    };
    EXPECT_EQ(otherPatches(), 1) << "all are shown";
}

TEST_F(PaintGestures, anUndoneStrokeIsDrawnAnewWhereItWas)
{
    m_canvas->setPainting(false); // no outline
    const QImage empty = m_canvas->grab().toImage();
    m_canvas->setPainting(true);
    dab(at(0.5, 0.5));
    QTest::mouseMove(m_canvas.get(), at(0.9, 0.1));
    m_canvas->setPainting(false);
    const QImage painted = m_canvas->grab().toImage();
    EXPECT_EQ(painted.pixelColor(at(0.5, 0.5)), QColor(Qt::red));
    QTest::qWait(50);

    struct Repaints : public QObject
    {
        QRegion region;

        bool eventFilter(QObject *, QEvent *event) override
        {
            if (event->type() == QEvent::Paint)
                region += static_cast<QPaintEvent *>(event)->region();
            return false;
        }
    } repaints;

    m_canvas->installEventFilter(&repaints);
    OssUndoManager::instance()->undo();
    EXPECT_TRUE(QTest::qWaitFor([&] { return repaints.region.contains(at(0.5, 0.5)); }, 2000));
    EXPECT_EQ(m_canvas->grab().toImage(), empty);
}

TEST_F(PaintGestures, aPenPressesAtLeastALittleAndAMouseFully)
{
    const auto pen = [this](QEvent::Type type, double pressure) {
        QTabletEvent event(type, at(0.5, 0.5), at(0.5, 0.5), QTabletEvent::Stylus,
                           QTabletEvent::Pen, pressure, 0, 0, 0, 0, 0, {}, 1, Qt::LeftButton,
                           Qt::LeftButton);
        QApplication::sendEvent(m_canvas.get(), &event);
    };
    OssEvBrush brush = m_session->brush();
    brush.radius = 8.0;
    m_session->setBrush(brush);
    pen(QEvent::TabletPress, 0.0);
    dab(at(0.25, 0.5));
    pen(QEvent::TabletRelease, 0.0);
    dab(at(0.75, 0.5));
    const auto covered = [this](double from, double to) {
        int count = 0;
        for (double u = from; u < to; u += 1.0 / Resolution) {
            for (double v = 0.2; v < 0.8; v += 1.0 / Resolution)
                count += qAlpha(shownAt(u, v));
        }
        return count;
    };
    EXPECT_GT(covered(0.0, 0.5), 0);
    EXPECT_LT(covered(0.0, 0.5), covered(0.5, 1.0) / 2);
}

TEST_F(PaintGestures, theOutlineIsUnderThePointerWhilePainting)
{
    OssEvBrush brush = m_session->brush();
    brush.radius = 12.0;
    brush.hardness = 1.0;
    m_session->setBrush(brush);
    const auto look = [this] {
        return m_canvas->grab().toImage();
    };
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(m_canvas.get(), &leave);
    const QImage without = look();
    move(at(0.25, 0.5), Qt::NoButton);
    const QImage left = look();
    move(at(0.75, 0.5), Qt::NoButton);
    const QImage right = look();
    EXPECT_NE(left, without);
    EXPECT_NE(left, right) << "it follows";
    brush.hardness = 0.5;
    m_session->setBrush(brush);
    EXPECT_NE(look(), right) << "and shows where the edge begins";
    brush.hardness = 0.02; // of no use so small
    m_session->setBrush(brush);
    EXPECT_EQ(look(), right);
    QApplication::sendEvent(m_canvas.get(), &leave);
    EXPECT_EQ(look(), without);
    m_canvas->setPainting(false);
    move(at(0.5, 0.5), Qt::NoButton);
    EXPECT_EQ(look(), without);
}

TEST_F(PaintGestures, everyPressureOfAPenCountsUpToAMouses)
{
    OssEvBrush brush = m_session->brush();
    brush.radius = 8.0;
    m_session->setBrush(brush);
    const auto pressed = [this](double pressure) {
        QTabletEvent press(QEvent::TabletPress, at(0.5, 0.5), at(0.5, 0.5), QTabletEvent::Stylus,
                           QTabletEvent::Pen, pressure, 0, 0, 0, 0, 0, {}, 1, Qt::LeftButton,
                           Qt::LeftButton);
        QApplication::sendEvent(m_canvas.get(), &press);
        dab(at(0.5, 0.5));
        int covered = 0;
        for (int y = 0; y < Resolution; ++y) {
            for (int x = 0; x < Resolution; ++x)
                covered += qAlpha(m_pictures.picture(1001).pixel(x, y));
        }
        OssUndoManager::instance()->undo();
        return covered;
    };
    int before = 0;
    for (const double pressure : {0.1, 0.5, 1.0}) {
        const int covered = pressed(pressure);
        EXPECT_GT(covered, before) << pressure;
        before = covered;
    }
}

TEST_F(PaintGestures, allPatchesFitWhateverTheShapeOfTheView)
{
    const auto pointedAt = [this](const QPoint &place) {
        QSignalSpy told(m_canvas.get(), &UvView::pointed);
        move(place, Qt::NoButton);
        return told.last().first().toString().left(4);
    };
    for (const QSize &size : {QSize(448, 248), QSize(1200, 248), QSize(300, 900)}) {
        m_canvas->resize(size);
        key(Qt::Key_F);
        const QPoint centre(size.width() / 2, size.height() / 2);
        EXPECT_EQ(pointedAt(centre - QPoint(10, 0)), QStringLiteral("1001"));
        EXPECT_EQ(pointedAt(centre + QPoint(10, 0)), QStringLiteral("1002"));
        for (const QPoint &border :
             {QPoint(centre.x() + 9, 12), QPoint(12, centre.y()),
              QPoint(centre.x() + 9, size.height() - 12), QPoint(size.width() - 12, centre.y())})
            EXPECT_TRUE(pointedAt(border).isEmpty()) << size.width() << " " << border.x();
    }
}

TEST_F(PaintGestures, problemsAreWrittenAndNumbersWhereThereIsRoom)
{
    m_canvas->setPainting(false);
    const auto look = [this] {
        return m_canvas->grab().toImage();
    };
    const QImage plain = look();
    m_pictures.begin({1001, 1002}, Resolution, QStringLiteral("There is no light at all"));
    EXPECT_NE(look(), plain);
    m_pictures.begin({1001, 1002}, Resolution, {});
    EXPECT_EQ(look(), plain);
    const auto lightPixels = [](const QImage &image) {
        int count = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                count += qBlue(image.pixel(x, y)) > 0x90 ? 1 : 0;
        }
        return count;
    };
    EXPECT_GT(lightPixels(plain), 0);
    const QPoint centre(224, 124);
    QWheelEvent away(centre, m_canvas->mapToGlobal(centre), {}, {0, -120 * 12}, Qt::NoButton, {},
                     Qt::NoScrollPhase, false);
    QApplication::sendEvent(m_canvas.get(), &away);
    EXPECT_EQ(lightPixels(look()), 0) << "a number larger than its patch";
}

TEST_F(PaintGestures, valuesUnderThePointerFollowThePicture)
{
    move(at(0.5, 0.5), Qt::NoButton);
    QSignalSpy told(m_canvas.get(), &UvView::pointed);
    const auto arrive = [this](float value) {
        const auto tile = std::make_shared<OssEvTile>(1, OssEvTile::Format::Half,
                                                      std::array<float, 4>{value});
        m_pictures.setTile(1001, Resolution, {0, 0}, ViewerPixels::picture(*tile, {}), tile);
    };
    m_canvas->setAttribute(Qt::WA_UnderMouse, false);
    arrive(0.25F);
    EXPECT_TRUE(told.isEmpty()) << "the pointer is elsewhere";
    m_canvas->setAttribute(Qt::WA_UnderMouse, true);
    arrive(0.75F);
    ASSERT_EQ(told.size(), 1);
    EXPECT_TRUE(told.first().first().toString().endsWith(QStringLiteral("0.7500")));
}

} // namespace
