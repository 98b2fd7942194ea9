#include "OssCoreModules/Network/OssShaderNetworkUtils.h"

#include "OssCoreModules/Network/OssSnBaseNode.h"
#include "OssCoreModules/Network/OssSnImageSetNodeBase.h"

namespace {

template <class Neighbours>
QList<OssSnBaseNode *> walk(OssSnBaseNode *start, Neighbours neighbours)
{
    QList<OssSnBaseNode *> found;
    if (!start)
        return found;
    QSet<OssSnBaseNode *> seen{start};
    QList<OssSnBaseNode *> open{start};
    for (int i = 0; i < open.size(); ++i) {
        const QList<OssSnBaseNode *> next = neighbours(open.at(i));
        for (OssSnBaseNode *node : next) {
            if (!node || seen.contains(node))
                continue;
            seen.insert(node);
            open.append(node);
            found.append(node);
        }
    }
    return found;
}

} // namespace

bool OssShaderNetworkUtils::setInputNodeBatchConnectable(OssSnBaseNode *node, const QString &input,
                                                         OssSnBaseNode *source,
                                                         const QString &outputPoint, bool record,
                                                         bool notify, bool replace, bool batch)
{
    return node && node->connectInput(input, source, outputPoint, record, notify, replace, batch);
}

OssSnImageSetNodeBase *OssShaderNetworkUtils::asTrueImageSetNode(OssSnBaseNode *node)
{
    return qobject_cast<OssSnImageSetNodeBase *>(node);
}

QList<OssSnBaseNode *> OssShaderNetworkUtils::getUpstreamNodes(OssSnBaseNode *node)
{
    return walk(node, [](OssSnBaseNode *at) { return at->inputNodes(); });
}

QList<OssSnBaseNode *> OssShaderNetworkUtils::getDownstreamNodes(OssSnBaseNode *node)
{
    return walk(node, [](OssSnBaseNode *at) { return at->outputNodes(); });
}
