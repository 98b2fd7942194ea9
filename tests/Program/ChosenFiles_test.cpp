#include "Ossa/Commands/RecentProjects.h"
#include "Ossa/Headless/CommandLine.h"
#include "Ossa/Pictures/GraphCommand.h"
#include "Ossa/Window/MainMenus.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkIO.h"
#include "OssModel/Graph/OssShadingGroup.h"
#include "OssModel/Images/OssImageManager.h"
#include "OssModel/Project/OssProject.h"
#include "OssScripting/OssScriptEngine.h"
#include "Program/StartedProgram.h"
#include "support/DialogAnswers.h"
#include "support/ExpectedLog.h"

#include <QAction>
#include <QMenuBar>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

namespace {

/// Commands that ask for a file.
class ChosenFiles : public StartedProgram
{
protected:
    void SetUp() override
    {
        StartedProgram::SetUp();
        OssUndoManager::instance()->clear();
    }

    static OssProject *project() { return OssProjectManager::instance()->currentProject(); }

    static OssShaderNetwork *network() { return project()->shadingGroups().first()->network(); }

    static QAction *command(const char *path)
    {
        return OssActionTreeManager::instance()->findAction(QStringLiteral("/Ossa/")
                                                            + QLatin1String(path));
    }

    static void change()
    {
        network()->createNode(QStringLiteral("Filter/Blur"), QString());
        ASSERT_TRUE(OssProjectManager::instance()->isModified());
    }

    QString path(const char *name) const { return m_folder.filePath(QString::fromLatin1(name)); }

