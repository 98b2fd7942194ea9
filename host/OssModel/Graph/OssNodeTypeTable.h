#pragma once

#include "OssCore/Documents/OssSerializableObject.h"
#include "OssModel/Types/OssSnNodeType.h"

#include <QHash>
#include <QList>

class OssSnBaseNode;

/// The node types that a file brings with it, so that its nodes stay what they were made from when
/// the types of that name have changed since. Groups that were published as a type which is not known
/// here are made from it all the same. Types under "_System/" are always the installed ones.
///
///     <nodeType key="Filter/Blur">  <NodeType .../> </nodeType>     the installed one of its time
///     <nodeType key="Filter/Blur" id="9c0d..."> ... </nodeType>     one that was old even then
class OssNodeTypeTable
{
public:
    /// What a node of a file is made of: a type, or none that is known here and the description
    /// that must not be lost.
    struct Entry
    {
        std::shared_ptr<const OssSnNodeType> type;
        QString description;
    };

    /// The types of the nodes and of all that is inside them, in the order of their keys.
    static void write(OssSerializer &serializer, const QList<OssSnBaseNode *> &nodes);
    /// Under what a node finds its type again; empty for the installed one.
    static QString idOf(const OssSnNodeType &type);

    /// Takes in the element at which the reader stands and moves past it. A faulty description is a
    /// debug line; nodes are made of the installed type then.
    void read(OssDeserializer &deserializer, const OssSerializableObject::Attributes &attributes);
    /// The installed type where the file brings none or the same.
    Entry find(const QString &pathKey, const QString &id) const;

private:
    QHash<QPair<QString, QString>, Entry> m_entries;
};
