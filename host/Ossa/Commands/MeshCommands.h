#pragma once

#include <QObject>
#include <QPointer>
#include <QVector>

class NewProjectDialog;
class OssGeoEntity;
class OssProject;
class ProjectCommands;
class QAction;
class QWidget;
struct OssGeometrySource;

/// The commands that bring meshes in, give objects other ones and find files again. The object that they
/// work on is that of the current graph.
class MeshCommands : public QObject
{
    Q_OBJECT

public:
    /// `window` is the parent of dialogs; this object must not outlive it.
    MeshCommands(ProjectCommands *projects, QWidget *window);

    /// Asks how the file is to be understood and makes objects of it; starts a project for it where none
    /// is open.
    void importFile(const QString &path);
    void showMissingFiles();

Q_SIGNALS:
    /// What the user has to know although nothing asked for it; empty once that is no longer so.
    void trouble(const QString &text);

private:
    void fileCommands();
    void followMeshes();
    void fileObjects();
    void markCurrent();
    void tellTroubles();
    void newProject();
    /// With what the dialog asked for.
    void fill(OssProject *project, const NewProjectDialog &dialog);
    void addObject();
    void renameObject();
    void removeObject();
    void addGeoChannel();
    void replaceMesh();
    void changeMesh();
    void relinkMesh();
    void reloadMesh();
    void giveShape(const OssGeometrySource &source, const QString &title);
    void showObject(OssGeoEntity *entity);
    static OssGeoEntity *currentObject();

    struct ObjectCommand
    {
        QPointer<QAction> action;
        QPointer<OssGeoEntity> object; ///< what it shows
    };

    ProjectCommands *m_projects;
    QWidget *m_window;
    QVector<ObjectCommand> m_objects;
    QString m_told; ///< which troubles, so that each is told once
};
