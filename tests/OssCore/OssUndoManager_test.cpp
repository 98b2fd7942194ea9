#include "OssCore/Undo/OssUndoManager.h"

#include "support/Text.h"

#include <gtest/gtest.h>

namespace {

/// A document of one text; each edit appends a letter.
class UndoTest : public testing::Test
{
protected:
    void SetUp() override { OssUndoManager::instance()->clear(); }

    void TearDown() override { OssUndoManager::instance()->clear(); }

    /// A step for each letter.
    void edit(const char *letters)
    {
        for (const QChar letter : text(letters)) {
            m_text += letter;
            m_undo->record(
                QString(letter), [this] { m_text.chop(1); }, [this, letter] { m_text += letter; });
        }
    }

    void macro(const char *title, const char *letters, const char *key = "")
    {
        const OssUndoManager::AutoMacro macro(text(title), text(key));
        edit(letters);
    }

    QString m_text;
    OssUndoManager *m_undo = OssUndoManager::instance();
};

TEST_F(UndoTest, macroIsOneStepWithItsInnerTitles)
{
    {
        OssUndoManager::AutoMacro outer(text("Cut"));
        edit("a");
        macro("Remove", "bc");
    }
    ASSERT_EQ(m_undo->count(), 1);
    EXPECT_EQ(m_undo->undoText(), text("Cut"));
    EXPECT_EQ(m_undo->partTexts(0), texts({"a", "Remove"}));
    m_undo->undo();
    EXPECT_EQ(m_text, QString());
    m_undo->redo();
    EXPECT_EQ(m_text, text("abc"));
}

TEST_F(UndoTest, whatFollowsFromAnEditJoinsItsStep)
{
    QStringList ends;
    const auto listening = QObject::connect(
        m_undo, &OssUndoManager::editEnding, m_undo, [&](bool kept) {
            ends.append(m_text + (kept ? QString() : text("!")));
            if (kept)
                edit("x");
        });
    edit("a");
    macro("Macro", "bc");
    macro("Nothing", "");
    {
        OssUndoManager::AutoMacro cancelled(text("Cancelled"));
        edit("d");
        cancelled.cancel();
    }
    {
        const OssUndoManager::Gathering command(text("Command"));
        edit("e");
        macro("Part", "f");
    }
    QObject::disconnect(listening);
    EXPECT_EQ(ends, texts({"a", "axbc", "axbcx!", "axbcx!", "axbcxe", "axbcxexf"}));
    ASSERT_EQ(m_undo->count(), 3);
    EXPECT_EQ(m_undo->text(0), text("a"));
    EXPECT_EQ(m_undo->partTexts(2), texts({"e", "Part"}));
    for (const char *left : {"axbcx", "ax", ""}) {
        m_undo->undo();
        EXPECT_EQ(m_text, text(left));
    }
}

TEST_F(UndoTest, emptyMacroLeavesNoStepAndKeepsTheCleanState)
{
    edit("a");
    m_undo->setClean();
    {
        OssUndoManager::AutoMacro outer(text("Nothing"));
        OssUndoManager::AutoMacro inner(text("Nothing inside"));
    }
    EXPECT_EQ(m_undo->count(), 1);
    EXPECT_TRUE(m_undo->isClean());
}

TEST_F(UndoTest, cancelTakesBackInnerMacrosAndLeavesTheOuterOneOpen)
{
    {
        OssUndoManager::AutoMacro outer(text("Outer"));
        edit("a");
        {
            OssUndoManager::AutoMacro inner(text("Inner"));
            edit("b");
            macro("Innermost", "c");
            inner.cancel();
            EXPECT_EQ(m_text, text("a"));
            edit("d"); // what comes after in a cancelled scope goes too
        }
        EXPECT_EQ(m_text, text("a"));
        edit("e");
    }
    EXPECT_EQ(m_text, text("ae"));
    EXPECT_EQ(m_undo->count(), 1);
    m_undo->undo();
    EXPECT_EQ(m_text, QString());
}

TEST_F(UndoTest, nothingIsRecordedWhileAStepIsUndone)
{
    m_text = text("x");
    m_undo->record(
        text("echo"), [this] { macro("listener", "y"); }, [] {});
    m_undo->undo();
    EXPECT_EQ(m_undo->count(), 1);
    EXPECT_TRUE(m_undo->canRedo());
}

TEST_F(UndoTest, undoIsRefusedInsideAMacro)
{
    edit("a");
    EXPECT_FALSE(m_undo->isMacroOpen());
    const OssUndoManager::AutoMacro macro(text("open"));
    EXPECT_TRUE(m_undo->isMacroOpen()) << "also while it is empty";
    m_undo->undo();
    EXPECT_EQ(m_text, text("a"));
}

TEST_F(UndoTest, quickRepetitionOfOneKindIsOneStepUntilSomethingComesBetween)
{
    macro("Nudge", "a", "one");
    macro("Nudge", "b", "one");
    macro("Nudge", "c", "two");
    EXPECT_EQ(m_undo->count(), 2);
    m_undo->undo();
    m_undo->undo();
    EXPECT_EQ(m_text, QString());
    m_undo->redo();
    EXPECT_EQ(m_text, text("ab"));
    m_undo->setClean();
    macro("Nudge", "d", "one"); // joining would change what was saved
    EXPECT_EQ(m_undo->count(), 2);
    EXPECT_FALSE(m_undo->isClean());
    edit("e");
    macro("Nudge", "f", "one");
    EXPECT_EQ(m_undo->count(), 4);
}

TEST_F(UndoTest, gatheredStepsAreOneAndASingleOneKeepsItsTitle)
{
    {
        const OssUndoManager::Gathering command(text("Delete"));
        EXPECT_FALSE(m_undo->isMacroOpen()) << "nothing waits for the rest of its step";
        edit("a");
        EXPECT_TRUE(m_undo->isMacroOpen());
    }
    EXPECT_EQ(m_undo->undoText(), text("a"));
    EXPECT_TRUE(m_undo->partTexts(0).isEmpty());
    {
        const OssUndoManager::Gathering command(text("Delete"));
        edit("bc");
    }
    EXPECT_EQ(m_undo->undoText(), text("Delete"));
    EXPECT_EQ(m_undo->count(), 2);
    m_undo->undo();
    EXPECT_EQ(m_text, text("a"));
    {
        const OssUndoManager::Gathering nothing(text("Nothing"));
    }
    EXPECT_TRUE(m_undo->canRedo()) << "a command that did nothing leaves what was undone";
    EXPECT_FALSE(m_undo->isMacroOpen());
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
        edit("a");
        m_undo->addUndo(new OssFunctionUndo(
            text("x"), [] {}, [] {}));
        const OssUndoManager::AutoMacro macro(text("paused"));
        EXPECT_FALSE(m_undo->isMacroOpen());
    }
    EXPECT_TRUE(m_undo->isRecording());
    EXPECT_EQ(m_undo->count(), 0);
    edit("b");
    EXPECT_EQ(m_undo->count(), 1);
}

