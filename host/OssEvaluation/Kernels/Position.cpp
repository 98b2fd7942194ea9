#include "OssEvaluation/Kernels/Position.h"

#include "OssEvaluation/Geometry/OssEvSurfaceMap.h"
#include "OssEvaluation/Values/OssEvBuffer.h"
#include "OssEvaluation/Values/OssEvPatch.h"

namespace {

void fillFromPlane(const OssEvStrip &strip, const std::array<float *, 3> &to)
{
    const OssEvFrame &frame = strip.frame;
    std::size_t i = 0;
    for (int row = 0; row < strip.rows; ++row) {
        const double v = 1.0 - (strip.y + row + 0.5) / frame.height;
        const auto y = float(v + OssEvPatch::row(frame.patch));
        for (int x = 0; x < strip.width; ++x, ++i) {
            const double u = (strip.x + x + 0.5) / frame.width;
            to[0][i] = float(u + OssEvPatch::column(frame.patch));
            to[1][i] = y;
            to[2][i] = 0.0F;
        }
    }
}

} // namespace

OssEvPositions OssEvPositions::of(const OssEvStrip &strip, std::size_t input, bool plane)
{
    const OssEvStripInput &given = strip.inputs[input];
    if (given.connected)
        return {{given.plane[0], given.plane[1], given.plane[2]}, false};

    thread_local OssEvBuffer buffer;
    const std::size_t count = strip.texels();
    buffer.reserve(count * 3 * sizeof(float));
    auto *first = buffer.as<float>();
    const std::array<float *, 3> to{first, first + count, first + 2 * count};
    const bool flat = plane || strip.surface == nullptr;
    if (flat) {
        fillFromPlane(strip, to);
    } else {
        for (int row = 0; row < strip.rows; ++row) {
            const std::size_t offset = std::size_t(row) * std::size_t(strip.width);
            strip.surface->positions(strip.x, strip.y + row, strip.width,
                                     {to[0] + offset, to[1] + offset, to[2] + offset});
        }
    }
    return {{to[0], to[1], to[2]}, flat};
}
