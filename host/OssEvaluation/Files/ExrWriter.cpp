#include "OssEvaluation/Files/ImageWriters.h"
#include "OssEvaluation/Files/OssEvColorSpaces.h"
#include "OssEvaluation/Files/OssEvFile.h"
#include "OssEvaluation/Values/Texels.h"

#include <algorithm>
#include <exception>
#include <map>
#include <stdexcept>

#include <ImfChannelList.h>
#include <ImfFrameBuffer.h>
#include <ImfHeader.h>
#include <ImfInputFile.h>
#include <ImfIO.h>
#include <ImfOutputFile.h>
#include <ImfStandardAttributes.h>
#include <ImfStringAttribute.h>

namespace {

constexpr int Size = OssEvTile::Size;

// Those of ACEScg.
const Imf::Chromaticities FilmPrimaries({0.713F, 0.293F}, {0.165F, 0.830F}, {0.128F, 0.044F},
                                        {0.32168F, 0.33767F});

Imf::Compression compressionOf(const std::string &name)
{
    static const std::map<std::string, Imf::Compression> table{
        {"none", Imf::NO_COMPRESSION},   {"rle", Imf::RLE_COMPRESSION},
        {"zips", Imf::ZIPS_COMPRESSION}, {"zip", Imf::ZIP_COMPRESSION},
        {"piz", Imf::PIZ_COMPRESSION},   {"pxr24", Imf::PXR24_COMPRESSION},
        {"b44", Imf::B44_COMPRESSION},   {"dwaa", Imf::DWAA_COMPRESSION},
        {"dwab", Imf::DWAB_COMPRESSION}};
    const auto found = table.find(name);
    return found == table.end() ? Imf::PIZ_COMPRESSION : found->second;
}

/// Throws what the file could not do, as OpenEXR expects it.
class Stream : public Imf::OStream
{
public:
    explicit Stream(OssEvFile *file)
        : Imf::OStream(file->path().c_str())
        , m_file(file)
    {
    }

    void write(const char data[], int size) override
    {
        if (!m_file->write(data, std::size_t(size)))
            throw std::runtime_error(m_file->error());
    }

    std::uint64_t tellp() override { return m_file->position(); }

    void seekp(std::uint64_t position) override
    {
        if (!m_file->seek(position))
            throw std::runtime_error(m_file->error());
    }

private:
    OssEvFile *m_file;
};

class ExrWriter : public OssEvImageWriter
{
public:
    ExrWriter(const std::string &path, const Description &description)
        : m_description(description)
        , m_file(path)
        , m_stream(&m_file)
    {
        if (!m_file.error().empty())
            throw std::runtime_error(m_file.error());
        Imf::Header header(description.width, description.height);
        header.compression() = compressionOf(description.form.compression);
        tellSpace(&header);
        for (const char *name : names())
            header.channels().insert(name, Imf::Channel(type()));
        m_output = std::make_unique<Imf::OutputFile>(m_stream, header);
        m_rows.resize(std::size_t(description.channels) * planeBytes());
    }

    OssEvResult writeTiles(const std::vector<OssEvTilePointer> &tiles) override
    {
        const int rows = OssEvWriters::rowsLeft(m_description, m_written);
        try {
            const OssEvResult copied = copyRows(tiles, rows);
            if (!copied)
                throw std::runtime_error(copied.error());
            Imf::FrameBuffer buffer;
            for (std::size_t i = 0; i < names().size(); ++i) {
                // The library counts rows from the top of the image.
                char *first = m_rows.data() + i * planeBytes()
                              - std::ptrdiff_t(m_written) * std::ptrdiff_t(rowBytes());
                buffer.insert(names()[i], Imf::Slice(type(), first, valueBytes(), rowBytes()));
            }
            m_output->setFrameBuffer(buffer);
            m_output->writePixels(rows);
            m_written += rows;
            return {};
        } catch (const std::exception &fault) {
            m_file.fail(fault.what());
            return OssEvResult::failure(m_file.error());
        }
    }

    OssEvResult finish() override
    {
        try {
            // Writes the table of rows; what goes wrong then shows in the file.
            m_output.reset();
        } catch (const std::exception &fault) {
            m_file.fail(fault.what());
        }
        if (m_written != m_description.height)
            m_file.fail("rows are missing");
        return m_file.finish();
    }

private:
    bool isFloat() const { return m_description.form.depth == OssEvDepth::Float; }

    /// Whether tiles hold what the file is to hold.
    bool isAsComputed() const
    {
        return m_description.form.spaces().isWorking(OssEvWriters::spaceOf(m_description, false));
    }

