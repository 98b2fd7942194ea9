#include "Ossa/Scripting/ConsoleInput.h"
#include "Ossa/Scripting/ConsolePanel.h"
#include "Ossa/Scripting/ScriptEcho.h"
#include "Ossa/Scripting/ScriptText.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "ScriptSession.h"
#include "support/InterfaceUser.h"

#include <QAbstractItemView>
#include <QAction>
#include <QCompleter>
#include <QPlainTextEdit>
#include <QScrollBar>

namespace {

/// The field in which scripts are typed, without an engine.
class ConsoleInputs : public testing::Test
{
protected:
    ConsoleInputs() { input.show(); }

    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(&input, key, modifiers);
    }

    void type(const char *typed) { QTest::keyClicks(&input, text(typed)); }

    /// What stands in it, perhaps after a key.
    std::string shown() const { return input.toPlainText().toStdString(); }

    std::string after(Qt::Key pressed)
    {
        key(pressed);
        return shown();
    }

    ConsoleInput input;
    QAbstractItemView *list = input.findChild<QCompleter *>()->popup();
    QSignalSpy submitted{&input, &ConsoleInput::submitted};
    QSignalSpy wanted{&input, &ConsoleInput::completionWanted};
};

class ScriptConsole : public ScriptSession
{
protected:
    void type(const char *typed) { QTest::keyClicks(panel.input(), text(typed)); }

    /// Types it, presses Enter and waits until the input has run or asks for more.
    void enter(const char *typed, Qt::KeyboardModifiers modifiers = {})
    {
        type(typed);
        waitForEngine();
        QTest::keyClick(panel.input(), Qt::Key_Return, modifiers);
        QTimer::singleShot(30000, &m_loop, &QEventLoop::quit);
        m_loop.exec();
    }

    std::string typed() const { return panel.input()->toPlainText().toStdString(); }

    std::string after(Qt::Key key)
    {
        QTest::keyClick(panel.input(), key);
        return typed();
    }

    QString output() const { return panel.output()->toPlainText(); }

    ConsolePanel panel;
};

class ScriptEchoTest : public ScriptSession
{
protected:
    void SetUp() override
    {
        ScriptSession::SetUp();
        QObject::connect(&m_echo, &ScriptEcho::line, &m_listener,
                         [this](const QString &line) { m_lines.append(line); });
        m_echo.setEnabled(true);
    }

    /// The user did something: the event loop runs.
    static void step() { QTest::qWait(5); }

    ScriptEcho m_echo;
    QStringList m_lines;
};

} // namespace

TEST_F(ConsoleInputs, walkingGoesThroughEntriesOfManyLinesAndBackToTheDraft)
{
    input.setHistory(texts({"first", "if a:\n    b", "last"}));
    type("draft");
    for (const char *entry : {"last", "if a:\n    b", "first", "first"})
        EXPECT_EQ(after(Qt::Key_Up), entry);
    for (const char *entry : {"if a:\n    b", "last", "draft", "draft"})
        EXPECT_EQ(after(Qt::Key_Down), entry);
    key(Qt::Key_Up);
    key(Qt::Key_Up);
    EXPECT_EQ(after(Qt::Key_Down), "if a:\n    b") << "to the second line of what is shown";
    EXPECT_EQ(input.textCursor().blockNumber(), 1);
    EXPECT_EQ(after(Qt::Key_Up), "if a:\n    b");
}

TEST_F(ConsoleInputs, remembersEachLineOnceAndNotForever)
{
    for (int i = 0; i < 502; ++i)
        input.remember(QString::number(i));
    input.remember(text("100"));
    EXPECT_EQ(input.history().size(), 500);
    EXPECT_EQ(input.history().first(), text("2"));
    EXPECT_EQ(input.history().last(), text("100"));
    EXPECT_EQ(input.history().count(text("100")), 1);
}

