#include "Ossa/Dialogs/CommandDelegate.h"
#include "Ossa/Dialogs/CommandListModel.h"
#include "Ossa/Dialogs/CommandPalette.h"
#include "Ossa/Dialogs/KeyRecorder.h"
#include "Ossa/Dialogs/ShortcutEditor.h"
#include "OssCore/Values/OssFuzzyMatch.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssInterface/Actions/OssShortcutManager.h"
#include "OssInterface/Widgets/OssNothingFound.h"
#include "support/InterfaceUser.h"
#include "support/Text.h"

#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPainter>
#include <QStandardItemModel>
#include <QTreeView>

// The dialogs in which commands are found, and given their keys.

namespace {

std::unique_ptr<QAction> filed(const char *folder, const char *name)
{
    auto action = std::make_unique<QAction>(text(name));
    OssActionTreeManager::instance()->registerAction(text(folder), action.get());
    return action;
}

class CommandFinding : public testing::Test
{
protected:
    CommandFinding()
    {
        for (QAction *action : {frame.get(), rename.get(), disable.get()})
            QObject::connect(action, &QAction::triggered,
                             [this, action] { triggered.append(action->text()); });
        palette.show();
    }

    void type(const char *typed, std::initializer_list<Qt::Key> keys)
    {
        QTest::keyClicks(search, text(typed));
        for (const Qt::Key key : keys)
            QTest::keyClick(search, key);
    }

    std::unique_ptr<QAction> frame = filed("/Ossa/Finding/", "Frame Zzyx Nodes");
    std::unique_ptr<QAction> rename = filed("/Ossa/Finding/", "Rename Zzyx");
    std::unique_ptr<QAction> disable = filed("/Ossa/Finding/", "Disable Zzyx");
    QStringList triggered;
    CommandListModel model;
    CommandPalette palette;
    QLineEdit *search = palette.findChild<QLineEdit *>();
};

OssShortcutManager *shortcuts()
{
    return OssShortcutManager::instance();
}

using Keys = QList<QKeySequence>;

/// Two commands, one of which has F6, in the editor of keys.
class ShortcutEditing : public testing::Test
{
protected:
    ShortcutEditing()
    {
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
            ->match(tree->model()->index(0, 0), Qt::DisplayRole, text(name), 1,
                    Qt::MatchExactly | Qt::MatchRecursive)
            .value(0);
    }

    void choose(const char *name) { tree->setCurrentIndex(row(name)); }

    void press(const char *name) const { ::press(editor.get(), name); }

    QString warning() const { return editor->findChild<QLabel *>(text("Warning"))->text(); }

    const QString cutPath = text("/Ossa/Editing/Cut It");
    const QString gluePath = text("/Ossa/Editing/Glue It");
    std::unique_ptr<QAction> cut = filed("/Ossa/Editing/", "Cut It");
    std::unique_ptr<QAction> glue = filed("/Ossa/Editing/", "Glue It");
    std::unique_ptr<ShortcutEditor> editor;
    QTreeView *tree = nullptr;
    KeyRecorder *recorder = nullptr;
};

int score(const char *pattern, const char *name)
{
    return OssFuzzyMatch::score(text(pattern), text(name));
}

} // namespace

TEST(FuzzyMatching, lettersMustOccurInOrderAndWordStartsAndNeighboursCountMore)
{
    for (const char *pattern : {"fn", "FRAMENODES", "frame nodes"})
        EXPECT_GE(score(pattern, "Frame Nodes"), 0) << pattern;
    for (const char *pattern : {"nf", "x"})
        EXPECT_LT(score(pattern, "Frame Nodes"), 0) << pattern;
    EXPECT_LT(score("a", ""), 0);
    EXPECT_EQ(score("", "anything"), 0);
    const std::tuple<const char *, const char *, const char *> cases[] = {
        {"fn", "Frame Nodes", "Offline"},
        {"pan", "Pan Left", "Toggle Port List Name"},
        {"cut", "Cut", "Cut Everything in Two"},
        {"se", "Use Selection", "Use Slower"}, // the best way to lay the letters, not the first
    };
    for (const auto &[pattern, better, worse] : cases)
        EXPECT_GT(score(pattern, better), score(pattern, worse)) << pattern;
}

