#include "OssCore/Program/OssStatusManager.h"
#include "OssInterface/Popups/OssApplication.h"
#include "ScriptSession.h"

#include <QAction>
#include <QPushButton>
#include <QShortcutEvent>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using ScriptEngine = ScriptSession;

TEST_F(ScriptEngine, printsWhatIsTypedAndKeepsNames)
{
    EXPECT_EQ(run("x = 6\nx * 7"), 0);
    EXPECT_EQ(m_output, QStringLiteral("42\n"));
    EXPECT_EQ(run("print(x)\n'one'; _"), 0);
    EXPECT_EQ(m_output, QStringLiteral("6\n42\n"));
    EXPECT_EQ(run("1 / 0"), 1);
    EXPECT_TRUE(m_errors.contains(QStringLiteral("ZeroDivisionError"))) << qPrintable(m_errors);
    EXPECT_EQ(run("def f(:"), 1);
    EXPECT_TRUE(m_errors.contains(QStringLiteral("SyntaxError"))) << qPrintable(m_errors);
    EXPECT_EQ(run("input()"), 1) << "there is nobody to type";
    EXPECT_EQ(run("exit(4)"), 4);
    engine()->resetNames();
    EXPECT_EQ(run("x"), 1);
}

TEST_F(ScriptEngine, asksForMoreUntilTheInputIsComplete)
{
    const char *const open[] = {"for i in range(3):", "f(1,", "x = '''", "if 1:\n    pass"};
    for (const char *text : open) {
        EXPECT_EQ(run(QString::fromUtf8(text), false), -1) << text;
        EXPECT_TRUE(m_incomplete) << text;
    }
    for (const char *text : {"1", "def f(:", "a = 1\nb = 2", "if 1:\n    pass\n"}) {
        run(QString::fromUtf8(text), false);
        EXPECT_FALSE(m_incomplete) << text;
    }
}

TEST_F(ScriptEngine, makesOneStepOfEachScriptUnlessItOpensItsOwn)
{
    const QByteArray start = m_project->stateHash();
    run("import ossa\ng = ossa.graph()\n"
        "for i in range(5): g.createNode('Filter/Blur')");
    EXPECT_EQ(undoCount(), 1);
    EXPECT_TRUE(OssUndoManager::instance()->undoText().startsWith(QStringLiteral("Script")));
    run("g.createNode('Filter/Blur', 'A')\n"
        "with ossa.undoMacro('Mine'):\n"
        "    g.createNode('Filter/Blur', 'B')\n"
        "g.node('A').name = 'C'");
    EXPECT_EQ(undoCount(), 4);
    EXPECT_EQ(OssUndoManager::instance()->text(2), QStringLiteral("Mine"));
    run("print(len(g.nodes()))");
    EXPECT_EQ(undoCount(), 4) << "a script that changes nothing leaves no step";
    expectUndoIsExact(start);
}

TEST_F(ScriptEngine, leavesWhatUndoTakesBackWhenAScriptFails)
{
    const ExpectedLog expected("has no attribute \"Nonsense\"");
    const QByteArray start = m_project->stateHash();
    EXPECT_EQ(run("import ossa\ng = ossa.graph()\n"
                  "a = g.createNode('Filter/Blur')\n"
                  "ossa.undo().begin('Open')\n"
                  "ossa.status().begin('Work')\n"
                  "a.setAttribute('Radius', 3)\n"
                  "a.setAttribute('Nonsense', 3)\n"),
              1);
    EXPECT_TRUE(m_errors.contains(QStringLiteral("has no attribute"))) << qPrintable(m_errors);
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
    EXPECT_EQ(run("1 + 1"), 0) << "the next one runs";
    EXPECT_EQ(m_output, QStringLiteral("2\n"));
    QTimer::singleShot(100, engine(), &OssScriptEngine::stop);
    EXPECT_EQ(run("while True: print('x' * 1000)"), 130) << "also where nobody reads";
}

