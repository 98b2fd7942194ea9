#include "OssScripting/OssScriptCall.h"

#include "OssCore/Values/OssAttributeKind.h"
#include "OssCore/Values/OssColor.h"
#include "OssScripting/OssScriptHandle.h"
#include "OssScriptObjects/OssScriptManager.h"

#include <QMetaMethod>
#include <QMetaProperty>
#include <QPointF>
#include <QSequentialIterable>
#include <QSet>
#include <QSizeF>

#include <algorithm>

namespace {

constexpr int MostArguments = 10; // what the meta-object system carries

OssScriptCall::Outcome failure(OssScriptException::Type type, const QString &message)
{
    OssScriptCall::Outcome outcome;
    outcome.failed = true;
    outcome.error.type = type;
    outcome.error.message = message;
    return outcome;
}

/// The script object, or what it wraps where that is wanted.
QObject *objectOf(const QVariant &value, const QMetaObject *wanted)
{
    const QPointer<Ossa::API> api = value.value<OssScriptHandle>().object;
    if (!api || wanted->inherits(&Ossa::API::staticMetaObject))
        return api;
    return wanted->cast(api->internalObject());
}

QPointF pointOf(const QVariant &value)
{
    if (value.userType() == QMetaType::QPointF)
        return value.toPointF();
    const QVariantList numbers = value.toList();
    return {numbers.value(0).toDouble(), numbers.value(1).toDouble()};
}

OssColor colorOf(const QVariant &value)
{
    if (value.userType() == qMetaTypeId<OssColor>())
        return value.value<OssColor>();
    const QVariantList numbers = value.toList();
    return {numbers.value(0).toDouble(), numbers.value(1).toDouble(), numbers.value(2).toDouble(),
            numbers.size() > 3 ? numbers.at(3).toDouble() : 1.0};
}

bool isDead(const QVariant &value)
{
    if (value.userType() == qMetaTypeId<OssScriptHandle>())
        return value.value<OssScriptHandle>().object.isNull();
    if (value.userType() != QMetaType::QVariantList)
        return false;
    const QVariantList entries = value.toList();
    return std::any_of(entries.cbegin(), entries.cend(), isDead);
}

/// The plain value as the type of a parameter that it fits.
QVariant asType(const QVariant &value, int type)
{
    switch (type) {
    case QMetaType::QVariant:
        return value;
    case QMetaType::QPointF:
        return pointOf(value);
    case QMetaType::QPoint:
        return pointOf(value).toPoint();
    case QMetaType::QSizeF:
        return QSizeF(pointOf(value).x(), pointOf(value).y());
    case QMetaType::QSize:
        return QSizeF(pointOf(value).x(), pointOf(value).y()).toSize();
    case QMetaType::QColor:
        return colorOf(value).toQColor();
    default:
        break;
    }
    if (type == qMetaTypeId<OssColor>())
        return QVariant::fromValue(colorOf(value));
    if (QMetaType::typeFlags(type).testFlag(QMetaType::PointerToQObject)) {
        QObject *object = objectOf(value, QMetaType::metaObjectForType(type));
        return {type, &object};
    }
    if (type == qMetaTypeId<QList<int>>()) {
        QList<int> numbers;
        const QVariantList entries = value.toList();
        for (const QVariant &entry : entries)
            numbers.append(entry.toInt());
        return QVariant::fromValue(numbers);
    }
    QVariant converted = value;
    if (value.userType() == QMetaType::QVariantList && type != QMetaType::QVariantList
        && type != QMetaType::QStringList) {
        QVariantList objects;
        const QVariantList entries = value.toList();
        for (const QVariant &entry : entries)
            objects.append(QVariant::fromValue(objectOf(entry, &Ossa::API::staticMetaObject)));
        converted = objects;
    }
    converted.convert(type);
    return converted;
}

OssScriptCall::Outcome gone()
{
    return failure(OssScriptException::InternalObjectGone,
                   QStringLiteral("The script object is gone"));
}

/// What the call just made has reported.
OssScriptCall::Outcome finished(const QVariant &value)
{
    OssScriptManager *manager = OssScriptManager::instance();
    OssScriptCall::Outcome outcome;
    outcome.failed = manager->hasError();
    outcome.error = manager->lastError();
    manager->clearError();
    if (!outcome.failed)
        outcome.value = OssScriptCall::plain(value);
    return outcome;
}

OssScriptCall::Outcome invoke(QObject *object, int method, const QVariantList &arguments)
{
    const QMetaMethod slot = object->metaObject()->method(method);
    QVariantList values;
    for (int i = 0; i < arguments.size(); ++i)
        values.append(asType(arguments.at(i), slot.parameterType(i)));
    const int returnType = slot.returnType();
    const bool returnsVariant = returnType == QMetaType::QVariant;
    QVariant result;
    if (returnType != QMetaType::Void && !returnsVariant)
        result = QVariant(returnType, nullptr);
    void *data[MostArguments + 1] = {};
    if (returnsVariant)
        data[0] = &result;
    else if (returnType != QMetaType::Void)
        data[0] = result.data();
    for (int i = 0; i < values.size() && i < MostArguments; ++i)
        data[i + 1] = slot.parameterType(i) == QMetaType::QVariant ? &values[i] : values[i].data();
    OssScriptManager::instance()->clearError();
    QMetaObject::metacall(object, QMetaObject::InvokeMetaMethod, method, data);
    return finished(result);
}

// --- towards scripts

/// Whether a script takes such a value as it is.
bool isPlain(int type)
{
    static const QSet<int> types{QMetaType::UnknownType, QMetaType::Void,        QMetaType::Bool,
                                 QMetaType::Double,      QMetaType::LongLong,    QMetaType::QString,
                                 QMetaType::QPointF,     qMetaTypeId<OssColor>()};
    return types.contains(type);
}

/// Null for an object that scripts do not know.
QVariant handleOf(QObject *object)
{
    auto *api = qobject_cast<Ossa::API *>(object);
    if (object && !api) // an object of the program has the script object of its class
        api = OssScriptManager::instance()->obtainAPI(object, QString());
    return api ? QVariant::fromValue(OssScriptHandle::of(api)) : QVariant();
}

QVariant plainMap(QVariantMap map)
{
    for (QVariant &entry : map)
        entry = OssScriptCall::plain(entry);
    return map;
}

QVariant plainList(const QSequentialIterable &entries)
{
    QVariantList list;
    for (const QVariant &entry : entries)
        list.append(OssScriptCall::plain(entry));
    return list;
}

} // namespace

