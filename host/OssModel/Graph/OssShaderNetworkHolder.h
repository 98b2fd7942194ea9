#pragma once

#include "OssModel/OssModel_export.h"

class OssShaderNetwork;

/// Mix-in of whatever shows one shader network. The network is not owned.
class OSSMODEL_EXPORT OssShaderNetworkHolder
{
public:
    virtual ~OssShaderNetworkHolder();

    virtual OssShaderNetwork *network() const = 0;
    /// Null: none.
    virtual void setNetwork(OssShaderNetwork *network) = 0;
};
