#include "Ossa/Commands/MeshCommands.h"

#include "Ossa/Commands/Commands.h"
#include "Ossa/Commands/ProjectCommands.h"
#include "Ossa/Dialogs/MeshDialog.h"
#include "Ossa/Dialogs/MissingFilesDialog.h"
#include "Ossa/Dialogs/NewProjectDialog.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssInterface/Popups/OssApplication.h"
#include "OssInterface/Popups/OssMessageBox.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssShadingGroup.h"
#include "OssModel/Objects/OssMeshes.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectManager.h"
#include "OssModel/Project/OssProjectMeshes.h"

#include <QAction>
#include <QFileInfo>
#include <QInputDialog>
#include <QPointer>

namespace {

const QString objectFolder = QStringLiteral("/Ossa/Mesh/Show/");

OssProject *currentProject()
{
    return OssProjectManager::instance()->currentProject();
}

void tell(const QString &text)
{
    OssStatusManager::instance()->showMessage(text);
}

} // namespace

MeshCommands::MeshCommands(ProjectCommands *projects, QWidget *window)
    : QObject(window)
    , m_projects(projects)
    , m_window(window)
{
    fileCommands();
    followMeshes();
    fileObjects();
}

void MeshCommands::fileCommands()
{
    const auto file = [this](const char *path, void (MeshCommands::*run)()) {
        Commands::file(this, QLatin1String(path), [this, run] { (this->*run)(); });
    };
    file("/Ossa/File/New Project...", &MeshCommands::newProject);
    file("/Ossa/File/Missing Files...", &MeshCommands::showMissingFiles);
    file("/Ossa/Mesh/Add Object...", &MeshCommands::addObject);
    file("/Ossa/Mesh/Rename Object...", &MeshCommands::renameObject);
    file("/Ossa/Mesh/Remove Object", &MeshCommands::removeObject);
    file("/Ossa/Mesh/Add Geo-Channel...", &MeshCommands::addGeoChannel);
    file("/Ossa/Mesh/Replace Mesh...", &MeshCommands::replaceMesh);
    file("/Ossa/Mesh/Mesh Settings...", &MeshCommands::changeMesh);
    file("/Ossa/Mesh/Relink Mesh...", &MeshCommands::relinkMesh);
    file("/Ossa/Mesh/Reload Mesh", &MeshCommands::reloadMesh);
    Commands::file(this, QStringLiteral("/Ossa/File/Import Mesh..."), [this] {
        const QString path = MeshPanel::askForFile(tr("Import Mesh"), m_window);
        if (!path.isEmpty())
            importFile(path);
    });
}

void MeshCommands::followMeshes()
{
    const OssMeshes *meshes = OssMeshes::instance();
    connect(meshes, &OssMeshes::changed, this, &MeshCommands::tellTroubles);
    // Objects come, go and get meshes that were read before. Not in the midst of an edit.
    connect(OssUndoManager::instance(), &OssUndoManager::changed, this, &MeshCommands::tellTroubles,
            Qt::QueuedConnection);
    connect(meshes, &OssMeshes::reread, this, [](const QString &path, const QString &changes) {
        tell(tr("%1 was read again: %2").arg(QFileInfo(path).fileName(), changes));
    });
    connect(meshes, &OssMeshes::readingChanged, this, [](const QString &path, int thousandths) {
        tell(tr("Reading %1: %2 % (Esc stops it)")
                 .arg(QFileInfo(path).fileName())
                 .arg(thousandths / 10));
    });
    connect(meshes, &OssMeshes::readingEnded, this, [] { tell({}); });
    connect(OssStatusManager::instance(), &OssStatusManager::stopAsked, meshes,
            [] { OssMeshes::instance()->stopReading(); });
    const OssProjectManager *projects = OssProjectManager::instance();
    connect(projects, &OssProjectManager::projectClosed, this, [this] {
        m_told.clear();
        Q_EMIT trouble({});
        fileObjects();
    });
    // Those of another project are others: they are told anew. Not in the midst of an edit.
    const auto follow = [this](OssProject *project) {
        connect(project, &OssProject::entitiesChanged, this, &MeshCommands::fileObjects,
                Qt::ConnectionType(Qt::QueuedConnection));
        fileObjects();
        tellTroubles();
    };
    connect(projects, &OssProjectManager::projectOpenCompleted, this, follow);
    connect(OssShaderNetworkManager::instance(),
            &OssShaderNetworkManager::currentShaderNetworkChanged, this,
            &MeshCommands::markCurrent);
}

void MeshCommands::tellTroubles()
{
    QStringList texts;
    const auto troubles = OssProjectMeshes::troubles(currentProject());
    for (const OssProjectMeshes::Trouble &trouble : troubles) {
        if (trouble.isMissing)
            texts.append(tr("%1: %2").arg(trouble.entity->name(), trouble.text));
    }
    const QString told = texts.join(QLatin1Char('\n'));
    if (told == m_told)
        return;
    m_told = told;
    Q_EMIT trouble(told);
}

