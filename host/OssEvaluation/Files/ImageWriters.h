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

/// Rows of a row of tiles as 16-bit numbers, the channels of a texel side by side: not
/// premultiplied, and display values unless the image is data.
OssEvResult toIntegers(const std::vector<OssEvTilePointer> &tiles, const Description &description,
                       int rows, std::vector<std::uint16_t> *values);

/// Rows of the image that the next row of tiles holds, when so many are written.
int rowsLeft(const Description &description, int written);

} // namespace OssEvWriters
