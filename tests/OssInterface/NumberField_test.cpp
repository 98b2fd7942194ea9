#include "OssInterface/Properties/OssExpression.h"
#include "OssInterface/Properties/OssNumberField.h"
#include "PropertiesFixture.h"

#include <QSignalSpy>

#include <cmath>

// Fields for numbers: by themselves, in a panel, and what can be typed into them.

namespace {

/// A number from 0 upwards, without a slider.
class NumberInput : public testing::Test
{
protected:
    NumberInput()
    {
        field.setRange(bounded(0.0, {}));
        field.setValue(5.0);
        field.resize(200, 24);
        field.show();
    }

    using Range = OssNumberField::Range;

    static Range bounded(std::optional<double> minimum, std::optional<double> maximum)
    {
        Range range;
        range.minimum = minimum;
        range.maximum = maximum;
        return range;
    }

    static Range slider(double low, double high)
    {
        Range range;
        range.softMinimum = low;
        range.softMaximum = high;
        return range;
    }

    bool turn(int angle) { return turnWheel(&field, {5, 5}, angle); }

    /// Drags to so many pixels beside the press, in these steps, and stays there.
    void drag(const QList<int> &ways, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::mousePress(&field, Qt::LeftButton, modifiers, {100, 12});
        for (const int way : ways)
            moveMouse(&field, {100 + way, 12}, Qt::LeftButton, modifiers);
    }

    void release() { QTest::mouseRelease(&field, Qt::LeftButton, {}, {124, 12}); }

    OssNumberField field;
    QSignalSpy stepped{&field, &OssNumberField::stepped};
};

class NumberFields : public PropertiesFixture
{};

} // namespace

TEST_F(NumberInput, showsTheDigitsThatMatter)
{
    const auto shown = [this](const Range &range, double value) {
        field.setRange(range);
        field.setValue(value);
        return field.text().toStdString();
    };
    const Range unit = slider(0.0, 1.0);
    EXPECT_EQ(shown(unit, double(0.1F)), "0.1");
    EXPECT_EQ(shown(unit, 0.12345678), "0.1235");
    EXPECT_EQ(shown(unit, 1.0), "1");
    EXPECT_EQ(shown(unit, -0.5), "-0.5");
    EXPECT_EQ(shown(unit, 0.00001234), "1.23e-05") << "not nothing";
    EXPECT_EQ(shown(unit, 250.125), "250.125") << "also beyond the slider";
    EXPECT_EQ(shown(slider(0.0, 500.0), 33.333333), "33.33");
    EXPECT_EQ(shown(slider(0.0, 0.001), 0.00012346), "0.0001235");
    EXPECT_EQ(shown({}, 1234567.0), "1234567");
    EXPECT_EQ(shown({}, 0.30000000000000004), "0.3");
    EXPECT_EQ(shown({}, 1e15), "1e+15");
    // What lies one step apart looks different.
    for (const Range &range : {unit, slider(0.0, 0.001), slider(-5000.0, 5000.0)}) {
        field.setRange(range);
        EXPECT_NE(shown(range, field.singleStep() / 10.0), shown(range, field.singleStep() / 5.0));
    }
}

TEST_F(NumberInput, leavesOutDigitsWhereItIsNarrow)
{
    field.setRange(slider(0.0, 1.0));

    const struct
    {
        double value;
        const char *shortest;
    } numbers[] = {{0.7877, "0.79"}, {0.8939, "0.89"}, {0.0377, "0.038"}, {12.3456, "12"}};

    const QFontMetricsF metrics(field.font());
    for (const auto &number : numbers) {
        field.setValue(number.value);
        const int least = int(std::ceil(metrics.horizontalAdvance(text(number.shortest))));
        for (int width = least; width < 90; ++width) {
            const QString shown = field.textFitting(width);
            EXPECT_NEAR(shown.toDouble(), number.value, 0.5) << width << " " << qPrintable(shown);
        }
        EXPECT_EQ(field.textFitting(least), text(number.shortest));
        EXPECT_EQ(field.textFitting(90), field.text());
    }
}

TEST_F(NumberInput, allDigitsAreThereForTyping)
{
    field.setRange(slider(0.0, 1.0));
    field.setValue(double(0.1F));
    field.startTyping();
    EXPECT_EQ(field.findChild<QLineEdit *>()->text(), text("0.10000000149011612"));
}

