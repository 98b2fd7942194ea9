#include "OssCore/Documents/OssAtomicFile.h"
#include "OssModel/Project/OssAutosave.h"
#include "OssModel/Project/OssProjectFile.h"
#include "OssModel/Project/OssRecovery.h"
#include "support/ModelFixture.h"
#include "support/SystemCallFaults.h"

#include <sys/wait.h>

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <cerrno>
#include <csignal>

#include <unistd.h>

namespace {

using Situation = OssAutosave::Situation;

class RecoveryTest : public ModelFixture
{
protected:
    void SetUp() override
    {
        ModelFixture::SetUp();
        m_autosave = std::make_unique<OssAutosave>(m_recovery);
        m_autosave->setInterval(120);
    }

    /// A group with nodes inside, ids, texts that need escaping.
    void edit()
    {
        OssSnBaseNode *color = add("Procedural/Color", "Färbung <1> & \"2\"");
        auto *group = qobject_cast<OssSnGroupNode *>(add("Misc/Group"));
        OssSnBaseNode *in = group->createInput(QStringLiteral("In"), OssSnDataKind::Color);
        OssSnBaseNode *blur = group->groupNetwork()->createNode(QStringLiteral("Filter/Blur"));
        wire(in, blur);
        wire(color, group, "In");
        EXPECT_FALSE(blur->uuidString().isEmpty());
    }

    void copy()
    {
        m_autosave->takeCopy();
        m_autosave->waitForDisk();
    }

    QVector<OssRecovery::Entry> entries() const { return OssRecovery::entries(m_recovery); }

    QStringList copies() const
    {
        return QDir(m_recovery).entryList({QStringLiteral("*.ossa")}, QDir::Dirs);
    }

    /// The session ends as a crash would end it; this one goes on with the project as it was.
    void crash()
    {
        m_autosave.reset();
        OssProjectManager::instance()->newProject(QStringLiteral("Next"));
        m_autosave = std::make_unique<OssAutosave>(m_recovery);
    }

    OssProject *current() const { return OssProjectManager::instance()->currentProject(); }

    static void overwrite(const QString &path, const QByteArray &content)
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }

    QTemporaryDir m_folder;
    QString m_recovery = m_folder.filePath(QStringLiteral("recovery"));
    QString m_path = m_folder.filePath(QStringLiteral("wall.ossa"));
    std::unique_ptr<OssAutosave> m_autosave;
};

} // namespace

TEST(AutosaveDecision, copiesAreTakenInRestsAndNeverInGestures)
{
    Situation now{120000, 5000, 5000, 5000, false};
    EXPECT_EQ(OssAutosave::decide(now), OssAutosave::Wait) << "the user may go on at once";
    now.sinceLastEdit = OssAutosave::RestAfterEdit;
    EXPECT_EQ(OssAutosave::decide(now), OssAutosave::TakeInSteps);
    now.inGesture = true;
    EXPECT_EQ(OssAutosave::decide(now), OssAutosave::Wait);

    Situation busy{120000, 120000, 100, 100, false};
    EXPECT_EQ(OssAutosave::decide(busy), OssAutosave::Wait) << "the hands are not at rest";
    busy.sinceInput = OssAutosave::RestOfHands;
    EXPECT_EQ(OssAutosave::decide(busy), OssAutosave::TakeInSteps);
    busy = {120000, 240000, 100, 100, false};
    EXPECT_EQ(OssAutosave::decide(busy), OssAutosave::TakeAtOnce);
    busy.inGesture = true;
    EXPECT_EQ(OssAutosave::decide(busy), OssAutosave::Wait);
    EXPECT_EQ(OssAutosave::decide({0, 999999, 999999, 999999, false}), OssAutosave::Wait) << "off";
}

TEST_F(RecoveryTest, aSnapshotInStepsIsTheDocument)
{
    edit();
    OssProjectSnapshot snapshot(current(), {});
    int steps = 0;
    while (!snapshot.isDone()) {
        ASSERT_TRUE(snapshot.advance(0));
        ++steps;
    }
    EXPECT_GT(steps, 7) << "each node is a step, those inside groups too";
    const QByteArray text = OssProjectSnapshot::joined(snapshot.takeParts());
    const QString copy = m_folder.filePath(QStringLiteral("copy.ossa"));
    QDir().mkpath(copy);
    overwrite(OssProjectFile::documentPath(copy), text);
    const QByteArray hash = current()->stateHash();
    ASSERT_TRUE(OssProjectManager::instance()->openProject(copy));
    EXPECT_EQ(current()->stateHash(), hash);
}

