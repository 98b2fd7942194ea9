#include "OssShaderNetworkView.h"

#include "OssCore/Program/OssDebug.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssInterface/Actions/OssCommandTable.h"
#include "OssInterface/Actions/OssShortcutManager.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Types/OssSnTags.h"
#include "OssNodeGraph/Items/OssNgBackdropNode.h"
#include "OssNodeGraph/Items/OssNgEdge.h"
#include "OssNodeGraph/Items/OssNgNodePositionChangeUndo.h"
#include "OssSnGroupNodeGraphViewContext.h"
#include "OssSnNodeGraphViewContextManager.h"
#include "View/Backdrops.h"

#include <QAction>
#include <QGuiApplication>
#include <QLineF>
#include <QMouseEvent>
#include <QUuid>

#include <algorithm>

namespace {

constexpr const char *Source = "OssShaderNetworkView";

OssSnBaseNode *businessNodeOf(const OssNgNode *guiNode)
{
    return guiNode ? qobject_cast<OssSnBaseNode *>(guiNode->businessNode()) : nullptr;
}

OssSnGroupNodeGraphViewContext *groupContextOf(const OssSnBaseNode *node)
{
    return qobject_cast<OssSnGroupNodeGraphViewContext *>(
        OssSnNodeGraphViewContextManager::contextOf(node));
}

} // namespace

// --- moving nodes

void OssShaderNetworkView::recordStartPosition(OssNgNode *node)
{
    const OssSnBaseNode *own = businessNodeOf(node);
    m_nodeStartPositions.insert(
        node, {node, node->scenePos(), own ? Backdrops::containerOf(own) : nullptr});
}

QList<OssNgNode *> OssShaderNetworkView::recordedNodes() const
{
    // Between press and release a key may undo a creation, or the project may be closed.
    QList<OssNgNode *> nodes;
    for (const StartPosition &start : m_nodeStartPositions) {
        if (start.node && start.node->scene() == scene())
            nodes.append(start.node);
    }
    return nodes;
}

void OssShaderNetworkView::mousePressEvent(QMouseEvent *event)
{
    if (!scene()) {
        OssDebug(Source, __LINE__, "scene() is NULL");
        return;
    }
    PlacingView::mousePressEvent(event); // may change the selection
    // The wires of a dot that a click on a marker made have markers too.
    if ((event->modifiers() & Qt::ControlModifier) && scene() && !scene()->mouseGrabberItem())
        highlightDotableEdges();
    // A second button does not end the drag that the left one began.
    if (event->button() != Qt::LeftButton && (event->buttons() & Qt::LeftButton))
        return;
    m_nodeStartPositions.clear();
    m_dragKey = QUuid::createUuid().toString();
    const QList<QGraphicsItem *> selection = sortedSelection();
    for (QGraphicsItem *item : selection) {
        auto *node = dynamic_cast<OssNgNode *>(item);
        if (!node)
            continue;
        recordStartPosition(node);
        const auto *backdrop = qobject_cast<OssNgBackdropNode *>(node);
        if (!backdrop)
            continue;
        for (const QPointer<OssNgNode> &child : backdrop->childrenList()) {
            if (child)
                recordStartPosition(child);
            else
                OssDebug(Source, __LINE__, "Backdrop has a null child: %s",
                         qPrintable(backdrop->titleText()));
        }
    }
}

QString OssShaderNetworkView::moveTitle(const QList<OssNgNode *> &nodes)
{
    if (nodes.size() != 1)
        return tr("Move multiple (%1) nodes").arg(nodes.size());
    const OssSnBaseNode *only = businessNodeOf(nodes.first());
    return tr("Move node %1").arg(only ? only->name() : nodes.first()->text());
}

void OssShaderNetworkView::mouseReleaseEvent(QMouseEvent *event)
{
    if (!scene()) {
        OssDebug(Source, __LINE__, "scene() is NULL");
        return;
    }
    if (interactionState() != Idle || event->button() != Qt::LeftButton) {
        PlacingView::mouseReleaseEvent(event);
        return;
    }
    const QList<OssNgNode *> nodes = recordedNodes();
    QVector<Backdrops::Placed> placed;
    for (OssNgNode *item : nodes) {
        if (OssSnBaseNode *node = businessNodeOf(item))
            placed.append(Backdrops::Placed{node, m_nodeStartPositions.value(item).container});
    }
    const bool moved = !scene()->selectedItems().isEmpty()
                       && std::any_of(nodes.cbegin(), nodes.cend(), [this](OssNgNode *node) {
                              const QPointF start = m_nodeStartPositions.value(node).position;
                              return QLineF(start, node->scenePos()).length() >= LeastMove;
                          });
    // Close up even a little is seen, and it would be saved without a step that tells of it.
    if (!moved) {
        for (OssNgNode *node : nodes)
            node->setPosition(m_nodeStartPositions.value(node).position);
    }
    // What answers the release, as the order of a group's ports, belongs to the same step.
    OssUndoManager::AutoMacro macro(moveTitle(nodes), m_dragKey,
                                    OssUndoManager::AutoMacro::Joining::Always);
    PlacingView::mouseReleaseEvent(event);
    if (!moved)
        return;
    for (OssNgNode *node : nodes) {
        node->processAutoinsert();
        macro.addUndo(new OssNgNodePositionChangeUndo(node,
                                                      m_nodeStartPositions.value(node).position,
                                                      node->scenePos())); // the history takes it
    }
    Backdrops::settle(placed);
}

// --- double-click

