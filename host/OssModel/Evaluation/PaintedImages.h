#pragma once

#include "OssEvaluation/Files/OssEvImageFiles.h"
#include "OssModel/Images/OssLivePaint.h"

/// Images with paint on them that is in no image yet. Any thread.
namespace PaintedImages {

/// What the image of a patch with paint is; `beneath` is what lies below, without width where there is
/// nothing.
OssEvImageInfo describe(const OssLivePaint &live, int patch, const OssEvImageInfo &beneath);

/// A tile of the image, halved so many times. Null: nothing lies below.
OssEvTilePointer tile(const OssLivePaint &live, int patch, int reduction, int x, int y,
                      const OssEvTilePointer &beneath);

/// Texels across the image, halved so many times.
int across(const OssLivePaint &live, int reduction);

} // namespace PaintedImages
