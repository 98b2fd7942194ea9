#include "OssInterface/Actions/OssMenu.h"

#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssInterface/Actions/OssShortcutManager.h"

#include <QActionEvent>

#include <algorithm>

OssMenu::OssMenu(const QString &title, QMenu *parentMenu)
    : QMenu(title, parentMenu)
{
    setToolTipsVisible(true);
    if (parentMenu)
        parentMenu->addMenu(this);
}

QMenu *OssMenu::submenu(QMenu *menu, const QStringList &titles)
{
    for (const QString &title : titles) {
        const QList<QAction *> entries = menu->actions();
        const auto found = std::find_if(entries.cbegin(), entries.cend(),
                                        [&title](const QAction *entry) {
                                            return entry->menu() && entry->menu()->title() == title;
                                        });
        menu = found == entries.cend() ? new OssMenu(title, menu) : (*found)->menu();
    }
    return menu;
}

void OssMenu::setShortcutGroup(const QString &group)
{
    m_shortcutGroup = group;
    const QList<QAction *> commands = actions();
    for (const QAction *action : commands)
        assignShortcutGroup(action);
}

void OssMenu::actionEvent(QActionEvent *event)
{
    QMenu::actionEvent(event);
    if (event->type() == QEvent::ActionAdded)
        assignShortcutGroup(event->action());
}

void OssMenu::assignShortcutGroup(const QAction *action) const
{
    if (m_shortcutGroup.isEmpty() || action->isSeparator() || action->menu())
        return;
    const QString path = OssActionTreeManager::instance()->pathOf(action);
    if (!path.isEmpty())
        OssShortcutManager::instance()->assignGroup(path, m_shortcutGroup);
}