TEST_F(NumberInput, theWheelStepsOnlyWithTheFocusAndInWholeClicks)
{
    field.clearFocus();
    EXPECT_FALSE(turn(120)) << "the panel scrolls";
    field.activateWindow();
    field.setFocus();
    QApplication::processEvents();
    ASSERT_TRUE(field.hasFocus());
    EXPECT_TRUE(turn(60));
    EXPECT_TRUE(stepped.isEmpty());
    EXPECT_TRUE(turn(60));
    ASSERT_EQ(stepped.size(), 1);
    EXPECT_GT(field.value(), 5.0);
    turn(-120);
    EXPECT_DOUBLE_EQ(field.value(), 5.0);
    field.setValue(0.0);
    stepped.clear();
    turn(-120);
    EXPECT_EQ(field.value(), 0.0);
    EXPECT_TRUE(stepped.isEmpty()) << "at the end nothing changes";
}

TEST_F(NumberInput, keysThatStepAreUsedUpAndOthersAreNot)
{
    const std::tuple<Qt::Key, Qt::KeyboardModifiers, bool> cases[] = {
        {Qt::Key_Up, {}, true},
        {Qt::Key_Down, {}, true},
        {Qt::Key_Up, Qt::ControlModifier, false},
        {Qt::Key_F5, {}, false},
    };
    for (const auto &[key, modifiers, used] : cases) {
        const double before = field.value();
        QKeyEvent press(QEvent::KeyPress, key, modifiers);
        QApplication::sendEvent(&field, &press);
        EXPECT_EQ(press.isAccepted(), used) << key;
        EXPECT_EQ(field.value() != before, used) << key;
    }
}

TEST_F(NumberInput, stepsFitTheValueTheRangeAndTheKind)
{
    Range whole;
    whole.isInteger = true;
    const Range narrow = bounded(-1.0, 0.123456789012345);
    const std::tuple<Range, double, Qt::Key, double> cases[] = {
        {{}, 0.7, Qt::Key_Up, 0.8},
        {{}, 0.0, Qt::Key_Down, -0.1},
        {{}, 73.0, Qt::Key_Right, 78.0},
        {{}, -20.0, Qt::Key_Left, -22.0},
        {{}, 0.3, Qt::Key_PageUp, 1.3},
        {{}, 0.3, Qt::Key_PageDown, -0.7},
        {{}, 0.3, Qt::Key_Home, 0.3},
        {{}, 0.3, Qt::Key_End, 0.3},
        {whole, 7.0, Qt::Key_Up, 8.0},
        {whole, 7.0, Qt::Key_PageDown, -3.0},
        {slider(0.0, 1.0), 0.5, Qt::Key_Up, 0.52},
        {slider(0.0, 1.0), 7.0, Qt::Key_Down, 6.98},
        {slider(0.0, 500.0), 100.0, Qt::Key_Up, 110.0},
        {slider(1.0, 1.0), 1.0, Qt::Key_Up, 1.1},
        {slider(-2.0, 3.0), 0.5, Qt::Key_Home, -2.0},
        {narrow, 0.1, Qt::Key_End, 0.123456789012345},
        {narrow, 0.1, Qt::Key_PageUp, 0.123456789012345},
        {narrow, -0.95, Qt::Key_PageDown, -1.0},
    };
    for (const auto &[range, value, key, wanted] : cases) {
        field.setRange(range);
        field.setValue(value);
        stepped.clear();
        QTest::keyClick(&field, key);
        EXPECT_EQ(field.value(), wanted) << value << " " << key; // not nearly
        EXPECT_EQ(stepped.isEmpty(), value == wanted) << value << " " << key;
    }
    field.setMixed(true);
    stepped.clear();
    QTest::keyClick(&field, Qt::Key_Home);
    EXPECT_EQ(stepped.size(), 1) << "now they have all the same value";
}

