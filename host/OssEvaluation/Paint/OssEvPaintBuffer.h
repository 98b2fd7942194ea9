#pragma once

#include "OssEvaluation/OssEvaluation_export.h"
#include "OssEvaluation/Values/OssEvTile.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <tuple>
#include <vector>

/// 128 x 128 texels of paint in half precision. Paint says what it makes of what lies beneath:
///
///     result = colour + keep * beneath
///
/// with colour and beneath premultiplied and scene-linear. A brush leaves keep = 1 - alpha, as
/// "over" does; an eraser makes both smaller, so it takes away what lies beneath as well. So paint
/// does the same whether what was painted before it is still paint or already beneath.
class OSSEVALUATION_EXPORT OssEvPaintTile
{
public:
    static constexpr int Size = OssEvTile::Size;
    static constexpr int Texels = OssEvTile::Texels;
    static constexpr int Keep = 4;   ///< its plane; the colour's are 0 to 3
    static constexpr int Planes = 5; ///< one after the other
    static constexpr std::size_t Bytes = std::size_t(Planes) * Texels * sizeof(std::uint16_t);

    using Texel = std::array<float, Planes>;

    /// Nothing painted. Throws std::bad_alloc.
    OssEvPaintTile();
    OssEvPaintTile(const OssEvPaintTile &other);
    OssEvPaintTile &operator=(const OssEvPaintTile &) = delete;
    ~OssEvPaintTile() = default;

    Texel texel(int index) const;
    void setTexel(int index, const Texel &texel);

    /// The half floats of all planes, for files.
    std::uint16_t *values() const { return m_buffer.as<std::uint16_t>(); }

private:
    OssEvBuffer m_buffer;
};

using OssEvPaintTilePointer = std::shared_ptr<const OssEvPaintTile>;

/// Paint that is not in an image yet: tiles of any number of UDIM patches, all of one resolution.
/// Costs OssEvPaintTile::Bytes for each tile that was touched. Not for several threads at once;
/// copies share their tiles, and a copy may go to another thread while no stroke goes on.
class OSSEVALUATION_EXPORT OssEvPaintBuffer
{
public:
    /// A tile of a patch. In tiles, from the top.
    struct Place
    {
        int patch = 0;
        int x = 0;
        int y = 0;

        friend bool operator==(const Place &a, const Place &b)
        {
            return std::tie(a.patch, a.y, a.x) == std::tie(b.patch, b.y, b.x);
        }

        friend bool operator<(const Place &a, const Place &b)
        {
            return std::tie(a.patch, a.y, a.x) < std::tie(b.patch, b.y, b.x);
        }
    };

    using Tiles = std::map<Place, OssEvPaintTilePointer>;

    /// `resolution`: texels across a patch.
    explicit OssEvPaintBuffer(int resolution = 2048);

    int resolution() const { return m_resolution; }

    bool isEmpty() const { return m_tiles.empty(); }

    std::size_t bytes() const { return m_tiles.size() * OssEvPaintTile::Bytes; }

    const Tiles &tiles() const { return m_tiles; }

    /// Null where nothing was painted.
    OssEvPaintTilePointer tile(const Place &place) const;
    /// Null: nothing is painted there any more.
    void setTile(const Place &place, OssEvPaintTilePointer tile);

    void clear() { m_tiles.clear(); }

    /// Patches with paint, ascending.
    std::vector<int> patches() const;

    /// Texels of a row as a picture of another resolution has them: the mean of those that it
    /// halves together, or the nearest. False, and nothing written, when there is no paint on them.
    bool readRow(int patch, int resolution, int x, int y, int count,
                 OssEvPaintTile::Texel *texels) const;

private:
    OssEvPaintTile::Texel mean(int patch, int x, int y, int size) const;

    int m_resolution;
    Tiles m_tiles;
};
