#include "OssModel/Objects/OssChannel.h"

#include "OssModel/Objects/OssShadingContext.h"

OssChannel::OssChannel(const QString &name, OssShadingContext *context)
    : OssSerializableObject(context)
    , m_name(name)
    , m_context(context)
{
}

OssChannel::~OssChannel() = default;

OssShadingContext *OssChannel::shadingContext() const
{
    return qobject_cast<OssShadingContext *>(m_context.data());
}
