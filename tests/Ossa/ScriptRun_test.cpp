#include "Ossa/Headless/CommandLine.h"
#include "OssScripting/OssScriptEngine.h"
#include "ProgramRun.h"
#include "support/OssaFiles.h"
#include "support/Text.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <csignal>

namespace {

const QString Root = text(OSSA_EXAMPLES "/..");

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
        QDir(m_folder.path()).mkpath(text("Wall.ossa"));
        QFile::copy(text(OSSA_EXAMPLES "/Weathered Brick.ossa/project.xml"),
                    project + text("/project.xml"));
    }

    QString write(const QString &lines)
    {
        const QString path = m_folder.filePath(text("script.py"));
        writeFile(path, lines.toUtf8());
        return path;
    }

    ProgramRun run(const QString &lines, const QStringList &more = {})
    {
        return ProgramRun::of(texts({"run"}) + QStringList{write(lines)} + more, m_folder.path());
    }

    QTemporaryDir m_folder;
    const QString project = m_folder.filePath(text("Wall.ossa"));
};

} // namespace

TEST_F(ScriptRun, examplesOfTheDocumentPrintWhatItSays)
{
    const QRegularExpression block(text("```python\n(.*?)```(?:\n\n```text\n(.*?)```)"),
                                   QRegularExpression::DotMatchesEverythingOption);
    const QString document = contentOf(Root + text("/docs/scripting.md"));
    int count = 0;
    auto examples = block.globalMatch(document);
    while (examples.hasNext()) {
        const QRegularExpressionMatch example = examples.next();
        const ProgramRun outcome = run(example.captured(1), {project});
        EXPECT_EQ(outcome.exitCode, 0) << qPrintable(example.captured(1)) << outcome.err.data();
        EXPECT_EQ(outcome.out.toStdString(), example.captured(2).toStdString())
            << qPrintable(example.captured(1));
        ++count;
    }
    EXPECT_EQ(count, document.count(text("```python"))) << "an example says what it prints";
    EXPECT_GE(count, 17);
}

TEST_F(ScriptRun, everyScriptClassHasAnExampleAndTheStubsAreUpToDate)
{
    const QString document = contentOf(Root + text("/docs/scripting.md"));
    const QString stubs = contentOf(Root + text("/docs/ossa.pyi"));
    auto classes = QRegularExpression(text("^class (\\w+)\\(Object\\)"),
                                      QRegularExpression::MultilineOption)
                       .globalMatch(stubs);
    while (classes.hasNext()) {
        const QString name = classes.next().captured(1);
        EXPECT_TRUE(document.contains(QRegularExpression(text("^## .*\\b%1\\b").arg(name),
                                                         QRegularExpression::MultilineOption)))
            << qPrintable(name);
    }
    const ProgramRun made = ProgramRun::of({text("stubs")});
    EXPECT_EQ(made.out.toStdString(), stubs.toStdString()) << "made anew by: ossa stubs";
}

TEST_F(ScriptRun, buildsTheLargeExampleFromNothing)
{
    const ProgramRun built = ProgramRun::of({text("run"), text(OSSA_EXAMPLES "/scripts/harbor.py"),
                                             text("--"), m_folder.filePath(text("Harbor.ossa"))});
    ASSERT_EQ(built.exitCode, 0) << built.err.data();
    const auto state = [](const QString &path) {
        const ProgramRun info = ProgramRun::of({text("info"), path});
        return info.out.split('\n').value(2);
    };
    const QByteArray wanted = state(text(OSSA_EXAMPLES "/Harbor.ossa"));
    EXPECT_TRUE(wanted.startsWith("state "));
    EXPECT_EQ(state(m_folder.filePath(text("Harbor.ossa"))), wanted);
    EXPECT_TRUE(built.out.contains(wanted.mid(6)));
}

// What careless scripts do, and what values and edits come to: each says how far it came.
TEST_F(ScriptRun, scriptsThatLookForThemselvesSurvive)
{
    for (const char *name : {"hostile.py", "values.py"}) {
        const ProgramRun outcome = ProgramRun::of(
            {text("run"), Root + text("/tests/Ossa/scripts/") + text(name)});
        EXPECT_EQ(outcome.exitCode, 0) << name << ": " << outcome.err.data();
        EXPECT_EQ(outcome.out, "survived\n") << name;
    }
}

TEST_F(ScriptRun, givesTheScriptItsArgumentsAndTakesItsExitCode)
{
    const ProgramRun outcome = run(text("import sys\nprint(sys.argv[1:])\nsys.exit(7)\n"),
                                   texts({"--", "-x", "--help"}));
    EXPECT_EQ(outcome.exitCode, 7);
    EXPECT_EQ(outcome.out, "['-x', '--help']\n");
    const ProgramRun failed = run(text("def f():\n    1 / 0\nf()\n"));
    EXPECT_EQ(failed.exitCode, ExitCode::Failure);
    EXPECT_TRUE(failed.err.contains("line 2, in f") && failed.err.contains("ZeroDivisionError"))
        << failed.err.data();
    EXPECT_FALSE(failed.err.contains("<ossa>")) << failed.err.data();
    EXPECT_EQ(run(text("import sys; sys.exit('no')")).err, "no\n");
    const ProgramRun none = ProgramRun::of({text("run"), text("/none.py")});
    EXPECT_EQ(none.exitCode, ExitCode::Failure);
    EXPECT_TRUE(none.err.contains("/none.py")) << none.err.data();
    const ProgramRun unopened = run(text("print('ran')"), {text("/no.ossa")});
    EXPECT_EQ(unopened.exitCode, ExitCode::Failure);
    EXPECT_TRUE(unopened.out.isEmpty()) << "the script needs the project";
}

// A module that lies about must not run because a script imports something of that name.
TEST_F(ScriptRun, importsNothingFromTheCurrentFolderTheScriptsFolderOrTheEnvironment)
{
    for (const char *name : {"planted.py", "Wall.ossa/planted.py", "json.py"})
        writeFile(m_folder.filePath(text(name)), "print('planted code ran')\n");
    qputenv("PYTHONPATH", m_folder.path().toLocal8Bit());
    qputenv("PYTHONSTARTUP", m_folder.filePath(text("planted.py")).toLocal8Bit());
    const ProgramRun outcome = run(text("import json\n"
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
        program.start(text(OSSA_PROGRAM),
                      {text("run"), write(text("print('begun', flush=True)\n") + text(script))});
        ASSERT_TRUE(program.waitForReadyRead(30000)) << script;
        ::kill(pid_t(program.processId()), SIGINT);
        EXPECT_TRUE(program.waitForFinished(30000)) << script;
        EXPECT_EQ(program.exitStatus(), QProcess::NormalExit) << script;
        EXPECT_EQ(program.exitCode(), 130) << script << program.readAllStandardError().data();
        program.kill();
        program.waitForFinished();
    }
}
