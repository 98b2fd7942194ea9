#pragma once

#include "OssScripting/OssScripting_export.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <QVector>

struct QMetaObject;

/// What scripts see of a script class, read from its meta-object. GUI thread.
struct OssScriptClass
{
    struct Method
    {
        QByteArray name;
        QStringList signatures; ///< one for each overload
        QByteArray returns;     ///< name of the script class that it returns; empty for other types
        QString doc;
    };

    struct Property
    {
        QByteArray name;
        QString type;
        bool isWritable = false;
        QString doc;
    };

    struct Signal
    {
        QByteArray name;
        QString signature;
        QString doc;
    };

    QByteArray name;
    QByteArray base; ///< empty for none that scripts know
    QString doc;
    QVector<Method> methods;
    QVector<Property> properties;
    QVector<Signal> signals_;

    static OssScriptClass of(const QMetaObject *type);
    /// Bases first.
    static QVector<OssScriptClass> all();
    QVariantMap toMap() const;
};
