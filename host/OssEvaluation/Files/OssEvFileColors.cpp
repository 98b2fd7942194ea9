#include "OssEvaluation/Files/OssEvFileColors.h"

#include <algorithm>
#include <cctype>

#include <fnmatch.h>

namespace {

/// As patterns and names are compared.
std::string plain(const std::string &text)
{
    std::string made = text;
    std::transform(made.begin(), made.end(), made.begin(), [](unsigned char letter) {
        const bool parts = letter == '-' || letter == '.' || letter == ' ';
        return parts ? '_' : char(std::tolower(letter));
    });
    return made;
}

} // namespace

const OssEvFileColors::Rules &OssEvFileColors::usualRules()
{
    static const Rules rules = [] {
        Rules made;
        for (const char *pattern :
             {"*_normal*", "*_nrm*", "*_nor_*", "*_bump*", "*_height*", "*_disp*", "*_rough*",
              "*_gloss*", "*_metal*", "*_ao_*", "*_occlusion*", "*_opacity*", "*_mask*", "*_id_*",
              "*_orm_*", "*_arm_*"})
            made.push_back({pattern, Data});
        return made;
    }();
    return rules;
}

OssEvFileColors::OssEvFileColors(OssEvColorSpaces::Pointer spaces, Rules rules)
    : m_spaces(spaces != nullptr ? std::move(spaces) : OssEvColorSpaces::builtIn())
    , m_rules(std::move(rules))
{
}

std::string OssEvFileColors::ruled(const std::string &path) const
{
    const std::size_t slash = path.rfind('/');
    const std::string name = plain(slash == std::string::npos ? path : path.substr(slash + 1));
    const auto found = std::find_if(m_rules.begin(), m_rules.end(), [&name](const Rule &rule) {
        return ::fnmatch(plain(rule.pattern).c_str(), name.c_str(), 0) == 0;
    });
    return found == m_rules.end() ? std::string() : found->space;
}

std::string OssEvFileColors::spaceOf(const File &file) const
{
    if (file.channels == 1)
        return Data;
    for (const std::string &space :
         {ruled(file.path), file.space, m_spaces->spaceOfFile(file.path)}) {
        if (!space.empty())
            return space == Data || m_spaces->isData(space) ? std::string(Data) : space;
    }
    return file.isInteger ? OssEvColorSpaces::Screen : m_spaces->working();
}

std::string OssEvFileColors::colorSpaceOf(const File &file) const
{
    for (const std::string &space :
         {ruled(file.path), file.space, m_spaces->spaceOfFile(file.path)}) {
        if (!space.empty() && space != Data && !m_spaces->isData(space))
            return space;
    }
    return file.isInteger ? OssEvColorSpaces::Screen : m_spaces->working();
}
