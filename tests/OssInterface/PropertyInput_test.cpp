#include "OssInterface/Properties/OssNumberField.h"
#include "OssInterface/Properties/OssPropertyEditor.h"
#include "support/DialogAnswers.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDropEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>
#include <QWheelEvent>

// What editors make of the pointer, the wheel, drops and the focus.

namespace {

OssCustomAttribute attribute(const char *editor, const QVariant &value)
{
    OssCustomAttribute made(QStringLiteral("Value"), value);
    made.editDefinition().editor = QString::fromLatin1(editor);
    return made;
}

std::unique_ptr<OssPropertyEditor> editorFor(const char *kind)
{
    return std::unique_ptr<OssPropertyEditor>(
        OssPropertyEditor::create(attribute(kind, QString()), nullptr));
}

TEST(PropertyInput, aFileIsDroppedOnItsFieldAndAnythingElseIsNot)
{
    const auto editor = editorFor("file");
    auto *line = editor->findChild<QLineEdit *>();
    ASSERT_NE(line, nullptr);
    QSignalSpy edited(editor.get(), &OssPropertyEditor::edited);
    const QString path = QStringLiteral("/pictures/wood.exr");

    const struct
    {
        QList<QUrl> urls;
        QStringList edits;
    } cases[] = {
        {{QUrl::fromLocalFile(path)}, {path}},
        {{QUrl(QStringLiteral("https://example.com/wood.exr"))}, {}},
        {{}, {}},
    };

    for (const auto &c : cases) {
        QMimeData mime;
        mime.setUrls(c.urls);
        QDragEnterEvent enter({3, 3}, Qt::CopyAction, &mime, Qt::LeftButton, {});
        enter.ignore();
        QApplication::sendEvent(line, &enter);
        EXPECT_TRUE(edited.isEmpty()) << "it is still in the user's hand";
        QDropEvent drop({3, 3}, Qt::CopyAction, &mime, Qt::LeftButton, {});
        QApplication::sendEvent(line, &drop);
        ASSERT_EQ(edited.size(), c.edits.size()) << &c - cases;
        for (const QString &edit : c.edits)
            EXPECT_EQ(edited.takeFirst().first().toString(), edit);
    }
}

TEST(PropertyInput, aMissingFileIsMarkedUntilItIsThere)
{
    const QTemporaryDir folder;
    QFile there(folder.filePath(QStringLiteral("wall.1001.exr")));
    ASSERT_TRUE(there.open(QIODevice::WriteOnly));
    const auto editor = editorFor("file");
    const auto *line = editor->findChild<QLineEdit *>();

    const struct
    {
        QString path;
        bool mixed;
        bool wrong;
    } cases[] = {
        {folder.filePath(QStringLiteral("none.exr")), false, true},
        {folder.filePath(QStringLiteral("none.exr")), true, false},
        {there.fileName(), false, false},
        {folder.filePath(QStringLiteral("wall.<UDIM>.exr")), false, false},
        {folder.filePath(QStringLiteral("roof.<UDIM>.exr")), false, true},
        {QString(), false, false},
    };

    for (const auto &c : cases) {
        editor->showValue(attribute("file", c.path), c.mixed);
        EXPECT_EQ(line->toolTip().startsWith(QStringLiteral("There is no file")), c.wrong)
            << qPrintable(c.path);
        EXPECT_EQ(line->objectName() == QLatin1String("Warning"), c.wrong) << qPrintable(c.path);
    }
}

TEST(PropertyInput, aNoteIsKeptWhenItLosesTheFocusAndOnce)
{
    const auto editor = editorFor("paragraph");
    auto *text = editor->findChild<QPlainTextEdit *>();
    ASSERT_NE(text, nullptr);
    editor->showValue(attribute("paragraph", QStringLiteral("old")), false);
    QSignalSpy edited(editor.get(), &OssPropertyEditor::edited);
    QFocusEvent out(QEvent::FocusOut);
    QApplication::sendEvent(text, &out);
    EXPECT_TRUE(edited.isEmpty()) << "nothing was written";
    QTest::keyClicks(text, QStringLiteral("new "));
    EXPECT_TRUE(edited.isEmpty());
    QApplication::sendEvent(text, &out);
    ASSERT_EQ(edited.size(), 1);
    EXPECT_EQ(edited.first().first().toString(), QStringLiteral("new old"));
    QApplication::sendEvent(text, &out);
    EXPECT_EQ(edited.size(), 1);
    editor->showValue(attribute("paragraph", QStringLiteral("old")), true);
    EXPECT_TRUE(text->toPlainText().isEmpty()) << "of several nodes that differ";
    EXPECT_FALSE(text->placeholderText().isEmpty());
}

/// A number from 0 upwards, without a slider.
class NumberInput : public testing::Test
{
protected:
    NumberInput()
    {
        OssNumberField::Range range;
        range.minimum = 0.0;
        field.setRange(range);
        field.setValue(5.0);
        field.resize(200, 24);
        field.show();
    }