TEST_F(RecoveryTest, aSnapshotOfWhatHasGoneFails)
{
    int failures = 0;
    for (int steps = 1; steps < 8; ++steps) {
        m_network = OssProjectManager::instance()
                        ->newProject(QStringLiteral("Test"))
                        ->shadingGroups()
                        .first()
                        ->network();
        edit();
        OssProjectSnapshot snapshot(current(), {});
        for (int i = 0; i < steps; ++i)
            ASSERT_TRUE(snapshot.advance(0));
        m_network->removeNodes({m_network->node(QStringLiteral("Group"))});
        OssUndoManager::instance()->clear();
        failures += snapshot.advance(-1) ? 0 : 1;
    }
    EXPECT_GT(failures, 0);
    EXPECT_LT(failures, 7) << "a node that was not yet met is not missed";
}

TEST_F(RecoveryTest, whatACrashLeavesIsRestoredAsTheModifiedProjectThatItWas)
{
    OssProjectManager *projects = OssProjectManager::instance();
    ASSERT_TRUE(projects->saveProjectAs(m_path));
    const QByteArray saved = current()->stateHash();
    edit();
    const QByteArray hash = current()->stateHash();
    copy();
    EXPECT_TRUE(entries().isEmpty()) << "the session lives";
    crash();
    QVector<OssRecovery::Entry> found = entries();
    ASSERT_EQ(found.size(), 1);
    EXPECT_EQ(found.first().name, QStringLiteral("wall"));
    EXPECT_EQ(found.first().path, m_path);
    EXPECT_LT(std::abs(found.first().copiedAt.secsTo(QDateTime::currentDateTimeUtc())), 60);
    EXPECT_TRUE(entries().isEmpty()) << "nobody else is offered what is being offered";

    ASSERT_TRUE(m_autosave->restore(found.first()));
    found.clear();
    EXPECT_EQ(current()->stateHash(), hash);
    EXPECT_EQ(current()->path(), m_path);
    EXPECT_TRUE(projects->isModified());
    EXPECT_NE(saved, hash);
    m_autosave->waitForDisk();
    EXPECT_EQ(copies().size(), 1) << "it is not saved yet";
    EXPECT_TRUE(entries().isEmpty());

    ASSERT_TRUE(projects->saveProject());
    m_autosave->waitForDisk();
    EXPECT_TRUE(copies().isEmpty());
    EXPECT_FALSE(projects->isModified());
    ASSERT_TRUE(projects->openProject(m_path));
    EXPECT_EQ(current()->stateHash(), hash);
}

TEST_F(RecoveryTest, aRestoredProjectSurvivesTheNextCrash)
{
    edit();
    const QByteArray hash = current()->stateHash();
    copy();
    for (int round = 0; round < 2; ++round) {
        crash();
        const QVector<OssRecovery::Entry> found = entries();
        ASSERT_EQ(found.size(), 1) << round;
        EXPECT_TRUE(found.first().path.isEmpty());
        ASSERT_TRUE(m_autosave->restore(found.first()));
        EXPECT_EQ(current()->stateHash(), hash);
        EXPECT_FALSE(OssProjectManager::instance()->saveProject()) << "it never had a place";
    }
}

TEST_F(RecoveryTest, savingClosingUndoingAndForgettingRemoveTheCopy)
{
    OssProjectManager *projects = OssProjectManager::instance();
    const std::vector<std::function<void()>> ways = {
        [&] { ASSERT_TRUE(projects->saveProjectAs(m_path)); },
        [&] { projects->newProject(QStringLiteral("Next")); },
        [&] { OssUndoManager::instance()->undo(); },
        [&] { m_autosave->forgetCopy(); },
    };
    for (const auto &way : ways) {
        m_network = current()->shadingGroups().first()->network();
        add("Filter/Blur");
        copy();
        EXPECT_EQ(copies().size(), 1);
        way();
        m_autosave->waitForDisk();
        EXPECT_TRUE(copies().isEmpty());
    }
    m_autosave.reset();
    EXPECT_TRUE(QDir(m_recovery).entryList(QDir::Files).isEmpty()) << "nor does a lock stay";
}

