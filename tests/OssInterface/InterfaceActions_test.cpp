#include "OssCore/Program/OssSettings.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssInterface/Actions/OssCommandTable.h"
#include "OssInterface/Actions/OssMenu.h"
#include "OssInterface/Actions/OssMenuManager.h"
#include "OssInterface/Actions/OssShortcutManager.h"
#include "support/Text.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

// Actions in their folders, the menus made of them, and their keys.

namespace {

OssActionTreeManager *tree()
{
    return OssActionTreeManager::instance();
}

OssShortcutManager *shortcuts()
{
    return OssShortcutManager::instance();
}

std::unique_ptr<QAction> filed(const char *folder, const char *name)
{
    auto action = std::make_unique<QAction>(text(name));
    tree()->registerAction(text(folder), action.get());
    return action;
}

QAction *find(const char *path)
{
    return tree()->findAction(text(path));
}

/// A menu that comes while a button is held.
class HeldMenu : public testing::Test
{
protected:
    void SetUp() override
    {
        m_window.resize(400, 400);
        m_window.show();
        QObject::connect(m_menu.addAction(text("One")), &QAction::triggered, &m_window,
                         [this] { ++m_run; });
        m_menu.addAction(text("Two"));
        QTest::mousePress(m_window.windowHandle(), Qt::RightButton, {}, {100, 100});
        m_menu.popup(m_window.mapToGlobal({100, 100}));
        m_entry = m_menu.actionGeometry(m_menu.actions().first()).center();
    }

    void TearDown() override { m_menu.close(); }

    void move(const QPoint &place)
    {
        QTest::mouseMove(m_menu.windowHandle(), place);
        QCoreApplication::processEvents();
    }

    void release()
    {
        QTest::mouseRelease(m_menu.windowHandle(), Qt::RightButton, {}, m_entry);
        QCoreApplication::processEvents();
    }

    QWidget m_window;
    OssMenu m_menu;
    QPoint m_entry;
    int m_run = 0;
};

TEST_F(HeldMenu, anEntryIsNotRunByTheHandThatSlippedOntoIt)
{
    for (int way = 1; way < 40; ++way)
        move({way, m_entry.y()});
    move(m_entry);
    release();
    EXPECT_EQ(m_run, 0) << "at once";
    EXPECT_TRUE(m_menu.isVisible());
    QTest::mouseClick(m_menu.windowHandle(), Qt::LeftButton, {}, m_entry);
    EXPECT_EQ(m_run, 1);
}

TEST_F(HeldMenu, anEntryIsRunWhereTheHandTookItsTimeAndMovedThere)
{
    QTest::qWait(QApplication::doubleClickInterval() + 20);
    move(m_entry);
    release();
    EXPECT_EQ(m_run, 0) << "held for long, but not moved";
    m_menu.close();
    QTest::mousePress(m_window.windowHandle(), Qt::RightButton, {}, {100, 100});
    m_menu.popup(m_window.mapToGlobal({100, 100}));
    for (int way = 1; way < 40; ++way)
        move({way, m_entry.y()});
    QTest::qWait(QApplication::doubleClickInterval() + 20);
    move(m_entry);
    release();
    EXPECT_EQ(m_run, 1);
}

/// Menus of the commands One and Two.
class Menus : public testing::Test
{
protected:
    using Item = OssMenuDefinition::Item;

    static std::unique_ptr<OssMenu> make(const QVector<Item> &items)
    {
        OssMenuManager::instance()->defineMenu(text("Tests"), text("Menu"), {items});
        return std::unique_ptr<OssMenu>(
            OssMenuManager::instance()->makeMenu(text("Tests"), text("Menu")));
    }

    static std::string entries(const QMenu &menu)
    {
        QStringList all;
        const QList<QAction *> actions = menu.actions();
        for (const QAction *entry : actions)
            all.append(entry->isSeparator() ? text("-") : entry->text());
        return all.join(QLatin1Char(' ')).toStdString();
    }

