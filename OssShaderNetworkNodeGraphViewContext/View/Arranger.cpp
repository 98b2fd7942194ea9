#include "View/Arranger.h"

#include "Layout/Alignment.h"
#include "Layout/NodePlacement.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssInterface/Actions/OssCommandTable.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssNodeGraph/Items/OssNgNode.h"
#include "OssNodeGraph/Items/OssNgSceneIndex.h"
#include "OssNodeGraph/View/OssNgGlide.h"
#include "OssShaderNetworkView.h"
#include "OssSnNodeGraphViewContextManager.h"
#include "View/Backdrops.h"
#include "View/LayeredArranging.h"

#include <QHash>

#include <algorithm>
#include <cmath>

namespace {

using Networks = OssShaderNetworkManager;
using Node = OssSnBaseNode;
using Nodes = QList<OssSnBaseNode *>;
using Backdrops::rectOf;

constexpr int MostSteps = 1000; ///< downwards, in search of a free place

QVector<QRectF> rectsOf(const Nodes &nodes)
{
    QVector<QRectF> rects;
    for (const Node *node : nodes)
        rects.append(rectOf(node));
    return rects;
}

/// Without those that lie on one of them: they go, and stay, with it.
Nodes unitsOf(const Nodes &nodes)
{
    Nodes units = nodes;
    for (Node *node : nodes) {
        if (!units.contains(node))
            continue; // and so do those on it
        const Nodes carried = Backdrops::carriedBy(node);
        for (Node *other : carried)
            units.removeOne(other);
    }
    return units;
}

/// Where no node may come to lie over another one: those that are not moved. Backdrops may lie under
/// anything.
QVector<QRectF> obstaclesBeside(const Nodes &moved)
{
    QVector<QRectF> obstacles;
    const Nodes all = moved.first()->network()->nodes();
    for (Node *node : all) {
        const OssNgNode *item = OssSnNodeGraphViewContextManager::guiNodeOf(node);
        if (item && item->isVisible() && !Backdrops::isBackdrop(node) && !moved.contains(node))
            obstacles.append(item->sceneBoundingRect());
    }
    return obstacles;
}

/// The backdrop, and those in which it lies.
Nodes withOuter(Node *backdrop)
{
    Nodes chain;
    for (Node *outer = backdrop; outer && !chain.contains(outer);
         outer = Backdrops::containerOf(outer))
        chain.append(outer);
    return chain;
}

/// Backdrops that do not hold what is moved, though it comes to lie in `home` (null: in none).
QVector<QRectF> foreignBackdrops(const Nodes &moved, Node *home)
{
    QVector<QRectF> areas;
    const Nodes own = withOuter(home) + moved;
    const Nodes all = moved.first()->network()->nodes();
    for (Node *node : all) {
        const OssNgNode *item = OssSnNodeGraphViewContextManager::guiNodeOf(node);
        if (item && item->isVisible() && Backdrops::isBackdrop(node) && !own.contains(node))
            areas.append(rectOf(node));
    }
    return areas;
}

/// What is in the way of a node, and of what it carries, in a backdrop (null: in none). What stands beside
/// that gives way when it grows, but nothing comes to lie on a backdrop.
QVector<QRectF> obstaclesIn(Node *home, Node *node, const Nodes &carried)
{
    const Nodes moved = Nodes{node} + carried;
    QVector<QRectF> obstacles = obstaclesBeside(moved) + foreignBackdrops(moved, home);
    const QRectF area = rectOf(home);
    if (home && !Backdrops::isBackdrop(node))
        obstacles.erase(std::remove_if(obstacles.begin(), obstacles.end(),
                                       [area](const QRectF &one) { return !one.intersects(area); }),
                        obstacles.end());
    return obstacles;
}

/// The same when the nodes are moved with what lies on them.
QVector<QRectF> obstaclesFor(const Nodes &nodes)
{
    Nodes moved = nodes;
    for (const Node *node : nodes)
        moved += Backdrops::carriedBy(node);
    return obstaclesBeside(moved);
}

/// Goes on until it lies on nothing that is not its own, and is then in `home` (null: in none), which
/// grows.
void goOn(Node *node, const Nodes &carried, Node *home, Qt::Orientation direction)
{
    const QRectF there = rectOf(node);
    const QRectF free = Alignment::clear(there, obstaclesIn(home, node, carried), direction);
    const QPointF way = free.topLeft() - there.topLeft();
    for (Node *moved : Nodes{node} + carried) {
        if (!way.isNull())
            Q_EMIT moved->nodePositionedManual(moved, way);
    }
    if (home)
        Backdrops::keepIn(node, home);
    else
        Backdrops::refreshMembership(node); // what grows later takes it for what it is
}

/// In which backdrop a node is that was put by another one: in one that holds that one, if it was its
/// (`before`) or a node comes to lie on it. None gains what was not its own by standing near.
Node *homeBy(const Node *node, Node *reference, Node *before)
{
    Nodes around = withOuter(Backdrops::containerOf(reference));
    if (Backdrops::isBackdrop(reference) && !around.contains(reference))
        around.prepend(reference);
    const bool canJoin = !Backdrops::isBackdrop(node);
    const auto home = std::find_if(around.cbegin(), around.cend(), [&](const Node *one) {
        return one != node
               && (one == before || (canJoin && rectOf(one).contains(rectOf(node).center())));
    });
    return home == around.cend() ? nullptr : *home;
}

/// Asks a node to go somewhere by another one; what lies on it goes along. It comes to lie in the backdrop
/// of that one, or in it. There it goes on down until it lies on no other: what lay there already is not
/// taken for its own.
template <class Ask>
void bring(Node *node, Node *reference, Ask ask)
{
    const Nodes carried = Backdrops::carriedBy(node);
    Node *home = Backdrops::containerOf(node);
    const QPointF before = rectOf(node).topLeft();
    ask();
    const QPointF way = rectOf(node).topLeft() - before;
    for (Node *other : carried)
        Q_EMIT other->nodePositionedManual(other, way);
    goOn(node, carried, homeBy(node, reference, home), Qt::Vertical);
}

// --- each arrangement

/// A node that is put in line, with what was its own before.
struct Unit
{
    Node *node;
    Node *home;
    Nodes carried;
};

QVector<Unit> withTheirOwn(const Nodes &nodes)
{
    QVector<Unit> units;
    for (Node *node : nodes)
        units.append(Unit{node, Backdrops::containerOf(node), Backdrops::carriedBy(node)});
    return units;
}

void moveTo(const QVector<Unit> &units, const QVector<QRectF> &places)
{
    for (int i = 0; i < units.size(); ++i) {
        const Unit &unit = units.at(i);
        const QPointF way = places.at(i).topLeft() - rectOf(unit.node).topLeft();
        for (Node *moved : Nodes{unit.node} + unit.carried) {
            if (!way.isNull())
                Q_EMIT moved->nodePositionedManual(moved, way);
        }
    }
}

/// In their backdrop, which grows, if it is that of all; else each where its middle came to lie, and on
/// no other.
void stay(const QVector<Unit> &units, Qt::Orientation way)
{
    const bool isOneHome = std::all_of(units.cbegin(), units.cend(), [&units](const Unit &unit) {
        return unit.home == units.first().home;
    });
    for (const Unit &unit : units) {
        const bool stays = isOneHome || rectOf(unit.home).contains(rectOf(unit.node).center());
        goOn(unit.node, unit.carried, stays ? unit.home : nullptr, way);
    }
}

void align(const Nodes &nodes, int edge)
{
    const Nodes units = unitsOf(nodes);
    const QVector<Unit> before = withTheirOwn(units);
    moveTo(before, Alignment::aligned(rectsOf(units), Alignment::Edge(edge), obstaclesFor(units)));
    stay(before, edge < int(Alignment::Edge::Top) ? Qt::Vertical : Qt::Horizontal);
}

void distribute(const Nodes &nodes, int orientation)
{
    const Nodes units = unitsOf(nodes);
    const QVector<Unit> before = withTheirOwn(units);
    moveTo(before, Alignment::distributed(rectsOf(units), Qt::Orientation(orientation),
                                          obstaclesFor(units)));
    stay(before, orientation == Qt::Horizontal ? Qt::Vertical : Qt::Horizontal);
}

void tidy(const Nodes &nodes, int)
{
    Nodes backdrops;
    for (Node *node : nodes) {
        Node *backdrop = Backdrops::isBackdrop(node) ? node : Backdrops::containerOf(node);
        if (backdrop && !backdrops.contains(backdrop))
            backdrops.append(backdrop);
    }
    Backdrops::tidy(backdrops);
}

bool isBackdropToEdit(const Node *node)
{
    return Backdrops::isBackdrop(node) && node->lockOf(QStringLiteral("ZOrder")).isEmpty();
}

void reorder(const Nodes &nodes, int toFront)
{
    Nodes backdrops;
    std::copy_if(nodes.cbegin(), nodes.cend(), std::back_inserter(backdrops), isBackdropToEdit);
    Backdrops::reorder(backdrops, toFront != 0);
}

/// In a container the others below make room; elsewhere as near as there is a free place.
void placeUnderneath(Node *node, Node *reference)
{
    if (Backdrops::isBackdrop(node)) {
        const QRectF there = rectOf(reference);
        bring(node, reference, [=] {
            const QPointF place(there.left(), there.bottom() + NodePlacement::Gap);
            Q_EMIT node->nodePositionedManual(node, place - rectOf(node).topLeft());
        });
        return;
    }
    Node *container = Backdrops::containerOf(reference);
    if (container && container != node->container())
        node->setContainer(container);
    if (container) {
        // What it grows over goes out of the way before it is asked who its members are.
        Backdrops::grow(container,
                        [=] { Q_EMIT node->nodeSyncedUnderneathNode(reference, false); });
        Backdrops::takeIn(node, container);
        goOn(node, {}, container, Qt::Vertical);
        return;
    }
    const QVector<QRectF> obstacles = obstaclesIn(nullptr, node, {});
    const auto isFree = [&] {
        const QRectF own = rectOf(node);
        return std::none_of(obstacles.cbegin(), obstacles.cend(),
                            [own](const QRectF &other) { return other.intersects(own); });
    };
    int factor = 1;
    do
        Q_EMIT node->nodePositionedUnderneath(reference, factor);
    while (!isFree() && ++factor < MostSteps);
}

void placeNextTo(Node *node, Node *reference)
{
    bring(node, reference, [=] {
        if (Backdrops::isBackdrop(node))
            Q_EMIT node->nodePositionedNextTo(reference);
        else
            Q_EMIT node->emitSetLayout(Node::LayoutBeside, reference, true, true);
    });
}

void placeOnTop(Node *node, Node *reference)
{
    bring(node, reference, [=] { Q_EMIT node->nodePositionedOnTopIdented(reference); });
}

template <void (*place)(Node *, Node *)>
void placeEach(const Nodes &nodes, int)
{
    const Nodes units = unitsOf(nodes);
    for (int i = 1; i < units.size(); ++i)
        place(units.at(i), units.at(i - 1));
}

void placeByLayout(const Nodes &nodes, int layout)
{
    const Nodes units = unitsOf(nodes);
    // Its own height is what such a step is for; the others bring both coordinates.
    const bool fresh = layout != Node::LayoutTwoRightLoose;
    for (int i = 1; i < units.size(); ++i) {
        Node *node = units.at(i);
        // Without the rule for nodes that overlap, by which what is placed left might land right.
        bring(node, units.at(i - 1), [&] {
            Q_EMIT node->emitSetLayout(Node::NodeLayoutType(layout), units.at(i - 1), fresh, false);
        });
    }
}

/// Right of everything; a backdrop with what lies on it.
void placeAtFreeSpot(const Nodes &nodes, int)
{
    for (Node *node : unitsOf(nodes)) {
        if (Backdrops::isBackdrop(node))
            Q_EMIT node->containerMovedToFreshLocation(false);
        else
            Q_EMIT node->emitSetLayout(Node::LayoutFreeSpot, nullptr, true, true);
    }
}

// --- the table

enum Needs { OneNode, TwoNodes, ThreeNodes, ABackdrop, ABackdropOrMember, NodeAndWire };

struct Row
{
    Networks::Arrangement how = Networks::AlignLeft;
    Needs needs = OneNode;
    const char *command = "";
    void (*carryOut)(const Nodes &nodes, int argument) = nullptr;
    int argument = 0;
};

// clang-format off
const Row Rows[] = {
    {Networks::AlignLeft, TwoNodes, "Align Left", align, int(Alignment::Edge::Left)},
    {Networks::AlignCenter, TwoNodes, "Align Center", align, int(Alignment::Edge::Center)},
    {Networks::AlignRight, TwoNodes, "Align Right", align, int(Alignment::Edge::Right)},
    {Networks::AlignTop, TwoNodes, "Align Top", align, int(Alignment::Edge::Top)},
    {Networks::AlignMiddle, TwoNodes, "Align Middle", align, int(Alignment::Edge::Middle)},
    {Networks::AlignBottom, TwoNodes, "Align Bottom", align, int(Alignment::Edge::Bottom)},
    {Networks::DistributeHorizontally, ThreeNodes, "Distribute Horizontally", distribute, Qt::Horizontal},
    {Networks::DistributeVertically, ThreeNodes, "Distribute Vertically", distribute, Qt::Vertical},
    {Networks::TidyBackdrops, ABackdropOrMember, "Tidy Backdrops", tidy},
    {Networks::BringToFront, ABackdrop, "Bring to Front", reorder, 1},
    {Networks::SendToBack, ABackdrop, "Send to Back", reorder, 0},
    {Networks::ArrangeInLayers, OneNode, "Arrange", LayeredArranging::arrange, 0},
    {Networks::ArrangeWithDots, OneNode, "Arrange with Dots", LayeredArranging::arrange, 1},
    {Networks::StraightenChain, TwoNodes, "Straighten Chain", LayeredArranging::straighten},
    {Networks::TidyOverlaps, OneNode, "Tidy Overlaps", LayeredArranging::separate},
    {Networks::PlaceUnderneath, NodeAndWire, "Place Underneath", placeEach<placeUnderneath>},
    {Networks::PlaceNextTo, NodeAndWire, "Place Next to", placeEach<placeNextTo>},
    {Networks::PlaceOnTop, NodeAndWire, "Place on Top", placeEach<placeOnTop>},
    {Networks::PlaceAtFreeSpot, OneNode, "Place at Free Spot", placeAtFreeSpot},
    {Networks::PlaceBelow, NodeAndWire, "Place Below", placeByLayout, Node::LayoutBelow},
    {Networks::PlaceFarBelow, NodeAndWire, "Place Far Below", placeByLayout, Node::LayoutTwoBelow},
    {Networks::PlaceLeftBelow, NodeAndWire, "Place Left Below", placeByLayout, Node::LayoutLeftBelow},
    {Networks::PlaceLeft, NodeAndWire, "Place Left", placeByLayout, Node::LayoutLeft},
    {Networks::PlaceInTheMiddle, NodeAndWire, "Place in the Middle", placeByLayout, Node::LayoutSame},
    {Networks::PlaceRight, NodeAndWire, "Place Right", placeByLayout, Node::LayoutTwoRight},
    {Networks::PlaceFarRight, NodeAndWire, "Place Far Right", placeByLayout, Node::LayoutThreeRight},
    {Networks::PlaceRightAtOwnHeight, NodeAndWire, "Place Right at Own Height", placeByLayout, Node::LayoutTwoRightLoose},
    {Networks::PlaceRightAbove, NodeAndWire, "Place Right Above", placeByLayout, Node::LayoutRightAbove},
    {Networks::PlaceAboveInStream, NodeAndWire, "Place Above in Stream", placeByLayout, Node::LayoutRightAboveUneven},
};

// clang-format on

QString titleOf(const Row &row)
{
    const OssCommandTable::Row *command = OssCommandTable::find(QStringLiteral("/Ossa/NodeGraph/")
                                                                + QString::fromLatin1(row.command));
    return command ? OssCommandTable::text(*command) : QString();
}

/// The first node of the same network that the only one is wired to.
void prependWired(Nodes *nodes)
{
    const Node *only = nodes->first();
    const Nodes wired = only->inputNodes() + only->outputNodes();
    const auto found = std::find_if(wired.cbegin(), wired.cend(), [only](const Node *node) {
        return node && node->network() == only->network();
    });
    if (found != wired.cend())
        nodes->prepend(*found);
}

/// What is missing, in words; empty when nothing is. One node by itself is placed by what it is
/// wired to, which is put before it.
QString whatIsMissing(Needs needs, Nodes *nodes)
{
    const bool hasBackdrop = std::any_of(nodes->cbegin(), nodes->cend(), &Backdrops::isBackdrop);
    const bool hasMember = std::any_of(nodes->cbegin(), nodes->cend(), [](const Node *node) {
        return Backdrops::containerOf(node);
    });
    if (needs == NodeAndWire && nodes->size() == 1)
        prependWired(nodes);
    switch (needs) {
    case OneNode:
        return nodes->isEmpty() ? Arranger::tr("select a node first") : QString();
    case NodeAndWire:
        if (nodes->size() > 1 && unitsOf(*nodes).size() < 2)
            return Arranger::tr("what lies on the backdrop goes where that goes");
        Q_FALLTHROUGH();
    case TwoNodes:
        return nodes->size() < 2 ? Arranger::tr("select two nodes or more") : QString();
    case ThreeNodes:
        return nodes->size() < 3 ? Arranger::tr("select three nodes or more") : QString();
    case ABackdrop:
        if (hasBackdrop && std::none_of(nodes->cbegin(), nodes->cend(), isBackdropToEdit))
            return Arranger::tr("the backdrop is locked");
        return hasBackdrop ? QString() : Arranger::tr("select a backdrop first");
    case ABackdropOrMember:
        break;
    }
    return hasBackdrop || hasMember ? QString()
                                    : Arranger::tr("select a backdrop, or what lies on one");
}

/// Where all nodes of a network stand.
QHash<Node *, QPointF> placesIn(const OssShaderNetwork *network)
{
    QHash<Node *, QPointF> places;
    const Nodes nodes = network->nodes();
    for (Node *node : nodes) {
        if (const OssNgNode *item = OssSnNodeGraphViewContextManager::guiNodeOf(node))
            places.insert(node, item->pos());
    }
    return places;
}

} // namespace