// The user's hands are off the document; only what is marked takes input, and Escape stops.
TEST_F(ScriptEngine, takesNoInputWhileAScriptRuns)
{
    QPushButton button;
    QPushButton stop;
    OssScriptEngine::keepUsable(&stop);
    int clicks = 0;
    QObject::connect(&button, &QPushButton::clicked, [&] { ++clicks; });
    QObject::connect(&stop, &QPushButton::clicked, engine(), &OssScriptEngine::stop);
    bool popups = true;
    bool closed = false;
    int shortcuts = 0;
    QAction action;
    action.setShortcut(QKeySequence(Qt::CTRL + Qt::Key_N));
    QObject::connect(&action, &QAction::triggered, [&] { ++shortcuts; });
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
    EXPECT_EQ(clicks, 0);
    EXPECT_EQ(shortcuts, 0);
    EXPECT_FALSE(closed);
    EXPECT_FALSE(popups);
    EXPECT_TRUE(OssApplication::popupsAllowed());
    QTest::mouseClick(&button, Qt::LeftButton);
    EXPECT_EQ(clicks, 1);
    QCoreApplication::sendEvent(&action, &shortcut);
    EXPECT_EQ(shortcuts, 1);
    QTimer::singleShot(200, &button, [&] { QTest::keyClick(&button, Qt::Key_Escape); });
    EXPECT_EQ(run("while True: pass"), 130);
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
    run("import ossa\nnames = []\nnode = ossa.graph().node('Soft')\n"
        "node.renamed.connect(names.append)\n"
        "node.name = 'A'\nnames");
    EXPECT_EQ(m_output, QStringLiteral("['A']\n"));
    m_network->node(QStringLiteral("A"))->setName(QStringLiteral("B"));
    while (engine()->isRunning())
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    QTest::qWait(50);
    run("names");
    EXPECT_EQ(m_output, QStringLiteral("['A', 'B']\n"));
    run("node.renamed.disconnect(names.append)\nnode.name = 'C'\nnames");
    EXPECT_EQ(m_output, QStringLiteral("['A', 'B']\n"));
}

// A script that began between press and release would swallow the release.
TEST_F(ScriptEngine, callsNoFunctionWhileTheUsersHandsAreOn)
{
    add("Filter/Blur", "Soft");
    run("import ossa\nnames = []\nossa.graph().node('Soft').renamed.connect(names.append)");
    {
        const OssUndoManager::AutoMacro gesture(QStringLiteral("Gesture"));
        m_network->node(QStringLiteral("Soft"))->setName(QStringLiteral("A"));
        QTest::qWait(150);
        EXPECT_FALSE(engine()->isRunning());
    }
    QSignalSpy finished(engine(), &OssScriptEngine::finished);
    EXPECT_TRUE(finished.wait(10000));
    run("names");
    EXPECT_EQ(m_output, QStringLiteral("['A']\n"));
}

// What a file replaces is its own; the console goes on with what it had.
TEST_F(ScriptEngine, keepsTheConsoleWhateverScriptsReplace)
{
    QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("a 'file' \"of\" é.py")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("import sys, signal\n"
               "sys.stdout = sys.stderr = None\nsys.path[:] = ['/nowhere']\n"
               "del sys.modules['ossa']\n"
               "signal.signal(signal.SIGUSR2, signal.SIG_IGN)\n");
    file.close();
    QSignalSpy finished(engine(), &OssScriptEngine::finished);
    ASSERT_TRUE(engine()->runFile(file.fileName(), {}));
    ASSERT_TRUE(finished.wait(10000));
    EXPECT_EQ(finished.first().first().toInt(), 1) << "what stops scripts cannot be replaced";
    EXPECT_EQ(run("import ossa, sys\nossa.graph().nodes()\n'/nowhere' in sys.path"), 0);
    EXPECT_EQ(m_output, QStringLiteral("False\n")) << qPrintable(m_errors);
    QTimer::singleShot(200, engine(), &OssScriptEngine::stop);
    EXPECT_EQ(run("import time\ntime.sleep(60)"), 130);
}

TEST_F(ScriptEngine, completesNamesAlsoBehindCalls)
{
    run("import ossa\ngraph = ossa.graph()\nfoobar = 1");
    QSignalSpy spy(engine(), &OssScriptEngine::completed);
    const auto names = [&](const char *text) {
        spy.clear();
        while (engine()->isRunning())
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        engine()->complete(QString::fromUtf8(text));
        EXPECT_TRUE(spy.wait(10000)) << text;
        return spy.value(0).value(1).toStringList().join(QLatin1Char(' '));
    };
    EXPECT_EQ(names("foob"), QStringLiteral("foobar"));
    EXPECT_EQ(names("x = graph.nodesO"), QStringLiteral("nodesOfType"));
    EXPECT_EQ(names("ossa.undoM"), QStringLiteral("undoMacro"));
    EXPECT_EQ(names("ossa.graph().node('x').setAttr"), QStringLiteral("setAttribute"));
    EXPECT_EQ(names("graph.nothing().x"), QString());
    EXPECT_EQ(names("len([]).x"), QString()) << "what cannot be known is not called";
}
