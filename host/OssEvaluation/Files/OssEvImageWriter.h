#pragma once

#include "OssEvaluation/Files/OssEvImageForm.h"
#include "OssEvaluation/OssEvaluation_export.h"
#include "OssEvaluation/Values/OssEvResult.h"
#include "OssEvaluation/Values/OssEvTile.h"

#include <memory>
#include <string>
#include <vector>

/// Writes an image from the top downwards, a row of tiles at a time. The file takes its name when
/// it is complete, synced and found readable; abandoned before, it leaves nothing behind.
class OSSEVALUATION_EXPORT OssEvImageWriter
{
public:
    struct Description
    {
        int width = 0;
        int height = 0;
        /// 1, 3 or 4.
        int channels = 4;
        /// Numbers instead of colours: no display values in files of whole numbers.
        bool isData = false;
        OssEvImageForm form;
    };

    /// The path's suffix says which OssEvImageFormat.
    static OssEvResult open(const std::string &path, const Description &description,
                            std::unique_ptr<OssEvImageWriter> *writer);

    OssEvImageWriter() = default;
    OssEvImageWriter(const OssEvImageWriter &) = delete;
    OssEvImageWriter &operator=(const OssEvImageWriter &) = delete;
    virtual ~OssEvImageWriter();

    /// All tiles across the image, from left to right.
    virtual OssEvResult writeTiles(const std::vector<OssEvTilePointer> &tiles) = 0;

    virtual OssEvResult finish() = 0;
};
