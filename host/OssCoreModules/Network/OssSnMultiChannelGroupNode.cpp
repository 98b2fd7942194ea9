#include "OssCoreModules/Network/OssSnMultiChannelGroupNode.h"

OssSnMultiChannelGroupNode::OssSnMultiChannelGroupNode(std::shared_ptr<const OssSnNodeType> type)
    : OssSnGroupNode(std::move(type))
{
}

OssSnMultiChannelGroupNode::~OssSnMultiChannelGroupNode()
{
    deleteContexts();
}

void OssSnMultiChannelGroupNode::setValid(bool valid)
{
    if (m_valid == valid)
        return;
    m_valid = valid;
    Q_EMIT validityChanged();
}
