#pragma once

#include "OssScriptObjects/OssaAPI.h"
#include "OssScriptObjects/OssScriptObjects_export.h"

#include <QList>
#include <QStringList>

namespace Ossa {

class Actions;
class NodeGraph;
class Palette;
class Preferences;
class Progress;
class Project;
class Undo;

/// The program: what scripts begin with.
class OSSSCRIPTOBJECTS_EXPORT Application : public API
{
    Q_OBJECT
    Q_CLASSINFO("doc", "The program. What it has can be called on the module itself.")
    Q_PROPERTY(QString version READ version)
    Q_CLASSINFO("project", "The open project; None when there is none.")
    Q_CLASSINFO("newProject", "Starts an empty project with one object, a plane, a sphere, a cube "
                              "or a file. The open one is closed without saving it.")
    Q_CLASSINFO("openProject", "Opens a project folder. The open one is closed without saving it, "
                               "but only when the other one can be opened.")
    Q_CLASSINFO("graph", "The root graph of the current object; None without a project.")
    Q_CLASSINFO("shownGraph", "The graph that the Node Graph palette shows.")
    Q_CLASSINFO("nodeTypes", "Every type that can be made in a graph.")
    Q_CLASSINFO("palettes", "Names of all palettes.")
    Q_CLASSINFO("palette", "By name; a palette that has a script class of its own comes as that.")
    Q_CLASSINFO("actions", "The commands of the program.")
    Q_CLASSINFO("preferences", "The preferences.")
    Q_CLASSINFO("undo", "The history.")
    Q_CLASSINFO("status", "The progress in the status bar.")
    Q_CLASSINFO("trigger", "The same as actions().trigger(path).")

public:
    explicit Application(QObject *application);
    ~Application() override;

    QString version() const;

public Q_SLOTS:
    Project *project() const;
    Project *newProject(const QString &name, const QString &geometry = QStringLiteral("plane"));
    Project *openProject(const QString &path);
    NodeGraph *graph() const;
    NodeGraph *shownGraph() const;
    QStringList nodeTypes() const;
    QStringList palettes() const;
    Palette *palette(const QString &name) const;
    Actions *actions() const;
    Preferences *preferences() const;
    Undo *undo() const;
    Progress *status() const;
    void trigger(const QString &path) const;
};

} // namespace Ossa
