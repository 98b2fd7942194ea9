#pragma once

#include "OssScripting/OssScriptHandle.h"

#include <QMetaMethod>
#include <QObject>

/// Receives one signal of a script object for a function of a script. GUI thread.
class OssScriptSlot : public QObject
{
public:
    /// Connected to the signal until it is deleted or the object goes. `id` names the function.
    OssScriptSlot(const OssScriptHandle &object, const QMetaMethod &signal, int id);

    /// Without Q_OBJECT: the one slot, behind QObject's own, takes any signal.
    int qt_metacall(QMetaObject::Call call, int method, void **arguments) override;

    /// The signal of that name; invalid when there is none. Any thread.
    static QMetaMethod find(const QMetaObject *type, const QByteArray &name);
    /// Makes one. Its id.
    static int connectTo(const OssScriptHandle &object, const QMetaMethod &signal);
    static void disconnectFrom(int id);

private:
    QMetaMethod m_signal;
    int m_id;
};
