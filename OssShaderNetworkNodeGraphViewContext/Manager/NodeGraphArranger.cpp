#include "Manager/NodeGraphArranger.h"

#include "Layout/FramedLayout.h"
#include "Layout/NodePlacement.h"
#include "Manager/BackdropArea.h"
#include "OssCore/Program/OssDebug.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssLayerStreamUtils.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Types/OssSnTags.h"
#include "OssNodeGraph/Items/OssNgBackdropNode.h"
#include "OssNodeGraph/Items/OssNgNodePositionChangeUndo.h"
#include "OssNodeGraph/Items/OssNgUINode.h"
#include "OssShaderNetworkView.h"
#include "OssSnNodeGraphViewContextManager.h"

#include <QSet>

#include <algorithm>

namespace {

constexpr const char *Source = "OssSnNodeGraphViewContextManager";
constexpr int FewNodes = 400; ///< that are laid out until they stay
constexpr int MostRounds = 4;

OssNgNode *visibleItem(const OssSnBaseNode *node)
{
    OssNgNode *item = OssSnNodeGraphViewContextManager::guiNodeOf(node);
    return item && item->isVisible() ? item : nullptr;
}

bool isViewer(const OssSnBaseNode *node)
{
    return node->hasTag(OssSnTags::viewer());
}

bool isFollowed(const OssSnBaseNode *node, const QString &input)
{
    return !(isViewer(node) && input == QLatin1String("ToView"))
           && !node->hasInputTag(input, OssSnTags::hidden());
}

/// Nothing follows it but viewers.
bool isLeaf(const OssSnBaseNode *node)
{
    const QList<OssSnBaseNode *> followers = node->outputNodes();
    return !isViewer(node) && std::all_of(followers.begin(), followers.end(), isViewer);
}

struct Container
{
    QPointer<OssNgBackdropNode> backdrop;
    QList<OssSnBaseNode *> members;
};

/// Smallest first: a backdrop on another one is refitted before that one.
QVector<Container> containersOf(const QList<OssSnBaseNode *> &nodes)
{
    QVector<Container> containers;
    for (const OssSnBaseNode *node : nodes) {
        auto *backdrop = qobject_cast<OssNgBackdropNode *>(visibleItem(node));
        if (!backdrop)
            continue;
        Container container{backdrop, {}};
        const QList<OssNgNode *> inside = backdrop->nodesInside();
        for (const OssNgNode *item : inside) {
            auto *member = qobject_cast<OssSnBaseNode *>(item->businessNode());
            if (member && item->isVisible())
                container.members.append(member);
        }
        containers.append(container);
    }
    const auto area = [](const Container &container) {
        return container.backdrop->rect().width() * container.backdrop->rect().height();
    };
    std::stable_sort(containers.begin(), containers.end(),
                     [&](const Container &a, const Container &b) { return area(a) < area(b); });
    return containers;
}

/// The nodes of a network as values, and what links the two.
class Picture
{
public:
    explicit Picture(const QList<OssSnBaseNode *> &nodes)
        : m_nodes(nodes)
    {
        for (int i = 0; i < nodes.size(); ++i)
            m_indexes.insert(nodes.at(i), i);
    }

    int indexOf(const OssSnBaseNode *node) const { return m_indexes.value(node, -1); }

    OssSnBaseNode *node(int index) const { return m_nodes.at(index); }

    int count() const { return m_nodes.size(); }

    std::vector<ColumnLayout::Node> values() const
    {
        std::vector<ColumnLayout::Node> values;
        values.reserve(std::size_t(m_nodes.size()));
        for (const OssSnBaseNode *node : m_nodes)
            values.push_back(value(node));
        return values;
    }

private:
    ColumnLayout::Node value(const OssSnBaseNode *node) const
    {
        ColumnLayout::Node value;
        const OssNgNode *item = visibleItem(node);
        value.hasItem = item != nullptr;
        value.merge = OssLayerStreamUtils::isMergeNode(node);
        if (item) {
            value.position = item->scenePos();
            value.size = item->sceneBoundingRect().size();
        }
        for (const OssSnBaseNode::InputPort &port : node->inputPorts()) {
            ColumnLayout::Input input;
            if (port.source && isFollowed(node, port.name))
                input.source = indexOf(port.source);
            if (value.merge)
                input.base = OssLayerStreamUtils::isBaseInput(node, port.name);
            if (item && value.merge && !input.base)
                input.portY = item->inputPortScenePos(port.name).y() - item->scenePos().y();
            value.inputs.append(input);
        }
        return value;
    }

