#include "OssNodeGraph/Items/OssNgSceneIndex.h"

#include "OssNodeGraph/Drawing/OssNgStyle.h"
#include "OssNodeGraph/Items/OssNgEdge.h"
#include "OssNodeGraph/Items/OssNgNode.h"

#include <QGraphicsScene>
#include <QHash>
#include <QTimer>

#include <algorithm>
#include <tuple>

namespace {

constexpr int MostCellsOfNode = 4096; // backdrops of 32,000 by 32,000
constexpr int MostCellsOfWire = 64;

QHash<const QGraphicsScene *, OssNgSceneIndex *> &registry()
{
    static QHash<const QGraphicsScene *, OssNgSceneIndex *> indexes;
    return indexes;
}

} // namespace

OssNgSceneIndex *OssNgSceneIndex::of(QGraphicsScene *scene)
{
    if (!scene)
        return nullptr;
    OssNgSceneIndex *&index = registry()[scene];
    if (!index)
        index = new OssNgSceneIndex(scene);
    return index;
}

void OssNgSceneIndex::releaseItems(QGraphicsScene *scene)
{
    OssNgSceneIndex *index = registry().value(scene);
    if (!index)
        return;
    const std::vector<WireEntry> wires = index->m_wires.entries();
    for (const WireEntry &entry : wires) {
        if (entry.edge)
            scene->removeItem(entry.edge);
    }
    const std::vector<NodeEntry> nodes = index->m_nodes.entries();
    for (const NodeEntry &entry : nodes) {
        if (entry.node && entry.node->scene() == scene)
            scene->removeItem(entry.node);
    }
    index->m_wireBuckets.clear();
    index->m_nodeBuckets.clear();
}

OssNgSceneIndex::OssNgSceneIndex(QGraphicsScene *scene)
    : QObject(scene)
    , m_scene(scene)
    , m_nodeBuckets(scene)
    , m_wireBuckets(scene)
    , m_nodes(MostCellsOfNode)
    , m_wires(MostCellsOfWire)
{
    scene->setSceneRect(-m_reach, -m_reach, 2 * m_reach, 2 * m_reach);
    connect(OssNgStyle::instance(), &OssNgStyle::colorsUpdated, this,
            &OssNgSceneIndex::refreshColors);
}

void OssNgSceneIndex::coverByScene(const QRectF &rect)
{
    const qreal needed = std::min(
        MostReach, std::max({-rect.left(), -rect.top(), rect.right(), rect.bottom()}));
    if (needed <= m_reach)
        return;
    while (m_reach < needed)
        m_reach *= 2.0;
    m_scene->setSceneRect(-m_reach, -m_reach, 2 * m_reach, 2 * m_reach);
}

void OssNgSceneIndex::refreshColors()
{
    for (NodeEntry &entry : m_nodes.entries()) {
        if (!entry.node)
            continue;
        entry.color = entry.node->mainColor().rgba();
        ++entry.node->m_revision;
    }
    for (WireEntry &entry : m_wires.entries()) {
        if (entry.edge)
            entry.color = entry.edge->color().rgba();
    }
    ++m_revision;
    m_scene->update();
}

OssNgSceneIndex::~OssNgSceneIndex()
{
    registry().remove(m_scene);
    for (const NodeEntry &entry : m_nodes.entries()) {
        if (entry.node)
            entry.node->m_index = nullptr;
    }
    for (const WireEntry &entry : m_wires.entries()) {
        if (entry.edge)
            entry.edge->m_index = nullptr;
    }
}

void OssNgSceneIndex::fill(NodeEntry &entry, const OssNgNode *node) const
{
    entry.bounds = (node->isBackground() ? node->boundingRect() : node->bodyRect())
                       .translated(node->pos());
    entry.z = node->zValue();
    entry.color = node->mainColor().rgba();
    entry.visible = node->isVisible();
    entry.background = node->isBackground();
    entry.selected = node->isSelected();
}

void OssNgSceneIndex::fill(WireEntry &entry, const OssNgEdge *edge) const
{
    entry.start = edge->m_start;
    entry.end = edge->m_end;
    entry.bounds = edge->boundingRect();
    entry.color = edge->color().rgba();
    entry.visible = edge->isVisible() && !entry.bounds.isEmpty();
}

void OssNgSceneIndex::addNode(OssNgNode *node)
{
    NodeEntry entry;
    entry.node = node;
    entry.serial = ++m_serial;
    fill(entry, node);
    node->m_index = this;
    node->m_indexSlot = m_nodes.add(entry);
    coverByScene(entry.bounds);
    // Qt shows by itself what is added, but not items without contents.
    if (entry.background)
        repaint(entry.bounds);
    ++m_revision;
    // Among siblings only is an order of its own kept: what has one stays at the top.
    if (!node->parentItem() && node->zValue() == 0.0)
        m_nodeBuckets.add(node);
    keepTelling(node);
    roomChanged();
}

void OssNgSceneIndex::removeNode(OssNgNode *node)
{
    repaint(m_nodes[node->m_indexSlot].bounds);
    m_nodes.remove(node->m_indexSlot);
    node->m_index = nullptr;
    node->m_indexSlot = -1;
    ++m_revision;
    m_telling.remove(node);
    roomChanged();
}