TEST_F(ConsoleInputs, enterSubmitsWhatIsThereAndShiftGoesOn)
{
    type("  ");
    key(Qt::Key_Return);
    EXPECT_TRUE(submitted.isEmpty());
    input.clear();
    type("a");
    key(Qt::Key_Enter);
    key(Qt::Key_Return, Qt::ControlModifier);
    ASSERT_EQ(submitted.size(), 2);
    EXPECT_EQ(submitted.at(0), (QVariantList{text("a"), false}));
    EXPECT_EQ(submitted.at(1), (QVariantList{text("a"), true}));
    const int height = input.height();
    input.clear();
    type("  if a:");
    key(Qt::Key_Return, Qt::ShiftModifier);
    type("b");
    key(Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_EQ(shown(), "  if a:\n      b\n      ");
    EXPECT_GT(input.height(), height);
    input.setPlainText(QString(200, QLatin1Char('\n')));
    EXPECT_LT(input.height(), 12 * (height + 4)) << "it scrolls";
    EXPECT_EQ(submitted.size(), 2);
}

TEST_F(ConsoleInputs, tabIndentsOrAsksForNamesAndOneNameIsTaken)
{
    EXPECT_EQ(after(Qt::Key_Tab), "    ");
    type("a.pri");
    EXPECT_TRUE(wanted.isEmpty()) << "the list is closed";
    key(Qt::Key_Tab);
    ASSERT_EQ(wanted.size(), 1);
    EXPECT_EQ(wanted.first().first().toString(), text("    a.pri"));
    input.offer(text("    a.p"), texts({"print"}));
    EXPECT_EQ(shown(), "    a.pri") << "an answer to what was typed before";
    input.offer(text("    a.pri"), {});
    EXPECT_EQ(shown(), "    a.pri");
    input.offer(text("    a.pri"), texts({"print_all"}));
    EXPECT_EQ(shown(), "    a.print_all");
    EXPECT_FALSE(list->isVisible());
}

TEST_F(ConsoleInputs, aListFollowsWhatIsTypedAndHasItsKeys)
{
    type("pr");
    input.offer(text("pr"), texts({"print", "property"}));
    ASSERT_TRUE(list->isVisible());
    EXPECT_EQ(list->currentIndex().data().toString(), text("print"));
    type("i");
    ASSERT_EQ(wanted.size(), 1);
    EXPECT_EQ(wanted.first().first().toString(), text("pri"));
    input.offer(text("pri"), texts({"print"}));
    EXPECT_EQ(shown(), "pri") << "nothing is taken behind the user's back";
    EXPECT_TRUE(list->isVisible());
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Tab, Qt::Key_Escape}) {
        QKeyEvent press(QEvent::KeyPress, key, {});
        press.accept();
        QApplication::sendEvent(&input, &press);
        EXPECT_FALSE(press.isAccepted()) << key;
    }
    EXPECT_EQ(shown(), "pri");
    EXPECT_TRUE(submitted.isEmpty());
    input.offer(text("pri"), {});
    EXPECT_FALSE(list->isVisible());
}

TEST_F(ScriptConsole, runsWhatIsTypedAndShowsBothInputAndOutput)
{
    enter("for i in range(2):");
    EXPECT_EQ(typed(), "for i in range(2):\n    ");
    enter("print(i)", Qt::ControlModifier);
    EXPECT_EQ(output(), text(">>> for i in range(2):\n...     print(i)\n0\n1"));
    EXPECT_EQ(typed(), "");
    enter("2 * 21");
    EXPECT_TRUE(output().endsWith(text(">>> 2 * 21\n42")));
    EXPECT_EQ(after(Qt::Key_Up), "2 * 21");
    type("  # again");
    EXPECT_EQ(after(Qt::Key_Up).substr(0, 5), "for i");

    panel.input()->clear();
    type("pri");
    QTest::keyClick(panel.input(), Qt::Key_Tab);
    EXPECT_TRUE(QTest::qWaitFor([this] { return typed() == "print"; }, 5000)) << typed();
    const ConsolePanel another;
    EXPECT_EQ(another.input()->history().last(), text("2 * 21")) << "is remembered";
}

TEST_F(ScriptConsole, cutsLinesThatNobodyCanRead)
{
    enter("for i in range(3): print('x' * 10**6, end='')", Qt::ControlModifier);
    EXPECT_LT(output().size(), 20000);
    EXPECT_TRUE(output().endsWith(QChar(0x2026)));
    enter("print('\\n' * 10**5 + 'end')");
    EXPECT_LE(panel.output()->blockCount(), 10000);
    EXPECT_TRUE(output().endsWith(text("\nend")));
}

// Functions that signals call run in between; what is being typed is not theirs to take.
TEST_F(ScriptConsole, keepsWhatIsBeingTypedWhileAFunctionIsCalled)
{
    add("Filter/Blur", "Soft");
    run("import ossa\nossa.graph().node('Soft').renamed.connect(print)");
    enter("if 1:");
    QSignalSpy finished(engine(), &OssScriptEngine::finished);
    m_network->node(text("Soft"))->setName(text("A"));
    ASSERT_TRUE(finished.count() > 0 || finished.wait(10000));
    EXPECT_EQ(typed(), "if 1:\n    ");
    EXPECT_TRUE(output().endsWith(text("\nA"))) << qPrintable(output());
}

TEST_F(ScriptConsole, followsTheOutputUnlessTheUserHasScrolledAway)
{
    const auto resize = [this](int height) {
        panel.resize(400, height);
        QCoreApplication::processEvents();
    };
    const auto print = [this](int lines) {
        run(text("for i in range(%1): print(i)").arg(lines));
        QCoreApplication::processEvents();
    };
    resize(250);
    panel.show();
    QScrollBar *bar = panel.output()->verticalScrollBar();
    print(100);
    ASSERT_GT(bar->maximum(), 20);
    EXPECT_EQ(bar->value(), bar->maximum());
    bar->setValue(10);
    print(5);
    EXPECT_EQ(bar->value(), 10);
    resize(200);
    EXPECT_EQ(bar->value(), 10) << "another size is no reason";
    bar->setValue(bar->maximum());
    resize(260);
    resize(180);
    EXPECT_EQ(bar->value(), bar->maximum());
    bar->setValue(10);
    enter("1");
    EXPECT_EQ(bar->value(), bar->maximum()) << "who types wants to see the answer";
}

