#include "OssNodeGraph/Gestures/OssNgShakeDetector.h"

#include <cmath>

namespace {

constexpr qreal LeastWay = 12.0; ///< pixels in one direction that count as a movement

qreal length(const QPointF &vector)
{
    return std::hypot(vector.x(), vector.y());
}

} // namespace

OssNgShakeDetector::OssNgShakeDetector(const QPointF &start)
    : m_turn(start)
    , m_farthest(start)
{
}

bool OssNgShakeDetector::turnsBack(const QPointF &position)
{
    const QPointF step = position - m_farthest;
    const qreal along = QPointF::dotProduct(step, m_direction);
    if (!m_direction.isNull() && along < 0.0) {
        if (along > -LeastWay)
            return false; // may still be an unsteady hand
        m_turn = m_farthest;
        m_farthest = position;
        m_direction = step / length(step);
        return true;
    }
    m_farthest = position;
    const QPointF way = position - m_turn;
    if (length(way) >= LeastWay)
        m_direction = way / length(way);
    return false;
}

int OssNgShakeDetector::move(const QPointF &position, qint64 now, int window)
{
    if (turnsBack(position))
        m_reversals.append(now);
    while (!m_reversals.isEmpty() && now - m_reversals.first() > window)
        m_reversals.removeFirst();
    return count();
}
