#include "Ossa/Scripting/ScriptCommands.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssInterface/Popups/OssApplication.h"
#include "ScriptSession.h"
#include "support/OssaFiles.h"
#include "support/PassTime.h"

#include <QAction>
#include <QPushButton>
#include <QShortcutEvent>
#include <QTemporaryDir>

using ScriptEngine = ScriptSession;

TEST_F(ScriptEngine, printsWhatIsTypedAndKeepsNames)
{
    EXPECT_EQ(printed("x = 6\nx * 7"), "42");
    EXPECT_EQ(printed("print(x)\n'one'; _"), "6\n42");
    expectRaised("1 / 0", "ZeroDivisionError");
    expectRaised("def f(:", "SyntaxError");
    expectRaised("input()", ""); // there is nobody to type
    EXPECT_EQ(run("exit(4)"), 4);
    const ScriptCommands commands(nullptr);
    OssActionTreeManager::instance()->findAction(text("/Ossa/Script/Forget Names"))->trigger();
    expectRaised("x", "NameError");
}

TEST_F(ScriptEngine, asksForMoreUntilTheInputIsComplete)
{
    for (const char *open : {"for i in range(3):", "f(1,", "x = '''", "if 1:\n    pass"}) {
        EXPECT_EQ(run(text(open), false), -1) << open;
        EXPECT_TRUE(m_incomplete) << open;
    }
    for (const char *complete : {"1", "def f(:", "a = 1\nb = 2", "if 1:\n    pass\n"}) {
        run(text(complete), false);
        EXPECT_FALSE(m_incomplete) << complete;
    }
}

TEST_F(ScriptEngine, makesOneStepOfEachScriptUnlessItOpensItsOwn)
{
    const QByteArray start = m_project->stateHash();
    run("import ossa\ng = ossa.graph()\n"
        "for i in range(5): g.createNode('Filter/Blur')");
    EXPECT_EQ(undoCount(), 1);
    EXPECT_TRUE(OssUndoManager::instance()->undoText().startsWith(text("Script")));
    run("g.createNode('Filter/Blur', 'A')\n"
        "with ossa.undoMacro('Mine'):\n"
        "    g.createNode('Filter/Blur', 'B')\n"
        "g.node('A').name = 'C'");
    EXPECT_EQ(undoCount(), 4);
    EXPECT_EQ(OssUndoManager::instance()->text(2), text("Mine"));
    run("print(len(g.nodes()))");
    EXPECT_EQ(undoCount(), 4) << "a script that changes nothing leaves no step";
    expectUndoIsExact(start);
}

TEST_F(ScriptEngine, leavesWhatUndoTakesBackWhenAScriptFails)
{
    const ExpectedLog expected("has no attribute \"Nonsense\"");
    const QByteArray start = m_project->stateHash();
    expectRaised("import ossa\ng = ossa.graph()\n"
                 "a = g.createNode('Filter/Blur')\n"
                 "ossa.undo().begin('Open')\n"
                 "ossa.status().begin('Work')\n"
                 "a.setAttribute('Radius', 3)\n"
                 "a.setAttribute('Nonsense', 3)\n",
                 "has no attribute");
    EXPECT_FALSE(OssUndoManager::instance()->isMacroOpen());
    EXPECT_FALSE(OssStatusManager::instance()->inProgress());
    EXPECT_GT(undoCount(), 0);
    expectUndoIsExact(start);
}

TEST_F(ScriptEngine, stopsAScriptThatCatchesEverything)
{
    QTimer::singleShot(200, engine(), &OssScriptEngine::stop);
    EXPECT_EQ(run("while True:\n"
                  "    try:\n"
                  "        while True: pass\n"
                  "    except BaseException:\n"
                  "        pass\n"),
              130);
    EXPECT_EQ(printed("1 + 1"), "2") << "the next one runs";
    QTimer::singleShot(100, engine(), &OssScriptEngine::stop);
    EXPECT_EQ(run("while True: print('x' * 1000)"), 130) << "also where nobody reads";
}

// The user's hands are off the document; only what is marked takes input, and Escape stops.
TEST_F(ScriptEngine, takesNoInputWhileAScriptRuns)
{
    QPushButton button;
    QPushButton stop;
    OssScriptEngine::keepUsable(&stop);
    const QSignalSpy clicks(&button, &QPushButton::clicked);
    QObject::connect(&stop, &QPushButton::clicked, engine(), &OssScriptEngine::stop);
    bool popups = true;
    bool closed = false;
    QAction action;
    action.setShortcut(QKeySequence(Qt::CTRL + Qt::Key_N));
    const QSignalSpy triggered(&action, &QAction::triggered);
    QShortcutEvent shortcut(action.shortcut(), 0);
    button.show();
    stop.show();
    QTimer::singleShot(200, &button, [&] {
        QTest::mouseClick(&button, Qt::LeftButton);
        QTest::keyClick(&button, Qt::Key_Space);
        QCoreApplication::sendEvent(&action, &shortcut);
        closed = button.close();
        popups = OssApplication::popupsAllowed();
        QTest::mouseClick(&stop, Qt::LeftButton);
    });
    EXPECT_EQ(run("import time\ntime.sleep(60)"), 130);
    EXPECT_TRUE(clicks.isEmpty() && triggered.isEmpty());
    EXPECT_FALSE(closed);
    EXPECT_FALSE(popups);
    EXPECT_TRUE(OssApplication::popupsAllowed());
    QTest::mouseClick(&button, Qt::LeftButton);
    EXPECT_EQ(clicks.size(), 1);
    QCoreApplication::sendEvent(&action, &shortcut);
    EXPECT_EQ(triggered.size(), 1);
    QTimer::singleShot(200, &button, [&] { QTest::keyClick(&button, Qt::Key_Escape); });
    EXPECT_EQ(run("while True: pass"), 130);
}

