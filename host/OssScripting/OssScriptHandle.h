#pragma once

#include "OssCoreModules/Script/OssaAPI.h"

#include <QMetaType>
#include <QPointer>

/// A script object as it travels between Python's thread and the GUI thread. Only the GUI thread
/// may follow it.
struct OssScriptHandle
{
    QPointer<Ossa::API> object;
    const QMetaObject *type = nullptr; ///< of the object when the handle was made
    const void *identity = nullptr;    ///< equal for handles of one object
};

Q_DECLARE_METATYPE(OssScriptHandle)
