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

QString OssMenu::asTyped(const QString &text)
{
    return QString(text).replace(QLatin1Char('&'), QLatin1String("&&"));
}

QString OssMenu::asSeen(const QString &text)
{
    QString seen;
    for (int i = 0; i < text.size(); ++i) {
        if (text.at(i) == QLatin1Char('&') && i + 1 < text.size())
            ++i;
        seen += text.at(i);
    }
    return seen;
}

QMenu *OssMenu::submenu(QMenu *menu, const QStringList &titles)
{
    for (const QString &name : titles) {
        const QString title = asTyped(name);
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
