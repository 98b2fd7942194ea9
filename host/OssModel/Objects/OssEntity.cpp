#include "OssModel/Objects/OssEntity.h"

OssEntity::OssEntity(const QString &name, QObject *parent)
    : OssSerializableObject(parent)
    , m_name(name)
{
}

OssEntity::~OssEntity() = default;
