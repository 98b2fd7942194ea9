#include "OssScripting/OssScriptSlot.h"

#include "OssScripting/OssScriptCall.h"
#include "OssScripting/OssScriptEngine.h"

#include <QHash>

namespace {

QHash<int, QPointer<OssScriptSlot>> &slotsById()
{
    static QHash<int, QPointer<OssScriptSlot>> all;
    return all;
}

} // namespace

OssScriptSlot::OssScriptSlot(const OssScriptHandle &object, const QMetaMethod &signal, int id)
    : QObject(object.object)
    , m_signal(signal)
    , m_id(id)
{
    QMetaObject::connect(object.object, signal.methodIndex(), this,
                         QObject::staticMetaObject.methodCount());
}

int OssScriptSlot::qt_metacall(QMetaObject::Call call, int method, void **arguments)
{
    const int own = QObject::qt_metacall(call, method, arguments);
    if (own < 0 || call != QMetaObject::InvokeMetaMethod)
        return own;
    QVariantList values;
    for (int i = 0; i < m_signal.parameterCount(); ++i)
        values.append(OssScriptCall::plain(QVariant(m_signal.parameterType(i), arguments[i + 1])));
    OssScriptEngine::instance()->deliver(m_id, values);
    return -1;
}

QMetaMethod OssScriptSlot::find(const QMetaObject *type, const QByteArray &name)
{
    for (int i = QObject::staticMetaObject.methodCount(); i < type->methodCount(); ++i) {
        const QMetaMethod method = type->method(i);
        if (method.methodType() == QMetaMethod::Signal && method.name() == name)
            return method;
    }
    return {};
}

int OssScriptSlot::connectTo(const OssScriptHandle &object, const QMetaMethod &signal)
{
    static int last = 0;
    if (!object.object || object.object->isNull())
        return 0;
    ++last;
    slotsById().insert(last, new OssScriptSlot(object, signal, last)); // owned by the object
    return last;
}

void OssScriptSlot::disconnectFrom(int id)
{
    delete slotsById().take(id);
}
