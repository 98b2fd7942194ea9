#include "OssCore/Program/OssSettings.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssInterface/Actions/OssShortcutManager.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

namespace {

const QString disablePath = QStringLiteral("/Ossa/NodeGraph/Disable");
const QString bypassPath = QStringLiteral("/Ossa/NodeGraph/Bypass");
const QString savePath = QStringLiteral("/Ossa/File/Save");

OssShortcutManager *shortcuts()
{
    return OssShortcutManager::instance();
}

/// A window with a graph palette (a plain widget and a text field in it) and a panel beside it.
class Shortcuts : public testing::Test
{
protected:
    Shortcuts()
        : graph(new QWidget(&window))
        , canvas(new QWidget(graph))
        , graphField(new QLineEdit(graph))
        , panel(new QWidget(&window))
    {
        auto *layout = new QVBoxLayout(&window);
        layout->addWidget(graph);
        layout->addWidget(panel);
        canvas->setFocusPolicy(Qt::StrongFocus);
        panel->setFocusPolicy(Qt::StrongFocus);
        for (QAction *action : {&disable, &disableToo, &bypass})
            OssActionTreeManager::instance()->registerAction(QStringLiteral("/Ossa/NodeGraph/"),
                                                             action);
        OssActionTreeManager::instance()->registerAction(QStringLiteral("/Ossa/File/"), &save);
        shortcuts()->setScope(QStringLiteral("/Ossa"), &window);
        shortcuts()->setScope(QStringLiteral("/Ossa/NodeGraph/"), graph);
        window.show();
        QApplication::setActiveWindow(&window);
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    ~Shortcuts() override
    {
        shortcuts()->resetAll();
        shortcuts()->setScope(QStringLiteral("/Ossa/NodeGraph"), nullptr);
        shortcuts()->setScope(QStringLiteral("/Ossa"), nullptr);
    }

    int pressed(QWidget *focus, Qt::Key key, QAction &action,
                Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        const QSignalSpy triggered(&action, &QAction::triggered);
        focus->setFocus();
        QTest::keyClick(focus, key, modifiers);
        return triggered.count();
    }

    QWidget window;
    QWidget *graph;
    QWidget *canvas;
    QLineEdit *graphField;
    QWidget *panel;
    QAction disable{QStringLiteral("Disable")};
    QAction disableToo{QStringLiteral("Disable")};
    QAction bypass{QStringLiteral("Bypass")};
    QAction save{QStringLiteral("Save")};
};

} // namespace

TEST_F(Shortcuts, graphKeysActOnlyInsideTheGraph)
{
    EXPECT_EQ(pressed(canvas, Qt::Key_D, disable), 1);
    EXPECT_EQ(pressed(panel, Qt::Key_D, disable), 0);
}

TEST_F(Shortcuts, windowKeysActEverywhere)
{
    EXPECT_EQ(pressed(panel, Qt::Key_S, save, Qt::ControlModifier), 1);
    EXPECT_EQ(pressed(canvas, Qt::Key_S, save, Qt::ControlModifier), 1);
    EXPECT_EQ(pressed(graphField, Qt::Key_S, save, Qt::ControlModifier), 1);
}

TEST_F(Shortcuts, textFieldsInsideTheGraphComeFirst)
{
    EXPECT_EQ(pressed(graphField, Qt::Key_D, disable), 0);
    EXPECT_EQ(graphField->text(), QStringLiteral("d"));
    // Keys that a field does not use itself are not the graph's either.
    shortcuts()->setKeys(disablePath, {QKeySequence(Qt::CTRL + Qt::Key_D)});
    EXPECT_EQ(pressed(graphField, Qt::Key_D, disable, Qt::ControlModifier), 0);
    EXPECT_EQ(pressed(canvas, Qt::Key_D, disable, Qt::ControlModifier), 1);
}

TEST_F(Shortcuts, equalIdentitiesDoNotBlockEachOther)
{
    EXPECT_TRUE(disableToo.shortcuts().isEmpty());
    const QSignalSpy second(&disableToo, &QAction::triggered);
    EXPECT_EQ(pressed(canvas, Qt::Key_D, disable), 1);
    EXPECT_EQ(second.count(), 0);
}

TEST_F(Shortcuts, keysMoveToTheNextActionWhenTheFirstDies)
{
    auto first = std::make_unique<QAction>(QStringLiteral("Extract"));
    QAction second(QStringLiteral("Extract"));
    auto *tree = OssActionTreeManager::instance();
    tree->registerAction(QStringLiteral("/Ossa/NodeGraph/"), first.get());
    tree->registerAction(QStringLiteral("/Ossa/NodeGraph/"), &second);
    first.reset();
    EXPECT_EQ(pressed(canvas, Qt::Key_X, second, Qt::ControlModifier | Qt::ShiftModifier), 1);
}

TEST_F(Shortcuts, userKeysReplaceTheDefaultAndAreStored)
{
    shortcuts()->setKeys(disablePath, {QKeySequence(Qt::Key_K)});
    EXPECT_EQ(pressed(canvas, Qt::Key_D, disable), 0);
    EXPECT_EQ(pressed(canvas, Qt::Key_K, disable), 1);
    OssSettings settings;
    EXPECT_EQ(settings.value(QStringLiteral("Shortcuts/Ossa/NodeGraph/Disable")).toStringList(),
              QStringList(QStringLiteral("K")));
}

TEST_F(Shortcuts, removedKeysStayRemovedAndResetBringsThemBack)
{
    shortcuts()->setKeys(disablePath, {});
    EXPECT_TRUE(shortcuts()->isCustomized(disablePath));
    EXPECT_EQ(pressed(canvas, Qt::Key_D, disable), 0);
    shortcuts()->resetKeys(disablePath);
    EXPECT_FALSE(shortcuts()->isCustomized(disablePath));
    EXPECT_FALSE(OssSettings().contains(QStringLiteral("Shortcuts/Ossa/NodeGraph/Disable")));
    EXPECT_EQ(pressed(canvas, Qt::Key_D, disable), 1);
}

TEST_F(Shortcuts, conflictsAreFoundWithinAScopeAndWithTheWindow)
{
    EXPECT_EQ(shortcuts()->conflicts(bypassPath, QKeySequence(Qt::Key_D)),
              QStringList(disablePath));
    EXPECT_EQ(shortcuts()->conflicts(bypassPath, QKeySequence(Qt::CTRL + Qt::Key_S)),
              QStringList(savePath));
    EXPECT_TRUE(shortcuts()->conflicts(disablePath, QKeySequence(Qt::Key_D)).isEmpty());
    EXPECT_TRUE(shortcuts()->conflicts(bypassPath, QKeySequence(Qt::Key_F12)).isEmpty());
}

TEST_F(Shortcuts, disjointScopesDoNotConflict)
{
    QAction paint(QStringLiteral("Dab"));
    auto *tree = OssActionTreeManager::instance();
    tree->registerAction(QStringLiteral("/Ossa/Canvas"), &paint);
    shortcuts()->setScope(QStringLiteral("/Ossa/Canvas"), panel);
    EXPECT_TRUE(shortcuts()
                    ->conflicts(QStringLiteral("/Ossa/Canvas/Dab"), QKeySequence(Qt::Key_D))
                    .isEmpty());
    shortcuts()->setScope(QStringLiteral("/Ossa/Canvas"), nullptr);
}

TEST_F(Shortcuts, aKeyThatAnActionCameWithIsShownButNotDoubled)
{
    QAction deleteAll(QStringLiteral("Delete All Properties"));
    deleteAll.setShortcut(QKeySequence(Qt::CTRL + Qt::SHIFT + Qt::Key_A));
    QAction button(QStringLiteral("the button's own"));
    button.setShortcut(deleteAll.shortcut());
    window.addAction(&button);
    OssActionTreeManager::instance()->registerAction(QStringLiteral("/Ossa/NodeGraph/"),
                                                     &deleteAll);
    EXPECT_EQ(deleteAll.shortcut(), button.shortcut());
    EXPECT_EQ(pressed(canvas, Qt::Key_A, button, Qt::ControlModifier | Qt::ShiftModifier), 1);
    shortcuts()->setKeys(QStringLiteral("/Ossa/NodeGraph/Delete All Properties"),
                         {QKeySequence(Qt::Key_F7)});
    EXPECT_EQ(pressed(canvas, Qt::Key_F7, deleteAll), 1);
    shortcuts()->resetKeys(QStringLiteral("/Ossa/NodeGraph/Delete All Properties"));
    EXPECT_FALSE(graph->actions().contains(&deleteAll));
    EXPECT_EQ(pressed(canvas, Qt::Key_A, button, Qt::ControlModifier | Qt::ShiftModifier), 1);
}

TEST_F(Shortcuts, groupComesFromTheFolderUnlessAssigned)
{
    EXPECT_EQ(shortcuts()->groupOf(disablePath), QStringLiteral("Node Graph"));
    EXPECT_EQ(shortcuts()->groupOf(savePath), QStringLiteral("File"));
    shortcuts()->assignGroup(QStringLiteral("Ossa/Tests/Thing"), QStringLiteral("My Group"));
    EXPECT_EQ(shortcuts()->groupOf(QStringLiteral("/Ossa/Tests/Thing")),
              QStringLiteral("My Group"));
}

TEST(StoredShortcuts, keysOfTheLastSessionCountAndWhatIsNoKeyDoesNot)
{
    const auto store = [](const QString &path, const QStringList &keys) {
        OssSettings().setValue(QStringLiteral("Shortcuts") + path, keys);
    };
    store(disablePath, {QStringLiteral("K")});
    store(bypassPath, {QString()}); // taken away
    store(savePath, {QString(), QStringLiteral("Ctrl+K")});
    // The next session, in the same place.
    OssShortcutManager *manager = shortcuts();
    manager->~OssShortcutManager();
    new (manager) OssShortcutManager;
    EXPECT_EQ(shortcuts()->keys(disablePath), QList<QKeySequence>{QKeySequence(Qt::Key_K)});
    EXPECT_TRUE(shortcuts()->isCustomized(bypassPath));
    EXPECT_TRUE(shortcuts()->keys(bypassPath).isEmpty());
    EXPECT_EQ(shortcuts()->keys(savePath), QList<QKeySequence>{QKeySequence(Qt::CTRL + Qt::Key_K)});
    shortcuts()->resetAll();
    EXPECT_FALSE(shortcuts()->isCustomized(bypassPath));
    EXPECT_FALSE(shortcuts()->keys(bypassPath).isEmpty());
    EXPECT_TRUE(OssSettings().value(QStringLiteral("Shortcuts") + disablePath).isNull());
}
