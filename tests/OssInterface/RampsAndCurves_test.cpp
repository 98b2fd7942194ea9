#include "OssCore/Values/OssColor.h"
#include "OssInterface/Properties/OssColorEditor.h"
#include "OssInterface/Properties/OssCurveEditor.h"
#include "OssInterface/Properties/OssRampEditor.h"
#include "PropertiesFixture.h"

#include <QSignalSpy>

namespace {

bool isNear(const QColor &one, const QColor &other)
{
    return std::abs(one.red() - other.red()) + std::abs(one.green() - other.green())
               + std::abs(one.blue() - other.blue())
           < 60;
}

class Ramps : public PropertiesFixture
{
protected:
    void SetUp() override
    {
        PropertiesFixture::SetUp();
        m_ramp = editor<OssRampField>("Colors");
        ASSERT_NE(m_ramp, nullptr);
    }

    void addAt(double x) const { QTest::mouseDClick(m_ramp, Qt::LeftButton, {}, {int(x), 8}); }

    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) const
    {
        QTest::keyClick(m_ramp, key, modifiers);
    }

    void choose(int stop) const
    {
        for (int i = 0; i < 3 && m_ramp->current() != stop; ++i)
            key(Qt::Key_Space);
        ASSERT_EQ(m_ramp->current(), stop);
    }

    double place(int stop) const { return m_ramp->stops().at(stop).place; }

    OssRampField *m_ramp = nullptr;
};

class Curves : public PropertiesFixture
{
protected:
    void SetUp() override
    {
        PropertiesFixture::SetUp();
        m_curve = editor<OssCurveField>("Shape");
        ASSERT_NE(m_curve, nullptr);
    }

    QPoint at(const QPointF &point) const { return m_curve->toWidget(point).toPoint(); }

    void doubleClick(const QPointF &point) const
    {
        QTest::mouseDClick(m_curve, Qt::LeftButton, {}, at(point));
    }

    void key(Qt::Key key) const { QTest::keyClick(m_curve, key); }

    /// "point 2 of 3", of what the field says.
    std::string chosen() const { return m_curve->accessibleDescription().left(12).toStdString(); }

    OssCurveField *m_curve = nullptr;
};

/// From left to right it never falls, and ends at 1 or below.
void expectRising(const OssCurveField &curve)
{
    for (int i = 0; i < 200; ++i) {
        EXPECT_LE(curve.valueAt(i / 200.0), 1.0);
        EXPECT_LE(curve.valueAt(i / 200.0), curve.valueAt((i + 1) / 200.0) + 1e-12) << i;
    }
}

} // namespace

TEST_F(Ramps, areEditedByPointerKeysAndFields)
{
    auto *panel = qobject_cast<OssRampEditor *>(m_ramp->parentWidget());
    ASSERT_NE(panel, nullptr);
    EXPECT_EQ(value("Colors"), text("0,0,0,0,1 1,1,1,1,1"));
    addAt((m_ramp->gripOf(0).x() + m_ramp->gripOf(1).x()) / 2);
    ASSERT_EQ(m_ramp->stops().size(), 3);
    EXPECT_EQ(m_ramp->current(), 1);
    EXPECT_NEAR(double(m_ramp->stops().at(1).color[0]), 0.5, 0.02) << "the colour that was there";
    EXPECT_EQ(undoCount(), 1);

    // A stop does not pass its neighbour; a drag is one step.
    const auto drag = [this](const QPoint &by) {
        const QPoint grip = m_ramp->gripOf(1).toPoint();
        QTest::mousePress(m_ramp, Qt::LeftButton, {}, grip);
        for (int i = 1; i <= 4; ++i)
            moveMouse(m_ramp, grip + by * i);
        QTest::mouseRelease(m_ramp, Qt::LeftButton, {}, grip);
    };
    drag({400, 0});
    EXPECT_EQ(place(1), 1.0);
    EXPECT_EQ(undoCount(), 2);
    key(Qt::Key_Left);
    key(Qt::Key_Left);
    EXPECT_NEAR(place(1), 0.98, 1e-9);
    EXPECT_EQ(undoCount(), 3);
    EXPECT_NEAR(panel->placeField()->value(), 0.98, 1e-9);

    Q_EMIT panel->colorEditor()->edited(QVariant::fromValue(OssColor(2.0, 0.5, 0.25, 0.5)));
    EXPECT_EQ(value("Colors"), text("0,0,0,0,1 0.98,2,0.5,0.25,0.5 1,1,1,1,1"));
    drag({0, 100});
    EXPECT_EQ(value("Colors"), text("0,0,0,0,1 1,1,1,1,1")) << "dragged off";
    for (const Qt::Key pressed : {Qt::Key_Plus, Qt::Key_Delete, Qt::Key_Delete, Qt::Key_Delete})
        key(pressed);
    EXPECT_EQ(m_ramp->stops().size(), 1) << "one colour at least";
    expectUndoIsExact(m_start);
}