    std::unique_ptr<QAction> one = filed("/T/", "One");
    std::unique_ptr<QAction> two = filed("/T/", "Two");
    const Item itemOne{Item::Command, text("/T/One")};
    const Item itemTwo{Item::Command, text("/T/Two")};
    const Item missing{Item::Command, text("/T/Missing")};
    const Item line{Item::Separator, {}};
    const Item end{Item::End, {}};
};

const QString DisablePath = text("/Ossa/NodeGraph/Disable");
const QString BypassPath = text("/Ossa/NodeGraph/Bypass");
const QString SavePath = text("/Ossa/File/Save");

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
        shortcuts()->setScope(text("/Ossa"), &window);
        shortcuts()->setScope(text("/Ossa/NodeGraph/"), graph);
        window.show();
        QApplication::setActiveWindow(&window);
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    ~Shortcuts() override
    {
        shortcuts()->resetAll();
        shortcuts()->setScope(text("/Ossa/NodeGraph"), nullptr);
        shortcuts()->setScope(text("/Ossa"), nullptr);
    }

    /// How often the action was triggered by it.
    static int pressed(QWidget *focus, Qt::Key key, const std::unique_ptr<QAction> &action,
                       Qt::KeyboardModifiers modifiers = {})
    {
        const QSignalSpy triggered(action.get(), &QAction::triggered);
        focus->setFocus();
        QTest::keyClick(focus, key, modifiers);
        return triggered.count();
    }

    QWidget window;
    QWidget *graph;
    QWidget *canvas;
    QLineEdit *graphField;
    QWidget *panel;
    std::unique_ptr<QAction> disable = filed("/Ossa/NodeGraph/", "Disable");
    std::unique_ptr<QAction> disableToo = filed("/Ossa/NodeGraph/", "Disable");
    std::unique_ptr<QAction> bypass = filed("/Ossa/NodeGraph/", "Bypass");
    std::unique_ptr<QAction> save = filed("/Ossa/File/", "Save");
};

} // namespace

TEST(ActionTree, pathsAreLookedUpWithoutRegardToSlashesButWithTheirLetters)
{
    const auto action = filed("Tests/Look/", "Frame All");
    for (const char *path : {"/Tests/Look/Frame All", "Tests/Look/Frame All",
                             "//Tests//Look///Frame All", "/Tests/Look/Frame All/"})
        EXPECT_EQ(find(path), action.get()) << path;
    for (const char *path : {"/Tests/LookFrame All", "/Tests/Look", "/Tests/Look/Frame all"})
        EXPECT_EQ(find(path), nullptr) << path;
    EXPECT_TRUE(tree()->hasAction(text("/Tests/Look/Frame all"))) << "it would be taken for it";
    EXPECT_FALSE(tree()->hasAction(text("/Tests/Look/Frame")));
}

TEST(ActionTree, firstOfEqualIdentitiesAnswersAndTheNextTakesOver)
{
    auto first = filed("/Tests/Equal/", "Pick Up");
    auto second = filed("/Tests/Equal", "Pick Up");
    tree()->registerAction(text("Tests//Equal"), second.get()); // twice the same is once
    EXPECT_EQ(find("/Tests/Equal/Pick Up"), first.get());
    EXPECT_EQ(tree()->entries(text("/Tests/Equal"), false).size(), 2);
    EXPECT_EQ(tree()->paths().count(text("/Tests/Equal/Pick Up")), 1);
    const QSignalSpy removed(tree(), &OssActionTreeManager::actionRemoved);
    first.reset();
    EXPECT_EQ(removed.count(), 1);
    EXPECT_EQ(find("/Tests/Equal/Pick Up"), second.get());
    EXPECT_TRUE(tree()->hasAction(text("/Tests/Equal/Pick Up")));
    second.reset();
    EXPECT_EQ(removed.count(), 2);
    EXPECT_EQ(find("/Tests/Equal/Pick Up"), nullptr);
    EXPECT_FALSE(tree()->hasAction(text("/Tests/Equal/Pick Up")));
    EXPECT_TRUE(tree()->entries(text("/Tests/Equal"), true).isEmpty());
}

// A translation or a step's title in the text must not move keys and scripts to another command.
TEST(ActionTree, anActionIsKnownByItsNameWhateverItsTextIs)
{
    QAction cut(text("Couper"));
    OssActionTreeManager::setName(&cut, text("Cut"));
    tree()->registerAction(text("/Tests/Names"), &cut);
    EXPECT_EQ(find("/Tests/Names/Cut"), &cut);
    EXPECT_FALSE(tree()->hasAction(text("/Tests/Names/Couper")));
    const auto undo = filed("/Tests/Names/", "Undo");
    undo->setText(text("Undo Move node Brick"));
    EXPECT_EQ(find("/Tests/Names/Undo"), undo.get());
    EXPECT_EQ(tree()->pathOf(undo.get()), text("/Tests/Names/Undo"));
}

