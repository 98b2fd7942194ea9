#include "Ossa/Window/MainWindow.h"

#include "Ossa/Commands/RecentProjects.h"
#include "Ossa/Window/MainMenus.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssInterface/Actions/OssMenuManager.h"
#include "OssInterface/Actions/OssShortcutManager.h"
#include "OssInterface/Palettes/OssPalette.h"
#include "OssInterface/Palettes/OssPaletteManager.h"
#include "OssInterface/Popups/OssApplication.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectManager.h"
#include "support/ModelFixture.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

namespace {

OssProjectManager *projects()
{
    return OssProjectManager::instance();
}

QAction *command(const char *path)
{
    return OssActionTreeManager::instance()->findAction(QString::fromLatin1(path));
}

class Window : public testing::Test
{
protected:
    Window()
        : graph(makePalette("Node Graph", "node_graph_palette"))
        , window(std::make_unique<MainWindow>())
    {
        needNodeTypes();
        window->show();
        window->openAtStart(QString());
    }

    ~Window() override
    {
        projects()->closeProject();
        window.reset();
        OssPaletteManager::instance()->deletePalettes();
    }

    static OssPalette *makePalette(const char *name, const char *helpKey)
    {
        auto *palette = new OssPalette;
        palette->setObjectName(QString::fromLatin1(name));
        palette->setWindowTitle(palette->objectName());
        palette->setContextHelpKey(QString::fromLatin1(helpKey));
        auto *body = new QWidget(palette);
        body->setFocusPolicy(Qt::StrongFocus);
        palette->setBodyWidget(body);
        OssPaletteManager::instance()->registerPalette(palette, true, QString());
        return palette;
    }

    static void change()
    {
        OssUndoManager::instance()->addUndo(new OssFunctionUndo(
            QStringLiteral("Move node Brick"), [] {}, [] {}));
    }

    /// Presses a button of the box that the next call opens.
    static void answerWith(QMessageBox::StandardButton button)
    {
        QTimer::singleShot(0, [button] {
            auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            ASSERT_NE(box, nullptr);
            box->button(button)->click();
        });
    }

    OssPalette *graph;
    std::unique_ptr<MainWindow> window;
};

} // namespace

TEST_F(Window, startsWithAnEmptyProjectThatIsNotModified)
{
    ASSERT_NE(projects()->currentProject(), nullptr);
    EXPECT_FALSE(window->isWindowModified());
    EXPECT_TRUE(window->windowTitle().startsWith(projects()->currentProject()->name()));
    EXPECT_EQ(OssApplication::mainWindow(), window.get());
}

TEST_F(Window, closesWithoutAQuestionWhenNothingChanged)
{
    EXPECT_TRUE(window->close());
}

TEST_F(Window, cancelKeepsWindowAndProject)
{
    change();
    EXPECT_TRUE(window->isWindowModified());
    answerWith(QMessageBox::Cancel);
    EXPECT_FALSE(window->close());
    EXPECT_TRUE(window->isVisible());
    EXPECT_TRUE(projects()->isModified());
}

TEST_F(Window, discardCloses)
{
    change();
    answerWith(QMessageBox::Discard);
    EXPECT_TRUE(window->close());
}

TEST_F(Window, saveWritesBeforeClosing)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("wall.ossa"));
    ASSERT_TRUE(projects()->saveProjectAs(path).ok());
    change();
    answerWith(QMessageBox::Save);
    EXPECT_TRUE(window->close());
    EXPECT_FALSE(projects()->isModified());
    EXPECT_EQ(RecentProjects::list().value(0), path);
}

TEST_F(Window, aProjectThatCannotBeOpenedIsToldOnceAndLeavesTheOpenOne)
{
    int boxes = 0;
    QTimer::singleShot(0, [&boxes] {
        ++boxes;
        QApplication::activeModalWidget()->close();
    });
    window->openAtStart(QStringLiteral("/nowhere/wall.ossa"));
    EXPECT_EQ(boxes, 1);
    EXPECT_NE(projects()->currentProject(), nullptr);
}

TEST_F(Window, pluginsThatFailAreNamedUntilDismissed)
{
    window->tellAbout({{QStringLiteral("paint.so"), QStringLiteral("it is damaged")},
                       {QStringLiteral("bake.so"), QStringLiteral("it could not be started")}});
    EXPECT_TRUE(window->notificationText().contains(QStringLiteral("paint.so")));
    EXPECT_TRUE(window->notificationText().contains(QStringLiteral("bake.so")));
    const auto buttons = window->findChildren<QPushButton *>();
    for (QPushButton *button : buttons) {
        if (button->text() == QLatin1String("Dismiss"))
            button->click();
    }
    EXPECT_TRUE(window->notificationText().isEmpty());
}

TEST_F(Window, aSavedLayoutDoesNotHidePalettesItDoesNotKnow)
{
    EXPECT_TRUE(window->close());
    window.reset();
    const OssPalette *added = makePalette("Added", "added_palette");
    window = std::make_unique<MainWindow>();
    window->restoreLayout();
    window->show();
    EXPECT_TRUE(added->isVisible());
    EXPECT_TRUE(graph->isVisible());
}

