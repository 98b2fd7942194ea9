#include "View/Backdrops.h"

#include "Layout/ContainerPlacement.h"
#include "Layout/NodePlacement.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssNodeGraph/Drawing/OssNgStyle.h"
#include "OssNodeGraph/Items/OssNgBackdropNode.h"
#include "OssNodeGraph/Items/OssNgSceneIndex.h"
#include "OssSnNodeGraphViewContextManager.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace {

using Node = OssSnBaseNode;
using Backdrops::inside;
using Backdrops::isBackdrop;
using Backdrops::members;
using Backdrops::rectOf;

constexpr qreal NearBackdrop = 100.0; ///< a node wired to a member joins within this distance
constexpr qreal SameEdge = 0.5;       ///< edges that are less apart are in line
constexpr int MostSteps = 1000;       ///< in search of a free place

OssNgBackdropNode *backdropOf(const Node *node)
{
    return qobject_cast<OssNgBackdropNode *>(OssSnNodeGraphViewContextManager::guiNodeOf(node));
}

Node *nodeOf(const OssNgNode *item)
{
    return qobject_cast<Node *>(item->businessNode());
}

qreal extent(const QRectF &rect)
{
    return rect.width() * rect.height();
}

/// The smallest backdrop, other than the node, whose area is accepted; a backdrop takes none that is
/// not smaller than itself.
Node *innermost(const Node *node, const std::function<bool(const QRectF &)> &accepts)
{
    const OssNgNode *item = OssSnNodeGraphViewContextManager::guiNodeOf(node);
    if (!item || !item->scene())
        return nullptr;
    const QRectF own = item->sceneBoundingRect();
    const qreal least = isBackdrop(node) ? extent(own) : 0.0;
    Node *found = nullptr;
    qreal smallest = 0.0;
    for (OssNgNode *other : OssNgSceneIndex::of(item->scene())->nodesIn(own)) {
        const QRectF area = other->sceneBoundingRect();
        if (other == item || !qobject_cast<OssNgBackdropNode *>(other) || extent(area) <= least
            || !accepts(area) || (found && extent(area) >= smallest))
            continue;
        found = nodeOf(other);
        smallest = extent(area);
    }
    return found;
}

/// Of backdrops that lie over each other and not in each other, the one that holds the node keeps it.
Node *holderOf(const Node *node)
{
    const QRectF own = rectOf(node);
    Node *found = innermost(node, [own](const QRectF &area) { return area.contains(own); });
    Node *holder = node->container();
    const QRectF area = rectOf(holder);
    const bool keeps = found && area.contains(own) && area != own && !area.contains(rectOf(found));
    return keeps ? holder : found;
}

Node *backdropUnder(const Node *node)
{
    const OssNgNode *item = OssSnNodeGraphViewContextManager::guiNodeOf(node);
    const OssNgBackdropNode *backdrop = item ? OssNgBackdropNode::under(item) : nullptr;
    return backdrop ? nodeOf(backdrop) : nullptr;
}

/// Where the backdrop is still said to lie on the node, because it did, what is no longer so is told
/// first: neither may hold the other.
void putInto(Node *node, Node *backdrop)
{
    QList<Node *> chain;
    for (Node *outer = backdrop; outer && outer != node; outer = outer->container())
        chain.append(outer);
    const bool isRing = !chain.isEmpty() && chain.last()->container() == node;
    QList<Node *> elsewhere;
    for (Node *outer : qAsConst(chain)) {
        if (!isRing || outer->container() == holderOf(outer))
            continue;
        outer->setContainer(nullptr);
        elsewhere.append(outer);
    }
    node->setContainer(backdrop);
    for (Node *outer : qAsConst(elsewhere))
        putInto(outer, holderOf(outer));
}

bool isHigher(const Node *a, const Node *b)
{
    return rectOf(a).top() < rectOf(b).top();
}

/// The other backdrops of its network, but for those that lie on it or that it lies on.
QList<Node *> otherBackdrops(const Node *backdrop)
{
    QList<Node *> others;
    const QRectF own = rectOf(backdrop);
    const QList<Node *> nodes = backdrop->network()->nodes();
    for (Node *node : nodes) {
        const QRectF there = isBackdrop(node) && node != backdrop ? rectOf(node) : QRectF();
        if (!there.isEmpty() && !own.contains(there) && !there.contains(own))
            others.append(node);
    }
    return others;
}

