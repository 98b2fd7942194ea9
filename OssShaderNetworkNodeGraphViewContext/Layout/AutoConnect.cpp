#include "Layout/AutoConnect.h"

#include "OssModel/Graph/OssSnBaseNode.h"

QString AutoConnect::nextFreeInput(const OssSnBaseNode *node)
{
    QString first;
    for (const OssSnBaseNode::InputPort &port : node->inputPorts()) {
        if (port.source || node->hasInputTag(port.name, QStringLiteral("_hidden")))
            continue;
        if (port.preferred)
            return port.name;
        if (first.isEmpty())
            first = port.name;
    }
    return first;
}
