#pragma once

#include "OssEvaluation/Files/OssEvColorSpaces.h"
#include "OssEvaluation/OssEvaluation_export.h"
#include "OssEvaluation/Values/OssEvResult.h"
#include "OssEvaluation/Values/OssEvTile.h"

#include <array>
#include <memory>
#include <string>

/// The image of a patch as paint of some resolution lies over it: enlarged or reduced between its texels
/// where it has another. Of the file only the rows of tiles last asked for are in memory.
///
/// One thread at a time.
class OSSEVALUATION_EXPORT OssEvPatchImage
{
public:
    /// Premultiplied.
    using Color = std::array<float, 4>;

    /// `resolution`: texels across the paint. `isData`: numbers instead of colours. Null colours: the
    /// built-in ones.
    OssEvPatchImage(int resolution, bool isData, const OssEvColorSpaces::Pointer &colors);
    OssEvPatchImage(const OssEvPatchImage &) = delete;
    OssEvPatchImage &operator=(const OssEvPatchImage &) = delete;
    ~OssEvPatchImage();

    /// Empty: there is no image, and all is transparent.
    OssEvResult open(const std::string &path);

    bool isEmpty() const;

    /// Has what lies beneath a row of the paint's tiles at hand. Throws std::bad_alloc.
    OssEvResult need(int tileRow);

    /// In texels of the paint, from the top; of a row that was asked for.
    Color texel(int x, int y) const;

    /// A tile of the paint's of such a row, with four channels of half floats; beyond the edge it goes on as
    /// it ends. Throws std::bad_alloc.
    OssEvTilePointer tile(int column, int row) const;

private:
    struct Private;
    std::unique_ptr<Private> d;
};
