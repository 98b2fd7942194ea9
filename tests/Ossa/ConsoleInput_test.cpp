#include "Ossa/Scripting/ConsoleInput.h"

#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QCompleter>
#include <QSignalSpy>
#include <QTest>

namespace {

/// The field in which scripts are typed, without an engine.
class ConsoleInputs : public testing::Test
{
protected:
    ConsoleInputs()
    {
        input.show();
        list = input.findChild<QCompleter *>()->popup();
    }

    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(&input, key, modifiers);
    }

    void type(const char *text) { QTest::keyClicks(&input, QString::fromUtf8(text)); }

    std::string text() const { return input.toPlainText().toStdString(); }

    ConsoleInput input;
    QAbstractItemView *list = nullptr;
};

TEST_F(ConsoleInputs, walkingGoesThroughEntriesOfManyLinesAndBackToTheDraft)
{
    input.setHistory(
        {QStringLiteral("first"), QStringLiteral("if a:\n    b"), QStringLiteral("last")});
    type("draft");
    for (const char *wanted : {"last", "if a:\n    b", "first", "first"}) {
        key(Qt::Key_Up);
        EXPECT_EQ(text(), wanted);
    }
    for (const char *wanted : {"if a:\n    b", "last", "draft", "draft"}) {
        key(Qt::Key_Down);
        EXPECT_EQ(text(), wanted);
    }
    key(Qt::Key_Up);
    key(Qt::Key_Up);
    key(Qt::Key_Down); // to the second line of what is shown
    EXPECT_EQ(text(), "if a:\n    b");
    EXPECT_EQ(input.textCursor().blockNumber(), 1);
    key(Qt::Key_Up);
    EXPECT_EQ(text(), "if a:\n    b");
}

TEST_F(ConsoleInputs, remembersEachLineOnceAndNotForever)
{
    for (int i = 0; i < 502; ++i)
        input.remember(QString::number(i));
    input.remember(QStringLiteral("100"));
    EXPECT_EQ(input.history().size(), 500);
    EXPECT_EQ(input.history().first(), QStringLiteral("2"));
    EXPECT_EQ(input.history().last(), QStringLiteral("100"));
    EXPECT_EQ(input.history().count(QStringLiteral("100")), 1);
}

TEST_F(ConsoleInputs, enterSubmitsWhatIsThereAndShiftGoesOn)
{
    QSignalSpy submitted(&input, &ConsoleInput::submitted);
    type("  ");
    key(Qt::Key_Return);
    EXPECT_TRUE(submitted.isEmpty());
    input.clear();
    type("a");
    key(Qt::Key_Enter);
    key(Qt::Key_Return, Qt::ControlModifier);
    ASSERT_EQ(submitted.size(), 2);
    EXPECT_EQ(submitted.at(0), (QVariantList{QStringLiteral("a"), false}));
    EXPECT_EQ(submitted.at(1), (QVariantList{QStringLiteral("a"), true}));
    const int height = input.height();
    input.clear();
    type("  if a:");
    key(Qt::Key_Return, Qt::ShiftModifier);
    type("b");
    key(Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_EQ(text(), "  if a:\n      b\n      ");
    EXPECT_GT(input.height(), height);
    input.setPlainText(QString(200, QLatin1Char('\n')));
    EXPECT_LT(input.height(), 12 * (height + 4)) << "it scrolls";
    EXPECT_EQ(submitted.size(), 2);
}

TEST_F(ConsoleInputs, tabIndentsOrAsksForNamesAndOneNameIsTaken)
{
    QSignalSpy wanted(&input, &ConsoleInput::completionWanted);
    key(Qt::Key_Tab);
    EXPECT_EQ(text(), "    ");
    EXPECT_TRUE(wanted.isEmpty());
    type("a.pri");
    EXPECT_TRUE(wanted.isEmpty()) << "the list is closed";
    key(Qt::Key_Tab);
    ASSERT_EQ(wanted.size(), 1);
    EXPECT_EQ(wanted.first().first().toString(), QStringLiteral("    a.pri"));
    input.offer(QStringLiteral("    a.p"), {QStringLiteral("print")});
    EXPECT_EQ(text(), "    a.pri") << "an answer to what was typed before";
    input.offer(QStringLiteral("    a.pri"), {});
    EXPECT_EQ(text(), "    a.pri");
    input.offer(QStringLiteral("    a.pri"), {QStringLiteral("print_all")});
    EXPECT_EQ(text(), "    a.print_all");
    EXPECT_FALSE(list->isVisible());
}

TEST_F(ConsoleInputs, aListFollowsWhatIsTypedAndHasItsKeys)
{
    QSignalSpy wanted(&input, &ConsoleInput::completionWanted);
    QSignalSpy submitted(&input, &ConsoleInput::submitted);
    type("pr");
    input.offer(QStringLiteral("pr"), {QStringLiteral("print"), QStringLiteral("property")});
    ASSERT_TRUE(list->isVisible());
    EXPECT_EQ(list->currentIndex().data().toString(), QStringLiteral("print"));
    type("i");
    ASSERT_EQ(wanted.size(), 1);
    EXPECT_EQ(wanted.first().first().toString(), QStringLiteral("pri"));
    input.offer(QStringLiteral("pri"), {QStringLiteral("print")});
    EXPECT_EQ(text(), "pri") << "nothing is taken behind the user's back";
    EXPECT_TRUE(list->isVisible());
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Tab, Qt::Key_Escape}) {
        QKeyEvent press(QEvent::KeyPress, key, {});
        press.accept();
        QApplication::sendEvent(&input, &press);
        EXPECT_FALSE(press.isAccepted()) << key;
    }
    EXPECT_EQ(text(), "pri");
    EXPECT_TRUE(submitted.isEmpty());
    input.offer(QStringLiteral("pri"), {});
    EXPECT_FALSE(list->isVisible());
}

} // namespace
