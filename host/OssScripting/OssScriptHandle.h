#pragma once

#include "OssScriptObjects/OssaAPI.h"

#include <QMetaType>
#include <QPointer>

/// A script object as it travels between Python's thread and the GUI thread. Only the GUI thread
/// may follow it.
struct OssScriptHandle
{
    QPointer<Ossa::API> object;
    const QMetaObject *type = nullptr;     ///< of the object when the handle was made
    const QMetaObject *internal = nullptr; ///< of what it wraps
    const void *identity = nullptr;        ///< equal for handles of one object

    /// GUI thread. The object may be null.
    static OssScriptHandle of(Ossa::API *api)
    {
        OssScriptHandle handle;
        if (!api)
            return handle;
        handle.object = api;
        handle.type = api->metaObject();
        if (const QObject *wrapped = api->internalObject())
            handle.internal = wrapped->metaObject();
        handle.identity = api;
        return handle;
    }
};

Q_DECLARE_METATYPE(OssScriptHandle)
