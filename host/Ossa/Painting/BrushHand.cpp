#include "Ossa/Painting/BrushHand.h"

#include <QTabletEvent>

#include <algorithm>
#include <cmath>

namespace {

constexpr double smallestPressure = 0.02;

} // namespace

void BrushHand::note(const QTabletEvent &event)
{
    // A pen that hovers leaves the mouse its full strength.
    const bool touches = event.type() != QEvent::TabletRelease && event.buttons() != Qt::NoButton;
    m_pressure = touches ? std::max(smallestPressure, event.pressure()) : 1.0;
}

QPointF BrushHand::begin(const QPointF &pointer)
{
    m_brush = pointer;
    return m_brush;
}

QPointF BrushHand::follow(const QPointF &pointer, double string)
{
    const QPointF way = pointer - m_brush;
    const double length = std::hypot(way.x(), way.y());
    if (length > string)
        m_brush = pointer - way * (string / length);
    return m_brush;
}