// A button that was down before comes up afterwards; one that was pressed meanwhile never was.
TEST_F(ScriptEngine, putsReleasesByUntilTheScriptHasEnded)
{
    QPushButton held;
    QPushButton other;
    held.setFocusPolicy(Qt::NoFocus); // or it comes up with another window
    held.show();
    other.show();
    QTest::mousePress(&held, Qt::LeftButton);
    bool wasDown = false;
    // However long Python takes to come up.
    QObject::connect(engine(), &OssScriptEngine::started, &held, [&] {
        QTimer::singleShot(0, &held, [&] {
            QTest::mouseRelease(&held, Qt::LeftButton);
            wasDown = held.isDown();
            QTest::mouseClick(&other, Qt::RightButton);
        });
    });
    run("import time\ntime.sleep(0.3)");
    EXPECT_TRUE(wasDown);
    EXPECT_TRUE(QTest::qWaitFor([&held] { return !held.isDown(); }));
}

TEST_F(ScriptEngine, closesTheWindowOnceTheScriptHasStopped)
{
    QWidget window;
    window.show();
    QWidget *before = OssApplication::mainWindow();
    OssApplication::setMainWindow(&window);
    bool closed = true;
    // However long Python takes to come up.
    QObject::connect(engine(), &OssScriptEngine::started, &window,
                     [&] { QTimer::singleShot(200, &window, [&] { closed = window.close(); }); });
    EXPECT_EQ(run("while True: pass"), 130);
    EXPECT_FALSE(closed);
    QTest::qWait(20);
    EXPECT_FALSE(window.isVisible());
    OssApplication::setMainWindow(before);
}

TEST_F(ScriptEngine, callsFunctionsForSignalsDuringAndAfterAScript)
{
    add("Filter/Blur", "Soft");
    EXPECT_EQ(printed("import ossa\nnames = []\nnode = ossa.graph().node('Soft')\n"
                      "node.renamed.connect(names.append)\n"
                      "node.name = 'A'\nnames"),
              "['A']");
    m_network->node(text("A"))->setName(text("B"));
    waitForEngine();
    passTime(50);
    EXPECT_EQ(printed("names"), "['A', 'B']");
    EXPECT_EQ(printed("node.renamed.disconnect(names.append)\nnode.name = 'C'\nnames"),
              "['A', 'B']");
}

// A script that began between press and release would swallow the release.
TEST_F(ScriptEngine, callsNoFunctionWhileTheUsersHandsAreOn)
{
    add("Filter/Blur", "Soft");
    run("import ossa\nnames = []\nossa.graph().node('Soft').renamed.connect(names.append)");
    {
        const OssUndoManager::AutoMacro gesture(text("Gesture"));
        m_network->node(text("Soft"))->setName(text("A"));
        passTime(150);
        EXPECT_FALSE(engine()->isRunning());
    }
    QSignalSpy finished(engine(), &OssScriptEngine::finished);
    EXPECT_TRUE(finished.wait(10000));
    EXPECT_EQ(printed("names"), "['A']");
}

// What a file replaces is its own; the console goes on with what it had.
TEST_F(ScriptEngine, keepsTheConsoleWhateverScriptsReplace)
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(text("a 'file' \"of\" é.py"));
    writeFile(file, "import sys, signal\n"
                    "sys.stdout = sys.stderr = None\nsys.path[:] = ['/nowhere']\n"
                    "del sys.modules['ossa']\n"
                    "signal.signal(signal.SIGUSR2, signal.SIG_IGN)\n");
    QSignalSpy finished(engine(), &OssScriptEngine::finished);
    ASSERT_TRUE(engine()->runFile(file, {}));
    ASSERT_TRUE(finished.wait(10000));
    EXPECT_EQ(finished.first().first().toInt(), 1) << "what stops scripts cannot be replaced";
    EXPECT_EQ(printed("import ossa, sys\nlen(ossa.graph().nodes()), '/nowhere' in sys.path"),
              "(1, False)");
    QTimer::singleShot(200, engine(), &OssScriptEngine::stop);
    EXPECT_EQ(run("import time\ntime.sleep(60)"), 130);
}

TEST_F(ScriptEngine, completesNamesAlsoBehindCalls)
{
    run("import ossa\ngraph = ossa.graph()\nfoobar = 1");
    QSignalSpy spy(engine(), &OssScriptEngine::completed);
    const std::pair<const char *, QStringList> cases[] = {
        {"foob", texts({"foobar"})},
        {"x = graph.nodesO", texts({"nodesOfType"})},
        {"ossa.undoM", texts({"undoMacro"})},
        {"ossa.graph().node('x').setAttr", texts({"setAttribute"})},
        {"graph.nothing().x", {}},
        {"len([]).x", {}}, // what cannot be known is not called
    };
    for (const auto &[typed, names] : cases) {
        spy.clear();
        waitForEngine();
        engine()->complete(text(typed));
        EXPECT_TRUE(spy.wait(10000)) << typed;
        EXPECT_EQ(spy.value(0).value(1).toStringList(), names) << typed;
    }
}