TEST(ActionTree, whatNeedsAProjectIsOffWithoutOneWheneverItIsFiled)
{
    const auto before = filed("/Ossa/File", "Export glTF...");
    OssCommandTable::setHolds(OssCommandTable::WithProject, false);
    const auto after = filed("/Ossa/File", "Missing Files...");
    const auto inFolder = filed("/Ossa/NodeGraph/Create/Filter", "Blur");
    const auto always = filed("/Ossa/File", "Import Mesh...");
    for (const auto *needs : {&before, &after, &inFolder})
        EXPECT_FALSE((*needs)->isEnabled()) << qPrintable((*needs)->text());
    EXPECT_TRUE(always->isEnabled());
    OssCommandTable::setHolds(OssCommandTable::WithProject, true);
    for (const auto *needs : {&before, &after, &inFolder})
        EXPECT_TRUE((*needs)->isEnabled()) << qPrintable((*needs)->text());
}

TEST(ActionTree, listingKeepsTheFolderAsPassedAndTheOrderOfFiling)
{
    const auto one = filed("/Tests/List/", "Zebra");
    const auto two = filed("Tests/List", "Ant");
    const auto below = filed("/Tests/List/Sub", "Deep");
    const auto other = filed("/Tests/Listing", "Other");
    const auto here = tree()->entries(text("/Tests/List"), false);
    ASSERT_EQ(here.size(), 2);
    EXPECT_EQ(here[0].action, one.get());
    EXPECT_EQ(here[0].folder, text("/Tests/List/"));
    EXPECT_EQ(here[1].folder, text("Tests/List"));
    EXPECT_EQ(tree()->entries(text("/Tests/List"), true).size(), 3);
}

TEST_F(Menus, holdWhatThereIsWithoutGaps)
{
    const Item full{Item::Submenu, text("Full")};
    const Item empty{Item::Submenu, text("Empty")};
    const std::pair<QVector<Item>, const char *> cases[] = {
        {{line, itemOne, line, missing, line, itemTwo, line}, "One - Two"},
        {{itemOne, full, itemTwo, end, empty, missing, end, itemTwo}, "One Full Two"},
    };
    for (const auto &[items, wanted] : cases)
        EXPECT_EQ(entries(*make(items)), wanted);
    EXPECT_EQ(OssMenuManager::instance()->makeMenu(text("Tests"), text("No")), nullptr);
}

TEST_F(Menus, foldersBecomeSharedSubmenus)
{
    const auto blur = filed("/T/Create/Filter", "Blur");
    const auto plain = filed("/T/Create/", "Plain");
    const auto levels = filed("/T/Create/Filter/", "Levels");
    const auto menu = make({{Item::Folder, text("/T/Create")}});
    ASSERT_EQ(entries(*menu), "Filter Plain");
    EXPECT_EQ(entries(*menu->actions().first()->menu()), "Blur Levels");
}

TEST_F(Menus, ownTheirSubmenusAndNoCommands)
{
    auto menu = make({{Item::Submenu, text("Sub")}, itemOne, end});
    OssMenuManager::instance()->fillMenu(menu.get(), text("Tests"), text("Menu"));
    EXPECT_EQ(entries(*menu), "Sub") << "filled anew";
    EXPECT_EQ(menu->findChildren<QMenu *>(QString(), Qt::FindDirectChildrenOnly).size(), 1);
    const QPointer<QMenu> submenu = menu->actions().first()->menu();
    menu.reset();
    EXPECT_TRUE(submenu.isNull());
    EXPECT_EQ(find("/T/One"), one.get());
}

TEST_F(Menus, graphContextMenuPlacesWhatTheViewDependsOn)
{
    const QStringList paths = OssMenuManager::instance()->commandPaths(text("Context"),
                                                                       text("NodeGraph"));
    const std::pair<const char *, bool> cases[] = {
        {"Manage User Knobs", true},           {"Expose Node Properties", true},
        {"Dump Selected Node Info", false}, // the view adds these itself
        {"Upgrade Selected Node Info", false}, {"Upgrade All Node Info", false},
    };
    for (const auto &[name, placed] : cases)
        EXPECT_EQ(paths.contains(text("/Ossa/NodeGraph/") + text(name)), placed) << name;
}