TEST_F(RecoveryTest, aCopyThatSaysWhatIsSavedIsNotOffered)
{
    edit();
    copy();
    // Died between saving and the removal of the copy.
    m_autosave.reset();
    const QString place = m_recovery + QLatin1Char('/') + copies().first();
    ASSERT_TRUE(OssProjectManager::instance()->saveProjectAs(m_path));
    const QString document = OssProjectFile::documentPath(place);
    QFile file(document);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    QByteArray text = file.readAll();
    file.close();
    text.replace("<ossaProject ", "<ossaProject recoveryOf=\"file://" + m_path.toUtf8() + "\" ");
    text.replace("name=\"Test\" type=\"OssProject\"", "name=\"wall\" type=\"OssProject\"");
    QByteArray different = text;
    different.replace("Filter/Blur", "Filter/Blue");
    overwrite(document, different);
    EXPECT_EQ(entries().size(), 1);
    overwrite(document, text);
    EXPECT_TRUE(entries().isEmpty());
    EXPECT_TRUE(copies().isEmpty());
}

TEST_F(RecoveryTest, whatIsForLookingOnlyStaysSo)
{
    ASSERT_TRUE(OssProjectManager::instance()->saveProjectAs(m_path));
    current()->setReadOnly(true);
    edit();
    copy();
    crash();
    ASSERT_TRUE(m_autosave->restore(entries().value(0)));
    EXPECT_TRUE(current()->isReadOnly());
    EXPECT_FALSE(OssProjectManager::instance()->saveProject());
}

TEST_F(RecoveryTest, aDamagedCopyIsRefusedAndKeptAside)
{
    const ExpectedLog expected("description of 'Misc/Group' cannot be used");
    edit();
    copy();
    crash();
    const QString place = m_recovery + QLatin1Char('/') + copies().first();
    const QString document = OssProjectFile::documentPath(place);
    QFile file(document);
    ASSERT_TRUE(file.resize(file.size() / 2));
    QVector<OssRecovery::Entry> found = entries();
    ASSERT_EQ(found.size(), 1);
    EXPECT_FALSE(found.first().readable);
    EXPECT_TRUE(found.first().readable.error().contains(document));
    const OssProject *open = current();
    EXPECT_FALSE(m_autosave->restore(found.first()));
    EXPECT_EQ(current(), open);
    const QString aside = OssRecovery::setAside(found.first());
    EXPECT_TRUE(QFile::exists(OssProjectFile::documentPath(aside)));
    found.clear();
    EXPECT_TRUE(entries().isEmpty());
}

TEST_F(RecoveryTest, whatIsSavedButNoStepIsCopiedToo)
{
    edit();
    copy();
    m_autosave->setInterval(1);
    QSignalSpy copied(m_autosave.get(), &OssAutosave::copied);
    m_network->setViewerNodeCurrentEdge(7, true);
    ASSERT_TRUE(copied.wait(30000));
    crash();
    ASSERT_TRUE(m_autosave->restore(entries().first()));
    const OssProject *restored = OssProjectManager::instance()->currentProject();
    EXPECT_EQ(restored->shadingGroups().first()->network()->viewerNodeCurrentEdge(), 7);
}

TEST_F(RecoveryTest, aCopyThatCannotBeWrittenIsToldOnceAndTheLastOneStays)
{
    const ExpectedLog expected("Cannot make the folder");
    edit();
    copy();
    QSignalSpy failures(m_autosave.get(), &OssAutosave::failed);
    QSignalSpy successes(m_autosave.get(), &OssAutosave::copied);
    const QString place = m_recovery + QLatin1Char('/') + copies().first();
    const QString moved = m_folder.filePath(QStringLiteral("moved"));
    ASSERT_TRUE(QFile::rename(place, moved));
    overwrite(place, "in the way");
    add("Filter/Blur");
    copy();
    copy();
    EXPECT_EQ(failures.count(), 1);
    EXPECT_EQ(successes.count(), 0);
    QFile::remove(place);
    ASSERT_TRUE(QFile::rename(moved, place));
    copy();
    EXPECT_EQ(successes.count(), 1);
    EXPECT_EQ(failures.count(), 1);
}

