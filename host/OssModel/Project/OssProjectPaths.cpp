#include "OssModel/Project/OssProjectPaths.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShadingGroup.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Images/OssColorManagement.h"
#include "OssModel/Images/OssFilePath.h"
#include "OssModel/Images/OssUdimPath.h"
#include "OssModel/Objects/OssMeshes.h"
#include "OssModel/Project/OssProject.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace {

QString title()
{
    return QCoreApplication::translate("OssProjectPaths", "Keep Paths of Files");
}

template <class Path>
void changeMeshes(const OssProject *project, const Path &path)
{
    const QList<OssGeoEntity *> entities = project->entities();
    for (OssGeoEntity *entity : entities) {
        OssGeometrySource source = entity->source();
        if (!source.isFile())
            continue;
        source.shape = path(source.shape);
        if (source == entity->source())
            continue;
        source.kept = OssMeshes::instance()->keptFile(entity->source(), true);
        entity->changeSource(source, title());
    }
}

template <class Path>
void changeNodes(const OssProject *project, const Path &path)
{
    const QList<OssShadingGroup *> groups = project->shadingGroups();
    for (const OssShadingGroup *group : groups) {
        const QList<OssSnBaseNode *> nodes = group->network()->getAllNodes();
        for (OssSnBaseNode *node : nodes) {
            const QVector<OssCustomAttribute> attributes = node->userAttributes();
            for (OssCustomAttribute attribute : attributes) {
                const QString before = attribute.value().toString();
                if (!OssFilePath::isHeldBy(attribute) || before.isEmpty())
                    continue;
                const QString now = path(before);
                if (now == before)
                    continue;
                attribute.setValue(now);
                node->setUserAttribute(attribute, true); // a lock is none against this
            }
        }
    }
}

template <class Path>
void changeConfig(OssProject *project, const Path &path)
{
    const QString config = project->colorConfig();
    if (!config.isEmpty() && config != OssColorSettings::Environment)
        project->renameColorConfig(path(config));
}

bool isThere(const QString &path)
{
    return OssUdimPath::isPattern(path) ? !OssUdimPath::patches(path).isEmpty()
                                        : QFileInfo::exists(path);
}

} // namespace

void OssProjectPaths::keep(OssProject *project, const QString &folder)
{
    const auto shortened = [&folder](const QString &path) {
        return OssFilePath::shortened(OssFilePath::resolved(path), folder);
    };
    changeMeshes(project, shortened);
    changeConfig(project, shortened);
    if (OssFilePath::base().isEmpty())
        return;
    changeNodes(project, [&shortened](const QString &path) {
        return QDir::isAbsolutePath(path) ? path : shortened(path);
    });
}

void OssProjectPaths::adopt(OssProject *project)
{
    const QFileInfo folder(project->path());
    const QString suffix = QLatin1Char('.') + folder.suffix();
    const auto adopted = [&](const QString &path) {
        const QString first = path.section(QLatin1Char('/'), 0, 0);
        const QString rest = path.section(QLatin1Char('/'), 1);
        if (QDir::isAbsolutePath(path) || rest.isEmpty() || first == folder.fileName()
            || !first.endsWith(suffix) || !isThere(folder.filePath() + QLatin1Char('/') + rest))
            return path;
        // Another project beside this one may be meant, unless it is what this was called.
        const bool isOwn = first == project->name() + suffix
                           || !isThere(folder.absolutePath() + QLatin1Char('/') + path);
        return isOwn ? folder.fileName() + QLatin1Char('/') + rest : path;
    };
    const OssUndoManager::Pause pause;
    changeMeshes(project, adopted);
    changeNodes(project, adopted);
    changeConfig(project, adopted);
}
