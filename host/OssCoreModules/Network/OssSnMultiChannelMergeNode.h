#pragma once

#include "OssCoreModules/Network/OssSnMultiChannelGroupNode.h"

/// Lays one set of streams over another, each by a merge inside.
class OSSCOREMODULES_EXPORT OssSnMultiChannelMergeNode : public OssSnMultiChannelGroupNode
{
    Q_OBJECT

public:
    using OssSnMultiChannelGroupNode::OssSnMultiChannelGroupNode;
};
