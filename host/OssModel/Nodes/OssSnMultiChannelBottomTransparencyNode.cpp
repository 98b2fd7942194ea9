#include "OssModel/Nodes/OssSnMultiChannelBottomTransparencyNode.h"

#include "OssCore/Values/OssColor.h"
#include "OssModel/Graph/OssLayerStreamUtils.h"
#include "OssModel/Types/OssLayerShaderModel.h"

QStringList OssSnMultiChannelBottomTransparencyNode::inputsOf(const QString &) const
{
    return {};
}

void OssSnMultiChannelBottomTransparencyNode::configureStream(
    const OssLayerShaderModelInput &stream)
{
    OssSnBaseNode *bottom = createInside(QStringLiteral("Procedural/Color"),
                                         stream.streamName() + tr(" Bottom"), rowPlace(stream));
    if (!bottom)
        return;
    bottom->setAttribute(QStringLiteral("Color"),
                         QVariant::fromValue(OssColor(0.0, 0.0, 0.0, 0.0)));
    wireOutput(bottom, stream);
}
