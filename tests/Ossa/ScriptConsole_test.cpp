#include "Ossa/Scripting/ConsoleInput.h"
#include "Ossa/Scripting/ConsolePanel.h"
#include "Ossa/Scripting/ScriptEcho.h"
#include "Ossa/Scripting/ScriptText.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "ScriptSession.h"

#include <QAction>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

namespace {

class ScriptConsole : public ScriptSession
{
protected:
    void type(ConsoleInput *input, const char *text)
    {
        QTest::keyClicks(input, QString::fromUtf8(text));
    }

    /// Presses Enter and waits until the input has run or asks for more.
    void enter(ConsoleInput *input, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        while (engine()->isRunning())
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        QTest::keyClick(input, Qt::Key_Return, modifiers);
        QTimer::singleShot(30000, &m_loop, &QEventLoop::quit);
        m_loop.exec();
    }
};

class ScriptEchoTest : public ScriptSession
{
protected:
    void SetUp() override
    {
        ScriptSession::SetUp();
        QObject::connect(&m_echo, &ScriptEcho::line, &m_listener,
                         [this](const QString &text) { m_lines.append(text); });
        m_echo.setEnabled(true);
    }

    /// The user did something: the event loop runs.
    static void step() { QTest::qWait(5); }

    ScriptEcho m_echo;
    QStringList m_lines;
};

} // namespace

TEST_F(ScriptConsole, runsWhatIsTypedAndShowsBothInputAndOutput)
{
    ConsolePanel panel;
    ConsoleInput *input = panel.input();
    type(input, "for i in range(2):");
    enter(input);
    EXPECT_EQ(input->toPlainText(), QStringLiteral("for i in range(2):\n    "));
    type(input, "print(i)");
    enter(input, Qt::ControlModifier);
    EXPECT_EQ(panel.output()->toPlainText(),
              QStringLiteral(">>> for i in range(2):\n...     print(i)\n0\n1"));
    EXPECT_TRUE(input->toPlainText().isEmpty());
    type(input, "2 * 21");
    enter(input);
    EXPECT_TRUE(panel.output()->toPlainText().endsWith(QStringLiteral(">>> 2 * 21\n42")));

    QTest::keyClick(input, Qt::Key_Up);
    EXPECT_EQ(input->toPlainText(), QStringLiteral("2 * 21"));
    QTest::keyClick(input, Qt::Key_Up);
    EXPECT_TRUE(input->toPlainText().startsWith(QStringLiteral("for i")));
    for (int i = 0; i < 100; ++i) // beyond what was ever typed
        QTest::keyClick(input, Qt::Key_Up);
    EXPECT_TRUE(input->toPlainText().startsWith(QStringLiteral("for i")));
    QTest::keyClick(input, Qt::Key_Down);
    QTest::keyClick(input, Qt::Key_Down);
    QTest::keyClick(input, Qt::Key_Down);
    EXPECT_TRUE(input->toPlainText().isEmpty()) << "back at what was being typed";

    type(input, "pri");
    QTest::keyClick(input, Qt::Key_Tab);
    for (int i = 0; i < 500 && input->toPlainText() != QLatin1String("print"); ++i)
        QTest::qWait(10);
    EXPECT_EQ(input->toPlainText(), QStringLiteral("print"));
    const ConsolePanel another;
    EXPECT_EQ(another.input()->history().last(), QStringLiteral("2 * 21")) << "is remembered";
}

TEST_F(ScriptConsole, cutsLinesThatNobodyCanRead)
{
    ConsolePanel panel;
    type(panel.input(), "for i in range(3): print('x' * 10**6, end='')");
    enter(panel.input(), Qt::ControlModifier);
    EXPECT_LT(panel.output()->toPlainText().size(), 20000);
    EXPECT_TRUE(panel.output()->toPlainText().endsWith(QChar(0x2026)));
    type(panel.input(), "print('\\n' * 10**5 + 'end')");
    enter(panel.input());
    EXPECT_LE(panel.output()->blockCount(), 10000);
    EXPECT_TRUE(panel.output()->toPlainText().endsWith(QStringLiteral("\nend")));
}

// Functions that signals call run in between; what is being typed is not theirs to take.
TEST_F(ScriptConsole, keepsWhatIsBeingTypedWhileAFunctionIsCalled)
{
    add("Filter/Blur", "Soft");
    run("import ossa\nossa.graph().node('Soft').renamed.connect(print)");
    ConsolePanel panel;
    ConsoleInput *input = panel.input();
    type(input, "if 1:");
    enter(input);
    m_network->node(QStringLiteral("Soft"))->setName(QStringLiteral("A"));
    QSignalSpy finished(engine(), &OssScriptEngine::finished);
    ASSERT_TRUE(finished.wait(10000));
    EXPECT_EQ(input->toPlainText(), QStringLiteral("if 1:\n    "));
    EXPECT_TRUE(panel.output()->toPlainText().endsWith(QStringLiteral("\nA")))
        << qPrintable(panel.output()->toPlainText());
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
    blur->setAttribute(QStringLiteral("Radius"), 3.25);
    merge->setAttribute(QStringLiteral("BlendMode"), QStringLiteral("Multiply"));
    step();
    noise->setName(QStringLiteral("Grain"));
    noise->setDescription(QStringLiteral("two\nlines"));
    step();
    blur->setBypassed(true);
    merge->setEnabled(0);
    step();
    m_network->extractNodes({blur}, true);
    step();
    OssSnBaseNode *color = add("Procedural/Color", "Color");
    color->setAttribute(QStringLiteral("Color"), QStringLiteral("0.1,0.2,0.3,1"));
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
    for (const QString &text : qAsConst(m_lines)) {
        // A console line is a script of its own; undoing would take back the one before.
        if (text.startsWith(QLatin1String("ossa.undo()")))
            continue;
        EXPECT_EQ(run(QStringLiteral("import ossa\n") + text), 0)
            << qPrintable(text) << qPrintable(m_errors);
    }
    expectSame(stateLines(), wantedLines);
    EXPECT_EQ(m_lines.filter(QStringLiteral("ossa.undo().")).size(), 2)
        << qPrintable(m_lines.join(QLatin1Char('\n')));
}

