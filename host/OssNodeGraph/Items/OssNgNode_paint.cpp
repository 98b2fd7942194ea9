#include "OssNodeGraph/Items/OssNgNode.h"

#include "OssNodeGraph/Drawing/OssNgPaintCache.h"
#include "OssNodeGraph/Drawing/OssNgPortPainter.h"
#include "OssNodeGraph/Drawing/OssNgStyle.h"
#include "OssNodeGraph/Drawing/OssNgText.h"
#include "OssNodeGraph/Items/OssNgNodeExtras.h"
#include "OssNodeGraph/Items/OssNgNodeHelp.h"

#include <QPainter>
#include <QPainterPath>
#include <QWidget>

#include <algorithm>
#include <cmath>

using Role = OssNgStyle::Role;

namespace {

constexpr qreal FadedHeader = 0.35;
constexpr qreal FadedTitle = 0.55;
constexpr qreal PointedOutTint = 0.3;
constexpr qreal LargestCachedScale = 3.0;

enum Shape { PlainShape = 0, MaterialShape = 3, GroupShape = 4, MultiChannelShape = 7 };

qreal cornerOf(int shape)
{
    return shape == MaterialShape ? 13.0 : OssNgStyle::CornerRadius;
}

QColor withAlpha(QColor color, qreal alpha)
{
    color.setAlphaF(color.alphaF() * alpha);
    return color;
}

QPainterPath topRounded(const QRectF &rect, qreal radius)
{
    QPainterPath path;
    path.moveTo(rect.bottomLeft());
    path.lineTo(rect.left(), rect.top() + radius);
    path.arcTo(rect.left(), rect.top(), 2 * radius, 2 * radius, 180.0, -90.0);
    path.lineTo(rect.right() - radius, rect.top());
    path.arcTo(rect.right() - 2 * radius, rect.top(), 2 * radius, 2 * radius, 90.0, -90.0);
    path.lineTo(rect.bottomRight());
    path.closeSubpath();
    return path;
}

/// Where the painter's origin is nearest to, of places that are whole pixels of the screen: on one of 1.25 pixels
/// to the unit few whole units are.
QPointF onWholePixels(const QPainter &painter, qreal ratio)
{
    const QTransform world = painter.worldTransform();
    const QTransform device = painter.deviceTransform();
    return {world.dx() + (std::round(device.dx()) - device.dx()) / ratio,
            world.dy() + (std::round(device.dy()) - device.dy()) / ratio};
}

} // namespace

void OssNgNode::paint(QPainter *painter, const QStyleOptionGraphicsItem *, QWidget *widget)
{
    const QTransform world = painter->worldTransform();
    const qreal scale = world.m11();
    if (scale < OssNgStyle::FullDetail) {
        paintSimple(painter);
        return;
    }
    if (!widget || world.type() > QTransform::TxScale || scale > LargestCachedScale) {
        paintDetailed(painter);
        return;
    }
    OssNgPaintCache &cache = OssNgPaintCache::instance();
    const qreal ratio = painter->device()->devicePixelRatioF();
    const QPointF place = onWholePixels(*painter, ratio);
    OssNgPaintCache::Picture *picture = cache.find(this);
    const bool same = picture && picture->revision == m_revision
                      && qFuzzyCompare(picture->scale, scale * ratio);
    if (!same) {
        cache.store(this, new OssNgPaintCache::Picture{QPixmap(), m_revision, scale * ratio});
        m_inPaintCache = true;
        // On whole pixels, as the picture will be, or a part that is painted anew would not fit.
        painter->setWorldTransform(QTransform(scale, 0.0, 0.0, scale, place.x(), place.y()));
        paintDetailed(painter);
        painter->setWorldTransform(world);
        return;
    }
    if (picture->pixmap.isNull()) {
        const QSizeF size = m_size * scale * ratio;
        QPixmap pixmap(int(std::ceil(size.width())) + 1, int(std::ceil(size.height())) + 1);
        pixmap.fill(Qt::transparent);
        QPainter inner(&pixmap);
        inner.setRenderHints(painter->renderHints());
        inner.scale(scale * ratio, scale * ratio);
        paintDetailed(&inner);
        inner.end();
        pixmap.setDevicePixelRatio(ratio);
        picture = new OssNgPaintCache::Picture{pixmap, m_revision, scale * ratio};
        cache.store(this, picture);
    }
    const QPixmap pixmap = picture->pixmap; // storing may have thrown the entry away again
    painter->setWorldTransform(QTransform());
    painter->drawPixmap(place, pixmap);
    painter->setWorldTransform(world);
}

