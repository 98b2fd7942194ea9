#include "View/LayeredArranging.h"

#include "Layout/Alignment.h"
#include "Layout/NodePlacement.h"
#include "Manager/BackdropArea.h"
#include "OssGraphLayout/OssLyLayout.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssNodeGraph/Items/OssNgBackdropNode.h"
#include "OssNodeGraph/Items/OssNgEdge.h"
#include "OssSnNodeGraphViewContextManager.h"
#include "View/Backdrops.h"
#include "View/GraphValues.h"

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

OssNgNode *itemOf(const OssSnBaseNode *node)
{
    return OssSnNodeGraphViewContextManager::guiNodeOf(node);
}

QRectF rectFrom(const OssLyRect &rect)
{
    return {rect.x, rect.y, rect.width, rect.height};
}

/// The backdrop to which all of the nodes belong and which takes no part; null where there is none.
OssSnBaseNode *homeOf(const Nodes &nodes, const GraphValues &values)
{
    OssSnBaseNode *home = Backdrops::containerOf(nodes.first());
    const bool isOfAll = home && !values.contains(home)
                         && std::all_of(nodes.cbegin(), nodes.cend(), [home](const auto *node) {
                                return Backdrops::containerOf(node) == home;
                            });
    return isOfAll ? home : nullptr;
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

void LayeredArranging::arrange(const QList<OssSnBaseNode *> &nodes, int withDots)
{
    OssShaderNetwork *network = nodes.first()->network();
    const GraphValues values(nodes);
    OssLyPlaces places = OssLyLayout::arranged(values.graph());
    OssSnBaseNode *home = homeOf(nodes, values);
    const QPointF way = wayToFreePlace(places, othersThan(values, network, home));
    for (int i = 0; i < values.count(); ++i)
        moveTo(values.node(i), rectFrom(places.nodes[std::size_t(i)]).topLeft() + way);
    for (std::size_t f = 0; f < places.frames.size(); ++f) {
        if (!places.frames[f].isEmpty())
            fitTo(values.backdrop(int(f)), rectFrom(places.frames[f]).translated(way));
    }
    for (OssSnBaseNode *node : home ? nodes : Nodes())
        Backdrops::keepIn(node, home);
    if (withDots == 0)
        return;
    for (OssLyRect &rect : places.nodes) {
        rect.x += way.x();
        rect.y += way.y();
    }
    const auto points = OssLyLayout::detours(values.graph(), places.nodes, DotSize);
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (!points[i].empty())
            leadAround(values.wire(int(i)), points[i], network);
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
    const Nodes all = nodes.first()->network()->nodes();
    const Nodes order = asTheyAreRead(nodes);
    const QSet<OssSnBaseNode *> movable(order.cbegin(), order.cend());
    QSet<const OssSnBaseNode *> settled; // the first that reads keeps its place
    for (OssSnBaseNode *node : all) {
        if (isPlain(node) && !movable.contains(node))
            settled.insert(node);
    }
    for (OssSnBaseNode *node : order) {
        const QRectF own = rectOf(node);
        QVector<QRectF> taken;
        for (const OssSnBaseNode *other : qAsConst(settled))
            taken.append(rectOf(other));
        settled.insert(node);
        const auto lies = [&taken](const QRectF &rect) {
            return std::any_of(taken.cbegin(), taken.cend(),
                               [&rect](const QRectF &other) { return other.intersects(rect); });
        };
        if (!lies(own))
            continue;
        for (const OssSnBaseNode *other : order) {
            if (!settled.contains(other))
                taken.append(rectOf(other));
        }
        for (const qreal far : {NearBy, FarAway}) {
            const QRectF area = own.adjusted(-far, -far, far, far);
            const auto place = NodePlacement::nearestFree(own.topLeft(), own.size(), taken, area);
            if (place) {
                moveTo(node, *place);
                break;
            }
        }
    }
}
