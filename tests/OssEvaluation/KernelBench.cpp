#include "OssEvaluation/KernelBench.h"

#include "OssEvaluation/Geometry/OssEvSurfaceMap.h"
#include "OssEvaluation/Graph/OssEvKernelLibrary.h"
#include "OssEvaluation/Values/OssEvBuffer.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr int Size = OssEvTile::Size;

// The next smaller picture, by the weights that kernels are promised for reduced inputs.
Picture halved(const Picture &from)
{
    constexpr std::array<double, 4> Weights{0.125, 0.375, 0.375, 0.125};
    return pictureOf(
        (from.width + 1) / 2, (from.height + 1) / 2, from.channels, [&](int channel, int x, int y) {
            double sum = 0.0;
            for (std::size_t i = 0; i < 16; ++i) {
                sum += Weights[i % 4] * Weights[i / 4]
                       * from.clamped(channel, 2 * x - 1 + int(i % 4), 2 * y - 1 + int(i / 4));
            }
            return sum;
        });
}

OssEvTilePointer tileOf(const Picture &picture, int tileX, int tileY)
{
    auto tile = std::make_shared<OssEvTile>(picture.channels, OssEvTile::Format::Float);
    for (int channel = 0; channel < picture.channels; ++channel) {
        for (int y = 0; y < Size; ++y) {
            for (int x = 0; x < Size; ++x) {
                tile->floatPlane(channel)[y * Size + x] = float(
                    picture.clamped(channel, tileX * Size + x, tileY * Size + y));
            }
        }
    }
    return tile;
}

} // namespace

Picture::Picture(int w, int h, int count)
    : width(w)
    , height(h)
    , channels(count)
    , planes(std::size_t(count), std::vector<float>(std::size_t(w) * std::size_t(h)))
{
}

double Picture::clamped(int channel, int x, int y) const
{
    return at(channel, std::clamp(x, 0, width - 1), std::clamp(y, 0, height - 1));
}

std::array<double, 4> Picture::texel(int x, int y) const
{
    std::array<double, 4> result{};
    for (int channel = 0; channel < channels; ++channel)
        result[std::size_t(channel)] = at(channel, x, y);
    return result;
}

Picture randomPicture(int width, int height, int channels, std::uint32_t seed, double low,
                      double high)
{
    Picture picture(width, height, channels);
    std::uint32_t state = seed * 2654435761U + 12345U;
    const auto chance = [&state] {
        state = state * 1664525U + 1013904223U;
        return double(state >> 8) / 16777216.0;
    };
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const double alpha = channels == 4 ? std::clamp(chance() * 1.6 - 0.3, 0.0, 1.0) : 1.0;
            for (int channel = 0; channel < channels; ++channel) {
                const double wave = std::sin(0.07 * x + channel) * std::cos(0.05 * y + seed);
                const double value = std::clamp(0.5 + 0.4 * wave + 0.3 * (chance() - 0.5), 0.0,
                                                1.0);
                picture.at(channel, x,
                           y) = float(channel == 3 ? alpha : (low + (high - low) * value) * alpha);
            }
        }
    }
    return picture;
}

Picture pictureOf(int width, int height, int channels,
                  const std::function<double(int channel, int x, int y)> &value)
{
    Picture picture(width, height, channels);
    for (int channel = 0; channel < channels; ++channel) {
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x)
                picture.at(channel, x, y) = float(value(channel, x, y));
        }
    }
    return picture;
}

KernelBench::KernelBench(const std::string &kernel, const OssEvParameters &parameters)
    : m_kernel(OssEvKernelLibrary::find(kernel))
{
    if (m_kernel == nullptr) {
        ADD_FAILURE() << "no kernel " << kernel;
        std::abort();
    }
    const OssEvResult result = m_kernel->normalise(parameters, &m_parameters);
    EXPECT_TRUE(result) << result.error();
    m_inputs.resize(m_kernel->inputs.size());
}

KernelBench &KernelBench::input(const std::string &name, const Picture &picture)
{
    const int index = m_kernel->inputIndex(name);
    EXPECT_GE(index, 0) << name;
    m_inputs[std::size_t(index)] = picture;
    return *this;
}

KernelBench &KernelBench::output(const std::string &name)
{
    m_output = m_kernel->outputIndex(name);
    EXPECT_GE(m_output, 0) << name;
    return *this;
}

KernelBench &KernelBench::patch(int number)
{
    m_frame.patch = number;
    return *this;
}

KernelBench &KernelBench::working(const OssEvWorkingSpace &space)
{
    m_working = space;
    return *this;
}

KernelBench &KernelBench::surface(std::shared_ptr<const OssEvSurfaceMap> map)
{
    m_surface = std::move(map);
    return *this;
}

Picture KernelBench::run(int width, int height)
{
    m_frame.width = width;
    m_frame.height = height;
    std::vector<bool> connected;
    for (const Picture &input : m_inputs)
        connected.push_back(input.channels > 0);
    const auto operation = m_kernel->make(
        OssEvKernelSetup(m_parameters, connected, m_output, m_frame, m_working));
    if (const auto *point = dynamic_cast<const OssEvPointOperation *>(operation.get()))
        return runPoint(*point, width, height);
    return runArea(dynamic_cast<const OssEvAreaOperation &>(*operation), width, height);
}

