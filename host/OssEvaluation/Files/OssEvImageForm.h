#pragma once

#include "OssEvaluation/Files/OssEvColorSpaces.h"
#include "OssEvaluation/Values/OssEvDepth.h"

#include <optional>
#include <string>

/// In what form values stand in an image file. What a format can hold is told by OssEvImageFormat.
struct OssEvImageForm
{
    /// Of EXR files: names the colour space, where it is not the built-in working one.
    static constexpr const char *SpaceAttribute = "ossaColorSpace";

    /// None: the format's usual one.
    std::optional<OssEvDepth> depth;
    /// What the colours that come are: they stand in its working space. Null: the built-in one.
    OssEvColorSpaces::Pointer colors;
    /// Of `colors`. Empty: the screen's in files of whole numbers, the working space in files of floats.
    /// Numbers that are no colours are written as they are, whatever stands here.
    std::string space;

    const OssEvColorSpaces &spaces() const
    {
        return colors != nullptr ? *colors : *OssEvColorSpaces::builtIn();
    }

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
