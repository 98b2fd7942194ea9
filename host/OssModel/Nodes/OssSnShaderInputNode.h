#pragma once

#include "OssModel/Graph/OssSnBaseNode.h"

/// Where a stream of pixels goes into the application's own shading: says how its images are kept.
class OSSMODEL_EXPORT OssSnShaderInputNode : public OssSnBaseNode
{
    Q_OBJECT

public:
    using OssSnBaseNode::OssSnBaseNode;

    /// GL type code of a component, as OssImageSet::depth().
    int imageSetDepth() const;

    /// 0 colour, 1 values that are no colours.
    int colorSpace() const;
};