TEST_F(Ramps, haveRoomForSoManyStopsAndNoneBesideTheBar)
{
    m_ramp->setStops({{0.5, {1, 1, 1, 1}}});
    addAt(0);
    addAt(m_ramp->width() - 1);
    ASSERT_EQ(m_ramp->stops().size(), 3);
    EXPECT_EQ(place(0), 0.0);
    EXPECT_EQ(place(2), 1.0);
    for (int i = 1; i < 90; ++i) {
        const double first = m_ramp->gripOf(0).x();
        const double last = m_ramp->gripOf(m_ramp->stops().size() - 1).x();
        addAt(first + i * (last - first) / 90.0);
        key(Qt::Key_Plus);
    }
    EXPECT_EQ(m_ramp->stops().size(), 64);
}

TEST_F(Ramps, stopsMoveBetweenTheirNeighboursAndSayWhereTheyAre)
{
    m_ramp->setStops({{0.25, {0, 0, 0, 1}}, {0.5, {1, 1, 1, 1}}, {0.75, {0, 0, 0, 1}}});
    choose(1);
    const std::pair<double, double> moves[] = {
        {0.6, 0.6}, {0.9, 0.75}, {0.1, 0.25}, {-1.0, 0.25}, {0.5, 0.5}};
    for (const auto &[to, wanted] : moves) {
        m_ramp->setCurrentPlace(to);
        EXPECT_DOUBLE_EQ(place(1), wanted) << to;
        EXPECT_EQ(m_ramp->accessibleDescription(), text("stop 2 of 3 at %1").arg(wanted));
    }
    choose(0);
    m_ramp->setCurrentPlace(-1.0);
    EXPECT_DOUBLE_EQ(place(0), 0.0) << "the first has the end";
    choose(2);
    m_ramp->setCurrentPlace(2.0);
    EXPECT_DOUBLE_EQ(place(2), 1.0);
    const std::tuple<Qt::Key, Qt::KeyboardModifiers, double> keys[] = {
        {Qt::Key_Left, {}, 0.99},   {Qt::Key_Left, Qt::ShiftModifier, 0.989},
        {Qt::Key_Right, {}, 0.999}, {Qt::Key_Right, Qt::ShiftModifier, 1.0},
        {Qt::Key_Right, {}, 1.0},
    };
    for (const auto &[pressed, modifiers, wanted] : keys) {
        key(pressed, modifiers);
        EXPECT_NEAR(place(2), wanted, 1e-9);
    }
    for (const int next : {0, 1, 2, 0}) {
        key(Qt::Key_Space);
        EXPECT_EQ(m_ramp->current(), next);
    }
    choose(2);
    m_ramp->setStops({{0.1, {}}, {0.5, {}}});
    EXPECT_EQ(m_ramp->current(), 1) << "one that is there";
    m_ramp->setStops({{0.5, {1, 0, 0, 1.5F}}});
    EXPECT_EQ(m_ramp->current(), 0);
    EXPECT_FALSE(m_ramp->grab().isNull()) << "more than opaque is opaque";
    m_ramp->setStops({});
    EXPECT_EQ(m_ramp->currentStop(), nullptr);
    m_ramp->setCurrentPlace(0.5);
    m_ramp->setCurrentColor({});
    EXPECT_TRUE(m_ramp->stops().isEmpty());
    EXPECT_FALSE(m_ramp->grab().isNull());
}

TEST_F(Ramps, showAllTheirColours)
{
    m_ramp->setStops({{0.1, {1, 0, 0, 1}}, {0.5, {0, 1, 0, 1}}, {0.9, {0, 0, 1, 1}}});
    const QColor colors[] = {Qt::red, Qt::green, Qt::blue};
    for (int current = 0; current < 3; ++current) {
        const QImage picture = m_ramp->grab().toImage();
        for (int i = 0; i < 3; ++i) {
            const QPoint grip = m_ramp->gripOf(i).toPoint() + QPoint(0, 2);
            EXPECT_TRUE(isNear(picture.pixelColor(grip), colors[i])) << current << " " << i;
            EXPECT_TRUE(isNear(picture.pixelColor(grip.x(), 12), colors[i])) << current << " " << i;
        }
        key(Qt::Key_Space);
    }
}

TEST_F(Curves, areEditedByPointerAndKeys)
{
    EXPECT_EQ(value("Shape"), text("0,0 1,1"));
    EXPECT_DOUBLE_EQ(m_curve->valueAt(0.5), 0.5);
    doubleClick({0.5, 0.75});
    ASSERT_EQ(m_curve->points().size(), 3);
    EXPECT_NEAR(m_curve->points().at(1).y(), 0.75, 0.02);
    EXPECT_NEAR(m_curve->valueAt(0.5), 0.75, 0.02);
    expectRising(*m_curve);
    EXPECT_EQ(undoCount(), 1);
    const QPoint grip = at(m_curve->points().at(1));
    QTest::mousePress(m_curve, Qt::LeftButton, {}, grip);
    for (int i = 1; i <= 5; ++i)
        moveMouse(m_curve, grip + QPoint(i * 200, 0));
    QTest::mouseRelease(m_curve, Qt::LeftButton, {}, grip);
    ASSERT_EQ(m_curve->points().size(), 3);
    EXPECT_LT(m_curve->points().at(1).x(), 1.0); // it did not pass its neighbour
    EXPECT_EQ(undoCount(), 2);
    key(Qt::Key_Up);
    key(Qt::Key_Up);
    EXPECT_EQ(undoCount(), 3);
    key(Qt::Key_Delete);
    key(Qt::Key_Delete);
    EXPECT_EQ(m_curve->points().size(), 2); // a line at least
    key(Qt::Key_Plus);
    EXPECT_EQ(m_curve->points().size(), 3);
    expectUndoIsExact(m_start);
}

