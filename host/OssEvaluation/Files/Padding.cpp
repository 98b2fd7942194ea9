#include "OssEvaluation/Files/Padding.h"

#include "OssEvaluation/Geometry/OssEvSurfaceMap.h"
#include "OssEvaluation/Values/Texels.h"

#include <algorithm>
#include <array>

namespace {

constexpr int Size = OssEvTile::Size;

double square(int value)
{
    return double(value) * double(value);
}

} // namespace

bool Padding::find(const std::shared_ptr<const OssEvMesh> &mesh, const OssEvFrame &frame,
                   const OssEvCancel *cancel)
{
    m_frame = frame;
    const auto map = OssEvSurfaceMap::make(mesh, frame, cancel, 0);
    if (map == nullptr)
        return false;
    const std::size_t texels = std::size_t(frame.width) * std::size_t(frame.height);
    m_rows.assign(texels, -1);
    m_sources.resize(texels);
    for (int y = 0; y < frame.height; ++y) {
        for (int x = 0; x < frame.width; ++x) {
            if (map->isCovered(x, y))
                m_rows[index(x, y)] = std::int16_t(y);
            else if (y > 0)
                m_rows[index(x, y)] = m_rows[index(x, y - 1)];
            m_isEmpty = m_isEmpty && m_rows[index(x, y)] < 0;
        }
    }
    for (int y = frame.height - 2; y >= 0; --y) {
        for (int x = 0; x < frame.width; ++x) {
            const int above = m_rows[index(x, y)];
            const int below = m_rows[index(x, y + 1)];
            if (below >= 0 && (above < 0 || below - y < y - above))
                m_rows[index(x, y)] = std::int16_t(below);
        }
    }
    for (int y = 0; !m_isEmpty && y < frame.height; ++y) {
        if (cancel != nullptr && cancel->isCancelled())
            return false;
        findInRow(y);
    }
    return true;
}

// The lower envelope of the parabolas that stand on the row, one for each column with anything covered.
void Padding::findInRow(int y)
{
    std::vector<int> columns;
    std::vector<double> from; // where each begins to be the lowest
    const auto height = [this, y](int x) {
        return square(m_rows[index(x, y)] - y);
    };
    for (int x = 0; x < m_frame.width; ++x) {
        if (m_rows[index(x, y)] < 0)
            continue;
        double begins = 0.0;
        while (!columns.empty()) {
            const int last = columns.back();
            begins = (height(x) + square(x) - height(last) - square(last)) / (2.0 * (x - last));
            if (begins > from.back())
                break;
            columns.pop_back();
            from.pop_back();
        }
        from.push_back(columns.empty() ? -1.0 : begins);
        columns.push_back(x);
    }
    std::size_t at = 0;
    for (int x = 0; x < m_frame.width; ++x) {
        while (at + 1 < columns.size() && from[at + 1] < x)
            ++at;
        m_sources[index(x, y)] = {std::int16_t(columns[at]), m_rows[index(columns[at], y)]};
    }
}

std::vector<OssEvTilePointer> Padding::filled(const Rows &rows, int row) const
{
    std::vector<OssEvTilePointer> tiles = rows[std::size_t(row)];
    for (std::size_t column = 0; !m_isEmpty && column < tiles.size(); ++column)
        tiles[column] = filledTile(rows, int(column), row);
    return tiles;
}

OssEvTilePointer Padding::filledTile(const Rows &rows, int column, int row) const
{
    const OssEvTilePointer &old = rows[std::size_t(row)][std::size_t(column)];
    const int width = std::min(Size, m_frame.width - column * Size);
    const int height = std::min(Size, m_frame.height - row * Size);
    auto tile = std::make_shared<OssEvTile>(old->channels(), old->format());
    std::vector<float> values(Size + 16);
    float *line = values.data();
    while (reinterpret_cast<std::uintptr_t>(line) % 64 != 0)
        ++line; // conversion wants aligned rows
    for (int channel = 0; channel < old->channels(); ++channel) {
        for (int y = 0; y < Size; ++y) {
            std::fill_n(line, Size, 0.0F);
            for (int x = 0; y < height && x < width; ++x) {
                const Source from = m_sources[index(column * Size + x, row * Size + y)];
                const OssEvTile &source =
                    *rows[std::size_t(from.y / Size)][std::size_t(from.x / Size)];
                line[x] = source.texel(channel, from.x % Size, from.y % Size);
            }
            if (tile->format() == OssEvTile::Format::Half)
                OssEvTexels::floatToHalf(line, tile->halfPlane(channel) + y * Size, Size);
            else
                std::copy_n(line, Size, tile->floatPlane(channel) + y * Size);
        }
    }
    return tile;
}
