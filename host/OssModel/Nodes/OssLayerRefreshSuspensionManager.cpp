#include "OssModel/Nodes/OssLayerRefreshSuspensionManager.h"

OssLayerRefreshSuspensionManager::RefreshStateSuspender::RefreshStateSuspender()
{
    ++instance()->m_depth;
}

OssLayerRefreshSuspensionManager::RefreshStateSuspender::~RefreshStateSuspender()
{
    if (--instance()->m_depth == 0)
        Q_EMIT instance()->resumed();
}
