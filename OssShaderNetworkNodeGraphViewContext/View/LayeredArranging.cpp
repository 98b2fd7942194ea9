#include "View/LayeredArranging.h"

#include "Layout/Alignment.h"
#include "Layout/NodePlacement.h"
#include "Manager/BackdropArea.h"
#include "OssGraphLayout/OssLyLayout.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssNodeGraph/Items/OssNgBackdropNode.h"
#include "OssNodeGraph/Items/OssNgEdge.h"
#include "OssNodeGraph/Items/OssNgSceneIndex.h"
#include "OssSnNodeGraphViewContextManager.h"
#include "View/Backdrops.h"
#include "View/GraphValues.h"

#include <QHash>
#include <QSet>

#include <algorithm>
#include <cmath>

namespace {

using Nodes = QList<OssSnBaseNode *>;
using Backdrops::rectOf;

constexpr qreal Near = 30.0; ///< kept from what is not laid out
constexpr qreal Step = 40.0; ///< of the search for a free place
constexpr int MostSteps = 200;
constexpr qreal DotSize = 28.0;
constexpr qreal ChainGap = 60.0;
constexpr qreal NearBy = 500.0; ///< where a free place is sought first, and then
constexpr qreal FarAway = 6000.0;
constexpr int FewNodes = 400; ///< that are laid out until they stay
constexpr int MostRounds = 4;

OssNgNode *itemOf(const OssSnBaseNode *node)
{
    return OssSnNodeGraphViewContextManager::guiNodeOf(node);
}

QRectF rectFrom(const OssLyRect &rect)
{
    return {rect.x, rect.y, rect.width, rect.height};
}

/// The innermost backdrop around the node that takes no part; null where there is none.
OssSnBaseNode *homeOf(const OssSnBaseNode *node, const GraphValues &values)
{
    QSet<const OssSnBaseNode *> around;
    OssSnBaseNode *home = Backdrops::containerOf(node);
    while (home && values.contains(home) && !around.contains(home)) {
        around.insert(home);
        home = Backdrops::containerOf(home);
    }
    return home && values.contains(home) ? nullptr : home;
}

/// What stands in the network, or in `home` alone, and takes no part, but for backdrops that hold home.
QVector<QRectF> othersThan(const GraphValues &values, const OssShaderNetwork *network,
                           const OssSnBaseNode *home)
{
    QVector<QRectF> others;
    const Nodes all = network->nodes();
    for (OssSnBaseNode *node : all) {
        const OssNgNode *item = itemOf(node);
        if (!item || !item->isVisible() || values.contains(node) || node == home)
            continue;
        const QRectF area = item->sceneBoundingRect();
        if (!home || (area.intersects(rectOf(home)) && !area.contains(rectOf(home))))
            others.append(area);
    }
    return others;
}

/// The least way down, up, right or left on which what is laid out lies on nothing else.
QPointF wayToFreePlace(const OssLyPlaces &places, const QVector<QRectF> &others)
{
    QVector<QRectF> own;
    QRectF bounds;
    for (const std::vector<OssLyRect> *rects : {&places.nodes, &places.frames}) {
        for (const OssLyRect &rect : *rects) {
            if (!rect.isEmpty())
                own.append(rectFrom(rect).adjusted(-Near, -Near, Near, Near));
        }
    }
    for (const QRectF &rect : qAsConst(own))
        bounds |= rect;
    const auto isFree = [&](const QPointF &way) {
        const QRectF area = bounds.translated(way);
        return std::none_of(others.cbegin(), others.cend(), [&](const QRectF &other) {
            return area.intersects(other)
                   && std::any_of(own.cbegin(), own.cend(), [&](const QRectF &rect) {
                          return rect.translated(way).intersects(other);
                      });
        });
    };
    for (int step = 0; step < MostSteps; ++step) {
        const qreal far = Step * step;
        for (const QPointF &way :
             {QPointF(0, far), QPointF(0, -far), QPointF(-far, 0), QPointF(far, 0)}) {
            if (isFree(way))
                return way;
        }
    }
    return {};
}

/// Laid out and at a free place.
OssLyPlaces placesOf(const OssLyGraph &graph, const QVector<QRectF> &others)
{
    OssLyPlaces places = OssLyLayout::arranged(graph);
    const QPointF way = wayToFreePlace(places, others);
    for (std::vector<OssLyRect> *rects : {&places.nodes, &places.frames}) {
        for (OssLyRect &rect : *rects) {
            rect.x += rect.isEmpty() ? 0.0 : way.x();
            rect.y += rect.isEmpty() ? 0.0 : way.y();
        }
    }
    return places;
}

/// Whether any stands elsewhere than there.
bool differ(const OssLyGraph &graph, const OssLyPlaces &places)
{
    constexpr double Same = 0.01;
    for (std::size_t n = 0; n < graph.nodes.size(); ++n) {
        const OssLyRect &rect = graph.nodes[n].rect;
        if (std::abs(rect.x - places.nodes[n].x) > Same
            || std::abs(rect.y - places.nodes[n].y) > Same)
            return true;
    }
    return false;
}

void moveTo(OssSnBaseNode *node, const QPointF &place)
{
    const QPointF way = place - itemOf(node)->pos();
    if (std::abs(way.x()) >= 0.01 || std::abs(way.y()) >= 0.01)
        Q_EMIT node->nodePositionedManual(node, way);
}

void fitTo(const OssSnBaseNode *backdrop, const QRectF &area)
{
    const QRectF before = rectOf(backdrop);
    const QRectF change(area.topLeft() - before.topLeft(), area.size() - before.size());
    if (std::max({std::abs(change.x()), std::abs(change.y()), std::abs(change.width()),
                  std::abs(change.height())})
        >= 0.01)
        setBackdropArea(qobject_cast<OssNgBackdropNode *>(itemOf(backdrop)), area);
}

/// A dot for each point of a wire, from its source on.
void leadAround(OssNgEdge *edge, const std::vector<OssLyPoint> &points, OssShaderNetwork *network)
{
    OssNgNode *destination = edge->destination();
    const QString input = edge->destinationInput();
    for (const OssLyPoint &point : points) {
        OssNgEdge *wire = destination->input(input);
        OssSnBaseNode *dot = wire ? network->createNode(QStringLiteral("Misc/Dot")) : nullptr;
        OssNgNode *item = dot ? itemOf(dot) : nullptr;
        if (!item)
            return;
        item->setupNodeForInsertionIntoEdge(wire);
        moveTo(dot, QPointF(point.x, point.y) - item->boundingRect().center());
    }
}

QVector<QRectF> inTheWayOf(const OssSnBaseNode *node)
{
    QVector<QRectF> others;
    const Nodes all = node->network()->nodes();
    for (const OssSnBaseNode *other : all) {
        const OssNgNode *item = itemOf(other);
        if (item && item->isVisible() && other != node && !Backdrops::isBackdrop(other))
            others.append(item->sceneBoundingRect());
    }
    return others;
}

/// Whether there it would be in another backdrop, or lie on one that is not its.
bool changesBackdrop(const OssSnBaseNode *node, const QRectF &place)
{
    const OssSnBaseNode *home = Backdrops::containerOf(node);
    if (home && !rectOf(home).contains(place.center()))
        return true;
    QSet<const OssSnBaseNode *> around;
    for (; home && !around.contains(home); home = Backdrops::containerOf(home))
        around.insert(home);
    const Nodes all = node->network()->nodes();
    return std::any_of(all.cbegin(), all.cend(), [&](const OssSnBaseNode *other) {
        return Backdrops::isBackdrop(other) && !around.contains(other)
               && rectOf(other).intersects(place);
    });
}

} // namespace

