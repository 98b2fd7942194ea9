#include "PaintFixture.h"
#include "support/PassTime.h"

#include <QPaintEvent>
#include <QSignalSpy>
#include <QTabletEvent>

namespace {

/// The 2-D view with two patches of 64 texels, each 200 pixels wide, as a canvas.
class PaintGestures : public PaintFixture
{
protected:
    void SetUp() override
    {
        PaintFixture::SetUp();
        m_pictures.begin({1001, 1002}, Resolution, {});
        m_canvas->resize(448, 248);
        m_canvas->show();
        m_canvas->frameAll();
        m_canvas->setPainting(true);
    }

    /// Where a place in patches is on the widget.
    static QPoint at(double u, double v)
    {
        return {int(24.0 + u * 200.0), int(24.0 + (1.0 - v) * 200.0)};
    }

    void move(const QPoint &to, Qt::MouseButtons held = Qt::NoButton)
    {
        moveMouse(m_canvas.get(), to, held);
    }

    void drag(Qt::MouseButton button, const QPoint &from, const QPoint &to,
              Qt::KeyboardModifiers modifiers = {})
    {
        dragMouse(m_canvas.get(), button, from, to, modifiers);
    }

    void click(const QPoint &place, Qt::KeyboardModifiers modifiers = {})
    {
        drag(Qt::LeftButton, place, place, modifiers);
    }

    void key(Qt::Key key) { QTest::keyClick(m_canvas.get(), key); }

    void pen(QEvent::Type type, double pressure, Qt::MouseButtons buttons = Qt::LeftButton)
    {
        QTabletEvent event(type, at(0.5, 0.5), at(0.5, 0.5), QTabletEvent::Stylus,
                           QTabletEvent::Pen, pressure, 0, 0, 0, 0, 0, {}, 1, Qt::LeftButton,
                           buttons);
        QApplication::sendEvent(m_canvas.get(), &event);
    }

    void arrive(int patch, int channels, const std::array<float, 4> &value)
    {
        const auto tile = tileOf(channels, value);
        m_pictures.setTile(patch, Resolution, {0, 0}, ViewerPixels::picture(*tile, {}), tile);
    }

    QColor painted(double u, double v, int patch = 1001)
    {
        return m_pictures.picture(patch).pixelColor(int(u * Resolution),
                                                    int((1.0 - v) * Resolution));
    }

    bool isPainted(double u, double v) { return painted(u, v).alpha() != 0; }

    /// What the view says of the place under the pointer.
    QString toldAt(const QPoint &place)
    {
        QSignalSpy told(m_canvas.get(), &UvView::pointed);
        move(place);
        return told.last().first().toString();
    }

