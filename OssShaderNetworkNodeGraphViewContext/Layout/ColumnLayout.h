#pragma once

#include <QMarginsF>
#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <QVector>

#include <vector>

/// Arranges nodes in columns that run from a downstream root on the right to its upstream nodes on
/// the left. Works on plain values; scene coordinates.
///
/// A node stands in the deepest column at which it is reached (longest path from the root). The
/// first input followed leads straight on: its node starts at the height of the one it feeds. For a
/// merge that is the base, so base streams run level and what lies over them hangs below.
class ColumnLayout
{
public:
    static constexpr qreal ColumnGap = 150.0;
    static constexpr qreal RowGap = 60.0;
    static constexpr qreal Clearance = 75.0; ///< from what a column must not overlap

    struct Input
    {
        int source = -1;   ///< index of a node; -1 leads nowhere, or is not to be followed
        qreal portY = 0.0; ///< of the port, from the node's top
        bool base = false; ///< of a merge: the stream that the others are laid over
    };

    struct Node
    {
        QPointF position; ///< top-left
        QSizeF size;
        QMarginsF margins;   ///< that others keep clear of as well
        bool hasItem = true; ///< without one it takes no room
        bool merge = false;
        QVector<Input> inputs;
    };

    /// A placed node, in the order in which they were placed. A shift moves a whole column that
    /// was placed before.
    struct Move
    {
        int node = -1;
        QPointF position;
        bool shift = false;
    };

    explicit ColumnLayout(std::vector<Node> nodes);

    /// Lays out the tree of each start node, in an order in which few wires run backward, and none where there is such
    /// an order. What a layout has made stays as it is. Nodes that stand in the tree of an earlier one are
    /// left alone by the later ones; start nodes upstream of another come with its tree. Nodes of
    /// no tree, and those placed before, are kept clear of, unless they are `ignored` (such as
    /// backdrops, which lie behind).
    void layOut(const QVector<int> &startNodes, const QVector<int> &ignored);

    const QVector<Move> &moves() const { return m_moves; }

    QRectF rect(int node) const
    {
        return {m_nodes[std::size_t(node)].position, m_nodes[std::size_t(node)].size};
    }

private:
    struct Entry
    {
        int node;
        int downstream; ///< -1: the root
        int input;      ///< of the downstream node
    };

    using Columns = std::vector<std::vector<Entry>>;

    void layOutInOrder(const QVector<int> &starts);
    int backwardWires() const;
    bool standsAsBefore() const;
    bool layOutLeftFirst(const QVector<int> &starts);
    std::vector<int> downstreamFirst() const;
    std::vector<qreal> placesAlone(int root, const std::vector<int> &order) const;
    QVector<int> leftFirst(const QVector<int> &starts) const;
    static QVector<int> byWins(const QVector<int> &starts, const std::vector<int> &wins);
    void gatherObstacles(const std::vector<bool> &without);
    QVector<int> sortedStarts(const QVector<int> &startNodes) const;
    std::vector<bool> upstreamOf(const QVector<int> &starts, bool includeStarts) const;
    static QVector<int> followedInputs(const Node &node);
    Columns columnsOf(int root);
    /// Also takes the node out of a column nearer to the root: its entry there is -1 then.
    void enter(const Entry &entry, int column, Columns *columns);
    void enterSources(int node, int root, int column, Columns *columns);
    void keepClearOf(int node);
    void layoutTree(int root);
    void placeColumn(const std::vector<Entry> &column, qreal width, qreal x, const QPointF &root);
    qreal entryY(const Entry &entry, qreal cursor, qreal rootY) const;
    qreal shiftClear(const QRectF &column) const;
    qreal widthOf(const std::vector<Entry> &column) const;
    qreal gapBetween(const std::vector<Entry> &left, const std::vector<Entry> &right) const;
    void shiftColumn(const std::vector<Entry> &column, qreal shift);
    void move(int node, const QPointF &position, bool shift);

    std::vector<Node> m_nodes;
    std::vector<Node> m_before;
    QVector<int> m_ignored;
    std::vector<bool> m_laidOut;
    std::vector<int> m_columnOf; ///< -1 but while a tree is put into columns
    std::vector<int> m_indexIn;
    std::vector<QRectF> m_obstacles; ///< sorted by their left side
    qreal m_widestObstacle = 0.0;
    QRectF m_columnRect;
    QVector<Move> m_moves;
};
