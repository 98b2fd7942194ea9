#pragma once

#include "OssEvaluation/OssEvaluation_export.h"

#include <functional>
#include <optional>
#include <vector>

/// Where the dabs of a stroke fall: at small distances along a smooth curve through the places, which
/// depends on these alone and not on when they came. Lengths in any one unit.
class OSSEVALUATION_EXPORT OssEvStrokePath
{
public:
    struct Point
    {
        double x;
        double y;
        double pressure;
    };

    /// Puts a dab down; gives how far it is to the next.
    using Dab = std::function<double(const Point &)>;

    explicit OssEvStrokePath(Dab dab);

    /// Goes on to a place. Dabs come up to the place before it, as where the curve leads shapes how it
    /// gets there.
    void moveTo(const Point &to);
    /// The rest of the curve, when there will be no further place.
    void finish();

private:
    /// As far on from `end` as `start` lies before it.
    static Point beyond(const Point &start, const Point &end)
    {
        return {2.0 * end.x - start.x, 2.0 * end.y - start.y, end.pressure};
    }

    void curveTo(const Point &before, const Point &from, const Point &to, const Point &after);
    void lineTo(const Point &to);
    double put(const Point &point) const;

    Dab m_dab;
    std::vector<Point> m_recent; ///< the last places, three at most
    std::optional<Point> m_last; ///< up to where the curve has dabs
    double m_toNext = 0.0;       ///< to go before the next dab
};
