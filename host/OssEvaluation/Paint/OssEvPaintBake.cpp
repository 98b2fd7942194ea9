#include "OssEvaluation/Paint/OssEvPaintBake.h"

#include "OssEvaluation/Files/OssEvImageWriter.h"
#include "OssEvaluation/Paint/OssEvPatchImage.h"

#include <algorithm>
#include <new>

namespace {

constexpr int Size = OssEvTile::Size;
using Color = OssEvPatchImage::Color;

class Baker
{
public:
    explicit Baker(const OssEvPaintBake::Job &job)
        : m_job(job)
        , m_beneath(job.paint.resolution(), job.isData, job.colors)
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
            result = m_beneath.need(row);
            std::vector<OssEvTilePointer> tiles;
            for (int column = 0; result && column < OssEvTilesAcross(resolution); ++column)
                tiles.push_back(tile(column, row));
            if (result)
                result = writer->writeTiles(tiles);
        }
        return result ? writer->finish() : result;
    }

private:
    OssEvTilePointer tile(int column, int row) const
    {
        const OssEvPaintTilePointer paint = m_job.paint.tile({m_job.patch, column, row});
        const int resolution = m_job.paint.resolution();
        auto tile = std::make_shared<OssEvTile>(4, OssEvTile::Format::Float);
        for (int index = 0; index < OssEvTile::Texels; ++index) {
            Color color = m_beneath.texel(std::min(column * Size + index % Size, resolution - 1),
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
    OssEvPatchImage m_beneath;
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
