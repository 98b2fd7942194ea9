#pragma once

#include "OssEvaluation/Graph/OssEvOperation.h"
#include "OssEvaluation/OssEvaluation_export.h"
#include "OssEvaluation/Values/OssEvKey.h"
#include "OssEvaluation/Values/OssEvResult.h"
#include "OssEvaluation/Values/OssEvTile.h"

#include <functional>
#include <string>

/// What is known of an image before its pixels are read.
struct OssEvImageInfo
{
    /// 0 where the image has nothing for a patch: it is transparent there.
    int width = 0;
    int height = 0;
    /// 1 or 4.
    int channels = 4;
    OssEvTile::Format format = OssEvTile::Format::Half;
    /// Other pixels, other key.
    OssEvKey content;
    /// One read gives all tiles; rows of tiles cannot be had one by one.
    bool isSequential = false;
};

/// Where image nodes get their pixels from: files, paint, whatever the host has.
class OSSEVALUATION_EXPORT OssEvImageProvider
{
public:
    using ColorSpace = OssEvImageOperation::ColorSpace;
    using Deliver = std::function<void(int x, int y, OssEvTilePointer tile)>;

    struct Image
    {
        std::string name;
        ColorSpace colorSpace = ColorSpace::Automatic;
        int patch = 1001;
        /// What describe() told. read() then gives these pixels or none: it fails when the image has
        /// become another. Null: whatever is there.
        OssEvKey content = {};
        /// In which the image's numbers stand unless they are data; empty where nobody chose.
        std::string space = {};
    };

    OssEvImageProvider() = default;
    OssEvImageProvider(const OssEvImageProvider &) = delete;
    OssEvImageProvider &operator=(const OssEvImageProvider &) = delete;
    virtual ~OssEvImageProvider();

    /// Called on a worker, before anything is computed. May be called often for one image.
    virtual OssEvResult describe(const Image &image, OssEvImageInfo *info) = 0;

    /// Delivers the tiles of row `tileRow` of the image, halved `reduction` times, or all tiles of
    /// a sequential image. Values are finite, premultiplied, colours in the working space. Called on the engine's
    /// thread for files.
    virtual OssEvResult read(const Image &image, int reduction, int tileRow,
                             const OssEvCancel &cancel, const Deliver &deliver) = 0;
};
