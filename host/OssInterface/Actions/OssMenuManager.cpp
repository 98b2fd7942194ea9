#include "OssInterface/Actions/OssMenuManager.h"

#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssInterface/Actions/OssCommandTable.h"
#include "OssInterface/Actions/OssMenu.h"

#include <QStringList>
#include <QVector>

#include <memory>

namespace {

using Item = OssMenuDefinition::Item;

void addFolder(QMenu *menu, const QString &folder)
{
    const QString root = OssActionTreeManager::normalizedPath(folder);
    const auto entries = OssActionTreeManager::instance()->entries(folder, true);
    for (const OssActionTreeManager::Entry &entry : entries) {
        const QString inside = OssActionTreeManager::folderOf(entry.path).mid(root.size());
        const QStringList titles = inside.split(QLatin1Char('/'), Qt::SkipEmptyParts);
        OssMenu::submenu(menu, titles)->addAction(entry.action);
    }
}

/// Fills one level and returns the index of the item after it.
int fillLevel(QMenu *menu, const QVector<Item> &items, int index)
{
    bool separate = false;
    const auto separateIfWanted = [menu, &separate] {
        if (separate && !menu->isEmpty())
            menu->addSeparator();
        separate = false;
    };
    for (; index < items.size() && items.at(index).kind != Item::End; ++index) {
        const Item &item = items.at(index);
        if (item.kind == Item::Separator) {
            separate = true;
        } else if (item.kind == Item::Command) {
            QAction *action = OssActionTreeManager::instance()->findAction(item.text);
            if (!action)
                continue;
            separateIfWanted();
            menu->addAction(action);
        } else if (item.kind == Item::Folder) {
            if (OssActionTreeManager::instance()->entries(item.text, true).isEmpty())
                continue;
            separateIfWanted();
            addFolder(menu, item.text);
        } else {
            auto submenu = std::make_unique<OssMenu>(item.text);
            index = fillLevel(submenu.get(), items, index + 1);
            if (submenu->isEmpty())
                continue;
            separateIfWanted();
            submenu->setParent(menu, submenu->windowFlags());
            menu->addMenu(submenu.release()); // owned by its new parent
        }
    }
    return index;
}

} // namespace

OssMenuManager::OssMenuManager()
{
    const QString context = QStringLiteral("Context");
    defineMenu(context, QStringLiteral("NodeGraph"), OssCommandTable::menu(context));
    for (const OssCommandTable::Menu &menu : OssCommandTable::barMenus()) {
        const QString name = QString::fromLatin1(menu.name);
        defineMenu(QStringLiteral("Main"), name, OssCommandTable::menu(name));
    }
}

void OssMenuManager::defineMenu(const QString &group, const QString &name,
                                const OssMenuDefinition &definition)
{
    m_definitions.insert({group, name}, definition);
}

OssMenu *OssMenuManager::makeMenu(const QString &group, const QString &name) const
{
    if (!m_definitions.contains({group, name}))
        return nullptr;
    auto *menu = new OssMenu(name); // the caller's
    fillMenu(menu, group, name);
    return menu;
}

bool OssMenuManager::fillMenu(QMenu *menu, const QString &group, const QString &name) const
{
    const auto definition = m_definitions.constFind({group, name});
    if (definition == m_definitions.cend())
        return false;
    // clear() deletes what the menu owns; submenus are its children and go by hand.
    const QList<QMenu *> submenus = menu->findChildren<QMenu *>(QString(),
                                                                Qt::FindDirectChildrenOnly);
    menu->clear();
    qDeleteAll(submenus);
    fillLevel(menu, definition->items, 0);
    return true;
}

QStringList OssMenuManager::commandPaths(const QString &group, const QString &name) const
{
    QStringList paths;
    const OssMenuDefinition definition = m_definitions.value({group, name});
    for (const Item &item : definition.items) {
        if (item.kind == Item::Command)
            paths.append(OssActionTreeManager::normalizedPath(item.text));
        if (item.kind != Item::Folder)
            continue;
        const auto entries = OssActionTreeManager::instance()->entries(item.text, true);
        for (const OssActionTreeManager::Entry &entry : entries)
            paths.append(entry.path);
    }
    return paths;
}
