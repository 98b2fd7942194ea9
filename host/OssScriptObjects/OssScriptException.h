#pragma once

#include "OssScriptObjects/OssScriptObjects_export.h"

#include <QMetaType>
#include <QObject>
#include <QString>

/// What a script is told when a call of it could not be carried out. Never thrown by C++ code: it
/// is recorded with OssScriptManager, and whoever runs the script raises it in the script's own
/// language once the call has returned.
struct OSSSCRIPTOBJECTS_EXPORT OssScriptException
{
    Q_GADGET

public:
    enum Type {
        InternalObjectGone = 0, ///< the wrapped object does not exist any more
        WrongType = 1,
        UnknownName = 2,
        ReadOnly = 3,
        NotSupported = 4,
        FileNotFound = 5,
        FileNotAccessible = 6,
        FileInvalid = 7,
        Cancelled = 8,
        NoProject = 9,
        NotAllowed = 10,
        ObjectUnavailable = 11, ///< a needed object cannot be had or made, or is a wrong one
        WrongState = 12,
        OutOfRange = 13
    };
    Q_ENUM(Type)

    Type type = InternalObjectGone;
    QString source; ///< of the report, without folder
    int line = 0;
    QString message;
};