void OssNgNode::paintFrame(QPainter *painter) const
{
    const OssNgStyle *style = OssNgStyle::instance();
    const QRectF body = bodyRect();
    const qreal radius = cornerOf(m_shownShape);
    QPen outline(style->color(m_hovered ? Role::OutlineHovered : Role::Outline), 1.0);
    if (hasMark(Placeholder)) {
        outline.setColor(style->color(Role::OutlineHovered));
        outline.setDashPattern({4.0, 3.0});
    }
    if (m_shownShape == GroupShape || m_shownShape == MultiChannelShape) {
        // A second sheet behind: there is a graph inside.
        painter->setPen(QPen(style->color(Role::Outline), 1.0));
        painter->setBrush(withAlpha(style->color(Role::Body), 0.6));
        painter->drawRoundedRect(body.translated(0.0, 3.0).adjusted(5.0, 0.0, -5.0, 0.0), radius,
                                 radius);
    }
    painter->setPen(outline);
    painter->setBrush(style->color(m_hovered ? Role::BodyHovered : Role::Body));
    painter->drawRoundedRect(body, radius, radius);
}

void OssNgNode::paintRing(QPainter *painter, const QRectF &body, qreal radius) const
{
    const OssNgStyle *style = OssNgStyle::instance();
    QColor color;
    if (hasMark(PointedOut)) {
        color = style->color(Role::Highlight);
        painter->setPen(Qt::NoPen);
        painter->setBrush(withAlpha(color, PointedOutTint));
        painter->drawRoundedRect(body, radius, radius);
    } else if (isSelected())
        color = style->color(Role::Accent);
    else if (hasMark(Debug))
        color = m_extras && m_extras->debugColor.isValid() ? m_extras->debugColor
                                                           : style->color(Role::Stale);
    else if (hasMark(Highlighted))
        color = style->color(Role::Highlight);
    if (!color.isValid())
        return;
    painter->setBrush(Qt::NoBrush);
    painter->setPen(QPen(color, hasMark(PointedOut) ? 4.0 : 2.0));
    painter->drawRoundedRect(body.adjusted(-3.0, -3.0, 3.0, 3.0), radius + 2.0, radius + 2.0);
}

void OssNgNode::paintDetailed(QPainter *painter) const
{
    const QRectF body = bodyRect();
    paintFrame(painter);
    paintHeader(painter, body);
    if (!portsAlongEdges() && labelsVisible()) {
        painter->setPen(OssNgStyle::instance()->color(Role::Label));
        paintLabels(painter, Side::Input);
        if (outputPorts().size() > 1)
            paintLabels(painter, Side::Output);
    }
    paintFoot(painter, body);
    if (hasMark(Disabled) || hasMark(Bypassed))
        paintStrike(painter, body);
    paintRing(painter, body, cornerOf(m_shownShape));
    paintPorts(painter, Side::Input);
    paintPorts(painter, Side::Output);
}

void OssNgNode::paintHeader(QPainter *painter, const QRectF &body) const
{
    const OssNgStyle *style = OssNgStyle::instance();
    const bool faded = hasMark(Disabled) || hasMark(Bypassed) || hasMark(Placeholder);
    const QRectF header(body.topLeft(), QSizeF(body.width(), OssNgStyle::HeaderHeight));
    const qreal radius = cornerOf(m_shownShape);
    painter->setOpacity(faded ? FadedHeader : 0.95);
    painter->setPen(Qt::NoPen);
    if (m_extras && m_extras->bottomColor.isValid())
        painter->setBrush(fillBrush());
    else
        painter->setBrush(m_extras && m_extras->topColor.isValid()
                              ? m_extras->topColor
                              : style->categoryColor(m_category));
    if (body.height() <= header.height())
        painter->drawRoundedRect(header, radius, radius);
    else
        painter->drawPath(topRounded(header, radius));
    painter->setOpacity(1.0);
    if (m_shownShape == MultiChannelShape) {
        painter->setBrush(QColor(255, 255, 255, 70));
        painter->drawRect(QRectF(header.left(), header.bottom() - 3.0, header.width(), 1.0));
    }
    const QRectF status = statusArea(header);
    paintHeaderExtra(painter, {header.topLeft(), QPointF(status.left(), header.bottom())});
    paintHeaderMarks(painter, status);
    const qreal room = status.left() - headerExtra() - header.left() - OssNgStyle::TitleInset;
    painter->setPen(withAlpha(style->color(Role::Title), faded ? FadedTitle : 1.0));
    OssNgText::draw(painter, OssNgText::Role::Title,
                    {header.left() + OssNgStyle::TitleInset, header.center().y()},
                    OssNgText::elided(OssNgText::Role::Title, m_text, room));
}

