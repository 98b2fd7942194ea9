#pragma once

#include "OssModel/Nodes/OssSnMultiChannelGroupNode.h"

class OssSnBakePointNode;

/// A bake point for each stream.
class OSSMODEL_EXPORT OssSnMultiChannelBakePointNode : public OssSnMultiChannelGroupNode
{
    Q_OBJECT

public:
    explicit OssSnMultiChannelBakePointNode(std::shared_ptr<const OssSnNodeType> type);

    /// The bake points inside whose stream is fed, in the order of the streams.
    QList<OssSnBakePointNode *> activeBakePointNodes() const;
    /// Makes what the streams need anew, after the model of the node was set.
    void configureBakepoints();

Q_SIGNALS:
    /// One of the bake points inside has, or lost, a result.
    void bakedStateChanged();

protected:
    void configureStream(const OssLayerShaderModelInput &stream) override;

private:
    void followBakePoints();
};
