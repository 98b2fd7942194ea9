#include "OssModel/Graph/OssLayerStreamUtils.h"

#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Types/OssSnTags.h"

namespace {

QString portName(const QString &stream, const QString &role)
{
    return stream.isEmpty() ? role : stream + QLatin1Char(' ') + role;
}

} // namespace

bool OssLayerStreamUtils::isMergeNode(const OssSnBaseNode *node)
{
    return node && node->hasTag(OssSnTags::blend());
}

bool OssLayerStreamUtils::isBaseInput(const OssSnBaseNode *node, const QString &input)
{
    const QString base = baseInputName({});
    return isMergeNode(node) && (input == base || input.endsWith(QLatin1Char(' ') + base));
}

QString OssLayerStreamUtils::baseInputName(const QString &stream)
{
    return portName(stream, QStringLiteral("Base"));
}

QString OssLayerStreamUtils::overInputName(const QString &stream)
{
    return portName(stream, QStringLiteral("Over"));
}

QString OssLayerStreamUtils::inputName(const QString &stream)
{
    return portName(stream, QStringLiteral("Input"));
}
