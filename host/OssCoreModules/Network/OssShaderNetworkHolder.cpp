#include "OssCoreModules/Network/OssShaderNetworkHolder.h"

OssShaderNetworkHolder::~OssShaderNetworkHolder() = default;