TEST_F(UndoTest, aStepTellsWhatItChangesAsLongAsThatLives)
{
    const auto record = [this](QObject *subject) {
        m_undo->record(
            text("x"), [] {}, [] {}, subject);
    };
    QObject first;
    auto second = std::make_unique<QObject>();
    {
        const OssUndoManager::AutoMacro macro(text("both"));
        record(&first);
        record(second.get());
        record(nullptr);
        record(&first);
    }
    record(nullptr);
    EXPECT_EQ(m_undo->subjects(0), (QList<QObject *>{&first, second.get()}));
    EXPECT_TRUE(m_undo->subjects(1).isEmpty());
    second.reset();
    EXPECT_EQ(m_undo->subjects(0), QList<QObject *>{&first});
    EXPECT_TRUE(m_undo->subjects(-1).isEmpty());
    EXPECT_TRUE(m_undo->subjects(2).isEmpty());
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
        OssUndoManager::AutoMacro macro(text("cancelled"));
        add();
        macro.cancel();
        EXPECT_EQ(alive, 1);
    }
    {
        const OssUndoManager::AutoMacro macro(text("open"));
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
        const OssUndoManager::AutoMacro macro(text("Drag"), text("drag"));
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
                     [&told] { told.append(text("undone")); });
    QObject::connect(m_undo, &OssUndoManager::redone, &listener,
                     [&told] { told.append(text("redone")); });
    m_undo->undo();
    m_undo->redo();
    EXPECT_TRUE(told.isEmpty());
    macro("Cut", "ab");
    m_undo->undo();
    m_undo->undo();
    m_undo->redo();
    m_undo->redo();
    EXPECT_EQ(told, texts({"Cut", "undone", "redone"}));
}