    QTemporaryDir m_folder;
};

TEST_F(ChosenFiles, aProjectIsSavedWhereTheUserSaysAndNowhereWithoutAWord)
{
    change();
    for (const char *name : {"File/Save", "File/Save As..."}) {
        DialogAnswers nothing;
        command(name)->trigger();
        EXPECT_EQ(nothing.questions, 1) << name;
        EXPECT_TRUE(nothing.boxes.isEmpty()) << name;
        EXPECT_TRUE(project()->path().isEmpty()) << name;
        EXPECT_TRUE(OssProjectManager::instance()->isModified()) << name;
    }
    {
        const ExpectedLog possible("/proc", ExpectedLog::Possible);
        const DialogAnswers refused(QStringLiteral("/proc/wall.ossa"), QMessageBox::Ok);
        command("File/Save As...")->trigger();
        EXPECT_EQ(refused.boxes.size(), 1);
        EXPECT_TRUE(project()->path().isEmpty());
    }
    {
        const DialogAnswers place(path("wall.ossa"));
        command("File/Save")->trigger();
    }
    EXPECT_EQ(project()->path(), path("wall.ossa"));
    EXPECT_EQ(RecentProjects::list().value(0), path("wall.ossa"));
    EXPECT_FALSE(OssProjectManager::instance()->isModified());
    change();
    const DialogAnswers unasked;
    command("File/Save")->trigger();
    EXPECT_EQ(unasked.questions, 0);
    EXPECT_FALSE(OssProjectManager::instance()->isModified());
}

TEST_F(ChosenFiles, theOpenProjectGoesOnlyWhenTheUserLetsIt)
{
    ASSERT_TRUE(OssProjectManager::instance()->saveProjectAs(path("wall.ossa")));
    OssProjectManager::instance()->newProject(QStringLiteral("Other"));
    const QPointer<OssProject> other = project();
    {
        const DialogAnswers nothing;
        command("File/Open...")->trigger();
        EXPECT_EQ(nothing.questions, 1);
        EXPECT_TRUE(nothing.boxes.isEmpty());
        EXPECT_EQ(project(), other);
    }
    change();
    for (const char *name : {"File/New", "File/Open...", "File/Close"}) {
        const DialogAnswers stay(path("wall.ossa"));
        command(name)->trigger();
        EXPECT_EQ(stay.boxes.size(), 1) << name;
        EXPECT_EQ(project(), other) << name;
    }
    {
        const DialogAnswers go(path("wall.ossa"), QMessageBox::Discard);
        command("File/Open...")->trigger();
    }
    EXPECT_EQ(project()->path(), path("wall.ossa"));
    EXPECT_EQ(RecentProjects::list().value(0), path("wall.ossa"));
    change();
    {
        const DialogAnswers go(QString(), QMessageBox::Discard);
        command("File/New")->trigger();
        EXPECT_TRUE(project()->path().isEmpty());
        EXPECT_FALSE(OssProjectManager::instance()->isModified());
        command("File/Close")->trigger();
        EXPECT_EQ(project(), nullptr);
    }
}

TEST_F(ChosenFiles, aScriptRunsOnlyWhenOneIsChosen)
{
    QFile script(path("name.py"));
    ASSERT_TRUE(script.open(QIODevice::WriteOnly));
    script.write("import ossa\nossa.graph().createNode('Filter/Blur', 'Scripted')\n");
    script.close();
    const OssScriptEngine *engine = OssScriptEngine::instance();
    {
        const DialogAnswers nothing;
        command("Script/Run File...")->trigger();
        EXPECT_EQ(nothing.questions, 1);
        EXPECT_FALSE(engine->isRunning());
    }
    const DialogAnswers chosen(path("name.py"));
    command("Script/Run File...")->trigger();
    EXPECT_TRUE(QTest::qWaitFor([engine] { return !engine->isRunning(); }, 30000));
    EXPECT_NE(network()->node(QStringLiteral("Scripted")), nullptr);
}

TEST_F(ChosenFiles, importsPutInWhatIsChosenAndSayWhatIsDamaged)
{
    OssSnBaseNode *blur = network()->createNode(QStringLiteral("Filter/Blur"), QString());
    ASSERT_TRUE(OssShaderNetworkIO::saveNodesToXmlFile({blur}, path("blur.ong")));
    QFile broken(path("broken.ong"));
    ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
    broken.write("no nodes");
    broken.close();
    OssUndoManager::instance()->clear();
    const QByteArray before = project()->stateHash();
    const ExpectedLog unfocused("current active widget", ExpectedLog::Possible);

    const struct
    {
        const char *command;
        const char *file;
        int boxes;
        int more;
    } cases[] = {
        {"Import Nodes", "", 0, 0},
        {"Import Nodes", "broken.ong", 1, 0},
        {"Import Nodes", "blur.ong", 0, 1},
        {"Import Material", "", 0, 0},
        {"Import Material", "broken.ong", 1, 0},
        {"Import Custom Procedural", "broken.ong", 1, 0},
        {"Import Custom Procedural", "", 0, 0},
    };

    for (const auto &c : cases) {
        QAction *import = command((std::string("NodeGraph/") + c.command).c_str());
        ASSERT_NE(import, nullptr) << c.command;
        const DialogAnswers answers(*c.file ? path(c.file) : QString(), QMessageBox::Ok);
        const int count = network()->nodes().size();
        import->trigger();
        EXPECT_EQ(answers.questions, 1) << c.command << c.file;
        EXPECT_EQ(answers.boxes.size(), c.boxes) << c.command << c.file;
        EXPECT_EQ(network()->nodes().size(), count + c.more) << c.command << c.file;
        EXPECT_EQ(OssUndoManager::instance()->count(), c.more) << c.command << c.file;
        while (OssUndoManager::instance()->canUndo())
            OssUndoManager::instance()->undo();
        EXPECT_EQ(project()->stateHash(), before) << c.command << c.file;
        OssUndoManager::instance()->clear();
    }
}

TEST_F(ChosenFiles, menusHoldTheirCommandsAndTheGraphsTheRestToo)
{
    QAction odd(QStringLiteral("Something Odd"));
    for (const int left : {0, 1}) {
        if (left)
            OssActionTreeManager::instance()->registerAction(QStringLiteral("/Ossa/NodeGraph/"),
                                                             &odd);
        int inMore = 0;
        const QList<QAction *> bar = s_window->menuBar()->actions();
        for (const QAction *entry : bar) {
            QMenu *menu = entry->menu();
            ASSERT_NE(menu, nullptr);
            Q_EMIT menu->aboutToShow();
            const QList<QAction *> actions = menu->actions();
            for (const QAction *action : actions) {
                if (!action->menu() || action->text() != QLatin1String("More"))
                    continue;
                EXPECT_EQ(entry->text().remove(QLatin1Char('&')), QStringLiteral("Node Graph"));
                EXPECT_EQ(action->menu()->actions(), QList<QAction *>{&odd});
                ++inMore;
            }
            EXPECT_EQ(entry->isVisible(), !actions.isEmpty()) << qPrintable(entry->text());
        }
        EXPECT_EQ(inMore, left);
    }
}

TEST_F(ChosenFiles, closingWaitsUntilANewProjectHasItsPlace)
{
    change();
    {
        const DialogAnswers nowhere(QString(), QMessageBox::Save);
        command("File/Close")->trigger();
        EXPECT_EQ(nowhere.boxes.size(), 1);
        EXPECT_EQ(nowhere.questions, 1);
    }
    ASSERT_NE(project(), nullptr) << "nothing was saved";
    {
        const DialogAnswers somewhere(path("closed.ossa"), QMessageBox::Save);
        command("File/Close")->trigger();
    }
    EXPECT_EQ(project(), nullptr);
    EXPECT_TRUE(QFile::exists(path("closed.ossa")));
}

TEST_F(ChosenFiles, thePictureOfAGraphIsWrittenOrItIsSaidWhyNot)
{
    change();
    const QString wall = path("graph.ossa");
    ASSERT_TRUE(OssProjectManager::instance()->saveProjectAs(wall));

    const struct
    {
        const char *file;
        int exitCode;
    } cases[] = {{"graph.svg", ExitCode::Success}, {"nowhere/graph.png", ExitCode::Failure}};

    for (const auto &c : cases) {
        const QString file = path(c.file);
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        EXPECT_EQ(runGraphCommand(wall, file), c.exitCode) << c.file;
        std::fflush(stdout);
        const std::string told = testing::internal::GetCapturedStdout();
        const std::string errors = testing::internal::GetCapturedStderr();
        const bool written = c.exitCode == ExitCode::Success;
        EXPECT_EQ(told, written ? file.toStdString() + "\n" : std::string());
        EXPECT_EQ(errors.empty(), written) << errors;
        EXPECT_EQ(QFile::exists(file), written);
    }
}

} // namespace