// --- objects

OssGeoEntity *MeshCommands::currentObject()
{
    const OssShaderNetwork *network = OssShaderNetworkManager::instance()->currentShaderNetwork();
    return network ? network->geoEntity() : nullptr;
}

void MeshCommands::showObject(OssGeoEntity *entity)
{
    OssShaderNetworkManager::instance()->setCurrentShaderNetwork(
        entity->shadingGroups().first()->network());
}

void MeshCommands::fileObjects()
{
    for (const ObjectCommand &command : qAsConst(m_objects))
        delete command.action; // and it drops out of the tree
    m_objects.clear();
    const OssProject *project = currentProject();
    const QList<OssGeoEntity *> entities = project ? project->entities() : QList<OssGeoEntity *>();
    for (OssGeoEntity *entity : entities) {
        const QPointer<OssGeoEntity> shown = entity;
        // Queued: the list is filed anew when objects change, and deletes the command that is running.
        QAction *action = Commands::fileNamed(
            this, objectFolder, entity->name(),
            [this, shown] {
                QMetaObject::invokeMethod(
                    this,
                    [this, shown] {
                        if (shown && currentProject()->entities().contains(shown))
                            showObject(shown);
                        markCurrent(); // a click took the mark away
                    },
                    Qt::QueuedConnection);
            },
            tr("Show the graph of %1 (%2)").arg(entity->name(), entity->source().title()));
        action->setCheckable(true);
        m_objects.append({action, shown});
    }
    markCurrent();
}

void MeshCommands::markCurrent()
{
    // The list is filed anew a little later than objects go.
    for (const ObjectCommand &command : qAsConst(m_objects)) {
        if (command.action)
            command.action->setChecked(command.object && command.object == currentObject());
    }
}

void MeshCommands::addObject()
{
    const QPointer<OssProject> project = currentProject();
    if (!project || !OssApplication::popupsAllowed())
        return;
    QStringList titles;
    const QStringList shapes = OssGeometrySource::shapes();
    for (const QString &shape : shapes)
        titles.append(OssGeometrySource::shapeTitle(shape));
    titles.append(tr("Mesh File..."));
    bool chosen = false;
    const QString title = QInputDialog::getItem(m_window, tr("Add Object"), tr("Its shape:"),
                                                titles, 0, false, &chosen);
    if (!chosen || !project) // which a script may have closed meanwhile
        return;
    OssGeometrySource source;
    source.shape = shapes.value(titles.indexOf(title));
    if (source.shape.isEmpty()) {
        const QString path = MeshPanel::askForFile(tr("Add Object"), m_window);
        if (!path.isEmpty())
            importFile(path);
        return;
    }
    showObject(project->createEntity(project->freeEntityName(title), source));
    OssShaderNetworkManager::instance()->emitNodeGraphIsManuallyChanged();
}

void MeshCommands::renameObject()
{
    const QPointer<OssGeoEntity> entity = currentObject();
    if (!entity || !OssApplication::popupsAllowed())
        return;
    bool chosen = false;
    const QString name = QInputDialog::getText(m_window, tr("Rename Object"), tr("Its name:"),
                                               QLineEdit::Normal, entity->name(), &chosen)
                             .trimmed();
    if (!chosen || !entity || !currentProject() || name.isEmpty() || name == entity->name())
        return;
    if (currentProject()->entity(name)) {
        OssMessageBox::warning(m_window, tr("Rename Object"),
                               tr("Another object is called \"%1\".").arg(name));
        return;
    }
    entity->changeName(name);
    fileObjects();
}

void MeshCommands::addGeoChannel()
{
    const QPointer<OssGeoEntity> entity = currentObject();
    if (!entity || !OssApplication::popupsAllowed())
        return;
    const QString title = tr("Add Geo-Channel");
    bool chosen = false;
    const QString name = QInputDialog::getText(m_window, title, tr("Its name:"), QLineEdit::Normal,
                                               {}, &chosen)
                             .trimmed();
    if (!chosen || !entity || name.isEmpty())
        return;
    if (entity->addGeoImageSet(name))
        tell(tr("%1 has the geo-channel %2").arg(entity->name(), name));
    else
        OssMessageBox::warning(m_window, title,
                               tr("The object has a geo-channel \"%1\" already.").arg(name));
}

void MeshCommands::removeObject()
{
    OssProject *project = currentProject();
    OssGeoEntity *entity = currentObject();
    if (!project || !entity)
        return;
    OssUndoManager::instance()->endInteraction();
    if (project->removeEntity(entity))
        OssShaderNetworkManager::instance()->emitNodeGraphIsManuallyChanged();
    else
        OssMessageBox::information(m_window, tr("Remove Object"),
                                   tr("A project has at least one object."));
}

// --- files

