#include "OssEvaluation/Kernels/Logic/ExpressionPlaces.h"

#include "OssEvaluation/Geometry/OssEvSurfaceMap.h"
#include "OssEvaluation/Graph/OssEvOperation.h"
#include "OssEvaluation/Kernels/Scratch.h"
#include "OssEvaluation/Values/OssEvPatch.h"

#include <algorithm>
#include <cstddef>

namespace {

using Places = OssEvExpression::Places;

/// Positions and normals of one row, and the planes that they go to.
constexpr std::size_t InSpace = 6;

/// A plane for each place that is asked for.
class Filling
{
public:
    Filling(const OssEvStrip &strip, const OssEvExpression &expression, OssEvScratch *scratch)
        : m_strip(strip)
        , m_column(float(OssEvPatch::column(strip.frame.patch)))
        , m_row(float(OssEvPatch::row(strip.frame.patch)))
    {
        for (int place = 0; place < OssEvExpression::PlaceCount; ++place) {
            if (expression.readsPlace(place))
                m_to[std::size_t(place)] = scratch->floats(strip.texels());
        }
        m_line = scratch->floats(std::size_t(strip.width) * InSpace);
    }

    OssEvExpressionPlaces::Planes run() const
    {
        fill(Places::Patch, float(m_strip.frame.patch));
        fill(Places::Column, m_column);
        fill(Places::Row, m_row);
        for (int y = 0; y < m_strip.rows; ++y) {
            fillPatch(y);
            fillSpace(y);
        }
        OssEvExpressionPlaces::Planes planes{};
        std::copy(m_to.begin(), m_to.end(), planes.begin());
        return planes;
    }

private:
    float *rowOf(int place, int y) const
    {
        float *plane = m_to[std::size_t(place)];
        return plane == nullptr ? nullptr : plane + std::ptrdiff_t(y) * m_strip.width;
    }

    void fill(int place, float value) const
    {
        if (m_to[std::size_t(place)] != nullptr)
            std::fill_n(m_to[std::size_t(place)], m_strip.texels(), value);
    }

    float along(int x) const { return (float(m_strip.x + x) + 0.5F) / float(m_strip.frame.width); }

    float up(int y) const
    {
        return 1.0F - (float(m_strip.y + y) + 0.5F) / float(m_strip.frame.height);
    }

    void fillPatch(int y) const
    {
        float *u = rowOf(Places::U, y);
        float *v = rowOf(Places::V, y);
        for (int x = 0; u != nullptr && x < m_strip.width; ++x)
            u[x] = along(x);
        if (v != nullptr)
            std::fill_n(v, m_strip.width, up(y));
    }

    float *line(std::size_t k) const { return m_line + k * std::size_t(m_strip.width); }

    /// The surface, else the plane of the patches.
    void fillSpace(int y) const
    {
        const auto *first = m_to.begin() + Places::X;
        const bool isWanted = std::any_of(first, first + InSpace,
                                          [](const float *plane) { return plane != nullptr; });
        if (!isWanted)
            return;
        if (m_strip.surface != nullptr) {
            m_strip.surface->positions(m_strip.x, m_strip.y + y, m_strip.width,
                                       {line(0), line(1), line(2)});
            m_strip.surface->normals(m_strip.x, m_strip.y + y, m_strip.width,
                                     {line(3), line(4), line(5)});
        } else {
            for (int x = 0; x < m_strip.width; ++x)
                line(0)[x] = along(x) + m_column;
            std::fill_n(line(1), m_strip.width, up(y) + m_row);
            for (std::size_t k = 2; k < InSpace; ++k)
                std::fill_n(line(k), m_strip.width, k + 1 < InSpace ? 0.0F : 1.0F);
        }
        for (std::size_t k = 0; k < InSpace; ++k) {
            float *to = rowOf(Places::X + int(k), y);
            if (to != nullptr)
                std::copy_n(line(k), m_strip.width, to);
        }
    }

    const OssEvStrip &m_strip;
    float m_column;
    float m_row;
    std::array<float *, OssEvExpression::PlaceCount> m_to{};
    float *m_line = nullptr;
};

} // namespace

OssEvExpressionPlaces::Planes OssEvExpressionPlaces::of(const OssEvStrip &strip,
                                                        const OssEvExpression &expression,
                                                        OssEvScratch *scratch)
{
    return Filling(strip, expression, scratch).run();
}
