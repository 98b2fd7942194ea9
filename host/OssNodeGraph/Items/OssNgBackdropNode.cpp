#include "OssNodeGraph/Items/OssNgBackdropNode.h"

#include "OssCore/Program/OssDebug.h"
#include "OssNodeGraph/Drawing/OssNgStyle.h"
#include "OssNodeGraph/Drawing/OssNgText.h"
#include "OssNodeGraph/Items/OssNgSceneIndex.h"

#include <QGraphicsScene>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace {

const QColor TitleColor(0xe9, 0xf3, 0xf3);
constexpr qreal BackdropLevel = -1000.0; ///< below everything else
constexpr qreal Corner = 10.0;
constexpr qreal GripWidth = 6.0;
constexpr qreal Padding = 14.0;
constexpr int MostLines = 40;
constexpr qreal Largest = 2.0 * OssNgSceneIndex::MostReach;

} // namespace

OssNgBackdropNode::OssNgBackdropNode()
    : m_rectSize(320.0, 220.0)
{
    // The view paints it below the wires; see isBackground().
    setFlag(ItemHasNoContents);
    setZValue(BackdropLevel);
    refresh();
}

QSizeF OssNgBackdropNode::layoutBody()
{
    // The area is what others mean by its size: the ring is painted inside of it.
    return {m_rectSize.width() - 2 * OssNgStyle::Margin,
            m_rectSize.height() - 2 * OssNgStyle::Margin};
}

void OssNgBackdropNode::setRect(const QRectF &rect)
{
    // Neither is true of what is no number: that becomes the least.
    const auto within = [](qreal wanted, qreal least) {
        return wanted > least ? std::min(wanted, Largest) : least;
    };
    const QSizeF size(within(rect.width(), minimumSize().width()),
                      within(rect.height(), minimumSize().height()));
    if (rect.width() > Largest || rect.height() > Largest)
        OssDebug("OssNgBackdropNode", __LINE__, "[ !! ] The size %g x %g of '%s' is too large",
                 rect.width(), rect.height(), qPrintable(text()));
    if (!rect.topLeft().isNull())
        setPosition(pos() + rect.topLeft());
    if (size.width() == m_rectSize.width() && size.height() == m_rectSize.height())
        return; // to the last digit, as places are
    m_rectSize = size;
    refresh();
}

qreal OssNgBackdropNode::titleBarHeight() const
{
    return OssNgStyle::BackdropTitleHeight;
}

QList<OssNgNode *> OssNgBackdropNode::nodesInside() const
{
    QList<OssNgNode *> inside;
    const QRectF area = sceneBoundingRect();
    const auto consider = [&](OssNgNode *node) {
        if (node != this && area.contains(node->sceneBoundingRect()))
            inside.append(node);
    };
    if (!sceneIndex())
        return inside;
    const QVector<OssNgNode *> nodes = sceneIndex()->nodesIn(area);
    for (OssNgNode *node : nodes)
        consider(node);
    return inside;
}

void OssNgBackdropNode::refreshChildrenList()
{
    m_children.clear();
    const QList<OssNgNode *> inside = nodesInside();
    for (OssNgNode *node : inside)
        m_children.append(node);
}

OssNgBackdropNode *OssNgBackdropNode::under(const OssNgNode *node)
{
    const OssNgSceneIndex *index = OssNgSceneIndex::of(node->scene());
    if (!index)
        return nullptr;
    const auto extent = [](const QRectF &rect) {
        return rect.width() * rect.height();
    };
    const QRectF own = node->sceneBoundingRect();
    const qreal least = qobject_cast<const OssNgBackdropNode *>(node) ? extent(own) : 0.0;
    OssNgBackdropNode *found = nullptr;
    const QVector<OssNgNode *> near = index->nodesIn(own);
    for (OssNgNode *other : near) {
        auto *backdrop = qobject_cast<OssNgBackdropNode *>(other);
        const QRectF area = other->sceneBoundingRect();
        if (backdrop && other != node && extent(area) > least && area.contains(own.center())
            && (!found || extent(area) < extent(found->sceneBoundingRect())))
            found = backdrop;
    }
    return found;
}

void OssNgBackdropNode::setInviting(bool inviting)
{
    if (m_inviting == inviting)
        return;
    m_inviting = inviting;
    appearanceChanged();
}

void OssNgBackdropNode::setZOrder(int order)
{
    if (m_zOrder == order)
        return;
    m_zOrder = order;
    setZValue(BackdropLevel + std::clamp(order, -900, 900));
    appearanceChanged();
}

void OssNgBackdropNode::changeZOrder(int order)
{
    if (m_zOrder == order)
        return;
    setZOrder(order);
    Q_EMIT zOrderChanged(order);
}

void OssNgBackdropNode::wrapAroundSelection(const QRectF &sceneBounds)
{
    if (sceneBounds.isEmpty())
        return;
    const qreal margin = titleBarHeight();
    const QRectF area = sceneBounds.adjusted(-margin, -2 * margin, margin, margin);
    setPosition(area.topLeft());
    setRect({QPointF(), area.size()});
}

void OssNgBackdropNode::setTitleText(const QString &title)
{
    if (m_title == title)
        return;
    m_title = title;
    appearanceChanged();
}

