#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssInterface/Actions/OssMenu.h"
#include "OssInterface/Actions/OssMenuManager.h"
#include "OssInterface/Actions/OssShortcutManager.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QPointer>

namespace {

class Menus : public testing::Test
{
protected:
    QAction *file(const char *folder, const char *text)
    {
        actions.push_back(std::make_unique<QAction>(QString::fromLatin1(text)));
        OssActionTreeManager::instance()->registerAction(QString::fromLatin1(folder),
                                                         actions.back().get());
        return actions.back().get();
    }

    std::unique_ptr<OssMenu> make(const char *definition)
    {
        OssMenuManager::instance()->defineMenu(
            QStringLiteral("Tests"), QStringLiteral("Menu"),
            OssMenuDefinition::fromText(QString::fromLatin1(definition)));
        return std::unique_ptr<OssMenu>(
            OssMenuManager::instance()->makeMenu(QStringLiteral("Tests"), QStringLiteral("Menu")));
    }

    static QStringList texts(const QMenu &menu)
    {
        QStringList texts;
        const QList<QAction *> entries = menu.actions();
        for (const QAction *entry : entries)
            texts.append(entry->isSeparator() ? QStringLiteral("-") : entry->text());
        return texts;
    }

    std::vector<std::unique_ptr<QAction>> actions;
};

QStringList list(const char *text)
{
    return QString::fromLatin1(text).split(QLatin1Char(' '));
}

} // namespace

TEST_F(Menus, unknownMenuIsNull)
{
    EXPECT_EQ(OssMenuManager::instance()->makeMenu(QStringLiteral("Tests"), QStringLiteral("No")),
              nullptr);
}

TEST_F(Menus, missingCommandsLeaveNoGapAndNoDoubledSeparator)
{
    file("/T/", "One");
    file("/T/", "Two");
    const auto menu = make("-\n /T/One\n -\n /T/Missing\n -\n /T/Two\n -");
    EXPECT_EQ(texts(*menu), list("One - Two"));
}

TEST_F(Menus, emptySubmenusAreLeftOut)
{
    file("/T/", "One");
    file("/T/", "Two");
    const auto menu = make("/T/One\n > Full\n /T/Two\n <\n > Empty\n /T/Missing\n <\n /T/Two");
    EXPECT_EQ(texts(*menu), list("One Full Two"));
}

TEST_F(Menus, foldersBecomeSharedSubmenus)
{
    file("/T/Create/Filter", "Blur");
    file("/T/Create/", "Plain");
    file("/T/Create/Filter/", "Levels");
    const auto menu = make("/T/Create/*");
    ASSERT_EQ(texts(*menu), list("Filter Plain"));
    EXPECT_EQ(texts(*menu->actions().first()->menu()), list("Blur Levels"));
}

TEST_F(Menus, menusDoNotOwnCommandsButTheirSubmenus)
{
    const QPointer<QAction> command = file("/T/", "One");
    auto menu = make("> Sub\n /T/One\n <");
    const QPointer<QMenu> submenu = menu->actions().first()->menu();
    menu.reset();
    EXPECT_TRUE(submenu.isNull());
    EXPECT_FALSE(command.isNull());
}

TEST_F(Menus, refillingLeavesNothingBehind)
{
    file("/T/", "One");
    const auto menu = make("> Sub\n /T/One\n <");
    OssMenuManager::instance()->fillMenu(menu.get(), QStringLiteral("Tests"),
                                         QStringLiteral("Menu"));
    EXPECT_EQ(texts(*menu), list("Sub"));
    EXPECT_EQ(menu->findChildren<QMenu *>(QString(), Qt::FindDirectChildrenOnly).size(), 1);
}

TEST_F(Menus, graphContextMenuPlacesWhatTheViewDependsOn)
{
    const QStringList paths = OssMenuManager::instance()->commandPaths(QStringLiteral("Context"),
                                                                       QStringLiteral("NodeGraph"));
    const QString folder = QStringLiteral("/Ossa/NodeGraph/");
    EXPECT_TRUE(paths.contains(folder + QStringLiteral("Manage User Knobs")));
    EXPECT_TRUE(paths.contains(folder + QStringLiteral("Expose Node Properties")));
    // The view adds these itself.
    EXPECT_FALSE(paths.contains(folder + QStringLiteral("Dump Selected Node Info")));
    EXPECT_FALSE(paths.contains(folder + QStringLiteral("Upgrade Selected Node Info")));
    EXPECT_FALSE(paths.contains(folder + QStringLiteral("Upgrade All Node Info")));
}

TEST_F(Menus, shortcutGroupReachesCommandsOldAndNew)
{
    OssMenu menu;
    menu.addAction(file("/Ossa/T/", "Before"));
    menu.setShortcutGroup(QStringLiteral("Node Graph"));
    menu.addAction(file("/Ossa/T/", "After"));
    for (const char *path : {"/Ossa/T/Before", "/Ossa/T/After"})
        EXPECT_EQ(OssShortcutManager::instance()->groupOf(QString::fromLatin1(path)),
                  QStringLiteral("Node Graph"));
}
