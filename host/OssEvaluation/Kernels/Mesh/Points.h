#pragma once

#include "OssEvaluation/Geometry/OssEvMeshFacts.h"
#include "OssEvaluation/Geometry/OssEvSurfaceMap.h"
#include "OssEvaluation/Graph/OssEvKernel.h"
#include "OssEvaluation/Graph/OssEvOperation.h"

#include <array>
#include <cstddef>
#include <vector>

/// A texel that lies on the surface.
struct OssEvSurfacePoint
{
    using Vector = std::array<float, 3>;

    std::size_t index = 0; ///< in the planes of the strip
    int x = 0;             ///< in the frame
    int y = 0;
    int face = 0;
    Vector position{};
    Vector normal{}; ///< of length 1
};

/// What kernels of the mesh have in common: their texels, lengths, and directions that people set by angles.
namespace OssEvSurfacePoints {

using Vector = OssEvSurfacePoint::Vector;

/// Where the points of one row of a strip lie.
class Row
{
public:
    explicit Row(int width);

    void read(const OssEvSurfaceMap &surface, int x, int y);

    Vector position(int x) const { return at(0, x); }

    Vector normal(int x) const { return at(3, x); }

private:
    Vector at(std::size_t first, int x) const
    {
        const auto i = std::size_t(x);
        return {m_values[first * m_width + i], m_values[(first + 1) * m_width + i],
                m_values[(first + 2) * m_width + i]};
    }

    std::size_t m_width;
    std::vector<float> m_values;
};

/// The normal that is connected, where it is one; else the surface's own.
Vector normalAt(const OssEvStripInput *given, std::size_t i, const Vector &own);

/// Calls `visit(point)` for the texels of the strip that a face answers for. `normals`: an input that stands in
/// for the surface's; null for none.
template <class Visit>
void each(const OssEvStrip &strip, const OssEvStripInput *normals, const Visit &visit)
{
    if (strip.surface == nullptr)
        return;
    Row row(strip.width);
    for (int y = 0; y < strip.rows; ++y) {
        const int line = strip.y + y;
        if (strip.cancel != nullptr && strip.cancel->isCancelled())
            return;
        if (line < 0 || line >= strip.frame.height)
            continue;
        row.read(*strip.surface, strip.x, line);
        for (int x = 0; x < strip.width && strip.x + x < strip.frame.width; ++x) {
            const int face = strip.surface->face(strip.x + x, line);
            if (face < 0)
                continue;
            const std::size_t i = std::size_t(y) * std::size_t(strip.width) + std::size_t(x);
            visit(OssEvSurfacePoint{i, strip.x + x, line, face, row.position(x),
                                    normalAt(normals, i, row.normal(x))});
        }
    }
}

/// What lengths that users give are counted in.
enum Unit { ObjectSize, Units };

OssEvParameterDescription unitParameter(Unit fallback = ObjectSize);

/// One of them in the object's space; 1 without a surface.
float lengthOf(int unit, const OssEvSurfaceMap *surface);

enum Space { World, Object };

OssEvParameterDescription spaceParameter();

/// Around the y axis from +z towards +x, and above the horizon; in degrees. Of length 1.
Vector direction(double azimuth, double elevation);

Vector normalized(const Vector &vector);

inline float dot(const Vector &a, const Vector &b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

} // namespace OssEvSurfacePoints

/// Directions about an axis, in a pattern that is shifted for each texel, so that what is left of it is noise,
/// not bands: the two-dimensional sequence of M. Roberts, "The Unreasonable Effectiveness of Quasirandom
/// Sequences", 2018, spread by the cosine.
class OssEvRayFan
{
public:
    using Vector = OssEvSurfacePoint::Vector;

    /// `spread`: the sine of the widest angle.
    OssEvRayFan(const OssEvSurfacePoint &point, const Vector &axis, float spread);

    /// Of length 1.
    Vector direction(int ray) const;

private:
    Vector m_axis;
    Vector m_a{};
    Vector m_b{};
    float m_spread;
    float m_turnX;
    float m_turnY;
};
