#include "OssCore/Values/OssColor.h"
#include "OssInterface/Properties/OssColorEditor.h"
#include "OssInterface/Properties/OssCurveEditor.h"
#include "OssInterface/Properties/OssRampEditor.h"
#include "PropertiesFixture.h"

#include <QClipboard>
#include <QComboBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QWheelEvent>

// What editors refuse, and what they show of values that differ.

namespace {

class PropertyValues : public PropertiesFixture
{
protected:
    static bool takesShortcut(QWidget *widget, Qt::Key key, const QString &text = {},
                              Qt::KeyboardModifiers modifiers = {})
    {
        QKeyEvent event(QEvent::ShortcutOverride, key, modifiers, text);
        event.ignore();
        QApplication::sendEvent(widget, &event);
        return event.isAccepted();
    }

    static void wheel(QWidget *widget)
    {
        QWheelEvent event({5, 5}, widget->mapToGlobal(QPoint(5, 5)), {}, {0, -120}, Qt::NoButton,
                          {}, Qt::NoScrollPhase, false);
        QApplication::sendEvent(widget, &event);
    }
};

} // namespace

TEST_F(PropertyValues, theWheelOverAListIsThePanelsWithoutTheFocus)
{
    auto *mode = editor<QComboBox>("Mode");
    QApplication::setActiveWindow(m_panel.get());
    field("Amount")->setFocus();
    wheel(mode);
    EXPECT_EQ(mode->currentIndex(), 0);
    mode->setFocus();
    ASSERT_TRUE(mode->hasFocus());
    wheel(mode);
    EXPECT_EQ(mode->currentIndex(), 1);
}

TEST_F(PropertyValues, keysThatMeanSomethingDoNotRunCommands)
{
    OssNumberField *number = field("Amount");
    EXPECT_TRUE(takesShortcut(number, Qt::Key_5, QStringLiteral("5")));
    EXPECT_FALSE(takesShortcut(number, Qt::Key_5, QStringLiteral("5"), Qt::ControlModifier));
    auto *curve = editor<OssCurveField>("Shape");
    ASSERT_NE(curve, nullptr);
    EXPECT_TRUE(takesShortcut(curve, Qt::Key_Delete));
    EXPECT_FALSE(takesShortcut(curve, Qt::Key_Delete, {}, Qt::ControlModifier));
    EXPECT_FALSE(takesShortcut(curve, Qt::Key_F));
}

TEST_F(PropertyValues, onlyTheLeftButtonDragsNumbers)
{
    OssNumberField *number = field("Amount");
    const double before = amount();
    const auto moveTo = [number](int x, Qt::MouseButtons buttons) {
        QMouseEvent move(QEvent::MouseMove, QPointF(x, 5), Qt::NoButton, buttons, {});
        QApplication::sendEvent(number, &move);
    };
    moveTo(200, Qt::NoButton);
    EXPECT_EQ(amount(), before) << "nothing is held";
    QTest::mousePress(number, Qt::LeftButton, {}, {10, 5});
    moveTo(30, Qt::LeftButton);
    moveTo(60, Qt::LeftButton);
    const double dragged = amount();
    EXPECT_NE(dragged, before);
    QTest::mouseRelease(number, Qt::RightButton, {}, {60, 5});
    moveTo(90, Qt::LeftButton);
    EXPECT_NE(amount(), dragged) << "the drag goes on";
    EXPECT_EQ(undoCount(), 0);
    QTest::mouseRelease(number, Qt::LeftButton, {}, {90, 5});
    EXPECT_EQ(undoCount(), 1);
    const double after = amount();
    QTest::mouseRelease(number, Qt::LeftButton, {}, {90, 5});
    EXPECT_FALSE(number->isTyping());
    EXPECT_EQ(amount(), after);
}

