#include "Ossa/Dialogs/RecoveryDialog.h"
#include "Ossa/Start/EndSignals.h"
#include "OssCore/Program/OssDebug.h"
#include "OssInterface/Popups/OssApplication.h"
#include "OssModel/Project/OssAutosave.h"
#include "OssModel/Project/OssProjectFile.h"
#include "support/DialogAnswers.h"
#include "support/InterfaceUser.h"
#include "support/SystemCallFaults.h"
#include "WindowFixture.h"

#include <QDir>
#include <QPointer>
#include <QSignalSpy>
#include <QTreeWidget>

#include <cerrno>
#include <csignal>

namespace {

QStringList copies()
{
    return QDir(OssRecovery::standardFolder()).entryList({text("*.ossa")}, QDir::Dirs);
}

/// Presses that button of the next dialog that offers copies.
void choose(const char *button)
{
    whenOpen<RecoveryDialog>([button](RecoveryDialog *dialog) { press(dialog, button); });
}

/// The document of the first copy.
QString copiedDocument()
{
    return OssProjectFile::documentPath(OssRecovery::standardFolder() + QLatin1Char('/')
                                        + copies().value(0));
}

/// A project "wall" on disk, and a copy of it with one more object that a dead session left.
class WorkRecoveryTest : public WindowFixture
{
protected:
    WorkRecoveryTest()
    {
        QDir(OssRecovery::standardFolder()).removeRecursively();
        OssProject *project = projects()->newProject(text("wall"));
        EXPECT_TRUE(projects()->saveProjectAs(m_path));
        project->addEntity(text("Second"));
        m_hash = project->stateHash();
        OssRecovery::Session dead(OssRecovery::standardFolder());
        OssProjectSnapshot snapshot(
            project, OssRecovery::describe(*project, QDateTime::currentDateTimeUtc()));
        EXPECT_TRUE(snapshot.advance(-1));
        EXPECT_TRUE(dead.write(OssProjectSnapshot::joined(snapshot.takeParts())));
        projects()->closeProject();
        open();
    }

    ~WorkRecoveryTest() override
    {
        projects()->closeProject();
        window.reset();
        QDir(OssRecovery::standardFolder()).removeRecursively();
    }

    OssAutosave *autosave() const { return window->findChild<OssAutosave *>(); }

    void copyNow() const
    {
        autosave()->takeCopy();
        autosave()->waitForDisk();
    }

    static int linesWith(const char *part)
    {
        const auto lines = OssDebugLog::instance()->lines();
        return int(std::count_if(lines.cbegin(), lines.cend(), [&](const OssDebugLog::Line &line) {
            return line.text.contains(text(part));
        }));
    }

    QString m_path = path("wall.ossa");
    QByteArray m_hash;
};

} // namespace

TEST_F(WorkRecoveryTest, restoringOpensTheProjectModifiedAndSavingGoesToItsPlace)
{
    choose("Restore");
    window->openAtStart(QString());
    EXPECT_TRUE(window->isWindowModified());
    EXPECT_EQ(projects()->currentProject()->path(), m_path);
    command("File/Save")->trigger();
    autosave()->waitForDisk();
    EXPECT_FALSE(window->isWindowModified());
    EXPECT_TRUE(copies().isEmpty());
    ASSERT_TRUE(projects()->openProject(m_path));
    EXPECT_EQ(projects()->currentProject()->stateHash(), m_hash);
}

TEST_F(WorkRecoveryTest, theQuestionOpensNothingUntilTheWindowDoes)
{
    const auto before = projects()->currentProject();
    whenOpen<RecoveryDialog>([&](RecoveryDialog *dialog) {
        EXPECT_EQ(projects()->currentProject(), before);
        press(dialog, "Restore");
    });
    window->askForUnsavedWork();
    EXPECT_EQ(projects()->currentProject(), before);
    window->openAtStart(QString());
    EXPECT_EQ(projects()->currentProject()->path(), m_path);
    EXPECT_TRUE(window->isWindowModified());
}

