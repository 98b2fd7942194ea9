#pragma once

#include "OssModel/OssModel_export.h"

#include <QList>
#include <QString>

class OssSnBaseNode;

namespace OssShaderNetworkUtils {

/// Visits nodes along wires, each once, nearest first; loops end. Through groups, if asked to: the
/// nodes inside that stand for a group's ports are ways into the group and out of it. Such a walk also
/// goes where nodes are connected without a wire.
class OSSMODEL_EXPORT OssNodeWalker
{
public:
    explicit OssNodeWalker(bool throughGroups)
        : m_throughGroups(throughGroups)
    {
    }

    OssNodeWalker(const OssNodeWalker &) = delete;
    OssNodeWalker &operator=(const OssNodeWalker &) = delete;
    virtual ~OssNodeWalker() = default;

    /// The node and everything beyond it. Null: nothing.
    void walk(OssSnBaseNode *start);
    /// Only what is beyond the nodes: one of them where it is beyond another.
    void walkBeyond(const QList<OssSnBaseNode *> &starts);

protected:
    virtual void visit(OssSnBaseNode *node) = 0;

    /// Whether the walk goes along the wire that ends at the input of `node`.
    virtual bool enters(const OssSnBaseNode *, const QString &) const { return true; }

    bool throughGroups() const { return m_throughGroups; }

private:
    /// Neighbours, some of them perhaps null or more than once.
    virtual QList<OssSnBaseNode *> next(const OssSnBaseNode *node) const = 0;

    /// What the walk starts at besides a start node.
    virtual QList<OssSnBaseNode *> insideOf(const OssSnBaseNode *) const { return {}; }

    QList<OssSnBaseNode *> withInside(const QList<OssSnBaseNode *> &starts) const;
    void spread(QList<OssSnBaseNode *> open);

    bool m_throughGroups;
};

/// Along what a node takes from. What makes the output of a group is visited as well as the group.
class OSSMODEL_EXPORT OssNodeWalkerUpstream : public OssNodeWalker
{
public:
    explicit OssNodeWalkerUpstream(bool throughGroups = false)
        : OssNodeWalker(throughGroups)
    {
    }

private:
    QList<OssSnBaseNode *> next(const OssSnBaseNode *node) const override;
    QList<OssSnBaseNode *> insideOf(const OssSnBaseNode *node) const override;
};

/// Along what takes from a node.
class OSSMODEL_EXPORT OssNodeWalkerDownstream : public OssNodeWalker
{
public:
    explicit OssNodeWalkerDownstream(bool throughGroups = false)
        : OssNodeWalker(throughGroups)
    {
    }

protected:
    /// Whether the walk leaves `node` through the output.
    virtual bool leaves(const OssSnBaseNode *, const QString &) const { return true; }

private:
    QList<OssSnBaseNode *> next(const OssSnBaseNode *node) const override;
};

} // namespace OssShaderNetworkUtils
