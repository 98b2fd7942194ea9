#include "OssModel/Nodes/OssSnMultiChannelBakePointNode.h"

#include "OssModel/Graph/OssLayerStreamUtils.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Nodes/OssSnBakePointNode.h"
#include "OssModel/Types/OssLayerShaderModel.h"

OssSnMultiChannelBakePointNode::OssSnMultiChannelBakePointNode(
    std::shared_ptr<const OssSnNodeType> type)
    : OssSnMultiChannelGroupNode(std::move(type))
{
    connect(groupNetwork(), &OssShaderNetwork::nodesChanged, this,
            &OssSnMultiChannelBakePointNode::followBakePoints);
}

void OssSnMultiChannelBakePointNode::followBakePoints()
{
    const QList<OssSnBaseNode *> inside = groupNetwork()->nodes();
    for (const OssSnBaseNode *node : inside) {
        if (const auto *bakePoint = qobject_cast<const OssSnBakePointNode *>(node))
            connect(bakePoint, &OssSnBakePointNode::bakedStateChanged, this,
                    &OssSnMultiChannelBakePointNode::bakedStateChanged, Qt::UniqueConnection);
    }
}

QList<OssSnBakePointNode *> OssSnMultiChannelBakePointNode::activeBakePointNodes() const
{
    QList<OssSnBakePointNode *> active;
    const QList<OssSnBaseNode *> inside = groupNetwork()->nodes();
    for (OssSnBaseNode *node : inside) {
        auto *bakePoint = qobject_cast<OssSnBakePointNode *>(node);
        const OssSnBaseNode *port = bakePoint
                                        ? bakePoint->inputNode(bakePoint->preferredInputName())
                                        : nullptr;
        if (port && inputNode(port->name()))
            active.append(bakePoint);
    }
    return active;
}

void OssSnMultiChannelBakePointNode::configureBakepoints()
{
    if (inputNames().isEmpty())
        configureStreams();
}

void OssSnMultiChannelBakePointNode::configureStream(const OssLayerShaderModelInput &stream)
{
    auto *bakePoint = qobject_cast<OssSnBakePointNode *>(createInside(
        QStringLiteral("Misc/Bake Point"), stream.streamName() + tr(" Bake"), rowPlace(stream)));
    if (!bakePoint)
        return;
    bakePoint->setPortKinds(stream.kind());
    wire(createInput(OssLayerStreamUtils::inputName(stream.streamName()), stream.kind()), bakePoint,
         bakePoint->preferredInputName());
    wireOutput(bakePoint, stream);
}