TEST_F(Window, recentProjectsAreCommands)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("recent wall.ossa"));
    ASSERT_TRUE(projects()->saveProjectAs(path).ok());
    window->openAtStart(path);
    QAction *recent = command("/Ossa/File/Recent/recent wall");
    ASSERT_NE(recent, nullptr);
    command("/Ossa/File/Clear Recent")->trigger();
    EXPECT_EQ(command("/Ossa/File/Recent/recent wall"), nullptr);
}

TEST_F(Window, undoCommandsNameTheStep)
{
    QAction *undo = command("/Ossa/Edit/Undo");
    EXPECT_FALSE(undo->isEnabled());
    change();
    EXPECT_TRUE(undo->isEnabled());
    EXPECT_EQ(undo->text(), QStringLiteral("Undo Move node Brick"));
    undo->trigger();
    EXPECT_EQ(command("/Ossa/Edit/Redo")->text(), QStringLiteral("Redo Move node Brick"));
    EXPECT_EQ(undo->text(), QStringLiteral("Undo"));
}

TEST_F(Window, palettesAreDockedBeforeAndAfterTheWindowExists)
{
    EXPECT_EQ(graph->window(), window.get());
    OssPalette *late = makePalette("Late", "late_palette");
    EXPECT_EQ(late->window(), window.get());
    EXPECT_NE(command("/Ossa/Palettes/Late"), nullptr);
}

TEST_F(Window, showingAPaletteOpensItsDock)
{
    QAction *toggle = command("/Ossa/Palettes/Node Graph");
    ASSERT_NE(toggle, nullptr);
    toggle->trigger();
    EXPECT_FALSE(graph->isVisible());
    graph->showBySidebar();
    EXPECT_TRUE(graph->isVisible());
    EXPECT_TRUE(toggle->isChecked());
    toggle->trigger();
    graph->setVisible(true);
    EXPECT_TRUE(graph->isVisible());
}

TEST_F(Window, palettesOutliveTheWindow)
{
    const QPointer<OssPalette> palette = graph;
    window.reset();
    EXPECT_FALSE(palette.isNull());
    EXPECT_EQ(OssApplication::mainWindow(), nullptr);
}

TEST_F(Window, closedPalettesStayClosedInTheNextSession)
{
    makePalette("Other", "other_palette");
    command("/Ossa/Palettes/Other")->trigger();
    EXPECT_TRUE(window->close());
    window.reset();
    window = std::make_unique<MainWindow>();
    window->restoreLayout();
    window->show();
    EXPECT_FALSE(command("/Ossa/Palettes/Other")->isChecked());
    EXPECT_TRUE(command("/Ossa/Palettes/Node Graph")->isChecked());
    command("/Ossa/View/Reset Layout")->trigger();
    EXPECT_TRUE(command("/Ossa/Palettes/Other")->isChecked());
}

TEST_F(Window, menusWithoutCommandsAreNotThere)
{
    const auto isShown = [this](const char *title) {
        const QList<QAction *> menus = window->menuBar()->actions();
        return std::any_of(menus.cbegin(), menus.cend(), [title](const QAction *menu) {
            return menu->text().remove(QLatin1Char('&')) == QLatin1String(title)
                   && menu->isVisible();
        });
    };
    EXPECT_TRUE(isShown("File"));
    EXPECT_FALSE(isShown("Object"));
    QAction command(QStringLiteral("Paint the Town"));
    OssActionTreeManager::instance()->registerAction(QStringLiteral("/Ossa/Object/"), &command);
    EXPECT_TRUE(QTest::qWaitFor([&] { return isShown("Object"); }));
}

TEST_F(Window, graphCommandsThatNoMenuNamesAreStillInOne)
{
    QAction odd(QStringLiteral("Something Odd"));
    QAction pan(QStringLiteral("Pan Left"));
    for (QAction *action : {&odd, &pan})
        OssActionTreeManager::instance()->registerAction(QStringLiteral("/Ossa/NodeGraph/"),
                                                         action);
    EXPECT_EQ(MainMenus::unplacedGraphCommands(),
              QStringList(QStringLiteral("/Ossa/NodeGraph/Something Odd")));
}

TEST_F(Window, defaultKeysOfAllCommandsInMenusAreFreeOfConflicts)
{
    auto *tree = OssActionTreeManager::instance();
    std::vector<std::unique_ptr<QAction>> standIns;
    for (const char *menu : {"File", "Edit", "View", "Graph", "Object", "Help"}) {
        const QStringList paths = OssMenuManager::instance()->commandPaths(
            QStringLiteral("Main"), QString::fromLatin1(menu));
        for (const QString &path : paths) {
            if (tree->findAction(path))
                continue;
            standIns.push_back(std::make_unique<QAction>(OssActionTreeManager::nameOf(path)));
            tree->registerAction(OssActionTreeManager::folderOf(path), standIns.back().get());
        }
    }
    const auto *shortcuts = OssShortcutManager::instance();
    int keyed = 0;
    const QStringList paths = tree->paths();
    for (const QString &path : paths) {
        const QList<QKeySequence> keys = shortcuts->defaultKeys(path);
        keyed += keys.isEmpty() ? 0 : 1;
        for (const QKeySequence &key : keys)
            EXPECT_TRUE(shortcuts->conflicts(path, key).isEmpty())
                << qPrintable(path) << " " << qPrintable(key.toString());
    }
    EXPECT_GT(keyed, 60);
}