QVariant OssScriptCall::plain(const QVariant &value)
{
    const int type = value.userType();
    if (isPlain(type))
        return value;
    switch (type) {
    case QMetaType::Float:
        return value.toDouble();
    case QMetaType::QPoint:
        return QPointF(value.toPoint());
    case QMetaType::QSizeF:
    case QMetaType::QSize:
        return QPointF(value.toSizeF().width(), value.toSizeF().height());
    case QMetaType::QColor:
        return QVariant::fromValue(OssColor(value.value<QColor>()));
    case QMetaType::QVariantMap:
        return plainMap(value.toMap());
    default:
        break;
    }
    const QVariant written = OssAttributeKind::plain(value);
    if (written.userType() != type)
        return plain(written);
    if (QMetaType::typeFlags(type).testFlag(QMetaType::PointerToQObject))
        return handleOf(value.value<QObject *>());
    if (value.canConvert<QVariantList>() && type != QMetaType::QByteArray)
        return plainList(value.value<QSequentialIterable>());
    if (value.canConvert<qlonglong>())
        return value.toLongLong();
    return value.toString();
}

OssScriptCall::Outcome OssScriptCall::call(const OssScriptHandle &target, int method,
                                           const QVariantList &arguments)
{
    const QPointer<Ossa::API> object = target.object;
    if (!object || std::any_of(arguments.cbegin(), arguments.cend(), isDead))
        return gone();
    return invoke(object, method, arguments);
}

OssScriptCall::Outcome OssScriptCall::callInternal(const OssScriptHandle &target,
                                                   const QByteArray &name,
                                                   const QVariantList &arguments)
{
    QObject *internal = target.object ? target.object->internalObject() : nullptr;
    if (!internal || std::any_of(arguments.cbegin(), arguments.cend(), isDead))
        return gone();
    QString reason;
    const int method = chooseMethod(internal->metaObject(), name, arguments, &reason);
    if (method < 0)
        return failure(OssScriptException::UnknownName, reason);
    return invoke(internal, method, arguments);
}

OssScriptCall::Outcome OssScriptCall::property(const OssScriptHandle &target,
                                               const QByteArray &name)
{
    if (!target.object)
        return gone();
    OssScriptManager::instance()->clearError();
    return finished(target.object->property(name.constData()));
}

OssScriptCall::Outcome OssScriptCall::setProperty(const OssScriptHandle &target,
                                                  const QByteArray &name, const QVariant &value)
{
    if (!target.object || isDead(value))
        return gone();
    const QMetaObject *type = target.object->metaObject();
    const QMetaProperty property = type->property(type->indexOfProperty(name.constData()));
    OssScriptManager::instance()->clearError();
    property.write(target.object, asType(value, property.userType()));
    return finished({});
}
