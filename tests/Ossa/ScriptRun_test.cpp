#include "Ossa/Headless/CommandLine.h"
#include "OssScripting/OssScriptEngine.h"
#include "ProgramRun.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <csignal>

namespace {

const QString root = QStringLiteral(OSSA_EXAMPLES "/..");

QString contentOf(const QString &path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(path);
    return QString::fromUtf8(file.readAll());
}

/// A folder of its own, in which the script runs, with a copy of an example.
class ScriptRun : public testing::Test
{
protected:
    ScriptRun()
    {
        QDir(m_folder.path()).mkpath(QStringLiteral("Wall.ossa"));
        QFile::copy(QStringLiteral(OSSA_EXAMPLES "/Weathered Brick.ossa/project.xml"),
                    project + QStringLiteral("/project.xml"));
    }

    QString write(const QString &text)
    {
        const QString path = m_folder.filePath(QStringLiteral("script.py"));
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text.toUtf8());
        return path;
    }

    ProgramRun run(const QString &text, const QStringList &more = {})
    {
        return ProgramRun::of(QStringList{QStringLiteral("run"), write(text)} + more,
                              m_folder.path());
    }

    QTemporaryDir m_folder;
    const QString project = m_folder.filePath(QStringLiteral("Wall.ossa"));
};

} // namespace

TEST_F(ScriptRun, examplesOfTheDocumentPrintWhatItSays)
{
    const QRegularExpression block(QStringLiteral("```python\n(.*?)```(?:\n\n```text\n(.*?)```)"),
                                   QRegularExpression::DotMatchesEverythingOption);
    const QString text = contentOf(root + QStringLiteral("/docs/scripting.md"));
    int count = 0;
    auto examples = block.globalMatch(text);
    while (examples.hasNext()) {
        const QRegularExpressionMatch example = examples.next();
        const ProgramRun outcome = run(example.captured(1), {project});
        EXPECT_EQ(outcome.exitCode, 0) << qPrintable(example.captured(1)) << outcome.err.data();
        EXPECT_EQ(outcome.out.toStdString(), example.captured(2).toStdString())
            << qPrintable(example.captured(1));
        ++count;
    }
    EXPECT_EQ(count, text.count(QStringLiteral("```python"))) << "an example says what it prints";
    EXPECT_GE(count, 17);
}

TEST_F(ScriptRun, everyScriptClassHasAnExampleAndTheStubsAreUpToDate)
{
    const QString text = contentOf(root + QStringLiteral("/docs/scripting.md"));
    const QString stubs = contentOf(root + QStringLiteral("/docs/ossa.pyi"));
    auto classes = QRegularExpression(QStringLiteral("^class (\\w+)\\(Object\\)"),
                                      QRegularExpression::MultilineOption)
                       .globalMatch(stubs);
    while (classes.hasNext()) {
        const QString name = classes.next().captured(1);
        EXPECT_TRUE(text.contains(QRegularExpression(QStringLiteral("^## .*\\b%1\\b").arg(name),
                                                     QRegularExpression::MultilineOption)))
            << qPrintable(name);
    }
    const ProgramRun made = ProgramRun::of({QStringLiteral("stubs")});
    EXPECT_EQ(made.out.toStdString(), stubs.toStdString()) << "made anew by: ossa stubs";
}

TEST_F(ScriptRun, buildsTheLargeExampleFromNothing)
{
    const ProgramRun built = ProgramRun::of(
        {QStringLiteral("run"), QStringLiteral(OSSA_EXAMPLES "/scripts/harbor.py"),
         QStringLiteral("--"), m_folder.filePath(QStringLiteral("Harbor.ossa"))});
    ASSERT_EQ(built.exitCode, 0) << built.err.data();
    const auto state = [](const QString &path) {
        const ProgramRun info = ProgramRun::of({QStringLiteral("info"), path});
        return info.out.split('\n').value(2);
    };
    const QByteArray wanted = state(QStringLiteral(OSSA_EXAMPLES "/Harbor.ossa"));
    EXPECT_TRUE(wanted.startsWith("state "));
    EXPECT_EQ(state(m_folder.filePath(QStringLiteral("Harbor.ossa"))), wanted);
    EXPECT_TRUE(built.out.contains(wanted.mid(6)));
}

