#include "OssScripting/OssScriptCall.h"

#include "OssCore/Values/OssColor.h"
#include "OssScripting/OssScriptHandle.h"
#include "OssScriptObjects/OssaAPI.h"
#include "OssScriptObjects/OssScriptTypes.h"

#include <QMetaMethod>
#include <QPointF>
#include <QSizeF>

#include <algorithm>
#include <limits>

namespace {

constexpr int Impossible = -1;
constexpr int Exact = 0;
constexpr int Near = 1;
constexpr int Far = 2;
constexpr int Anything = 4;

bool isWhole(const QVariant &value)
{
    return value.userType() == QMetaType::LongLong;
}

bool isNumber(const QVariant &value)
{
    return isWhole(value) || value.userType() == QMetaType::Double;
}

bool isListOf(const QVariant &value, bool (*accepts)(const QVariant &))
{
    if (value.userType() != QMetaType::QVariantList)
        return false;
    const QVariantList entries = value.toList();
    return std::all_of(entries.cbegin(), entries.cend(), accepts);
}

bool areNumbers(const QVariant &value, int least, int most)
{
    return isListOf(value, isNumber) && value.toList().size() >= least
           && value.toList().size() <= most;
}

bool isText(const QVariant &value)
{
    return value.userType() == QMetaType::QString;
}

bool isInt(const QVariant &value)
{
    return isWhole(value) && value.toLongLong() >= std::numeric_limits<int>::min()
           && value.toLongLong() <= std::numeric_limits<int>::max();
}

int costOfObject(const QVariant &value, const QMetaObject *wanted)
{
    if (!value.isValid())
        return Near; // None is no object
    if (value.userType() != qMetaTypeId<OssScriptHandle>())
        return Impossible;
    const auto handle = value.value<OssScriptHandle>();
    const QMetaObject *given = wanted->inherits(&Ossa::API::staticMetaObject) ? handle.type
                                                                              : handle.internal;
    return given && given->inherits(wanted) ? Exact : Impossible;
}

/// The class whose pointers a "QList<Class*>" holds; null for other types.
const QMetaObject *listedClass(const QByteArray &typeName)
{
    if (!typeName.startsWith("QList<") || !typeName.endsWith("*>"))
        return nullptr;
    const QByteArray pointer = typeName.mid(6, typeName.size() - 7);
    return QMetaType::metaObjectForType(QMetaType::type(pointer));
}

int costOfNumber(const QVariant &value, int type)
{
    const bool truth = value.userType() == QMetaType::Bool;
    switch (type) {
    case QMetaType::Bool:
        return truth ? Exact : Impossible;
    case QMetaType::Int:
        return truth ? Far : isInt(value) ? Exact : Impossible;
    case QMetaType::LongLong:
        return truth ? Far : isWhole(value) ? Exact : Impossible;
    default: // reals
        return value.userType() == QMetaType::Double ? Exact : isWhole(value) ? Near : Impossible;
    }
}

int costOfList(const QVariant &value, const QMetaObject *listed)
{
    if (value.userType() != QMetaType::QVariantList)
        return Impossible;
    const QVariantList entries = value.toList();
    const bool all = std::all_of(entries.cbegin(), entries.cend(), [listed](const QVariant &entry) {
        return entry.isValid() && costOfObject(entry, listed) != Impossible;
    });
    return all ? Exact : Impossible;
}

/// Of the program's own types, which have no constants of Qt's.
int costOfOwnType(const QVariant &value, int type, const QByteArray &name)
{
    if (type == qMetaTypeId<QList<int>>())
        return isListOf(value, isInt) ? Exact : Impossible;
    if (type == qMetaTypeId<OssColor>() || type == QMetaType::QColor) {
        if (value.userType() == qMetaTypeId<OssColor>())
            return Exact;
        return areNumbers(value, 3, 4) ? Near : Impossible;
    }
    if (QMetaType::typeFlags(type).testFlag(QMetaType::PointerToQObject))
        return costOfObject(value, QMetaType::metaObjectForType(type));
    if (const QMetaObject *listed = listedClass(name))
        return costOfList(value, listed);
    if (QMetaType::typeFlags(type).testFlag(QMetaType::IsEnumeration))
        return isInt(value) ? Exact : Impossible;
    return Impossible;
}

int cost(const QVariant &value, int type, const QByteArray &name)
{
    switch (type) {
    case QMetaType::QVariant:
        return Anything;
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::LongLong:
    case QMetaType::Double:
    case QMetaType::Float:
        return costOfNumber(value, type);
    case QMetaType::QString:
        return isText(value) ? Exact : Impossible;
    case QMetaType::QStringList:
        return isListOf(value, isText) ? Exact : Impossible;
    case QMetaType::QVariantList:
        return value.userType() == QMetaType::QVariantList ? Near : Impossible;
    case QMetaType::QVariantMap:
        return value.userType() == QMetaType::QVariantMap ? Exact : Impossible;
    case QMetaType::QPointF:
    case QMetaType::QPoint:
    case QMetaType::QSizeF:
    case QMetaType::QSize:
        if (value.userType() == QMetaType::QPointF)
            return Exact;
        return areNumbers(value, 2, 2) ? Near : Impossible;
    default:
        return costOfOwnType(value, type, name);
    }
}

int costOfCall(const QMetaMethod &method, const QVariantList &arguments)
{
    if (method.parameterCount() != arguments.size())
        return Impossible;
    const QList<QByteArray> names = method.parameterTypes();
    int sum = 0;
    for (int i = 0; i < arguments.size(); ++i) {
        const int one = cost(arguments.at(i), method.parameterType(i), names.at(i));
        if (one == Impossible)
            return Impossible;
        sum += one;
    }
    return sum;
}

QString describe(const QVariant &value)
{
    if (!value.isValid())
        return QStringLiteral("None");
    if (value.userType() == qMetaTypeId<OssScriptHandle>())
        return QString::fromLatin1(OssScriptTypes::shortName(value.value<OssScriptHandle>().type));
    return OssScriptCall::typeText(value.userType(), QByteArray());
}

} // namespace

