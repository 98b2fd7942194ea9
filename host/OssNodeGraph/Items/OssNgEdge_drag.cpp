#include "OssNodeGraph/Items/OssNgEdge.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssNodeGraph/Items/OssNgNode.h"
#include "OssNodeGraph/Items/OssNgSceneIndex.h"

namespace {

constexpr qreal DropReach = 18.0;

/// Where a wire goes that is dropped on the body: a preferred free input, else the first free one,
/// else the first.
QString inputForBody(const OssNgNode *node)
{
    const OssNgPort *best = nullptr;
    for (const OssNgPort &port : node->inputPorts()) {
        const bool taken = node->input(port.name) != nullptr;
        if (!taken && port.preferred)
            return port.name;
        if (!best || (!taken && node->input(best->name)))
            best = &port;
    }
    return best ? best->name : QString();
}

} // namespace

void OssNgEdge::beginDrag(DragEnd end)
{
    m_dragEnd = end;
    if (!isFullConnected()) {
        // The loose end starts at the port it comes from.
        if (m_source)
            m_end = m_source->outputPortScenePos(m_output);
        else if (m_destination)
            m_start = m_destination->inputPortScenePos(m_input);
    }
    setZValue(1.0);
    updateGeometry();
}

OssNgEdge::Target OssNgEdge::targetAt(const QPointF &scenePos) const
{
    if (!m_index)
        return {};
    const bool wantsInput = m_dragEnd == DragEnd::Destination;
    const OssNgNode *fixed = wantsInput ? m_source : m_destination;
    const QRectF around(scenePos - QPointF(DropReach, DropReach),
                        QSizeF(2 * DropReach, 2 * DropReach));
    Target best;
    qreal nearest = DropReach * DropReach;
    const QVector<OssNgNode *> nodes = m_index->nodesIn(around);
    for (OssNgNode *node : nodes) {
        if (node == fixed)
            continue;
        const QPointF local = scenePos - node->pos();
        const OssNgPort *port = wantsInput ? node->inputPortAt(local, DropReach)
                                           : node->outputPortAt(local, DropReach);
        if (!port)
            continue;
        const QPointF away = port->position - local;
        if (QPointF::dotProduct(away, away) > nearest)
            continue;
        nearest = QPointF::dotProduct(away, away);
        best = {node, port->name};
    }
    if (best.node)
        return best;
    OssNgNode *node = m_index->nodeAt(scenePos);
    if (!node || node == fixed)
        return {};
    const QString port = wantsInput                      ? inputForBody(node)
                         : node->outputPorts().isEmpty() ? QString()
                                                         : node->outputPorts().first().name;
    return port.isEmpty() ? Target() : Target{node, port};
}

void OssNgEdge::light(const Target &target)
{
    const bool wantsInput = m_dragEnd == DragEnd::Destination;
    if (m_litNode == target.node && m_litPort == target.port)
        return;
    if (m_litNode) {
        m_litNode->setLitPort({}, true);
        markReplaced(false);
    }
    m_litNode = target.node;
    m_litPort = target.port;
    if (!m_litNode)
        return;
    m_litNode->setLitPort(target.port, wantsInput);
    if (wantsInput)
        markReplaced(true);
}

void OssNgEdge::markReplaced(bool on)
{
    OssNgEdge *taken = m_litNode->input(m_litPort);
    if (taken && taken != this)
        taken->setMark(Doomed, on);
}

void OssNgEdge::dragTo(const QPointF &scenePos)
{
    if (m_dragEnd == DragEnd::None)
        return;
    const Target target = targetAt(scenePos);
    light(target);
    QPointF end = scenePos;
    if (target.node)
        end = m_dragEnd == DragEnd::Destination ? target.node->inputPortScenePos(target.port)
                                                : target.node->outputPortScenePos(target.port);
    (m_dragEnd == DragEnd::Destination ? m_end : m_start) = end;
    updateGeometry();
}

void OssNgEdge::releaseMouse(const QPointF &scenePos, bool keep)
{
    if (m_dragEnd == DragEnd::None)
        return;
    const bool dropped = !scenePos.isNull();
    const Target target = dropped ? targetAt(scenePos) : Target();
    light({});
    const DragEnd end = m_dragEnd;
    m_dragEnd = DragEnd::None;
    setZValue(-1.0);
    updateGeometry();
    if (dropped)
        announceDrop(end, target, keep);
}

void OssNgEdge::announceDrop(DragEnd end, const Target &target, bool keep)
{
    const QPointer<OssNgNode> source = m_source;
    const QPointer<OssNgNode> destination = m_destination;
    const QString output = m_output;
    const QString input = m_input;
    const bool wasFull = isFullConnected();
    // Listeners may delete this wire: only the copies above are used from here on.
    if (!target.node) {
        if (wasFull && !keep)
            Q_EMIT destination->inputSourceChanged(nullptr, input, QString());
        return;
    }
    const QPointer<OssNgNode> node = target.node;
    if (end == DragEnd::Source) {
        if (!wasFull || node != source || target.port != output)
            Q_EMIT destination->inputSourceChanged(node, input, target.port);
        return;
    }
    if (wasFull && node == destination && target.port == input)
        return;
    OssUndoManager::AutoMacro macro(QStringLiteral("Connect nodes"));
    if (wasFull)
        Q_EMIT destination->inputSourceChanged(nullptr, input, QString());
    if (node && source)
        Q_EMIT node->inputSourceChanged(source, target.port, output);
}