TEST_F(ScriptRun, survivesWhatHostileScriptsDo)
{
    const ProgramRun outcome = ProgramRun::of(
        {QStringLiteral("run"), root + QStringLiteral("/tests/Ossa/scripts/hostile.py")});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err.data();
    EXPECT_EQ(outcome.out, "survived\n");
}

TEST_F(ScriptRun, givesTheScriptItsArgumentsAndTakesItsExitCode)
{
    const ProgramRun outcome = run(
        QStringLiteral("import sys\nprint(sys.argv[1:])\nsys.exit(7)\n"),
        {QStringLiteral("--"), QStringLiteral("-x"), QStringLiteral("--help")});
    EXPECT_EQ(outcome.exitCode, 7);
    EXPECT_EQ(outcome.out, "['-x', '--help']\n");
    const ProgramRun failed = run(QStringLiteral("def f():\n    1 / 0\nf()\n"));
    EXPECT_EQ(failed.exitCode, ExitCode::Failure);
    EXPECT_TRUE(failed.err.contains("line 2, in f") && failed.err.contains("ZeroDivisionError"))
        << failed.err.data();
    EXPECT_FALSE(failed.err.contains("<ossa>")) << failed.err.data();
    EXPECT_EQ(run(QStringLiteral("import sys; sys.exit('no')")).err, "no\n");
    const ProgramRun none = ProgramRun::of({QStringLiteral("run"), QStringLiteral("/none.py")});
    EXPECT_EQ(none.exitCode, ExitCode::Failure);
    EXPECT_TRUE(none.err.contains("/none.py")) << none.err.data();
    const ProgramRun unopened = run(QStringLiteral("print('ran')"), {QStringLiteral("/no.ossa")});
    EXPECT_EQ(unopened.exitCode, ExitCode::Failure);
    EXPECT_TRUE(unopened.out.isEmpty()) << "the script needs the project";
}

// A module that lies about must not run because a script imports something of that name.
TEST_F(ScriptRun, importsNothingFromTheCurrentFolderTheScriptsFolderOrTheEnvironment)
{
    for (const char *name : {"planted.py", "Wall.ossa/planted.py", "json.py"}) {
        QFile file(m_folder.filePath(QString::fromLatin1(name)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("print('planted code ran')\n");
    }
    qputenv("PYTHONPATH", m_folder.path().toLocal8Bit());
    qputenv("PYTHONSTARTUP", m_folder.filePath(QStringLiteral("planted.py")).toLocal8Bit());
    const ProgramRun outcome = run(QStringLiteral("import json\n"
                                                  "print(json.loads('[1]'))\n"
                                                  "try:\n"
                                                  "    import planted\n"
                                                  "except ImportError:\n"
                                                  "    print('not found')\n"),
                                   {project});
    qunsetenv("PYTHONPATH");
    qunsetenv("PYTHONSTARTUP");
    EXPECT_EQ(outcome.out, "[1]\nnot found\n") << outcome.err.data();
}

TEST_F(ScriptRun, isStoppedByTheUserWhateverItDoes)
{
    const char *const scripts[] = {
        "while True:\n    pass\n",
        "import time\ntime.sleep(1000)\n",
        "while True:\n    try:\n        while True:\n            pass\n"
        "    except BaseException:\n        pass\n",
        "import ossa\nossa.newProject('x')\nwhile True:\n    ossa.graph().nodes()\n",
        "import threading, time\nthreading.Thread(target=lambda: time.sleep(0.1) or "
        "exec('while True: pass')).start()\n",
    };
    for (const char *script : scripts) {
        QProcess program;
        program.start(QStringLiteral(OSSA_PROGRAM),
                      {QStringLiteral("run"), write(QStringLiteral("print('begun', flush=True)\n")
                                                    + QString::fromLatin1(script))});
        ASSERT_TRUE(program.waitForReadyRead(30000)) << script;
        ::kill(pid_t(program.processId()), SIGINT);
        EXPECT_TRUE(program.waitForFinished(30000)) << script;
        EXPECT_EQ(program.exitStatus(), QProcess::NormalExit) << script;
        EXPECT_EQ(program.exitCode(), 130) << script << program.readAllStandardError().data();
        program.kill();
        program.waitForFinished();
    }
}
