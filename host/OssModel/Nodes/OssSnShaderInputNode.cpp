#include "OssModel/Nodes/OssSnShaderInputNode.h"

#include "OssCore/Values/OssUserEnum.h"

namespace {

constexpr int Depths[] = {5121, 5131, 5126};

int choice(const OssSnBaseNode *node, const QString &attribute)
{
    return node->attribute(attribute).value<OssUserEnum>().currentValue();
}

} // namespace

int OssSnShaderInputNode::imageSetDepth() const
{
    const int index = choice(this, QStringLiteral("Depth"));
    return index >= 0 && index < 3 ? Depths[index] : 0;
}

int OssSnShaderInputNode::colorSpace() const
{
    return choice(this, QStringLiteral("ColorSpace"));
}
