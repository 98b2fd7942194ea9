#include "OssModel/Project/OssProjectFile.h"
#include "support/ModelFixture.h"
#include "support/SystemCallFaults.h"

#include <sys/wait.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <array>
#include <cerrno>
#include <csignal>

#include <unistd.h>

namespace {

/// A project that is saved with two generations, then edited: "old" on disk, "now" in memory.
class SavingTest : public ModelFixture
{
protected:
    void SetUp() override
    {
        ModelFixture::SetUp();
        for (int i = 0; i < 40; ++i)
            add("Filter/Blur");
        saveAs(m_path);
        add("Layer/Merge", "Second");
        save();
        m_old = read(m_document);
    }

    static void saveAs(const QString &path)
    {
        const OssResult saved = OssProjectManager::instance()->saveProjectAs(path);
        ASSERT_TRUE(saved) << qPrintable(saved.error());
    }

    static void save()
    {
        const OssResult saved = OssProjectManager::instance()->saveProject();
        ASSERT_TRUE(saved) << qPrintable(saved.error());
    }

    static QByteArray read(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    /// What saving now would write.
    QByteArray documentNow()
    {
        const QTemporaryDir folder;
        EXPECT_TRUE(OssProjectFile::write(m_project, folder.path()));
        return read(folder.filePath(QStringLiteral("project.xml")));
    }

    QStringList generations() const
    {
        return QDir(m_path + QStringLiteral("/history")).entryList(QDir::Files, QDir::Name);
    }

    QList<QByteArray> generationTexts() const
    {
        QList<QByteArray> texts;
        const QStringList names = generations();
        for (const QString &name : names)
            texts.append(read(m_path + QStringLiteral("/history/") + name));
        return texts;
    }

    QStringList filesBesideTheDocument() const
    {
        return QDir(m_path).entryList(QDir::Files | QDir::Hidden);
    }

    /// Saves in a child process, which dies at its `number`th system call or is let run until it
    /// is killed from outside. Returns its process id.
    template <class Work>
    static pid_t inChild(Work work)
    {
        const pid_t child = fork();
        if (child == 0) {
            work();
            ::_exit(0);
        }
        return child;
    }

    /// Whole documents only, and no generation that was there is gone.
    void expectWhole(const QList<QByteArray> &allowed, const QList<QByteArray> &kept,
                     const std::string &when)
    {
        const QByteArray document = read(m_document);
        EXPECT_TRUE(allowed.contains(document)) << when << ": " << document.size() << " bytes";
        const QList<QByteArray> texts = generationTexts();
        for (const QByteArray &text : kept)
            EXPECT_TRUE(texts.contains(text) || document == text)
                << when << ": " << qPrintable(generations().join(QLatin1Char(32)));
        OssResult result;
        const OssUndoManager::Pause pause;
        EXPECT_NE(OssProjectFile::read(m_path, &result), nullptr)
            << when << ": " << qPrintable(result.error());
    }

    QTemporaryDir m_folder;
    QString m_path = m_folder.filePath(QStringLiteral("P.ossa"));
    QString m_document = m_path + QStringLiteral("/project.xml");
    QByteArray m_old;
};

} // namespace

TEST_F(SavingTest, everyCallThatFailsLeavesTheOldOrTheNewDocument)
{
    const ExpectedLog expected("history/");
    for (const int error : {ENOSPC, EIO}) {
        add("Filter/Blur");
        int number = 1;
        for (bool happened = true; happened; ++number) {
            const QByteArray before = read(m_document);
            const QByteArray now = documentNow();
            QList<QByteArray> generations = generationTexts();
            if (generations.size() > 3)
                generations.removeAt(2); // the save before was cut off before it moved them on
            OssResult result;
            std::string when;
            {
                const SystemCallFaults fault(number, error);
                result = OssProjectManager::instance()->saveProject();
                happened = SystemCallFaults::happened();
                when = std::string(SystemCallFaults::failedCall()) + ", call "
                       + std::to_string(number) + ", " + strerror(error);
            }
            // Where only the folder could not be synced, the new document has taken its place.
            const bool replaced = read(m_document) != before;
            expectWhole({before, now}, replaced ? QList<QByteArray>{before} : generations, when);
            EXPECT_EQ(OssProjectManager::instance()->isModified(), !result.ok()) << when;
            EXPECT_TRUE(result || result.error().contains(m_path)) << when;
            EXPECT_TRUE(!result || read(m_document) == now) << when;
            if (result)
                add("Filter/Blur");
        }
        EXPECT_GT(number, 15);
    }
    add("Filter/Blur");
    save();
    EXPECT_EQ(filesBesideTheDocument(), QStringList(QStringLiteral("project.xml")));
    EXPECT_EQ(generations().size(), 3);
}

TEST_F(SavingTest, everyCallThatFailsOnTheFirstSaveLeavesNothingHalf)
{
    const QString path = m_folder.filePath(QStringLiteral("deep/Fresh.ossa"));
    add("Filter/Blur");
    bool happened = true;
    for (int number = 1; happened; ++number) {
        QDir(m_folder.filePath(QStringLiteral("deep"))).removeRecursively();
        OssResult result;
        {
            const SystemCallFaults fault(number, ENOSPC);
            result = OssProjectManager::instance()->saveProjectAs(path);
            happened = SystemCallFaults::happened();
        }
        const QByteArray document = read(path + QStringLiteral("/project.xml"));
        if (result) {
            EXPECT_TRUE(document.endsWith("</ossaProject>\n")) << number;
            saveAs(m_path);
            add("Filter/Blur");
            continue;
        }
        EXPECT_EQ(m_project->path(), m_path) << number;
        EXPECT_EQ(m_project->name(), QStringLiteral("P")) << number;
        EXPECT_TRUE(OssProjectManager::instance()->isModified()) << number;
        EXPECT_TRUE(result.error().contains(path)) << qPrintable(result.error());
        EXPECT_TRUE(document.isEmpty() || document.endsWith("</ossaProject>\n")) << number;
        // A folder with nothing in it would look like a project.
        EXPECT_TRUE(!document.isEmpty() || !QFileInfo::exists(path)
                    || SystemCallFaults::failedCall() != std::string("write"))
            << number << SystemCallFaults::failedCall();
    }
}

TEST_F(SavingTest, aProcessKilledAtAnyCallLeavesTheOldOrTheNewDocument)
{
    add("Filter/Blur");
    const QByteArray now = documentNow();
    const QList<QByteArray> generations = generationTexts();
    int number = 1;
    for (bool killed = true; killed; ++number) {
        const pid_t child = inChild([number] {
            const SystemCallFaults fault(number, SystemCallFaults::Kill);
            if (!OssProjectManager::instance()->saveProject())
                ::_exit(1);
        });
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        killed = WIFSIGNALED(status);
        EXPECT_TRUE(killed || WEXITSTATUS(status) == 0) << number;
        expectWhole({m_old, now}, generations + QList<QByteArray>{m_old},
                    "killed at call " + std::to_string(number));
    }
    EXPECT_GT(number, 15);
    EXPECT_EQ(filesBesideTheDocument(), QStringList(QStringLiteral("project.xml")))
        << "what killed processes leave is swept away";
}

TEST_F(SavingTest, aProcessKilledAtAnyMomentLeavesTheOldOrTheNewDocument)
{
    const QByteArray one = documentNow();
    add("Layer/Merge", "Third");
    const QByteArray two = documentNow();
    QRandomGenerator random(std::random_device{}());
    int changes = 0;
    for (int round = 0; round < 200; ++round) {
        const QByteArray before = read(m_document);
        std::array<int, 2> told{};
        ASSERT_EQ(pipe(told.data()), 0);
        const pid_t child = inChild([&told] {
            OssUndoManager *undo = OssUndoManager::instance();
            while (OssProjectManager::instance()->saveProject() && ::write(told[1], "s", 1) == 1)
                undo->canRedo() ? undo->redo() : undo->undo();
            ::_exit(1);
        });
        ::close(told[1]);
        // Half of them are counted from a save, for on a busy machine the first one comes late.
        char saved = 0;
        if (round % 2 == 0)
            ASSERT_GE(::read(told[0], &saved, 1), 0);
        ::usleep(useconds_t(random.bounded(50000)));
        ::kill(child, SIGKILL);
        ::close(told[0]);
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status)) << "a save failed, round " << round;
        expectWhole({one, two}, {}, "round " + std::to_string(round));
        const QList<QByteArray> texts = generationTexts();
        for (const QByteArray &text : texts)
            EXPECT_TRUE(text.endsWith("</ossaProject>\n")) << round;
        changes += read(m_document) != before ? 1 : 0;
        if (HasFailure())
            break;
    }
    EXPECT_GT(changes, 20) << "hardly a save was reached";
}