QColor OssNgBackdropNode::usualBackground() const
{
    return {0x4f, 0x8a, 0x8b};
}

Qt::Edges OssNgBackdropNode::resizeEdgesAt(const QPointF &local) const
{
    const QRectF area = rect();
    Qt::Edges edges;
    if (!area.contains(local))
        return edges;
    if (local.x() < GripWidth)
        edges |= Qt::LeftEdge;
    if (local.x() > area.right() - GripWidth)
        edges |= Qt::RightEdge;
    if (local.y() < GripWidth)
        edges |= Qt::TopEdge;
    if (local.y() > area.bottom() - GripWidth)
        edges |= Qt::BottomEdge;
    return edges;
}

QPainterPath OssNgBackdropNode::shape() const
{
    const QRectF area = rect();
    QPainterPath path;
    path.setFillRule(Qt::OddEvenFill);
    path.addRect(area);
    path.addRect(area.adjusted(GripWidth, titleBarHeight(), -GripWidth, -GripWidth));
    return path;
}

bool OssNgBackdropNode::contains(const QPointF &point) const
{
    return hitTest(point);
}

bool OssNgBackdropNode::hitTest(const QPointF &local) const
{
    const QRectF area = rect();
    return area.contains(local)
           && !area.adjusted(GripWidth, titleBarHeight(), -GripWidth, -GripWidth).contains(local);
}

void OssNgBackdropNode::paintDetailed(QPainter *painter) const
{
    const OssNgStyle *style = OssNgStyle::instance();
    const QRectF area = rect();
    const QRectF body = area.adjusted(1.0, 1.0, -1.0, -1.0);
    QColor fill = backgroundColor();
    const qreal strength = fill.alphaF();
    QColor outline = fill;
    fill.setAlphaF(0.13 * strength);
    outline.setAlphaF(hasMark(PointedOut) ? 1.0 : (hovered() ? 0.7 : 0.25) * strength);
    painter->setPen(Qt::NoPen);
    painter->setBrush(fill);
    painter->drawRoundedRect(body, Corner, Corner);
    QColor bar = backgroundColor();
    bar.setAlphaF(0.35 * strength);
    painter->setBrush(bar);
    QPainterPath top;
    top.addRoundedRect(body, Corner, Corner);
    QPainterPath strip;
    strip.addRect(QRectF(body.left(), body.top(), body.width(), titleBarHeight()));
    painter->drawPath(top.intersected(strip));
    painter->setBrush(Qt::NoBrush);
    painter->setPen(m_inviting     ? QPen(style->color(OssNgStyle::Role::Inviting), 3.0)
                    : isSelected() ? QPen(style->color(OssNgStyle::Role::Accent), 2.0)
                                   : QPen(outline, 1.0));
    painter->drawRoundedRect(body, Corner, Corner);
    painter->setPen(TitleColor);
    OssNgText::draw(painter, OssNgText::Role::Backdrop,
                    {area.left() + Padding, area.top() + titleBarHeight() / 2.0},
                    OssNgText::elided(OssNgText::Role::Backdrop,
                                      m_title.isEmpty() ? text() : m_title,
                                      area.width() - 2 * Padding));
    if (label().isEmpty())
        return;
    painter->setPen(style->color(OssNgStyle::Role::Label));
    qreal y = area.top() + titleBarHeight() + 16.0;
    const int room = std::max(0, int((area.bottom() - y) / 16.0));
    const QStringList lines = OssNgText::wrapped(
        OssNgText::Role::Label, label(), area.width() - 2 * Padding, std::min(MostLines, room));
    for (const QString &line : lines) {
        OssNgText::draw(painter, OssNgText::Role::Label, {area.left() + Padding, y}, line);
        y += 16.0;
    }
}

void OssNgBackdropNode::paintSimple(QPainter *painter) const
{
    const QRectF area = rect();
    QColor fill = backgroundColor();
    const qreal strength = fill.alphaF();
    fill.setAlphaF(0.16 * strength);
    painter->fillRect(area, fill);
    fill.setAlphaF(0.35 * strength);
    const QRectF bar(area.topLeft(), QSizeF(area.width(), titleBarHeight()));
    painter->fillRect(bar, fill);
    painter->setPen(TitleColor);
    OssNgText::drawSmall(painter, OssNgText::Role::Backdrop, bar,
                         m_title.isEmpty() ? text() : m_title);
    paintSimpleSelection(painter, area);
    if (!m_inviting)
        return;
    painter->setPen(QPen(OssNgStyle::instance()->color(OssNgStyle::Role::Inviting), 6.0));
    painter->setBrush(Qt::NoBrush);
    painter->drawRect(area.adjusted(3.0, 3.0, -3.0, -3.0));
}

void OssNgBackdropNode::copyStateFrom(const OssNgNode *other)
{
    if (const auto *backdrop = qobject_cast<const OssNgBackdropNode *>(other)) {
        m_title = backdrop->m_title;
        m_rectSize = backdrop->m_rectSize;
        setZOrder(backdrop->m_zOrder);
    }
    OssNgAnnotation::copyStateFrom(other);
}
