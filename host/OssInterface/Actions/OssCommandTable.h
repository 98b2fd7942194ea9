#pragma once

#include "OssInterface/Actions/OssMenuDefinition.h"
#include "OssInterface/OssInterface_export.h"

#include <QKeySequence>
#include <QList>
#include <QString>

#include <vector>

class QAction;
class QObject;

/// All commands of the application, one row each: what it is known by, its keys, where it stands in
/// menus, when it can be used. The rows stand in OssCommandRows.cpp, the one place where they are
/// written down; whoever carries a command out has its action made here and files it under its path.
namespace OssCommandTable {

/// What must hold for a command to be enabled. Most commands are always: they say themselves what
/// they miss.
enum When {
    Always,
    WithProject,
    WithUndo,
    WithRedo,
    WithRecent,
    WithScript,
    WithoutScript,
    WithBrush,  ///< the Viewer's patches are painted on
    WithKnobs,  ///< a group is selected, or shown: its knobs are meant
    WithExposed ///< in the group that is shown a node is selected whose values can become knobs
};

struct Row
{
    /// Identity in the action tree: folder and name. The name, translated, is what users read.
    /// "*" stands for whatever is filed there while the program runs. Keys of "/Ossa/NodeGraph" act
    /// in the graph alone, those of "/Ossa/Viewer" in the Viewer's pictures, those of "/Ossa/Properties"
    /// in panels: the same key may stand in all of them.
    const char *folder = "";
    const char *name = "";
    /// Default keys as portable text; alternatives are separated by a blank.
    const char *keys = "";
    /// "Menu SECTION.PLACE", several separated by ", ". Sections are parted by a line.
    const char *places = "";
    When when = Always;
    const char *tip = "";  ///< what it does, in one line: status bar, command palette, tool tips
    const char *icon = ""; ///< file in the icon folder
};

/// A menu that rows name. Without places it stands in the main window's bar, in the table's order,
/// but for "Context", which the node graph shows.
struct Menu
{
    const char *name;
    const char *title;
    const char *places;
};

OSSINTERFACE_EXPORT const std::vector<Row> &rows();
OSSINTERFACE_EXPORT const std::vector<Menu> &menus();

OSSINTERFACE_EXPORT QString path(const Row &row);

/// Null for a path that has no row of its own.
OSSINTERFACE_EXPORT const Row *find(const QString &path);

/// What users read.
OSSINTERFACE_EXPORT QString text(const Row &row);
OSSINTERFACE_EXPORT QString tip(const Row &row);
OSSINTERFACE_EXPORT QString title(const Menu &menu);

/// Keys until the user says otherwise; empty for commands without any.
OSSINTERFACE_EXPORT QList<QKeySequence> keys(const QString &path);

/// The action of a row, with its name, text, tip and icon but without keys, not yet filed. The
/// owner owns it. A path without a row leaves a line in the log and an action with that name.
OSSINTERFACE_EXPORT QAction *makeAction(const QString &path, QObject *owner);

/// When the command can be used; what a folder's own row ("*") says counts for all that is filed below
/// it without a row.
OSSINTERFACE_EXPORT When whenOf(const QString &path);

/// Whether what `when` says holds now: enables the commands that need it, and disables them, those
/// that are filed later too.
OSSINTERFACE_EXPORT void setHolds(When when, bool holds);

/// What a disabled command misses, as one line for the status bar: "Redo: there is nothing to redo".
OSSINTERFACE_EXPORT QString whyDisabled(const QString &path);

/// What stands in a menu, submenus included.
OSSINTERFACE_EXPORT OssMenuDefinition menu(const QString &name);

/// Menus of the main window's bar, in order.
OSSINTERFACE_EXPORT std::vector<Menu> barMenus();

} // namespace OssCommandTable
