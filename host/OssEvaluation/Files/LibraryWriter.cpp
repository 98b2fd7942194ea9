// Formats that OpenImageIO writes line by line.
#include "OssEvaluation/Files/ImageWriters.h"
#include "OssEvaluation/Files/OssEvFile.h"

#include <OpenImageIO/imageio.h>

#include <algorithm>
#include <stdexcept>

namespace {

/// What the library calls the format, and how it differs from the others.
struct Kind
{
    const char *plugin;
    const char *usualCompression;
    bool hasAlpha = true;
};

constexpr int UsualQuality = 90;

/// The library opens the temporary file by its name.
class LibraryWriter : public OssEvImageWriter
{
public:
    LibraryWriter(const std::string &path, const Description &description, const Kind &kind)
        : m_description(description)
        , m_kind(kind)
        , m_file(path)
        , m_output(OIIO::ImageOutput::create(kind.plugin))
    {
        if (!m_file.error().empty())
            throw std::runtime_error(m_file.error());
        OIIO::ImageSpec spec(description.width, description.height, channels(), type());
        spec["compression"] = compression();
        spec["oiio:UnassociatedAlpha"] = isWhole() || description.form.isStraight ? 1 : 0;
        spec["oiio:ColorSpace"] = OssEvWriters::spaceOf(description, isWhole());
        if (m_output == nullptr || !m_output->open(m_file.temporaryPath(), spec))
            throw std::runtime_error(m_output == nullptr ? OIIO::geterror() : m_output->geterror());
    }

    OssEvResult writeTiles(const std::vector<OssEvTilePointer> &tiles) override
    {
        const int rows = OssEvWriters::rowsLeft(m_description, m_written);
        const OssEvResult result = isWhole() ? writeIntegers(tiles, rows)
                                             : writeFloats(tiles, rows);
        if (!result)
            m_file.fail(result.error());
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
    bool isWhole() const
    {
        return m_description.form.depth == OssEvDepth::Byte
               || m_description.form.depth == OssEvDepth::Short;
    }

    OIIO::TypeDesc type() const
    {
        switch (m_description.form.depth.value_or(OssEvDepth::Short)) {
        case OssEvDepth::Byte:
            return OIIO::TypeDesc::UINT8;
        case OssEvDepth::Short:
            return OIIO::TypeDesc::UINT16;
        case OssEvDepth::Half:
            return OIIO::TypeDesc::HALF;
        case OssEvDepth::Float:
            return OIIO::TypeDesc::FLOAT;
        }
        return OIIO::TypeDesc::UINT16;
    }

    std::string compression() const
    {
        const OssEvImageForm &form = m_description.form;
        const std::string kind = form.compression.empty() ? m_kind.usualCompression
                                                          : form.compression;
        const bool hasQuality = kind == "jpeg" || kind == "webp";
        return hasQuality
                   ? kind + ":" + std::to_string(form.quality > 0 ? form.quality : UsualQuality)
                   : kind;
    }

    /// Of the file, which may know no alpha.
    int channels() const
    {
        return m_kind.hasAlpha ? m_description.channels : std::min(3, m_description.channels);
    }

    OssEvResult writeIntegers(const std::vector<OssEvTilePointer> &tiles, int rows)
    {
        std::vector<unsigned char> values;
        OssEvResult result = OssEvWriters::toIntegers(tiles, m_description, m_written, rows,
                                                      &values);
        if (!result)
            return result;
        // The stride skips what the file does not know.
        const auto stride = std::size_t(m_description.channels) * type().size();
        return write(rows, type(), values.data(), OIIO::stride_t(stride));
    }

    OssEvResult writeFloats(const std::vector<OssEvTilePointer> &tiles, int rows)
    {
        std::vector<float> values;
        std::vector<float> row;
        for (int y = 0; y < rows; ++y) {
            OssEvResult result = OssEvWriters::encode(tiles, m_description,
                                                      OssEvWriters::Alpha::Premultiplied, y, &row);
            if (!result)
                return result;
            values.insert(values.end(), row.begin(), row.end());
        }
        return write(rows, OIIO::TypeDesc::FLOAT, values.data(), 4 * sizeof(float));
    }

    OssEvResult write(int rows, OIIO::TypeDesc type, const void *values, OIIO::stride_t stride)
    {
        const bool written = m_output->write_scanlines(m_written, m_written + rows, 0, type, values,
                                                       stride);
        return written ? OssEvResult() : OssEvResult::failure(m_output->geterror());
    }

    Description m_description;
    Kind m_kind;
    OssEvFile m_file;
    std::unique_ptr<OIIO::ImageOutput> m_output;
    int m_written = 0;
};

std::unique_ptr<OssEvImageWriter> make(const std::string &path,
                                       const OssEvWriters::Description &description,
                                       const Kind &kind)
{
    return std::make_unique<LibraryWriter>(path, description, kind);
}

} // namespace

std::unique_ptr<OssEvImageWriter> OssEvWriters::tiff(const std::string &path,
                                                     const Description &description)
{
    return make(path, description, {"tiff", "zip"});
}

std::unique_ptr<OssEvImageWriter> OssEvWriters::jpeg(const std::string &path,
                                                     const Description &description)
{
    return make(path, description, {"jpeg", "jpeg", false});
}

std::unique_ptr<OssEvImageWriter> OssEvWriters::targa(const std::string &path,
                                                      const Description &description)
{
    return make(path, description, {"targa", "rle"});
}
