#include "Ossa/Window/MainMenus.h"

#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssInterface/Actions/OssCommandTable.h"
#include "OssInterface/Actions/OssMenu.h"
#include "OssInterface/Actions/OssMenuManager.h"

#include <QCoreApplication>
#include <QMenuBar>
#include <QSet>

namespace {

const QString menuGroup = QStringLiteral("Main");
const QString graphMenu = QStringLiteral("Graph");

} // namespace

MainMenus::MainMenus(QMenuBar *bar)
    : QObject(bar)
{
    for (const OssCommandTable::Menu &row : OssCommandTable::barMenus()) {
        const QString name = QString::fromLatin1(row.name);
        auto *menu = new OssMenu(OssCommandTable::title(row));
        menu->setParent(bar, menu->windowFlags()); // owned by the bar
        bar->addMenu(menu);
        m_menus.append({menu, name});
        connect(menu, &QMenu::aboutToShow, this, [this, menu, name] { fill(menu, name); });
    }
    // Plug-ins file commands by the dozen: one look at the end is enough.
    m_refresh.setSingleShot(true);
    m_refresh.setInterval(0);
    connect(&m_refresh, &QTimer::timeout, this, &MainMenus::refreshVisibility);
    const auto *tree = OssActionTreeManager::instance();
    const auto start = qOverload<>(&QTimer::start);
    connect(tree, &OssActionTreeManager::actionRegistered, &m_refresh, start);
    connect(tree, &OssActionTreeManager::actionRemoved, &m_refresh, start);
    refreshVisibility();
}

QStringList MainMenus::unplacedGraphCommands()
{
    QSet<QString> placed;
    for (const OssCommandTable::Menu &menu : OssCommandTable::barMenus()) {
        const QStringList paths = OssMenuManager::instance()->commandPaths(
            menuGroup, QString::fromLatin1(menu.name));
        placed.unite(QSet<QString>(paths.cbegin(), paths.cend()));
    }
    QStringList unplaced;
    const auto entries = OssActionTreeManager::instance()->entries(
        QStringLiteral("/Ossa/NodeGraph"), true);
    for (const OssActionTreeManager::Entry &entry : entries) {
        if (!placed.contains(entry.path) && !unplaced.contains(entry.path))
            unplaced.append(entry.path);
    }
    return unplaced;
}

void MainMenus::fill(QMenu *menu, const QString &name)
{
    OssMenuManager::instance()->fillMenu(menu, menuGroup, name);
    if (name != graphMenu)
        return;
    const QStringList unplaced = unplacedGraphCommands();
    if (unplaced.isEmpty())
        return;
    auto *more = new OssMenu(tr("More"), menu); // owned by the menu
    for (const QString &path : unplaced)
        more->addAction(OssActionTreeManager::instance()->findAction(path));
}

void MainMenus::refreshVisibility()
{
    for (const Entry &entry : qAsConst(m_menus)) {
        bool used = entry.name == graphMenu && !unplacedGraphCommands().isEmpty();
        const QStringList paths = OssMenuManager::instance()->commandPaths(menuGroup, entry.name);
        for (const QString &path : paths)
            used = used || OssActionTreeManager::instance()->findAction(path);
        entry.menu->menuAction()->setVisible(used);
    }
}
