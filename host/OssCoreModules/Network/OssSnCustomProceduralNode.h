#pragma once

#include "OssCoreModules/Network/OssSnGroupNode.h"

/// A group that is used like a node of a type of its own: its inside is not shown.
class OSSCOREMODULES_EXPORT OssSnCustomProceduralNode : public OssSnGroupNode
{
    Q_OBJECT

public:
    using OssSnGroupNode::OssSnGroupNode;
};
