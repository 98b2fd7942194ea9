#pragma once

#include "OssEvaluation/Values/OssEvDepth.h"

#include <optional>
#include <string>

/// In what form values stand in an image file. What a format can hold is told by OssEvImageFormat.
struct OssEvImageForm
{
    /// None: the format's usual one.
    std::optional<OssEvDepth> depth;
    /// Of OssEvColorSpaces::builtIn(). Empty: the display's in files of whole numbers, light in files
    /// of floats. Numbers that are no colours are written as they are, whatever stands here.
    std::string space;
    /// What comes is not multiplied by its alpha, and is not to be divided by it.
    bool isStraight = false;
    /// 8 bits hide their steps in noise that is the same each time. Values that need no rounding stay
    /// what they are.
    bool dithers = false;
    /// One of the format's; empty for its usual one.
    std::string compression;
    /// 1 to 100, of formats that lose detail; 0 for the usual.
    int quality = 0;
};