Arranger::Arranger(QObject *parent)
    : QObject(parent)
{
    connect(OssShaderNetworkManager::instance(), &OssShaderNetworkManager::arrangementRequested,
            this, &Arranger::arrange);
}

void Arranger::arrange(const QList<OssSnBaseNode *> &nodes,
                       OssShaderNetworkManager::Arrangement how, OssResult *result)
{
    if (!OssSnNodeGraphViewContextManager::instance()->currentView())
        return;
    const auto *row = std::find_if(std::begin(Rows), std::end(Rows),
                                   [how](const Row &one) { return one.how == how; });
    Nodes shown;
    for (Node *node : nodes) {
        const OssNgNode *item = OssSnNodeGraphViewContextManager::guiNodeOf(node);
        if (item && item->scene() && node->network() && !shown.contains(node)
            && (shown.isEmpty() || node->network() == shown.first()->network()))
            shown.append(node);
    }
    const QString missing = whatIsMissing(row->needs, &shown);
    if (!missing.isEmpty()) {
        *result = OssResult::failure(QStringLiteral("%1: %2").arg(titleOf(*row), missing));
        return;
    }
    *result = {};
    const OssUndoManager::AutoMacro macro(titleOf(*row));
    const OssShaderNetwork *network = shown.first()->network();
    const QHash<Node *, QPointF> before = placesIn(network);
    QHash<Node *, Node *> containers;
    for (auto node = before.cbegin(); node != before.cend(); ++node)
        containers.insert(node.key(), Backdrops::containerOf(node.key()));
    row->carryOut(shown, row->argument);
    QVector<Backdrops::Placed> moved;
    OssNgGlide::Places ways;
    const Nodes all = network->nodes();
    for (Node *node : all) {
        OssNgNode *item = OssSnNodeGraphViewContextManager::guiNodeOf(node);
        if (!item || item->isAt(before.value(node)))
            continue;
        moved.append(Backdrops::Placed{node, containers.value(node)});
        if (before.contains(node))
            ways.insert(item, before.value(node));
        Q_EMIT item->posChanged(item->pos());
    }
    Backdrops::settle(moved);
    OssShaderNetworkView *view = OssSnNodeGraphViewContextManager::instance()->currentView();
    if (view && view->network() == network)
        view->glideFrom(ways);
    OssShaderNetworkManager::instance()->emitNodeGraphIsManuallyChanged();
}