TEST_F(WorkRecoveryTest, keepingForLaterOpensWhatWasAskedForAndOffersAgain)
{
    for (const bool byButton : {true, false}) {
        if (byButton)
            choose("Keep for Later");
        else
            whenOpen<RecoveryDialog>([](RecoveryDialog *dialog) { dialog->close(); });
        window->openAtStart(m_path);
        EXPECT_EQ(projects()->currentProject()->path(), m_path);
        EXPECT_FALSE(window->isWindowModified());
        EXPECT_EQ(copies().size(), 1);
    }
    choose("Restore");
    command("File/Recover Unsaved Work...")->trigger();
    EXPECT_EQ(projects()->currentProject()->stateHash(), m_hash);
    EXPECT_TRUE(window->isWindowModified());
}

TEST_F(WorkRecoveryTest, discardingAsksFirst)
{
    const auto answer = [](RecoveryDialog *dialog, QMessageBox::StandardButton button) {
        answerWith(button);
        press(dialog, "Discard...");
    };
    whenOpen<RecoveryDialog>([&](RecoveryDialog *dialog) {
        answer(dialog, QMessageBox::Cancel);
        EXPECT_EQ(copies().size(), 1);
        answer(dialog, QMessageBox::Discard);
        EXPECT_TRUE(copies().isEmpty());
        EXPECT_FALSE(dialog->isVisible()) << "there is nothing left to decide";
    });
    window->openAtStart(QString());
    EXPECT_EQ(projects()->currentProject(), nullptr);
}

TEST_F(WorkRecoveryTest, withoutAUserItIsReportedAndLeftAlone)
{
    const ExpectedLog expected("\"wall\" was not saved");
    OssApplication::setPopupsAllowed(false);
    testing::internal::CaptureStderr();
    window->openAtStart(m_path);
    OssApplication::setPopupsAllowed(true);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("\"wall\" was not saved"),
              std::string::npos);
    EXPECT_FALSE(window->isWindowModified());
    EXPECT_EQ(copies().size(), 1);
}

TEST_F(WorkRecoveryTest, aDamagedCopyIsToldAndPutAside)
{
    QFile document(copiedDocument());
    ASSERT_TRUE(document.resize(document.size() - 20));
    QString told;
    answerWith(QMessageBox::Ok, &told);
    window->openAtStart(m_path);
    EXPECT_TRUE(told.contains(document.fileName()) && told.contains(text("damaged")))
        << qPrintable(told);
    EXPECT_TRUE(copies().isEmpty());
    EXPECT_EQ(QDir(OssRecovery::standardFolder() + text("/damaged"))
                  .entryList(QDir::Dirs | QDir::NoDotAndDotDot)
                  .size(),
              1);
}

TEST_F(WorkRecoveryTest, restoringLeavesOpenWorkAloneUnlessTheUserLetsItGo)
{
    QAction *recover = command("File/Recover Unsaved Work...");
    const QPointer<OssProject> open = projects()->newProject(text("Open"));
    change();
    whenOpen<RecoveryDialog>([](RecoveryDialog *dialog) {
        answerWith(QMessageBox::Cancel);
        press(dialog, "Restore");
    });
    recover->trigger();
    EXPECT_EQ(projects()->currentProject(), open);
    EXPECT_TRUE(projects()->isModified());
    EXPECT_EQ(copies().size(), 1);
    whenOpen<RecoveryDialog>([](RecoveryDialog *dialog) {
        answerWith(QMessageBox::Discard);
        press(dialog, "Restore");
    });
    recover->trigger();
    ASSERT_NE(projects()->currentProject(), nullptr);
    EXPECT_EQ(projects()->currentProject()->stateHash(), m_hash);
    QString told;
    answerWith(QMessageBox::Ok, &told);
    recover->trigger();
    EXPECT_TRUE(told.contains(text("No session"))) << "there is no other copy";
}

TEST_F(WorkRecoveryTest, aCopyThatVanishesWhileItIsOfferedIsTold)
{
    QString told;
    whenOpen<RecoveryDialog>([&told](RecoveryDialog *dialog) {
        QFile::remove(copiedDocument());
        answerWith(QMessageBox::Ok, &told);
        press(dialog, "Restore");
    });
    window->openAtStart(m_path);
    EXPECT_TRUE(told.contains(text("cannot be opened"))) << qPrintable(told);
    EXPECT_EQ(projects()->currentProject()->path(), m_path);
    EXPECT_FALSE(window->isWindowModified());
}

