#pragma once

#include "OssEvaluation/Geometry/OssEvSurfaceMap.h"

#include <array>
#include <cstddef>

/// How a patch lies on the object at a texel, and a way on the object as the patch sees it.
struct OssEvSurfaceAxes
{
    double uu = 0.0; ///< squares of lengths on the object, of a step along u and along v
    double vv = 0.0;
    double u = 0.0; ///< the way in texture coordinates
    double v = 0.0;
    bool exist =
        false; ///< false where the patch has no area on the object; all else means nothing then

    /// The texel counts from the top left of the surface's patch.
    template <class Vector>
    static OssEvSurfaceAxes of(const OssEvSurfaceMap &surface, int x, int y, const Vector &way)
    {
        std::array<double, 3> alongU{};
        std::array<double, 3> alongV{};
        surface.derivatives(x, y, &alongU, &alongV);
        OssEvSurfaceAxes axes;
        double uv = 0.0;
        double du = 0.0;
        double dv = 0.0;
        for (std::size_t k = 0; k < 3; ++k) {
            axes.uu += alongU[k] * alongU[k];
            uv += alongU[k] * alongV[k];
            axes.vv += alongV[k] * alongV[k];
            du += alongU[k] * double(way[k]);
            dv += alongV[k] * double(way[k]);
        }
        const double determinant = axes.uu * axes.vv - uv * uv;
        axes.exist = determinant > 1e-18;
        if (axes.exist) {
            axes.u = (du * axes.vv - dv * uv) / determinant;
            axes.v = (dv * axes.uu - du * uv) / determinant;
        }
        return axes;
    }
};