TEST_F(PropertyValues, typingReplacesTheWholeNumberAndTabGoesOn)
{
    OssNumberField *number = field("Amount");
    QApplication::setActiveWindow(m_panel.get());
    QTest::keyClick(number, Qt::Key_Return);
    ASSERT_NE(typingIn(number), nullptr);
    EXPECT_EQ(typingIn(number)->selectedText(), typingIn(number)->text());
    QTest::keyClicks(typingIn(number), QStringLiteral("7"));
    QTest::keyClick(typingIn(number), Qt::Key_Tab);
    EXPECT_DOUBLE_EQ(amount(), 7.0);
    EXPECT_FALSE(number->isTyping());
    EXPECT_NE(m_panel->focusWidget(), number);
    QTest::keyClick(number, Qt::Key_3, Qt::NoModifier);
    ASSERT_NE(typingIn(number), nullptr);
    EXPECT_EQ(typingIn(number)->selectedText(), QString()) << "the first digit stays";
    QTest::keyClick(typingIn(number), Qt::Key_Asterisk);
    QTest::keyClick(typingIn(number), Qt::Key_Tab);
    EXPECT_TRUE(number->isTyping()) << "a fault keeps the field";
    EXPECT_TRUE(typingIn(number)->hasFocus());
    QTest::keyClick(typingIn(number), Qt::Key_Escape);
}

TEST_F(PropertyValues, pointsOfCurvesStayInTheSquare)
{
    auto *curve = editor<OssCurveField>("Shape");
    ASSERT_NE(curve, nullptr);
    const QPointF beyond[] = {{0.5, 1.2}, {0.3, -0.2}};
    for (const QPointF &place : beyond) {
        const int before = curve->points().size();
        const QPoint at = curve->toWidget(place).toPoint();
        QTest::mouseDClick(curve, Qt::LeftButton, {}, at);
        ASSERT_EQ(curve->points().size(), before + 1);
        for (const QPointF &point : curve->points()) {
            EXPECT_GE(point.y(), 0.0);
            EXPECT_LE(point.y(), 1.0);
        }
    }
    const int all = curve->points().size();
    QTest::mouseDClick(curve, Qt::LeftButton, {}, curve->toWidget(curve->points().at(1)).toPoint());
    EXPECT_EQ(curve->points().size(), all - 1) << "the same place again";
}

TEST_F(PropertyValues, valuesThatDifferLookLikeNone)
{
    for (const char *name : {"Tint", "Pictures", "Mode", "Amount", "On"}) {
        const QString attribute = QLatin1String(name);
        OssPropertyEditor *one = m_panel->row(attribute)->editor();
        const auto picture = [one] {
            return one->grab().toImage();
        };
        one->showValue(m_node->userAttribute(attribute), false);
        const QImage plain = picture();
        one->showValue(m_node->userAttribute(attribute), true);
        EXPECT_NE(picture(), plain) << name;
        one->showValue(m_node->userAttribute(attribute), false);
        EXPECT_EQ(picture(), plain) << name;
    }
}

TEST_F(PropertyValues, aRampHasRoomForSoManyStops)
{
    auto *ramp = editor<OssRampField>("Colors");
    ASSERT_NE(ramp, nullptr);
    for (int i = 1; i < 90; ++i) {
        const double x = ramp->gripOf(0).x()
                         + i * (ramp->gripOf(ramp->stops().size() - 1).x() - ramp->gripOf(0).x())
                               / 90.0;
        QTest::mouseDClick(ramp, Qt::LeftButton, {}, {int(x), 8});
        QTest::keyClick(ramp, Qt::Key_Plus);
    }
    EXPECT_EQ(ramp->stops().size(), 64);
}

