#include "OssNodeGraph/View/OssNgView.h"

#include "OssNodeGraph/Drawing/OssNgStyle.h"
#include "OssNodeGraph/Gestures/OssNgGesture.h"
#include "OssNodeGraph/Items/OssNgSceneIndex.h"
#include "OssNodeGraph/View/OssNgFlash.h"
#include "OssNodeGraph/View/OssNgGlide.h"
#include "OssNodeGraph/View/OssNgRenderer.h"

#include <QPainter>
#include <QPaintEvent>

#include <algorithm>

using Role = OssNgStyle::Role;

namespace {

constexpr QSizeF MinimapSize(184.0, 114.0);
constexpr QSize SmallestForMap(520, 380); ///< viewport
constexpr qreal MinimapInset = 12.0;
constexpr qreal MinimapPadding = 8.0;
constexpr int MostGhosts = 4;
constexpr qreal GhostStep = 8.0;
constexpr int MostRectangles = 8; ///< more are painted as one

} // namespace

QVector<QRectF> OssNgView::exposedScene(const QRectF &rect) const
{
    if (m_exposed.rectCount() > MostRectangles || m_exposed.isEmpty())
        return {rect};
    const QTransform toSceneTransform = viewportTransform().inverted();
    QVector<QRectF> rects;
    for (const QRect &exposed : m_exposed)
        rects.append(toSceneTransform.mapRect(QRectF(exposed.adjusted(-1, -1, 1, 1))));
    return rects;
}

void OssNgView::drawBackground(QPainter *painter, const QRectF &rect)
{
    const QVector<QRectF> exposed = exposedScene(rect);
    OssNgRenderer::paintCanvas(painter, exposed, zoom());
    if (!scene())
        return;
    OssNgRenderer::paintBackdrops(painter, *sceneIndex(), exposed, zoom());
    OssNgRenderer::paintWires(painter, *sceneIndex(), exposed, zoom());
}

void OssNgView::paintEvent(QPaintEvent *event)
{
    const bool overview = scene() && zoom() < OssNgStyle::Overview;
    if (overview || (scene() && m_nodeGlide->isActive())) {
        // Of no area: a scene that is to be painted whole takes no further updates before Qt painted it.
        QPaintEvent nothing{QRegion()};
        QGraphicsView::paintEvent(&nothing);
    }
    m_exposed = event->region();
    if (scene() && m_nodeGlide->isActive()) {
        QPainter painter(viewport());
        painter.setRenderHints(renderHints());
        painter.setWorldTransform(viewportTransform());
        m_nodeGlide->paint(&painter);
    } else if (overview) {
        QPainter painter(viewport());
        painter.setClipRegion(m_exposed);
        painter.setWorldTransform(viewportTransform());
        const QRectF exposed = viewportTransform().inverted().mapRect(
            QRectF(m_exposed.boundingRect()));
        OssNgRenderer::paintCanvas(&painter, {exposed}, zoom());
        painter.setWorldTransform(QTransform());
        OssNgRenderer::paintOverview(&painter, *sceneIndex(), viewportTransform(), exposed);
        OssNgRenderer::paintNames(&painter, *sceneIndex(), viewportTransform(), exposed);
    } else if (scene()) {
        QGraphicsView::paintEvent(event);
    } else {
        QPainter painter(viewport());
        painter.fillRect(event->rect(), OssNgStyle::instance()->color(Role::Canvas));
    }
    paintOverlay();
    m_exposed = QRegion(); // painting for others, as in render(), brings its own rectangle
}

void OssNgView::paintOverlay()
{
    const bool map = isMinimapVisible() && scene();
    if (map && sceneIndex()->revision() != m_minimapRevision && !m_minimapTimer.isActive())
        m_minimapTimer.start();
    const bool mapExposed = map
                            && m_exposed.intersects(
                                minimapRect().toAlignedRect().adjusted(-1, -1, 1, 1));
    if (!m_gesture && !mapExposed && m_dropGhostCount == 0 && !m_flash->node())
        return;
    QPainter painter(viewport());
    painter.setRenderHint(QPainter::Antialiasing);
    if (m_gesture)
        m_gesture->paint(&painter);
    paintDropGhost(&painter);
    if (m_flash->node())
        m_flash->paint(&painter);
    if (mapExposed)
        paintMinimap(&painter);
}

void OssNgView::glideFrom(const QHash<const OssNgNode *, QPointF> &places)
{
    m_nodeGlide->start(places);
}

bool OssNgView::isGliding() const
{
    return m_nodeGlide->isActive();
}

void OssNgView::flashNode(OssNgNode *node)
{
    m_flash->start(node);
}

const OssNgNode *OssNgView::flashingNode() const
{
    return m_flash->node();
}

// --- what is dragged in

QRect OssNgView::dropGhostRect() const
{
    const QSizeF node(OssNgStyle::MinimumWidth * zoom(), 60.0 * zoom());
    const int shown = std::min(m_dropGhostCount, MostGhosts);
    const QSizeF all = node + QSizeF(GhostStep, GhostStep) * std::max(0, shown - 1);
    return QRectF(m_dropGhost, all).toAlignedRect().adjusted(-2, -2, 60, 24);
}

