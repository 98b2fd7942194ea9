#include "OssNodeGraph/View/OssNgView.h"

#include "OssCore/Program/OssStatusManager.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssNodeGraph/Drawing/OssNgStyle.h"
#include "OssNodeGraph/Gestures/OssNgGesture.h"
#include "OssNodeGraph/Items/OssNgEdge.h"
#include "OssNodeGraph/Items/OssNgNode.h"
#include "OssNodeGraph/Items/OssNgSceneIndex.h"
#include "OssNodeGraph/View/OssNgAccessible.h"
#include "OssNodeGraph/View/OssNgFlash.h"
#include "OssNodeGraph/View/OssNgGlide.h"

#include <QContextMenuEvent>
#include <QGraphicsScene>
#include <QGuiApplication>
#include <QHelpEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <QToolTip>
#include <QWindow>

#include <algorithm>

namespace {

/// Large enough for any graph, small enough for scroll bars at the largest zoom.
constexpr qreal SceneHalf = 200000.0;
constexpr int MinimapDelay = 120; ///< milliseconds between a change and the map's repainting
constexpr int GlideInterval = 12;
constexpr int BorderPanInterval = 16;
constexpr int TipReach = 12; ///< pixels that the pointer may go until what was told of it goes

/// Lets long texts wrap, which plain tool tips do not, and names with "<" stay what they are.
QString asMarkup(const QString &plain)
{
    QString text = plain.toHtmlEscaped();
    text.replace(QLatin1Char('\n'), QLatin1String("<br>"));
    return QStringLiteral("<qt>%1</qt>").arg(text);
}

} // namespace

OssNgView::OssNgView(QWidget *parent)
    : QGraphicsView(parent)
    , m_flash(new OssNgFlash(this))
    , m_nodeGlide(new OssNgGlide(this))
{
    OssNgAccessible::install(); // before anything asks for this view's interface
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setSceneRect(-SceneHalf, -SceneHalf, 2 * SceneHalf, 2 * SceneHalf);
    setViewportUpdateMode(BoundingRectViewportUpdate);
    setOptimizationFlags(DontSavePainterState | DontAdjustForAntialiasing);
    setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    setTransformationAnchor(AnchorUnderMouse);
    setResizeAnchor(NoAnchor);
    setDragMode(NoDrag);
    setMouseTracking(true);
    viewport()->setMouseTracking(true);
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
    viewport()->grabGesture(Qt::PinchGesture);
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(tr("Node graph"));

    m_minimapTimer.setSingleShot(true);
    m_minimapTimer.setInterval(MinimapDelay);
    connect(&m_minimapTimer, &QTimer::timeout, this, [this] {
        renderMinimap();
        viewport()->update(minimapRect().toAlignedRect().adjusted(-2, -2, 2, 2));
    });
    m_borderPanTimer.setInterval(BorderPanInterval);
    connect(OssUndoManager::instance(), &OssUndoManager::aboutToEdit, this,
            &OssNgView::interruptGesture);
    connect(OssUndoManager::instance(), &OssUndoManager::takingBack, this,
            [this](bool *taken) { *taken = cancelGesture() || *taken; });
    // A dialog may come while another window, or nothing, has the keyboard.
    connect(qGuiApp, &QGuiApplication::focusWindowChanged, this, [this](const QWindow *now) {
        if (now && now != window()->windowHandle())
            interruptGesture();
    });
    connect(&m_borderPanTimer, &QTimer::timeout, this, &OssNgView::borderPanStep);
    m_glideTimer.setInterval(GlideInterval);
    connect(&m_glideTimer, &QTimer::timeout, this, [this] {
        const QPointF away = m_glideTarget - viewportInSceneCoords().center();
        const bool near = (away * zoom()).manhattanLength() < 2.0;
        if (near)
            m_glideTimer.stop();
        centerViewOn(near ? m_glideTarget : m_glideTarget - away * 0.7, false);
    });
}

OssNgView::~OssNgView() = default;

void OssNgView::init()
{
    m_borderPanTimer.stop();
    m_navigation.reset();
    m_gesture.reset();
    m_interactionState = Idle;
    m_hoveredNode = nullptr;
    m_hoveredEdge = nullptr;
    m_minimap = QPixmap();
    m_glideTimer.stop();
    m_nodeGlide->stop();
    if (sceneIndex())
        renderMinimap();
    viewport()->update();
}

OssNgSceneIndex *OssNgView::sceneIndex() const
{
    return OssNgSceneIndex::of(scene());
}

bool OssNgView::isAutoInsertOn() const
{
    return true;
}

QRectF OssNgView::visibleNodeBounds() const
{
    return scene() ? sceneIndex()->visibleNodeBounds() : QRectF();
}

