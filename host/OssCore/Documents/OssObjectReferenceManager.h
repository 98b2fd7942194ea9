#pragma once

#include "OssCore/OssCore_export.h"
#include "OssCore/Program/OssService.h"

#include <QMultiHash>
#include <QString>
#include <QUuid>

class OssSerializableObject;

/// Names an object across save, load, copy and undo: its UUID as text with braces. Usable as a key.
using OssObjectReference = QString;

/// Finds living objects by reference. An object is known from the moment its UUID is first asked
/// for or set until it dies. Two documents may hold objects of the same UUID at one time (the open
/// project and the same one being read); then the one that came last is found. GUI thread.
class OSSCORE_EXPORT OssObjectReferenceManager : public OssService<OssObjectReferenceManager>
{
public:
    /// Null for unknown references, texts that are no UUID, and objects that are gone.
    OssSerializableObject *getPointer(const OssObjectReference &reference) const;

private:
    friend class OssSerializableObject;
    void add(const QUuid &uuid, OssSerializableObject *object);
    void remove(const QUuid &uuid, OssSerializableObject *object);

    QMultiHash<QUuid, OssSerializableObject *> m_objects;
};