qreal OssNgNode::statusWidth() const
{
    qreal width = m_extras && !m_extras->pixmap.isNull() ? 20.0 : 0.0;
    for (const Mark mark : {Baked, Stale, Cached, SystemShader, GuiActive}) {
        if (hasMark(mark))
            width += 14.0;
    }
    return m_extras && !m_extras->errorText.isEmpty() ? width + 14.0 : width;
}

QRectF OssNgNode::statusArea(const QRectF &header) const
{
    const qreal width = statusWidth();
    return {header.right() - 8.0 - width, header.top(), width, header.height()};
}

void OssNgNode::paintHeaderMarks(QPainter *painter, const QRectF &status) const
{
    if (status.width() <= 0.0)
        return;
    const OssNgStyle *style = OssNgStyle::instance();
    qreal x = status.right() - 7.0;
    const qreal y = status.center().y();
    const auto dot = [&](const QColor &color) {
        painter->setPen(QPen(QColor(0, 0, 0, 70), 1.0));
        painter->setBrush(color);
        painter->drawEllipse(QPointF(x, y), 5.0, 5.0);
        x -= 14.0;
    };
    if (m_extras && !m_extras->errorText.isEmpty())
        dot(style->color(Role::Error));
    if (hasMark(Stale))
        dot(style->color(Role::Stale));
    if (hasMark(Baked))
        dot(style->color(Role::Baked));
    painter->setPen(QPen(QColor(255, 255, 255, 200), 1.4));
    painter->setBrush(Qt::NoBrush);
    if (hasMark(Cached)) { // stored: a small drum
        painter->drawEllipse(QRectF(x - 4.0, y - 5.0, 8.0, 3.4));
        painter->drawLine(QPointF(x - 4.0, y - 3.3), QPointF(x - 4.0, y + 3.0));
        painter->drawLine(QPointF(x + 4.0, y - 3.3), QPointF(x + 4.0, y + 3.0));
        painter->drawArc(QRectF(x - 4.0, y + 1.0, 8.0, 4.0), 180 * 16, 180 * 16);
        x -= 14.0;
    }
    if (hasMark(SystemShader)) {
        const QPointF points[] = {{x, y - 4.5}, {x + 4.5, y}, {x, y + 4.5}, {x - 4.5, y}};
        painter->drawConvexPolygon(points, 4);
        x -= 14.0;
    }
    if (hasMark(GuiActive)) { // an eye: this is what is looked at
        painter->drawEllipse(QPointF(x, y), 5.5, 3.4);
        painter->setBrush(QColor(255, 255, 255, 220));
        painter->drawEllipse(QPointF(x, y), 1.2, 1.2);
        x -= 14.0;
    }
    if (m_extras && !m_extras->pixmap.isNull()) {
        const QRectF icon(x - 9.0 + m_extras->pixmapOffset.x(),
                          y - 8.0 + m_extras->pixmapOffset.y(), 16.0, 16.0);
        painter->drawPixmap(icon, m_extras->pixmap, QRectF(m_extras->pixmap.rect()));
    }
}

void OssNgNode::paintLabels(QPainter *painter, Side side) const
{
    const QRectF body = bodyRect();
    const QVector<OssNgPort> &all = ports(side);
    for (int i = 0; i < all.size(); ++i) {
        const OssNgPort &port = all[i];
        if (!port.listed || !port.labelled)
            continue;
        const QString shown = OssNgText::elided(OssNgText::Role::Label, portLabel(i, side),
                                                body.width() - 2 * OssNgStyle::LabelInset);
        qreal x = port.position.x() + OssNgStyle::LabelInset;
        if (side == Side::Output)
            x = port.position.x() - OssNgStyle::LabelInset
                - OssNgText::width(OssNgText::Role::Label, shown);
        else
            x += std::max(0.0, list(side).textPosition(port.name));
        OssNgText::draw(painter, OssNgText::Role::Label, {x, port.position.y()}, shown);
    }
}

void OssNgNode::paintPorts(QPainter *painter, Side side) const
{
    const QString lit = list(side).lit();
    for (const OssNgPort &port : ports(side)) {
        if (port.listed && (port.labelled || portsAlongEdges()))
            OssNgPaintPort(painter, port.position, port.kind, port.flag && !port.used,
                           !lit.isEmpty() && port.name == lit);
    }
}

void OssNgNode::paintStrike(QPainter *painter, const QRectF &body) const
{
    QPen pen(withAlpha(OssNgStyle::instance()->color(Role::Strike), 0.8), 2.0);
    pen.setCapStyle(Qt::RoundCap);
    if (hasMark(Bypassed) && !hasMark(Disabled))
        pen.setDashPattern({3.0, 2.5});
    painter->setPen(pen);
    painter->drawLine(QPointF(body.left() + 6.0, body.bottom() - 6.0),
                      QPointF(body.right() - 6.0, body.top() + 6.0));
}