    QImage look() { return m_canvas->grab().toImage(); }
};

TEST_F(PaintGestures, theCanvasPaintsWhereThePointerGoesWhileThatIsOn)
{
    m_canvas->setPainting(false);
    drag(Qt::LeftButton, at(0.5, 0.5), at(0.5, 0.5));
    EXPECT_FALSE(hasPaint()) << "not while looking";
    m_canvas->setPainting(true);
    QSignalSpy shown(&m_pictures, &ViewerPictures::changed);
    drag(Qt::LeftButton, at(0.5, 0.5), at(1.5, 0.5));
    EXPECT_EQ(m_session->buffer().patches(), (std::vector<int>{1001, 1002}));
    EXPECT_EQ(undoCount(), 1);
    EXPECT_EQ(painted(0.8, 0.5), QColor(Qt::red));
    EXPECT_EQ(painted(0.2, 0.5, 1002), QColor(Qt::red));
    EXPECT_FALSE(isPainted(0.8, 0.8));
    for (const auto &change : shown)
        EXPECT_LT(change.at(1).toRect().height(), 20) << "only where the brush was";
    history()->undo();
    EXPECT_FALSE(isPainted(0.8, 0.5));
}

TEST_F(PaintGestures, shiftGoesOnInAStraightLineFromTheLastStroke)
{
    click(at(0.2, 0.3), Qt::ShiftModifier);
    EXPECT_TRUE(isPainted(0.2, 0.3)) << "the first has nothing to go on from";
    click(at(0.8, 0.3));
    EXPECT_FALSE(isPainted(0.5, 0.3));
    click(at(0.8, 0.7), Qt::ShiftModifier);
    EXPECT_TRUE(isPainted(0.8, 0.5));
    EXPECT_EQ(undoCount(), 3);
    history()->undo();
    EXPECT_FALSE(isPainted(0.8, 0.5));
    EXPECT_TRUE(isPainted(0.8, 0.3));
}

TEST_F(PaintGestures, controlTakesTheColourThatLiesThereAndPaintsNothing)
{
    const auto taken = [this](double u) {
        click(at(u, 0.5), Qt::ControlModifier);
        return Brushes::instance()->brush().color;
    };
    const std::array<float, 3> straight{0.0F, 0.5F, 1.0F};
    arrive(1001, 4, {0.0F, 0.25F, 0.5F, 0.5F});
    setBrush(Qt::red, true);
    EXPECT_EQ(taken(0.5), straight);
    EXPECT_FALSE(Brushes::instance()->brush().erases()) << "who takes a colour wants to paint";
    EXPECT_EQ(taken(1.5), straight) << "no values";
    arrive(1002, 1, {0.25F});
    EXPECT_EQ(taken(1.5), (std::array<float, 3>{0.25F, 0.25F, 0.25F}));
    EXPECT_EQ(undoCount(), 0);
}

TEST_F(PaintGestures, escapeTakesTheStrokeInHandBack)
{
    click(at(0.2, 0.2));
    QTest::mousePress(m_canvas.get(), Qt::LeftButton, {}, at(0.3, 0.5));
    move(at(0.6, 0.5), Qt::LeftButton);
    move(at(0.7, 0.5), Qt::LeftButton);
    EXPECT_TRUE(isPainted(0.5, 0.5));
    key(Qt::Key_Escape);
    EXPECT_FALSE(isPainted(0.5, 0.5));
    move(at(0.7, 0.8), Qt::LeftButton);
    QTest::mouseRelease(m_canvas.get(), Qt::LeftButton, {}, at(0.7, 0.8));
    EXPECT_EQ(undoCount(), 1);
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, {});
    escape.accept();
    QApplication::sendEvent(m_canvas.get(), &escape);
    EXPECT_FALSE(escape.isAccepted()) << "without a stroke it is the window's";
    EXPECT_TRUE(isPainted(0.2, 0.2));
}

TEST_F(PaintGestures, aStrokeEndsWithTheFocusAndWithPainting)
{
    for (const bool byFocus : {true, false}) {
        m_canvas->setPainting(true);
        QTest::mousePress(m_canvas.get(), Qt::LeftButton, {}, at(0.3, 0.5));
        byFocus ? loseFocus(m_canvas.get()) : m_canvas->setPainting(false);
        EXPECT_FALSE(m_session->isPainting());
        EXPECT_EQ(undoCount(), byFocus ? 1 : 2);
        QTest::mouseRelease(m_canvas.get(), Qt::LeftButton, {}, at(0.7, 0.8));
    }
    EXPECT_EQ(m_canvas->cursor().shape(), Qt::ArrowCursor);
}

TEST_F(PaintGestures, theBrushChangesWithinItsLimits)
{
    Brushes::instance()->scale(2.0);
    EXPECT_DOUBLE_EQ(Brushes::instance()->brush().radius, 12.0);
    Brushes::instance()->harden(-0.25);
    EXPECT_DOUBLE_EQ(Brushes::instance()->brush().hardness, 0.75);
    for (const bool most : {true, false}) {
        Brushes::instance()->scale(most ? 1e6 : 1e-6);
        Brushes::instance()->harden(most ? 9.0 : -9.0);
        EXPECT_DOUBLE_EQ(Brushes::instance()->brush().radius, most ? 2048.0 : 0.5);
        EXPECT_DOUBLE_EQ(Brushes::instance()->brush().hardness, most ? 1.0 : 0.0);
    }
}

