#include "OssModel/Project/OssProjectManager.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssShadingGroup.h"
#include "OssModel/Images/OssColorManagement.h"
#include "OssModel/Images/OssFilePath.h"
#include "OssModel/Images/OssFileWatch.h"
#include "OssModel/Images/OssPixelStore.h"
#include "OssModel/Objects/OssCanvasManager.h"
#include "OssModel/Objects/OssChannel.h"
#include "OssModel/Objects/OssMeshes.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectFile.h"
#include "OssModel/Project/OssProjectPaths.h"

#include <QDir>
#include <QFileInfo>
#include <QPointer>

namespace {

/// What was not read yet could not be kept. Handles events meanwhile; false when the project is gone.
bool readMeshes(OssProject *project)
{
    const QPointer<OssProject> still = project;
    const QList<OssGeoEntity *> entities = project->entities();
    QVector<OssGeometrySource> sources;
    for (const OssGeoEntity *entity : entities)
        sources.append(entity->source());
    for (const OssGeometrySource &source : qAsConst(sources)) {
        OssMeshes::instance()->waitFor(source);
        if (!still)
            return false;
    }
    return true;
}

OssResult writeElsewhere(OssProject *project, const QString &folder)
{
    const QString parent = QFileInfo(folder).absolutePath();
    if (parent == OssFilePath::base())
        return OssProjectFile::write(project, folder);
    OssUndoManager::AutoMacro macro(OssProjectManager::tr("Keep Paths of Files"));
    OssProjectPaths::keep(project, parent);
    OssResult written = OssProjectFile::write(project, folder);
    if (!written)
        macro.cancel();
    return written;
}

} // namespace

OssProjectManager::OssProjectManager()
{
    qRegisterMetaType<OssProject *>();
    connect(OssUndoManager::instance(), &OssUndoManager::cleanChanged, this,
            [this](bool clean) { Q_EMIT modifiedChanged(!clean); });
}

OssProjectManager::~OssProjectManager() = default;

OssProject *OssProjectManager::currentProject() const
{
    return m_project.get();
}

void OssProjectManager::setCurrentChannel(OssChannel *channel)
{
    if (m_currentChannel == channel)
        return;
    m_currentChannel = channel;
    Q_EMIT currentChannelChanged(channel);
}

bool OssProjectManager::isModified() const
{
    return m_project && !OssUndoManager::instance()->isClean();
}

OssProject *OssProjectManager::newProject(const QString &name)
{
    auto project = std::make_unique<OssProject>(name);
    project->addEntity(tr("Object"));
    {
        const OssUndoManager::Pause pause;
        project->setFileRules(OssColorSettings::usualFileRules());
    }
    closeProject();
    makeCurrent(std::move(project), false);
    return m_project.get();
}

namespace {

std::unique_ptr<OssProject> readProject(const QString &path, OssResult *result)
{
    const OssUndoManager::Pause pause;
    return OssProjectFile::read(path, result);
}

} // namespace

OssResult OssProjectManager::openProject(const QString &path)
{
    OssResult result;
    std::unique_ptr<OssProject> project = readProject(path, &result);
    if (!project)
        return result;
    closeProject();
    makeCurrent(std::move(project), true);
    return {};
}

OssResult OssProjectManager::restoreProject(const QString &copy, const QString &path, bool readOnly)
{
    OssResult result;
    std::unique_ptr<OssProject> project = readProject(copy, &result);
    if (!project)
        return result;
    project->setPath(path);
    project->setReadOnly(readOnly);
    closeProject();
    makeCurrent(std::move(project), true);
    OssUndoManager::instance()->resetClean();
    return {};
}

void OssProjectManager::makeCurrent(std::unique_ptr<OssProject> project, bool fromDisk)
{
    OssShaderNetworkManager *networks = OssShaderNetworkManager::instance();
    m_project = std::move(project);
    OssImageManager::instance()->setHolder(m_project.get());
    OssPixelStore::setProjectFolder(m_project->path());
    if (fromDisk)
        OssProjectPaths::adopt(m_project.get());
    OssColorManagement::instance()->use(m_project->colors());
    OssShaderNetwork *first = nullptr;
    {
        const OssUndoManager::Pause pause;
        const QList<OssShadingGroup *> groups = m_project->shadingGroups();
        for (OssShadingGroup *group : groups) {
            networks->addShaderNetwork(group->network());
            group->network()->finishLoading();
            if (!first)
                first = group->network();
        }
        if (first && !fromDisk)
            first->moveCurrentViewerNodeToNetwork();
    }
    Q_EMIT onMakeProjectCurrent(m_project.get());
    networks->setCurrentShaderNetwork(first);
    networks->setCurrentViewNetwork(first);
    networks->setCurrentViewerNode(first ? first->viewerNode() : nullptr);
    OssUndoManager::instance()->clear();
    Q_EMIT projectOpenCompleted(m_project.get(), fromDisk);
    Q_EMIT modifiedChanged(false);
}

void OssProjectManager::closeProject()
{
    if (!m_project)
        return;
    OssShaderNetworkManager *networks = OssShaderNetworkManager::instance();
    // Steps hold nodes, and those items of scenes that are about to go.
    OssUndoManager::instance()->clear();
    setCurrentChannel(nullptr);
    Q_EMIT projectClosing();
    networks->setCurrentViewerNode(nullptr);
    networks->setCurrentShaderNetwork(nullptr);
    networks->setCurrentViewNetwork(nullptr);
    {
        const OssUndoManager::Pause pause;
        OssImageManager::instance()->setHolder(nullptr);
        OssPixelStore::setProjectFolder({});
        OssColorManagement::instance()->use({});
        m_project.reset();
    }
    OssMeshes::instance()->forget();
    OssFileWatch::instance()->forget();
    Q_EMIT projectClosed();
    Q_EMIT modifiedChanged(false);
}

OssResult OssProjectManager::saveProject()
{
    if (!m_project)
        return OssResult::failure(tr("There is no project to save"));
    if (m_project->path().isEmpty())
        return OssResult::failure(tr("The project has no place yet: save it under a name"));
    return saveProjectAs(m_project->path());
}

OssResult OssProjectManager::saveProjectAs(const QString &path)
{
    if (!m_project)
        return OssResult::failure(tr("There is no project to save"));
    if (path.isEmpty())
        return OssResult::failure(tr("A project is saved under a name"));
    const QString folder = QDir::cleanPath(OssProjectFile::folderOf(path));
    if (m_project->isReadOnly() && folder == m_project->path())
        return OssResult::failure(
            tr("\"%1\" was written by a newer version and is open for looking only: save it under "
               "another name")
                .arg(folder));
    const OssResult baked = OssCanvasManager::instance()->bakePaint();
    if (!baked)
        return baked;
    if (!readMeshes(m_project.get()))
        return OssResult::failure(tr("The project was closed before it was saved"));
    const QString oldName = m_project->name();
    const bool rename = folder != m_project->path();
    if (rename)
        m_project->setName(QFileInfo(folder).completeBaseName());
    const OssResult written = rename ? writeElsewhere(m_project.get(), folder)
                                     : OssProjectFile::write(m_project.get(), folder);
    if (!written) {
        m_project->setName(oldName);
        return written;
    }
    m_project->setPath(folder);
    m_project->setReadOnly(false);
    OssPixelStore::setProjectFolder(folder);
    OssUndoManager::instance()->setClean();
    Q_EMIT projectSaved(folder);
    Q_EMIT modifiedChanged(false);
    return {};
}
