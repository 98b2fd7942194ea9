#pragma once

#include <QPointF>

class QPainter;

/// What is drawn over a view beside the brush's outline. Places in pixels.
namespace PaintMarks {

/// Whether the tool in hand has no dabs.
bool hasNoOutline();

/// A gradient that is being drawn.
void drawLine(QPainter *painter, const QPointF &from, const QPointF &to);

/// Where colours are cloned from.
void drawSource(QPainter *painter, const QPointF &place);

} // namespace PaintMarks
