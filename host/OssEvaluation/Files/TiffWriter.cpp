#include "OssEvaluation/Files/ImageWriters.h"
#include "OssEvaluation/Files/OssEvFile.h"

#include <OpenImageIO/imageio.h>

#include <stdexcept>

namespace {

/// The library opens the temporary file by its name.
class TiffWriter : public OssEvImageWriter
{
public:
    TiffWriter(const std::string &path, const Description &description)
        : m_description(description)
        , m_file(path)
        , m_output(OIIO::ImageOutput::create("tiff"))
    {
        if (!m_file.error().empty())
            throw std::runtime_error(m_file.error());
        OIIO::ImageSpec spec(description.width, description.height, description.channels,
                             OIIO::TypeDesc::UINT16);
        spec["compression"] = "zip";
        spec["oiio:UnassociatedAlpha"] = 1;
        spec["oiio:ColorSpace"] = description.isData ? "Raw" : "sRGB";
        if (m_output == nullptr || !m_output->open(m_file.temporaryPath(), spec))
            throw std::runtime_error(m_output == nullptr ? OIIO::geterror() : m_output->geterror());
    }

    OssEvResult writeTiles(const std::vector<OssEvTilePointer> &tiles) override
    {
        const int rows = OssEvWriters::rowsLeft(m_description, m_written);
        std::vector<std::uint16_t> values;
        const OssEvResult result = OssEvWriters::toIntegers(tiles, m_description, rows, &values);
        if (!result)
            m_file.fail(result.error());
        else if (!m_output->write_scanlines(m_written, m_written + rows, 0, OIIO::TypeDesc::UINT16,
                                            values.data()))
            m_file.fail(m_output->geterror());
        m_written += rows;
        return m_file.error().empty() ? OssEvResult() : OssEvResult::failure(m_file.error());
    }

    OssEvResult finish() override
    {
        if (m_written != m_description.height)
            m_file.fail("rows are missing");
        if (!m_output->close())
            m_file.fail(m_output->geterror());
        return m_file.finish();
    }

private:
    Description m_description;
    OssEvFile m_file;
    std::unique_ptr<OIIO::ImageOutput> m_output;
    int m_written = 0;
};

} // namespace

std::unique_ptr<OssEvImageWriter> OssEvWriters::tiff(const std::string &path,
                                                     const Description &description)
{
    return std::make_unique<TiffWriter>(path, description);
}
