#include "OssEvaluation/Files/OssEvImageFormat.h"

#include "OssEvaluation/Files/ImageWriters.h"

#include <algorithm>
#include <cctype>

const std::vector<OssEvImageFormat> &OssEvImageFormat::all()
{
    static const std::vector<OssEvImageFormat> table{
        {"OpenEXR", {"exr"}, OssEvWriters::exr, "16 or 32-bit floats"},
        {"PNG", {"png"}, OssEvWriters::png, "16 bits"},
        {"TIFF", {"tif", "tiff"}, OssEvWriters::tiff, "16 bits"},
        {"JPEG", {"jpg", "jpeg"}, nullptr, ""},
        {"Radiance", {"hdr"}, nullptr, ""},
        {"Targa", {"tga"}, nullptr, ""},
        {"Bitmap", {"bmp"}, nullptr, ""},
        {"PSD", {"psd"}, nullptr, ""},
        {"Texture", {"tx"}, nullptr, ""},
        {"DPX", {"dpx"}, nullptr, ""}};
    return table;
}

const OssEvImageFormat *OssEvImageFormat::ofFile(const std::string &path)
{
    const std::size_t dot = path.find_last_of("./");
    if (dot == std::string::npos || path[dot] == '/')
        return nullptr;
    std::string suffix = path.substr(dot + 1);
    std::transform(suffix.begin(), suffix.end(), suffix.begin(),
                   [](unsigned char c) { return char(std::tolower(c)); });
    for (const OssEvImageFormat &format : all()) {
        const auto &suffixes = format.suffixes;
        if (std::find(suffixes.begin(), suffixes.end(), suffix) != suffixes.end())
            return &format;
    }
    return nullptr;
}

const OssEvImageFormat &OssEvImageFormat::usual()
{
    return all().front();
}

std::vector<std::string> OssEvImageFormat::writtenSuffixes()
{
    std::vector<std::string> suffixes;
    for (const OssEvImageFormat &format : all()) {
        if (format.writer != nullptr)
            suffixes.emplace_back(format.suffixes.front());
    }
    return suffixes;
}

std::string OssEvImageFormat::writtenInDetail()
{
    std::string detail;
    for (const OssEvImageFormat &format : all()) {
        if (format.writer == nullptr)
            continue;
        detail.append(detail.empty() ? "" : "; ").append(format.suffixes.front()).append(": ");
        detail.append(format.name).append(", ").append(format.depths);
    }
    return detail;
}

std::string OssEvImageFormat::writtenInWords(std::string_view prefix)
{
    const std::vector<std::string> suffixes = writtenSuffixes();
    std::string words;
    for (std::size_t i = 0; i < suffixes.size(); ++i) {
        const char *joint = i + 1 < suffixes.size() ? ", " : " or ";
        words.append(i == 0 ? "" : joint).append(prefix).append(suffixes[i]);
    }
    return words;
}
