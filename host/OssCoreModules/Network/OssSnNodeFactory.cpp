#include "OssCoreModules/Network/OssSnNodeFactory.h"

#include "OssCore/OssDebug.h"
#include "OssCoreModules/Network/OssSnBakePointNode.h"
#include "OssCoreModules/Network/OssSnBaseTeleportNode.h"
#include "OssCoreModules/Network/OssSnChannelInputNode.h"
#include "OssCoreModules/Network/OssSnCustomProceduralNode.h"
#include "OssCoreModules/Network/OssSnGeoChannelNode.h"
#include "OssCoreModules/Network/OssSnGroupNode.h"
#include "OssCoreModules/Network/OssSnMaterialNode.h"
#include "OssCoreModules/Network/OssSnMultiChannelBakePointNode.h"
#include "OssCoreModules/Network/OssSnMultiChannelBottomTransparencyNode.h"
#include "OssCoreModules/Network/OssSnMultiChannelGroupNode.h"
#include "OssCoreModules/Network/OssSnMultiChannelMergeNode.h"
#include "OssCoreModules/Network/OssSnShaderInputNode.h"

#include <QHash>

#include <functional>

namespace {

using Type = std::shared_ptr<const OssSnNodeType>;
using Maker = std::function<std::unique_ptr<OssSnBaseNode>(const Type &)>;

template <class Node>
Maker maker()
{
    return [](const Type &type) {
        return std::make_unique<Node>(type);
    };
}

const QHash<QString, Maker> &makers()
{
    static const QHash<QString, Maker> table{
        {QStringLiteral("OssSnBaseNode"), maker<OssSnBaseNode>()},
        {QStringLiteral("OssSnGroupNode"), maker<OssSnGroupNode>()},
        {QStringLiteral("OssSnMultiChannelBakePointNode"), maker<OssSnMultiChannelBakePointNode>()},
        {QStringLiteral("OssSnMultiChannelBottomTransparencyNode"),
         maker<OssSnMultiChannelBottomTransparencyNode>()},
        {QStringLiteral("OssSnMultiChannelMergeNode"), maker<OssSnMultiChannelMergeNode>()},
        {QStringLiteral("OssSnMultiChannelGroupNode"), maker<OssSnMultiChannelGroupNode>()},
        {QStringLiteral("OssSnCustomProceduralNode"), maker<OssSnCustomProceduralNode>()},
        {QStringLiteral("OssSnMaterialNode"), maker<OssSnMaterialNode>()},
        {QStringLiteral("OssSnBakePointNode"), maker<OssSnBakePointNode>()},
        {QStringLiteral("OssSnGeoChannelNode"), maker<OssSnGeoChannelNode>()},
        {QStringLiteral("OssSnBroadcastTeleportNode"), maker<OssSnBroadcastTeleportNode>()},
        {QStringLiteral("OssSnReceiverTeleportNode"), maker<OssSnReceiverTeleportNode>()},
        {QStringLiteral("OssSnShaderInputNode"), maker<OssSnShaderInputNode>()},
        {QStringLiteral("OssSnChannelInputNode"), maker<OssSnChannelInputNode>()},
    };
    return table;
}

} // namespace

bool OssSnNodeFactory::isKnownClass(const QString &className)
{
    return makers().contains(className);
}

std::unique_ptr<OssSnBaseNode> OssSnNodeFactory::make(const Type &type)
{
    if (!type)
        return std::make_unique<OssSnBaseNode>(nullptr);
    const auto found = makers().constFind(type->className);
    if (found == makers().cend()) {
        OssDebug("OssSnNodeFactory", __LINE__, "[ !! ] Node type '%s' names the unknown class '%s'",
                 qPrintable(type->pathKey), qPrintable(type->className));
        return std::make_unique<OssSnBaseNode>(type);
    }
    return (*found)(type);
}
