#pragma once

#include "OssCoreModules/Network/OssSnMultiChannelGroupNode.h"

/// A bake point for each stream.
class OSSCOREMODULES_EXPORT OssSnMultiChannelBakePointNode : public OssSnMultiChannelGroupNode
{
    Q_OBJECT

public:
    using OssSnMultiChannelGroupNode::OssSnMultiChannelGroupNode;
};
