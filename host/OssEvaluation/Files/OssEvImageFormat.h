#pragma once

#include "OssEvaluation/Files/OssEvImageWriter.h"
#include "OssEvaluation/OssEvaluation_export.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// A format of image files. Every list of formats, in dialogs, drops, commands and messages, is made
/// from this table.
struct OSSEVALUATION_EXPORT OssEvImageFormat
{
    using Writer = std::unique_ptr<OssEvImageWriter> (*)(const std::string &path,
                                                         const OssEvImageWriter::Description &what);

    /// For people: "OpenEXR".
    std::string_view name;
    /// In small letters, without the dot; the first is the usual one.
    std::vector<std::string_view> suffixes;
    /// Null for formats that are only read. Throws what keeps the file from being begun.
    Writer writer;
    /// In which values are written; the first is the usual one. Whole numbers are written straight,
    /// floats premultiplied.
    std::vector<OssEvDepth> depths;
    /// The first is the usual one. Empty where there is no choice.
    std::vector<std::string_view> compressions;
    bool losesDetail = false; ///< as much as its quality says
    bool hasAlpha = true;

    /// Fails, in words, where the format cannot take this form.
    OssEvResult check(const OssEvImageForm &form) const;

    static const std::vector<OssEvImageFormat> &all();
    /// By the suffix of the path, in letters of any size; null when there is none with it.
    static const OssEvImageFormat *ofFile(const std::string &path);
    /// What images are written as where nobody chose.
    static const OssEvImageFormat &usual();
    /// Usual suffixes of the formats that are written.
    static std::vector<std::string> writtenSuffixes();
    /// The same in words: ".exr, .png or .tif" for the prefix ".".
    static std::string writtenInWords(std::string_view prefix);
    /// "exr: OpenEXR, 16 or 32-bit floats; ..." for helps.
    static std::string writtenInDetail();
};
