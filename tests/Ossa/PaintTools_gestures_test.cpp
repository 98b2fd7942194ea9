#include "OssCore/Program/OssStatusManager.h"
#include "PaintFixture.h"

#include <QApplication>
#include <QFocusEvent>
#include <QSignalSpy>
#include <QWheelEvent>

namespace {

using Tool = OssEvBrush::Tool;

/// Brushes that do more than paint, in the 2-D view over a cube's patches of 64 texels, each 200 pixels wide.
class PaintToolGestures : public PaintFixture
{
protected:
    void SetUp() override
    {
        PaintFixture::SetUp();
        m_pictures.begin({1001, 1002}, Resolution, {});
        m_pictures.setShowsOwnImages(true);
        m_canvas->resize(448, 248);
        m_canvas->show();
        m_canvas->frameAll();
        m_canvas->setPainting(true);
    }

    void TearDown() override
    {
        Brushes::instance()->edit({});
        Brushes::instance()->setSheet({});
        PaintFixture::TearDown();
    }

    static QPoint at(double u, double v)
    {
        return {int(24.0 + u * 200.0), int(24.0 + (1.0 - v) * 200.0)};
    }

    void drag(const QPoint &from, const QPoint &to, Qt::KeyboardModifiers modifiers = {},
              Qt::MouseButton button = Qt::LeftButton)
    {
        dragMouse(m_canvas.get(), button, from, to, modifiers);
    }

    static void use(Tool tool, const QColor &color = Qt::red)
    {
        OssEvBrush brush = Brushes::instance()->brush();
        brush.tool = tool;
        brush.color = {float(color.redF()), float(color.greenF()), float(color.blueF())};
        Brushes::instance()->setBrush(brush);
    }

