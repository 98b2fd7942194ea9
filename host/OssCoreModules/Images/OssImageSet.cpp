#include "OssCoreModules/Images/OssImageSet.h"

#include "OssCoreModules/Images/OssChannel.h"

OssImageSet::OssImageSet(const QString &name, QObject *parent)
    : OssSerializableObject(parent)
    , m_name(name)
{
}

OssImageSet::~OssImageSet() = default;

OssChannel *OssImageSet::channel() const
{
    return qobject_cast<OssChannel *>(m_channel.data());
}

void OssImageSet::setChannel(OssChannel *channel)
{
    m_channel = channel;
}