void MeshCommands::newProject()
{
    if (!OssApplication::popupsAllowed()) {
        m_projects->newProject();
        return;
    }
    NewProjectDialog dialog(m_window);
    if (dialog.exec() != QDialog::Accepted || !m_projects->mayClose())
        return;
    fill(OssProjectManager::instance()->newProject(dialog.name()), dialog);
    OssUndoManager::instance()->clear(); // it begins with what was asked for
    fileObjects();
}

void MeshCommands::fill(OssProject *project, const NewProjectDialog &dialog)
{
    const OssUndoManager::Pause pause;
    project->setNewResolution(dialog.resolution());
    project->setColors(dialog.colors());
    OssGeoEntity *first = project->entities().first();
    if (!dialog.source().isFile()) {
        first->setSource(dialog.source());
        return;
    }
    QList<OssGeoEntity *> made;
    const OssResult added = OssProjectMeshes::add(project, dialog.read(), first, &made);
    if (!added)
        OssMessageBox::warning(m_window, tr("New Project"), added.error());
    if (!made.isEmpty())
        first->setName(project->freeEntityName(OssProjectMeshes::nameFor(first->source())));
}

void MeshCommands::importFile(const QString &path)
{
    if (!OssApplication::popupsAllowed())
        return;
    OssGeometrySource source;
    source.shape = path;
    MeshDialog dialog(MeshPanel::MakesObjects, tr("Import Mesh"), source, m_window);
    if (dialog.exec() != QDialog::Accepted)
        return;
    if (!currentProject())
        m_projects->newProject();
    QList<OssGeoEntity *> made;
    const OssResult added = OssProjectMeshes::add(currentProject(), dialog.read(), nullptr, &made);
    if (!added) {
        OssMessageBox::warning(m_window, tr("Import Mesh"), added.error());
        return;
    }
    showObject(made.first());
    OssShaderNetworkManager::instance()->emitNodeGraphIsManuallyChanged();
    tell(made.size() == 1 ? tr("Imported %1").arg(made.first()->name())
                          : tr("Imported %1 objects").arg(made.size()));
}

void MeshCommands::giveShape(const OssGeometrySource &source, const QString &title)
{
    const QPointer<OssGeoEntity> entity = currentObject();
    MeshDialog dialog(MeshPanel::GivesShape, title, source, m_window);
    if (dialog.exec() != QDialog::Accepted || !entity)
        return;
    OssMeshes::instance()->take(OssProjectMeshes::shortened(dialog.source()),
                                dialog.read().reading(), dialog.read().content());
    QString changes;
    const OssResult replaced = OssProjectMeshes::replace(entity, dialog.source(), title, &changes);
    if (!replaced)
        OssMessageBox::warning(m_window, title, replaced.error());
    else if (!changes.isEmpty())
        OssMessageBox::information(
            m_window, title,
            tr("%1 is now %2: %3.").arg(entity->name(), dialog.source().title(), changes));
}

void MeshCommands::replaceMesh()
{
    if (!currentObject() || !OssApplication::popupsAllowed())
        return;
    const QString path = MeshPanel::askForFile(tr("Replace Mesh"), m_window);
    if (path.isEmpty())
        return;
    OssGeometrySource source;
    source.shape = path;
    giveShape(source, tr("Replace Mesh"));
}

void MeshCommands::changeMesh()
{
    const OssGeoEntity *entity = currentObject();
    if (!entity || !OssApplication::popupsAllowed())
        return;
    if (entity->hasFile())
        giveShape(entity->source(), tr("Mesh Settings"));
    else
        tell(tr("%1 has a shape without settings").arg(entity->name()));
}

/// The same mesh in another place: what is taken of it, and how, stays.
void MeshCommands::relinkMesh()
{
    const OssGeoEntity *entity = currentObject();
    if (!entity || !entity->hasFile()) {
        tell(tr("Only an object whose mesh is a file can be relinked"));
        return;
    }
    const QString path = MeshPanel::askForFile(tr("Relink Mesh"), m_window);
    if (path.isEmpty())
        return;
    const int count = OssProjectMeshes::relink(currentProject(), {{entity->source().path(), path}});
    tell(count == 1 ? tr("Relinked one object") : tr("Relinked %1 objects").arg(count));
}

void MeshCommands::reloadMesh()
{
    if (const OssGeoEntity *entity = currentObject()) {
        OssMeshes::instance()->reload(entity->source());
        tell(tr("%1 is read again").arg(entity->source().title()));
    }
}

void MeshCommands::showMissingFiles()
{
    if (!currentProject() || !OssApplication::popupsAllowed())
        return;
    MissingFilesDialog dialog(OssProjectMeshes::missing(currentProject()), m_window);
    if (dialog.exec() == QDialog::Accepted && currentProject())
        tell(tr("Relinked %1 uses of files")
                 .arg(OssProjectMeshes::relink(currentProject(), dialog.paths())));
}
