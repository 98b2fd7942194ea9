#include "Ossa/Dialogs/ShortcutEditor.h"

#include "Ossa/Dialogs/KeyRecorder.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssInterface/Actions/OssShortcutManager.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QTreeView>

namespace {

const QString cutPath = QStringLiteral("/Ossa/Editing/Cut It");
const QString gluePath = QStringLiteral("/Ossa/Editing/Glue It");

OssShortcutManager *shortcuts()
{
    return OssShortcutManager::instance();
}

class ShortcutEditing : public testing::Test
{
protected:
    ShortcutEditing()
    {
        for (QAction *action : {&cut, &glue})
            OssActionTreeManager::instance()->registerAction(QStringLiteral("/Ossa/Editing/"),
                                                             action);
        shortcuts()->setKeys(cutPath, {QKeySequence(Qt::Key_F6)});
        editor = std::make_unique<ShortcutEditor>();
        editor->show();
        tree = editor->findChild<QTreeView *>();
        recorder = editor->findChild<KeyRecorder *>();
    }

    ~ShortcutEditing() override { shortcuts()->resetAll(); }

    QModelIndex row(const char *name) const
    {
        return tree->model()
            ->match(tree->model()->index(0, 0), Qt::DisplayRole, QString::fromLatin1(name), 1,
                    Qt::MatchExactly | Qt::MatchRecursive)
            .value(0);
    }

    void choose(const char *name) { tree->setCurrentIndex(row(name)); }

    void press(const char *text)
    {
        const auto buttons = editor->findChildren<QPushButton *>();
        for (QPushButton *button : buttons) {
            if (button->text() == QLatin1String(text))
                return QTest::mouseClick(button, Qt::LeftButton);
        }
        FAIL() << "no button " << text;
    }

    QString warning() const
    {
        return editor->findChild<QLabel *>(QStringLiteral("Warning"))->text();
    }

    QAction cut{QStringLiteral("Cut It")};
    QAction glue{QStringLiteral("Glue It")};
    std::unique_ptr<ShortcutEditor> editor;
    QTreeView *tree = nullptr;
    KeyRecorder *recorder = nullptr;
};

} // namespace

TEST_F(ShortcutEditing, recordedKeyIsAssigned)
{
    choose("Glue It");
    QTest::keyClick(recorder, Qt::Key_Tab, Qt::ControlModifier);
    press("Assign");
    EXPECT_EQ(shortcuts()->keys(gluePath),
              QList<QKeySequence>{QKeySequence(Qt::CTRL + Qt::Key_Tab)});
    EXPECT_EQ(row("Glue It").siblingAtColumn(1).data().toString(), QStringLiteral("Ctrl+Tab"));
}

TEST_F(ShortcutEditing, conflictIsNamedAndTakenOverOnlyWhenAsked)
{
    choose("Glue It");
    QTest::keyClick(recorder, Qt::Key_F6);
    EXPECT_TRUE(warning().contains(QStringLiteral("Cut It")));
    EXPECT_EQ(shortcuts()->keys(cutPath), QList<QKeySequence>{QKeySequence(Qt::Key_F6)});
    press("Take Over");
    EXPECT_TRUE(shortcuts()->keys(cutPath).isEmpty());
    EXPECT_EQ(shortcuts()->keys(gluePath), QList<QKeySequence>{QKeySequence(Qt::Key_F6)});
    EXPECT_TRUE(warning().isEmpty());
}

TEST_F(ShortcutEditing, takingOverAlsoFreesWhatOnlyBeginsWithTheKey)
{
    shortcuts()->setKeys(cutPath, {QKeySequence(Qt::Key_F6, Qt::Key_F7)});
    choose("Glue It");
    QTest::keyClick(recorder, Qt::Key_F6);
    press("Take Over");
    EXPECT_TRUE(shortcuts()->keys(cutPath).isEmpty());
    EXPECT_EQ(shortcuts()->keys(gluePath), QList<QKeySequence>{QKeySequence(Qt::Key_F6)});
}

TEST_F(ShortcutEditing, commandsOfOneFolderStandTogether)
{
    const QModelIndex group = row("Cut It").parent();
    EXPECT_TRUE(group.isValid());
    EXPECT_EQ(row("Glue It").parent(), group);
}

TEST_F(ShortcutEditing, removeAndReset)
{
    choose("Cut It");
    press("Reset");
    EXPECT_FALSE(shortcuts()->isCustomized(cutPath));
    shortcuts()->setKeys(cutPath, {QKeySequence(Qt::Key_F8)});
    choose("Glue It");
    choose("Cut It");
    press("Remove Keys");
    EXPECT_TRUE(shortcuts()->keys(cutPath).isEmpty());
}

TEST_F(ShortcutEditing, commandsAreFoundByNameAndByKey)
{
    QLineEdit *search = nullptr;
    const auto fields = editor->findChildren<QLineEdit *>();
    for (QLineEdit *field : fields) {
        if (field != recorder)
            search = field;
    }
    QTest::keyClicks(search, QStringLiteral("glue"));
    EXPECT_TRUE(row("Glue It").isValid());
    EXPECT_FALSE(row("Cut It").isValid());
    search->clear();
    QTest::keyClicks(search, QStringLiteral("F6"));
    EXPECT_TRUE(row("Cut It").isValid());
    EXPECT_FALSE(row("Glue It").isValid());
}

TEST(KeyRecording, takesKeysThatDialogsUseThemselves)
{
    KeyRecorder recorder;
    QTest::keyClick(&recorder, Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_EQ(recorder.keys(), QKeySequence(Qt::SHIFT + Qt::Key_Return));
    QTest::keyClick(&recorder, Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(recorder.keys(), QKeySequence(Qt::SHIFT + Qt::Key_Tab));
    QTest::keyClick(&recorder, Qt::Key_Shift);
    EXPECT_EQ(recorder.keys(), QKeySequence(Qt::SHIFT + Qt::Key_Tab));
    QTest::keyClick(&recorder, Qt::Key_Escape);
    EXPECT_TRUE(recorder.keys().isEmpty());
}

TEST(KeyRecording, signsThatNeedShiftAreTheSign)
{
    KeyRecorder recorder;
    QTest::sendKeyEvent(QTest::Press, &recorder, Qt::Key_Plus, QStringLiteral("+"),
                        Qt::ShiftModifier);
    EXPECT_EQ(recorder.keys(), QKeySequence(Qt::Key_Plus));
    QTest::sendKeyEvent(QTest::Press, &recorder, Qt::Key_X, QStringLiteral("X"), Qt::ShiftModifier);
    EXPECT_EQ(recorder.keys(), QKeySequence(Qt::SHIFT + Qt::Key_X));
}
