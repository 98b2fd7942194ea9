#pragma once

#include "OssCoreModules/Network/OssSnImageSetNodeBase.h"

/// A node whose images are painted: the paint of one channel.
class OSSCOREMODULES_EXPORT OssSnChannelInputNode : public OssSnImageSetNodeBase
{
    Q_OBJECT

public:
    using OssSnImageSetNodeBase::OssSnImageSetNodeBase;
};