TEST_F(WorkRecoveryTest, theListTellsWhenWorkWasCopiedAndSaved)
{
    const QDateTime noon(QDate::currentDate(), QTime(12, 0));
    OssRecovery::Entry unsaved;
    unsaved.name = text("unsaved");
    unsaved.copiedAt = noon.toUTC();
    OssRecovery::Entry gone = unsaved;
    gone.path = path("gone.ossa");
    gone.copiedAt = noon.addDays(-3).toUTC();
    OssRecovery::Entry saved = gone;
    saved.path = m_path;
    const RecoveryDialog dialog({unsaved, gone, saved});
    const auto *list = dialog.findChild<QTreeWidget *>();
    const auto shown = [list](int row, int column) {
        return list->topLevelItem(row)->text(column);
    };
    EXPECT_TRUE(shown(0, 1).startsWith(text("Today, ")));
    EXPECT_FALSE(shown(1, 1).startsWith(text("Today, ")));
    EXPECT_EQ(shown(0, 2), text("Never saved"));
    EXPECT_EQ(shown(1, 2), text("Not there any more"));
    const QFileInfo document(OssProjectFile::documentPath(m_path));
    EXPECT_EQ(shown(2, 2), RecoveryDialog::timeText(document.lastModified()));
}

TEST_F(WorkRecoveryTest, onlyTheUsersWordEndsACopy)
{
    QDir(OssRecovery::standardFolder()).removeRecursively();
    window->openAtStart(m_path);
    change();
    copyNow();
    EXPECT_EQ(copies().size(), 1);
    window.reset();
    EXPECT_EQ(copies().size(), 1) << "nobody was asked";
    open();
    change();
    copyNow();
    EXPECT_EQ(copies().size(), 2);
    answerWith(QMessageBox::Discard);
    EXPECT_TRUE(window->close());
    autosave()->waitForDisk();
    EXPECT_EQ(copies().size(), 1);
}

TEST_F(WorkRecoveryTest, aSignalToEndIsToldOnceAndTheWorkIsKept)
{
    QDir(OssRecovery::standardFolder()).removeRecursively();
    ASSERT_TRUE(projects()->openProject(m_path));
    change();
    for (const int number : {SIGTERM, SIGHUP}) {
        const EndSignals signalled;
        QSignalSpy told(&signalled, &EndSignals::endAsked);
        std::raise(number);
        EXPECT_TRUE(told.isEmpty()) << "not before the event loop";
        EXPECT_TRUE(told.wait());
        EXPECT_EQ(signalled.received(), number);
    }
    window->keepWork();
    EXPECT_EQ(copies().size(), 1);
    window.reset();
    EXPECT_EQ(copies().size(), 1) << "nobody was asked";
}

TEST_F(WorkRecoveryTest, aSignalBeforeTheLayoutIsRestoredLeavesThatOfTheLastSession)
{
    const QString key = text("MainWindow/geometry");
    OssSettings().setValue(key, text("of the last session"));
    window->hide(); // as before it is opened
    window->keepWork();
    EXPECT_EQ(OssSettings().value(key).toString(), text("of the last session"));
    window->show();
    window->keepWork();
    EXPECT_NE(OssSettings().value(key).toString(), text("of the last session"));
}

TEST_F(WorkRecoveryTest, aSaveThatFailsIsToldOnceAndKeepsTheChanges)
{
    const ExpectedLog expected[] = {ExpectedLog("\"wall\" was not saved"),
                                    ExpectedLog("wall.ossa/")};
    OssApplication::setPopupsAllowed(false);
    window->openAtStart(m_path);
    QAction *save = command("File/Save");
    int failures = 0;
    bool reached = true;
    std::unique_ptr<SystemCallFaults> fault;
    // What is written after the document is saved is not looked at here.
    const auto connection = QObject::connect(projects(), &OssProjectManager::projectSaved, [&] {
        reached = SystemCallFaults::happened();
        fault.reset();
    });
    int number = 0;
    while (reached) {
        ++number;
        change();
        projects()->currentProject()->setUserAttribute(OssCustomAttribute(text("Round"), number),
                                                       false);
        OssDebugLog::instance()->clear();
        fault = std::make_unique<SystemCallFaults>(number, ENOSPC);
        save->trigger();
        fault.reset();
        EXPECT_EQ(linesWith("Save Project: "), projects()->isModified() ? 1 : 0) << number;
        failures += projects()->isModified() ? 1 : 0;
    }
    QObject::disconnect(connection);
    OssApplication::setPopupsAllowed(true);
    EXPECT_GT(failures, 3);
}
