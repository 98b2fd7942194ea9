#pragma once

#include "OssEvaluation/Files/OssEvColorSpaces.h"
#include "OssEvaluation/OssEvaluation_export.h"
#include "OssEvaluation/Paint/OssEvPaintBuffer.h"
#include "OssEvaluation/Values/OssEvResult.h"

#include <string>

/// Puts paint onto an image and writes the result as a new one, a row of tiles at a time.
namespace OssEvPaintBake {

struct Job
{
    OssEvPaintBuffer paint;
    int patch = 1001;
    /// File that lies beneath; empty where there is none and all is transparent. One of another
    /// resolution than the paint's is enlarged or reduced between its texels.
    std::string beneath;
    /// EXR file to be written, at the paint's resolution, with four channels.
    std::string path;
    /// Numbers instead of colours.
    bool isData = false;
    /// The paint's. Null: the built-in ones.
    OssEvColorSpaces::Pointer colors = {};
    /// 32 bits a channel.
    bool isPrecise = false;
};

/// Any thread. A failure leaves no file.
OSSEVALUATION_EXPORT OssEvResult run(const Job &job);

} // namespace OssEvPaintBake