TEST_F(ScriptConsole, aFailureIsToldWhereTheUserLooks)
{
    QSignalSpy messages(OssStatusManager::instance(), &OssStatusManager::messageShown);
    run("1/0");
    EXPECT_EQ(messages.size(), 1) << "nobody sees the console";
    run("1");
    EXPECT_EQ(messages.size(), 1);
    panel.show();
    run("1/0");
    EXPECT_EQ(messages.size(), 1);
}

TEST_F(ScriptConsole, itsButtonRunsTheCommandAndItsEchoIsRemembered)
{
    press(&panel, "Run File..."); // there is no such command yet
    QAction command(text("Run File..."));
    OssActionTreeManager::instance()->registerAction(text("/Ossa/Script/"), &command);
    QSignalSpy triggered(&command, &QAction::triggered);
    press(&panel, "Run File...");
    EXPECT_EQ(triggered.size(), 1);
    EXPECT_TRUE(button(&panel, "Echo Edits")->isChecked()) << "at first";
    press(&panel, "Echo Edits");
    const ConsolePanel next;
    EXPECT_FALSE(button(&next, "Echo Edits")->isChecked());
    add("Filter/Blur", "Unseen");
    QTest::qWait(20);
    EXPECT_TRUE(next.output()->toPlainText().isEmpty());
    press(&next, "Echo Edits");
    add("Filter/Blur", "Seen");
    QTest::qWait(20);
    EXPECT_TRUE(next.output()->toPlainText().contains(text("\"Seen\"")));
    press(&next, "Clear");
    EXPECT_TRUE(next.output()->toPlainText().isEmpty());
}

// What is echoed, run again from the same start, gives the same document.
TEST_F(ScriptEchoTest, linesDoWhatWasDoneByHand)
{
    OssSnBaseNode *noise = add("Procedural/Noise/Fractal Noise", "Say \"Noise\"\\");
    step();
    OssSnBaseNode *blur = add("Filter/Blur", "Blur");
    OssSnBaseNode *merge = add("Layer/Merge", "Merge");
    step();
    wire(noise, blur);
    step();
    wire(blur, merge, "Over");
    blur->setAttribute(text("Radius"), 3.25);
    merge->setAttribute(text("BlendMode"), text("Multiply"));
    step();
    noise->setName(text("Grain"));
    noise->setDescription(text("two\nlines"));
    step();
    blur->setBypassed(true);
    merge->setEnabled(0);
    merge->setInputEnabled(text("Mask"), false);
    step();
    m_network->extractNodes({blur}, true);
    step();
    OssSnBaseNode *color = add("Procedural/Color", "Color");
    color->setAttribute(text("Color"), text("0.1,0.2,0.3,1"));
    wire(color, merge, "Base");
    step();
    OssUndoManager::instance()->undo();
    step();
    OssUndoManager::instance()->redo();
    step();
    m_network->removeNode(add("Filter/Sharpen", "Gone"), true, true);
    m_network->removeNodes({blur});
    step();
    const QByteArray wanted = m_project->stateHash();
    const QList<QByteArray> wantedLines = stateLines();
    m_echo.setEnabled(false);
    while (OssUndoManager::instance()->canUndo())
        OssUndoManager::instance()->undo();
    ASSERT_NE(m_project->stateHash(), wanted);
    for (const QString &line : qAsConst(m_lines)) {
        // A console line is a script of its own; undoing would take back the one before.
        if (line.startsWith(text("ossa.undo()")))
            continue;
        EXPECT_EQ(run(text("import ossa\n") + line), 0) << qPrintable(line + m_errors);
    }
    expectSame(stateLines(), wantedLines);
    EXPECT_EQ(m_lines.filter(text("ossa.undo().")).size(), 2)
        << qPrintable(m_lines.join(QLatin1Char('\n')));
}

TEST(ScriptTexts, valuesAreWrittenAsPythonOrNotAtAll)
{
    const std::pair<QVariant, const char *> cases[] = {
        {true, "True"},
        {7, "7"},
        {0.25, "0.25"},
        {text("a\"\\b"), R"("a\"\\b")"},
        {texts({"a", "b"}), R"(["a", "b"])"},
        {QPointF(1, 2.5), "(1, 2.5)"},
        {QVariantMap(), ""},
    };
    for (const auto &[value, written] : cases) {
        EXPECT_EQ(ScriptText::value(value).toStdString(), written);
        EXPECT_EQ(ScriptText::setAttribute(text("/N"), text("A"), value).isEmpty(), !*written);
    }
}