int OssScriptCall::chooseMethod(const QMetaObject *type, const QByteArray &name,
                                const QVariantList &arguments, QString *reason)
{
    int best = -1;
    int bestCost = 0;
    QStringList signatures;
    for (int i = QObject::staticMetaObject.methodCount(); i < type->methodCount(); ++i) {
        const QMetaMethod method = type->method(i);
        if (method.name() != name || !isCallable(method))
            continue;
        signatures.append(signatureText(method));
        if (method.returnType() == QMetaType::UnknownType)
            continue; // a type that no call can carry
        const int one = costOfCall(method, arguments);
        if (one != Impossible && (best < 0 || one < bestCost)) {
            best = i;
            bestCost = one;
        }
    }
    if (best < 0) {
        QStringList given;
        for (const QVariant &argument : arguments)
            given.append(describe(argument));
        *reason = signatures.isEmpty()
                      ? QStringLiteral("There is no slot %1").arg(QString::fromLatin1(name))
                      : QStringLiteral("%1(%2) does not fit; it is called as %3")
                            .arg(QString::fromLatin1(name), given.join(QStringLiteral(", ")),
                                 signatures.join(QStringLiteral(" or ")));
    }
    return best;
}

bool OssScriptCall::isCallable(const QMetaMethod &method)
{
    // Not those of Qt's classes: a script could close and delete what it does not own.
    const QByteArray owner = method.enclosingMetaObject()->className();
    return method.methodType() == QMetaMethod::Slot && method.access() == QMetaMethod::Public
           && owner.startsWith("Oss");
}

bool OssScriptCall::fits(const QVariant &value, int type, const QByteArray &typeName)
{
    return cost(value, type, typeName) != Impossible;
}

QString OssScriptCall::typeText(int type, const QByteArray &name)
{
    static const QHash<int, QString> known{
        {QMetaType::Void, QStringLiteral("None")},
        {QMetaType::Bool, QStringLiteral("bool")},
        {QMetaType::Int, QStringLiteral("int")},
        {QMetaType::LongLong, QStringLiteral("int")},
        {QMetaType::Double, QStringLiteral("float")},
        {QMetaType::Float, QStringLiteral("float")},
        {QMetaType::QString, QStringLiteral("str")},
        {QMetaType::QStringList, QStringLiteral("list[str]")},
        {QMetaType::QVariantList, QStringLiteral("list")},
        {QMetaType::QVariantMap, QStringLiteral("dict[str, Any]")},
        {QMetaType::QVariant, QStringLiteral("Any")},
        {QMetaType::QPointF, QStringLiteral("Point")},
        {QMetaType::QPoint, QStringLiteral("Point")},
        {QMetaType::QSizeF, QStringLiteral("Point")},
        {QMetaType::QSize, QStringLiteral("Point")},
        {QMetaType::QColor, QStringLiteral("Color")},
        {qMetaTypeId<OssColor>(), QStringLiteral("Color")},
        {qMetaTypeId<QList<int>>(), QStringLiteral("list[int]")},
    };
    const auto found = known.constFind(type);
    if (found != known.cend())
        return *found;
    if (const QMetaObject *listed = listedClass(name))
        return QStringLiteral("list[%1]")
            .arg(QString::fromLatin1(OssScriptTypes::shortName(listed)));
    if (const QMetaObject *pointed = QMetaType::metaObjectForType(type))
        return QString::fromLatin1(OssScriptTypes::shortName(pointed));
    return QStringLiteral("Any");
}

QString OssScriptCall::signatureText(const QMetaMethod &method)
{
    QStringList parameters;
    const QList<QByteArray> names = method.parameterNames();
    const QList<QByteArray> types = method.parameterTypes();
    for (int i = 0; i < names.size(); ++i)
        parameters.append(QStringLiteral("%1: %2").arg(
            QString::fromLatin1(names.at(i)), typeText(method.parameterType(i), types.at(i))));
    QString text = QStringLiteral("%1(%2)").arg(QString::fromLatin1(method.name()),
                                                parameters.join(QStringLiteral(", ")));
    if (method.returnType() != QMetaType::Void)
        text += QStringLiteral(" -> ") + typeText(method.returnType(), method.typeName());
    return text;
}
