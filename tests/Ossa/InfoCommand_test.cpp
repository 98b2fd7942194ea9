#include "Ossa/Headless/InfoCommand.h"

#include "Ossa/Headless/CommandLine.h"
#include "Ossa/Pictures/GraphCommand.h"
#include "OssModel/Project/OssAutosave.h"
#include "OssModel/Project/OssProjectFile.h"
#include "ProgramRun.h"
#include "support/ModelFixture.h"

#include <QFile>
#include <QSettings>
#include <QTemporaryDir>

// What the commands without a window say; they run here without the program around them.

namespace {

class InfoCommand : public ModelFixture
{
protected:
    void SetUp() override
    {
        ModelFixture::SetUp();
        OssSnBaseNode *color = add("Procedural/Color", "Paint");
        OssSnBaseNode *blur = add("Filter/Blur", "Soft");
        ASSERT_TRUE(wire(color, blur));
        ASSERT_NE(m_network->groupNodes({add("Filter/Sharpen", "Crisp")}), nullptr);
        ASSERT_TRUE(OssProjectManager::instance()->saveProjectAs(path()));
    }

    QString path() const { return m_folder.filePath(QStringLiteral("wall.ossa")); }

    void replace(const char *before, const char *after) const
    {
        QFile file(OssProjectFile::documentPath(path()));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        QByteArray text = file.readAll();
        ASSERT_TRUE(text.contains(before));
        text.replace(before, after);
        file.close();
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }

    std::string told(bool withState, int exitCode = ExitCode::Success) const
    {
        testing::internal::CaptureStdout();
        EXPECT_EQ(runInfoCommand(path(), withState), exitCode);
        std::fflush(stdout);
        return testing::internal::GetCapturedStdout();
    }

    static bool has(const std::string &text, const char *part)
    {
        return text.find(part) != std::string::npos;
    }

    QTemporaryDir m_folder;
};

TEST_F(InfoCommand, countsWhatIsInTheProject)
{
    const std::string text = told(false);
    EXPECT_EQ(text.find("wall\n" + path().toStdString() + "\n"), 0U) << text;
    EXPECT_TRUE(has(text, " 1 groups\n")) << text;
    EXPECT_TRUE(has(text, "     1  Filter/Blur\n")) << text;
    for (const char *absent : {"state ", "not known", "newer version"})
        EXPECT_FALSE(has(text, absent)) << text;
    EXPECT_TRUE(has(told(true), "\nstate "));
}

TEST_F(InfoCommand, saysWhatIsUnusual)
{
    const ExpectedLog unknown("has the unknown type 'Future/Blur'");
    replace("\"Filter/Blur\"", "\"Future/Blur\"");
    EXPECT_TRUE(has(told(false), "  1 nodes of types that are not known here\n"));
}

TEST_F(InfoCommand, projectsOfNewerVersionsAreSaidToBe)
{
    const ExpectedLog newer("newer", ExpectedLog::Possible);
    replace("<ossaProject major=\"1\"", "<ossaProject major=\"9\"");
    EXPECT_TRUE(has(told(false), "written by a newer version\n"));
}

TEST_F(InfoCommand, whatCannotBeDoneIsAFailureInOneLine)
{
    testing::internal::CaptureStderr();
    EXPECT_EQ(runInfoCommand(QStringLiteral("/nowhere/wall.ossa"), false), ExitCode::Failure);
    EXPECT_EQ(runGraphCommand(QStringLiteral("/nowhere/wall.ossa"), path()), ExitCode::Failure);
    EXPECT_EQ(runGraphCommand(path(), m_folder.filePath(QStringLiteral("wall.png"))),
              ExitCode::Failure);
    const std::string errors = testing::internal::GetCapturedStderr();
    EXPECT_EQ(std::count(errors.begin(), errors.end(), '\n'), 3) << errors;
    EXPECT_TRUE(has(errors, "/nowhere/wall.ossa")) << errors;
    EXPECT_TRUE(has(errors, "plug-in is not loaded")) << errors;
}

TEST_F(InfoCommand, theProgramTellsOfUnsavedWorkAndLeavesPreferencesAlone)
{
    const QTemporaryDir settings;
    const auto run = [&] {
        return ProgramRun::of({QStringLiteral("info"), path()}, {}, settings.path());
    };
    EXPECT_TRUE(run().err.isEmpty());
    {
        OssAutosave autosave(settings.filePath(QStringLiteral("recovery")));
        add("Filter/Blur", "Unsaved");
        autosave.takeCopy();
        autosave.waitForDisk();
    }
    const ProgramRun told = run();
    EXPECT_EQ(told.exitCode, ExitCode::Success);
    EXPECT_TRUE(told.err.contains("wall")) << told.err.constData();
    const QSettings stored(settings.filePath(QStringLiteral("ossa.ini")), QSettings::IniFormat);
    EXPECT_EQ(stored.allKeys(), QStringList()) << "preferences are the window's to save";
}

} // namespace