TEST_F(Menus, shortcutGroupReachesCommandsOldAndNew)
{
    const auto before = filed("/Ossa/T/", "Before");
    const auto after = filed("/Ossa/T/", "After");
    OssMenu menu;
    menu.addAction(before.get());
    menu.setShortcutGroup(text("Node Graph"));
    menu.addAction(after.get());
    for (const char *path : {"/Ossa/T/Before", "/Ossa/T/After"})
        EXPECT_EQ(shortcuts()->groupOf(text(path)), text("Node Graph"));
}

TEST_F(Shortcuts, actInTheirScopeAndNotWhereTheUserWrites)
{
    EXPECT_EQ(pressed(canvas, Qt::Key_D, disable), 1);
    EXPECT_EQ(pressed(panel, Qt::Key_D, disable), 0);
    for (QWidget *anywhere : {panel, canvas, static_cast<QWidget *>(graphField)})
        EXPECT_EQ(pressed(anywhere, Qt::Key_S, save, Qt::ControlModifier), 1);
    EXPECT_EQ(pressed(graphField, Qt::Key_D, disable), 0);
    EXPECT_EQ(graphField->text(), text("d"));
    // Keys that a field does not use itself are not the graph's either.
    shortcuts()->setKeys(DisablePath, {QKeySequence(Qt::CTRL + Qt::Key_D)});
    EXPECT_EQ(pressed(graphField, Qt::Key_D, disable, Qt::ControlModifier), 0);
    EXPECT_EQ(pressed(canvas, Qt::Key_D, disable, Qt::ControlModifier), 1);
}

TEST_F(Shortcuts, ofACommandMayReachFurtherThanItsScope)
{
    const auto dab = filed("/Ossa/Canvas", "Dab");
    shortcuts()->setScope(text("/Ossa/Canvas"), panel);
    shortcuts()->setReach(DisablePath, panel);
    EXPECT_EQ(pressed(panel, Qt::Key_D, disable), 1);
    EXPECT_EQ(pressed(canvas, Qt::Key_D, disable), 1);
    EXPECT_EQ(shortcuts()->conflicts(text("/Ossa/Canvas/Dab"), Qt::Key_D),
              QStringList(DisablePath));
    shortcuts()->setReach(DisablePath, nullptr);
    EXPECT_EQ(pressed(panel, Qt::Key_D, disable), 0);
    EXPECT_EQ(pressed(canvas, Qt::Key_D, disable), 1);
    shortcuts()->setScope(text("/Ossa/Canvas"), nullptr);
}

TEST_F(Shortcuts, equalIdentitiesDoNotBlockEachOther)
{
    EXPECT_TRUE(disableToo->shortcuts().isEmpty());
    const QSignalSpy second(disableToo.get(), &QAction::triggered);
    EXPECT_EQ(pressed(canvas, Qt::Key_D, disable), 1);
    EXPECT_EQ(second.count(), 0);
    disable.reset();
    EXPECT_EQ(pressed(canvas, Qt::Key_D, disableToo), 1);
}

TEST_F(Shortcuts, userKeysReplaceTheDefaultAreStoredAndResetBringsItBack)
{
    const QString stored = text("Shortcuts/Ossa/NodeGraph/Disable");
    shortcuts()->setKeys(DisablePath, {QKeySequence(Qt::Key_K)});
    EXPECT_EQ(pressed(canvas, Qt::Key_D, disable), 0);
    EXPECT_EQ(pressed(canvas, Qt::Key_K, disable), 1);
    EXPECT_EQ(OssSettings().value(stored).toStringList(), texts({"K"}));
    shortcuts()->setKeys(DisablePath, {});
    EXPECT_TRUE(shortcuts()->isCustomized(DisablePath)) << "taken away, and stays so";
    EXPECT_EQ(pressed(canvas, Qt::Key_D, disable), 0);
    shortcuts()->resetKeys(DisablePath);
    EXPECT_FALSE(shortcuts()->isCustomized(DisablePath));
    EXPECT_FALSE(OssSettings().contains(stored));
    EXPECT_EQ(pressed(canvas, Qt::Key_D, disable), 1);
}

