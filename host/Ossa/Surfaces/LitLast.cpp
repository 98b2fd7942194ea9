#include "Ossa/Surfaces/LitLast.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

/// Scene-linear; what differs less is not seen.
constexpr float leastSeen = 5e-4F;

bool differs(const glm::vec4 &a, const glm::vec4 &b)
{
    const glm::vec4 way = glm::abs(a - b);
    return std::max({way.r, way.g, way.b, way.a}) > leastSeen;
}

glm::vec4 changedBy(const glm::vec4 &shown, const glm::vec4 &way)
{
    glm::vec4 color = glm::max(shown + way, glm::vec4(0.0F));
    color.a = std::min(color.a, 1.0F);
    return color;
}

/// A place of a coarse picture between four pixels.
struct Between
{
    Between(double place, int count)
        : first(std::clamp(int(std::floor(place)), 0, count - 1))
        , second(std::min(first + 1, count - 1))
        , part(float(std::clamp(place - first, 0.0, 1.0)))
    {
    }

    int first;
    int second;
    float part;
};

} // namespace

void LitLast::set(OssRdImage shown, const QImage &picture, bool isSmooth)
{
    m_smooth = isSmooth ? shown : OssRdImage();
    m_shown = std::move(shown);
    m_coarse = {};
    m_picture = picture;
}

void LitLast::refine(OssRdImage shown, const QImage &picture)
{
    m_shown = std::move(shown);
    m_picture = picture;
}

OssRdImage LitLast::wholeOf(OssRdImage smooth)
{
    const bool fits = isSmooth() && smooth.width == m_smooth.width
                      && smooth.height == m_smooth.height;
    if (fits)
        take(smooth, {0, 0, smooth.width, smooth.height});
    else
        m_shown = smooth;
    m_smooth = std::move(smooth);
    m_coarse = {};
    return m_shown;
}

QRect LitLast::changed(const OssRdImage &coarse) const
{
    QRect area;
    for (int y = 0; y < coarse.height; ++y) {
        const glm::vec4 *now = &coarse.at(0, y);
        const glm::vec4 *before = &m_coarse.at(0, y);
        int left = 0;
        while (left < coarse.width && !differs(now[left], before[left]))
            ++left;
        int right = coarse.width - 1;
        while (right > left && !differs(now[right], before[right]))
            --right;
        if (left < coarse.width)
            area |= QRect(QPoint(left, y), QPoint(right, y));
    }
    if (area.isEmpty())
        return {};
    // As far as pixels of the coarse picture reach, and two by two, as software draws them.
    const double across = double(m_shown.width) / coarse.width;
    const double down = double(m_shown.height) / coarse.height;
    const QRect whole(0, 0, m_shown.width, m_shown.height);
    const int left = int(std::floor((area.left() - 1) * across)) & ~1;
    const int right = int(std::ceil((area.right() + 2) * across)) | 1;
    const int top = int(std::floor((area.top() - 1) * down));
    const int bottom = int(std::ceil((area.bottom() + 2) * down));
    const auto even = [this](int y) { // counted from below
        return (m_shown.height - y) & 1;
    };
    return QRect(QPoint(left, top - even(top)), QPoint(right, bottom - 1 + even(bottom))) & whole;
}

OssRdImage LitLast::over(const OssRdImage &coarse, const QRect &area) const
{
    OssRdImage part(area.width(), area.height());
    const auto way = [&](int x, int y) {
        return coarse.at(x, y) - m_coarse.at(x, y);
    };
    for (int y = 0; y < part.height; ++y) {
        const Between v((area.top() + y + 0.5) * coarse.height / m_shown.height - 0.5,
                        coarse.height);
        for (int x = 0; x < part.width; ++x) {
            const Between h((area.left() + x + 0.5) * coarse.width / m_shown.width - 0.5,
                            coarse.width);
            const glm::vec4 above = glm::mix(way(h.first, v.first), way(h.second, v.first), h.part);
            const glm::vec4 below = glm::mix(way(h.first, v.second), way(h.second, v.second),
                                             h.part);
            part.at(x, y) = changedBy(m_shown.at(area.left() + x, area.top() + y),
                                      glm::mix(above, below, v.part));
        }
    }
    return part;
}

OssRdImage LitLast::take(const OssRdImage &smooth, const QRect &area)
{
    OssRdImage part(area.width(), area.height());
    for (int y = 0; y < part.height; ++y) {
        for (int x = 0; x < part.width; ++x) {
            glm::vec4 &shown = m_shown.at(area.left() + x, area.top() + y);
            glm::vec4 &before = m_smooth.at(area.left() + x, area.top() + y);
            shown = changedBy(shown, smooth.at(x, y) - before);
            before = smooth.at(x, y);
            part.at(x, y) = shown;
        }
    }
    return part;
}

QImage LitLast::pictureWith(const QImage &part, const QRect &area, bool isKept)
{
    QImage picture = m_picture;
    QPainter painter(&picture);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawImage(area.topLeft(), part);
    painter.end();
    if (isKept)
        m_picture = picture;
    return picture;
}