QList<QGraphicsItem *> OssNgView::sortedSelection() const
{
    if (!scene())
        return {};
    QList<QGraphicsItem *> items = scene()->selectedItems();
    std::stable_sort(items.begin(), items.end(), [](QGraphicsItem *a, QGraphicsItem *b) {
        const bool wireA = a->type() == OssNgEdge::Type;
        const bool wireB = b->type() == OssNgEdge::Type;
        if (wireA != wireB)
            return wireB;
        const QPointF left = wireA ? a->boundingRect().topLeft() : a->pos();
        const QPointF right = wireB ? b->boundingRect().topLeft() : b->pos();
        return left.y() != right.y() ? left.y() < right.y() : left.x() < right.x();
    });
    return items;
}

void OssNgView::setCursorTrackingMode(int mode)
{
    if (m_cursorTrackingMode == mode)
        return;
    m_cursorTrackingMode = mode;
    viewport()->setCursor(mode == SeverTracking ? Qt::CrossCursor : Qt::ArrowCursor);
    Q_EMIT cursorTrackingModeChanged(mode);
}

bool OssNgView::endSeverMode()
{
    if (m_cursorTrackingMode != SeverTracking)
        return false;
    setCursorTrackingMode(NormalTracking);
    return true;
}

void OssNgView::toggleSnapToGrid()
{
    m_snapToGrid = !m_snapToGrid;
    OssStatusManager::instance()->showMessage(m_snapToGrid ? tr("Nodes snap to the grid")
                                                           : tr("Nodes move freely"));
}

void OssNgView::setMinimapVisible(bool visible)
{
    if (m_minimapVisible == visible)
        return;
    m_minimapVisible = visible;
    viewport()->update();
}

void OssNgView::setHoveredNode(OssNgNode *node)
{
    if (m_hoveredNode == node)
        return;
    const QPointer<OssNgNode> old = m_hoveredNode;
    m_hoveredNode = node;
    if (old)
        old->setHovered(false);
    if (m_hoveredNode)
        m_hoveredNode->setHovered(true);
}

void OssNgView::setHoveredEdge(OssNgEdge *edge)
{
    if (m_hoveredEdge == edge)
        return;
    // The old one may be dead: only the index knows which wires are alive.
    bool alive = false;
    if (m_hoveredEdge && scene()) {
        const auto &entries = sceneIndex()->wireEntries();
        alive = std::any_of(entries.begin(), entries.end(),
                            [this](const auto &entry) { return entry.edge == m_hoveredEdge; });
    }
    if (alive)
        m_hoveredEdge->setHovered(false);
    m_hoveredEdge = edge;
    if (edge)
        edge->setHovered(true);
}

void OssNgView::leaveEvent(QEvent *event)
{
    if (!m_gesture) {
        setHoveredNode(nullptr);
        setHoveredEdge(nullptr);
    }
    QGraphicsView::leaveEvent(event);
}

bool OssNgView::event(QEvent *event)
{
    switch (event->type()) {
    case QEvent::FocusOut:
    case QEvent::WindowDeactivate:
        interruptGesture();
        break;
    case QEvent::Hide:
        interruptGesture();
        endSeverMode(); // nobody would know of it when the view comes again
        break;
    default:
        break;
    }
    return QGraphicsView::event(event);
}

QString OssNgView::toolTipAt(const QPointF &scenePos) const
{
    const OssNgNode *node = sceneIndex()->nodeAt(scenePos);
    // Ports reach out of their nodes, and wires run over backdrops.
    const OssNgNode *owner = node && !node->isBackground() ? node : portOwnerAt(scenePos);
    if (owner)
        return owner->toolTipAt(scenePos - owner->pos());
    const OssNgEdge *edge = sceneIndex()->edgeAt(scenePos, wireReach());
    if (edge && edge->isFullConnected())
        return tr("From %1 . %2\nto %3 . %4")
            .arg(edge->source()->text(), edge->sourceOutput(), edge->destination()->text(),
                 edge->destinationInput());
    return node ? node->toolTipAt(scenePos - node->pos()) : QString();
}

bool OssNgView::viewportEvent(QEvent *event)
{
    if (handlePinch(event))
        return true;
    switch (event->type()) {
    case QEvent::ContextMenu:
        if (m_rightPressTaken
            && static_cast<QContextMenuEvent *>(event)->reason() == QContextMenuEvent::Mouse)
            return true;
        interruptGesture();
        break;
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove: {
        if (handlePointer(static_cast<QMouseEvent *>(event)))
            return true;
        const QScopedValueRollback<int> handling(m_handling, m_handling + 1);
        return QGraphicsView::viewportEvent(event);
    }
    default:
        break;
    }
    if (event->type() != QEvent::ToolTip || !scene())
        return QGraphicsView::viewportEvent(event);
    const auto *help = static_cast<QHelpEvent *>(event);
    const QString text = toolTipAt(toScene(help->pos()));
    if (text.isEmpty())
        QToolTip::hideText();
    else
        QToolTip::showText(
            help->globalPos(), asMarkup(text), viewport(),
            QRect(help->pos(), QSize()).adjusted(-TipReach, -TipReach, TipReach, TipReach));
    event->accept();
    return true;
}