    QColor painted(double u, double v, int patch = 1001)
    {
        return m_pictures.picture(patch).pixelColor(int(u * Resolution),
                                                    int((1.0 - v) * Resolution));
    }
};

TEST_F(PaintToolGestures, aFillIsOneClickAndOneStepAndKeepsToItsIsland)
{
    use(Tool::Fill);
    drag(at(0.5, 0.5), at(0.5, 0.5));
    EXPECT_EQ(m_session->buffer().patches().size(), 6U);
    EXPECT_EQ(painted(0.1, 0.9), QColor(Qt::red));
    EXPECT_EQ(undoCount(), 1);
    history()->undo();
    EXPECT_FALSE(hasPaint());
    OssEvBrush brush = Brushes::instance()->brush();
    brush.within = OssEvBrush::Within::Island;
    Brushes::instance()->setBrush(brush);
    drag(at(1.5, 0.5), at(1.5, 0.5));
    EXPECT_FALSE(hasPaint()) << "the surface is not ready, which is told";
    EXPECT_TRUE(QTest::qWaitFor([this] { return m_session->surface() != nullptr; }));
    drag(at(1.5, 0.5), at(1.5, 0.5));
    EXPECT_EQ(m_session->buffer().patches(), (std::vector<int>{1002}));
    EXPECT_EQ(painted(0.9, 0.1, 1002), QColor(Qt::red));
}

TEST_F(PaintToolGestures, aGradientFollowsItsLineAndEscapeGivesItUp)
{
    use(Tool::Gradient);
    drag(at(0.2, 0.5), at(0.8, 0.5));
    EXPECT_EQ(painted(0.1, 0.2).alpha(), 255);
    EXPECT_NEAR(painted(0.5, 0.8).alpha(), 128, 8);
    EXPECT_EQ(painted(0.9, 0.5).alpha(), 0);
    EXPECT_EQ(undoCount(), 1);
    QTest::mousePress(m_canvas.get(), Qt::LeftButton, {}, at(0.2, 0.2));
    moveMouse(m_canvas.get(), at(0.9, 0.2), Qt::LeftButton);
    QTest::keyClick(m_canvas.get(), Qt::Key_Escape);
    QTest::mouseRelease(m_canvas.get(), Qt::LeftButton, {}, at(0.9, 0.2));
    EXPECT_EQ(undoCount(), 1);
}

TEST_F(PaintToolGestures, aGradientInHandEndsWithPaintingAndWithItsTool)
{
    const auto giveUpBy = [this](const auto &what) {
        use(Tool::Gradient);
        QTest::mousePress(m_canvas.get(), Qt::LeftButton, {}, at(0.2, 0.2));
        moveMouse(m_canvas.get(), at(0.9, 0.2), Qt::LeftButton);
        what();
        QTest::mouseRelease(m_canvas.get(), Qt::LeftButton, {}, at(0.9, 0.2));
        EXPECT_EQ(undoCount(), 0);
        m_canvas->setPainting(true);
    };
    giveUpBy([] { use(Tool::Fill); });
    giveUpBy([this] { m_canvas->setPainting(false); });
    giveUpBy([this] {
        QFocusEvent elsewhere(QEvent::FocusOut);
        QApplication::sendEvent(m_canvas.get(), &elsewhere);
    });
}

TEST_F(PaintToolGestures, clonesAskForASourceAndKeepTheirWayToIt)
{
    drag(at(0.2, 0.5), at(0.2, 0.5));
    use(Tool::Clone);
    QSignalSpy told(OssStatusManager::instance(), &OssStatusManager::messageShown);
    drag(at(0.6, 0.5), at(0.6, 0.5));
    EXPECT_EQ(undoCount(), 1) << "there is no source";
    EXPECT_EQ(told.size(), 1);
    drag(at(0.2, 0.5), at(0.2, 0.5), Qt::ControlModifier);
    drag(at(0.6, 0.5), at(0.6, 0.5));
    EXPECT_EQ(painted(0.6, 0.5), QColor(Qt::red));
    EXPECT_EQ(undoCount(), 2);
    // The next stroke goes on where that was.
    drag(at(0.6, 0.8), at(0.6, 0.8));
    EXPECT_EQ(painted(0.6, 0.8).alpha(), 0);
    drag(at(0.2, 0.5), at(0.2, 0.5), Qt::ControlModifier);
    drag(at(0.6, 0.8), at(0.6, 0.8));
    EXPECT_EQ(painted(0.6, 0.8), QColor(Qt::red));
}

TEST_F(PaintToolGestures, whatDependsOnTheImagesSeesThemAlsoAfterBaking)
{
    drag(at(0.3, 0.5), at(0.3, 0.5));
    ASSERT_TRUE(m_session->bake());
    ASSERT_FALSE(hasPaint());
    use(Tool::Clone);
    drag(at(0.3, 0.5), at(0.3, 0.5), Qt::ControlModifier);
    drag(at(0.7, 0.5), at(0.7, 0.5));
    EXPECT_EQ(painted(0.7, 0.5), QColor(Qt::red));
    use(Tool::Brush, Qt::blue);
    OssEvBrush brush = Brushes::instance()->brush();
    brush.blend = 1; // Add
    Brushes::instance()->setBrush(brush);
    drag(at(0.3, 0.5), at(0.3, 0.5));
    EXPECT_EQ(painted(0.3, 0.5), QColor(Qt::magenta));
    // Baked again, it stays.
    ASSERT_TRUE(m_session->bake());
    use(Tool::Clone);
    drag(at(0.3, 0.5), at(0.3, 0.5), Qt::ControlModifier);
    drag(at(0.7, 0.2), at(0.7, 0.2));
    EXPECT_EQ(painted(0.7, 0.2), QColor(Qt::magenta));
}

TEST_F(PaintToolGestures, aStencilStaysOnTheScreenAndIsMovedByHand)
{
    OssEvBrush brush = Brushes::instance()->brush();
    std::vector<float> open(1024, 0.0F);
    for (std::size_t i = 0; i < open.size(); ++i)
        open[i] = i % 32 < 16 ? 0.0F : 1.0F;
    brush.stencil = std::make_shared<const OssEvStamp>(32, open);
    Brushes::instance()->setBrush(brush);
    // The middle of the view is the border of both patches.
    PaintSheet sheet;
    sheet.half = 60.0;
    Brushes::instance()->setSheet(sheet);
    drag(at(0.9, 0.5), at(1.1, 0.5));
    EXPECT_EQ(painted(0.9, 0.5).alpha(), 0);
    EXPECT_EQ(painted(0.1, 0.5, 1002), QColor(Qt::red));
    EXPECT_EQ(undoCount(), 1);
    const auto both = Qt::ControlModifier | Qt::ShiftModifier;
    drag(at(1.0, 0.5), at(0.5, 0.5), both);
    EXPECT_EQ(Brushes::instance()->sheet().place, QPointF(-100.0, 0.0));
    EXPECT_EQ(undoCount(), 1) << "nothing was painted";
    drag(at(0.4, 0.5), at(0.6, 0.5));
    EXPECT_EQ(painted(0.42, 0.5).alpha(), 0);
    EXPECT_EQ(painted(0.58, 0.5), QColor(Qt::red));
    QWheelEvent turn(at(0.5, 0.5), m_canvas->mapToGlobal(at(0.5, 0.5)), {}, {0, 120}, Qt::NoButton,
                     both, Qt::NoScrollPhase, false);
    QApplication::sendEvent(m_canvas.get(), &turn);
    EXPECT_GT(Brushes::instance()->sheet().half, 60.0);
    drag(at(0.5, 0.8), at(0.8, 0.5), both, Qt::RightButton);
    EXPECT_NEAR(Brushes::instance()->sheet().angle, 90.0, 1.0);
}

} // namespace
