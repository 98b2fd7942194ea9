#include "Ossa/Painting/PaintMarks.h"

#include "Ossa/Painting/Brushes.h"

#include <QPainter>

namespace {

constexpr double arm = 7.0;
constexpr double knob = 4.0;
const QColor dark(0, 0, 0, 160);

/// Dark and light, so that it is seen on any picture.
template <class Draw>
void drawTwice(QPainter *painter, const Draw &draw)
{
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setBrush(Qt::NoBrush);
    painter->setPen(QPen(dark, 2.5));
    draw();
    painter->setPen(QPen(Qt::white, 1.0));
    draw();
    painter->restore();
}

} // namespace

bool PaintMarks::hasNoOutline()
{
    const OssEvBrush::Tool tool = Brushes::instance()->brush().tool;
    return tool == OssEvBrush::Tool::Fill || tool == OssEvBrush::Tool::Gradient;
}

void PaintMarks::drawLine(QPainter *painter, const QPointF &from, const QPointF &to)
{
    drawTwice(painter, [&] {
        painter->drawLine(from, to);
        painter->drawEllipse(from, knob, knob);
    });
}

void PaintMarks::drawSource(QPainter *painter, const QPointF &place)
{
    drawTwice(painter, [&] {
        painter->drawLine(place - QPointF(arm, 0.0), place + QPointF(arm, 0.0));
        painter->drawLine(place - QPointF(0.0, arm), place + QPointF(0.0, arm));
    });
}