TEST_F(CommandFinding, bestComesFirst)
{
    model.setSearchText(text("rezz"));
    EXPECT_EQ(model.index(0, 0).data().toString(), rename->text());
    model.setSearchText(text("zzyx"));
    EXPECT_EQ(model.rowCount(), 3);
    model.setSearchText(text("qqqzz"));
    EXPECT_EQ(model.rowCount(), 0);
}

TEST_F(CommandFinding, whereNothingIsFoundTheListSaysSo)
{
    const auto *nothing = palette.findChild<OssNothingFound *>();
    for (const auto &[searched, isEmpty] : {std::pair("zzyxx", true), std::pair("zzyx", false)}) {
        search->setText(text(searched));
        EXPECT_EQ(nothing->isVisibleTo(&palette), isEmpty) << searched;
    }
}

TEST_F(CommandFinding, commandsThatDieWhileShownAreHarmless)
{
    model.setSearchText(text("zzyx nodes"));
    ASSERT_EQ(model.rowCount(), 1);
    frame.reset();
    EXPECT_EQ(model.action(model.index(0, 0)), nullptr);
    EXPECT_FALSE(model.index(0, 0).data().isValid());
}

TEST_F(CommandFinding, enterRunsTheChosenCommandAfterTheDialogHasGone)
{
    type("zzyx", {Qt::Key_Down});
    const QString chosen = palette.findChild<QListView *>()->currentIndex().data().toString();
    type("", {Qt::Key_Return});
    EXPECT_FALSE(palette.isVisible());
    EXPECT_TRUE(triggered.isEmpty());
    QCoreApplication::processEvents();
    EXPECT_EQ(triggered, QStringList{chosen});
}

TEST_F(CommandFinding, escapeAndWhatIsDisabledRunNothing)
{
    disable->setEnabled(false);
    type("disable zzyx", {Qt::Key_Return});
    QCoreApplication::processEvents();
    EXPECT_TRUE(palette.isVisible());
    type("", {Qt::Key_Escape});
    QCoreApplication::processEvents();
    EXPECT_FALSE(palette.isVisible());
    EXPECT_TRUE(triggered.isEmpty());
}

