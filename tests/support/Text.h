#pragma once

#include <QString>
#include <QStringList>

#include <initializer_list>

inline QString text(const char *latin)
{
    return QString::fromUtf8(latin);
}

/// Several of them.
inline QStringList texts(std::initializer_list<const char *> all)
{
    QStringList list;
    for (const char *one : all)
        list.append(text(one));
    return list;
}
