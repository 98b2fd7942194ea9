#pragma once

#include "OssScriptObjects/OssAPIFactory.h"
#include "OssScriptObjects/OssScriptObjects_export.h"

#include <QList>
#include <QMetaType>
#include <QVariant>
#include <QVector>

/// What the scripting language has to know of a script class: its meta-object, and the names under
/// which moc writes pointers to it and lists of them. GUI thread, before the first script runs.
namespace OssScriptTypes {

/// The class' name without its namespace.
OSSSCRIPTOBJECTS_EXPORT QByteArray shortName(const QMetaObject *type);
OSSSCRIPTOBJECTS_EXPORT void note(const QMetaObject *type);
/// Every class that was registered, bases first.
OSSSCRIPTOBJECTS_EXPORT QVector<const QMetaObject *> all();

/// Makes the class usable in slots, properties and signals of script classes.
template <class Api>
void registerClass()
{
    const QByteArray name = shortName(&Api::staticMetaObject);
    qRegisterMetaType<Api *>((name + "*").constData());
    qRegisterMetaType<QList<Api *>>(("QList<" + name + "*>").constData());
    if (!QMetaType::hasRegisteredConverterFunction<QVariantList, QList<Api *>>()) {
        QMetaType::registerConverter<QVariantList, QList<Api *>>([](const QVariantList &values) {
            QList<Api *> objects;
            for (const QVariant &value : values)
                objects.append(qobject_cast<Api *>(value.value<QObject *>()));
            return objects;
        });
    }
    note(&Api::staticMetaObject);
}

/// Makes script objects of one class for objects of one internal class.
template <class Api, class Internal>
class Factory final : public OssAPIFactory
{
public:
    Ossa::API *create(QObject *internal) override { return new Api(internal); }

    QString internalClassName() override
    {
        return QString::fromLatin1(Internal::staticMetaObject.className());
    }

    QString scriptClassName() override
    {
        return QString::fromLatin1(Api::staticMetaObject.className());
    }
};

} // namespace OssScriptTypes
