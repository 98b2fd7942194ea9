#include "OssEvaluation/Paint/OssEvPaintBake.h"

#include "OssEvaluation/Files/OssEvImageFiles.h"
#include "OssEvaluation/Files/OssEvImageWriter.h"
#include "OssEvaluation/Values/OssEvCancel.h"
#include "OssEvaluation/Values/OssEvHalf.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <new>

namespace {

constexpr int Size = OssEvTile::Size;

using Color = std::array<float, 4>;

/// Files of the pixel store.
class PixelFiles final : public OssEvImageFiles
{
public:
    explicit PixelFiles(const OssEvPaintBake::Job &job)
        : OssEvImageFiles(OssEvFileColors(job.colors))
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

/// The image that lies beneath, of which only the rows of tiles last asked for are in memory.
class Beneath
{
public:
    explicit Beneath(const OssEvPaintBake::Job &job)
        : m_files(job)
    {
        if (job.isData)
            m_image.colorSpace = OssEvImageProvider::ColorSpace::Data;
    }

    OssEvResult open(const std::string &path)
    {
        m_image.name = path;
        return path.empty() ? OssEvResult() : m_files.describe(m_image, &m_info);
    }

    bool isEmpty() const { return m_info.width <= 0 || m_info.height <= 0; }

    int width() const { return m_info.width; }

    int height() const { return m_info.height; }

    /// Has the rows of texels `first` to `last` at hand.
    OssEvResult need(int first, int last)
    {
        const int top = std::max(0, first) / Size;
        const int bottom = std::min(last, m_info.height - 1) / Size;
        if (!m_info.isSequential)
            m_tiles.erase(m_tiles.begin(), m_tiles.lower_bound({top, 0}));
        for (int row = top; row <= bottom; ++row) {
            if (m_tiles.count({row, 0}) != 0)
                continue;
            const OssEvResult read = m_files.read(m_image, 0, row, m_cancel,
                                                  [this](int x, int y, OssEvTilePointer tile) {
                                                      m_tiles[{y, x}] = std::move(tile);
                                                  });
            if (!read)
                return read;
        }
        return {};
    }

    /// Beyond its edges the image goes on as it ends.
    Color texel(int x, int y) const
    {
        x = std::clamp(x, 0, m_info.width - 1);
        y = std::clamp(y, 0, m_info.height - 1);
        const auto found = m_tiles.find({y / Size, x / Size});
        if (found == m_tiles.end())
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
        const int left = int(std::floor(x));
        const int top = int(std::floor(y));
        const auto right = float(x - left);
        const auto down = float(y - top);
        const Color a = texel(left, top);
        const Color b = texel(left + 1, top);
        const Color c = texel(left, top + 1);
        const Color d = texel(left + 1, top + 1);
        Color mixed;
        for (std::size_t i = 0; i < mixed.size(); ++i)
            mixed[i] = (a[i] * (1.0F - right) + b[i] * right) * (1.0F - down)
                       + (c[i] * (1.0F - right) + d[i] * right) * down;
        return mixed;
    }

private:
    PixelFiles m_files;
    OssEvImageProvider::Image m_image;
    OssEvImageInfo m_info;
    OssEvCancel m_cancel;
    std::map<std::pair<int, int>, OssEvTilePointer> m_tiles; ///< by row and column
};

class Baker
{
public:
    explicit Baker(const OssEvPaintBake::Job &job)
        : m_job(job)
        , m_beneath(job)
    {
    }

    OssEvResult run()
    {
        OssEvResult result = m_beneath.open(m_job.beneath);
        if (!result)
            return result;
        const int resolution = m_job.paint.resolution();
        OssEvImageWriter::Description description;
        description.width = resolution;
        description.height = resolution;
        description.isData = m_job.isData;
        description.form.colors = m_job.colors;
        if (m_job.isPrecise)
            description.form.depth = OssEvDepth::Float;
        std::unique_ptr<OssEvImageWriter> writer;
        result = OssEvImageWriter::open(m_job.path, description, &writer);
        for (int row = 0; result && row < OssEvTilesAcross(resolution); ++row) {
            result = needRow(row);
            std::vector<OssEvTilePointer> tiles;
            for (int column = 0; result && column < OssEvTilesAcross(resolution); ++column)
                tiles.push_back(tile(column, row));
            if (result)
                result = writer->writeTiles(tiles);
        }
        return result ? writer->finish() : result;
    }

private:
    OssEvResult needRow(int row)
    {
        if (m_beneath.isEmpty())
            return {};
        const double factor = double(m_beneath.height()) / m_job.paint.resolution();
        return m_beneath.need(int(row * Size * factor) - 1, int((row + 1) * Size * factor) + 1);
    }

    Color beneath(int x, int y) const
    {
        if (m_beneath.isEmpty())
            return {};
        const int resolution = m_job.paint.resolution();
        if (m_beneath.width() == resolution && m_beneath.height() == resolution)
            return m_beneath.texel(x, y);
        return m_beneath.between((x + 0.5) * m_beneath.width() / resolution - 0.5,
                                 (y + 0.5) * m_beneath.height() / resolution - 0.5);
    }

    OssEvTilePointer tile(int column, int row) const
    {
        const OssEvPaintTilePointer paint = m_job.paint.tile({m_job.patch, column, row});
        const int resolution = m_job.paint.resolution();
        auto tile = std::make_shared<OssEvTile>(4, OssEvTile::Format::Float);
        for (int index = 0; index < OssEvTile::Texels; ++index) {
            Color color = beneath(std::min(column * Size + index % Size, resolution - 1),
                                  std::min(row * Size + index / Size, resolution - 1));
            if (paint) {
                const OssEvPaintTile::Texel texel = paint->texel(index);
                for (std::size_t c = 0; c < color.size(); ++c)
                    color[c] = texel[c] + texel[OssEvPaintTile::Keep] * color[c];
            }
            for (int c = 0; c < 4; ++c)
                tile->floatPlane(c)[index] = color[std::size_t(c)];
        }
        return tile;
    }

    const OssEvPaintBake::Job &m_job;
    Beneath m_beneath;
};

} // namespace

OssEvResult OssEvPaintBake::run(const Job &job)
{
    try {
        return Baker(job).run();
    } catch (const std::bad_alloc &) {
        return OssEvResult::failure("Cannot write \"" + job.path + "\": there is no memory left");
    }
}
