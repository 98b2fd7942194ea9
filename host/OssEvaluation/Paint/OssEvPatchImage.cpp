#include "OssEvaluation/Paint/OssEvPatchImage.h"

#include "OssEvaluation/Files/OssEvImageFiles.h"
#include "OssEvaluation/Paint/OssEvBetween.h"
#include "OssEvaluation/Values/OssEvCancel.h"
#include "OssEvaluation/Values/OssEvHalf.h"

#include <algorithm>
#include <map>
#include <utility>

namespace {

constexpr int Size = OssEvTile::Size;

/// Files of the pixel store.
class PixelFiles final : public OssEvImageFiles
{
public:
    explicit PixelFiles(const OssEvColorSpaces::Pointer &colors)
        : OssEvImageFiles(OssEvFileColors(colors))
    {
    }

    OssEvResult describe(const Image &image, OssEvImageInfo *info) override
    {
        return describeFile(image, Identity::Looks, info);
    }

    OssEvResult read(const Image &image, int reduction, int tileRow, const OssEvCancel &cancel,
                     const Deliver &deliver) override
    {
        return readFile(image, Identity::Looks, reduction, tileRow, cancel, deliver);
    }
};

} // namespace

struct OssEvPatchImage::Private
{
    Private(int size, const OssEvColorSpaces::Pointer &colors)
        : files(colors)
        , resolution(size)
    {
    }

    /// Has the file's rows of texels `first` to `last` at hand.
    OssEvResult need(int first, int last)
    {
        const int top = std::max(0, first) / Size;
        const int bottom = std::min(last, info.height - 1) / Size;
        if (!info.isSequential) {
            tiles.erase(tiles.begin(), tiles.lower_bound({top, 0}));
            tiles.erase(tiles.lower_bound({bottom + 1, 0}), tiles.end());
        }
        for (int row = top; row <= bottom; ++row) {
            if (tiles.count({row, 0}) != 0)
                continue;
            const OssEvResult read = files.read(image, 0, row, cancel,
                                                [this](int x, int y, OssEvTilePointer tile) {
                                                    tiles[{y, x}] = std::move(tile);
                                                });
            if (!read)
                return read;
        }
        return {};
    }

    /// Beyond its edges the image goes on as it ends.
    Color texel(int x, int y) const
    {
        x = std::clamp(x, 0, info.width - 1);
        y = std::clamp(y, 0, info.height - 1);
        const auto found = tiles.find({y / Size, x / Size});
        if (found == tiles.end())
            return {};
        const OssEvTile &tile = *found->second;
        Color color{0.0F, 0.0F, 0.0F, 1.0F};
        for (int c = 0; c < tile.channels(); ++c)
            color[std::size_t(c)] = tile.texel(c, x % Size, y % Size);
        if (tile.channels() == 1)
            color[1] = color[2] = color[0];
        return color;
    }

    Color between(double x, double y) const
    {
        return OssEvBetween(x, y, [this](int column, int row) { return texel(column, row); });
    }

    PixelFiles files;
    int resolution;
    OssEvImageProvider::Image image;
    OssEvImageInfo info;
    OssEvCancel cancel;
    std::map<std::pair<int, int>, OssEvTilePointer> tiles; ///< of the file, by row and column
};

OssEvPatchImage::OssEvPatchImage(int resolution, bool isData,
                                 const OssEvColorSpaces::Pointer &colors)
    : d(std::make_unique<Private>(resolution, colors))
{
    if (isData)
        d->image.colorSpace = OssEvImageProvider::ColorSpace::Data;
}

OssEvPatchImage::~OssEvPatchImage() = default;

OssEvResult OssEvPatchImage::open(const std::string &path)
{
    d->image.name = path;
    d->info = {};
    d->tiles.clear();
    return path.empty() ? OssEvResult() : d->files.describe(d->image, &d->info);
}

bool OssEvPatchImage::isEmpty() const
{
    return d->info.width <= 0 || d->info.height <= 0;
}

OssEvResult OssEvPatchImage::need(int tileRow)
{
    if (isEmpty())
        return {};
    const double factor = double(d->info.height) / d->resolution;
    return d->need(int(tileRow * Size * factor) - 1, int((tileRow + 1) * Size * factor) + 1);
}

OssEvPatchImage::Color OssEvPatchImage::texel(int x, int y) const
{
    if (isEmpty())
        return {};
    if (d->info.width == d->resolution && d->info.height == d->resolution)
        return d->texel(x, y);
    return d->between((x + 0.5) * d->info.width / d->resolution - 0.5,
                      (y + 0.5) * d->info.height / d->resolution - 0.5);
}

OssEvTilePointer OssEvPatchImage::tile(int column, int row) const
{
    auto made = std::make_shared<OssEvTile>(4, OssEvTile::Format::Half);
    const int last = d->resolution - 1;
    for (int index = 0; index < OssEvTile::Texels; ++index) {
        const Color color = texel(std::min(column * Size + index % Size, last),
                                  std::min(row * Size + index / Size, last));
        for (int c = 0; c < 4; ++c)
            made->halfPlane(c)[index] = OssEvHalf::fromFloat(color[std::size_t(c)]);
    }
    return made;
}
