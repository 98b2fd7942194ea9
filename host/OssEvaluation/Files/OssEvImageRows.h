#pragma once

#include "OssEvaluation/Files/OssEvColorSpaces.h"
#include "OssEvaluation/Schedule/OssEvImageProvider.h"
#include "OssEvaluation/Values/OssEvTile.h"

#include <OpenImageIO/imageio.h>

#include <memory>
#include <string>
#include <vector>

/// Rows of an open image as premultiplied tiles, colours in the working space.
class OssEvImageRows
{
public:
    /// How the numbers of a file become colours.
    struct Meaning
    {
        std::shared_ptr<const OssEvColorSpaces> spaces;
        /// Of the file; empty for no conversion.
        std::string space;
        /// What OssEvColorSpaces tells of it.
        std::string conversion;
        bool premultiply = false;
        /// The file's colours are multiplied by their alpha, which the conversion must not see.
        bool associated = false;
        int channels = 4;
        OssEvTile::Format format = OssEvTile::Format::Half;
    };

    OssEvImageRows(OIIO::ImageInput *input, Meaning meaning);

    /// Tiles of one row of the image after halving. May throw std::bad_alloc.
    OssEvResult readTiles(int reduction, int tileRow, const OssEvImageProvider::Deliver &deliver);

private:
    struct Rows
    {
        int width = 0;
        int height = 0;
        /// RGBA, or single values.
        std::vector<float> values;
    };

    bool copyHalves(int tileRow, const OssEvImageProvider::Deliver &deliver, OssEvResult *result);
    OssEvResult readRows(int first, int count, Rows *rows);
    bool readNative(int first, int count, const OIIO::TypeDesc &type, std::size_t valueSize,
                    std::vector<char> *buffer);
    OssEvResult convert(const std::vector<char> &buffer, Rows *rows) const;
    static void halve(Rows *rows, int channels);
    void makeTiles(const Rows &rows, int tileRow, const OssEvImageProvider::Deliver &deliver) const;
    OssEvResult unreadable() const;

    OIIO::ImageInput *m_input;
    Meaning m_meaning;
};