namespace {

/// Those of each backdrop that takes no part, and the others: what belongs to a backdrop is arranged in it.
QVector<Nodes> byHomes(const Nodes &nodes)
{
    const GraphValues values(nodes);
    QVector<Nodes> groups;
    QHash<const OssSnBaseNode *, int> groupOf;
    for (OssSnBaseNode *node : nodes) {
        const OssSnBaseNode *home = homeOf(node, values);
        if (!groupOf.contains(home)) {
            groupOf.insert(home, groups.size());
            groups.append(Nodes());
        }
        groups[groupOf.value(home)].append(node);
    }
    return groups;
}

/// Gives whether anything moved.
bool arrangeInOneHome(const Nodes &nodes)
{
    const GraphValues values(nodes);
    OssSnBaseNode *home = homeOf(nodes.first(), values);
    const OssLyPlaces places = placesOf(values.graph(),
                                        othersThan(values, nodes.first()->network(), home));
    for (int i = 0; i < values.count(); ++i)
        moveTo(values.node(i), rectFrom(places.nodes[std::size_t(i)]).topLeft());
    for (std::size_t f = 0; f < places.frames.size(); ++f) {
        if (!places.frames[f].isEmpty())
            fitTo(values.backdrop(int(f)), rectFrom(places.frames[f]));
    }
    for (OssSnBaseNode *node : home ? nodes : Nodes()) {
        if (!values.contains(Backdrops::containerOf(node)))
            Backdrops::keepIn(node, home);
    }
    return differ(values.graph(), places);
}

void leadWiresAround(const Nodes &nodes)
{
    const GraphValues values(nodes);
    std::vector<OssLyRect> places;
    for (const OssLyNode &node : values.graph().nodes)
        places.push_back(node.rect);
    const auto points = OssLyLayout::detours(values.graph(), places, DotSize);
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (!points[i].empty())
            leadAround(values.wire(int(i)), points[i], nodes.first()->network());
    }
}

} // namespace