TEST_F(NumberInput, dragsWithoutASliderGoByTheValueAndEscapeGivesItBack)
{
    QSignalSpy ended(&field, &OssNumberField::dragEnded);
    drag({2});
    EXPECT_EQ(field.value(), 5.0) << "a hand that is not steady";
    release();
    EXPECT_TRUE(ended.isEmpty());
    drag({4, 24});
    EXPECT_DOUBLE_EQ(field.value(), 6.0) << "a hundredth for each pixel";
    release();
    EXPECT_EQ(ended.size(), 1);
    drag({4, 24}, Qt::ShiftModifier);
    EXPECT_GT(field.value(), 6.0);
    EXPECT_LT(field.value(), 6.3) << "finer";
    QTest::keyClick(&field, Qt::Key_Escape);
    EXPECT_DOUBLE_EQ(field.value(), 6.0);
    EXPECT_EQ(ended.size(), 2);
    drag({4, -5000});
    EXPECT_EQ(field.value(), 0.0);
    release();
    drag({4, 54});
    EXPECT_DOUBLE_EQ(field.value(), 0.5) << "it leaves nought";
}

TEST_F(NumberInput, aSliderIsNotLeftAndWhatIsBeyondComesBackOnly)
{
    field.setRange(slider(2.0, 4.0));
    const std::tuple<double, int, double> cases[] = {
        {3.0, -5000, 2.0}, {3.0, 5000, 4.0},   {9.0, 5000, 9.0},
        {9.0, -5000, 2.0}, {-3.0, -900, -3.0}, {-3.0, 5000, 4.0},
    };
    for (const auto &[from, way, to] : cases) {
        field.setValue(from);
        drag({4, way});
        EXPECT_DOUBLE_EQ(field.value(), to) << from << " " << way;
        release();
    }
}

TEST_F(NumberInput, aSliderIsFilledUpToItsValue)
{
    const auto isFilled = [this](int x) {
        const QColor color = field.grab().toImage().pixelColor(x, 4);
        const QColor base = field.palette().color(QPalette::Base);
        return std::abs(color.red() - base.red()) + std::abs(color.green() - base.green())
                   + std::abs(color.blue() - base.blue())
               > 24;
    };
    field.setValue(3.0);
    EXPECT_FALSE(isFilled(20)) << "no slider";
    field.setRange(slider(2.0, 4.0));
    EXPECT_TRUE(isFilled(20) && isFilled(80));
    EXPECT_FALSE(isFilled(120));
    field.setValue(1.0);
    EXPECT_FALSE(isFilled(20));
    field.setValue(9.0);
    EXPECT_TRUE(isFilled(20) && isFilled(180));
    field.setMixed(true);
    EXPECT_FALSE(isFilled(20)) << "which value?";
}

TEST_F(NumberInput, theFocusStaysInTheFieldOrWhereTheUserPutIt)
{
    QWidget window;
    auto *first = new OssNumberField(&window);
    auto *second = new OssNumberField(&window);
    second->move(0, 50);
    window.show();
    window.activateWindow();
    first->setFocus();
    QApplication::processEvents();
    ASSERT_TRUE(first->hasFocus());
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Escape}) {
        first->startTyping();
        ASSERT_NE(window.focusWidget(), first);
        QTest::keyClick(window.focusWidget(), key);
        EXPECT_FALSE(first->isTyping());
        EXPECT_EQ(window.focusWidget(), first) << key;
    }
    first->startTyping();
    first->findChild<QLineEdit *>()->setText(text("five"));
    second->setFocus();
    EXPECT_FALSE(first->isTyping()) << "what is no number does not stay";
    EXPECT_EQ(first->value(), 0.0);
    EXPECT_EQ(window.focusWidget(), second);
}

TEST_F(NumberFields, aDragChangesAtOnceStaysInTheSoftRangeAndIsOneStep)
{
    QSignalSpy changes(m_node, &OssSerializableObject::userAttributeChanged);
    OssNumberField *number = field("Amount");
    drag(number, number->width() * 2);
    EXPECT_DOUBLE_EQ(amount(), 1.0); // beyond it by typing only
    EXPECT_GT(changes.size(), 2);
    EXPECT_FALSE(OssUndoManager::instance()->canUndo()); // nothing is undone under a drag
    QTest::mouseRelease(number, Qt::RightButton, {}, {0, 0});
    moveMouse(number, {number->width() / 4, 5});
    EXPECT_LT(amount(), 1.0) << "another button does not end it";
    drag(number, number->width() * 2);
    EXPECT_EQ(undoCount(), 0);
    release(number);
    release(number);
    EXPECT_EQ(undoCount(), 1);
    EXPECT_FALSE(number->isTyping());
    EXPECT_EQ(OssUndoManager::instance()->undoText(), text("Change Amount of ") + m_node->name());
    expectUndoIsExact(m_start);

    drag(number, -30);
    QTest::keyClick(number, Qt::Key_Escape);
    EXPECT_DOUBLE_EQ(amount(), 1.0);
    release(number);
    EXPECT_EQ(undoCount(), 1);
}

