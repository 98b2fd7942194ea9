#include "OssEvaluation/Files/ImageWriters.h"
#include "OssEvaluation/Files/OssEvColorSpaces.h"
#include "OssEvaluation/Files/OssEvFile.h"

#include <csetjmp>
#include <stdexcept>

#include <png.h>
#include <zlib.h>

namespace {

// Bands of numbers come in the machine's order; files have the larger byte first.
bool isLittleEndian()
{
    const std::uint16_t one = 1;
    return *reinterpret_cast<const unsigned char *>(&one) == 1;
}

void writeData(png_structp png, png_bytep data, png_size_t size)
{
    auto *file = static_cast<OssEvFile *>(png_get_io_ptr(png));
    if (!file->write(data, size))
        png_error(png, "the file cannot be written");
}

void flushData(png_structp /*png*/) {}

[[noreturn]] void noteError(png_structp png, png_const_charp reason)
{
    static_cast<OssEvFile *>(png_get_error_ptr(png))->fail(reason);
    png_longjmp(png, 1);
}

void noteWarning(png_structp /*png*/, png_const_charp /*reason*/) {}

class PngWriter : public OssEvImageWriter
{
public:
    PngWriter(const std::string &path, const Description &description)
        : m_description(description)
        , m_file(path)
    {
        if (!m_file.error().empty())
            throw std::runtime_error(m_file.error());
        m_png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &m_file, noteError, noteWarning);
        m_info = m_png == nullptr ? nullptr : png_create_info_struct(m_png);
        if (m_info == nullptr || !writeHeader())
            throw std::runtime_error(m_file.error().empty() ? "there is not enough memory"
                                                            : m_file.error());
    }

    ~PngWriter() override { png_destroy_write_struct(&m_png, &m_info); }

    OssEvResult writeTiles(const std::vector<OssEvTilePointer> &tiles) override
    {
        const int rows = OssEvWriters::rowsLeft(m_description, m_written);
        std::vector<unsigned char> values;
        const OssEvResult result = OssEvWriters::toIntegers(tiles, m_description, m_written, rows,
                                                            &values);
        if (!result)
            m_file.fail(result.error());
        std::vector<png_bytep> pointers;
        const std::size_t stride = std::size_t(m_description.width)
                                   * std::size_t(m_description.channels) * std::size_t(bits() / 8);
        for (std::size_t y = 0; y < values.size() / stride; ++y)
            pointers.push_back(values.data() + y * stride);
        if (m_file.error().empty() && writeRows(pointers.data(), png_uint_32(rows)))
            m_written += rows;
        return m_file.error().empty() ? OssEvResult() : OssEvResult::failure(m_file.error());
    }

    OssEvResult finish() override
    {
        if (m_written != m_description.height)
            m_file.fail("rows are missing");
        else
            writeEnd();
        return m_file.finish();
    }

private:
    // What libpng reports comes back through setjmp: these three hold no objects of their own.
    bool writeHeader()
    {
        if (setjmp(png_jmpbuf(m_png)) != 0)
            return false;
        png_set_write_fn(m_png, &m_file, writeData, flushData);
        setCompression();
        png_set_IHDR(m_png, m_info, png_uint_32(m_description.width),
                     png_uint_32(m_description.height), bits(), colorType(), PNG_INTERLACE_NONE,
                     PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
        tellSpace();
        png_write_info(m_png, m_info);
        if (isLittleEndian() && bits() == 16)
            png_set_swap(m_png);
        return true;
    }

    bool writeRows(png_bytepp rows, png_uint_32 count)
    {
        if (setjmp(png_jmpbuf(m_png)) != 0)
            return false;
        png_write_rows(m_png, rows, count);
        return true;
    }

    bool writeEnd()
    {
        if (setjmp(png_jmpbuf(m_png)) != 0)
            return false;
        png_write_end(m_png, nullptr);
        return true;
    }

    int bits() const { return m_description.form.depth == OssEvDepth::Byte ? 8 : 16; }

    // Level 1, the UP filter and run lengths: as small as the default on painted textures, and eight
    // times cheaper.
    void setCompression()
    {
        const std::string &kind = m_description.form.compression;
        png_set_compression_level(m_png, kind == "none" ? 0 : kind == "small" ? 9 : 1);
        png_set_compression_strategy(m_png, kind == "small" ? Z_FILTERED : Z_RLE);
        png_set_filter(m_png, 0, kind == "small" ? PNG_ALL_FILTERS : PNG_FILTER_UP);
    }

    void tellSpace()
    {
        const std::string space = OssEvWriters::spaceOf(m_description, true);
        if (space == OssEvColorSpaces::Screen)
            png_set_sRGB(m_png, m_info, PNG_sRGB_INTENT_PERCEPTUAL);
        else if (space == OssEvColorSpaces::Light)
            png_set_gAMA(m_png, m_info, 1.0);
    }

    int colorType() const
    {
        if (m_description.channels == 1)
            return PNG_COLOR_TYPE_GRAY;
        return m_description.channels == 3 ? PNG_COLOR_TYPE_RGB : PNG_COLOR_TYPE_RGBA;
    }

    Description m_description;
    OssEvFile m_file;
    png_structp m_png = nullptr;
    png_infop m_info = nullptr;
    int m_written = 0;
};

} // namespace

std::unique_ptr<OssEvImageWriter> OssEvWriters::png(const std::string &path,
                                                    const Description &description)
{
    return std::make_unique<PngWriter>(path, description);
}
