#include "OssInterface/Actions/OssCommandTable.h"

#include "OssCore/Program/OssDebug.h"
#include "OssCore/Program/OssIcon.h"
#include "OssInterface/Actions/OssActionTreeManager.h"

#include <QAction>
#include <QCoreApplication>
#include <QHash>
#include <QStringList>

#include <algorithm>
#include <cstring>

namespace {

using namespace OssCommandTable;
using Item = OssMenuDefinition::Item;

/// One thing in a menu: a row or a submenu.
struct Place
{
    int section;
    int order;
    const Row *row;
    const Menu *submenu;
};

/// What is missing where the condition does not hold.
const char *reason(When when)
{
    switch (when) {
    case WithProject:
        return QT_TRANSLATE_NOOP("OssCommandTable", "open a project first");
    case WithUndo:
        return QT_TRANSLATE_NOOP("OssCommandTable", "there is nothing to undo");
    case WithRedo:
        return QT_TRANSLATE_NOOP("OssCommandTable", "there is nothing to redo");
    case WithRecent:
        return QT_TRANSLATE_NOOP("OssCommandTable", "no project was opened yet");
    case WithScript:
        return QT_TRANSLATE_NOOP("OssCommandTable", "no script runs");
    case WithoutScript:
        return QT_TRANSLATE_NOOP("OssCommandTable", "another script runs");
    case WithBrush:
        return QT_TRANSLATE_NOOP("OssCommandTable", "paint on the patches first");
    case WithKnobs:
        return QT_TRANSLATE_NOOP("OssCommandTable", "select a group first");
    case WithExposed:
        return QT_TRANSLATE_NOOP("OssCommandTable",
                                 "select a node with properties inside a group first");
    case Always:
        break;
    }
    return QT_TRANSLATE_NOOP("OssCommandTable", "not now");
}

/// The place in the menu among "Edit 2.1, Context 2.1"; false when it has none there.
bool placeIn(const QString &menu, const char *places, Place *place)
{
    const QStringList all = QString::fromLatin1(places).split(QStringLiteral(", "),
                                                              Qt::SkipEmptyParts);
    for (const QString &text : all) {
        const int blank = text.lastIndexOf(QLatin1Char(' '));
        if (text.left(blank) != menu)
            continue;
        const QStringList numbers = text.mid(blank + 1).split(QLatin1Char('.'));
        place->section = numbers.value(0).toInt();
        place->order = numbers.value(1).toInt();
        return true;
    }
    return false;
}

std::vector<Place> placesIn(const QString &menu)
{
    std::vector<Place> found;
    Place place{};
    for (const Row &row : rows()) {
        if (placeIn(menu, row.places, &place))
            found.push_back({place.section, place.order, &row, nullptr});
    }
    for (const Menu &submenu : menus()) {
        if (placeIn(menu, submenu.places, &place))
            found.push_back({place.section, place.order, nullptr, &submenu});
    }
    std::stable_sort(found.begin(), found.end(), [](const Place &a, const Place &b) {
        return std::make_pair(a.section, a.order) < std::make_pair(b.section, b.order);
    });
    return found;
}

void addMenu(const QString &menu, QVector<Item> *items)
{
    const std::vector<Place> places = placesIn(menu);
    for (std::size_t i = 0; i < places.size(); ++i) {
        const Place &place = places[i];
        if (i > 0 && place.section != places[i - 1].section)
            items->append(Item{Item::Separator, {}});
        if (place.submenu) {
            items->append({Item::Submenu, title(*place.submenu)});
            addMenu(QString::fromLatin1(place.submenu->name), items);
            items->append(Item{Item::End, {}});
            continue;
        }
        if (std::strcmp(place.row->name, "*") == 0)
            items->append({Item::Folder, QString::fromLatin1(place.row->folder)});
        else
            items->append({Item::Command, path(*place.row)});
    }
}

QString translated(const char *text)
{
    return *text ? QCoreApplication::translate("OssCommandTable", text) : QString();
}

QHash<QString, const Row *> rowsByPath()
{
    QHash<QString, const Row *> found;
    for (const Row &row : rows())
        found.insert(path(row), &row);
    return found;
}

} // namespace

QString OssCommandTable::path(const Row &row)
{
    return QString::fromLatin1(row.folder) + QLatin1Char('/') + QString::fromLatin1(row.name);
}

const Row *OssCommandTable::find(const QString &path)
{
    static const QHash<QString, const Row *> byPath = rowsByPath();
    return byPath.value(path);
}

QString OssCommandTable::text(const Row &row)
{
    return translated(row.name);
}

QString OssCommandTable::tip(const Row &row)
{
    return translated(row.tip);
}

QString OssCommandTable::title(const Menu &menu)
{
    return translated(menu.title);
}

QList<QKeySequence> OssCommandTable::keys(const QString &path)
{
    QList<QKeySequence> keys;
    const Row *row = find(path);
    const QStringList texts = QString::fromLatin1(row ? row->keys : "")
                                  .split(QLatin1Char(' '), Qt::SkipEmptyParts);
    for (const QString &text : texts)
        keys.append(QKeySequence::fromString(text, QKeySequence::PortableText));
    return keys;
}

QAction *OssCommandTable::makeAction(const QString &path, QObject *owner)
{
    const QString name = OssActionTreeManager::nameOf(path);
    const Row *row = find(path);
    if (!row)
        OssDebug("OssCommandTable", __LINE__, "[ !! ] The command %s is in no table",
                 qPrintable(path));
    auto *action = new QAction(row ? text(*row) : name, owner);
    OssActionTreeManager::setName(action, name);
    // Qt would guess roles from texts and move commands between menus on some desktops.
    action->setMenuRole(QAction::NoRole);
    if (row)
        action->setStatusTip(tip(*row));
    if (row && *row->icon)
        action->setIcon(OssIcon::createIconFromFilename(QString::fromLatin1(row->icon)));
    return action;
}

When OssCommandTable::whenOf(const QString &path)
{
    if (const Row *row = find(path))
        return row->when;
    QString folder = path;
    while (folder.size() > 1) {
        folder = OssActionTreeManager::folderOf(folder);
        if (const Row *row = find(folder + QStringLiteral("/*")))
            return row->when;
    }
    return Always;
}

void OssCommandTable::setHolds(When when, bool holds)
{
    OssActionTreeManager::instance()->setHolds(when, holds);
}

QString OssCommandTable::whyDisabled(const QString &path)
{
    const Row *row = find(path);
    QString name = row ? text(*row) : OssActionTreeManager::nameOf(path);
    return QCoreApplication::translate("OssCommandTable", "%1: %2")
        .arg(name.remove(QStringLiteral("...")),
             QCoreApplication::translate("OssCommandTable", reason(whenOf(path))));
}

OssMenuDefinition OssCommandTable::menu(const QString &name)
{
    OssMenuDefinition definition;
    addMenu(name, &definition.items);
    return definition;
}

std::vector<Menu> OssCommandTable::barMenus()
{
    std::vector<Menu> bar;
    for (const Menu &menu : menus()) {
        if (!*menu.places && std::strcmp(menu.name, "Context") != 0)
            bar.push_back(menu);
    }
    return bar;
}
