// Textures for renderers: tiles, and all halvings of the image in one file. The library makes them of
// a whole image, which is kept in memory until then.
#include "OssEvaluation/Files/ImageWriters.h"
#include "OssEvaluation/Files/OssEvFile.h"

#include <OpenImageIO/imagebuf.h>
#include <OpenImageIO/imagebufalgo.h>

#include <stdexcept>

namespace {

class TextureWriter : public OssEvImageWriter
{
public:
    TextureWriter(const std::string &path, const Description &description)
        : m_description(description)
        , m_file(path)
    {
        if (!m_file.error().empty())
            throw std::runtime_error(m_file.error());
        OIIO::ImageSpec spec(description.width, description.height, description.channels,
                             description.form.depth == OssEvDepth::Float ? OIIO::TypeDesc::FLOAT
                                                                         : OIIO::TypeDesc::HALF);
        spec["oiio:ColorSpace"] = OssEvWriters::spaceOf(description, false);
        m_image.reset(spec);
    }

    OssEvResult writeTiles(const std::vector<OssEvTilePointer> &tiles) override
    {
        const int rows = OssEvWriters::rowsLeft(m_description, m_written);
        std::vector<float> row;
        for (int y = 0; y < rows; ++y, ++m_written) {
            const OssEvResult result = OssEvWriters::encode(
                tiles, m_description, OssEvWriters::Alpha::Premultiplied, y, &row);
            if (!result) {
                m_file.fail(result.error());
                return OssEvResult::failure(m_file.error());
            }
            const OIIO::ROI line(0, m_description.width, m_written, m_written + 1, 0, 1, 0,
                                 m_description.channels);
            m_image.set_pixels(line, OIIO::TypeDesc::FLOAT, row.data(), 4 * sizeof(float));
        }
        return {};
    }

    OssEvResult finish() override
    {
        if (m_written != m_description.height)
            m_file.fail("rows are missing");
        OIIO::ImageSpec wanted;
        wanted["maketx:fileformatname"] = "openexr";
        wanted["compression"] = m_description.form.compression.empty()
                                    ? std::string("zip")
                                    : m_description.form.compression;
        wanted["wrapmodes"] = "black,black";
        if (m_file.error().empty()
            && !OIIO::ImageBufAlgo::make_texture(OIIO::ImageBufAlgo::MakeTxTexture, m_image,
                                                 m_file.temporaryPath(), wanted))
            m_file.fail(OIIO::geterror());
        m_file.takeReplaced();
        return m_file.finish();
    }

private:
    Description m_description;
    OssEvFile m_file;
    OIIO::ImageBuf m_image;
    int m_written = 0;
};

} // namespace

std::unique_ptr<OssEvImageWriter> OssEvWriters::texture(const std::string &path,
                                                        const Description &description)
{
    return std::make_unique<TextureWriter>(path, description);
}