    /// The built-in working space goes without saying.
    void tellSpace(Imf::Header *header) const
    {
        const OssEvColorSpaces &spaces = m_description.form.spaces();
        const std::string space = OssEvWriters::spaceOf(m_description, false);
        if (space == "ACEScg")
            Imf::addChromaticities(*header, FilmPrimaries);
        const bool isUsual = space == OssEvColorSpaces::Light || spaces.isData(space);
        if (m_description.channels > 1 && (!isUsual || !spaces.key().isNull()))
            header->insert(OssEvImageForm::SpaceAttribute, Imf::StringAttribute(space));
    }

    Imf::PixelType type() const { return isFloat() ? Imf::FLOAT : Imf::HALF; }

    std::size_t valueBytes() const { return isFloat() ? 4 : 2; }

    // Room for whole tiles.
    std::size_t rowBytes() const
    {
        return std::size_t(OssEvTilesAcross(m_description.width)) * Size * valueBytes();
    }

    std::size_t planeBytes() const { return rowBytes() * Size; }

    std::vector<const char *> names() const
    {
        if (m_description.channels == 1)
            return {"Y"};
        if (m_description.channels == 3)
            return {"R", "G", "B"};
        return {"R", "G", "B", "A"};
    }

    OssEvResult copyRows(const std::vector<OssEvTilePointer> &tiles, int rows)
    {
        if (isAsComputed()) {
            for (int channel = 0; channel < m_description.channels; ++channel)
                copyChannel(tiles, channel, rows);
            return {};
        }
        std::vector<float> row;
        for (int y = 0; y < rows; ++y) {
            OssEvResult result = OssEvWriters::encode(tiles, m_description,
                                                      OssEvWriters::Alpha::Premultiplied, y, &row);
            if (!result)
                return result;
            for (int channel = 0; channel < m_description.channels; ++channel)
                copyEncoded(row, channel, y);
        }
        return {};
    }

    void copyEncoded(const std::vector<float> &row, int channel, int y)
    {
        char *to = m_rows.data() + std::size_t(channel) * planeBytes()
                   + std::size_t(y) * rowBytes();
        for (std::size_t x = 0; x < std::size_t(m_description.width); ++x) {
            const float value = row[4 * x + std::size_t(channel)];
            const Imath::half half = value;
            to = isFloat() ? std::copy_n(reinterpret_cast<const char *>(&value), sizeof value, to)
                           : std::copy_n(reinterpret_cast<const char *>(&half), sizeof half, to);
        }
    }

    void copyChannel(const std::vector<OssEvTilePointer> &tiles, int channel, int rows)
    {
        struct alignas(64) Row
        {
            std::array<float, Size> floats;
            std::array<std::uint16_t, Size> halves;
        };

        Row row{};
        for (int y = 0; y < rows; ++y) {
            char *to = m_rows.data() + std::size_t(channel) * planeBytes()
                       + std::size_t(y) * rowBytes();
            for (const OssEvTilePointer &tile : tiles) {
                const bool half = tile->format() == OssEvTile::Format::Half;
                const std::size_t offset = std::size_t(y) * Size;
                if (!tile->isConstant() && half && !isFloat()) {
                    const auto *from = reinterpret_cast<const char *>(tile->halfPlane(channel)
                                                                      + offset);
                    to = std::copy_n(from, Size * 2, to);
                    continue;
                }
                if (tile->isConstant())
                    row.floats.fill(tile->value()[std::size_t(channel)]);
                else if (half)
                    OssEvTexels::halfToFloat(tile->halfPlane(channel) + offset, row.floats.data(),
                                             Size);
                else
                    std::copy_n(tile->floatPlane(channel) + offset, Size, row.floats.begin());
                if (isFloat()) {
                    to = std::copy_n(reinterpret_cast<const char *>(row.floats.data()), Size * 4,
                                     to);
                } else {
                    OssEvTexels::floatToHalf(row.floats.data(), row.halves.data(), Size);
                    to = std::copy_n(reinterpret_cast<const char *>(row.halves.data()), Size * 2,
                                     to);
                }
            }
        }
    }

    Description m_description;
    OssEvFile m_file;
    Stream m_stream;
    std::unique_ptr<Imf::OutputFile> m_output;
    std::vector<char> m_rows;
    int m_written = 0;
};

} // namespace

std::unique_ptr<OssEvImageWriter> OssEvWriters::exr(const std::string &path,
                                                    const Description &description)
{
    return std::make_unique<ExrWriter>(path, description);
}
