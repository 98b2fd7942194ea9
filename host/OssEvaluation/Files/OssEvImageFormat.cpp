#include "OssEvaluation/Files/OssEvImageFormat.h"

#include "OssEvaluation/Files/ImageWriters.h"

#include <algorithm>
#include <cctype>

namespace {

// "16 bit, 8 bit or 32 bit float" of depths, "a, b or c" of anything with names.
template <class List, class Name>
std::string inWords(const List &list, const Name &nameOf)
{
    std::string words;
    for (std::size_t i = 0; i < list.size(); ++i) {
        words.append(i == 0 ? "" : i + 1 < list.size() ? ", " : " or ");
        words.append(nameOf(list[i]));
    }
    return words;
}

std::string inWords(const std::vector<OssEvDepth> &depths)
{
    return inWords(depths, [](OssEvDepth depth) { return OssEvDepthNames[std::size_t(depth)]; });
}

} // namespace

const std::vector<OssEvImageFormat> &OssEvImageFormat::all()
{
    using Depth = OssEvDepth;
    static const std::vector<OssEvImageFormat> table{
        {"OpenEXR",
         {"exr"},
         OssEvWriters::exr,
         {Depth::Half, Depth::Float},
         {"piz", "zip", "zips", "rle", "pxr24", "b44", "dwaa", "dwab", "none"}},
        {"PNG",
         {"png"},
         OssEvWriters::png,
         {Depth::Short, Depth::Byte},
         {"quick", "small", "none"}},
        {"TIFF",
         {"tif", "tiff"},
         OssEvWriters::tiff,
         {Depth::Short, Depth::Byte, Depth::Float},
         {"zip", "lzw", "none"}},
        {"JPEG", {"jpg", "jpeg"}, OssEvWriters::jpeg, {Depth::Byte}, {}, true, false},
        {"WebP", {"webp"}, OssEvWriters::webp, {Depth::Byte}, {}, true},
        {"Targa", {"tga"}, OssEvWriters::targa, {Depth::Byte}, {"rle", "none"}},
        {"Texture",
         {"tx"},
         OssEvWriters::texture,
         {Depth::Half, Depth::Float},
         {"zip", "piz", "none"}},
        {"Radiance", {"hdr"}, nullptr, {}, {}},
        {"Bitmap", {"bmp"}, nullptr, {}, {}},
        {"PSD", {"psd"}, nullptr, {}, {}},
        {"DPX", {"dpx"}, nullptr, {}, {}},
        {"SVG", {"svg"}, nullptr, {}, {}}};
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
        detail.append(format.name).append(", ").append(inWords(format.depths));
    }
    return detail;
}

std::string OssEvImageFormat::writtenInWords(std::string_view prefix)
{
    return inWords(writtenSuffixes(),
                   [prefix](const std::string &suffix) { return std::string(prefix) + suffix; });
}

OssEvResult OssEvImageFormat::check(const OssEvImageForm &form) const
{
    const std::string files = std::string(name) + " files";
    if (form.depth && std::find(depths.begin(), depths.end(), *form.depth) == depths.end())
        return OssEvResult::failure(files + " hold " + inWords(depths) + ", not "
                                    + std::string(OssEvDepthNames[std::size_t(*form.depth)]));
    const auto same = [](std::string_view one) {
        return std::string(one);
    };
    if (!form.compression.empty()
        && std::find(compressions.begin(), compressions.end(), form.compression)
               == compressions.end())
        return OssEvResult::failure(
            files + " know no compression \"" + form.compression + "\""
            + (compressions.empty() ? std::string() : ", only " + inWords(compressions, same)));
    if (form.quality != 0 && (!losesDetail || form.quality < 1 || form.quality > 100))
        return OssEvResult::failure(losesDetail ? "quality goes from 1 to 100"
                                                : files + " have no quality");
    return {};
}
