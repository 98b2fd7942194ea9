#include "OssNodeGraph/Items/OssNgNode.h"

#include "OssCore/Program/OssDebug.h"
#include "OssNodeGraph/Drawing/OssNgPaintCache.h"
#include "OssNodeGraph/Drawing/OssNgStyle.h"
#include "OssNodeGraph/Items/OssNgEdge.h"
#include "OssNodeGraph/Items/OssNgNodeExtras.h"
#include "OssNodeGraph/Items/OssNgSceneIndex.h"

#include <QGraphicsScene>
#include <QGraphicsSceneMouseEvent>
#include <QLinearGradient>

#include <algorithm>
#include <cmath>

OssNgNode::OssNgNode()
    : m_size(OssNgStyle::MinimumWidth + 2 * OssNgStyle::Margin,
             OssNgStyle::HeaderHeight + 2 * OssNgStyle::Margin)
{
    setFlags(ItemIsSelectable | ItemSendsGeometryChanges);
    static const int edgeType = qRegisterMetaType<OssNgEdge *>();
    Q_UNUSED(edgeType)
}

OssNgNode::~OssNgNode()
{
    dispose();
    if (m_inPaintCache)
        OssNgPaintCache::instance().remove(this);
}

void OssNgNode::dispose()
{
    m_temporaryEdge.reset();
    // Every wire takes itself out of both lists.
    while (!m_inputEdges.isEmpty())
        delete m_inputEdges.last();
    while (!m_outputEdges.isEmpty())
        delete m_outputEdges.last();
    if (scene())
        scene()->removeItem(this);
    if (m_index)
        m_index->removeNode(this);
    m_businessNode = nullptr;
}

void OssNgNode::setBusinessNode(QObject *businessNode)
{
    m_businessNode = businessNode;
}

OssNgNode::Extras &OssNgNode::extras()
{
    if (!m_extras)
        m_extras = std::make_unique<Extras>();
    return *m_extras;
}

void OssNgNode::setText(const QString &text)
{
    if (m_text == text)
        return;
    m_text = text;
    setObjectName(text); // what dumps know it by
    refresh();
}

void OssNgNode::setShapeType(int type)
{
    m_shapeType = qint16(type);
}

void OssNgNode::updateShape()
{
    if (m_shownShape == m_shapeType)
        return;
    m_shownShape = m_shapeType;
    appearanceChanged();
}

void OssNgNode::setNodeColor(const QColor &top, const QColor &bottom)
{
    if (!m_extras && !top.isValid() && !bottom.isValid())
        return;
    extras().topColor = top;
    extras().bottomColor = bottom;
    appearanceChanged();
}

void OssNgNode::setCategory(const QString &category)
{
    m_category = category;
    appearanceChanged();
}

void OssNgNode::setPixmap(const QPixmap &pixmap, const QPoint &offset)
{
    extras().pixmap = pixmap;
    extras().pixmapOffset = offset;
    refresh();
}

void OssNgNode::setThumbnail(const QPixmap &thumbnail)
{
    extras().thumbnail = thumbnail;
    refresh();
}

QBrush OssNgNode::fillBrush() const
{
    const QColor own = m_extras ? m_extras->topColor : QColor();
    const QColor top = own.isValid() ? own : OssNgStyle::instance()->categoryColor(m_category);
    const QColor bottom = m_extras && m_extras->bottomColor.isValid() ? m_extras->bottomColor : top;
    QLinearGradient gradient(0.0, OssNgStyle::Margin, 0.0,
                             OssNgStyle::Margin + OssNgStyle::HeaderHeight);
    gradient.setColorAt(0.0, top);
    gradient.setColorAt(1.0, bottom);
    return gradient;
}

QColor OssNgNode::mainColor() const
{
    if (m_extras && !m_extras->errorText.isEmpty())
        return OssNgStyle::instance()->color(OssNgStyle::Role::Error);
    if (m_extras && m_extras->topColor.isValid())
        return m_extras->topColor;
    return OssNgStyle::instance()->categoryColor(m_category);
}

OssNgNode::LayoutPause::LayoutPause(OssNgNode *node)
    : m_node(node)
{
    m_node->m_layoutPaused = true;
}

OssNgNode::LayoutPause::~LayoutPause()
{
    m_node->m_layoutPaused = false;
    m_node->refresh();
}

void OssNgNode::refresh()
{
    if (m_layoutPaused)
        return;
    relayout();
    appearanceChanged();
}

void OssNgNode::copyStateFrom(const OssNgNode *other)
{
    if (!other || other == this)
        return;
    m_category = other->m_category;
    m_shapeType = other->m_shapeType;
    m_shownShape = other->m_shownShape;
    copyMarks(*other);
    setLabelsVisible(other->labelsVisible());
    if (other->m_extras) {
        extras().topColor = other->m_extras->topColor;
        extras().bottomColor = other->m_extras->bottomColor;
        extras().debugColor = other->m_extras->debugColor;
        extras().pixmap = other->m_extras->pixmap;
        extras().pixmapOffset = other->m_extras->pixmapOffset;
        extras().thumbnail = other->m_extras->thumbnail;
        extras().errorText = other->m_extras->errorText;
        extras().errorLines = other->m_extras->errorLines;
    }
    setPosition(other->pos());
    refresh();
}