TEST_F(PropertyValues, stopsOfARampMoveBetweenTheirNeighboursAndSayWhereTheyAre)
{
    auto *ramp = editor<OssRampField>("Colors");
    ASSERT_NE(ramp, nullptr);
    ramp->setStops({{0.25, {0, 0, 0, 1}}, {0.5, {1, 1, 1, 1}}, {0.75, {0, 0, 0, 1}}});
    const auto choose = [ramp](int stop) {
        for (int i = 0; i < 3 && ramp->current() != stop; ++i)
            QTest::keyClick(ramp, Qt::Key_Space);
        ASSERT_EQ(ramp->current(), stop);
    };
    choose(1);

    const struct
    {
        double to;
        double place;
    } moves[] = {{0.6, 0.6}, {0.9, 0.75}, {0.1, 0.25}, {-1.0, 0.25}, {0.5, 0.5}};

    for (const auto &move : moves) {
        ramp->setCurrentPlace(move.to);
        EXPECT_DOUBLE_EQ(ramp->stops().at(1).place, move.place) << move.to;
        EXPECT_EQ(ramp->accessibleDescription(),
                  QStringLiteral("stop 2 of 3 at %1").arg(move.place));
    }
    choose(0);
    ramp->setCurrentPlace(-1.0);
    EXPECT_DOUBLE_EQ(ramp->stops().at(0).place, 0.0) << "the first has the end";
    choose(2);
    ramp->setCurrentPlace(2.0);
    EXPECT_DOUBLE_EQ(ramp->stops().at(2).place, 1.0);

    const struct
    {
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
        double place;
    } keys[] = {{Qt::Key_Left, {}, 0.99},
                {Qt::Key_Left, Qt::ShiftModifier, 0.989},
                {Qt::Key_Right, {}, 0.999},
                {Qt::Key_Right, Qt::ShiftModifier, 1.0},
                {Qt::Key_Right, {}, 1.0}};

    for (const auto &press : keys) {
        QTest::keyClick(ramp, press.key, press.modifiers);
        EXPECT_NEAR(ramp->stops().at(2).place, press.place, 1e-9);
    }
    for (const int next : {0, 1, 2, 0}) {
        QTest::keyClick(ramp, Qt::Key_Space);
        EXPECT_EQ(ramp->current(), next);
    }
    ramp->setStops({{0.5, {1, 0, 0, 1.5F}}});
    EXPECT_EQ(ramp->current(), 0);
    EXPECT_FALSE(ramp->grab().isNull()) << "more than opaque is opaque";
    ramp->setStops({});
    EXPECT_EQ(ramp->currentStop(), nullptr);
    ramp->setCurrentPlace(0.5);
    ramp->setCurrentColor({});
    EXPECT_TRUE(ramp->stops().isEmpty());
    EXPECT_FALSE(ramp->grab().isNull());
}

TEST_F(PropertyValues, whatIsPastedIsReadAsTheValueIsWritten)
{
    const struct
    {
        const char *attribute;
        const char *text;
        QVariant wanted; ///< null: refused
    } cases[] = {
        {"Amount", "2*3", 6.0},
        {"Amount", " 0.25 ", 0.25},
        {"Amount", "", {}},
        {"Amount", "two", {}},
        {"Count", "1+3", 4},
        {"Count", "(", {}},
        {"Line", "2*3", QStringLiteral("2*3")},
        {"Mode", "Mix", QStringLiteral("Mix")},
        {"Place", "nowhere", {}},
    };

    for (const auto &c : cases) {
        const QString name = QLatin1String(c.attribute);
        const QVariant before = m_node->attribute(name);
        QApplication::clipboard()->setText(QString::fromUtf8(c.text));
        m_panel->row(name)->pasteValue();
        EXPECT_EQ(m_node->attribute(name), c.wanted.isValid() ? c.wanted : before) << c.text;
    }
    const QVariant kept = m_node->attribute(QStringLiteral("Amount"));
    m_panel->setLocked(true);
    QApplication::clipboard()->setText(QStringLiteral("0.5"));
    m_panel->row(QStringLiteral("Amount"))->pasteValue();
    EXPECT_EQ(m_node->attribute(QStringLiteral("Amount")), kept);
}

TEST_F(PropertyValues, rampsAndCurvesShowAllTheyHave)
{
    const auto isNear = [](const QColor &one, const QColor &other) {
        return std::abs(one.red() - other.red()) + std::abs(one.green() - other.green())
                   + std::abs(one.blue() - other.blue())
               < 60;
    };
    auto *ramp = editor<OssRampField>("Colors");
    ramp->setStops({{0.1, {1, 0, 0, 1}}, {0.5, {0, 1, 0, 1}}, {0.9, {0, 0, 1, 1}}});
    const QColor colors[] = {Qt::red, Qt::green, Qt::blue};
    for (int current = 0; current < 3; ++current) {
        const QImage picture = ramp->grab().toImage();
        for (int i = 0; i < 3; ++i) {
            const QPoint grip = ramp->gripOf(i).toPoint() + QPoint(0, 2);
            EXPECT_TRUE(isNear(picture.pixelColor(grip), colors[i])) << current << " " << i;
            const QPoint bar(grip.x(), 12);
            EXPECT_TRUE(isNear(picture.pixelColor(bar), colors[i])) << current << " " << i;
        }
        QTest::keyClick(ramp, Qt::Key_Space);
    }

    auto *curve = editor<OssCurveField>("Shape");
    curve->setPoints({{0.0, 0.3}, {0.5, 0.3}, {1.0, 0.3}});
    const QImage picture = curve->grab().toImage();
    const QColor line = curve->palette().color(QPalette::Text);
    for (const double x : {0.1, 0.3, 0.7, 0.9}) {
        const QPoint at = curve->toWidget({x, 0.3}).toPoint();
        bool found = false;
        for (int y = -1; y <= 1; ++y)
            found = found || isNear(picture.pixelColor(at + QPoint(0, y)), line);
        EXPECT_TRUE(found) << x;
    }
}

