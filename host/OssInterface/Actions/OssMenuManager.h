#pragma once

#include "OssCore/Program/OssService.h"
#include "OssInterface/Actions/OssMenuDefinition.h"
#include "OssInterface/OssInterface_export.h"

#include <QHash>
#include <QMenu>
#include <QPair>
#include <QString>
#include <QStringList>

class OssMenu;

/// Makes menus from definitions, which name commands by their path in the action tree. The host's
/// own definitions are there from the start: ("Context", "NodeGraph") and the pull-down menus of
/// the main window, group "Main". GUI thread.
class OSSINTERFACE_EXPORT OssMenuManager : public OssService<OssMenuManager>
{
public:
    OssMenuManager();

    /// Adds a definition or replaces it.
    void defineMenu(const QString &group, const QString &name, const OssMenuDefinition &definition);

    /// A fresh menu with the commands that exist now. The caller deletes it. Null when nothing of
    /// that name is defined.
    OssMenu *makeMenu(const QString &group, const QString &name) const;

    /// The same into a menu that is there, which is emptied first; the submenus in it are deleted.
    /// False, and nothing happens, when nothing of that name is defined.
    bool fillMenu(QMenu *menu, const QString &group, const QString &name) const;

    /// Paths of the commands that a definition names, whether they exist or not; for a folder,
    /// those that exist.
    QStringList commandPaths(const QString &group, const QString &name) const;

private:
    QHash<QPair<QString, QString>, OssMenuDefinition> m_definitions;
};
