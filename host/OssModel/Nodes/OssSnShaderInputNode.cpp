#include "OssModel/Nodes/OssSnShaderInputNode.h"

#include "OssCore/Values/OssUserEnum.h"
#include "OssModel/Objects/OssImageSet.h"

namespace {

int choice(const OssSnBaseNode *node, const QString &attribute)
{
    return node->attribute(attribute).value<OssUserEnum>().currentValue();
}

} // namespace

int OssSnShaderInputNode::imageSetDepth() const
{
    const int index = choice(this, QStringLiteral("Depth"));
    return index >= 0 && index < int(OssEvDepthNames.size())
               ? OssImageSet::codeOf(OssEvDepth(index))
               : 0;
}

int OssSnShaderInputNode::colorSpace() const
{
    return choice(this, QStringLiteral("ColorSpace"));
}
