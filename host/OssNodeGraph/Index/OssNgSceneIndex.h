#pragma once

#include "OssNodeGraph/Index/OssNgItemBuckets.h"
#include "OssNodeGraph/OssNodeGraph_export.h"

#include <QObject>
#include <QRectF>
#include <QVector>

#include <unordered_map>
#include <vector>

class OssNgEdge;
class OssNgNode;
class QGraphicsScene;

/// Where the nodes and wires of one scene are: a uniform grid with what is needed to find them, to
/// draw all wires at once and to draw an overview without touching an item. Items keep it up to
/// date themselves. One for each scene, its child. Scene coordinates. GUI thread.
class OSSNODEGRAPH_EXPORT OssNgSceneIndex : public QObject
{
    Q_OBJECT

public:
    struct NodeEntry
    {
        OssNgNode *node = nullptr; ///< null: the slot is free
        QRectF rect;               ///< the body
        QRect cells;
        double z = 0.0;
        quint64 serial = 0; ///< order in which equal z are painted
        QRgb color = 0;
        mutable quint32 stamp = 0; ///< last search that met it
        bool visible = true;
        bool background = false;
        bool selected = false;
    };

    struct WireEntry
    {
        OssNgEdge *edge = nullptr; ///< null: the slot is free
        QPointF start;
        QPointF end;
        QRectF bounds;
        QRect cells;
        QRgb color = 0;
        mutable quint32 stamp = 0; ///< last search that met it
        bool visible = true;
        bool large = false; ///< kept apart, for its bounds cover too many cells
    };

    /// Made at the first call. Null for a null scene.
    static OssNgSceneIndex *of(QGraphicsScene *scene);
    /// Takes all nodes and wires out of the scene without deleting them. The destructor of a scene
    /// whose items are owned elsewhere must call it.
    static void releaseItems(QGraphicsScene *scene);
    ~OssNgSceneIndex() override;

    /// Topmost visible node that takes a click there; nodes before backdrops.
    OssNgNode *nodeAt(const QPointF &scenePos) const;
    /// The nearest visible wire within the distance.
    OssNgEdge *edgeAt(const QPointF &scenePos, qreal distance) const;
    /// Visible nodes whose body intersects the rectangle; in painting order.
    QVector<OssNgNode *> nodesIn(const QRectF &rect) const;
    /// Visible wires whose bounds intersect the rectangle; in no order.
    QVector<OssNgEdge *> edgesIn(const QRectF &rect) const;
    /// Slots of visible entries that intersect the rectangle, each once, in no order. Appended.
    void findNodes(const QRectF &rect, std::vector<int> *found) const;
    void findWires(const QRectF &rect, std::vector<int> *found) const;

    const NodeEntry &nodeEntry(int slot) const { return m_nodes[std::size_t(slot)]; }

    const WireEntry &wireEntry(int slot) const { return m_wires[std::size_t(slot)]; }

    const std::vector<NodeEntry> &nodeEntries() const { return m_nodes; }

    const std::vector<WireEntry> &wireEntries() const { return m_wires; }

    /// Bounds of the visible nodes; empty when there are none.
    QRectF visibleNodeBounds() const;

    int nodeCount() const { return m_nodeCount; }

    int wireCount() const { return m_wireCount; }

    /// Changes with every change of what an overview shows.
    quint32 revision() const { return m_revision; }

    // For the items

    void addNode(OssNgNode *node);
    void removeNode(OssNgNode *node);
    void updateNode(OssNgNode *node);
    void addEdge(OssNgEdge *edge);
    void removeEdge(OssNgEdge *edge);
    void updateEdge(OssNgEdge *edge);

private:
    struct Cell
    {
        std::vector<int> nodes;
        std::vector<int> wires;
    };

    explicit OssNgSceneIndex(QGraphicsScene *scene);
    static QRect cellsOf(const QRectF &rect);

    static quint64 key(int x, int y) { return quint64(quint32(x)) << 32U | quint32(y); }

    void fill(NodeEntry &entry, const OssNgNode *node) const;
    void fill(WireEntry &entry, const OssNgEdge *edge) const;
    void link(const QRect &cells, int slot, std::vector<int> Cell::*list);
    void unlink(const QRect &cells, int slot, std::vector<int> Cell::*list);
    void repaint(const QRectF &rect);
    void linkWire(int slot);
    void unlinkWire(int slot);
    void refreshColors();
    void coverByScene(const QRectF &rect);

    quint32 nextStamp() const { return ++m_stamp; }

    QGraphicsScene *m_scene;
    OssNgItemBuckets m_nodeBuckets;
    OssNgItemBuckets m_wireBuckets;
    std::unordered_map<quint64, Cell> m_cells;
    std::vector<int> m_largeWires;
    std::vector<NodeEntry> m_nodes;
    std::vector<WireEntry> m_wires;
    std::vector<int> m_freeNodes;
    std::vector<int> m_freeWires;
    quint64 m_serial = 0;
    /// Half the side of the scene's rectangle. A scene without one measures all items whenever one
    /// moves; one far larger than its graph finds items slowly. So it doubles when needed.
    qreal m_reach = 4096.0;
    mutable quint32 m_stamp = 0;
    quint32 m_revision = 0;
    int m_nodeCount = 0;
    int m_wireCount = 0;
};
