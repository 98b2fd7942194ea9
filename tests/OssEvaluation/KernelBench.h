#pragma once

#include "OssEvaluation/Graph/OssEvKernel.h"
#include "OssEvaluation/Graph/OssEvOperation.h"
#include "OssEvaluation/Values/OssEvTileGrid.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

/// Texels as doubles, planar.
struct Picture
{
    int width = 0;
    int height = 0;
    int channels = 0;
    std::vector<std::vector<float>> planes;

    Picture() = default;
    Picture(int w, int h, int count);

    float &at(int channel, int x, int y)
    {
        return planes[std::size_t(channel)][std::size_t(y) * std::size_t(width) + std::size_t(x)];
    }

    double at(int channel, int x, int y) const
    {
        return planes[std::size_t(channel)][std::size_t(y) * std::size_t(width) + std::size_t(x)];
    }

    /// The nearest texel of the picture.
    double clamped(int channel, int x, int y) const;

    std::array<double, 4> texel(int x, int y) const;
};

/// Smooth shapes with grain, from `low` to `high`; alphas between 0 and 1, some of them exactly 0
/// or 1, and colours premultiplied by them.
Picture randomPicture(int width, int height, int channels, std::uint32_t seed, double low = 0.0,
                      double high = 1.0);

/// What stands in each channel and texel.
Picture pictureOf(int width, int height, int channels,
                  const std::function<double(int channel, int x, int y)> &value);

/// Runs kernels of the library on pictures, past the engine, so that nothing is rounded on the way.
class KernelBench
{
public:
    explicit KernelBench(const std::string &kernel, const OssEvParameters &parameters = {});

    KernelBench &input(const std::string &name, const Picture &picture);
    KernelBench &output(const std::string &name);
    KernelBench &patch(int number);
    KernelBench &working(const OssEvWorkingSpace &space);
    KernelBench &surface(std::shared_ptr<const OssEvSurfaceMap> map);

    /// The whole picture; width must be a multiple of 128.
    Picture run(int width, int height);

private:
    Picture runPoint(const OssEvPointOperation &operation, int width, int height);
    Picture runArea(const OssEvAreaOperation &operation, int width, int height);
    OssEvTileGrid gridOf(const OssEvAreaOperation &operation, const OssEvTap &tap) const;
    int outputChannels() const;

    const OssEvKernel *m_kernel;
    OssEvParameters m_parameters;
    std::vector<Picture> m_inputs;
    int m_output = 0;
    OssEvFrame m_frame;
    OssEvWorkingSpace m_working;
    std::shared_ptr<const OssEvSurfaceMap> m_surface;
};

using Texel = std::array<double, 4>;
using Reference = std::function<Texel(int x, int y)>;

/// Mean of the differences from the reference over all texels and channels.
double meanError(const Picture &picture, const Reference &reference);

/// The bound for every kernel.
constexpr double MeanErrorBound = 1e-4;

inline void expectPicture(const Picture &picture, const Reference &reference,
                          double bound = MeanErrorBound)
{
    EXPECT_LE(meanError(picture, reference), bound);
}