TEST_F(PropertyValues, theChosenPointIsOneThatIsThere)
{
    auto *curve = editor<OssCurveField>("Shape");
    curve->setPoints({{0.0, 0.0}, {0.3, 0.3}, {0.6, 0.6}, {1.0, 1.0}});
    for (int i = 0; i < 3; ++i)
        QTest::keyClick(curve, Qt::Key_Space);
    EXPECT_TRUE(curve->accessibleDescription().startsWith(QStringLiteral("point 4 of 4")));
    curve->setPoints({{0.0, 0.0}, {1.0, 0.5}});
    EXPECT_TRUE(curve->accessibleDescription().startsWith(QStringLiteral("point 2 of 2")))
        << qPrintable(curve->accessibleDescription());
    QTest::keyClick(curve, Qt::Key_Down);
    EXPECT_LT(curve->points().last().y(), 0.5);
    QTest::keyClick(curve, Qt::Key_Space);
    EXPECT_TRUE(curve->accessibleDescription().startsWith(QStringLiteral("point 1 of 2")));

    auto *ramp = editor<OssRampField>("Colors");
    ramp->setStops({{0.1, {}}, {0.5, {}}, {0.9, {}}});
    for (int i = 0; i < 3 && ramp->current() != 2; ++i)
        QTest::keyClick(ramp, Qt::Key_Space);
    ramp->setStops({{0.1, {}}, {0.5, {}}});
    EXPECT_EQ(ramp->current(), 1);
}

TEST_F(PropertyValues, stopsThatAreAddedBesideTheBarStandAtItsEnds)
{
    auto *ramp = editor<OssRampField>("Colors");
    ramp->setStops({{0.5, {1, 1, 1, 1}}});
    for (const int x : {0, ramp->width() - 1})
        QTest::mouseDClick(ramp, Qt::LeftButton, {}, {x, 8});
    ASSERT_EQ(ramp->stops().size(), 3);
    EXPECT_EQ(ramp->stops().first().place, 0.0);
    EXPECT_EQ(ramp->stops().last().place, 1.0);
}

TEST_F(PropertyValues, aCurveTellsOfADragOnlyWhatMoved)
{
    auto *curve = editor<OssCurveField>("Shape");
    curve->setPoints({{0.0, 0.0}, {0.5, 0.5}, {1.0, 1.0}});
    QSignalSpy dragged(curve, &OssCurveField::dragged);
    const QPoint at = curve->toWidget({0.5, 0.5}).toPoint();
    const auto moveTo = [curve](const QPoint &place) {
        QMouseEvent move(QEvent::MouseMove, place, Qt::NoButton, Qt::LeftButton, {});
        QApplication::sendEvent(curve, &move);
        return curve->points().at(1);
    };
    moveTo(at + QPoint(20, 0));
    EXPECT_TRUE(dragged.isEmpty()) << "nothing is held";
    QTest::mousePress(curve, Qt::LeftButton, {}, at);
    const QPointF there = moveTo(at + QPoint(20, -10));
    const int once = dragged.size();
    EXPECT_GE(once, 1);
    EXPECT_GT(there.x(), 0.5);
    EXPECT_EQ(moveTo(at + QPoint(20, -10)), there);
    EXPECT_EQ(dragged.size(), once);
    QTest::mouseRelease(curve, Qt::LeftButton, {}, at);
}

TEST_F(PropertyValues, theSwatchIsTheColour)
{
    auto *tint = m_panel->row(QStringLiteral("Tint"))->editor();
    auto *swatch = tint->findChild<QPushButton *>();
    OssCustomAttribute attribute = m_node->userAttribute(QStringLiteral("Tint"));
    attribute.setValue(QVariant::fromValue(OssColor(1.0, 0.0, 0.0)));
    const auto left = [&](bool mixed) {
        tint->showValue(attribute, mixed);
        const QImage icon = swatch->icon().pixmap(swatch->iconSize()).toImage();
        return icon.pixelColor(3, icon.height() / 2);
    };
    EXPECT_EQ(left(false), QColor(Qt::red));
    EXPECT_NE(left(true), QColor(Qt::red));
}