TEST_F(SavingTest, savingWhatIsSavedCostsNoGeneration)
{
    add("Filter/Blur");
    save();
    const QList<QByteArray> before = generationTexts();
    ASSERT_EQ(before.size(), 2);
    save();
    EXPECT_EQ(generationTexts(), before);
}

TEST_F(SavingTest, aGenerationThatAnInterruptedMoveLeftOutCostsNoOther)
{
    add("Filter/Blur");
    save();
    const QString history = m_path + QStringLiteral("/history/");
    ASSERT_TRUE(QFile::rename(history + QStringLiteral("project.2.xml"),
                              history + QStringLiteral("project.3.xml")));
    const QByteArray oldest = read(history + QStringLiteral("project.3.xml"));
    add("Filter/Blur");
    save();
    EXPECT_EQ(generations().size(), 3);
    EXPECT_EQ(read(history + QStringLiteral("project.3.xml")), oldest);
}

TEST_F(SavingTest, savingOverAnotherProjectKeepsItsDocument)
{
    const ExpectedLog expected("Other.ossa/history");
    const QString other = m_folder.filePath(QStringLiteral("Other.ossa"));
    add("Filter/Blur");
    saveAs(other);
    const QString document = other + QStringLiteral("/project.xml");
    const QDir history(other + QStringLiteral("/history"));
    const QByteArray replaced = read(document);
    add("Layer/Merge");
    saveAs(m_path);
    bool happened = true;
    for (int number = 1; happened; ++number) {
        const SystemCallFaults fault(number, ENOSPC);
        const OssResult result = OssProjectManager::instance()->saveProjectAs(other);
        happened = SystemCallFaults::happened();
        const QString kept = history.exists(QStringLiteral("project.1.xml"))
                                 ? QStringLiteral("project.1.xml")
                                 : QStringLiteral("replaced.xml");
        EXPECT_TRUE(read(document) == replaced || read(history.filePath(kept)) == replaced)
            << number << SystemCallFaults::failedCall();
        EXPECT_EQ(m_project->path(), result ? other : m_path);
        if (!result)
            continue;
        saveAs(m_path);
        QDir(history).removeRecursively();
        QFile file(document);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(replaced) == replaced.size());
    }
}
