#pragma once

#include "OssCore/OssCore_export.h"

#include <QString>
#include <QStringList>

/// Where the application's own files lie. Folders come without a trailing slash. They are looked
/// for beside the running program (installed: ../share/ossa) and in the source tree it was built
/// from; the environment variable OSSA_ROOT comes before both.
class OSSCORE_EXPORT OssResourceInfo
{
public:
    static OssResourceInfo *instance();

    QString iconPath() const;
    QString nodeTypePath() const;
    /// Node types that are ready materials: groups with all that is in them.
    QString materialPath() const;
    QString exportPresetPath() const;
    QString examplePath() const;
    /// The chapters as they were written.
    QString manualSourcePath() const;
    /// The manual as pages for a browser, with its pictures and the examples of node types. Not there
    /// before it was built.
    QString manualPath() const;
    /// The program's own plug-ins, and those of other packages.
    QString pluginPath() const;
    /// Where plug-ins of others lie, and node types in a folder "NodeTypes" beside them: the user's own folder, then
    /// those that OSSA_PLUGIN_PATH names. Only whole paths count, so that nothing beside a project is ever loaded.
    static QStringList extensionPaths();
    /// All folders of node types that there are, ready materials among them: the program's, then those of others.
    QStringList nodeTypePaths() const;

    /// Names under which file dialogs remember their last folder.
    QString defaultGizmoPathKey() const { return QStringLiteral("GizmoPath"); }

    QString defaultExportNodeGraphPathKey() const { return QStringLiteral("ExportNodeGraphPath"); }

    QString defaultMaterialPathKey() const { return QStringLiteral("MaterialPath"); }

    QString defaultCustomProceduralPathKey() const
    {
        return QStringLiteral("CustomProceduralPath");
    }

    QString defaultImportNodeGraphPathKey() const { return QStringLiteral("ImportNodeGraphPath"); }

private:
    OssResourceInfo();

    QString m_root;
    bool m_isInstalled = false;
};