TEST_F(PaintGestures, dragsThatLookMoveThePictureAndPaintNothing)
{
    const std::tuple<bool, Qt::MouseButton, Qt::KeyboardModifiers> cases[] = {
        {true, Qt::MiddleButton, {}},
        {true, Qt::LeftButton, Qt::AltModifier},
        {false, Qt::LeftButton, {}},
    };
    for (const auto &[isPainting, button, modifiers] : cases) {
        SCOPED_TRACE(button);
        m_canvas->setPainting(isPainting);
        m_canvas->frameAll();
        QSignalSpy focus(m_canvas.get(), &UvView::focusMoved);
        drag(button, at(0.5, 0.5), at(0.75, 0.5), modifiers);
        ASSERT_EQ(focus.size(), 1);
        EXPECT_NEAR(focus.first().first().toPointF().x(), 0.75, 1e-6);
        focus.clear();
        m_canvas->resize(498, 248);
        EXPECT_TRUE(focus.isEmpty()) << "what the user looks at stays when the view changes";
        m_canvas->resize(448, 248);
        m_pictures.begin({1001, 1002}, Resolution, {});
        EXPECT_TRUE(focus.isEmpty());
        m_canvas->frameAll();
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
    const QPoint pointer = at(0.25, 0.75) + QPoint(1, 1);
    const auto turn = [&](int clicks) {
        turnWheel(m_canvas.get(), pointer, 120 * clicks);
    };
    const QString before = toldAt(pointer);
    EXPECT_EQ(before, text("1001  16, 16"));
    EXPECT_EQ(toldAt(at(0.5, 0.0)), text("1001  32, 63")) << "its last row";
    EXPECT_EQ(toldAt(at(0.0, 0.5)), text("1001  0, 32"));
    turn(4);
    EXPECT_EQ(toldAt(pointer), before);
    EXPECT_NE(toldAt(at(0.1, 0.9)), text("1001  6, 6"));
    // As far as it goes, and nothing is lost on the way back.
    for (const int clicks : {200, 200, -400, -400}) {
        turn(clicks);
        EXPECT_EQ(toldAt(pointer).left(4), text("1001"));
    }
    EXPECT_TRUE(toldAt(pointer + QPoint(40, 0)).isEmpty()) << "small, and nothing beside it";
    EXPECT_FALSE(toldAt(pointer + QPoint(6, 0)).isEmpty()) << "but to be seen";
    m_canvas->frameAll();
    EXPECT_EQ(toldAt(pointer), before) << "no values yet";
    arrive(1001, 1, {0.25F});
    EXPECT_EQ(toldAt(pointer), before + text("  0.2500"));
    QSignalSpy focus(m_canvas.get(), &UvView::focusMoved);
    m_pictures.begin({1001, 1002, 1003}, Resolution, {});
    EXPECT_EQ(focus.size(), 1) << "all are shown";
}

TEST_F(PaintGestures, anUndoneStrokeIsDrawnAnewWhereItWas)
{
    m_canvas->setPainting(false); // no outline
    const QImage empty = look();
    dab();
    EXPECT_EQ(look().pixelColor(at(0.5, 0.5)), QColor(Qt::red));
    passTime(50);

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
    history()->undo();
    EXPECT_TRUE(QTest::qWaitFor([&] { return repaints.region.contains(at(0.5, 0.5)); }, 2000));
    EXPECT_EQ(look(), empty);
}

TEST_F(PaintGestures, everyPressureOfAPenCountsUpToAMouses)
{
    setBrush(Qt::red, false, 8.0);
    const auto covered = [this] {
        click(at(0.5, 0.5));
        int sum = 0;
        for (int i = 0; i < Resolution * Resolution; ++i)
            sum += qAlpha(m_pictures.picture(1001).pixel(i % Resolution, i / Resolution));
        history()->undo();
        return sum;
    };
    int before = 0;
    for (const double pressure : {0.0, 0.1, 0.5, 1.0}) {
        pen(QEvent::TabletPress, pressure);
        const int now = covered();
        EXPECT_GT(now, before) << pressure;
        before = now;
        pen(QEvent::TabletRelease, pressure);
    }
    EXPECT_EQ(covered(), before) << "a mouse presses fully";
    pen(QEvent::TabletMove, 0.0, Qt::NoButton);
    EXPECT_EQ(covered(), before) << "also while a pen hovers";
}

TEST_F(PaintGestures, theOutlineIsUnderThePointerWhilePainting)
{
    const auto setEdge = [](double hardness) {
        OssEvBrush brush = Brushes::instance()->brush();
        brush.radius = 12.0;
        brush.hardness = hardness;
        Brushes::instance()->setBrush(brush);
    };
    setEdge(1.0);
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(m_canvas.get(), &leave);
    const QImage without = look();
    move(at(0.25, 0.5));
    const QImage left = look();
    move(at(0.75, 0.5));
    const QImage right = look();
    EXPECT_NE(left, without);
    EXPECT_NE(left, right) << "it follows";
    setEdge(0.5);
    EXPECT_NE(look(), right) << "and shows where the edge begins";
    setEdge(0.02); // of no use so small
    EXPECT_EQ(look(), right);
    QApplication::sendEvent(m_canvas.get(), &leave);
    EXPECT_EQ(look(), without);
    m_canvas->setPainting(false);
    move(at(0.5, 0.5));
    EXPECT_EQ(look(), without);
}

TEST_F(PaintGestures, allPatchesFitWhateverTheShapeOfTheView)
{
    for (const QSize &size : {QSize(448, 248), QSize(1200, 248), QSize(300, 900)}) {
        m_canvas->resize(size);
        m_canvas->frameAll();
        const QPoint centre(size.width() / 2, size.height() / 2);
        EXPECT_EQ(toldAt(centre - QPoint(10, 0)).left(4), text("1001"));
        EXPECT_EQ(toldAt(centre + QPoint(10, 0)).left(4), text("1002"));
        for (const QPoint &border :
             {QPoint(centre.x() + 9, 12), QPoint(12, centre.y()),
              QPoint(centre.x() + 9, size.height() - 12), QPoint(size.width() - 12, centre.y())})
            EXPECT_TRUE(toldAt(border).isEmpty()) << size.width() << " " << border.x();
    }
}

TEST_F(PaintGestures, problemsAreWrittenAndNumbersWhereThereIsRoom)
{
    m_canvas->setPainting(false);
    const QImage plain = look();
    m_pictures.begin({1001, 1002}, Resolution, text("There is no light at all"));
    EXPECT_NE(look(), plain);
    m_pictures.begin({1001, 1002}, Resolution, {});
    EXPECT_EQ(look(), plain);
    const auto isWritten = [](const QImage &image) {
        bool isLight = false;
        for (int i = 0; i < image.width() * image.height(); ++i)
            isLight = isLight || qBlue(image.pixel(i % image.width(), i / image.width())) > 0x90;
        return isLight;
    };
    EXPECT_TRUE(isWritten(plain));
    turnWheel(m_canvas.get(), {224, 124}, -120 * 12);
    EXPECT_FALSE(isWritten(look())) << "a number larger than its patch";
}

TEST_F(PaintGestures, valuesUnderThePointerFollowThePicture)
{
    move(at(0.5, 0.5));
    QSignalSpy told(m_canvas.get(), &UvView::pointed);
    m_canvas->setAttribute(Qt::WA_UnderMouse, false);
    arrive(1001, 1, {0.25F});
    EXPECT_TRUE(told.isEmpty()) << "the pointer is elsewhere";
    m_canvas->setAttribute(Qt::WA_UnderMouse, true);
    arrive(1001, 1, {0.75F});
    ASSERT_EQ(told.size(), 1);
    EXPECT_TRUE(told.first().first().toString().endsWith(text("0.7500")));
}

} // namespace
