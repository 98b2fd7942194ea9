#pragma once

#include "OssRender/OssRender_export.h"
#include "OssRender/Values/OssRdPicture.h"

#include <array>

/// A surrounding made ready for surfaces: what a mirror of each roughness sees of it, and what falls
/// on a dull surface. Immutable; made on any thread, in a few tenths of a second.
struct OSSRENDER_EXPORT OssRdLightProbe
{
    static constexpr int FaceSize = 256;
    static constexpr int Levels = 6;
    static constexpr int DullSize = 32;

    /// Cube faces in OpenGL's order (+x, -x, +y, -y, +z, -z) and orientation, by level. Level n of
    /// 0 to Levels-1 is for the roughness n / (Levels-1), and half as large as the one before.
    std::array<std::array<OssRdPicture, 6>, Levels> faces;
    /// Irradiance over pi by the normal, in the same way.
    std::array<OssRdPicture, 6> dull;

    static OssRdLightProbe of(const OssRdPicture &surrounding);

    /// Through the middle of a texel of a face of that size; not of length 1.
    static glm::vec3 direction(int face, int x, int y, int size);
};
