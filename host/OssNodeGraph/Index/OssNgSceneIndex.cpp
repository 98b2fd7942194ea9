#include "OssNodeGraph/Index/OssNgSceneIndex.h"

#include "OssNodeGraph/Drawing/OssNgStyle.h"
#include "OssNodeGraph/Items/OssNgEdge.h"
#include "OssNodeGraph/Items/OssNgNode.h"

#include <QGraphicsScene>
#include <QHash>

#include <algorithm>
#include <cmath>
#include <tuple>

namespace {

constexpr qreal CellSize = 512.0;
constexpr int MostCellsOfWire = 64;
constexpr qreal MostReach = 1e6;

QHash<const QGraphicsScene *, OssNgSceneIndex *> &registry()
{
    static QHash<const QGraphicsScene *, OssNgSceneIndex *> indexes;
    return indexes;
}

int cellCount(const QRect &cells)
{
    return cells.width() * cells.height();
}

/// Rectangles without width or height intersect nothing in Qt's sense; wires may be such.
bool touches(const QRectF &a, const QRectF &b)
{
    return a.left() <= b.right() && b.left() <= a.right() && a.top() <= b.bottom()
           && b.top() <= a.bottom();
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
    const std::vector<WireEntry> wires = index->m_wires;
    for (const WireEntry &entry : wires) {
        if (entry.edge)
            scene->removeItem(entry.edge);
    }
    const std::vector<NodeEntry> nodes = index->m_nodes;
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
    for (NodeEntry &entry : m_nodes) {
        if (!entry.node)
            continue;
        entry.color = entry.node->mainColor().rgba();
        ++entry.node->m_revision;
    }
    for (WireEntry &entry : m_wires) {
        if (entry.edge)
            entry.color = entry.edge->color().rgba();
    }
    ++m_revision;
    m_scene->update();
}

OssNgSceneIndex::~OssNgSceneIndex()
{
    registry().remove(m_scene);
    for (const NodeEntry &entry : m_nodes) {
        if (entry.node)
            entry.node->m_index = nullptr;
    }
    for (const WireEntry &entry : m_wires) {
        if (entry.edge)
            entry.edge->m_index = nullptr;
    }
}

QRect OssNgSceneIndex::cellsOf(const QRectF &rect)
{
    const auto cell = [](qreal value) {
        return int(std::floor(std::clamp(value, -1e6, 1e6) / CellSize));
    };
    return {QPoint(cell(rect.left()), cell(rect.top())),
            QPoint(cell(rect.right()), cell(rect.bottom()))};
}

void OssNgSceneIndex::link(const QRect &cells, int slot, std::vector<int> Cell::*list)
{
    for (int y = cells.top(); y <= cells.bottom(); ++y) {
        for (int x = cells.left(); x <= cells.right(); ++x)
            (m_cells[key(x, y)].*list).push_back(slot);
    }
}

void OssNgSceneIndex::unlink(const QRect &cells, int slot, std::vector<int> Cell::*list)
{
    for (int y = cells.top(); y <= cells.bottom(); ++y) {
        for (int x = cells.left(); x <= cells.right(); ++x) {
            std::vector<int> &members = m_cells[key(x, y)].*list;
            const auto found = std::find(members.begin(), members.end(), slot);
            if (found == members.end())
                continue;
            *found = members.back();
            members.pop_back();
        }
    }
}

void OssNgSceneIndex::fill(NodeEntry &entry, const OssNgNode *node) const
{
    entry.rect = (node->isBackground() ? node->boundingRect() : node->bodyRect())
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
    int slot = 0;
    if (m_freeNodes.empty()) {
        slot = int(m_nodes.size());
        m_nodes.emplace_back();
    } else {
        slot = m_freeNodes.back();
        m_freeNodes.pop_back();
    }
    NodeEntry &entry = m_nodes[std::size_t(slot)];
    entry = NodeEntry();
    entry.node = node;
    entry.serial = ++m_serial;
    fill(entry, node);
    entry.cells = cellsOf(entry.rect);
    link(entry.cells, slot, &Cell::nodes);
    coverByScene(entry.rect);
    node->m_index = this;
    node->m_indexSlot = slot;
    ++m_nodeCount;
    ++m_revision;
    // Among siblings only is an order of its own kept: what has one stays at the top.
    if (!node->parentItem() && node->zValue() == 0.0)
        m_nodeBuckets.add(node);
}

void OssNgSceneIndex::removeNode(OssNgNode *node)
{
    NodeEntry &entry = m_nodes[std::size_t(node->m_indexSlot)];
    repaint(entry.rect);
    unlink(entry.cells, node->m_indexSlot, &Cell::nodes);
    entry.node = nullptr;
    m_freeNodes.push_back(node->m_indexSlot);
    node->m_index = nullptr;
    node->m_indexSlot = -1;
    --m_nodeCount;
    ++m_revision;
}

void OssNgSceneIndex::updateNode(OssNgNode *node)
{
    NodeEntry &entry = m_nodes[std::size_t(node->m_indexSlot)];
    const QRectF before = entry.rect;
    fill(entry, node);
    if (entry.rect != before) {
        repaint(before);
        repaint(entry.rect);
    }
    const QRect cells = cellsOf(entry.rect);
    if (cells != entry.cells) {
        coverByScene(entry.rect);
        unlink(entry.cells, node->m_indexSlot, &Cell::nodes);
        entry.cells = cells;
        link(entry.cells, node->m_indexSlot, &Cell::nodes);
    }
    ++m_revision;
}

void OssNgSceneIndex::repaint(const QRectF &rect)
{
    // The scene forgets where an item was last seen when a view painted it from here instead.
    constexpr qreal Around = 2.0 * OssNgStyle::Margin;
    m_scene->update(rect.adjusted(-Around, -Around, Around, Around));
}

void OssNgSceneIndex::linkWire(int slot)
{
    WireEntry &entry = m_wires[std::size_t(slot)];
    entry.cells = cellsOf(entry.bounds);
    entry.large = cellCount(entry.cells) > MostCellsOfWire;
    if (entry.large)
        m_largeWires.push_back(slot);
    else
        link(entry.cells, slot, &Cell::wires);
}

void OssNgSceneIndex::unlinkWire(int slot)
{
    const WireEntry &entry = m_wires[std::size_t(slot)];
    if (entry.large)
        m_largeWires.erase(std::find(m_largeWires.begin(), m_largeWires.end(), slot));
    else
        unlink(entry.cells, slot, &Cell::wires);
}

void OssNgSceneIndex::addEdge(OssNgEdge *edge)
{
    int slot = 0;
    if (m_freeWires.empty()) {
        slot = int(m_wires.size());
        m_wires.emplace_back();
    } else {
        slot = m_freeWires.back();
        m_freeWires.pop_back();
    }
    WireEntry &entry = m_wires[std::size_t(slot)];
    entry = WireEntry();
    entry.edge = edge;
    fill(entry, edge);
    linkWire(slot);
    edge->m_index = this;
    edge->m_indexSlot = slot;
    ++m_wireCount;
    ++m_revision;
    m_wireBuckets.add(edge);
}

void OssNgSceneIndex::removeEdge(OssNgEdge *edge)
{
    unlinkWire(edge->m_indexSlot);
    m_wires[std::size_t(edge->m_indexSlot)].edge = nullptr;
    m_freeWires.push_back(edge->m_indexSlot);
    edge->m_index = nullptr;
    edge->m_indexSlot = -1;
    --m_wireCount;
    ++m_revision;
}

void OssNgSceneIndex::updateEdge(OssNgEdge *edge)
{
    WireEntry &entry = m_wires[std::size_t(edge->m_indexSlot)];
    fill(entry, edge);
    if (cellsOf(entry.bounds) != entry.cells) {
        unlinkWire(edge->m_indexSlot);
        linkWire(edge->m_indexSlot);
    }
    ++m_revision;
}

void OssNgSceneIndex::findNodes(const QRectF &rect, std::vector<int> *found) const
{
    const auto take = [&](int slot) {
        const NodeEntry &entry = m_nodes[std::size_t(slot)];
        if (entry.node && entry.visible && touches(entry.rect, rect))
            found->push_back(slot);
    };
    const QRect cells = cellsOf(rect);
    if (std::size_t(cells.width()) * std::size_t(cells.height()) >= m_cells.size()) {
        for (int slot = 0; slot < int(m_nodes.size()); ++slot)
            take(slot);
        return;
    }
    const quint32 stamp = nextStamp();
    for (int y = cells.top(); y <= cells.bottom(); ++y) {
        for (int x = cells.left(); x <= cells.right(); ++x) {
            const auto cell = m_cells.find(key(x, y));
            if (cell == m_cells.end())
                continue;
            for (const int slot : cell->second.nodes) {
                quint32 &seen = m_nodes[std::size_t(slot)].stamp;
                if (seen == stamp)
                    continue;
                seen = stamp;
                take(slot);
            }
        }
    }
}

void OssNgSceneIndex::findWires(const QRectF &rect, std::vector<int> *found) const
{
    const auto take = [&](int slot) {
        const WireEntry &entry = m_wires[std::size_t(slot)];
        if (entry.edge && entry.visible && touches(entry.bounds, rect))
            found->push_back(slot);
    };
    const QRect cells = cellsOf(rect);
    if (std::size_t(cells.width()) * std::size_t(cells.height()) >= m_cells.size()) {
        for (int slot = 0; slot < int(m_wires.size()); ++slot)
            take(slot);
        return;
    }
    const quint32 stamp = nextStamp();
    for (int y = cells.top(); y <= cells.bottom(); ++y) {
        for (int x = cells.left(); x <= cells.right(); ++x) {
            const auto cell = m_cells.find(key(x, y));
            if (cell == m_cells.end())
                continue;
            for (const int slot : cell->second.wires) {
                quint32 &seen = m_wires[std::size_t(slot)].stamp;
                if (seen == stamp)
                    continue;
                seen = stamp;
                take(slot);
            }
        }
    }
    for (const int slot : m_largeWires)
        take(slot);
}

OssNgNode *OssNgSceneIndex::nodeAt(const QPointF &scenePos) const
{
    const qreal reach = 6.0;
    std::vector<int> found;
    findNodes({scenePos - QPointF(reach, reach), QSizeF(2 * reach, 2 * reach)}, &found);
    const NodeEntry *best = nullptr;
    for (const int slot : found) {
        const NodeEntry &entry = m_nodes[std::size_t(slot)];
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
        OssNgEdge *edge = m_wires[std::size_t(slot)].edge;
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
        const NodeEntry &left = m_nodes[std::size_t(a)];
        const NodeEntry &right = m_nodes[std::size_t(b)];
        return std::tie(left.z, left.serial) < std::tie(right.z, right.serial);
    });
    QVector<OssNgNode *> nodes;
    nodes.reserve(int(found.size()));
    for (const int slot : found)
        nodes.append(m_nodes[std::size_t(slot)].node);
    return nodes;
}

QVector<OssNgEdge *> OssNgSceneIndex::edgesIn(const QRectF &rect) const
{
    std::vector<int> found;
    findWires(rect, &found);
    QVector<OssNgEdge *> edges;
    edges.reserve(int(found.size()));
    for (const int slot : found)
        edges.append(m_wires[std::size_t(slot)].edge);
    return edges;
}

QRectF OssNgSceneIndex::visibleNodeBounds() const
{
    QRectF bounds;
    for (const NodeEntry &entry : m_nodes) {
        if (entry.node && entry.visible)
            bounds |= entry.node->sceneBoundingRect();
    }
    return bounds;
}
