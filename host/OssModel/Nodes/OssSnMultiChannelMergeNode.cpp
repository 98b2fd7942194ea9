#include "OssModel/Nodes/OssSnMultiChannelMergeNode.h"

#include "OssModel/Graph/OssLayerStreamUtils.h"
#include "OssModel/Types/OssLayerShaderModel.h"

void OssSnMultiChannelMergeNode::configureShared()
{
    createInput(QStringLiteral("Mask"), OssSnDataKind::Scalar);
}

QStringList OssSnMultiChannelMergeNode::inputsOf(const QString &stream) const
{
    return {OssLayerStreamUtils::baseInputName(stream), OssLayerStreamUtils::overInputName(stream)};
}

void OssSnMultiChannelMergeNode::configureStream(const OssLayerShaderModelInput &stream)
{
    const QString name = stream.streamName();
    OssSnBaseNode *merge = createInside(QStringLiteral("Layer/Merge"), name + tr(" Merge"),
                                        rowPlace(stream));
    if (!merge)
        return;
    merge->setPortKinds(stream.kind());
    wire(createInput(OssLayerStreamUtils::baseInputName(name), stream.kind()), merge,
         OssLayerStreamUtils::baseInputName({}));
    wire(createInput(OssLayerStreamUtils::overInputName(name), stream.kind()), merge,
         OssLayerStreamUtils::overInputName({}));
    wire(inputNodeInside(QStringLiteral("Mask")), merge, QStringLiteral("Mask"));
    wireOutput(merge, stream);
}