void LayeredArranging::arrange(const QList<OssSnBaseNode *> &nodes, int withDots)
{
    // Notes may be about others by then, and what was in the way may have gone: again, until nothing moves.
    const int rounds = nodes.size() > FewNodes ? 1 : MostRounds;
    const QVector<Nodes> groups = byHomes(nodes);
    for (const Nodes &group : groups) {
        for (int round = 0; round < rounds && arrangeInOneHome(group);)
            ++round;
        if (withDots != 0)
            leadWiresAround(group);
    }
}

void LayeredArranging::straighten(const QList<OssSnBaseNode *> &nodes, int)
{
    const QSet<OssSnBaseNode *> chosen(nodes.cbegin(), nodes.cend());
    Nodes open;
    for (OssSnBaseNode *node : nodes) {
        const Nodes fed = node->outputNodes();
        if (std::none_of(fed.cbegin(), fed.cend(),
                         [&](OssSnBaseNode *other) { return chosen.contains(other); }))
            open.append(node);
    }
    QSet<OssSnBaseNode *> done(open.cbegin(), open.cend());
    while (!open.isEmpty()) {
        OssSnBaseNode *node = open.takeFirst();
        const OssNgNode *item = itemOf(node);
        bool isFirst = true;
        for (const OssSnBaseNode::InputPort &port : node->inputPorts()) {
            const OssNgEdge *edge = item->input(port.name);
            if (!port.source || !edge || !chosen.contains(port.source)
                || done.contains(port.source))
                continue;
            done.insert(port.source);
            open.append(port.source);
            // One of several can be level; the others stay as they are.
            if (!std::exchange(isFirst, false))
                continue;
            const OssNgNode *source = edge->source();
            const qreal leaves = source->outputPortScenePos(edge->sourceOutput()).y() - source->y();
            const QRectF own = rectOf(port.source);
            const qreal y = item->inputPortScenePos(port.name).y() - leaves;
            const qreal x = std::min(own.x(), own.right() > item->x() - Near
                                                  ? item->x() - ChainGap - own.width()
                                                  : own.x());
            const QRectF place = Alignment::clear(QRectF(QPointF(x, y), own.size()),
                                                  inTheWayOf(port.source), Qt::Vertical);
            if (!changesBackdrop(port.source, place))
                moveTo(port.source, place.topLeft());
        }
    }
}

namespace {

bool isPlain(const OssSnBaseNode *node)
{
    const OssNgNode *item = itemOf(node);
    return item && item->isVisible() && !Backdrops::isBackdrop(node);
}

/// Those that are plain nodes, from top to bottom.
QList<OssSnBaseNode *> asTheyAreRead(const QList<OssSnBaseNode *> &nodes)
{
    QList<OssSnBaseNode *> order;
    std::copy_if(nodes.cbegin(), nodes.cend(), std::back_inserter(order), isPlain);
    std::stable_sort(order.begin(), order.end(),
                     [](const OssSnBaseNode *a, const OssSnBaseNode *b) {
                         return rectOf(a).y() != rectOf(b).y() ? rectOf(a).y() < rectOf(b).y()
                                                               : rectOf(a).x() < rectOf(b).x();
                     });
    return order;
}

} // namespace

void LayeredArranging::separate(const QList<OssSnBaseNode *> &nodes, int)
{
    const Nodes order = asTheyAreRead(nodes);
    if (order.isEmpty())
        return;
    const OssNgSceneIndex *index = OssNgSceneIndex::of(itemOf(order.first())->scene());
    QSet<const OssNgNode *> waiting; // the first that reads keeps its place
    for (const OssSnBaseNode *node : order)
        waiting.insert(itemOf(node));
    std::vector<int> found;
    const auto othersIn = [&](const QRectF &area, const OssNgNode *own, bool withWaiting) {
        QVector<QRectF> rects;
        index->findNodes(area, &found);
        for (const int slot : found) {
            const OssNgNode *other = index->nodeEntry(slot).node;
            if (other && other != own && other->isVisible() && !other->isBackground()
                && (withWaiting || !waiting.contains(other)))
                rects.append(other->sceneBoundingRect());
        }
        return rects;
    };
    for (OssSnBaseNode *node : order) {
        const OssNgNode *item = itemOf(node);
        waiting.remove(item);
        const QRectF own = item->sceneBoundingRect();
        const QVector<QRectF> under = othersIn(own, item, false);
        if (std::none_of(under.cbegin(), under.cend(),
                         [&own](const QRectF &other) { return other.intersects(own); }))
            continue;
        for (const qreal far : {NearBy, FarAway}) {
            const QRectF area = own.adjusted(-far, -far, far, far);
            const auto place = NodePlacement::nearestFree(own.topLeft(), own.size(),
                                                          othersIn(area, item, true), area);
            if (place) {
                moveTo(node, *place);
                break;
            }
        }
    }
}
