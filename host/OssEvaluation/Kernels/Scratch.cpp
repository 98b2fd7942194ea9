#include "OssEvaluation/Kernels/Scratch.h"

#include <algorithm>

namespace {

constexpr std::size_t MaximumIdle = 24;
constexpr int Lanes = 16;

std::vector<OssEvBuffer> &idle()
{
    thread_local std::vector<OssEvBuffer> buffers;
    return buffers;
}

} // namespace

OssEvScratch::~OssEvScratch()
{
    std::vector<OssEvBuffer> &buffers = idle();
    for (OssEvBuffer &buffer : m_taken)
        buffers.push_back(std::move(buffer));
    // The largest are kept: they fit most often.
    std::sort(buffers.begin(), buffers.end(),
              [](const OssEvBuffer &a, const OssEvBuffer &b) { return a.size() > b.size(); });
    if (buffers.size() > MaximumIdle)
        buffers.resize(MaximumIdle);
}

float *OssEvScratch::floats(std::size_t count)
{
    const std::size_t bytes = count * sizeof(float);
    std::vector<OssEvBuffer> &buffers = idle();
    // Sorted by falling size: the last one that is large enough fits best.
    auto found = std::find_if(buffers.rbegin(), buffers.rend(), [bytes](const OssEvBuffer &buffer) {
        return buffer.size() >= bytes;
    });
    if (found != buffers.rend() && found->size() <= 4 * bytes + 4096) {
        m_taken.push_back(std::move(*found));
        buffers.erase(std::next(found).base());
    } else {
        m_taken.emplace_back(bytes);
    }
    return m_taken.back().as<float>();
}

// An odd number of cache lines from row to row keeps columns out of each other's cache sets.
OssEvPlane::OssEvPlane(OssEvScratch *scratch, int columns, int lines)
    : width(columns)
    , height(lines)
    , stride((((columns + Lanes - 1) / Lanes + 1) | 1) * Lanes)
    , data(scratch->floats(std::size_t(stride) * std::size_t(lines + 1)))
{
}
