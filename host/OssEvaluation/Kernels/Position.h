#pragma once

#include "OssEvaluation/Graph/OssEvOperation.h"

#include <array>

/// Where the texels of a strip lie in space, for kernels that fill space: what is connected to the
/// input `input`, else the surface, else the plane of the patches (u, v, 0), in which neighbouring
/// patches continue each other. `plane` asks for that plane even where there is a surface.
struct OssEvPositions
{
    std::array<const float *, 3> plane{};
    /// z is 0 everywhere.
    bool flat = false;

    /// Valid until the next call on the same thread.
    static OssEvPositions of(const OssEvStrip &strip, std::size_t input, bool plane = false);
};
