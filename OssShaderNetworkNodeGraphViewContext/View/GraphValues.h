#pragma once

#include "OssGraphLayout/OssLyGraph.h"

#include <QHash>
#include <QList>
#include <QVector>

class OssNgEdge;
class OssNgNode;
class OssSnBaseNode;

/// Nodes of a network as the layout's plain values, and what links the two. A backdrop is a frame when all that lies
/// on it is among the nodes, and a node when nothing lies on it; else it takes no part.
class GraphValues
{
public:
    explicit GraphValues(const QList<OssSnBaseNode *> &nodes);

    const OssLyGraph &graph() const { return m_graph; }

    OssSnBaseNode *node(int index) const { return m_nodes.at(index); }

    OssSnBaseNode *backdrop(int frame) const { return m_frames.at(frame); }

    OssNgEdge *wire(int index) const { return m_edges.at(index); }

    int count() const { return m_nodes.size(); }

    bool contains(const OssSnBaseNode *node) const
    {
        return m_indexOf.contains(node) || m_frameOf.contains(node);
    }

private:
    void takeFrames(const QList<OssSnBaseNode *> &nodes);
    int frameHolding(const OssSnBaseNode *node) const;
    void takeNodes(const QList<OssSnBaseNode *> &nodes);
    void takeWires();
    void attachNotes();

    OssLyGraph m_graph;
    QList<OssSnBaseNode *> m_nodes;
    QList<OssSnBaseNode *> m_frames;
    QVector<OssNgEdge *> m_edges;
    QHash<const OssSnBaseNode *, int> m_indexOf;
    QHash<const OssSnBaseNode *, int> m_frameOf;
};
