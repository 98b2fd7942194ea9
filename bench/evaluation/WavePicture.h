#pragma once

#include "OssEvaluation/Schedule/OssEvImageProvider.h"
#include "OssEvaluation/Values/OssEvKey.h"
#include "OssEvaluation/Values/OssEvTile.h"

#include <cmath>
#include <ctime>
#include <memory>
#include <vector>

inline double processSeconds()
{
    timespec time = {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return double(time.tv_sec) + double(time.tv_nsec) / 1e9;
}

/// One picture of smooth shapes, with alpha, whatever its name.
class WavePicture : public OssEvImageProvider
{
public:
    explicit WavePicture(int edge)
        : m_edge(edge)
        , m_tiles(edge / OssEvTile::Size)
    {
        for (int tile = 0; tile < m_tiles * m_tiles; ++tile) {
            auto made = std::make_shared<OssEvTile>(4, OssEvTile::Format::Float);
            for (int k = 0; k < 4; ++k) {
                for (int i = 0; i < OssEvTile::Texels; ++i) {
                    const double x = tile % m_tiles * OssEvTile::Size + i % OssEvTile::Size;
                    const double y = tile / m_tiles * OssEvTile::Size + i / OssEvTile::Size;
                    made->floatPlane(k)[i] = valueAt(x, y, k);
                }
            }
            m_made.push_back(made);
        }
    }

    static float valueAt(double x, double y, int channel)
    {
        return float(0.5 + 0.45 * std::sin(0.03 * x + channel) * std::cos(0.021 * y - channel));
    }

    OssEvResult describe(const Image &image, OssEvImageInfo *info) override
    {
        info->width = m_edge;
        info->height = m_edge;
        info->channels = 4;
        info->content = OssEvKeyBuilder().add(image.name).key();
        return {};
    }

    OssEvResult read(const Image & /*image*/, int /*reduction*/, int tileRow,
                     const OssEvCancel & /*cancel*/, const Deliver &deliver) override
    {
        for (int x = 0; x < m_tiles; ++x)
            deliver(x, tileRow, m_made[std::size_t(tileRow * m_tiles + x)]);
        return {};
    }

private:
    int m_edge;
    int m_tiles; ///< along an edge
    std::vector<OssEvTilePointer> m_made;
};
