#include "OssCoreModules/Images/OssImageSet.h"

#include "OssCoreModules/Images/OssChannel.h"

OssImageSet::OssImageSet(const QString &name, QObject *parent)
    : OssSerializableObject(parent)
    , m_name(name)
    , m_depth(OssChannel::UnsignedByte)
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

bool OssImageSet::isByteColor() const
{
    const OssChannel *own = channel();
    return !m_scalar && (own ? own->type() : m_depth) == OssChannel::UnsignedByte;
}

OssImageSet *OssImageSet::duplicate(const QString &name) const
{
    auto *copy = new OssImageSet(name);
    copy->m_channel = m_channel;
    copy->m_depth = m_depth;
    copy->m_bleed = m_bleed;
    copy->m_resolution = m_resolution;
    copy->m_fileSpace = m_fileSpace;
    copy->m_scalar = m_scalar;
    copy->m_fillColor = m_fillColor;
    return copy;
}