TEST_F(ScriptEchoTest, tellsOnlyWhatIsDoneByHand)
{
    m_echo.setScriptRunning(true);
    add("Filter/Blur", "By Script");
    m_echo.setScriptRunning(false);
    step();
    EXPECT_TRUE(m_lines.isEmpty()) << qPrintable(m_lines.join(QLatin1Char('\n')));
    add("Filter/Blur", "By Hand");
    step();
    ASSERT_EQ(m_lines.size(), 1);
    EXPECT_TRUE(m_lines.first().contains(QStringLiteral("By Hand")));
    m_lines.clear();
    m_network->groupNodes({m_network->node(QStringLiteral("By Hand"))});
    step();
    EXPECT_TRUE(m_lines.first().startsWith(QLatin1Char('#')))
        << "what has no line and came from no command: " << qPrintable(m_lines.first());
}

TEST_F(ScriptConsole, followsTheOutputUnlessTheUserHasScrolledAway)
{
    ConsolePanel panel;
    panel.resize(400, 250);
    panel.show();
    QScrollBar *bar = panel.output()->verticalScrollBar();
    const auto print = [&](int lines) {
        run(QStringLiteral("for i in range(%1): print(i)").arg(lines));
        QCoreApplication::processEvents();
    };
    print(100);
    ASSERT_GT(bar->maximum(), 20);
    EXPECT_EQ(bar->value(), bar->maximum());
    bar->setValue(10);
    print(5);
    EXPECT_EQ(bar->value(), 10);
    panel.resize(400, 200);
    QCoreApplication::processEvents();
    EXPECT_EQ(bar->value(), 10) << "another size is no reason";
    bar->setValue(bar->maximum());
    panel.resize(400, 260);
    panel.resize(400, 180);
    QCoreApplication::processEvents();
    EXPECT_EQ(bar->value(), bar->maximum());
    bar->setValue(10);
    type(panel.input(), "1");
    enter(panel.input());
    EXPECT_EQ(bar->value(), bar->maximum()) << "who types wants to see the answer";
}

TEST_F(ScriptConsole, aFailureIsToldWhereTheUserLooks)
{
    ConsolePanel panel;
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
    const auto button = [](const ConsolePanel &panel, const char *text) {
        QPushButton *found = nullptr;
        const auto buttons = panel.findChildren<QPushButton *>();
        for (QPushButton *one : buttons)
            found = one->text() == QLatin1String(text) ? one : found;
        return found;
    };
    {
        const ConsolePanel panel;
        button(panel, "Run File...")->click(); // there is no such command yet
        QAction command(QStringLiteral("Run File..."));
        OssActionTreeManager::instance()->registerAction(QStringLiteral("/Ossa/Script/"), &command);
        QSignalSpy triggered(&command, &QAction::triggered);
        button(panel, "Run File...")->click();
        EXPECT_EQ(triggered.size(), 1);
        EXPECT_TRUE(button(panel, "Echo Edits")->isChecked()) << "at first";
        button(panel, "Echo Edits")->click();
    }
    const ConsolePanel next;
    EXPECT_FALSE(button(next, "Echo Edits")->isChecked());
    add("Filter/Blur", "Unseen");
    QTest::qWait(20);
    EXPECT_TRUE(next.output()->toPlainText().isEmpty());
    button(next, "Echo Edits")->click();
    add("Filter/Blur", "Seen");
    QTest::qWait(20);
    EXPECT_TRUE(next.output()->toPlainText().contains(QStringLiteral("\"Seen\"")));
    button(next, "Clear")->click();
    EXPECT_TRUE(next.output()->toPlainText().isEmpty());
}

TEST(ScriptTexts, valuesAreWrittenAsPythonOrNotAtAll)
{
    const struct
    {
        QVariant value;
        const char *text;
    } cases[] = {
        {true, "True"},
        {7, "7"},
        {0.25, "0.25"},
        {QStringLiteral("a\"\\b"), R"("a\"\\b")"},
        {QStringList{QStringLiteral("a"), QStringLiteral("b")}, R"(["a", "b"])"},
        {QPointF(1, 2.5), "(1, 2.5)"},
        {QVariantMap(), ""},
    };

    for (const auto &c : cases) {
        EXPECT_EQ(ScriptText::value(c.value).toStdString(), c.text);
        EXPECT_EQ(
            ScriptText::setAttribute(QStringLiteral("/N"), QStringLiteral("A"), c.value).isEmpty(),
            !*c.text)
            << c.text;
    }
}
