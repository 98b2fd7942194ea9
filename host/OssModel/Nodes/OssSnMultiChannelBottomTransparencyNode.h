#pragma once

#include "OssModel/Nodes/OssSnMultiChannelGroupNode.h"

/// What every stream is where nothing lies: transparent.
class OSSMODEL_EXPORT OssSnMultiChannelBottomTransparencyNode : public OssSnMultiChannelGroupNode
{
    Q_OBJECT

public:
    using OssSnMultiChannelGroupNode::OssSnMultiChannelGroupNode;

protected:
    void configureStream(const OssLayerShaderModelInput &stream) override;
    QStringList inputsOf(const QString &stream) const override;
};
