#pragma once

#include "OssModel/OssModel_export.h"
#include "OssModel/Types/OssSnNodeType.h"

#include <QHash>
#include <QMap>
#include <QStringList>

#include <memory>

/// All node types that are known, by path key.
class OSSMODEL_EXPORT OssSnNodeTypeLibrary
{
public:
    using TypePointer = std::shared_ptr<const OssSnNodeType>;

    /// Reads every "*.xml" of a folder and of the folders in it, in the order of their names. A
    /// description that is faulty or whose key is taken is left out; the reasons are returned.
    QStringList readFolder(const QString &folder);

    /// Keys of types.
    struct Changes
    {
        QStringList added;
        QStringList changed;
        QStringList removed;

        bool isEmpty() const { return added.isEmpty() && changed.isEmpty() && removed.isEmpty(); }
    };

    /// The same for the one folder whose types come and go: what was read from it before makes room for
    /// what is there now, and a type that is what it was stays the same object. Left out is also what
    /// takes an id from another type, or a place among the application's own.
    QStringList readChangingFolder(const QString &folder, Changes *changes);
    /// False when the key is taken.
    bool add(const TypePointer &type);

    /// Null for unknown keys.
    TypePointer find(const QString &pathKey) const { return m_types.value(pathKey); }

    /// Null for unknown ids.
    TypePointer findByVersion(const QString &versionUUID) const
    {
        return m_byVersion.value(versionUUID);
    }

    /// Sorted.
    QStringList pathKeys() const;

private:
    using Types = QMap<QString, TypePointer>;

    /// Empty when the type may come; else why not.
    OssResult mayCome(const TypePointer &type, const Types &others) const;
    void remove(const QString &pathKey);

    QHash<QString, TypePointer> m_types;
    QHash<QString, TypePointer> m_byVersion;
    Types m_changing; ///< those of the folder whose types come and go
};