void OssNgNode::setDebugColor(const QColor &color)
{
    extras().debugColor = color;
    if (hasMark(Debug))
        appearanceChanged();
}

void OssNgNode::setErrorText(const QString &reason)
{
    if (errorText() == reason)
        return;
    extras().errorText = reason;
    refresh();
    fitErrorText();
}

QString OssNgNode::errorText() const
{
    return m_extras ? m_extras->errorText : QString();
}

void OssNgNode::setHovered(bool hovered)
{
    if (m_hovered == hovered)
        return;
    m_hovered = hovered;
    appearanceChanged();
    Q_EMIT hoveredChanged(hovered);
}

void OssNgNode::setPosition(const QPointF &position)
{
    constexpr qreal Farthest = OssNgSceneIndex::MostReach;
    // Written so that what is no number is told, too.
    if (std::abs(position.x()) <= Farthest && std::abs(position.y()) <= Farthest) {
        if (pos() == position && !isAt(position))
            setPos(position + QPointF(1.0, 1.0)); // an item does not go where it nearly is
        setPos(position);
        return;
    }
    OssDebug("OssNgNode", __LINE__, "[ !! ] The place %g, %g of '%s' is out of reach", position.x(),
             position.y(), qPrintable(text()));
    const auto reached = [Farthest](qreal wanted, qreal own) {
        return std::isnan(wanted) ? own : std::clamp(wanted, -Farthest, Farthest);
    };
    setPos(reached(position.x(), x()), reached(position.y(), y()));
}

QRectF OssNgNode::bodyRect() const
{
    return boundingRect().adjusted(OssNgStyle::Margin, OssNgStyle::Margin, -OssNgStyle::Margin,
                                   -OssNgStyle::Margin);
}

QPainterPath OssNgNode::shape() const
{
    QPainterPath path;
    path.addRect(boundingRect());
    return path;
}

bool OssNgNode::contains(const QPointF &point) const
{
    return hitTest(point);
}

bool OssNgNode::hitTest(const QPointF &local) const
{
    return bodyRect().contains(local) || inputPortAt(local, OssNgStyle::PortRadius + 1.0)
           || outputPortAt(local, OssNgStyle::PortRadius + 1.0);
}

QVariant OssNgNode::itemChange(GraphicsItemChange change, const QVariant &value)
{
    switch (change) {
    case ItemPositionHasChanged:
        if (m_index)
            m_index->updateNode(this);
        updateEdges();
        break;
    case ItemSelectedHasChanged: {
        const bool selected = value.toBool();
        OssSerializableObject::setSelected(selected);
        if (auto *business = qobject_cast<OssSerializableObject *>(m_businessNode.data()))
            business->setSelected(selected);
        appearanceChanged();
        break;
    }
    case ItemVisibleHasChanged:
        for (OssNgEdge *edge : m_inputEdges + m_outputEdges)
            edge->updateVisibility();
        [[fallthrough]];
    case ItemZValueHasChanged:
        if (m_index)
            m_index->updateNode(this);
        break;
    case ItemSceneChange:
        leaveScene();
        break;
    case ItemSceneHasChanged:
        enterScene();
        break;
    default:
        break;
    }
    return QGraphicsItem::itemChange(change, value);
}

void OssNgNode::leaveScene()
{
    if (m_index)
        m_index->removeNode(this);
}

void OssNgNode::enterScene()
{
    if (OssNgSceneIndex *index = OssNgSceneIndex::of(scene()))
        index->addNode(this);
    const QList<OssNgEdge *> edges = m_inputEdges + m_outputEdges;
    for (OssNgEdge *edge : edges)
        syncEdgeScene(edge);
}

void OssNgNode::mousePressEvent(QGraphicsSceneMouseEvent *event)
{
    // The view's gestures have done the work. Taken here, lest the scene clear the selection.
    event->accept();
}

void OssNgNode::mouseDoubleClickEvent(QGraphicsSceneMouseEvent *event)
{
    event->accept();
}

void OssNgNode::appearanceChanged()
{
    ++m_revision;
    if (m_index)
        m_index->updateNode(this);
    if (!scene())
        return;
    if (flags() & ItemHasNoContents)
        scene()->update(sceneBoundingRect());
    else
        update();
}

void OssNgNode::setBodySize(const QSizeF &size)
{
    const QSizeF whole = size + QSizeF(2 * OssNgStyle::Margin, 2 * OssNgStyle::Margin);
    if (whole == m_size)
        return;
    const QRectF old = sceneBoundingRect();
    prepareGeometryChange();
    m_size = whole;
    if (m_index)
        m_index->updateNode(this);
    if (scene() && (flags() & ItemHasNoContents))
        scene()->update(old | sceneBoundingRect());
}

void OssNgNode::relayout()
{
    setBodySize(layoutBody());
    ++m_revision;
    updateEdges();
}
