#include "OssEvaluation/Files/OssEvImageRows.h"

#include "OssEvaluation/Values/Texels.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

constexpr int Size = OssEvTile::Size;

// Rows to be decoded at a time: memory for one band, whatever the image.
constexpr int RowsAtOnce = 128;

constexpr std::uint16_t ExponentOfHalf = 0x7C00;

// Infinity becomes the largest half, what is no number becomes 0.
std::uint16_t finiteHalf(std::uint16_t half)
{
    if ((half & ExponentOfHalf) != ExponentOfHalf)
        return half;
    return (half & 0x3FFU) != 0 ? std::uint16_t(0) : std::uint16_t((half & 0x8000U) | 0x7BFFU);
}

float finite(float value)
{
    return std::isfinite(value) ? value : 0.0F;
}

// Grey, perhaps with alpha, or colours, perhaps with more; `alpha` is the channel, or -1.
void copyTexel(const float *from, int channels, int alpha, float *to, int wanted)
{
    to[0] = finite(from[0]);
    if (wanted == 1)
        return;
    const bool grey = channels < 3;
    to[1] = finite(from[grey ? 0 : 1]);
    to[2] = finite(from[grey ? 0 : 2]);
    to[3] = alpha >= 0 && alpha < channels ? finite(from[alpha]) : 1.0F;
}

// What has no alpha keeps its colours.
void divideByAlpha(std::vector<float> *rgba)
{
    for (std::size_t i = 0; i + 3 < rgba->size(); i += 4) {
        const float alpha = (*rgba)[i + 3];
        for (std::size_t k = 0; alpha != 0.0F && k < 3; ++k)
            (*rgba)[i + k] /= alpha;
    }
}

int reducedSize(int size, int reduction)
{
    for (int i = 0; i < reduction; ++i)
        size = (size + 1) / 2;
    return size;
}

} // namespace

OssEvImageRows::OssEvImageRows(OIIO::ImageInput *input, Meaning meaning)
    : m_input(input)
    , m_meaning(std::move(meaning))
{
}

OssEvResult OssEvImageRows::readTiles(int reduction, int tileRow,
                                      const OssEvImageProvider::Deliver &deliver)
{
    OssEvResult result;
    if (reduction == 0 && copyHalves(tileRow, deliver, &result))
        return result;
    const OIIO::ImageSpec &spec = m_input->spec();
    const int scale = 1 << reduction;
    const int height = reducedSize(spec.height, reduction);
    const int count = std::min(Size, height - tileRow * Size);
    // Small portions while halving: a row of tiles may stand for a large part of the image.
    const int portion = std::max(1, std::min(count, RowsAtOnce / scale));
    Rows all;
    all.width = reducedSize(spec.width, reduction);
    for (int done = 0; done < count; done += portion) {
        const int wanted = std::min(portion, count - done);
        const int first = (tileRow * Size + done) * scale;
        Rows rows;
        result = readRows(first, std::min(wanted * scale, spec.height - first), &rows);
        if (!result)
            return result;
        for (int i = 0; i < reduction; ++i)
            halve(&rows, m_meaning.channels);
        all.values.insert(all.values.end(), rows.values.begin(), rows.values.end());
        all.height += rows.height;
    }
    makeTiles(all, tileRow, deliver);
    return {};
}

// Half colours that need no conversion go from the file to the tiles as they are.
bool OssEvImageRows::copyHalves(int tileRow, const OssEvImageProvider::Deliver &deliver,
                                OssEvResult *result)
{
    const OIIO::ImageSpec &spec = m_input->spec();
    const int channels = m_meaning.channels;
    const bool suits = spec.format == OIIO::TypeDesc::HALF && m_meaning.space.empty()
                       && !m_meaning.premultiply && m_meaning.format == OssEvTile::Format::Half
                       && spec.nchannels == channels && spec.channelformats.empty()
                       && (channels == 1 || spec.alpha_channel == channels - 1);
    if (!suits)
        return false;
    const int height = std::min(Size, spec.height - tileRow * Size);
    std::vector<char> buffer;
    if (!readNative(tileRow * Size, height, OIIO::TypeDesc::HALF, 2, &buffer)) {
        *result = unreadable();
        return true;
    }
    const auto *halves = reinterpret_cast<const std::uint16_t *>(buffer.data());
    for (int left = 0; left < spec.width; left += Size) {
        auto tile = std::make_shared<OssEvTile>(channels, OssEvTile::Format::Half);
        const int width = std::min(Size, spec.width - left);
        for (int y = 0; y < Size; ++y) {
            const std::uint16_t *row = halves
                                       + (std::size_t(std::min(y, height - 1))
                                              * std::size_t(spec.width)
                                          + std::size_t(left))
                                             * std::size_t(channels);
            for (int channel = 0; channel < channels; ++channel) {
                std::uint16_t *to = tile->halfPlane(channel) + std::size_t(y) * Size;
                for (int x = 0; x < width; ++x)
                    to[x] = finiteHalf(row[x * channels + channel]);
                std::fill(to + width, to + Size, to[width - 1]);
            }
        }
        deliver(left / Size, tileRow, std::move(tile));
    }
    return true;
}

