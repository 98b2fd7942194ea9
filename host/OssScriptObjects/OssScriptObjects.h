#pragma once

#include "OssScriptObjects/OssaAPI.h"
#include "OssScriptObjects/OssScriptManager.h"

#include <QList>

/// The script object of an object of the program, made when there is none. Null for null.
template <class Api>
Api *OssScriptObject(QObject *internal)
{
    if (!internal)
        return nullptr;
    return qobject_cast<Api *>(OssScriptManager::instance()->obtainAPI(
        internal, QString::fromLatin1(Api::staticMetaObject.className())));
}

template <class Api, class Internal>
QList<Api *> OssScriptObjectList(const QList<Internal *> &objects)
{
    QList<Api *> list;
    list.reserve(objects.size());
    for (Internal *object : objects) {
        if (Api *api = OssScriptObject<Api>(object))
            list.append(api);
    }
    return list;
}