int KernelBench::outputChannels() const
{
    if (m_kernel->outputChannels) {
        return m_kernel->outputChannels(OssEvKernelSetup(
            m_parameters, std::vector<bool>(m_inputs.size(), false), m_output, m_frame));
    }
    const int channels = m_kernel->outputs[std::size_t(m_output)].channels;
    return channels > 0 ? channels : m_inputs[0].channels;
}

Picture KernelBench::runPoint(const OssEvPointOperation &operation, int width, int height)
{
    Picture result(width, height, outputChannels());
    const auto texels = std::size_t(width);
    const std::size_t bytes = texels * sizeof(float) * 4;
    std::vector<OssEvBuffer> buffers;
    std::vector<OssEvStripInput> inputs(m_inputs.size());
    for (std::size_t i = 0; i <= inputs.size(); ++i)
        buffers.emplace_back(bytes);
    for (int y = 0; y < height; ++y) {
        for (std::size_t i = 0; i < inputs.size(); ++i) {
            const Picture &picture = m_inputs[i];
            const auto fallback = operation.inputDefault(i);
            inputs[i].connected = picture.channels > 0;
            inputs[i].channels = std::max(picture.channels, m_kernel->inputs[i].channels);
            for (std::size_t k = 0; k < 4; ++k) {
                float *plane = buffers[i].as<float>() + k * texels;
                inputs[i].plane[k] = plane;
                if (int(k) < picture.channels) {
                    const float *from = picture.planes[k].data() + std::size_t(y) * texels;
                    std::copy_n(from, texels, plane);
                } else {
                    std::fill_n(plane, texels, fallback[k]);
                }
            }
        }
        OssEvStrip strip;
        strip.frame = m_frame;
        strip.y = y;
        strip.width = width;
        strip.rows = 1;
        strip.inputs = inputs.data();
        strip.outputChannels = result.channels;
        for (std::size_t k = 0; k < 4; ++k)
            strip.output[k] = buffers.back().as<float>() + k * texels;
        strip.surface = m_surface.get();
        operation.run(strip);
        for (int k = 0; k < result.channels; ++k)
            std::copy_n(strip.output[std::size_t(k)], texels, &result.at(k, 0, y));
    }
    return result;
}

OssEvTileGrid KernelBench::gridOf(const OssEvAreaOperation &operation, const OssEvTap &tap) const
{
    Picture picture = m_inputs[tap.input];
    OssEvFrame frame = m_frame;
    if (picture.channels == 0) {
        return {frame, operation.inputDefault(tap.input),
                std::max(1, m_kernel->inputs[tap.input].channels)};
    }
    for (int i = 0; i < tap.reduction; ++i)
        picture = halved(picture);
    frame.width = picture.width;
    frame.height = picture.height;
    OssEvTileGrid grid(frame, frame.region(), picture.channels);
    for (int y = 0; y < grid.tiles().height; ++y) {
        for (int x = 0; x < grid.tiles().width; ++x)
            grid.setTile(x, y, tileOf(picture, x, y));
    }
    return grid;
}

Picture KernelBench::runArea(const OssEvAreaOperation &operation, int width, int height)
{
    Picture result(width, height, outputChannels());
    std::vector<OssEvTileGrid> grids;
    for (const OssEvTap &tap : operation.taps())
        grids.push_back(gridOf(operation, tap));
    OssEvBuffer buffer(std::size_t(256) * 256 * 4 * sizeof(float));
    for (int y = 0; y < height; y += 256) {
        for (int x = 0; x < width; x += 256) {
            OssEvBlock block;
            block.frame = m_frame;
            block.region = {x, y, std::min(256, width - x), std::min(256, height - y)};
            block.inputs = grids.data();
            block.stride = 256;
            for (std::size_t k = 0; k < 4; ++k)
                block.output[k] = buffer.as<float>() + k * 256 * 256;
            block.outputChannels = result.channels;
            block.surface = m_surface.get();
            operation.run(block);
            for (int k = 0; k < result.channels; ++k) {
                for (int row = 0; row < block.region.height; ++row) {
                    std::copy_n(block.output[std::size_t(k)] + std::ptrdiff_t(row) * 256,
                                block.region.width, &result.at(k, x, y + row));
                }
            }
        }
    }
    return result;
}

double meanError(const Picture &picture, const Reference &reference)
{
    double sum = 0.0;
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            const std::array<double, 4> wanted = reference(x, y);
            for (int k = 0; k < picture.channels; ++k)
                sum += std::abs(picture.at(k, x, y) - wanted[std::size_t(k)]);
        }
    }
    const double mean = sum / (double(picture.width) * picture.height * picture.channels);
    return std::isfinite(mean) ? mean : std::numeric_limits<double>::infinity();
}