TEST_F(RecoveryTest, everyCallThatFailsLeavesTheOldOrTheNewCopy)
{
    OssRecovery::Session session(m_recovery);
    edit();
    const auto text = [this] {
        OssProjectSnapshot snapshot(current(), OssRecovery::describe(*current(), QDateTime()));
        EXPECT_TRUE(snapshot.advance(-1));
        return OssProjectSnapshot::joined(snapshot.takeParts());
    };
    const QByteArray before = text();
    ASSERT_TRUE(session.write(before));
    add("Filter/Blur");
    const QByteArray now = text();
    const QString document = OssProjectFile::documentPath(m_recovery + QLatin1Char('/')
                                                          + copies().first());
    int number = 1;
    for (bool happened = true; happened; ++number) {
        OssResult result;
        {
            const SystemCallFaults fault(number, ENOSPC);
            result = session.write(now);
            happened = SystemCallFaults::happened();
        }
        QByteArray content;
        ASSERT_TRUE(OssAtomicFile::read(document, 1 << 20, &content));
        EXPECT_TRUE(content == now || (!result && content == before)) << number;
        ASSERT_TRUE(session.write(before));
    }
    EXPECT_GT(number, 5);
}

TEST_F(RecoveryTest, noCopyIsWrittenWithoutALock)
{
    edit();
    OssProjectSnapshot snapshot(current(), OssRecovery::describe(*current(), QDateTime()));
    ASSERT_TRUE(snapshot.advance(-1));
    const QByteArray text = OssProjectSnapshot::joined(snapshot.takeParts());
    int failed = 0;
    bool happened = true;
    for (int number = 1; happened; ++number) {
        QDir(m_recovery).removeRecursively();
        OssRecovery::Session session(m_recovery);
        OssResult result;
        {
            const SystemCallFaults fault(number, ENOSPC);
            result = session.write(text);
            happened = SystemCallFaults::happened();
        }
        const int locks = QDir(m_recovery).entryList({QStringLiteral("*.lock")}).size();
        EXPECT_TRUE(copies().isEmpty() || locks == 1) << number << SystemCallFaults::failedCall();
        EXPECT_TRUE(!result || copies().size() == 1) << number;
        EXPECT_TRUE(entries().isEmpty()) << "the session lives, call " << number;
        failed += result ? 0 : 1;
    }
    EXPECT_GT(failed, 5);
}

TEST_F(RecoveryTest, aKilledSessionGivesItsLockBackAndALivingOneDoesNot)
{
    edit();
    int ready[2];
    ASSERT_EQ(pipe(ready), 0);
    const pid_t child = fork();
    if (child == 0) {
        OssRecovery::Session session(m_recovery);
        OssProjectSnapshot snapshot(current(), OssRecovery::describe(*current(), QDateTime()));
        const bool written = snapshot.advance(-1)
                             && session.write(OssProjectSnapshot::joined(snapshot.takeParts()));
        const char answer = written ? 'y' : 'n';
        if (::write(ready[1], &answer, 1) == 1)
            ::pause();
        ::_exit(1);
    }
    char answer = 0;
    ASSERT_EQ(::read(ready[0], &answer, 1), 1);
    ASSERT_EQ(answer, 'y');
    EXPECT_EQ(copies().size(), 1);
    EXPECT_TRUE(entries().isEmpty()) << "the other session lives";
    ::kill(child, SIGKILL);
    ASSERT_EQ(waitpid(child, nullptr, 0), child);
    EXPECT_EQ(entries().size(), 1);
    ::close(ready[0]);
    ::close(ready[1]);
}

