#include "OssEvaluation/Files/OssEvUdim.h"

#include "OssEvaluation/Values/OssEvPatch.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace {

constexpr std::size_t Digits = 4;
constexpr std::string_view Separators = "._-";
constexpr std::array<std::string_view, 2> Tokens{OssEvUdim::Placeholder, "%(UDIM)d"};
// Numbers up to here are patches in any pipeline; later ones are more likely frames or years.
constexpr int LastUsual = 1999;

int numberAt(std::string_view text, std::size_t place)
{
    int number = 0;
    for (std::size_t i = place; i < place + Digits; ++i) {
        if (i >= text.size() || std::isdigit(static_cast<unsigned char>(text[i])) == 0)
            return 0;
        number = number * 10 + (text[i] - '0');
    }
    return number;
}

bool isFile(const std::string &path)
{
    std::error_code error;
    return std::filesystem::is_regular_file(path, error);
}

} // namespace

std::string OssEvUdim::pattern(const std::string &path)
{
    const std::size_t dot = path.rfind('.');
    if (isPattern(path) || dot == std::string::npos || dot < Digits + 1
        || path.find('/', dot) != std::string::npos) // a folder's
        return path;
    const std::size_t place = dot - Digits;
    const char separator = path[place - 1];
    const int number = numberAt(path, place);
    if (number < OssEvPatch::First || number > LastUsual
        || Separators.find(separator) == std::string_view::npos)
        return path;
    const std::string result = path.substr(0, place) + Placeholder + path.substr(dot);
    const bool sure = separator == '.' || isFile(file(result, OssEvPatch::First));
    return sure ? result : path;
}

bool OssEvUdim::isPattern(const std::string &path)
{
    return std::any_of(Tokens.begin(), Tokens.end(), [&path](std::string_view token) {
        return path.find(token) != std::string::npos;
    });
}

std::string OssEvUdim::file(const std::string &pattern, int patch)
{
    std::string result = pattern;
    for (const std::string_view token : Tokens) {
        const std::string number = std::to_string(patch);
        for (std::size_t place = result.find(token); place != std::string::npos;
             place = result.find(token, place + number.size()))
            result.replace(place, token.size(), number);
    }
    return result;
}

std::vector<int> OssEvUdim::patches(const std::string &pattern)
{
    std::vector<int> result;
    if (!isPattern(pattern))
        return result;
    const std::filesystem::path sample(file(pattern, OssEvPatch::First));
    const std::string name = sample.filename().string();
    const std::string first = std::to_string(OssEvPatch::First);
    std::error_code error;
    for (std::filesystem::directory_iterator
             entry(sample.has_parent_path() ? sample.parent_path() : ".", error),
         end;
         !error && entry != end; entry.increment(error)) {
        const std::string found = entry->path().filename().string();
        // The place of the number is the same in all names of a set.
        for (std::size_t place = name.find(first); place != std::string::npos;
             place = name.find(first, place + 1)) {
            const int number = found.size() == name.size() ? numberAt(found, place) : 0;
            const bool valid = OssEvPatch::isValid(number);
            if (valid && std::filesystem::path(file(pattern, number)).filename() == found) {
                result.push_back(number);
                break;
            }
        }
    }
    std::sort(result.begin(), result.end());
    return result;
}
