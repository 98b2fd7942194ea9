#pragma once

#include "OssCoreModules/Network/OssSnMultiChannelGroupNode.h"

/// Lays one set of streams over another: a merge for each stream inside, and one mask for all.
class OSSCOREMODULES_EXPORT OssSnMultiChannelMergeNode : public OssSnMultiChannelGroupNode
{
    Q_OBJECT

public:
    using OssSnMultiChannelGroupNode::OssSnMultiChannelGroupNode;

protected:
    void configureShared() override;
    void configureStream(const OssLayerShaderModelInput &stream) override;
    QStringList inputsOf(const QString &stream) const override;
};
