#pragma once

#include "OssModel/OssModel_export.h"
#include "OssModel/Types/OssSnNodeType.h"

#include <QHash>
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
    QHash<QString, TypePointer> m_types;
    QHash<QString, TypePointer> m_byVersion;
};