OssNgNode *OssShaderNetworkView::nodeForDoubleClick(const QMouseEvent *event) const
{
    const QPointF scenePos = mapToScene(event->pos());
    const QList<QGraphicsItem *> under = items(event->pos());
    for (QGraphicsItem *item : under) {
        auto *node = dynamic_cast<OssNgNode *>(item);
        if (node && node->hitTest(node->mapFromScene(scenePos)))
            return node;
    }
    if (OssNgNode *owner = portOwnerAt(scenePos))
        return owner; // ports reach out of their nodes
    const QList<QGraphicsItem *> selected = scene()->selectedItems();
    return selected.isEmpty() ? nullptr : dynamic_cast<OssNgNode *>(selected.first());
}

void OssShaderNetworkView::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (!scene())
        return;
    OssNgNode *item = nodeForDoubleClick(event);
    OssSnBaseNode *node = businessNodeOf(item);
    if (!node)
        return;
    Q_EMIT nodeDoubleClicked(node);
    const bool control = QGuiApplication::keyboardModifiers() & Qt::ControlModifier;
    if (control && qobject_cast<OssSnGroupNode *>(node)) {
        if (OssSnGroupNodeGraphViewContext *context = groupContextOf(node))
            context->showGroupNodeTab();
    }
    if (node->hasTag(OssSnTags::viewer()))
        OssShaderNetworkManager::instance()->setCurrentViewerNode(node);
    QGraphicsView::mouseDoubleClickEvent(event);
    editTextInPlace(item, mapToScene(event->pos()));
}

// --- keys

void OssShaderNetworkView::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Control && scene() && !scene()->mouseGrabberItem())
        highlightDotableEdges();
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    const QList<QGraphicsItem *> selected = enter && scene() ? scene()->selectedItems()
                                                             : QList<QGraphicsItem *>();
    if (!selected.isEmpty() && (event->modifiers() & Qt::ControlModifier)) {
        OssSnGroupNodeGraphViewContext *context = groupContextOf(
            businessNodeOf(dynamic_cast<OssNgNode *>(selected.first())));
        if (context)
            context->showGroupNodeTab();
    }
    event->ignore();
    PlacingView::keyPressEvent(event);
    if (event->isAccepted())
        return;
    const QString disabled = OssShortcutManager::instance()->disabledCommand(*event, this);
    if (disabled.isEmpty())
        return;
    OssStatusManager::instance()->showMessage(OssCommandTable::whyDisabled(disabled));
    event->accept();
}

void OssShaderNetworkView::keyReleaseEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Control)
        deactivateDotableMode();
    if (event->key() == Qt::Key_Escape)
        dropGrabbedEdge();
    event->ignore();
    QGraphicsView::keyReleaseEvent(event);
}

// --- wires

void OssShaderNetworkView::highlightDotableEdges()
{
    if (!scene()) {
        OssDebug(Source, __LINE__, "scene() is NULL");
        return;
    }
    const QPointF topLeft = mapToScene(0, 0);
    const QPointF bottomRight = mapToScene(viewport()->width() - 1, viewport()->height() - 1);
    const QList<QGraphicsItem *> visible = scene()->items(
        QRectF(topLeft, bottomRight), Qt::IntersectsItemShape, Qt::DescendingOrder);
    for (QGraphicsItem *item : visible) {
        auto *edge = dynamic_cast<OssNgEdge *>(item);
        if (edge && edge->isFullConnected())
            edge->switchToDotableMode(true);
    }
}

void OssShaderNetworkView::deactivateDotableMode()
{
    if (!scene()) {
        OssDebug(Source, __LINE__, "scene() is NULL");
        return;
    }
    const QList<QGraphicsItem *> all = scene()->items();
    for (QGraphicsItem *item : all) {
        auto *edge = dynamic_cast<OssNgEdge *>(item);
        if (edge && edge->isFullConnected())
            edge->switchToDotableMode(false);
    }
}

void OssShaderNetworkView::dropGrabbedEdge()
{
    if (!scene()) {
        OssDebug(Source, __LINE__, "scene() is NULL");
        return;
    }
    auto *edge = dynamic_cast<OssNgEdge *>(scene()->mouseGrabberItem());
    if (!edge)
        return;
    edge->releaseMouse(QPointF(), true);
    edge->ungrabMouse();
}

void OssShaderNetworkView::toggleEdgeSeverAction()
{
    setCursorTrackingMode(cursorTrackingMode() == SeverTracking ? NormalTracking : SeverTracking);
    showSeverMode(); // a click has turned the command's mark
}

void OssShaderNetworkView::showSeverMode()
{
    const bool isOn = cursorTrackingMode() == SeverTracking;
    const QString path = QStringLiteral("/Ossa/NodeGraph/Toggle Edge Sever Mode");
    QAction *action = OssActionTreeManager::instance()->findAction(path);
    if (!action)
        return;
    action->setChecked(isOn);
    const QString key = action->shortcut().toString(QKeySequence::NativeText);
    OssStatusManager::instance()->showMode(!isOn ? QString()
                                           : key.isEmpty()
                                               ? tr("Cutting wires: Esc ends it")
                                               : tr("Cutting wires: %1 or Esc ends it").arg(key));
}

void OssShaderNetworkView::createUnconnectedDotNode(OssNgEdge *CandidateEdge)
{
    if (!m_network) {
        OssDebug(Source, __LINE__, "m_network is NULL");
        return;
    }
    if (!scene()) {
        OssDebug(Source, __LINE__, "scene() is NULL");
        return;
    }
    scene()->clearSelection();
    OssSnBaseNode *node = createNodeAt(QStringLiteral("Misc/Dot"),
                                       viewport()->mapFromGlobal(QCursor::pos()));
    OssNgNode *guiNode = OssSnNodeGraphViewContextManager::guiNodeOf(node);
    if (guiNode)
        guiNode->setupNodeForInsertionIntoEdge(CandidateEdge);
}
