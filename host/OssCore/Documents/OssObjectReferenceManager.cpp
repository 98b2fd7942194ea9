#include "OssCore/Documents/OssObjectReferenceManager.h"

OssSerializableObject *OssObjectReferenceManager::getPointer(
    const OssObjectReference &reference) const
{
    return m_objects.value(QUuid::fromString(reference));
}

void OssObjectReferenceManager::add(const QUuid &uuid, OssSerializableObject *object)
{
    m_objects.insert(uuid, object);
}

void OssObjectReferenceManager::remove(const QUuid &uuid, OssSerializableObject *object)
{
    m_objects.remove(uuid, object);
}