void OssNgNode::paintFoot(QPainter *painter, const QRectF &body) const
{
    if (!m_extras)
        return;
    const OssNgStyle *style = OssNgStyle::instance();
    qreal bottom = body.bottom();
    const QStringList lines = errorLines(body.width());
    if (!lines.isEmpty()) {
        const qreal height = lines.size() * 14.0 + 4.0;
        painter->setPen(Qt::NoPen);
        painter->setBrush(withAlpha(style->color(Role::Error), 0.14));
        painter->drawRoundedRect(
            QRectF(body.left() + 5.0, bottom - height - 5.0, body.width() - 10.0, height), 4.0,
            4.0);
        painter->setPen(style->color(Role::ErrorText));
        qreal y = bottom - height + 4.0;
        for (const QString &line : lines) {
            OssNgText::draw(painter, OssNgText::Role::Label, {body.left() + 10.0, y}, line);
            y += 14.0;
        }
        bottom -= height + 6.0;
    }
    if (m_extras->thumbnail.isNull())
        return;
    const QRectF place(body.left() + 10.0, bottom - thumbnailHeight(body.width()) - 2.0,
                       body.width() - 20.0, thumbnailHeight(body.width()) - 6.0);
    const bool smooth = painter->testRenderHint(QPainter::SmoothPixmapTransform);
    painter->setRenderHint(QPainter::SmoothPixmapTransform, true);
    QBrush picture(m_extras->thumbnail);
    const QSizeF size = m_extras->thumbnail.size();
    picture.setTransform(QTransform::fromTranslate(place.left(), place.top())
                             .scale(place.width() / size.width(), place.height() / size.height()));
    painter->setPen(Qt::NoPen);
    painter->setBrush(picture);
    painter->drawRoundedRect(place, 4.0, 4.0);
    painter->setRenderHint(QPainter::SmoothPixmapTransform, smooth);
}

void OssNgNode::paintSimple(QPainter *painter) const
{
    const OssNgStyle *style = OssNgStyle::instance();
    const QRectF body = bodyRect();
    const bool faded = hasMark(Disabled) || hasMark(Bypassed);
    painter->fillRect(body, style->color(m_hovered ? Role::BodyHovered : Role::Body));
    const QRectF header(body.topLeft(), QSizeF(body.width(), OssNgStyle::HeaderHeight));
    painter->fillRect(header, withAlpha(mainColor(), faded ? FadedHeader : 1.0));
    painter->setPen(withAlpha(style->color(Role::Title), faded ? FadedTitle : 1.0));
    OssNgText::drawSmall(painter, OssNgText::Role::Title, header, m_text);
    QColor ring;
    if (hasMark(PointedOut)) {
        ring = style->color(Role::Highlight);
        painter->fillRect(body, withAlpha(ring, PointedOutTint));
    } else if (isSelected())
        ring = style->color(Role::Accent);
    else if (hasMark(Debug) && m_extras)
        ring = m_extras->debugColor;
    else if (hasMark(Highlighted))
        ring = style->color(Role::Highlight);
    if (ring.isValid())
        drawThinRing(painter, body, ring);
}

void OssNgNode::drawThinRing(QPainter *painter, const QRectF &area, const QColor &color)
{
    QPen pen(color, 2.0);
    pen.setCosmetic(true);
    painter->setPen(pen);
    painter->setBrush(Qt::NoBrush);
    painter->drawRect(area);
}

QString OssNgNode::toolTipAt(const QPointF &local) const
{
    const auto describe = [this](const OssNgPort *port, Side side) {
        const int index = list(side).indexOf(port->name);
        const QString called = list(side).calledName(index);
        const QString label = portLabel(index, side);
        QStringList lines{label};
        if (called != label && called != port->name)
            lines.append(called);
        const QString help = m_help ? m_help->portHelp(port->name, side == Side::Input) : QString();
        if (!help.isEmpty())
            lines.append(help);
        return lines.join(QLatin1Char('\n'));
    };
    const qreal reach = OssNgStyle::PortRadius + 2.0;
    if (const OssNgPort *port = inputPortAt(local, reach))
        return describe(port, Side::Input);
    if (const OssNgPort *port = outputPortAt(local, reach))
        return describe(port, Side::Output);
    QStringList lines;
    if (m_extras && !m_extras->errorText.isEmpty())
        lines.append(m_extras->errorText);
    if (bodyRect().width() >= OssNgStyle::MaximumWidth)
        lines.append(m_text); // perhaps cut short
    const QString help = m_help ? m_help->nodeHelp() : QString();
    for (const QString &text : {toolTip(), help}) {
        if (!text.isEmpty())
            lines.append(text);
    }
    return lines.join(QLatin1Char('\n'));
}

bool OssNgNode::clickAt(const QPointF &)
{
    return false;
}
