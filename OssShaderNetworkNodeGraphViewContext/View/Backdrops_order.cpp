#include "View/Backdrops.h"

#include "Layout/NodePlacement.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssNodeGraph/Items/OssNgBackdropNode.h"
#include "OssSnNodeGraphViewContextManager.h"

#include <algorithm>

// What is done to backdrops on request.

namespace {

using Node = OssSnBaseNode;
using Backdrops::rectOf;

constexpr int MostOrder = 900; ///< beyond it, and below its negative, order shows nothing

OssNgBackdropNode *backdropOf(const Node *node)
{
    return qobject_cast<OssNgBackdropNode *>(OssSnNodeGraphViewContextManager::guiNodeOf(node));
}

/// Where a node is and what holds it.
struct Stand
{
    QRectF rect;
    const Node *container;

    bool operator==(const Stand &other) const
    {
        return rect == other.rect && container == other.container;
    }
};

QVector<Stand> standsIn(const OssShaderNetwork *network)
{
    QVector<Stand> stands;
    const QList<Node *> nodes = network->nodes();
    for (const Node *node : nodes)
        stands.append(Stand{rectOf(node), node->container()});
    return stands;
}

bool isHigher(const Node *a, const Node *b)
{
    return rectOf(a).top() < rectOf(b).top();
}

bool isLower(const Node *a, const Node *b)
{
    return backdropOf(a)->zOrder() < backdropOf(b)->zOrder();
}

/// The first from `begin` to `end` that the node lies over; `end` when there is none.
int firstHit(const QList<Node *> &nodes, int begin, int end, const Node *node)
{
    const QRectF own = rectOf(node);
    return int(std::find_if(nodes.cbegin() + begin, nodes.cbegin() + end,
                            [own](const Node *other) { return rectOf(other).intersects(own); })
               - nodes.cbegin());
}

void tidyOne(Node *backdrop)
{
    Backdrops::refreshMembership(backdrop);
    QList<Node *> members = Backdrops::members(backdrop);
    if (members.isEmpty())
        return;
    std::stable_sort(members.begin(), members.end(), isHigher);
    for (int i = 0; i < members.size(); ++i) {
        Node *member = members.at(i);
        for (int above = firstHit(members, 0, i, member); above < i;
             above = firstHit(members, 0, i, member))
            Backdrops::shift(member, {0.0, rectOf(members.at(above)).bottom() + NodePlacement::Gap
                                               - rectOf(member).top()});
        if (firstHit(members, i + 1, members.size(), member) < members.size())
            Q_EMIT backdrop->containerRespacedWrt(member);
    }
    Q_EMIT backdrop->containerChildrenRefreshed(members, true);
}

/// Parted where no line from top to bottom meets both: those of a column stand above each other.
QVector<QList<Node *>> columnsOf(QList<Node *> backdrops)
{
    std::stable_sort(backdrops.begin(), backdrops.end(), [](const Node *a, const Node *b) {
        return rectOf(a).left() < rectOf(b).left();
    });
    QVector<QList<Node *>> columns;
    qreal right = 0.0;
    for (Node *backdrop : qAsConst(backdrops)) {
        const QRectF area = rectOf(backdrop);
        if (columns.isEmpty() || area.left() >= right) {
            columns.append(QList<Node *>());
            right = area.right();
        }
        columns.last().append(backdrop);
        right = std::max(right, area.right());
    }
    return columns;
}

} // namespace

void Backdrops::tidy(QList<OssSnBaseNode *> backdrops)
{
    if (backdrops.isEmpty())
        return;
    OssUndoManager::AutoMacro macro({});
    const QVector<Stand> before = standsIn(backdrops.first()->network());
    // What lies inside another is fitted before that is.
    std::stable_sort(backdrops.begin(), backdrops.end(), [](const Node *a, const Node *b) {
        return rectOf(a).width() * rectOf(a).height() < rectOf(b).width() * rectOf(b).height();
    });
    for (Node *backdrop : qAsConst(backdrops))
        tidyOne(backdrop);
    QList<Node *> outer;
    for (Node *backdrop : qAsConst(backdrops)) {
        if (!backdrops.contains(backdrop->container()))
            outer.append(backdrop);
    }
    for (QList<Node *> &column : columnsOf(outer)) {
        if (column.size() < 2)
            continue;
        std::stable_sort(column.begin(), column.end(), isHigher);
        for (int i = 1; i < column.size(); ++i)
            Q_EMIT column.at(i)->containerMovedDown(column.at(i - 1));
        Q_EMIT column.first()->uniformariseContainers(column);
    }
    for (Node *backdrop : qAsConst(backdrops))
        refreshMembership(backdrop);
    // What was tidy is fitted and widened again, and is as it was.
    if (standsIn(backdrops.first()->network()) == before)
        macro.cancel();
}

void Backdrops::reorder(QList<OssSnBaseNode *> backdrops, bool toFront)
{
    if (backdrops.isEmpty())
        return;
    QList<Node *> others;
    const QList<Node *> all = backdrops.first()->network()->nodes();
    for (Node *node : all) {
        if (isBackdrop(node) && !backdrops.contains(node))
            others.append(node);
    }
    std::stable_sort(others.begin(), others.end(), isLower);
    std::stable_sort(backdrops.begin(), backdrops.end(), isLower);
    QList<Node *> order = toFront ? others + backdrops : backdrops + others;
    if (others.isEmpty())
        return;
    const int count = backdrops.size();
    const int beyond = backdropOf(toFront ? others.last() : others.first())->zOrder();
    int next = toFront ? beyond + 1 : beyond - count;
    if (next < -MostOrder || next + count > MostOrder)
        next = -order.size() / 2; // all are counted anew
    else
        order = backdrops;
    const bool isThere = std::all_of(backdrops.cbegin(), backdrops.cend(), [&](const Node *node) {
        const int z = backdropOf(node)->zOrder();
        return toFront ? z > beyond : z < beyond;
    });
    for (Node *node : qAsConst(order)) {
        if (!isThere)
            backdropOf(node)->changeZOrder(next);
        ++next;
    }
}