TEST_F(Curves, riseWhereTheirPointsDoAndReadWhatIsAPoint)
{
    m_curve->setPoints({{0, 0}, {0.1, 0.9}, {0.2, 0.95}, {0.9, 0.96}, {1, 1}});
    expectRising(*m_curve);
    EXPECT_EQ(OssCurveEditor::textFromPoints(
                  OssCurveEditor::pointsFromText(text("1,1 x,2 0.25,0.5 3 0,0 nan,1"))),
              text("0,0 0.25,0.5 1,1"));
}

TEST_F(Curves, pointsStayInTheSquareAndGoWhenTheyAreClickedAgain)
{
    for (const QPointF &beyond : {QPointF(0.5, 1.2), QPointF(0.3, -0.2)}) {
        const int before = m_curve->points().size();
        doubleClick(beyond);
        ASSERT_EQ(m_curve->points().size(), before + 1);
        for (const QPointF &point : m_curve->points()) {
            EXPECT_GE(point.y(), 0.0);
            EXPECT_LE(point.y(), 1.0);
        }
    }
    const int all = m_curve->points().size();
    doubleClick(m_curve->points().at(1));
    EXPECT_EQ(m_curve->points().size(), all - 1);
}

TEST_F(Curves, theChosenPointIsOneThatIsThere)
{
    m_curve->setPoints({{0.0, 0.0}, {0.3, 0.3}, {0.6, 0.6}, {1.0, 1.0}});
    for (int i = 0; i < 3; ++i)
        key(Qt::Key_Space);
    EXPECT_EQ(chosen(), "point 4 of 4");
    m_curve->setPoints({{0.0, 0.0}, {1.0, 0.5}});
    EXPECT_EQ(chosen(), "point 2 of 2");
    key(Qt::Key_Down);
    EXPECT_LT(m_curve->points().last().y(), 0.5);
    key(Qt::Key_Space);
    EXPECT_EQ(chosen(), "point 1 of 2");
}

TEST_F(Curves, tellOfADragOnlyWhatMoved)
{
    m_curve->setPoints({{0.0, 0.0}, {0.5, 0.5}, {1.0, 1.0}});
    QSignalSpy dragged(m_curve, &OssCurveField::dragged);
    const QPoint grip = at({0.5, 0.5});
    moveMouse(m_curve, grip + QPoint(20, 0));
    EXPECT_TRUE(dragged.isEmpty()) << "nothing is held";
    QTest::mousePress(m_curve, Qt::LeftButton, {}, grip);
    moveMouse(m_curve, grip + QPoint(20, -10));
    const QPointF there = m_curve->points().at(1);
    const int once = dragged.size();
    EXPECT_GE(once, 1);
    EXPECT_GT(there.x(), 0.5);
    moveMouse(m_curve, grip + QPoint(20, -10));
    EXPECT_EQ(m_curve->points().at(1), there);
    EXPECT_EQ(dragged.size(), once);
    QTest::mouseRelease(m_curve, Qt::LeftButton, {}, grip);
}

TEST_F(Curves, noPointIsHiddenByWhatSaysThatValuesDiffer)
{
    for (const double end : {1.0, 0.0}) {
        m_curve->setPoints({{0.0, 1.0 - end}, {1.0, end}});
        m_curve->setMixed(false);
        const QImage plain = m_curve->grab().toImage();
        m_curve->setMixed(true);
        const QImage mixed = m_curve->grab().toImage();
        EXPECT_NE(mixed, plain);
        for (const QPointF &point : m_curve->points()) {
            const QRect grip(at(point) - QPoint(4, 4), QSize(9, 9));
            EXPECT_EQ(mixed.copy(grip), plain.copy(grip)) << point.x();
        }
    }
}

TEST_F(Curves, areDrawnWhereTheyAre)
{
    m_curve->setPoints({{0.0, 0.3}, {0.5, 0.3}, {1.0, 0.3}});
    const QImage picture = m_curve->grab().toImage();
    const QColor line = m_curve->palette().color(QPalette::Text);
    for (const double x : {0.1, 0.3, 0.7, 0.9}) {
        bool found = false;
        for (int y = -1; y <= 1; ++y)
            found = found || isNear(picture.pixelColor(at({x, 0.3}) + QPoint(0, y)), line);
        EXPECT_TRUE(found) << x;
    }
}