bool OssEvImageRows::readNative(int first, int count, const OIIO::TypeDesc &type,
                                std::size_t valueSize, std::vector<char> *buffer)
{
    const OIIO::ImageSpec &spec = m_input->spec();
    const std::size_t texel = std::size_t(spec.nchannels) * valueSize;
    const std::size_t row = std::size_t(spec.width) * texel;
    if (spec.tile_width == 0) {
        buffer->resize(row * std::size_t(count));
        return m_input->read_scanlines(0, 0, spec.y + first, spec.y + first + count, 0, 0,
                                       spec.nchannels, type, buffer->data());
    }
    // Whole tiles of the file, of which the rows that are wanted stay.
    const int begin = first / spec.tile_height * spec.tile_height;
    const int end = std::min(spec.height, (first + count + spec.tile_height - 1) / spec.tile_height
                                              * spec.tile_height);
    buffer->resize(row * std::size_t(end - begin));
    if (!m_input->read_tiles(0, 0, spec.x, spec.x + spec.width, spec.y + begin, spec.y + end, 0, 1,
                             0, spec.nchannels, type, buffer->data()))
        return false;
    const auto skipped = std::ptrdiff_t(row * std::size_t(first - begin));
    buffer->erase(buffer->begin(), buffer->begin() + skipped);
    buffer->resize(row * std::size_t(count));
    return true;
}

OssEvResult OssEvImageRows::readRows(int first, int count, Rows *rows)
{
    std::vector<char> buffer;
    if (!readNative(first, count, OIIO::TypeDesc::FLOAT, sizeof(float), &buffer))
        return unreadable();
    rows->width = m_input->spec().width;
    rows->height = count;
    return convert(buffer, rows);
}

OssEvResult OssEvImageRows::convert(const std::vector<char> &buffer, Rows *rows) const
{
    const auto from = std::size_t(m_input->spec().nchannels);
    const auto to = std::size_t(m_meaning.channels);
    const std::size_t count = std::size_t(rows->width) * std::size_t(rows->height);
    const int alpha = m_input->spec().alpha_channel;
    const auto *values = reinterpret_cast<const float *>(buffer.data());
    rows->values.resize(count * to);
    for (std::size_t i = 0; i < count; ++i)
        copyTexel(values + i * from, int(from), alpha, rows->values.data() + i * to, int(to));
    if (m_meaning.associated && to == 4)
        divideByAlpha(&rows->values);
    if (!m_meaning.space.empty() && to == 4) {
        OssEvResult result = m_meaning.spaces->toWorking(m_meaning.space, rows->values.data(),
                                                         count);
        if (!result)
            return result;
    }
    if ((m_meaning.premultiply || m_meaning.associated) && to == 4) {
        for (std::size_t i = 0; i < count; ++i) {
            float *texel = rows->values.data() + 4 * i;
            for (int k = 0; k < 3; ++k)
                texel[k] *= texel[3];
        }
    }
    return {};
}

// Means of two by two texels, of fewer at an odd edge.
void OssEvImageRows::halve(Rows *rows, int channels)
{
    const int width = (rows->width + 1) / 2;
    const int height = (rows->height + 1) / 2;
    std::vector<float> values(std::size_t(width) * std::size_t(height) * std::size_t(channels));
    const auto texel = [rows, channels](int x, int y) {
        const int column = std::min(x, rows->width - 1);
        const int line = std::min(y, rows->height - 1);
        return rows->values.data()
               + (std::size_t(line) * std::size_t(rows->width) + std::size_t(column))
                     * std::size_t(channels);
    };
    float *to = values.data();
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const float *a = texel(2 * x, 2 * y);
            const float *b = texel(2 * x + 1, 2 * y);
            const float *c = texel(2 * x, 2 * y + 1);
            const float *d = texel(2 * x + 1, 2 * y + 1);
            for (int k = 0; k < channels; ++k)
                *to++ = 0.25F * (a[k] + b[k] + c[k] + d[k]);
        }
    }
    *rows = {width, height, std::move(values)};
}

void OssEvImageRows::makeTiles(const Rows &rows, int tileRow,
                               const OssEvImageProvider::Deliver &deliver) const
{
    const int channels = m_meaning.channels;

    struct alignas(64) Line
    {
        std::array<float, Size> values;
    };

    Line line{};
    for (int left = 0; left < rows.width; left += Size) {
        auto tile = std::make_shared<OssEvTile>(channels, m_meaning.format);
        const int width = std::min(Size, rows.width - left);
        for (int channel = 0; channel < channels; ++channel) {
            for (int y = 0; y < Size; ++y) {
                const int source = std::min(y, rows.height - 1);
                const float *from = rows.values.data()
                                    + (std::size_t(source) * std::size_t(rows.width)
                                       + std::size_t(left))
                                          * std::size_t(channels)
                                    + channel;
                for (int x = 0; x < Size; ++x)
                    line.values[std::size_t(x)] =
                        from[std::ptrdiff_t(std::min(x, width - 1)) * channels];
                const std::size_t offset = std::size_t(y) * Size;
                if (m_meaning.format == OssEvTile::Format::Half)
                    OssEvTexels::floatToHalf(line.values.data(), tile->halfPlane(channel) + offset,
                                             Size);
                else
                    std::copy(line.values.begin(), line.values.end(),
                              tile->floatPlane(channel) + offset);
            }
        }
        deliver(left / Size, tileRow, std::move(tile));
    }
}

OssEvResult OssEvImageRows::unreadable() const
{
    const std::string reason = m_input->geterror();
    return OssEvResult::failure(reason.empty() ? "its pixels cannot be decoded" : reason);
}
