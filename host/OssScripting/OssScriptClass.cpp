#include "OssScripting/OssScriptClass.h"

#include "OssScripting/OssScriptCall.h"
#include "OssScriptObjects/OssaAPI.h"
#include "OssScriptObjects/OssScriptManager.h"
#include "OssScriptObjects/OssScriptTypes.h"

#include <QMetaClassInfo>
#include <QMetaMethod>
#include <QMetaProperty>

#include <algorithm>

namespace {

QString docOf(const QMetaObject *type, const QByteArray &name)
{
    for (int i = type->classInfoOffset(); i < type->classInfoCount(); ++i) {
        if (type->classInfo(i).name() == name)
            return QString::fromUtf8(type->classInfo(i).value());
    }
    return {};
}

QByteArray returnedClass(const QMetaMethod &method)
{
    const QMetaObject *returned = QMetaType::metaObjectForType(method.returnType());
    return returned ? OssScriptTypes::shortName(returned) : QByteArray();
}

} // namespace

OssScriptClass OssScriptClass::of(const QMetaObject *type)
{
    OssScriptClass entry;
    entry.name = OssScriptTypes::shortName(type);
    entry.doc = docOf(type, "doc");
    if (type->superClass() != &Ossa::API::staticMetaObject)
        entry.base = OssScriptTypes::shortName(type->superClass());
    for (int i = type->methodOffset(); i < type->methodCount(); ++i) {
        const QMetaMethod method = type->method(i);
        const QByteArray name = method.name();
        if (method.methodType() == QMetaMethod::Signal) {
            entry.signals_.append({name, OssScriptCall::signatureText(method), docOf(type, name)});
            continue;
        }
        if (!OssScriptCall::isCallable(method))
            continue;
        const auto known = std::find_if(entry.methods.begin(), entry.methods.end(),
                                        [&](const Method &other) { return other.name == name; });
        if (known != entry.methods.end())
            known->signatures.append(OssScriptCall::signatureText(method));
        else
            entry.methods.append({name,
                                  {OssScriptCall::signatureText(method)},
                                  returnedClass(method),
                                  docOf(type, name)});
    }
    for (int i = type->propertyOffset(); i < type->propertyCount(); ++i) {
        const QMetaProperty property = type->property(i);
        entry.properties.append({property.name(),
                                 OssScriptCall::typeText(property.userType(), property.typeName()),
                                 property.isWritable(), docOf(type, property.name())});
    }
    return entry;
}

QVector<OssScriptClass> OssScriptClass::all()
{
    OssScriptManager::instance(); // registers the host's
    QVector<OssScriptClass> list;
    const QVector<const QMetaObject *> types = OssScriptTypes::all();
    for (const QMetaObject *type : types) {
        if (type != &Ossa::API::staticMetaObject)
            list.append(of(type));
    }
    return list;
}

QVariantMap OssScriptClass::toMap() const
{
    const auto text = [](const QByteArray &latin) {
        return QString::fromLatin1(latin);
    };
    QVariantList methodList;
    for (const Method &method : methods)
        methodList.append(
            QVariantMap{{QStringLiteral("name"), text(method.name)},
                        {QStringLiteral("doc"), QString(method.signatures.join(QLatin1Char('\n'))
                                                        + QStringLiteral("\n\n") + method.doc)
                                                    .trimmed()},
                        {QStringLiteral("returns"), text(method.returns)}});
    QVariantList propertyList;
    for (const Property &property : properties)
        propertyList.append(QVariantMap{{QStringLiteral("name"), text(property.name)},
                                        {QStringLiteral("doc"), property.doc},
                                        {QStringLiteral("writable"), property.isWritable}});
    QVariantList signalList;
    for (const Signal &signal : signals_)
        signalList.append(QVariantMap{
            {QStringLiteral("name"), text(signal.name)},
            {QStringLiteral("doc"),
             QString(signal.signature + QStringLiteral("\n\n") + signal.doc).trimmed()}});
    return {{QStringLiteral("name"), text(name)},
            {QStringLiteral("base"), text(base)},
            {QStringLiteral("doc"), doc},
            {QStringLiteral("methods"), methodList},
            {QStringLiteral("properties"), propertyList},
            {QStringLiteral("signals"), signalList}};
}
