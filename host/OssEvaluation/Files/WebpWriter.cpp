// OpenImageIO would multiply colours by their alpha and divide them again, in 8 bits.
#include "OssEvaluation/Files/ImageWriters.h"
#include "OssEvaluation/Files/OssEvFile.h"

#include <webp/encode.h>

#include <stdexcept>

namespace {

constexpr int UsualQuality = 90;
constexpr int Lossless = 100;

/// The format is compressed as a whole: the image is kept in memory until then.
class WebpWriter : public OssEvImageWriter
{
public:
    WebpWriter(const std::string &path, const Description &description)
        : m_description(description)
        , m_file(path)
    {
        if (!m_file.error().empty())
            throw std::runtime_error(m_file.error());
        if (description.width > WEBP_MAX_DIMENSION || description.height > WEBP_MAX_DIMENSION)
            throw std::runtime_error("WebP files have at most " + std::to_string(WEBP_MAX_DIMENSION)
                                     + " texels a side");
    }

    OssEvResult writeTiles(const std::vector<OssEvTilePointer> &tiles) override
    {
        const int rows = OssEvWriters::rowsLeft(m_description, m_written);
        std::vector<unsigned char> values;
        OssEvResult result = OssEvWriters::toIntegers(tiles, m_description, m_written, rows,
                                                      &values);
        if (!result)
            return result;
        const auto channels = std::size_t(m_description.channels);
        for (std::size_t i = 0; i < values.size(); i += channels) {
            for (std::size_t k = 0; k < std::max(channels, std::size_t(3)); ++k)
                m_values.push_back(values[i + (channels == 1 ? 0 : k)]);
        }
        m_written += rows;
        return {};
    }

    OssEvResult finish() override
    {
        if (m_written != m_description.height)
            m_file.fail("rows are missing");
        else
            encode();
        return m_file.finish();
    }

private:
    void encode()
    {
        const int quality = m_description.form.quality > 0 ? m_description.form.quality
                                                           : UsualQuality;
        WebPConfig config;
        WebPPicture picture;
        if (WebPConfigPreset(&config, WEBP_PRESET_PICTURE, float(quality)) == 0
            || WebPPictureInit(&picture) == 0) {
            m_file.fail("the library is of another version");
            return;
        }
        config.lossless = quality >= Lossless ? 1 : 0;
        config.exact = 1; // what lies under no alpha at all may be wanted
        picture.use_argb = config.lossless;
        picture.width = m_description.width;
        picture.height = m_description.height;
        picture.writer = write;
        picture.custom_ptr = &m_file;
        const bool hasAlpha = m_description.channels == 4;
        const int stride = m_description.width * (hasAlpha ? 4 : 3);
        const bool taken = (hasAlpha ? WebPPictureImportRGBA(&picture, m_values.data(), stride)
                                     : WebPPictureImportRGB(&picture, m_values.data(), stride))
                           != 0;
        if (!taken || WebPEncode(&config, &picture) == 0)
            m_file.fail("it cannot be encoded (" + std::to_string(int(picture.error_code)) + ")");
        WebPPictureFree(&picture);
    }

    static int write(const std::uint8_t *data, std::size_t size, const WebPPicture *picture)
    {
        return static_cast<OssEvFile *>(picture->custom_ptr)->write(data, size) ? 1 : 0;
    }

    Description m_description;
    OssEvFile m_file;
    std::vector<std::uint8_t> m_values;
    int m_written = 0;
};

} // namespace

std::unique_ptr<OssEvImageWriter> OssEvWriters::webp(const std::string &path,
                                                     const Description &description)
{
    return std::make_unique<WebpWriter>(path, description);
}
