#include "OssCore/OssStatusManager.h"
#include "OssCoreModules/Interface/OssApplication.h"
#include "ScriptSession.h"

#include <QPushButton>
#include <QSignalSpy>
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
    button.show();
    stop.show();
    QTimer::singleShot(200, &button, [&] {
        QTest::mouseClick(&button, Qt::LeftButton);
        QTest::keyClick(&button, Qt::Key_Space);
        closed = button.close();
        popups = OssApplication::popupsAllowed();
        QTest::mouseClick(&stop, Qt::LeftButton);
    });
    EXPECT_EQ(run("import time\ntime.sleep(60)"), 130);
    EXPECT_EQ(clicks, 0);
    EXPECT_FALSE(closed);
    EXPECT_FALSE(popups);
    EXPECT_TRUE(OssApplication::popupsAllowed());
    QTest::mouseClick(&button, Qt::LeftButton);
    EXPECT_EQ(clicks, 1);
    QTimer::singleShot(200, &button, [&] { QTest::keyClick(&button, Qt::Key_Escape); });
    EXPECT_EQ(run("while True: pass"), 130);
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