TEST_F(CommandFinding, rowsShowNameKeyAndFolderWithoutRunningOverEachOther)
{
    const CommandDelegate delegate(nullptr);
    QStandardItemModel rows;
    rows.appendRow(new QStandardItem(text("Frame")));
    const QModelIndex index = rows.index(0, 0);
    QStyleOptionViewItem option;
    option.rect = QRect(0, 0, 300, 24);
    option.state = QStyle::State_Enabled;
    const auto pictureWith = [&](const QString &value, int role) {
        rows.setData(index, value, role);
        QImage image(option.rect.size(), QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        delegate.paint(&painter, option, index);
        return image;
    };
    const QImage plain = pictureWith(text("Frame"), Qt::DisplayRole);
    const QImage withFolder = pictureWith(text("Node Graph"), CommandListModel::FolderRole);
    EXPECT_NE(withFolder, plain);
    const QImage whole = pictureWith(text("Ctrl+F"), CommandListModel::KeyRole);
    EXPECT_NE(whole, withFolder);
    EXPECT_EQ(whole.copy(0, 0, 60, 24), withFolder.copy(0, 0, 60, 24));
    option.state = QStyle::State_None;
    EXPECT_NE(pictureWith(text("Frame"), Qt::DisplayRole), whole) << "what cannot be done looks so";
    option.state = QStyle::State_Enabled;
    const QImage longName = pictureWith(QString(100, QLatin1Char('W')), Qt::DisplayRole);
    EXPECT_EQ(longName.copy(260, 0, 40, 24), whole.copy(260, 0, 40, 24)) << "the key is to be seen";
    EXPECT_EQ(pictureWith(QString(), CommandListModel::FolderRole), longName)
        << "the name comes first";
    EXPECT_GT(delegate.sizeHint(option, index).height(), option.fontMetrics.height());
}

TEST_F(ShortcutEditing, recordedKeyIsAssigned)
{
    choose("Glue It");
    QTest::keyClick(recorder, Qt::Key_Tab, Qt::ControlModifier);
    press("Assign");
    EXPECT_EQ(shortcuts()->keys(gluePath), Keys{QKeySequence(Qt::CTRL + Qt::Key_Tab)});
    EXPECT_EQ(row("Glue It").siblingAtColumn(1).data().toString(), text("Ctrl+Tab"));
}

TEST_F(ShortcutEditing, conflictIsNamedAndTakenOverOnlyWhenAskedAlsoWhatBeginsWithTheKey)
{
    for (const QKeySequence &taken :
         {QKeySequence(Qt::Key_F6), QKeySequence(Qt::Key_F6, Qt::Key_F7)}) {
        shortcuts()->resetKeys(gluePath);
        shortcuts()->setKeys(cutPath, {taken});
        choose("Glue It");
        QTest::keyClick(recorder, Qt::Key_F6);
        EXPECT_TRUE(warning().contains(text("Cut It")));
        EXPECT_EQ(shortcuts()->keys(cutPath), Keys{taken});
        press("Take Over");
        EXPECT_TRUE(shortcuts()->keys(cutPath).isEmpty());
        EXPECT_EQ(shortcuts()->keys(gluePath), Keys{QKeySequence(Qt::Key_F6)});
        EXPECT_TRUE(warning().isEmpty());
    }
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

TEST_F(ShortcutEditing, commandsStandByTheirFolderAndAreFoundByNameAndByKey)
{
    const QModelIndex group = row("Cut It").parent();
    EXPECT_TRUE(group.isValid());
    EXPECT_EQ(row("Glue It").parent(), group);
    const auto fields = editor->findChildren<QLineEdit *>();
    QLineEdit *search = fields.first() == recorder ? fields.last() : fields.first();
    QTest::keyClicks(search, text("glue"));
    EXPECT_TRUE(row("Glue It").isValid());
    EXPECT_FALSE(row("Cut It").isValid());
    search->clear();
    QTest::keyClicks(search, text("F6"));
    EXPECT_TRUE(row("Cut It").isValid());
    EXPECT_FALSE(row("Glue It").isValid());
}

TEST(KeyRecording, takesKeysThatDialogsUseThemselvesAndSignsThatNeedShiftAsTheSign)
{
    KeyRecorder recorder;
    const std::tuple<Qt::Key, const char *, QKeySequence> cases[] = {
        {Qt::Key_Return, "", Qt::SHIFT + Qt::Key_Return},
        {Qt::Key_Backtab, "", Qt::SHIFT + Qt::Key_Tab},
        {Qt::Key_Shift, "", Qt::SHIFT + Qt::Key_Tab}, // by itself it changes nothing
        {Qt::Key_Escape, "", {}},
        {Qt::Key_Plus, "+", Qt::Key_Plus},
        {Qt::Key_X, "X", Qt::SHIFT + Qt::Key_X},
    };
    for (const auto &[key, typed, wanted] : cases) {
        const bool isPlain = key == Qt::Key_Escape || key == Qt::Key_Shift;
        QTest::sendKeyEvent(QTest::Click, &recorder, key, text(typed),
                            isPlain ? Qt::NoModifier : Qt::ShiftModifier);
        EXPECT_EQ(recorder.keys(), wanted) << key;
    }
}
