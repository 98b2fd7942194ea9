#include "Ossa/Common/ApplicationPreferences.h"
#include "Ossa/Dialogs/RecoveryDialog.h"
#include "Ossa/Window/MainWindow.h"
#include "OssCore/Documents/OssAtomicFile.h"
#include "OssCore/Program/OssDebug.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssInterface/Palettes/OssPaletteManager.h"
#include "OssInterface/Popups/OssApplication.h"
#include "OssModel/Project/OssAutosave.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectFile.h"
#include "OssModel/Project/OssProjectManager.h"
#include "support/ModelFixture.h"
#include "support/SystemCallFaults.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>

#include <cerrno>

namespace {

OssProjectManager *projects()
{
    return OssProjectManager::instance();
}

QStringList copies()
{
    return QDir(OssRecovery::standardFolder()).entryList({QStringLiteral("*.ossa")}, QDir::Dirs);
}

void change()
{
    OssUndoManager::instance()->record(
        QStringLiteral("Edit"), [] {}, [] {});
}

template <class Dialog>
void whenOpen(const std::function<void(Dialog *)> &act)
{
    QTimer::singleShot(0, [act] {
        auto *dialog = qobject_cast<Dialog *>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        act(dialog);
    });
}

void press(QWidget *dialog, const char *text)
{
    const auto buttons = dialog->findChildren<QPushButton *>();
    for (QPushButton *button : buttons) {
        if (button->text().remove(QLatin1Char('&')) == QLatin1String(text)) {
            button->click();
            return;
        }
    }
    FAIL() << "no button " << text;
}

/// A project "wall" on disk, and a copy of it with one more object that a dead session left.
class WorkRecoveryTest : public testing::Test
{
protected:
    WorkRecoveryTest()
    {
        needNodeTypes();
        QDir(OssRecovery::standardFolder()).removeRecursively();
        OssProject *project = projects()->newProject(QStringLiteral("wall"));
        EXPECT_TRUE(projects()->saveProjectAs(m_path));
        project->addEntity(QStringLiteral("Second"));
        m_hash = project->stateHash();
        OssRecovery::Session dead(OssRecovery::standardFolder());
        OssProjectSnapshot snapshot(
            project, OssRecovery::describe(*project, QDateTime::currentDateTimeUtc()));
        EXPECT_TRUE(snapshot.advance(-1));
        EXPECT_TRUE(dead.write(OssProjectSnapshot::joined(snapshot.takeParts())));
        projects()->closeProject();
        window = std::make_unique<MainWindow>();
        window->show();
    }

    ~WorkRecoveryTest() override
    {
        projects()->closeProject();
        window.reset();
        OssPaletteManager::instance()->deletePalettes();
        QDir(OssRecovery::standardFolder()).removeRecursively();
    }

    OssAutosave *autosave() const { return window->findChild<OssAutosave *>(); }

    void copyNow() const
    {
        autosave()->takeCopy();
        autosave()->waitForDisk();
    }

    static int linesWith(const char *text)
    {
        const auto lines = OssDebugLog::instance()->lines();
        return int(std::count_if(lines.cbegin(), lines.cend(), [&](const OssDebugLog::Line &line) {
            return line.text.contains(QLatin1String(text));
        }));
    }

    QTemporaryDir m_folder;
    QString m_path = m_folder.filePath(QStringLiteral("wall.ossa"));
    QByteArray m_hash;
    std::unique_ptr<MainWindow> window;
};

} // namespace

TEST_F(WorkRecoveryTest, restoringOpensTheProjectModifiedAndSavingGoesToItsPlace)
{
    whenOpen<RecoveryDialog>([](RecoveryDialog *dialog) { press(dialog, "Restore"); });
    window->openAtStart(QString());
    EXPECT_TRUE(window->isWindowModified());
    EXPECT_EQ(projects()->currentProject()->path(), m_path);
    OssActionTreeManager::instance()->findAction(QStringLiteral("/Ossa/File/Save"))->trigger();
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
    const std::vector<std::function<void(RecoveryDialog *)>> ways = {
        [](RecoveryDialog *dialog) { press(dialog, "Keep for Later"); },
        [](RecoveryDialog *dialog) { dialog->close(); },
    };
    for (const auto &way : ways) {
        whenOpen<RecoveryDialog>(way);
        window->openAtStart(m_path);
        EXPECT_EQ(projects()->currentProject()->path(), m_path);
        EXPECT_FALSE(window->isWindowModified());
        EXPECT_EQ(copies().size(), 1);
    }
    whenOpen<RecoveryDialog>([](RecoveryDialog *dialog) { press(dialog, "Restore"); });
    OssActionTreeManager::instance()
        ->findAction(QStringLiteral("/Ossa/File/Recover Unsaved Work..."))
        ->trigger();
    EXPECT_EQ(projects()->currentProject()->stateHash(), m_hash);
    EXPECT_TRUE(window->isWindowModified());
}

