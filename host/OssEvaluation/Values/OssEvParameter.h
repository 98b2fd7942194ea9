#pragma once

#include "OssEvaluation/OssEvaluation_export.h"
#include "OssEvaluation/Values/OssEvKey.h"
#include "OssEvaluation/Values/OssEvRamp.h"
#include "OssEvaluation/Values/OssEvResult.h"

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// Scene-linear red, green, blue and alpha; not premultiplied.
using OssEvColor = std::array<float, 4>;

using OssEvVector2 = std::array<double, 2>;

/// Function through points of ascending x: a monotone cubic between them (F. N. Fritsch,
/// R. E. Carlson, "Monotone Piecewise Cubic Interpolation", 1980), constant beyond them.
class OSSEVALUATION_EXPORT OssEvCurve
{
public:
    OssEvCurve() = default;
    /// Sorts by x; of points with equal x the last one counts. Not finite points are left out.
    explicit OssEvCurve(std::vector<OssEvVector2> points);

    /// Reads "0,0 0.5,0.8 1,1".
    static OssEvResult fromText(std::string_view text, OssEvCurve *curve);

    const std::vector<OssEvVector2> &points() const { return m_points; }

    /// The identity when there is no point.
    double at(double x) const;

    bool operator==(const OssEvCurve &other) const { return m_points == other.m_points; }

private:
    std::vector<OssEvVector2> m_points;
    std::vector<double> m_tangents;
};

/// Value of a node's attribute as kernels see it. A choice is its text or its number.
using OssEvParameter = std::variant<double, std::int64_t, bool, std::string, OssEvColor,
                                    OssEvVector2, OssEvCurve, OssEvRamp>;

/// Sorted by name, so that equal parameters give equal keys.
using OssEvParameters = std::map<std::string, OssEvParameter, std::less<>>;

OSSEVALUATION_EXPORT void OssEvAddToKey(OssEvKeyBuilder *key, const OssEvParameter &value);
