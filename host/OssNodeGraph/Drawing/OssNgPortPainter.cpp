#include "OssNodeGraph/Drawing/OssNgPortPainter.h"

#include "OssNodeGraph/Drawing/OssNgStyle.h"

#include <QPainter>

void OssNgPaintPort(QPainter *painter, const QPointF &center, OssNgPortKind kind, bool hollow,
                    bool lit)
{
    const OssNgStyle *style = OssNgStyle::instance();
    const QColor &color = style->portColor(kind);
    if (lit) {
        QColor halo = color;
        halo.setAlphaF(0.35);
        painter->setPen(Qt::NoPen);
        painter->setBrush(halo);
        painter->drawEllipse(center, 6.0, 6.0);
    }
    if (hollow) {
        painter->setPen(QPen(color, 1.5));
        painter->setBrush(style->color(OssNgStyle::Role::Canvas));
    } else {
        painter->setPen(
            QPen(lit ? QColor(Qt::white) : style->color(OssNgStyle::Role::PortOutline), 1.5));
        painter->setBrush(color);
    }
    const qreal x = center.x();
    const qreal y = center.y();
    switch (kind) {
    case OssNgPortKind::Color:
        painter->drawEllipse(center, 5.0, 5.0);
        break;
    case OssNgPortKind::Scalar:
        painter->drawRect(QRectF(x - 4.5, y - 4.5, 9.0, 9.0));
        break;
    case OssNgPortKind::Vector: {
        const QPointF points[] = {{x - 4.5, y - 5.0}, {x + 5.5, y}, {x - 4.5, y + 5.0}};
        painter->drawConvexPolygon(points, 3);
        break;
    }
    case OssNgPortKind::Material: {
        const QPointF points[] = {{x, y - 5.5}, {x + 5.5, y}, {x, y + 5.5}, {x - 5.5, y}};
        painter->drawConvexPolygon(points, 4);
        break;
    }
    case OssNgPortKind::Data: {
        const QPointF points[] = {{x - 5.2, y}, {x - 2.6, y - 4.6}, {x + 2.6, y - 4.6},
                                  {x + 5.2, y}, {x + 2.6, y + 4.6}, {x - 2.6, y + 4.6}};
        painter->drawConvexPolygon(points, 6);
        break;
    }
    }
}
