#pragma once

#include "OssNodeGraph/OssNodeGraph_export.h"

#include <QPointF>
#include <QVector>

/// Counts how often a pointer turns back within a time, in whatever direction it is shaken.
/// Positions are pixels, times milliseconds that never fall.
class OSSNODEGRAPH_EXPORT OssNgShakeDetector
{
public:
    explicit OssNgShakeDetector(const QPointF &start = {});

    /// Returns the reversals of the last `window` milliseconds.
    int move(const QPointF &position, qint64 now, int window);

    int count() const { return m_reversals.size(); }

    void reset() { m_reversals.clear(); }

private:
    bool turnsBack(const QPointF &position);

    QPointF m_turn;      ///< where it turned last
    QPointF m_farthest;  ///< on the way since then
    QPointF m_direction; ///< unit vector; null until it went far enough
    QVector<qint64> m_reversals;
};