void OssNgView::showDropGhost(const QPoint &viewPos, int count)
{
    viewport()->update(dropGhostRect());
    m_dropGhost = viewPos;
    m_dropGhostCount = count;
    viewport()->update(dropGhostRect());
}

void OssNgView::hideDropGhost()
{
    viewport()->update(dropGhostRect());
    m_dropGhostCount = 0;
}

void OssNgView::paintDropGhost(QPainter *painter) const
{
    const OssNgStyle *style = OssNgStyle::instance();
    const QSizeF node(OssNgStyle::MinimumWidth * zoom(), 60.0 * zoom());
    for (int i = std::min(m_dropGhostCount, MostGhosts) - 1; i >= 0; --i) {
        QColor fill = style->color(Role::Body);
        fill.setAlphaF(0.8);
        painter->setBrush(fill);
        painter->setPen(QPen(style->color(Role::Accent), 1.2, Qt::DashLine));
        painter->drawRoundedRect(QRectF(m_dropGhost + QPointF(GhostStep, GhostStep) * i, node),
                                 OssNgStyle::CornerRadius, OssNgStyle::CornerRadius);
    }
    if (m_dropGhostCount > 1) {
        painter->setPen(style->color(Role::Title));
        painter->setFont(style->titleFont());
        painter->drawText(QRectF(m_dropGhost, node), Qt::AlignCenter,
                          QString::number(m_dropGhostCount));
    }
}

void OssNgView::scrollContentsBy(int dx, int dy)
{
    QGraphicsView::scrollContentsBy(dx, dy);
    if (!isMinimapVisible())
        return;
    // Scrolling moved the map's pixels along.
    const QRect map = minimapRect().toAlignedRect().adjusted(-1, -1, 1, 1);
    viewport()->update(QRegion(map) | map.translated(dx, dy));
}

bool OssNgView::isMinimapVisible() const
{
    return m_minimapVisible && viewport()->width() >= SmallestForMap.width()
           && viewport()->height() >= SmallestForMap.height();
}

QRectF OssNgView::minimapRect() const
{
    const QSizeF size = viewport()->size();
    return {QPointF(size.width() - MinimapSize.width() - MinimapInset,
                    size.height() - MinimapSize.height() - MinimapInset),
            MinimapSize};
}

QTransform OssNgView::minimapTransform() const
{
    if (m_minimapScene.isEmpty())
        return {};
    const QRectF inner = QRectF(QPointF(), MinimapSize)
                             .adjusted(MinimapPadding, MinimapPadding, -MinimapPadding,
                                       -MinimapPadding);
    const qreal scale = std::min(inner.width() / m_minimapScene.width(),
                                 inner.height() / m_minimapScene.height());
    QTransform transform;
    transform.translate(inner.center().x(), inner.center().y());
    transform.scale(scale, scale);
    transform.translate(-m_minimapScene.center().x(), -m_minimapScene.center().y());
    return transform;
}

QPointF OssNgView::minimapToScene(const QPointF &viewportPos) const
{
    return minimapTransform().inverted().map(viewportPos - minimapRect().topLeft());
}

void OssNgView::renderMinimap()
{
    if (!scene())
        return;
    m_minimapRevision = sceneIndex()->revision();
    m_minimapScene = sceneIndex()->visibleNodeBounds();
    const qreal ratio = viewport()->devicePixelRatioF();
    m_minimap = QPixmap((MinimapSize * ratio).toSize());
    m_minimap.setDevicePixelRatio(ratio);
    m_minimap.fill(Qt::transparent);
    QPainter painter(&m_minimap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(OssNgStyle::instance()->color(Role::MapOutline), 1.0));
    painter.setBrush(OssNgStyle::instance()->color(Role::MapCanvas));
    painter.drawRoundedRect(QRectF(QPointF(), MinimapSize).adjusted(0.5, 0.5, -0.5, -0.5), 6.0,
                            6.0);
    if (!m_minimapScene.isEmpty())
        OssNgRenderer::paintOverview(&painter, *sceneIndex(), minimapTransform(), m_minimapScene);
}

void OssNgView::paintMinimap(QPainter *painter)
{
    if (m_minimap.isNull())
        renderMinimap();
    const QRectF place = minimapRect();
    painter->setOpacity(0.94);
    painter->drawPixmap(place.topLeft(), m_minimap);
    painter->setOpacity(1.0);
    const QRectF inner = place.adjusted(3.0, 3.0, -3.0, -3.0);
    const QRectF seen = minimapTransform()
                            .mapRect(viewportInSceneCoords())
                            .translated(place.topLeft())
                            .intersected(inner);
    if (m_minimapScene.isEmpty() || seen.isEmpty())
        return;
    painter->setPen(QPen(OssNgStyle::instance()->color(Role::Accent), 1.2));
    painter->setBrush(Qt::NoBrush);
    painter->drawRoundedRect(seen, 3.0, 3.0);
}
