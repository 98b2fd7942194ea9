#pragma once

#include "OssEvaluation/Values/OssEvBuffer.h"

#include <cstddef>
#include <vector>

/// Memory for the length of one call, from what earlier calls on the same thread have used: fresh
/// memory would cost more than most kernels.
class OssEvScratch
{
public:
    OssEvScratch() = default;
    OssEvScratch(const OssEvScratch &) = delete;
    OssEvScratch &operator=(const OssEvScratch &) = delete;
    ~OssEvScratch();

    /// 64-byte aligned, not initialised. Throws std::bad_alloc.
    float *floats(std::size_t count);

private:
    std::vector<OssEvBuffer> m_taken;
};

/// Plane of floats with rows of whole vectors and room behind each for one more.
struct OssEvPlane
{
    OssEvPlane(OssEvScratch *scratch, int columns, int lines);

    /// Over memory of somebody else's.
    OssEvPlane(float *memory, int columns, int lines, int step)
        : width(columns)
        , height(lines)
        , stride(step)
        , data(memory)
    {
    }

    float *row(int y) const { return data + std::ptrdiff_t(y) * stride; }

    int width;
    int height;
    int stride;
    float *data;
};
