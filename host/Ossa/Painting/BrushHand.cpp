#include "Ossa/Painting/BrushHand.h"

#include <QTabletEvent>

#include <algorithm>
#include <cmath>

namespace {

constexpr double smallestPressure = 0.02;

} // namespace

void BrushHand::note(const QTabletEvent &event)
{
    m_pressure = event.type() == QEvent::TabletRelease
                     ? 1.0
                     : std::max(smallestPressure, event.pressure());
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