    QList<OssSnBaseNode *> m_nodes;
    QHash<const OssSnBaseNode *, int> m_indexes;
};

/// False where it stands there already.
bool moveTo(OssNgNode *item, const QPointF &place, OssUndoManager::AutoMacro *macro)
{
    if (item->isAt(place))
        return false;
    item->savePosition();
    item->setPosition(place);
    macro->addUndo(new OssNgNodePositionChangeUndo(item)); // the history takes it
    return true;
}

QRectF refitted(const Container &container)
{
    QRectF bounds;
    for (const OssSnBaseNode *member : container.members) {
        if (const OssNgNode *item = visibleItem(member))
            bounds |= item->sceneBoundingRect();
    }
    const qreal margin = container.backdrop->titleBarHeight();
    return bounds.isEmpty() ? bounds : bounds.adjusted(-margin, -2.0 * margin, margin, margin);
}

/// Those of which a member moved, and those around them.
void refitMoved(const QVector<Container> &containers, QSet<const OssNgNode *> *moved)
{
    for (const Container &container : containers) {
        const bool any = std::any_of(
            container.members.cbegin(), container.members.cend(),
            [moved](const OssSnBaseNode *member) { return moved->contains(visibleItem(member)); });
        const QRectF area = container.backdrop && any ? refitted(container) : QRectF();
        if (area.isEmpty())
            continue;
        setBackdropArea(container.backdrop, area);
        moved->insert(container.backdrop);
    }
}

bool isNote(const OssSnBaseNode *node)
{
    return qobject_cast<OssNgUINode *>(visibleItem(node));
}

/// What a note is about: the nearest node, if it is near, on the same innermost backdrop.
QVector<QPair<int, int>> notesWithNodes(const Picture &picture, const std::vector<int> &frameOf)
{
    constexpr qreal Near = 120.0;
    QVector<QPair<int, int>> pairs;
    for (int note = 0; note < picture.count(); ++note) {
        if (!isNote(picture.node(note)))
            continue;
        const QRectF own = visibleItem(picture.node(note))->sceneBoundingRect();
        int best = -1;
        qreal nearest = Near;
        for (int other = 0; other < picture.count(); ++other) {
            const OssNgNode *item = visibleItem(picture.node(other));
            if (!item || isNote(picture.node(other)) || item->isBackground()
                || isViewer(picture.node(other))
                || frameOf[std::size_t(other)] != frameOf[std::size_t(note)])
                continue;
            const QRectF there = item->sceneBoundingRect();
            const qreal away = std::max({0.0, there.left() - own.right(),
                                         own.left() - there.right(), there.top() - own.bottom(),
                                         own.top() - there.bottom()});
            if (away < nearest) {
                nearest = away;
                best = other;
            }
        }
        if (best >= 0)
            pairs.append({note, best});
    }
    return pairs;
}

bool holdsAny(const std::vector<FramedLayout::Frame> &frames, int frame)
{
    return !frames[std::size_t(frame)].members.isEmpty()
           || std::any_of(frames.cbegin(), frames.cend(),
                          [frame](const auto &other) { return other.parent == frame; });
}

/// Smallest first: each node is in the first that holds it, as is a backdrop on another one that holds nothing.
/// `frameOf` becomes the frame of each node.
std::vector<FramedLayout::Frame> framesOf(const QVector<Container> &containers,
                                          const Picture &picture, std::vector<int> *frameOf)
{
    frameOf->assign(std::size_t(picture.count()), -1);
    std::vector<FramedLayout::Frame> frames(std::size_t(containers.size()));
    for (int i = 0; i < containers.size(); ++i) {
        const Container &container = containers.at(i);
        FramedLayout::Frame &frame = frames[std::size_t(i)];
        const qreal margin = container.backdrop->titleBarHeight();
        frame.margins = QMarginsF(margin, 2.0 * margin, margin, margin);
        frame.area = container.backdrop->sceneBoundingRect();
        for (const OssSnBaseNode *member : container.members) {
            const int node = picture.indexOf(member);
            const auto inner = std::find_if(
                containers.cbegin(), containers.cbegin() + i,
                [member](const Container &other) { return other.backdrop == visibleItem(member); });
            const int held = int(inner - containers.cbegin());
            bool isNode = held == i;
            if (!isNode && frames[std::size_t(held)].parent < 0) {
                frames[std::size_t(held)].parent = i;
                isNode = !holdsAny(frames, held);
            }
            if (isNode && node >= 0 && (*frameOf)[std::size_t(node)] < 0) {
                (*frameOf)[std::size_t(node)] = i;
                frame.members.append(node);
            }
        }
    }
    return frames;
}

/// A note that its node brought over others, or over a backdrop if it belongs to none, goes to the nearest free place.
void clearNote(OssNgNode *note, const QList<OssSnBaseNode *> &all, bool isFramed,
               const QSet<const OssNgNode *> &moved, OssUndoManager::AutoMacro *macro)
{
    if (!moved.contains(note))
        return;
    constexpr qreal Around = 600.0;
    const QRectF own = note->sceneBoundingRect();
    QVector<QRectF> others;
    for (const OssSnBaseNode *other : all) {
        const OssNgNode *item = visibleItem(other);
        if (item && item != note && !(isFramed && item->isBackground()))
            others.append(item->sceneBoundingRect());
    }
    if (std::none_of(others.cbegin(), others.cend(),
                     [&own](const QRectF &other) { return other.intersects(own); }))
        return;
    const QRectF area = own.adjusted(-Around, -Around, Around, Around);
    if (const auto place = NodePlacement::nearestFree(own.topLeft(), own.size(), others, area))
        moveTo(note, *place, macro);
}

/// What lies on several that overlap is one's alone: fitted around it, too, the others would reach for it each time.
QVector<Container> withOwnMembers(QVector<Container> containers, const Picture &picture,
                                  const std::vector<FramedLayout::Frame> &frames)
{
    for (int i = 0; i < containers.size(); ++i) {
        containers[i].members.clear();
        for (const int member : frames[std::size_t(i)].members)
            containers[i].members.append(picture.node(member));
    }
    for (int i = 0; i < containers.size(); ++i) {
        const int parent = frames[std::size_t(i)].parent;
        if (parent >= 0)
            containers[parent].members.append(
                qobject_cast<OssSnBaseNode *>(containers.at(i).backdrop->businessNode()));
    }
    return containers;
}

/// The place, moved to the right until nothing but the item itself lies there.
QRectF clearOf(const QList<OssSnBaseNode *> &all, const OssNgNode *item, QRectF place)
{
    const auto lies = [&](const OssSnBaseNode *other) {
        const OssNgNode *shown = visibleItem(other);
        return shown && shown != item && shown->sceneBoundingRect().intersects(place);
    };
    while (true) {
        const auto found = std::find_if(all.cbegin(), all.cend(), lies);
        if (found == all.cend())
            return place;
        place.moveLeft(visibleItem(*found)->sceneBoundingRect().right() + ColumnLayout::Clearance);
    }
}

/// Viewers stand right of what they look at, and on nothing.
void placeViewers(const QList<OssSnBaseNode *> &all, OssUndoManager::AutoMacro *macro)
{
    for (OssSnBaseNode *viewer : all) {
        OssNgNode *item = isViewer(viewer) ? visibleItem(viewer) : nullptr;
        QRectF seen;
        const QList<OssSnBaseNode *> sources = viewer->inputNodes();
        for (const OssSnBaseNode *source : sources) {
            if (const OssNgNode *shown = source ? visibleItem(source) : nullptr)
                seen |= shown->sceneBoundingRect();
        }
        if (!item || seen.isEmpty() || item->sceneBoundingRect().left() >= seen.right())
            continue;
        const QRectF place(QPointF(seen.right() + ColumnLayout::ColumnGap, item->y()),
                           item->sceneBoundingRect().size());
        moveTo(item, clearOf(all, item, place).topLeft(), macro);
    }
}

/// The start nodes as indexes. A backdrop stands for what lies on it, but for the viewer: that one
/// only looks.
QVector<int> startIndexes(const QList<OssSnBaseNode *> &startNodes, const Picture &picture,
                          const QVector<Container> &containers)
{
    QVector<int> starts;
    const auto add = [&](const OssSnBaseNode *node) {
        const int index = picture.indexOf(node);
        if (index >= 0 && visibleItem(node)
            && !qobject_cast<OssNgBackdropNode *>(visibleItem(node)))
            starts.append(index);
    };
    for (const OssSnBaseNode *node : startNodes) {
        add(node);
        for (const Container &container : containers) {
            if (container.backdrop != visibleItem(node))
                continue;
            for (const OssSnBaseNode *member : container.members) {
                if (!isViewer(member))
                    add(member);
            }
        }
    }
    return starts;
}

/// Gives whether any node moved.
bool layOutFrom(const QList<OssSnBaseNode *> &startNodes, const QList<OssSnBaseNode *> &all,
                OssUndoManager::AutoMacro *macro)
{
    const QVector<Container> containers = containersOf(all);
    const Picture picture(all);
    const QVector<int> starts = startIndexes(startNodes, picture, containers);
    std::vector<int> frameOf;
    std::vector<FramedLayout::Frame> frames = framesOf(containers, picture, &frameOf);
    QVector<int> backdrops; // that are no nodes of others
    for (int i = 0; i < all.size(); ++i) {
        if (qobject_cast<OssNgBackdropNode *>(visibleItem(all.at(i)))
            && frameOf[std::size_t(i)] < 0)
            backdrops.append(i);
    }
    const QVector<QPair<int, int>> notes = notesWithNodes(picture, frameOf);
    FramedLayout layout(picture.values(), frames, notes);
    layout.layOut(starts, backdrops);
    QSet<const OssNgNode *> moved;
    for (int i = 0; i < all.size(); ++i) {
        OssNgNode *item = visibleItem(all.at(i));
        if (item && !backdrops.contains(i) && moveTo(item, layout.position(i), macro))
            moved.insert(item);
    }
    const auto clearNotes = [&](bool framed) {
        for (const auto &note : notes) {
            if ((frameOf[std::size_t(note.first)] >= 0) == framed)
                clearNote(visibleItem(all.at(note.first)), all, framed, moved, macro);
        }
    };
    const bool any = !moved.isEmpty();
    clearNotes(true);
    refitMoved(withOwnMembers(containers, picture, frames), &moved);
    clearNotes(false);
    return any;
}

} // namespace

