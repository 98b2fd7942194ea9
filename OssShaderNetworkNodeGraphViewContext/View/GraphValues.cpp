#include "View/GraphValues.h"

#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Types/OssSnTags.h"
#include "OssNodeGraph/Items/OssNgBackdropNode.h"
#include "OssNodeGraph/Items/OssNgEdge.h"
#include "OssNodeGraph/Items/OssNgUINode.h"
#include "OssSnNodeGraphViewContextManager.h"
#include "View/Backdrops.h"

#include <QSet>

#include <algorithm>

namespace {

using Nodes = QList<OssSnBaseNode *>;

constexpr qreal NearNote = 120.0; ///< scene units from a node, or a backdrop, that a note is about

OssNgNode *itemOf(const OssSnBaseNode *node)
{
    return OssSnNodeGraphViewContextManager::guiNodeOf(node);
}

bool isNote(const OssSnBaseNode *node)
{
    return qobject_cast<OssNgUINode *>(itemOf(node));
}

OssLyRect valueOf(const QRectF &rect)
{
    return {rect.x(), rect.y(), rect.width(), rect.height()};
}

qreal distance(const OssLyRect &a, const OssLyRect &b)
{
    const qreal x = std::max({0.0, b.x - a.right(), a.x - b.right()});
    const qreal y = std::max({0.0, b.y - a.bottom(), a.y - b.bottom()});
    return std::max(x, y);
}

/// The nodes with what lies on backdrops among them; only what is shown.
Nodes withMembers(const Nodes &nodes)
{
    Nodes all;
    QSet<OssSnBaseNode *> known;
    const auto take = [&](OssSnBaseNode *node) {
        const OssNgNode *item = itemOf(node);
        if (item && item->isVisible() && !known.contains(node)) {
            known.insert(node);
            all.append(node);
        }
    };
    for (OssSnBaseNode *node : nodes) {
        take(node);
        const Nodes carried = Backdrops::carriedBy(node);
        for (OssSnBaseNode *member : carried)
            take(member);
    }
    return all;
}

} // namespace

GraphValues::GraphValues(const QList<OssSnBaseNode *> &nodes)
{
    const Nodes all = withMembers(nodes);
    takeFrames(all);
    takeNodes(all);
    takeWires();
    attachNotes();
}

void GraphValues::takeFrames(const QList<OssSnBaseNode *> &nodes)
{
    if (nodes.isEmpty())
        return;
    const QSet<OssSnBaseNode *> known(nodes.cbegin(), nodes.cend());
    const Nodes inNetwork = nodes.first()->network()->nodes();
    for (OssSnBaseNode *node : inNetwork) {
        const auto *backdrop = qobject_cast<OssNgBackdropNode *>(itemOf(node));
        if (!backdrop || !backdrop->isVisible())
            continue;
        const Nodes carried = Backdrops::carriedBy(node);
        const bool whole = std::all_of(
            carried.cbegin(), carried.cend(), [&](OssSnBaseNode *member) {
                return known.contains(member) || Backdrops::isBackdrop(member)
                       || !itemOf(member)->isVisible();
            });
        const bool holds = std::any_of(
            carried.cbegin(), carried.cend(), [&](OssSnBaseNode *member) {
                return known.contains(member) && !Backdrops::isBackdrop(member);
            });
        if (!whole || !holds)
            continue;
        OssLyFrame frame;
        frame.margin = backdrop->titleBarHeight();
        frame.topMargin = 2.0 * backdrop->titleBarHeight();
        m_frameOf.insert(node, m_frames.size());
        m_frames.append(node);
        m_graph.frames.push_back(frame);
    }
    for (int f = 0; f < m_frames.size(); ++f)
        m_graph.frames[std::size_t(f)].parent = frameHolding(m_frames.at(f));
}

int GraphValues::frameHolding(const OssSnBaseNode *node) const
{
    const OssSnBaseNode *holder = Backdrops::containerOf(node);
    for (int steps = 0; holder && steps <= m_frames.size(); ++steps) {
        if (const int frame = m_frameOf.value(holder, -1); frame >= 0)
            return frame;
        holder = Backdrops::containerOf(holder);
    }
    return -1;
}

void GraphValues::takeNodes(const QList<OssSnBaseNode *> &nodes)
{
    for (OssSnBaseNode *node : nodes) {
        // One that holds others of which some are left alone, or nothing but backdrops, stays where it is with those.
        OssSnBaseNode *holder = Backdrops::containerOf(node);
        const bool staysWithHolder = holder && !m_frameOf.contains(holder)
                                     && nodes.contains(holder);
        if (m_frameOf.contains(node)
            || (Backdrops::isBackdrop(node)
                && (staysWithHolder || !Backdrops::inside(node).isEmpty())))
            continue;
        OssLyNode value;
        value.rect = valueOf(itemOf(node)->sceneBoundingRect());
        value.frame = frameHolding(node);
        value.looksOnly = node->hasTag(OssSnTags::viewer());
        m_indexOf.insert(node, m_nodes.size());
        m_nodes.append(node);
        m_graph.nodes.push_back(value);
    }
}

void GraphValues::takeWires()
{
    for (int to = 0; to < m_nodes.size(); ++to) {
        const OssNgNode *item = itemOf(m_nodes.at(to));
        const QList<OssNgEdge *> edges = item->inputs();
        for (OssNgEdge *edge : edges) {
            const OssNgNode *source = edge->source();
            const int from = source ? m_indexOf.value(
                                 qobject_cast<OssSnBaseNode *>(source->businessNode()), -1)
                                    : -1;
            if (from < 0 || !edge->isVisible())
                continue;
            OssLyWire wire;
            wire.from = from;
            wire.to = to;
            wire.fromY = source->outputPortScenePos(edge->sourceOutput()).y() - source->y();
            wire.toY = item->inputPortScenePos(edge->destinationInput()).y() - item->y();
            m_graph.wires.push_back(wire);
            m_edges.append(edge);
        }
    }
}

/// A note is about what it stands nearest to: a node of the same backdrop, else a backdrop.
void GraphValues::attachNotes()
{
    for (int note = 0; note < m_nodes.size(); ++note) {
        OssLyNode &own = m_graph.nodes[std::size_t(note)];
        if (!isNote(m_nodes.at(note)))
            continue;
        qreal nearest = NearNote;
        for (int other = 0; other < m_nodes.size(); ++other) {
            const OssLyNode &there = m_graph.nodes[std::size_t(other)];
            if (isNote(m_nodes.at(other)) || there.frame != own.frame || there.looksOnly
                || Backdrops::isBackdrop(m_nodes.at(other)))
                continue;
            const qreal away = distance(own.rect, there.rect);
            if (away < nearest) {
                nearest = away;
                own.attachedTo = other;
            }
        }
        for (int f = 0; own.frame < 0 && own.attachedTo < 0 && f < m_frames.size(); ++f) {
            const qreal away = distance(own.rect, valueOf(Backdrops::rectOf(m_frames.at(f))));
            if (away < nearest) {
                nearest = away;
                own.besideFrame = f;
            }
        }
        own.standsApart = own.frame < 0 && own.attachedTo < 0 && own.besideFrame < 0;
    }
}