TEST_F(RecoveryTest, nobodyElseReadsWhatIsCopied)
{
    edit();
    copy();
    const auto othersMay = [](const QString &path) {
        return bool(QFile::permissions(path)
                    & (QFileDevice::ReadGroup | QFileDevice::ReadOther | QFileDevice::ExeOther));
    };
    EXPECT_FALSE(othersMay(m_recovery));
    const QStringList locks = QDir(m_recovery).entryList({QStringLiteral("*.lock")});
    ASSERT_EQ(locks.size(), 1);
    EXPECT_FALSE(othersMay(m_recovery + QLatin1Char('/') + locks.first()));
}

TEST_F(RecoveryTest, nothingIsCopiedWhereNothingChangedAndNothingOfferedWithoutADocument)
{
    copy();
    EXPECT_TRUE(copies().isEmpty());
    QDir().mkpath(m_recovery + QStringLiteral("/dead.ossa"));
    overwrite(m_recovery + QStringLiteral("/dead.lock"), {});
    overwrite(m_recovery + QStringLiteral("/alone.lock"), {});
    EXPECT_TRUE(entries().isEmpty());
    EXPECT_TRUE(QDir(m_recovery).isEmpty()) << "what is of no use goes, locks too";
}

TEST_F(RecoveryTest, whatIsThrownAwaySetAsideOrTakenOverLeavesNoLockBehind)
{
    const auto locks = [this] {
        return QDir(m_recovery).entryList({QStringLiteral("*.lock")}, QDir::Files).size();
    };
    const std::vector<std::function<void(const OssRecovery::Entry &)>> ways = {
        [](const auto &entry) { OssRecovery::discard(entry); },
        [](const auto &entry) { EXPECT_FALSE(OssRecovery::setAside(entry).isEmpty()); },
        [this](const auto &entry) {
            ASSERT_TRUE(m_autosave->restore(entry));
            m_autosave->waitForDisk();
        },
    };
    for (std::size_t way = 0; way < ways.size(); ++way) {
        m_network = current()->shadingGroups().first()->network();
        edit();
        copy();
        crash();
        {
            const QVector<OssRecovery::Entry> found = entries();
            ASSERT_EQ(found.size(), 1);
            ways[way](found.first());
        }
        EXPECT_EQ(locks(), copies().size()) << way;
        EXPECT_EQ(copies().size(), way == 2 ? 1 : 0) << way;
    }
    // The session that took it over holds a lock of its own.
    EXPECT_TRUE(entries().isEmpty());
}

TEST_F(RecoveryTest, theNewestIsOfferedFirstAndEachCopyToOneOnly)
{
    for (const char *name : {"a", "b", "c"}) {
        const QString place = m_recovery + QLatin1Char('/') + QString::fromLatin1(name)
                              + QStringLiteral(".ossa");
        QDir().mkpath(place);
        const QByteArray day = name == std::string("b") ? "2026-03-01" : "2026-01-0";
        overwrite(OssProjectFile::documentPath(place),
                  "<ossaProject major=\"1\" copiedAt=\"" + day
                      + (day.size() < 10 ? QByteArray(1, char(name[0] - 'a' + '1')) : QByteArray())
                      + "T00:00:00Z\"><object name=\"" + name
                      + "\" type=\"OssProject\"/>"
                        "</ossaProject>");
    }
    QStringList names;
    for (const OssRecovery::Entry &entry : entries())
        names.append(entry.name);
    EXPECT_EQ(names, (QStringList{QStringLiteral("b"), QStringLiteral("c"), QStringLiteral("a")}));
}

TEST_F(RecoveryTest, aFolderThatCannotBeMadeIsToldAndNothingIsTakenOver)
{
    edit();
    copy();
    crash();
    const QVector<OssRecovery::Entry> found = entries();
    ASSERT_EQ(found.size(), 1);
    overwrite(m_folder.filePath(QStringLiteral("file")), "in the way");
    OssRecovery::Session session(m_folder.filePath(QStringLiteral("file/recovery")));
    for (const OssResult &result :
         {session.write("<ossaProject major=\"1\"/>"), session.adopt(found.first())})
        EXPECT_TRUE(result.error().contains(QStringLiteral("file"))) << qPrintable(result.error());
    EXPECT_TRUE(QFile::exists(OssProjectFile::documentPath(found.first().copy)));
    OssRecovery::Session whole(m_recovery);
    EXPECT_FALSE(whole.write("<ossaProject major")) << "what is no document is no copy";
}