/// Those that begin and end where it does, from left to right: they stay in line with it.
QList<Node *> peersOf(const Node *backdrop)
{
    const QRectF own = rectOf(backdrop);
    QList<Node *> peers = otherBackdrops(backdrop);
    peers.erase(std::remove_if(peers.begin(), peers.end(),
                               [own](const Node *other) {
                                   const QRectF there = rectOf(other);
                                   return std::abs(there.left() - own.left()) > SameEdge
                                          || std::abs(there.right() - own.right()) > SameEdge;
                               }),
                peers.end());
    return peers;
}

/// Items that lie over the area, their margins included, which the index does not know.
QVector<OssNgNode *> itemsOver(QGraphicsScene *scene, const QRectF &area)
{
    constexpr qreal Margin = OssNgStyle::Margin;
    QVector<OssNgNode *> found = OssNgSceneIndex::of(scene)->nodesIn(
        area.adjusted(-Margin, -Margin, Margin, Margin));
    found.erase(std::remove_if(found.begin(), found.end(),
                               [&area](const OssNgNode *one) {
                                   return !one->isVisible()
                                          || !one->sceneBoundingRect().intersects(area);
                               }),
                found.end());
    return found;
}

/// On the way, on until the node lies on nothing.
void send(Node *node, QPointF way)
{
    const OssNgNode *item = OssSnNodeGraphViewContextManager::guiNodeOf(node);
    const QRectF own = rectOf(node);
    QRectF place = own;
    for (int steps = 0; steps < MostSteps; ++steps) {
        place.translate(way);
        const QVector<OssNgNode *> there = itemsOver(item->scene(), place);
        const auto hit = std::find_if(there.cbegin(), there.cend(),
                                      [item](const OssNgNode *one) { return one != item; });
        if (hit == there.cend())
            break;
        way = ContainerPlacement::wayPast((*hit)->sceneBoundingRect(), place, way);
    }
    Q_EMIT node->nodePositionedManual(node, place.topLeft() - own.topLeft());
}

/// What stood clear of the backdrop and belongs to none goes out of the way of what it has become.
void giveWay(const Node *backdrop, const QRectF &before)
{
    const OssNgNode *item = backdropOf(backdrop);
    if (!item || !item->scene())
        return;
    const QRectF now = rectOf(backdrop);
    const QVector<OssNgNode *> there = itemsOver(item->scene(), now);
    for (const OssNgNode *other : there) {
        Node *node = nodeOf(other);
        const Node *holder = node ? Backdrops::containerOf(node) : nullptr;
        const bool isLoose = node && !isBackdrop(node) && !node->container()
                             && (!holder || holder == backdrop);
        if (isLoose && !rectOf(node).intersects(before))
            send(node, ContainerPlacement::wayOut(rectOf(node), before, now));
    }
}

/// Stacks below the backdrop what it has grown over, and below that what comes in its way; what stood
/// above it goes up, with all above that.
void pushAside(Node *backdrop, const QRectF &former, bool allUp, const QList<Node *> &clearBefore,
               QSet<Node *> *pushed)
{
    pushed->insert(backdrop);
    for (Node *other : clearBefore) {
        if (pushed->contains(other) || !rectOf(other).intersects(rectOf(backdrop)))
            continue;
        const bool up = allUp || (rectOf(other).bottom() <= former.top() && !holderOf(other));
        QList<Node *> clearOfOther;
        for (Node *next : otherBackdrops(other)) {
            if (!rectOf(next).intersects(rectOf(other)))
                clearOfOther.append(next);
        }
        const QRectF before = rectOf(other);
        if (up)
            Backdrops::shift(other,
                             {0.0, rectOf(backdrop).top() - NodePlacement::Gap - before.bottom()});
        else
            Q_EMIT other->containerMovedDown(backdrop);
        giveWay(other, before);
        pushAside(other, before, up, clearOfOther, pushed);
        Backdrops::refreshMembership(other);
    }
}

void stretchBy(Node *backdrop, Node *node)
{
    Q_EMIT backdrop->containerStretchedBy(node);
}

/// What a backdrop was before it grew.
struct Former
{
    Node *backdrop;
    QRectF rect;
    Node *outer;
    QList<Node *> clear; ///< of it
};

Former formerOf(Node *backdrop)
{
    Former former{backdrop, rectOf(backdrop), holderOf(backdrop), otherBackdrops(backdrop)};
    const QRectF before = former.rect;
    QList<Node *> &clear = former.clear;
    clear.erase(
        std::remove_if(clear.begin(), clear.end(),
                       [before](const Node *other) { return rectOf(other).intersects(before); }),
        clear.end());
    return former;
}

void grow(Node *backdrop, const std::function<void()> &ask, QSet<Node *> *grown);

