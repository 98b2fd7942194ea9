#include "OssScriptObjects/OssScriptTypes.h"

#include <QMetaObject>

namespace {

QVector<const QMetaObject *> &classes()
{
    static QVector<const QMetaObject *> noted;
    return noted;
}

} // namespace

QByteArray OssScriptTypes::shortName(const QMetaObject *type)
{
    const QByteArray name = type->className();
    return name.mid(name.lastIndexOf(':') + 1);
}

void OssScriptTypes::note(const QMetaObject *type)
{
    if (!type || type == &QObject::staticMetaObject || classes().contains(type))
        return;
    note(type->superClass());
    classes().append(type);
}

QVector<const QMetaObject *> OssScriptTypes::all()
{
    return classes();
}
