#pragma once

#include "OssEvaluation/Files/OssEvImageWriter.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

/// The writers behind OssEvImageWriter, one file each.
namespace OssEvWriters {

using Description = OssEvImageWriter::Description;

std::unique_ptr<OssEvImageWriter> exr(const std::string &path, const Description &description);
std::unique_ptr<OssEvImageWriter> png(const std::string &path, const Description &description);
std::unique_ptr<OssEvImageWriter> tiff(const std::string &path, const Description &description);
std::unique_ptr<OssEvImageWriter> jpeg(const std::string &path, const Description &description);
std::unique_ptr<OssEvImageWriter> webp(const std::string &path, const Description &description);
std::unique_ptr<OssEvImageWriter> targa(const std::string &path, const Description &description);
/// Tiled and with all its halvings, for renderers.
std::unique_ptr<OssEvImageWriter> texture(const std::string &path, const Description &description);

/// Whether files hold colours as they are or multiplied by their alpha.
enum class Alpha { Straight, Premultiplied };

/// The colour space in which the file's colours stand; "Raw" for numbers that are none.
std::string spaceOf(const Description &description, bool isWholeNumbers);

/// One row of a row of tiles as RGBA floats, in the file's colour space.
OssEvResult encode(const std::vector<OssEvTilePointer> &tiles, const Description &description,
                   Alpha alpha, int y, std::vector<float> *row);

/// Rows of a row of tiles as whole numbers of 8 or 16 bits, straight, the channels of a texel side by
/// side. Which noise 8 bits get depends on the first row's place in the image.
OssEvResult toIntegers(const std::vector<OssEvTilePointer> &tiles, const Description &description,
                       int firstRow, int rows, std::vector<unsigned char> *values);

/// Rows of the image that the next row of tiles holds, when so many are written.
int rowsLeft(const Description &description, int written);

} // namespace OssEvWriters
