#include "OssNodeGraph/Items/OssNgDotNode.h"

#include "OssNodeGraph/Drawing/OssNgStyle.h"

#include <QPainter>
#include <QPainterPath>

namespace {

constexpr qreal Radius = 7.0;

QColor dotColor(const OssNgNode *node)
{
    const OssNgPortKind kind = node->inputPorts().isEmpty() ? OssNgPortKind::Color
                                                            : node->inputPorts().first().kind;
    return OssNgStyle::instance()->portColor(kind);
}

} // namespace

OssNgDotNode::OssNgDotNode()
{
    refresh();
}

QSizeF OssNgDotNode::layoutBody()
{
    // Wires end at the centre, so that one seems to run through.
    const QPointF center(OssNgStyle::Margin + Radius, OssNgStyle::Margin + Radius);
    for (const Side side : {Side::Input, Side::Output}) {
        for (OssNgPort &port : ports(side)) {
            port.listed = true;
            port.position = center
                            + QPointF(side == Side::Input ? -Radius / 2.0 : Radius / 2.0, 0.0);
        }
    }
    return {2 * Radius, 2 * Radius};
}

QPainterPath OssNgDotNode::shape() const
{
    QPainterPath path;
    path.addEllipse(bodyRect());
    return path;
}

bool OssNgDotNode::hitTest(const QPointF &local) const
{
    const QPointF away = local - bodyRect().center();
    return QPointF::dotProduct(away, away) <= (Radius + 2.0) * (Radius + 2.0);
}

bool OssNgDotNode::contains(const QPointF &point) const
{
    return hitTest(point);
}

void OssNgDotNode::paintDetailed(QPainter *painter) const
{
    const OssNgStyle *style = OssNgStyle::instance();
    const QRectF body = bodyRect();
    painter->setPen(QPen(hovered() ? QColor(Qt::white) : style->color(OssNgStyle::Role::Canvas),
                         hovered() ? 1.0 : 1.5));
    painter->setBrush(dotColor(this));
    painter->drawEllipse(body.adjusted(1.0, 1.0, -1.0, -1.0));
    paintRing(painter, body.adjusted(1.0, 1.0, -1.0, -1.0), Radius);
}

void OssNgDotNode::paintSimple(QPainter *painter) const
{
    const bool chosen = isSelected();
    painter->fillRect(bodyRect().adjusted(2.0, 2.0, -2.0, -2.0),
                      chosen ? OssNgStyle::instance()->color(OssNgStyle::Role::Accent)
                             : dotColor(this));
}
