#include "Ossa/Scripting/ConsoleInput.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssInterface/Actions/OssCommandTable.h"
#include "OssInterface/Actions/OssShortcutManager.h"
#include "OssInterface/Palettes/OssPalette.h"
#include "OssInterface/Palettes/OssPaletteManager.h"
#include "Program/StartedProgram.h"

#include <QAction>
#include <QFile>
#include <QMenuBar>
#include <QRegularExpression>
#include <QSet>

namespace {

using Commands = StartedProgram;

/// Of a file of the project.
QString contentOf(const char *path)
{
    QFile file(qEnvironmentVariable("OSSA_ROOT") + QLatin1Char('/') + text(path));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path;
    return QString::fromUtf8(file.readAll());
}

/// Folders whose commands come and go while the program runs.
bool isInOpenFolder(const QString &path)
{
    for (const OssCommandTable::Row &row : OssCommandTable::rows()) {
        const QString folder = OssCommandTable::path(row);
        if (folder.endsWith(QLatin1Char('*')) && path.startsWith(folder.chopped(1)))
            return true;
    }
    return false;
}

} // namespace

TEST_F(Commands, everyRowIsCarriedOutBySomeoneAndReadsAsItSays)
{
    for (const OssCommandTable::Row &row : OssCommandTable::rows()) {
        const QString path = OssCommandTable::path(row);
        if (path.endsWith(QLatin1Char('*')))
            continue; // a folder
        const QAction *action = OssActionTreeManager::instance()->findAction(path);
        ASSERT_NE(action, nullptr) << qPrintable(path);
        // "Undo" goes on with the title of the step.
        EXPECT_TRUE(action->text().startsWith(OssCommandTable::text(row))) << qPrintable(path);
        EXPECT_EQ(action->statusTip(), OssCommandTable::tip(row)) << qPrintable(path);
        EXPECT_EQ(action->icon().isNull(), !*row.icon) << qPrintable(path);
    }
}

TEST_F(Commands, everyCommandHasARow)
{
    const QStringList paths = OssActionTreeManager::instance()->paths();
    for (const QString &path : paths)
        EXPECT_TRUE(OssCommandTable::find(path) || isInOpenFolder(path)) << qPrintable(path);
    EXPECT_GT(paths.size(), 120);
}

TEST_F(Commands, noDefaultKeyOfACommandIsAnothersToo)
{
    const auto *shortcuts = OssShortcutManager::instance();
    int keyed = 0;
    const QStringList paths = OssActionTreeManager::instance()->paths();
    for (const QString &path : paths) {
        const QList<QKeySequence> keys = shortcuts->defaultKeys(path);
        keyed += keys.isEmpty() ? 0 : 1;
        for (const QKeySequence &key : keys)
            EXPECT_TRUE(shortcuts->conflicts(path, key).isEmpty()) << qPrintable(path);
    }
    EXPECT_GT(keyed, 60);
}

TEST_F(Commands, menusHoldTheirCommandsAndTheGraphsTheRestToo)
{
    QAction odd(text("Something Odd"));
    for (const int left : {0, 1}) {
        if (left)
            OssActionTreeManager::instance()->registerAction(text("/Ossa/NodeGraph/"), &odd);
        int inMore = 0;
        const QList<QAction *> bar = s_window->menuBar()->actions();
        for (const QAction *entry : bar) {
            QMenu *menu = entry->menu();
            ASSERT_NE(menu, nullptr);
            Q_EMIT menu->aboutToShow();
            const QList<QAction *> actions = menu->actions();
            for (const QAction *action : actions) {
                if (!action->menu() || action->text() != text("More"))
                    continue;
                EXPECT_EQ(entry->text().remove(QLatin1Char('&')), text("Node Graph"));
                EXPECT_EQ(action->menu()->actions(), QList<QAction *>{&odd});
                ++inMore;
            }
            EXPECT_EQ(entry->isVisible(), !actions.isEmpty()) << qPrintable(entry->text());
        }
        EXPECT_EQ(inMore, left);
    }
}

TEST_F(Commands, everyCommandThatDocumentsNameIsThere)
{
    static const QRegularExpression named(text("/Ossa/\\w+/[\\w. -]*[\\w.]"));
    static const QRegularExpression inMenu(
        text("\\b(File|Edit|View|Node Graph|Script|Help) > ([A-Z][\\w ]*\\w)"));
    const auto *tree = OssActionTreeManager::instance();
    QSet<QString> texts;
    for (const OssActionTreeManager::Entry &entry : tree->entries())
        texts.insert(entry.action->text().remove(QLatin1Char('&')).remove(text("...")));
    for (const OssCommandTable::Menu &menu : OssCommandTable::menus())
        texts.insert(OssCommandTable::title(menu));
    int found = 0;
    for (const char *document : {"README.md", "docs/scripting.md", "docs/architecture.md"}) {
        const QString all = contentOf(document);
        for (auto at = named.globalMatch(all); at.hasNext(); ++found) {
            const QString path = at.next().captured();
            EXPECT_TRUE(tree->findAction(path) || !tree->entries(path, true).isEmpty())
                << document << ": " << qPrintable(path);
        }
        for (auto at = inMenu.globalMatch(all); at.hasNext(); ++found) {
            const QString name = at.next().captured(2);
            EXPECT_TRUE(texts.contains(name)) << document << ": " << qPrintable(name);
        }
    }
    EXPECT_GT(found, 4);
}

TEST_F(Commands, theConsoleComesToTheFrontReadyToTypeIn)
{
    OssPalette *palette = OssPaletteManager::instance()->find(text("script_console_palette"));
    ASSERT_NE(palette, nullptr);
    const auto *input = palette->findChild<ConsoleInput *>();
    ASSERT_NE(input, nullptr);
    s_window->activateWindow();
    s_window->setFocus();
    triggerCommand("Script/Console");
    EXPECT_TRUE(palette->isVisible());
    EXPECT_EQ(s_window->focusWidget(), input);
}
