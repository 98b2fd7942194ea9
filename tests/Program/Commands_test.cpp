#include "Ossa/Scripting/ConsoleInput.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssInterface/Actions/OssCommandTable.h"
#include "OssInterface/Palettes/OssPalette.h"
#include "OssInterface/Palettes/OssPaletteManager.h"
#include "Program/StartedProgram.h"

#include <QAction>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QSet>

namespace {

using Commands = StartedProgram;

QString text(const QString &path)
{
    QFile file(qEnvironmentVariable("OSSA_ROOT") + QLatin1Char('/') + path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(path);
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

TEST_F(Commands, everyRowIsCarriedOutBySomeone)
{
    const auto *tree = OssActionTreeManager::instance();
    for (const OssCommandTable::Row &row : OssCommandTable::rows()) {
        const QString path = OssCommandTable::path(row);
        const bool isFolder = path.endsWith(QLatin1Char('*'));
        EXPECT_TRUE(isFolder || tree->findAction(path)) << qPrintable(path);
    }
}

TEST_F(Commands, everyCommandHasARow)
{
    const QStringList paths = OssActionTreeManager::instance()->paths();
    for (const QString &path : paths)
        EXPECT_TRUE(OssCommandTable::find(path) || isInOpenFolder(path)) << qPrintable(path);
    EXPECT_GT(paths.size(), 120);
}

TEST_F(Commands, everyCommandReadsAsItsRowSays)
{
    for (const OssCommandTable::Row &row : OssCommandTable::rows()) {
        const QString path = OssCommandTable::path(row);
        const QAction *action = OssActionTreeManager::instance()->findAction(path);
        if (!action)
            continue; // a folder
        // "Undo" goes on with the title of the step.
        EXPECT_TRUE(action->text().startsWith(OssCommandTable::text(row))) << qPrintable(path);
        EXPECT_EQ(action->statusTip(), OssCommandTable::tip(row)) << qPrintable(path);
        EXPECT_EQ(action->icon().isNull(), !*row.icon) << qPrintable(path);
    }
}

TEST_F(Commands, everyCommandThatDocumentsNameIsThere)
{
    static const QRegularExpression named(QStringLiteral("/Ossa/\\w+/[\\w. -]*[\\w.]"));
    static const QRegularExpression inMenu(
        QStringLiteral("\\b(File|Edit|View|Node Graph|Script|Help) > ([A-Z][\\w ]*\\w)"));
    const auto *tree = OssActionTreeManager::instance();
    QSet<QString> texts;
    for (const OssActionTreeManager::Entry &entry : tree->entries())
        texts.insert(entry.action->text().remove(QLatin1Char('&')).remove(QStringLiteral("...")));
    for (const OssCommandTable::Menu &menu : OssCommandTable::menus())
        texts.insert(OssCommandTable::title(menu));
    int found = 0;
    for (const char *document : {"README.md", "docs/scripting.md", "docs/architecture.md"}) {
        const QString all = text(QString::fromLatin1(document));
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
    OssPalette *palette = OssPaletteManager::instance()->find(
        QStringLiteral("script_console_palette"));
    ASSERT_NE(palette, nullptr);
    const auto *input = palette->findChild<ConsoleInput *>();
    ASSERT_NE(input, nullptr);
    s_window->activateWindow();
    s_window->setFocus();
    OssActionTreeManager::instance()->findAction(QStringLiteral("/Ossa/Script/Console"))->trigger();
    EXPECT_TRUE(palette->isVisible());
    EXPECT_EQ(s_window->focusWidget(), input);
}
