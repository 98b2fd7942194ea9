#include "OssCore/OssUndoManager.h"

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

} // namespace
