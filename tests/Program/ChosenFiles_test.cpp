#include "Ossa/Commands/RecentProjects.h"
#include "Ossa/Headless/CommandLine.h"
#include "Ossa/Pictures/GraphCommand.h"
#include "OssModel/Graph/OssShaderNetworkIO.h"
#include "OssScripting/OssScriptEngine.h"
#include "Program/StartedProgram.h"
#include "support/OssaFiles.h"

#include <QDir>
#include <QPointer>
#include <QTemporaryDir>
#include <QTest>

namespace {

/// Commands that ask for a file.
class ChosenFiles : public StartedProgram
{
protected:
    struct Asked
    {
        int questions; ///< for a file
        int boxes;
    };

    /// Triggers the command for a user who chooses a file or none, and presses that button of boxes.
    Asked choose(const std::string &command, const char *file,
                 QMessageBox::StandardButton button = QMessageBox::Cancel) const
    {
        const DialogAnswers answers(*file ? path(file) : QString(), button);
        triggerCommand(command);
        return {answers.questions, answers.boxes.size()};
    }

    void expectAsked(const Asked &asked, int questions, int boxes) const
    {
        EXPECT_EQ(asked.questions, questions);
        EXPECT_EQ(asked.boxes, boxes);
    }

    static void change()
    {
        project()->shadingGroups().first()->network()->createNode(text("Filter/Blur"), QString());
        ASSERT_TRUE(isModified());
    }

    static bool isModified() { return OssProjectManager::instance()->isModified(); }

    int nodeCount() const { return m_network->nodes().size(); }

    QString path(const char *name) const { return QDir(m_folder.path()).filePath(text(name)); }

    QTemporaryDir m_folder;
};

TEST_F(ChosenFiles, aProjectIsSavedWhereTheUserSaysAndNowhereWithoutAWord)
{
    change();
    for (const char *name : {"File/Save", "File/Save As..."}) {
        expectAsked(choose(name, ""), 1, 0);
        EXPECT_TRUE(project()->path().isEmpty()) << name;
        EXPECT_TRUE(isModified()) << name;
    }
    {
        const ExpectedLog possible("/proc", ExpectedLog::Possible);
        expectAsked(choose("File/Save As...", "/proc/wall.ossa", QMessageBox::Ok), 1, 1);
        EXPECT_TRUE(project()->path().isEmpty());
    }
    choose("File/Save", "wall.ossa");
    EXPECT_EQ(project()->path(), path("wall.ossa"));
    EXPECT_EQ(RecentProjects::list().value(0), path("wall.ossa"));
    EXPECT_FALSE(isModified());
    change();
    expectAsked(choose("File/Save", ""), 0, 0);
    EXPECT_FALSE(isModified());
}

TEST_F(ChosenFiles, theOpenProjectGoesOnlyWhenTheUserLetsIt)
{
    ASSERT_TRUE(OssProjectManager::instance()->saveProjectAs(path("wall.ossa")));
    OssProjectManager::instance()->newProject(text("Other"));
    const QPointer<OssProject> other = project();
    expectAsked(choose("File/Open...", ""), 1, 0);
    EXPECT_EQ(project(), other);
    change();
    for (const char *name : {"File/New", "File/Open...", "File/Close"}) {
        EXPECT_EQ(choose(name, "wall.ossa").boxes, 1) << name;
        EXPECT_EQ(project(), other) << name;
    }
    choose("File/Open...", "wall.ossa", QMessageBox::Discard);
    EXPECT_EQ(project()->path(), path("wall.ossa"));
    EXPECT_EQ(RecentProjects::list().value(0), path("wall.ossa"));
    change();
    choose("File/New", "", QMessageBox::Discard);
    EXPECT_TRUE(project()->path().isEmpty());
    EXPECT_FALSE(isModified());
    choose("File/Close", "", QMessageBox::Discard);
    EXPECT_EQ(project(), nullptr);
}

TEST_F(ChosenFiles, closingWaitsUntilANewProjectHasItsPlace)
{
    change();
    expectAsked(choose("File/Close", "", QMessageBox::Save), 1, 1);
    ASSERT_NE(project(), nullptr) << "nothing was saved";
    choose("File/Close", "closed.ossa", QMessageBox::Save);
    EXPECT_EQ(project(), nullptr);
    EXPECT_TRUE(QFile::exists(path("closed.ossa")));
}

TEST_F(ChosenFiles, aScriptRunsOnlyWhenOneIsChosen)
{
    writeFile(path("name.py"), "import ossa\nossa.graph().createNode('Filter/Blur', 'Scripted')\n");
    const OssScriptEngine *engine = OssScriptEngine::instance();
    expectAsked(choose("Script/Run File...", ""), 1, 0);
    EXPECT_FALSE(engine->isRunning());
    choose("Script/Run File...", "name.py");
    EXPECT_TRUE(QTest::qWaitFor([engine] { return !engine->isRunning(); }, 30000));
    EXPECT_NE(m_network->node(text("Scripted")), nullptr);
}

TEST_F(ChosenFiles, importsPutInWhatIsChosenAndSayWhatIsDamaged)
{
    const ExpectedLog unfocused("current active widget", ExpectedLog::Possible);
    ASSERT_TRUE(OssShaderNetworkIO::saveNodesToXmlFile({add("Filter/Blur")}, path("blur.ong")));
    writeFile(path("broken.ong"), "no nodes");
    const QByteArray before = project()->stateHash();
    const std::tuple<const char *, const char *, int, int> cases[] = {
        {"Import Nodes", "", 0, 0},
        {"Import Nodes", "broken.ong", 1, 0},
        {"Import Nodes", "blur.ong", 0, 1},
        {"Import Material", "", 0, 0},
        {"Import Material", "broken.ong", 1, 0},
        {"Import Custom Procedural", "broken.ong", 1, 0},
        {"Import Custom Procedural", "", 0, 0},
    };
    for (const auto &[command, file, boxes, more] : cases) {
        SCOPED_TRACE(std::string(command) + " " + file);
        history()->clear();
        const int count = nodeCount();
        expectAsked(choose(std::string("NodeGraph/") + command, file, QMessageBox::Ok), 1, boxes);
        EXPECT_EQ(nodeCount(), count + more);
        EXPECT_EQ(history()->count(), more);
        while (history()->canUndo())
            history()->undo();
        EXPECT_EQ(project()->stateHash(), before);
    }
}

TEST_F(ChosenFiles, thePictureOfAGraphIsWrittenOrItIsSaidWhyNot)
{
    change();
    ASSERT_TRUE(OssProjectManager::instance()->saveProjectAs(path("graph.ossa")));
    for (const char *name : {"graph.svg", "nowhere/graph.png"}) {
        const QString file = path(name);
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const int exitCode = runGraphCommand(path("graph.ossa"), file);
        std::fflush(stdout);
        const std::string told = testing::internal::GetCapturedStdout();
        const std::string errors = testing::internal::GetCapturedStderr();
        const bool isWritten = text(name) == text("graph.svg");
        EXPECT_EQ(exitCode, isWritten ? ExitCode::Success : ExitCode::Failure) << name;
        EXPECT_EQ(told, isWritten ? file.toStdString() + "\n" : std::string());
        EXPECT_EQ(errors.empty(), isWritten) << errors;
        EXPECT_EQ(QFile::exists(file), isWritten);
    }
}

} // namespace