TEST_F(Shortcuts, conflictsAreFoundWithinAScopeAndWithTheWindow)
{
    const auto dab = filed("/Ossa/Canvas", "Dab");
    shortcuts()->setScope(text("/Ossa/Canvas"), panel);
    const std::tuple<QString, QKeySequence, QStringList> cases[] = {
        {BypassPath, Qt::Key_D, {DisablePath}},
        {BypassPath, Qt::CTRL + Qt::Key_S, {SavePath}},
        {DisablePath, Qt::Key_D, {}},
        {BypassPath, Qt::Key_F12, {}},
        {text("/Ossa/Canvas/Dab"), Qt::Key_D, {}}, // beside the graph
    };
    for (const auto &[path, key, wanted] : cases)
        EXPECT_EQ(shortcuts()->conflicts(path, key), wanted) << qPrintable(key.toString());
    shortcuts()->setScope(text("/Ossa/Canvas"), nullptr);
}

TEST_F(Shortcuts, aKeyThatAnActionCameWithIsShownButNotDoubled)
{
    const QString path = text("/Ossa/NodeGraph/Delete All Properties");
    const Qt::KeyboardModifiers both = Qt::ControlModifier | Qt::ShiftModifier;
    const auto deleteAll = std::make_unique<QAction>(text("Delete All Properties"));
    deleteAll->setShortcut(QKeySequence(Qt::CTRL + Qt::SHIFT + Qt::Key_A));
    const auto button = std::make_unique<QAction>(text("the button's own"));
    button->setShortcut(deleteAll->shortcut());
    window.addAction(button.get());
    tree()->registerAction(text("/Ossa/NodeGraph/"), deleteAll.get());
    EXPECT_EQ(deleteAll->shortcut(), button->shortcut());
    EXPECT_EQ(pressed(canvas, Qt::Key_A, button, both), 1);
    shortcuts()->setKeys(path, {QKeySequence(Qt::Key_F7)});
    EXPECT_EQ(pressed(canvas, Qt::Key_F7, deleteAll), 1);
    shortcuts()->resetKeys(path);
    EXPECT_FALSE(graph->actions().contains(deleteAll.get()));
    EXPECT_EQ(pressed(canvas, Qt::Key_A, button, both), 1);
}

TEST_F(Shortcuts, groupComesFromTheFolderUnlessAssigned)
{
    EXPECT_EQ(shortcuts()->groupOf(DisablePath), text("Node Graph"));
    EXPECT_EQ(shortcuts()->groupOf(SavePath), text("File"));
    shortcuts()->assignGroup(text("Ossa/Tests/Thing"), text("My Group"));
    EXPECT_EQ(shortcuts()->groupOf(text("/Ossa/Tests/Thing")), text("My Group"));
}

TEST(StoredShortcuts, keysOfTheLastSessionCountAndWhatIsNoKeyDoesNot)
{
    const auto store = [](const QString &path, const QStringList &keys) {
        OssSettings().setValue(text("Shortcuts") + path, keys);
    };
    store(DisablePath, texts({"K"}));
    store(BypassPath, {QString()}); // taken away
    store(SavePath, texts({"", "Ctrl+K"}));
    // The next session, in the same place.
    OssShortcutManager *manager = shortcuts();
    manager->~OssShortcutManager();
    new (manager) OssShortcutManager;
    EXPECT_EQ(shortcuts()->keys(DisablePath), QList<QKeySequence>{QKeySequence(Qt::Key_K)});
    EXPECT_TRUE(shortcuts()->isCustomized(BypassPath));
    EXPECT_TRUE(shortcuts()->keys(BypassPath).isEmpty());
    EXPECT_EQ(shortcuts()->keys(SavePath), QList<QKeySequence>{QKeySequence(Qt::CTRL + Qt::Key_K)});
    shortcuts()->resetAll();
    EXPECT_FALSE(shortcuts()->isCustomized(BypassPath));
    EXPECT_FALSE(shortcuts()->keys(BypassPath).isEmpty());
    EXPECT_TRUE(OssSettings().value(text("Shortcuts") + DisablePath).isNull());
}