void NodeGraphArranger::beautifyNodesLayout()
{
    if (const OssShaderNetworkView *view = viewOrComplain())
        beautifyNodesLayout(view->network());
}

void NodeGraphArranger::beautifyNodesLayout(OssShaderNetwork *Network)
{
    if (!Network) {
        OssDebug(Source, __LINE__, "Network is NULL");
        return;
    }
    beautifyNodesLayout(Network, Network->selectedNodes(), true);
}

void NodeGraphArranger::beautifyNodesLayout(OssShaderNetwork *Network, OssSnBaseNode *Node)
{
    if (!Network) {
        OssDebug(Source, __LINE__, "Network is NULL");
        return;
    }
    if (!Node) {
        OssDebug(Source, __LINE__, "Node is NULL");
        return;
    }
    beautifyNodesLayout(Network, QList<OssSnBaseNode *>{Node}, false);
}

void NodeGraphArranger::beautifyNodesLayout(OssShaderNetwork *Network, QList<OssSnBaseNode *> Nodes)
{
    beautifyNodesLayout(Network, Nodes, false);
}

void NodeGraphArranger::beautifyNodesLayout(OssShaderNetwork *Network, QList<OssSnBaseNode *> Nodes,
                                            bool ArrangeFromLeavesIfEmpty)
{
    if (!Network) {
        OssDebug(Source, __LINE__, "Network is NULL");
        return;
    }
    Nodes.removeAll(nullptr);
    autoLayoutNodes(Network, Nodes, ArrangeFromLeavesIfEmpty);
}

