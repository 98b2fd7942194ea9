#pragma once

#include "OssCore/Documents/OssSerializer.h"

/// Objects that another object owns, as they are saved: a collection of sub-objects.
namespace OssObjectCollection {

/// Writes pointers to objects whose class is called `type`, each under what `nameOf` says. False when
/// one of them could not be written.
template <class Objects, class NameOf>
bool save(OssSerializer &serializer, const QString &name, const QString &type,
          const Objects &objects, NameOf nameOf)
{
    serializer.beginCollection(name, int(objects.size()), QStringLiteral("QList"), type, {});
    bool saved = true;
    for (const auto &object : objects)
        saved = object->save(serializer, nameOf(*object), {}) && saved;
    serializer.endCollection();
    return saved;
}

/// Each under its name.
template <class Objects>
bool save(OssSerializer &serializer, const QString &name, const QString &type,
          const Objects &objects)
{
    return save(serializer, name, type, objects, [](const auto &object) { return object.name(); });
}

} // namespace OssObjectCollection