TEST_F(WorkRecoveryTest, discardingAsksFirst)
{
    const auto answer = [](RecoveryDialog *dialog, QMessageBox::StandardButton button) {
        whenOpen<QMessageBox>([button](QMessageBox *box) { box->button(button)->click(); });
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
    EXPECT_NE(projects()->currentProject(), nullptr);
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
    const QString place = OssRecovery::standardFolder() + QLatin1Char('/') + copies().first();
    QFile document(OssProjectFile::documentPath(place));
    ASSERT_TRUE(document.resize(document.size() - 20));
    QString text;
    whenOpen<QMessageBox>([&text](QMessageBox *box) {
        text = box->text();
        box->close();
    });
    window->openAtStart(m_path);
    EXPECT_TRUE(text.contains(document.fileName()) && text.contains(QStringLiteral("damaged")))
        << qPrintable(text);
    EXPECT_TRUE(copies().isEmpty());
    EXPECT_EQ(QDir(OssRecovery::standardFolder() + QStringLiteral("/damaged"))
                  .entryList(QDir::Dirs | QDir::NoDotAndDotDot)
                  .size(),
              1);
}

TEST_F(WorkRecoveryTest, restoringLeavesOpenWorkAloneUnlessTheUserLetsItGo)
{
    QAction *recover = OssActionTreeManager::instance()->findAction(
        QStringLiteral("/Ossa/File/Recover Unsaved Work..."));
    const QPointer<OssProject> open = projects()->newProject(QStringLiteral("Open"));
    change();
    whenOpen<RecoveryDialog>([](RecoveryDialog *dialog) {
        whenOpen<QMessageBox>([](QMessageBox *box) { box->button(QMessageBox::Cancel)->click(); });
        press(dialog, "Restore");
    });
    recover->trigger();
    EXPECT_EQ(projects()->currentProject(), open);
    EXPECT_TRUE(projects()->isModified());
    EXPECT_EQ(copies().size(), 1);
    whenOpen<RecoveryDialog>([](RecoveryDialog *dialog) {
        whenOpen<QMessageBox>([](QMessageBox *box) { box->button(QMessageBox::Discard)->click(); });
        press(dialog, "Restore");
    });
    recover->trigger();
    ASSERT_NE(projects()->currentProject(), nullptr);
    EXPECT_EQ(projects()->currentProject()->stateHash(), m_hash);
    QString text;
    whenOpen<QMessageBox>([&text](QMessageBox *box) {
        text = box->text();
        box->close();
    });
    recover->trigger();
    EXPECT_TRUE(text.contains(QStringLiteral("No session"))) << "there is no other copy";
}

TEST_F(WorkRecoveryTest, aCopyThatVanishesWhileItIsOfferedIsTold)
{
    QString text;
    whenOpen<RecoveryDialog>([&text](RecoveryDialog *dialog) {
        const QString place = OssRecovery::standardFolder() + QLatin1Char('/') + copies().first();
        QFile::remove(OssProjectFile::documentPath(place));
        whenOpen<QMessageBox>([&text](QMessageBox *box) {
            text = box->text();
            box->close();
        });
        press(dialog, "Restore");
    });
    window->openAtStart(m_path);
    EXPECT_TRUE(text.contains(QStringLiteral("cannot be opened"))) << qPrintable(text);
    EXPECT_EQ(projects()->currentProject()->path(), m_path);
    EXPECT_FALSE(window->isWindowModified());
}

TEST_F(WorkRecoveryTest, theListTellsWhenWorkWasCopiedAndSaved)
{
    const QDateTime noon(QDate::currentDate(), QTime(12, 0));
    OssRecovery::Entry unsaved;
    unsaved.name = QStringLiteral("unsaved");
    unsaved.copiedAt = noon.toUTC();
    OssRecovery::Entry gone = unsaved;
    gone.path = m_folder.filePath(QStringLiteral("gone.ossa"));
    gone.copiedAt = noon.addDays(-3).toUTC();
    OssRecovery::Entry saved = gone;
    saved.path = m_path;
    const RecoveryDialog dialog({unsaved, gone, saved});
    const auto *list = dialog.findChild<QTreeWidget *>();
    const auto text = [list](int row, int column) {
        return list->topLevelItem(row)->text(column);
    };
    EXPECT_TRUE(text(0, 1).startsWith(QStringLiteral("Today, ")));
    EXPECT_FALSE(text(1, 1).startsWith(QStringLiteral("Today, ")));
    EXPECT_EQ(text(0, 2), QStringLiteral("Never saved"));
    EXPECT_EQ(text(1, 2), QStringLiteral("Not there any more"));
    const QFileInfo document(OssProjectFile::documentPath(m_path));
    EXPECT_EQ(text(2, 2), RecoveryDialog::timeText(document.lastModified()));
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
    window = std::make_unique<MainWindow>();
    window->show();
    change();
    copyNow();
    EXPECT_EQ(copies().size(), 2);
    whenOpen<QMessageBox>([](QMessageBox *box) { box->button(QMessageBox::Discard)->click(); });
    EXPECT_TRUE(window->close());
    autosave()->waitForDisk();
    EXPECT_EQ(copies().size(), 1);
}

TEST_F(WorkRecoveryTest, aSaveThatFailsIsToldOnceAndKeepsTheChanges)
{
    const ExpectedLog expected[] = {ExpectedLog("\"wall\" was not saved"),
                                    ExpectedLog("wall.ossa/")};
    OssApplication::setPopupsAllowed(false);
    window->openAtStart(m_path);
    QAction *save = OssActionTreeManager::instance()->findAction(QStringLiteral("/Ossa/File/Save"));
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
        projects()->currentProject()->setUserAttribute(
            OssCustomAttribute(QStringLiteral("Round"), number), false);
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

TEST_F(WorkRecoveryTest, theIntervalIsTheUsers)
{
    auto *preferences = ApplicationPreferences::instance();
    EXPECT_EQ(preferences->autosaveSeconds(), 120);
    preferences->setAutosaveInterval(QStringLiteral("5 minutes"));
    EXPECT_EQ(preferences->autosaveSeconds(), 300);
    preferences->setAutosaveInterval(QStringLiteral("never"));
    EXPECT_EQ(preferences->autosaveSeconds(), 300);
    preferences->setAutosaveInterval(QStringLiteral("Off"));
    EXPECT_EQ(preferences->autosaveSeconds(), 0);
    preferences->resetAutosaveInterval();
    EXPECT_EQ(preferences->autosaveSeconds(), 120);
}