void NodeGraphArranger::layOutAll(OssShaderNetwork *Network)
{
    beautifyNodesLayout(Network, QList<OssSnBaseNode *>(), true);
}

void NodeGraphArranger::autoLayoutNodes(OssShaderNetwork *StartNetwork,
                                        QList<OssSnBaseNode *> StartNodes,
                                        bool ArrangeFromLeavesIfEmpty)
{
    if (!StartNetwork || (StartNodes.isEmpty() && !ArrangeFromLeavesIfEmpty))
        return;
    // First: what is in the user's hand is put down before places are read.
    OssUndoManager::AutoMacro macro(tr("Layout Nodes"));
    const QList<OssSnBaseNode *> all = StartNetwork->nodes();
    const bool whole = StartNodes.isEmpty();
    if (whole)
        std::copy_if(all.begin(), all.end(), std::back_inserter(StartNodes), isLeaf);
    if (startIndexes(StartNodes, Picture(all), containersOf(all)).isEmpty()) {
        OssDebug(Source, __LINE__, "[ !! ] Nothing to autoplace.");
        return;
    }
    // Notes may be about others by then, and what was in the way may have gone: again, until nothing moves.
    const int rounds = all.size() > FewNodes ? 1 : MostRounds;
    bool moved = true;
    for (int round = 0; round < rounds && moved; ++round) {
        moved = layOutFrom(StartNodes, all, &macro);
        if (whole)
            placeViewers(all, &macro);
    }
    if (OssSnGroupNode *group = StartNetwork->parentGroupNode()) {
        reorderGroupInputsByPos(group);
        reorderGroupOutputsByPos(group);
    }
}
