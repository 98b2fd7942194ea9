#include "OssModel/Objects/OssEntity.h"

#include "OssCore/Undo/OssUndoManager.h"

OssEntity::OssEntity(const QString &name, QObject *parent)
    : OssSerializableObject(parent)
    , m_name(name)
{
}

OssEntity::~OssEntity() = default;

void OssEntity::setName(const QString &name)
{
    if (name == m_name)
        return;
    m_name = name;
    OssUndoManager::instance()->resetClean();
    Q_EMIT nameChanged(name);
}