void OssNgSceneIndex::updateNode(OssNgNode *node)
{
    NodeEntry &entry = m_nodes[node->m_indexSlot];
    const NodeEntry before = entry;
    fill(entry, node);
    if (entry.bounds != before.bounds)
        repaint(before.bounds);
    if (entry.bounds != before.bounds || entry.color != before.color
        || entry.selected != before.selected || entry.visible != before.visible)
        repaint(entry.bounds);
    if (m_nodes.settle(node->m_indexSlot))
        coverByScene(entry.bounds);
    ++m_revision;
    keepTelling(node);
    if (entry.bounds != before.bounds || entry.visible != before.visible)
        roomChanged();
}

void OssNgSceneIndex::keepTelling(OssNgNode *node)
{
    if (!node->errorText().isEmpty())
        m_telling.insert(node);
    else
        m_telling.remove(node);
}

void OssNgSceneIndex::roomChanged()
{
    if (m_roomChanged || m_telling.isEmpty())
        return;
    m_roomChanged = true;
    QTimer::singleShot(0, this, &OssNgSceneIndex::settleRoom);
}

void OssNgSceneIndex::settleRoom()
{
    if (!m_roomChanged)
        return;
    const QSet<OssNgNode *> telling = m_telling;
    for (OssNgNode *node : telling)
        node->fitErrorText();
    m_roomChanged = false; // bodies grow downwards only: none of these took room from another
}

qreal OssNgSceneIndex::roomBelow(const OssNgNode *node, qreal grown, qreal most) const
{
    constexpr qreal Gap = 6.0;
    const QRectF body = node->bodyRect().translated(node->pos());
    const QRectF plain = body.adjusted(0.0, 0.0, 0.0, -grown);
    const QRectF below(plain.left(), plain.bottom(), plain.width(), most + Gap);
    qreal end = below.bottom();
    const QVector<OssNgNode *> around = nodesIn(below);
    for (const OssNgNode *other : around) {
        const QRectF place = other->bodyRect().translated(other->pos());
        if (other == node || (other->isBackground() && !place.contains(plain)))
            continue;
        end = std::min(end, (other->isBackground() ? place.bottom() : place.top()) - Gap);
    }
    return std::min(end - plain.bottom(), most);
}

void OssNgSceneIndex::repaint(const QRectF &rect)
{
    // The scene forgets where an item was last seen when a view painted it from here instead.
    constexpr qreal Around = 2.0 * OssNgStyle::Margin;
    m_scene->update(rect.adjusted(-Around, -Around, Around, Around));
}

void OssNgSceneIndex::addEdge(OssNgEdge *edge)
{
    WireEntry entry;
    entry.edge = edge;
    fill(entry, edge);
    edge->m_index = this;
    edge->m_indexSlot = m_wires.add(entry);
    ++m_revision;
    m_wireBuckets.add(edge);
}

void OssNgSceneIndex::removeEdge(OssNgEdge *edge)
{
    m_wires.remove(edge->m_indexSlot);
    edge->m_index = nullptr;
    edge->m_indexSlot = -1;
    ++m_revision;
}

void OssNgSceneIndex::updateEdge(OssNgEdge *edge)
{
    fill(m_wires[edge->m_indexSlot], edge);
    m_wires.settle(edge->m_indexSlot);
    ++m_revision;
}

OssNgNode *OssNgSceneIndex::nodeAt(const QPointF &scenePos) const
{
    const qreal reach = 6.0;
    std::vector<int> found;
    findNodes({scenePos - QPointF(reach, reach), QSizeF(2 * reach, 2 * reach)}, &found);
    const NodeEntry *best = nullptr;
    for (const int slot : found) {
        const NodeEntry &entry = m_nodes[slot];
        if (best && std::tie(entry.z, entry.serial) < std::tie(best->z, best->serial))
            continue;
        if (entry.node->hitTest(scenePos - entry.node->pos()))
            best = &entry;
    }
    return best ? best->node : nullptr;
}

OssNgEdge *OssNgSceneIndex::edgeAt(const QPointF &scenePos, qreal distance) const
{
    std::vector<int> found;
    findWires({scenePos - QPointF(distance, distance), QSizeF(2 * distance, 2 * distance)}, &found);
    OssNgEdge *best = nullptr;
    for (const int slot : found) {
        OssNgEdge *edge = m_wires[slot].edge;
        const qreal away = edge->distanceTo(scenePos);
        if (away > distance)
            continue;
        best = edge;
        distance = away;
    }
    return best;
}

QVector<OssNgNode *> OssNgSceneIndex::nodesIn(const QRectF &rect) const
{
    std::vector<int> found;
    findNodes(rect, &found);
    std::sort(found.begin(), found.end(), [this](int a, int b) {
        const NodeEntry &left = m_nodes[a];
        const NodeEntry &right = m_nodes[b];
        return std::tie(left.z, left.serial) < std::tie(right.z, right.serial);
    });
    QVector<OssNgNode *> nodes;
    nodes.reserve(int(found.size()));
    for (const int slot : found)
        nodes.append(m_nodes[slot].node);
    return nodes;
}

QVector<OssNgEdge *> OssNgSceneIndex::edgesIn(const QRectF &rect) const
{
    std::vector<int> found;
    findWires(rect, &found);
    QVector<OssNgEdge *> edges;
    edges.reserve(int(found.size()));
    for (const int slot : found)
        edges.append(m_wires[slot].edge);
    return edges;
}

QRectF OssNgSceneIndex::visibleNodeBounds() const
{
    QRectF bounds;
    for (const NodeEntry &entry : m_nodes.entries()) {
        if (entry.node && entry.visible)
            bounds |= entry.node->sceneBoundingRect();
    }
    return bounds;
}
