#include "OssCore/Undo/OssUndoManager.h"

#include <gtest/gtest.h>

namespace {

/// A document of one text; each edit appends a letter.
class UndoTest : public testing::Test
{
protected:
    void SetUp() override { OssUndoManager::instance()->clear(); }

    void TearDown() override { OssUndoManager::instance()->clear(); }

    void edit(char letter)
    {
        m_text += QLatin1Char(letter);
        m_undo->record(
            QString(QLatin1Char(letter)), [this] { m_text.chop(1); },
            [this, letter] { m_text += QLatin1Char(letter); });
    }

    QString m_text;
    OssUndoManager *m_undo = OssUndoManager::instance();
};

TEST_F(UndoTest, stepIsNotAppliedWhenItIsRecorded)
{
    edit('a');
    EXPECT_EQ(m_text, QStringLiteral("a"));
    m_undo->undo();
    EXPECT_EQ(m_text, QString());
    m_undo->redo();
    EXPECT_EQ(m_text, QStringLiteral("a"));
}

TEST_F(UndoTest, macroIsOneStepWithItsInnerTitles)
{
    {
        OssUndoManager::AutoMacro outer(QStringLiteral("Cut"));
        edit('a');
        {
            OssUndoManager::AutoMacro inner(QStringLiteral("Remove"));
            edit('b');
            edit('c');
        }
    }
    ASSERT_EQ(m_undo->count(), 1);
    EXPECT_EQ(m_undo->undoText(), QStringLiteral("Cut"));
    EXPECT_EQ(m_undo->partTexts(0), QStringList({QStringLiteral("a"), QStringLiteral("Remove")}));
    m_undo->undo();
    EXPECT_EQ(m_text, QString());
    m_undo->redo();
    EXPECT_EQ(m_text, QStringLiteral("abc"));
}

TEST_F(UndoTest, emptyMacroLeavesNoStepAndKeepsTheCleanState)
{
    edit('a');
    m_undo->setClean();
    {
        OssUndoManager::AutoMacro outer(QStringLiteral("Nothing"));
        OssUndoManager::AutoMacro inner(QStringLiteral("Nothing inside"));
    }
    EXPECT_EQ(m_undo->count(), 1);
    EXPECT_TRUE(m_undo->isClean());
}

TEST_F(UndoTest, cancelTakesBackInnerMacrosAndLeavesTheOuterOneOpen)
{
    {
        OssUndoManager::AutoMacro outer(QStringLiteral("Outer"));
        edit('a');
        {
            OssUndoManager::AutoMacro inner(QStringLiteral("Inner"));
            edit('b');
            {
                OssUndoManager::AutoMacro innermost(QStringLiteral("Innermost"));
                edit('c');
            }
            inner.cancel();
            EXPECT_EQ(m_text, QStringLiteral("a"));
            edit('d'); // what comes after in a cancelled scope goes too
        }
        EXPECT_EQ(m_text, QStringLiteral("a"));
        edit('e');
    }
    EXPECT_EQ(m_text, QStringLiteral("ae"));
    EXPECT_EQ(m_undo->count(), 1);
    m_undo->undo();
    EXPECT_EQ(m_text, QString());
}

TEST_F(UndoTest, nothingIsRecordedWhileAStepIsUndone)
{
    m_text = QStringLiteral("x");
    m_undo->record(
        QStringLiteral("echo"),
        [this] {
            OssUndoManager::AutoMacro macro(QStringLiteral("listener"));
            edit('y');
        },
        [] {});
    m_undo->undo();
    EXPECT_EQ(m_undo->count(), 1);
    EXPECT_TRUE(m_undo->canRedo());
}

TEST_F(UndoTest, undoIsRefusedInsideAMacro)
{
    edit('a');
    OssUndoManager::AutoMacro macro(QStringLiteral("open"));
    m_undo->undo();
    EXPECT_EQ(m_text, QStringLiteral("a"));
}

TEST_F(UndoTest, quickRepetitionOfOneKindIsOneStepUntilSomethingComesBetween)
{
    const auto nudge = [this](char letter, const char *key) {
        const OssUndoManager::AutoMacro macro(QStringLiteral("Nudge"), QLatin1String(key));
        edit(letter);
    };
    nudge('a', "one");
    nudge('b', "one");
    nudge('c', "two");
    EXPECT_EQ(m_undo->count(), 2);
    m_undo->undo();
    m_undo->undo();
    EXPECT_EQ(m_text, QString());
    m_undo->redo();
    EXPECT_EQ(m_text, QStringLiteral("ab"));
    m_undo->setClean();
    nudge('d', "one"); // joining would change what was saved
    EXPECT_EQ(m_undo->count(), 2);
    EXPECT_FALSE(m_undo->isClean());
    edit('e');
    nudge('f', "one");
    EXPECT_EQ(m_undo->count(), 4);
}

TEST_F(UndoTest, gatheredStepsAreOneAndASingleOneKeepsItsTitle)
{
    {
        const OssUndoManager::Gathering command(QStringLiteral("Delete"));
        EXPECT_FALSE(m_undo->isMacroOpen()) << "nothing waits for the rest of its step";
        edit('a');
        EXPECT_TRUE(m_undo->isMacroOpen());
    }
    EXPECT_EQ(m_undo->undoText(), QStringLiteral("a"));
    EXPECT_TRUE(m_undo->partTexts(0).isEmpty());
    {
        const OssUndoManager::Gathering command(QStringLiteral("Delete"));
        edit('b');
        edit('c');
    }
    EXPECT_EQ(m_undo->undoText(), QStringLiteral("Delete"));
    EXPECT_EQ(m_undo->count(), 2);
    m_undo->undo();
    EXPECT_EQ(m_text, QStringLiteral("a"));
    {
        const OssUndoManager::Gathering nothing(QStringLiteral("Nothing"));
    }
    EXPECT_TRUE(m_undo->canRedo()) << "a command that did nothing leaves what was undone";
    EXPECT_FALSE(m_undo->isMacroOpen());
}

TEST_F(UndoTest, anOpenMacroWaitsEvenWhileItIsEmpty)
{
    EXPECT_FALSE(m_undo->isMacroOpen());
    const OssUndoManager::AutoMacro macro(QStringLiteral("open"));
    EXPECT_TRUE(m_undo->isMacroOpen());
}

TEST_F(UndoTest, whatHappensInAPauseIsNotRecorded)
{
    {
        const OssUndoManager::Pause outer;
        {
            const OssUndoManager::Pause inner;
            EXPECT_FALSE(m_undo->isRecording());
        }
        EXPECT_FALSE(m_undo->isRecording()) << "pauses nest";
        edit('a');
        m_undo->addUndo(new OssFunctionUndo(
            QStringLiteral("x"), [] {}, [] {}));
        const OssUndoManager::AutoMacro macro(QStringLiteral("paused"));
        EXPECT_FALSE(m_undo->isMacroOpen());
    }
    EXPECT_TRUE(m_undo->isRecording());
    EXPECT_EQ(m_undo->count(), 0);
    edit('b');
    EXPECT_EQ(m_undo->count(), 1);
}

/// Knows whether it is still there.
class CountedStep : public OssUndoStep
{
public:
    CountedStep(int *alive, int *merges, int kind = 0)
        : OssUndoStep(QStringLiteral("counted"))
        , m_alive(alive)
        , m_merges(merges)
        , m_kind(kind)
    {
        ++*m_alive;
    }

