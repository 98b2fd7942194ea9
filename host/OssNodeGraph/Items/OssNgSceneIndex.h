#pragma once

#include "OssNodeGraph/Index/OssNgGrid.h"
#include "OssNodeGraph/Index/OssNgItemBuckets.h"
#include "OssNodeGraph/OssNodeGraph_export.h"

#include <QObject>
#include <QRectF>
#include <QRgb>
#include <QSet>
#include <QVector>

#include <vector>

class OssNgEdge;
class OssNgNode;
class QGraphicsScene;

/// Where the nodes and wires of one scene are: grids with what is needed to find them, to draw all
/// wires at once and to draw an overview without touching an item. Items keep it up to date
/// themselves. One for each scene, its child. Scene coordinates. GUI thread.
class OSSNODEGRAPH_EXPORT OssNgSceneIndex : public QObject
{
    Q_OBJECT

public:
    /// Scene units from the middle: nothing stands beyond.
    static constexpr qreal MostReach = 1e6;

    /// The bounds are those of the body.
    struct NodeEntry : OssNgGridEntry
    {
        OssNgNode *node = nullptr; ///< null: the slot is free
        double z = 0.0;
        quint64 serial = 0; ///< order in which equal z are painted
        QRgb color = 0;
        bool background = false;
        bool selected = false;
    };

    struct WireEntry : OssNgGridEntry
    {
        OssNgEdge *edge = nullptr; ///< null: the slot is free
        QPointF start;
        QPointF end;
        QRgb color = 0;
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
    void findNodes(const QRectF &rect, std::vector<int> *found) const { m_nodes.find(rect, found); }

    void findWires(const QRectF &rect, std::vector<int> *found) const { m_wires.find(rect, found); }

    const NodeEntry &nodeEntry(int slot) const { return m_nodes[slot]; }

    const WireEntry &wireEntry(int slot) const { return m_wires[slot]; }

    const std::vector<NodeEntry> &nodeEntries() const { return m_nodes.entries(); }

    const std::vector<WireEntry> &wireEntries() const { return m_wires.entries(); }

    /// How much taller a node of the scene may become until it comes near to what stands below, or to
    /// the end of the backdrop that it is on: at most the given height, less than nothing where it
    /// lies over something. Counted from its body without the given part at its lower end.
    qreal roomBelow(const OssNgNode *node, qreal grown, qreal most) const;
    /// Lets nodes that failed tell so in the room that they have now. Comes by itself once the event
    /// loop runs; for those who draw before that.
    void settleRoom();

    /// Bounds of the visible nodes; empty when there are none.
    QRectF visibleNodeBounds() const;

    int nodeCount() const { return m_nodes.count(); }

    int wireCount() const { return m_wires.count(); }

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
    explicit OssNgSceneIndex(QGraphicsScene *scene);
    void fill(NodeEntry &entry, const OssNgNode *node) const;
    void fill(WireEntry &entry, const OssNgEdge *edge) const;
    void repaint(const QRectF &rect);
    void refreshColors();
    void coverByScene(const QRectF &rect);
    void keepTelling(OssNgNode *node);
    void roomChanged();

    QGraphicsScene *m_scene;
    OssNgItemBuckets m_nodeBuckets;
    OssNgItemBuckets m_wireBuckets;
    OssNgGrid<NodeEntry> m_nodes;
    OssNgGrid<WireEntry> m_wires;
    quint64 m_serial = 0;
    /// Half the side of the scene's rectangle. A scene without one measures all items whenever one
    /// moves; one far larger than its graph finds items slowly. So it doubles when needed.
    qreal m_reach = 4096.0;
    quint32 m_revision = 0;
    QSet<OssNgNode *> m_telling; ///< those that failed, and say why
    bool m_roomChanged = false;
};
