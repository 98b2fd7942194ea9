#include "OssEvaluation/Paint/OssEvStamp.h"

#include "OssEvaluation/Files/SvgInput.h"

#include <OpenImageIO/imagebuf.h>
#include <OpenImageIO/imagebufalgo.h>
#include <OpenImageIO/imageio.h>

#include <algorithm>
#include <cmath>
#include <exception>

namespace {

constexpr int LargestPicture = 16384;

OssEvResult refused(const std::string &path, const std::string &reason)
{
    return OssEvResult::failure("Cannot use \"" + path + "\" as a stamp: " + reason);
}

std::vector<float> alphaOf(const OIIO::ImageBuf &picture)
{
    const int size = picture.spec().width;
    const int alpha = picture.spec().alpha_channel;
    std::vector<float> coverage(std::size_t(size) * std::size_t(size), 0.0F);
    float least = 1.0F;
    for (int y = 0; alpha >= 0 && y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            const float value = picture.getchannel(x, y, 0, alpha);
            coverage[std::size_t(y) * std::size_t(size) + std::size_t(x)] = value;
            least = std::min(least, value);
        }
    }
    if (alpha >= 0 && least < 1.0F)
        return coverage;
    const int colors = std::min(3, picture.nchannels());
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            float light = 0.0F;
            for (int c = 0; c < colors; ++c)
                light += picture.getchannel(x, y, 0, c) / float(colors);
            coverage[std::size_t(y) * std::size_t(size) + std::size_t(x)] = 1.0F - light;
        }
    }
    return coverage;
}

OssEvResult readSquare(const std::string &path, std::vector<float> *coverage, int *size)
{
    OssEvSvgInput::makeKnown();
    const auto input = OIIO::ImageInput::open(path);
    if (!input)
        return refused(path, OIIO::geterror());
    OIIO::ImageSpec spec(input->spec().width, input->spec().height, input->spec().nchannels,
                         OIIO::TypeDesc::FLOAT);
    spec.alpha_channel = input->spec().alpha_channel;
    if (std::max(spec.width, spec.height) > LargestPicture)
        return refused(path, "it is larger than 16384 pixels");
    std::vector<float> pixels(spec.image_pixels() * std::size_t(spec.nchannels));
    if (!input->read_image(0, 0, 0, -1, OIIO::TypeDesc::FLOAT, pixels.data()))
        return refused(path, input->geterror());
    const OIIO::ImageBuf picture(spec, pixels.data());
    const int across = std::max(picture.spec().width, picture.spec().height);
    // Centred; paper around a picture of ink is white.
    OIIO::ImageSpec square(across, across, picture.nchannels(), OIIO::TypeDesc::FLOAT);
    square.alpha_channel = picture.spec().alpha_channel;
    OIIO::ImageBuf centred(square);
    const bool isInk = square.alpha_channel < 0;
    const std::vector<float> around(std::size_t(picture.nchannels()), isInk ? 1.0F : 0.0F);
    OIIO::ImageBufAlgo::fill(centred, around);
    if (!OIIO::ImageBufAlgo::paste(centred, (across - picture.spec().width) / 2,
                                   (across - picture.spec().height) / 2, 0, 0, picture))
        return refused(path, centred.geterror());
    *size = std::min(across, OssEvStamp::LargestSize);
    if (*size < across)
        centred = OIIO::ImageBufAlgo::resize(centred, "", 0.0F, OIIO::ROI(0, *size, 0, *size));
    *coverage = alphaOf(centred);
    return {};
}

} // namespace

OssEvResult OssEvStamp::read(const std::string &path, Pointer *stamp)
{
    // The library may throw for what it cannot hold in memory.
    try {
        std::vector<float> coverage;
        int size = 0;
        const OssEvResult result = readSquare(path, &coverage, &size);
        if (!result)
            return result;
        const bool covers = std::any_of(coverage.cbegin(), coverage.cend(),
                                        [](float value) { return value > 0.0F; });
        if (!covers)
            return refused(path, "it is empty");
        *stamp = std::make_shared<const OssEvStamp>(size, std::move(coverage), path);
        return {};
    } catch (const std::exception &error) {
        return refused(path, error.what());
    }
}

OssEvStamp::OssEvStamp(int size, std::vector<float> coverage, std::string name)
    : m_name(std::move(name))
{
    for (float &value : coverage)
        value = value > 0.0F ? std::min(value, 1.0F) : 0.0F; // what is no number covers nothing
    m_levels.push_back({size, std::move(coverage)});
    while (m_levels.back().size > 1) {
        const Level &fine = m_levels.back();
        const int half = (fine.size + 1) / 2;
        std::vector<float> values;
        values.reserve(std::size_t(half) * std::size_t(half));
        for (int y = 0; y < half; ++y) {
            for (int x = 0; x < half; ++x)
                values.push_back((fine.at(2 * x, 2 * y) + fine.at(2 * x + 1, 2 * y)
                                  + fine.at(2 * x, 2 * y + 1) + fine.at(2 * x + 1, 2 * y + 1))
                                 / 4.0F);
        }
        m_levels.push_back({half, std::move(values)});
    }
}

float OssEvStamp::Level::at(int x, int y) const
{
    if (x < 0 || y < 0 || x >= size || y >= size)
        return 0.0F;
    return values[std::size_t(y) * std::size_t(size) + std::size_t(x)];
}

float OssEvStamp::Level::between(double x, double y) const
{
    const double px = x * size - 0.5;
    const double py = y * size - 0.5;
    const int left = int(std::floor(px));
    const int top = int(std::floor(py));
    const auto right = float(px - left);
    const auto down = float(py - top);
    return (at(left, top) * (1.0F - right) + at(left + 1, top) * right) * (1.0F - down)
           + (at(left, top + 1) * (1.0F - right) + at(left + 1, top + 1) * right) * down;
}

float OssEvStamp::coverage(double x, double y, double across) const
{
    if (std::abs(x) >= 1.0 || std::abs(y) >= 1.0)
        return 0.0F;
    std::size_t level = 0;
    while (level + 1 < m_levels.size() && m_levels[level].size > 1.5 * across)
        ++level;
    return m_levels[level].between((x + 1.0) / 2.0, (y + 1.0) / 2.0);
}