/// Those around it hold it, and those beside it give way.
void settleGrown(const Former &former, QSet<Node *> *grown)
{
    Node *backdrop = former.backdrop;
    Node *outer = former.outer;
    if (rectOf(backdrop) == former.rect)
        return;
    if (outer && !grown->contains(outer) && !rectOf(outer).contains(rectOf(backdrop)))
        grow(
            outer, [=] { stretchBy(outer, backdrop); }, grown);
    QSet<Node *> pushed;
    pushAside(backdrop, former.rect, false, former.clear, &pushed);
    giveWay(backdrop, former.rect);
    Backdrops::refreshMembership(backdrop);
}

/// Asks something of the backdrop by which it may grow: those around it hold it then, and its
/// neighbours go along. One that has grown over what it lay on does not have that hold it.
void grow(Node *backdrop, const std::function<void()> &ask, QSet<Node *> *grown)
{
    grown->insert(backdrop);
    const Former former = formerOf(backdrop);
    const QList<Node *> peers = peersOf(backdrop);
    QVector<Former> formerPeers;
    for (Node *peer : peers)
        formerPeers.append(formerOf(peer));
    ask();
    const QRectF now = rectOf(backdrop);
    if (!peers.isEmpty() && now.width() > former.rect.width()) {
        for (Node *peer : peers)
            Q_EMIT peer->nodePositionedManual(peer, {now.left() - former.rect.left(), 0.0});
        Q_EMIT backdrop->containerPeersStretched(peers);
    }
    settleGrown(former, grown);
    for (const Former &peer : qAsConst(formerPeers))
        settleGrown(peer, grown);
}

/// How far those below it have to go down so that the node lies on none of them; 0 where it does not.
qreal roomFor(const Node *node, const QList<Node *> &below)
{
    const QRectF own = rectOf(node);
    qreal room = 0.0;
    for (const Node *other : below) {
        if (rectOf(other).intersects(own))
            room = std::max(room, own.bottom() + NodePlacement::Gap - rectOf(other).top());
    }
    return room;
}

/// See takeIn(). Nodes that came together stay as they stand to each other.
void join(Node *node, Node *backdrop, const QSet<Node *> &together)
{
    const QRectF start = rectOf(node);
    QList<Node *> higher;
    QList<Node *> lower;
    // A backdrop that is put over members does not take them away.
    for (Node *other : members(backdrop) + members(node)) {
        if (!together.contains(other))
            (rectOf(other).top() <= start.top() ? higher : lower).append(other);
    }
    QList<Node *> carried;
    for (Node *other : inside(node)) {
        if (together.contains(other))
            carried.append(other);
    }
    putInto(node, backdrop);
    std::stable_sort(higher.begin(), higher.end(), isHigher);
    for (const Node *above : qAsConst(higher)) {
        const QRectF there = rectOf(above);
        const QPointF way(0.0, there.bottom() + NodePlacement::Gap - rectOf(node).top());
        if (!there.intersects(rectOf(node)))
            continue;
        for (Node *moved : QList<Node *>{node} + carried)
            Q_EMIT moved->nodePositionedManual(moved, way);
    }
    const qreal room = roomFor(node, lower);
    Backdrops::grow(backdrop, [&] {
        stretchBy(backdrop, node);
        if (room <= 0.0)
            return;
        for (Node *below : qAsConst(lower)) {
            putInto(below, backdrop);
            Backdrops::shift(below, {0.0, room});
            stretchBy(backdrop, below);
        }
        Q_EMIT backdrop->containerRespacedWrt(node);
    });
    Backdrops::refreshMembership(node);
}

} // namespace

bool Backdrops::isBackdrop(const OssSnBaseNode *node)
{
    return backdropOf(node);
}

QRectF Backdrops::rectOf(const OssSnBaseNode *node)
{
    const OssNgNode *item = OssSnNodeGraphViewContextManager::guiNodeOf(node);
    return item ? item->sceneBoundingRect() : QRectF();
}

QList<OssSnBaseNode *> Backdrops::inside(const OssSnBaseNode *backdrop)
{
    QList<Node *> nodes;
    const OssNgBackdropNode *item = backdropOf(backdrop);
    const QList<OssNgNode *> items = item ? item->nodesInside() : QList<OssNgNode *>();
    for (const OssNgNode *other : items) {
        if (Node *node = nodeOf(other))
            nodes.append(node);
    }
    return nodes;
}

QList<OssSnBaseNode *> Backdrops::members(const OssSnBaseNode *backdrop)
{
    QList<Node *> nodes;
    for (Node *node : inside(backdrop)) {
        if (holderOf(node) == backdrop)
            nodes.append(node);
    }
    return nodes;
}

