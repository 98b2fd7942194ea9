#include "OssEvaluation/Geometry/ObjText.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace {

/// How many there are of "v", "vt" and "vn".
using Counts = std::array<long, 3>;

std::string word(const std::string &line, std::size_t *at)
{
    const std::size_t first = line.find_first_not_of(" \t\r", *at);
    if (first == std::string::npos)
        return {};
    *at = std::min(line.find_first_of(" \t\r", first), line.size());
    return line.substr(first, *at - first);
}

void count(const std::string &key, Counts *counts)
{
    if (key == "v")
        ++(*counts)[0];
    else if (key == "vt")
        ++(*counts)[1];
    else if (key == "vn")
        ++(*counts)[2];
}

/// "3/1/2", of which each part may be missing; negative ones count back from the last.
bool exists(const std::string &corner, const Counts &before, const Counts &all)
{
    std::istringstream parts(corner);
    std::string part;
    for (std::size_t i = 0; i < all.size() && std::getline(parts, part, '/'); ++i) {
        const long index = std::strtol(part.c_str(), nullptr, 10);
        const bool isMissing = part.empty() && i > 0;
        if (!isMissing && (index == 0 || index > all[i] || -index > before[i]))
            return false;
    }
    return true;
}

bool isWhole(const std::string &face, std::size_t at, const Counts &before, const Counts &all)
{
    for (std::string corner = word(face, &at); !corner.empty(); corner = word(face, &at)) {
        if (corner.front() == '#')
            return true;
        if (!exists(corner, before, all))
            return false;
    }
    return true;
}

void appendNumbers(const std::string &line, std::size_t at, std::string *to)
{
    for (std::string number = word(line, &at); !number.empty(); number = word(line, &at)) {
        const std::size_t digits = number.find_first_not_of("+-");
        if (digits != std::string::npos && number[digits] == '.')
            number.insert(digits, 1, '0');
        to->append(1, ' ').append(number);
    }
}

} // namespace

ObjText ObjText::read(const std::string &path)
{
    Counts all{};
    std::string line;
    for (std::ifstream file(path, std::ios::binary); std::getline(file, line);) {
        std::size_t at = 0;
        count(word(line, &at), &all);
    }
    ObjText made;
    Counts before{};
    std::size_t number = 0;
    for (std::ifstream file(path, std::ios::binary); std::getline(file, line);) {
        ++number;
        std::size_t at = 0;
        const std::string key = word(line, &at);
        count(key, &before);
        if (key == "f" && !isWhole(line, at, before, all)) {
            if (made.leftOut == 0)
                made.firstFault = "line " + std::to_string(number) + ", \""
                                  + line.substr(0, line.find_last_not_of("\r ") + 1) + "\"";
            ++made.leftOut;
            continue;
        }
        if (key == "v" || key == "vt" || key == "vn") {
            made.text += key;
            appendNumbers(line, at, &made.text);
        } else {
            made.text += line;
        }
        made.text += '\n';
    }
    return made;
}