TEST_F(UndoTest, theDocumentIsCleanWhereItWasSaved)
{
    EXPECT_TRUE(m_undo->isClean());
    edit("a");
    EXPECT_FALSE(m_undo->isClean());
    m_undo->setClean();
    edit("b");
    m_undo->undo();
    EXPECT_TRUE(m_undo->isClean());
    m_undo->undo();
    EXPECT_FALSE(m_undo->isClean());
    edit("c"); // what was saved can no longer be reached
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

TEST_F(UndoTest, whoFollowsWhatIsSavedHearsOfMacrosThatStayOpen)
{
    auto *history = OssUndoManager::instance();
    history->clear();
    bool told = true;
    const auto follows = QObject::connect(history, &OssUndoManager::cleanChanged,
                                          [&told](bool clean) { told = clean; });
    const auto edit = [history] {
        history->record(
            QString(), [] {}, [] {});
    };
    {
        OssUndoManager::AutoMacro macro(QStringLiteral("Long"));
        edit();
        EXPECT_FALSE(told);
        macro.cancel();
        EXPECT_TRUE(told);
    }
    {
        const OssUndoManager::AutoMacro macro(QStringLiteral("Long"));
        edit();
        history->setClean();
        edit();
        EXPECT_EQ(told, history->isClean());
    }
    EXPECT_EQ(told, history->isClean());
    history->undo();
    EXPECT_EQ(told, history->isClean());
    history->clear();
    EXPECT_TRUE(told);
    QObject::disconnect(follows);
}

TEST_F(UndoTest, textsNameTheStepsAndWhatIsInThem)
{
    edit("a");
    {
        const OssUndoManager::AutoMacro macro(text("Paste"));
        m_undo->record(
            QString(), [] {}, [] {});
        edit("b");
    }
    EXPECT_EQ(m_undo->text(0), text("a"));
    EXPECT_EQ(m_undo->text(1), text("Paste"));
    EXPECT_EQ(m_undo->partTexts(1), texts({"b"})) << "parts without a title do not count";
    EXPECT_TRUE(m_undo->partTexts(0).isEmpty());
    EXPECT_TRUE(m_undo->partTexts(7).isEmpty());
    EXPECT_TRUE(m_undo->text(7).isEmpty());
    m_undo->undo();
    EXPECT_EQ(m_undo->redoText(), text("Paste"));
    EXPECT_EQ(m_undo->undoText(), text("a"));
}

TEST_F(UndoTest, aMacroInsideAnotherDoesNotJoinTheStepBefore)
{
    macro("Nudge", "a", "nudge");
    {
        const OssUndoManager::AutoMacro outer(text("Script"));
        macro("Nudge", "b", "nudge");
        macro("Nudge", "c", "nudge");
    }
    EXPECT_EQ(m_undo->count(), 2);
    m_undo->undo();
    EXPECT_EQ(m_text, text("a"));
    m_undo->redo();
    EXPECT_EQ(m_text, text("abc"));
}

TEST_F(UndoTest, aCancelledMacroThatRecordsOnGoesBackWhole)
{
    edit("x");
    {
        OssUndoManager::AutoMacro givenUp(text("Give up"));
        edit("a");
        givenUp.cancel();
        EXPECT_EQ(m_text, text("x"));
        macro("Late", "b");
        edit("c");
        givenUp.cancel();
        EXPECT_EQ(m_text, text("x"));
    }
    EXPECT_EQ(m_text, text("x"));
    EXPECT_EQ(m_undo->count(), 1);
    EXPECT_FALSE(m_undo->isMacroOpen());
}

} // namespace
