#pragma once

#include "OssModel/Nodes/OssSnImageSetNodeBase.h"

/// A node whose images are painted: the paint of one channel.
class OSSMODEL_EXPORT OssSnChannelInputNode : public OssSnImageSetNodeBase
{
    Q_OBJECT

public:
    using OssSnImageSetNodeBase::OssSnImageSetNodeBase;
};