TEST_F(NumberFields, typedArithmeticIsBoundedHardAndFaultsStayOpen)
{
    OssNumberField *number = field("Amount");
    type(number, "2*3+1");
    EXPECT_DOUBLE_EQ(amount(), 7.0); // beyond the soft maximum
    type(number, "*5");
    EXPECT_DOUBLE_EQ(amount(), 10.0); // not beyond the hard one
    EXPECT_EQ(undoCount(), 2);

    type(number, "2*");
    EXPECT_TRUE(number->isTyping());
    EXPECT_FALSE(number->typingFault().isEmpty());
    QTest::keyClick(typingIn(number), Qt::Key_Escape);
    EXPECT_FALSE(number->isTyping());
    EXPECT_DOUBLE_EQ(amount(), 10.0);

    QTest::keyClick(field("Count"), Qt::Key_5); // the first digit opens the field
    QTest::keyClick(typingIn(field("Count")), Qt::Key_Return);
    EXPECT_EQ(value("Count"), QVariant(5));
    type(field("Count"), "2.6");
    EXPECT_EQ(value("Count"), QVariant(3));
    EXPECT_EQ(undoCount(), 4);
    for (int i = 0; i < 3; ++i)
        QTest::keyClick(field("Count"), Qt::Key_Right);
    EXPECT_EQ(value("Count"), QVariant(6));
    EXPECT_EQ(undoCount(), 5) << "a key that is held is one step";
    expectUndoIsExact(m_start);
}

TEST_F(NumberFields, typingReplacesTheWholeNumberAndTabGoesOn)
{
    OssNumberField *number = field("Amount");
    QApplication::setActiveWindow(m_panel.get());
    QTest::keyClick(number, Qt::Key_Return);
    ASSERT_NE(typingIn(number), nullptr);
    EXPECT_EQ(typingIn(number)->selectedText(), typingIn(number)->text());
    QTest::keyClicks(typingIn(number), text("7"));
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

TEST(Expression, arithmeticFollowsTheUsualRules)
{
    const std::pair<const char *, double> cases[] = {
        {"1", 1},         {" 2 + 3 * 4 ", 14}, {"(2+3)*4", 20},     {"2^3^2", 512},
        {"-2^2", -4},     {"2^-1", 0.5},       {"10-4-3", 3},       {"8/4/2", 1},
        {".5", 0.5},      {"1e3", 1000},       {"2.5e-1", 0.25},    {"50%", 0.5},
        {"--3", 3},       {"min(2, 1)", 1},    {"max(2,3*2)", 6},   {"clamp(7,0,5)", 5},
        {"sqrt(16)", 4},  {"x*2", 14},         {"*2", 14},          {"/ 2", 3.5},
        {"+=3", 10},      {"-=2*2", 3},        {"+3", 3},           {"-3", -3},
        {"deg(pi)", 180}, {"floor(-1.5)", -2}, {"pow(2,10)", 1024}, {"abs(-4)", 4},
        {"-=1-2", 8},
    };
    for (const auto &[typed, wanted] : cases) {
        double value = NAN;
        const OssResult result = OssExpression::evaluate(text(typed), 7.0, &value);
        EXPECT_TRUE(result) << typed << ": " << qPrintable(result.error());
        EXPECT_DOUBLE_EQ(value, wanted) << typed;
    }
}

TEST(Expression, whatIsNoFiniteNumberIsRefusedWithAReason)
{
    QStringList refused = texts({"", "1+", "(1", "1)", "1 2", "1,5", "foo", "sqrt", "min(1)", "1/0",
                                 "log(0)", "sqrt(-1)", "1e999", "0x10", "nan", "system(1)", ".",
                                 "1e"});
    refused << QString(50000, QLatin1Char('(')) << QString(900, QLatin1Char('-')) + QLatin1Char('1')
            << QString(50000, QLatin1Char('1')).insert(1, QLatin1Char('.'));
    for (const QString &typed : qAsConst(refused)) {
        double value = 42.0;
        EXPECT_FALSE(OssExpression::evaluate(typed, 0.0, &value)) << qPrintable(typed.left(40));
        EXPECT_EQ(value, 42.0);
    }
}
