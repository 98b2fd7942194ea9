#pragma once

#include "Layout/ColumnLayout.h"

#include <QMarginsF>
#include <QVector>

#include <vector>

/// Lays nodes out in columns (ColumnLayout) so that those of a frame stay together: each frame's members are laid out
/// by themselves, and the frame is one node among those around it then. Plain values; scene coordinates.
class FramedLayout
{
public:
    struct Frame
    {
        int parent = -1;      ///< a later one
        QVector<int> members; ///< nodes that lie in no frame inside it
        QMarginsF margins;    ///< around the members
        QRectF area;          ///< what it covers as long as none of them is laid out
    };

    /// What is to be laid out. Frames that others hold come first. `followers` go where another node goes: pairs of
    /// a follower and that node.
    FramedLayout(std::vector<ColumnLayout::Node> nodes, std::vector<Frame> frames,
                 QVector<QPair<int, int>> followers);

    /// See ColumnLayout::layOut().
    void layOut(const QVector<int> &startNodes, const QVector<int> &ignored);

    QPointF position(int node) const { return m_nodes[std::size_t(node)].position; }

private:
    /// A node, or a frame with all that is in it.
    struct Unit
    {
        int node = -1;
        int frame = -1;
    };

    void findReached(const QVector<int> &startNodes);
    bool keepArea(int index);
    bool keepUnmovedAreas();
    bool isReached(int frame) const;
    void layOutFrames(const QVector<int> &ignored);
    bool settle(const QVector<int> &ignored);
    void layOutLevel(int frame, const QVector<int> &ignored);
    std::vector<Unit> unitsOf(int frame, const QVector<int> &ignored);
    ColumnLayout::Node valueOf(const Unit &unit) const;
    void addInputs(int node, const QPointF &origin, int unit, ColumnLayout::Node *value) const;
    QVector<int> nodesIn(int frame) const;
    QRectF rect(int node) const;
    QRectF contentOf(int frame) const;
    void shift(const Unit &unit, const QPointF &way);
    QRectF areaOf(const Unit &unit) const;
    QVector<QRectF> emptyFramesApartFrom(int frame) const;
    void partFrames(const std::vector<Unit> &units);
    void bringFollowers();
    void closeGaps(const std::vector<Unit> &units, Qt::Orientation direction);

    std::vector<ColumnLayout::Node> m_nodes;
    std::vector<ColumnLayout::Node> m_before;
    std::vector<Frame> m_frames;
    QVector<QPair<int, int>> m_followers;
    bool m_givesWay = true; ///< a frame that has grown over others
    std::vector<bool> m_reached;
    std::vector<int> m_unitOf; ///< of nodes, in the level that is laid out; -1: outside of it
};
