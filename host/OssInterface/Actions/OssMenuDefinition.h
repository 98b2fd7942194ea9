#pragma once

#include <QString>
#include <QVector>

/// What stands in a menu, from top to bottom: commands by path, separators, submenus, and whole
/// folders of the action tree.
struct OssMenuDefinition
{
    struct Item
    {
        enum Kind {
            Command,   ///< `text` is an action path; left out while there is no such action
            Separator, ///< only drawn between two items that are there
            Submenu,   ///< `text` is the title, the items up to the matching End are inside
            End,
            Folder ///< everything filed below the action path `text`, with submenus
        };

        Kind kind;
        QString text;
    };

    QVector<Item> items;
};
