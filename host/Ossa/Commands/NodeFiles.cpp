#include "Ossa/Commands/NodeFiles.h"

#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkIO.h"
#include "OssModel/Graph/OssShadingGroup.h"
#include "OssModel/Nodes/OssNodeArchive.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectManager.h"
#include "OssModel/Types/OssNodeSuffixes.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace {

OssResult read(OssShaderNetwork *network, const QString &path)
{
    QList<OssSnBaseNode *> inserted;
    if (path.endsWith(OssNodeSuffixes::Nodes, Qt::CaseInsensitive))
        return OssShaderNetworkIO::loadNodesFromXmlFile(network, path, &inserted);
    const bool isMaterial = path.endsWith(OssNodeSuffixes::Material, Qt::CaseInsensitive);
    return OssNodeArchive::read(network,
                                isMaterial ? OssNodeArchive::Kind::Material
                                           : OssNodeArchive::Kind::CustomProcedural,
                                path, &inserted);
}

} // namespace

bool NodeFiles::isOne(const QString &path)
{
    for (const QString &suffix :
         {OssNodeSuffixes::Nodes, OssNodeSuffixes::Material, OssNodeSuffixes::CustomProcedural}) {
        if (path.endsWith(suffix, Qt::CaseInsensitive) && !QFileInfo(path).isDir())
            return true;
    }
    return false;
}

OssResult NodeFiles::openAsProject(const QString &path)
{
    const QFileInfo file(path);
    if (!file.isReadable())
        return OssResult::failure(
            QCoreApplication::translate("NodeFiles", "The file \"%1\" cannot be read").arg(path));
    OssProject *project = OssProjectManager::instance()->newProject(file.completeBaseName());
    const QList<OssShadingGroup *> groups = project->shadingGroups();
    return groups.isEmpty() ? OssResult() : read(groups.first()->network(), path);
}
