#include "OssModel/Graph/OssShaderNetworkHolder.h"

OssShaderNetworkHolder::~OssShaderNetworkHolder() = default;