    bool turn(int angle)
    {
        QWheelEvent event({5, 5}, field.mapToGlobal(QPoint(5, 5)), {}, {0, angle}, Qt::NoButton, {},
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(&field, &event);
        return event.isAccepted();
    }

    void drag(const QList<int> &ways, Qt::KeyboardModifiers modifiers = {})
    {
        const QPoint start(100, 12);
        QTest::mousePress(&field, Qt::LeftButton, modifiers, start);
        for (const int way : ways) {
            QMouseEvent move(QEvent::MouseMove, start + QPoint(way, 0), Qt::NoButton,
                             Qt::LeftButton, modifiers);
            QApplication::sendEvent(&field, &move);
        }
    }

    OssNumberField field;
};

TEST_F(NumberInput, theWheelStepsOnlyWithTheFocusAndInWholeClicks)
{
    QSignalSpy stepped(&field, &OssNumberField::stepped);
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
    const double up = field.value();
    EXPECT_GT(up, 5.0);
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
    const struct
    {
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
        bool used;
    } cases[] = {{Qt::Key_Up, {}, true},
                 {Qt::Key_Down, {}, true},
                 {Qt::Key_Up, Qt::ControlModifier, false},
                 {Qt::Key_F5, {}, false}};

    for (const auto &c : cases) {
        const double before = field.value();
        QKeyEvent press(QEvent::KeyPress, c.key, c.modifiers);
        QApplication::sendEvent(&field, &press);
        EXPECT_EQ(press.isAccepted(), c.used) << c.key;
        EXPECT_EQ(field.value() != before, c.used) << c.key;
    }
}

TEST_F(NumberInput, whatIsNoNumberDoesNotStayWhenTheFocusGoes)
{
    field.startTyping();
    auto *line = field.findChild<QLineEdit *>();
    ASSERT_TRUE(line && line->isVisible());
    line->setText(QStringLiteral("five"));
    QFocusEvent out(QEvent::FocusOut);
    QApplication::sendEvent(line, &out);
    EXPECT_FALSE(line->isVisible());
    EXPECT_EQ(field.value(), 5.0);
}

TEST_F(NumberInput, dragsWithoutASliderGoByTheValueAndEscapeGivesItBack)
{
    QSignalSpy ended(&field, &OssNumberField::dragEnded);
    drag({2});
    EXPECT_EQ(field.value(), 5.0) << "a hand that is not steady";
    QTest::mouseRelease(&field, Qt::LeftButton, {}, {500, 12});
    EXPECT_TRUE(ended.isEmpty());
    drag({4, 24});
    EXPECT_DOUBLE_EQ(field.value(), 6.0) << "a hundredth for each pixel";
    QTest::mouseRelease(&field, Qt::LeftButton, {}, {124, 12});
    EXPECT_EQ(ended.size(), 1);
    drag({4, 24}, Qt::ShiftModifier);
    EXPECT_GT(field.value(), 6.0);
    EXPECT_LT(field.value(), 6.3) << "finer";
    QTest::keyClick(&field, Qt::Key_Escape);
    EXPECT_DOUBLE_EQ(field.value(), 6.0);
    EXPECT_EQ(ended.size(), 2);
    drag({4, -5000});
    EXPECT_EQ(field.value(), 0.0);
    QTest::mouseRelease(&field, Qt::LeftButton, {}, {124, 12});
    drag({4, 54});
    EXPECT_DOUBLE_EQ(field.value(), 0.5) << "it leaves nought";
    QTest::mouseRelease(&field, Qt::LeftButton, {}, {124, 12});
}

TEST_F(NumberInput, stepsFitTheValueTheRangeAndTheKind)
{
    using Range = OssNumberField::Range;
    const auto slider = [](double low, double high) {
        Range range;
        range.softMinimum = low;
        range.softMaximum = high;
        return range;
    };
    Range whole;
    whole.isInteger = true;
    Range bounded;
    bounded.minimum = -1.0;
    bounded.maximum = 0.123456789012345;

    const struct
    {
        Range range;
        double value;
        Qt::Key key;
        double wanted;
    } cases[] = {
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
        {bounded, 0.1, Qt::Key_End, 0.123456789012345},
        {bounded, 0.1, Qt::Key_PageUp, 0.123456789012345},
        {bounded, -0.95, Qt::Key_PageDown, -1.0},
    };

    for (const auto &c : cases) {
        field.setRange(c.range);
        field.setValue(c.value);
        QSignalSpy stepped(&field, &OssNumberField::stepped);
        QTest::keyClick(&field, c.key);
        EXPECT_EQ(field.value(), c.wanted) << &c - cases; // not nearly
        EXPECT_EQ(stepped.isEmpty(), c.value == c.wanted) << &c - cases;
    }
    field.setMixed(true);
    QSignalSpy stepped(&field, &OssNumberField::stepped);
    QTest::keyClick(&field, Qt::Key_Home);
    EXPECT_EQ(stepped.size(), 1) << "now they have all the same value";
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
    second->setFocus();
    EXPECT_FALSE(first->isTyping());
    EXPECT_EQ(window.focusWidget(), second);
}

TEST(PropertyInput, aFileIsChosenInADialog)
{
    const QTemporaryDir folder;
    QFile picture(folder.filePath(QStringLiteral("wood.png")));
    ASSERT_TRUE(picture.open(QIODevice::WriteOnly));
    const auto editor = editorFor("file");
    editor->show();
    QSignalSpy edited(editor.get(), &OssPropertyEditor::edited);
    for (const QString &file : {QString(), picture.fileName()}) {
        const DialogAnswers answers(file);
        editor->findChild<QPushButton *>()->click();
        EXPECT_EQ(answers.questions, 1);
        EXPECT_EQ(edited.size(), file.isEmpty() ? 0 : 1) << "leaving it changes nothing";
    }
    EXPECT_EQ(edited.first().first().toString(), picture.fileName());
}

TEST_F(NumberInput, aSliderIsNotLeftAndWhatIsBeyondComesBackOnly)
{
    OssNumberField::Range range;
    range.softMinimum = 2.0;
    range.softMaximum = 4.0;
    field.setRange(range);

    const struct
    {
        double from;
        int way;
        double to;
    } cases[] = {{3.0, -5000, 2.0}, {3.0, 5000, 4.0},   {9.0, 5000, 9.0},
                 {9.0, -5000, 2.0}, {-3.0, -900, -3.0}, {-3.0, 5000, 4.0}};

    for (const auto &c : cases) {
        field.setValue(c.from);
        drag({4, c.way});
        EXPECT_DOUBLE_EQ(field.value(), c.to) << &c - cases;
        QTest::mouseRelease(&field, Qt::LeftButton, {}, {100, 12});
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
    OssNumberField::Range range;
    range.softMinimum = 2.0;
    range.softMaximum = 4.0;
    field.setRange(range);
    EXPECT_TRUE(isFilled(20) && isFilled(80));
    EXPECT_FALSE(isFilled(120));
    field.setValue(1.0);
    EXPECT_FALSE(isFilled(20));
    field.setValue(9.0);
    EXPECT_TRUE(isFilled(20) && isFilled(180));
    field.setMixed(true);
    EXPECT_FALSE(isFilled(20)) << "which value?";
}

TEST(PropertyInput, whatIsShownAgainLeavesTheCursorWhereItIs)
{
    const OssCustomAttribute shown = attribute("text", QStringLiteral("moss"));
    const std::unique_ptr<OssPropertyEditor> editor(OssPropertyEditor::create(shown, nullptr));
    auto *line = editor->findChild<QLineEdit *>();
    ASSERT_NE(line, nullptr);
    editor->showValue(shown, false);
    line->setCursorPosition(1);
    editor->showValue(shown, false);
    EXPECT_EQ(line->cursorPosition(), 1);
    editor->showValue(attribute("text", QStringLiteral("rust")), false);
    EXPECT_EQ(line->text(), QStringLiteral("rust"));
}

TEST(PropertyInput, controlAndReturnKeepANoteWithoutANewLine)
{
    const auto editor = editorFor("paragraph");
    auto *text = editor->findChild<QPlainTextEdit *>();
    QSignalSpy edited(editor.get(), &OssPropertyEditor::edited);
    QTest::keyClicks(text, QStringLiteral("a"));
    QTest::keyPress(text, Qt::Key_Return);
    QTest::keyRelease(text, Qt::Key_Return, Qt::ControlModifier);
    EXPECT_TRUE(edited.isEmpty());
    QTest::keyPress(text, Qt::Key_Return, Qt::ControlModifier);
    ASSERT_EQ(edited.size(), 1);
    EXPECT_EQ(edited.first().first().toString(), QStringLiteral("a\n"));
    EXPECT_EQ(text->toPlainText(), QStringLiteral("a\n"));
}

} // namespace
