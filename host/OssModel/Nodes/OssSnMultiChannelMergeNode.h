#pragma once

#include "OssModel/Nodes/OssSnMultiChannelGroupNode.h"

/// Lays one set of streams over another: a merge for each stream inside, and one mask for all.
class OSSMODEL_EXPORT OssSnMultiChannelMergeNode : public OssSnMultiChannelGroupNode
{
    Q_OBJECT

public:
    using OssSnMultiChannelGroupNode::OssSnMultiChannelGroupNode;

protected:
    void configureShared() override;
    void configureStream(const OssLayerShaderModelInput &stream) override;
    QStringList inputsOf(const QString &stream) const override;
};