QList<OssSnBaseNode *> Backdrops::carriedBy(const OssSnBaseNode *backdrop)
{
    QList<Node *> nodes;
    for (Node *node : inside(backdrop)) {
        const Node *holder = node->container();
        while (holder && holder != backdrop)
            holder = holder->container();
        if (holder || !node->container())
            nodes.append(node);
    }
    return nodes;
}

OssSnBaseNode *Backdrops::containerOf(const OssSnBaseNode *node)
{
    const auto next = [](const Node *one) {
        Node *said = one->container();
        return said ? said : holderOf(one);
    };
    Node *container = next(node);
    if (!container || node->container())
        return container;
    // One that is said to lie on this one, and has grown around it since, does not hold it.
    QSet<const Node *> seen;
    for (const Node *outer = container; outer && !seen.contains(outer); outer = next(outer)) {
        if (outer == node)
            return nullptr;
        seen.insert(outer);
    }
    return container;
}

void Backdrops::shift(OssSnBaseNode *node, const QPointF &way)
{
    const QList<Node *> carried = carriedBy(node);
    Q_EMIT node->nodePositionedManual(node, way);
    for (Node *other : carried)
        Q_EMIT other->nodePositionedManual(other, way);
}

void Backdrops::refreshMembership(OssSnBaseNode *node)
{
    if (!node->network() || !OssUndoManager::instance()->isRecording())
        return;
    putInto(node, holderOf(node));
    if (!isBackdrop(node))
        return;
    QList<Node *> concerned = inside(node);
    const QList<Node *> all = node->network()->nodes();
    for (Node *other : all) {
        if (other->container() == node && !concerned.contains(other))
            concerned.append(other);
    }
    for (Node *other : qAsConst(concerned))
        putInto(other, holderOf(other));
}

void Backdrops::grow(OssSnBaseNode *backdrop, const std::function<void()> &ask)
{
    QSet<Node *> grown;
    ::grow(backdrop, ask, &grown);
}

void Backdrops::takeIn(OssSnBaseNode *node, OssSnBaseNode *backdrop)
{
    const QList<Node *> carried = carriedBy(node);
    QSet<Node *> together(carried.cbegin(), carried.cend());
    together.insert(node);
    join(node, backdrop, together);
}

void Backdrops::keepIn(OssSnBaseNode *node, OssSnBaseNode *backdrop)
{
    if (containerOf(node) != backdrop || !rectOf(backdrop).contains(rectOf(node)))
        takeIn(node, backdrop);
}

void Backdrops::settle(QVector<Placed> placed)
{
    std::stable_sort(placed.begin(), placed.end(),
                     [](const Placed &a, const Placed &b) { return isHigher(a.node, b.node); });
    QSet<Node *> together;
    for (const Placed &one : qAsConst(placed))
        together.insert(one.node);
    // What came along with its backdrop stays in it.
    const auto isCarried = [&together](const Placed &one) {
        return together.contains(one.before) && rectOf(one.before).contains(rectOf(one.node));
    };
    for (const Placed &one : qAsConst(placed)) {
        if (isCarried(one))
            putInto(one.node, one.before);
    }
    for (const Placed &one : qAsConst(placed))
        refreshMembership(one.node);
    for (const Placed &one : qAsConst(placed)) {
        Node *backdrop = backdropUnder(one.node);
        if (!backdrop || isCarried(one))
            continue;
        if (backdrop != one.before)
            join(one.node, backdrop, together);
        else if (!rectOf(backdrop).contains(rectOf(one.node)))
            Backdrops::grow(backdrop, [&] {
                putInto(one.node, backdrop);
                stretchBy(backdrop, one.node);
            });
    }
}

void Backdrops::settleNew(OssSnBaseNode *node)
{
    if (isBackdrop(node)) {
        Q_EMIT node->containerChildrenRefreshed(members(node), false);
        refreshMembership(node);
        return;
    }
    if (node->container())
        return;
    Node *backdrop = backdropUnder(node);
    const QRectF own = rectOf(node);
    for (const Node *wired : node->inputNodes() + node->outputNodes()) {
        Node *near = wired && !backdrop ? wired->container() : nullptr;
        const QRectF area = rectOf(near).adjusted(-NearBackdrop, -NearBackdrop, NearBackdrop,
                                                  NearBackdrop);
        if (near && area.intersects(own))
            backdrop = near;
    }
    if (backdrop)
        takeIn(node, backdrop);
}