    ~CountedStep() override { --*m_alive; }

    void undo() override {}

    void redo() override {}

    bool mergeWith(const OssUndoStep &later) override
    {
        const auto *other = dynamic_cast<const CountedStep *>(&later);
        if (!other || other->m_kind != m_kind)
            return false;
        ++*m_merges;
        return true;
    }

private:
    int *m_alive;
    int *m_merges;
    int m_kind;
};

TEST_F(UndoTest, stepsAreFreedWhenTheyCanNoLongerBeReached)
{
    int alive = 0;
    int merges = 0;
    const auto add = [&] {
        m_undo->addUndo(new CountedStep(&alive, &merges));
    };
    {
        const OssUndoManager::Pause pause;
        add();
        EXPECT_EQ(alive, 0) << "taken over although nothing is recorded";
    }
    add();
    add();
    EXPECT_EQ(alive, 2);
    m_undo->undo();
    m_undo->undo();
    EXPECT_EQ(alive, 2);
    add();
    EXPECT_EQ(alive, 1) << "what was undone is out of reach";
    {
        OssUndoManager::AutoMacro macro(QStringLiteral("cancelled"));
        add();
        macro.cancel();
        EXPECT_EQ(alive, 1);
    }
    {
        const OssUndoManager::AutoMacro macro(QStringLiteral("open"));
        add();
        m_undo->clear();
        EXPECT_EQ(alive, 0) << "also what waits in an open macro";
    }
    EXPECT_EQ(m_undo->count(), 0);
    m_undo->addUndo(nullptr);
    EXPECT_EQ(m_undo->count(), 0);
}

TEST_F(UndoTest, stepsOfRepeatedMacrosMergeWhereTheyPairOff)
{
    int alive = 0;
    int merges = 0;
    const auto repeat = [&](int kind, int steps) {
        const OssUndoManager::AutoMacro macro(QStringLiteral("Drag"), QStringLiteral("drag"));
        for (int i = 0; i < steps; ++i)
            m_undo->addUndo(new CountedStep(&alive, &merges, kind));
    };
    for (int i = 0; i < 50; ++i)
        repeat(1, 2);
    EXPECT_EQ(m_undo->count(), 1);
    EXPECT_EQ(alive, 2) << "a long drag does not pile up";
    EXPECT_EQ(merges, 98);
    repeat(1, 1); // does not pair off
    EXPECT_EQ(m_undo->count(), 1);
    EXPECT_EQ(alive, 3);
    repeat(2, 3); // another kind
    EXPECT_EQ(m_undo->count(), 1);
    EXPECT_EQ(alive, 6);
    m_undo->clear(); // before what the steps count in goes
    EXPECT_EQ(alive, 0);
}

TEST_F(UndoTest, undoingAndRedoingTellOnceEachAndOnlyWhenSomethingHappened)
{
    QStringList told;
    QObject listener;
    QObject::connect(m_undo, &OssUndoManager::recorded, &listener,
                     [&told](const QString &title) { told.append(title); });
    QObject::connect(m_undo, &OssUndoManager::undone, &listener,
                     [&told] { told.append(QStringLiteral("undone")); });
    QObject::connect(m_undo, &OssUndoManager::redone, &listener,
                     [&told] { told.append(QStringLiteral("redone")); });
    m_undo->undo();
    m_undo->redo();
    EXPECT_TRUE(told.isEmpty());
    {
        const OssUndoManager::AutoMacro macro(QStringLiteral("Cut"));
        edit('a');
        edit('b');
    }
    m_undo->undo();
    m_undo->undo();
    m_undo->redo();
    m_undo->redo();
    EXPECT_EQ(told, QStringList({QStringLiteral("Cut"), QStringLiteral("undone"),
                                 QStringLiteral("redone")}));
}

TEST_F(UndoTest, theDocumentIsCleanWhereItWasSaved)
{
    EXPECT_TRUE(m_undo->isClean());
    edit('a');
    EXPECT_FALSE(m_undo->isClean());
    m_undo->setClean();
    edit('b');
    m_undo->undo();
    EXPECT_TRUE(m_undo->isClean());
    m_undo->undo();
    EXPECT_FALSE(m_undo->isClean());
    edit('c'); // what was saved can no longer be reached
    m_undo->undo();
    EXPECT_FALSE(m_undo->isClean());
    m_undo->setClean();
    m_undo->resetClean();
    EXPECT_FALSE(m_undo->isClean());
    m_undo->redo();
    EXPECT_FALSE(m_undo->isClean());
    m_undo->clear();
    EXPECT_TRUE(m_undo->isClean());
    EXPECT_FALSE(m_undo->canUndo() || m_undo->canRedo());
}

TEST_F(UndoTest, textsNameTheStepsAndWhatIsInThem)
{
    edit('a');
    {
        const OssUndoManager::AutoMacro macro(QStringLiteral("Paste"));
        m_undo->record(
            QString(), [] {}, [] {});
        edit('b');
    }
    EXPECT_EQ(m_undo->text(0), QStringLiteral("a"));
    EXPECT_EQ(m_undo->text(1), QStringLiteral("Paste"));
    EXPECT_EQ(m_undo->partTexts(1), QStringList{QStringLiteral("b")})
        << "parts without a title do not count";
    EXPECT_TRUE(m_undo->partTexts(0).isEmpty());
    EXPECT_TRUE(m_undo->partTexts(7).isEmpty());
    EXPECT_TRUE(m_undo->text(7).isEmpty());
    m_undo->undo();
    EXPECT_EQ(m_undo->redoText(), QStringLiteral("Paste"));
    EXPECT_EQ(m_undo->undoText(), QStringLiteral("a"));
}

TEST_F(UndoTest, aMacroInsideAnotherDoesNotJoinTheStepBefore)
{
    const auto nudge = [this](char letter) {
        const OssUndoManager::AutoMacro macro(QStringLiteral("Nudge"), QStringLiteral("nudge"));
        edit(letter);
    };
    nudge('a');
    {
        const OssUndoManager::AutoMacro outer(QStringLiteral("Script"));
        nudge('b');
        nudge('c');
    }
    EXPECT_EQ(m_undo->count(), 2);
    m_undo->undo();
    EXPECT_EQ(m_text, QStringLiteral("a"));
    m_undo->redo();
    EXPECT_EQ(m_text, QStringLiteral("abc"));
}

TEST_F(UndoTest, aCancelledMacroThatRecordsOnGoesBackWhole)
{
    edit('x');
    {
        OssUndoManager::AutoMacro macro(QStringLiteral("Give up"));
        edit('a');
        macro.cancel();
        EXPECT_EQ(m_text, QStringLiteral("x"));
        {
            const OssUndoManager::AutoMacro inner(QStringLiteral("Late"));
            edit('b');
        }
        edit('c');
        macro.cancel();
        EXPECT_EQ(m_text, QStringLiteral("x"));
    }
    EXPECT_EQ(m_text, QStringLiteral("x"));
    EXPECT_EQ(m_undo->count(), 1);
    EXPECT_FALSE(m_undo->isMacroOpen());
}

} // namespace
