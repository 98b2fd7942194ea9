#pragma once

#include "OssEvaluation/Files/OssEvColorSpaces.h"
#include "OssEvaluation/OssEvaluation_export.h"

#include <string>
#include <vector>

/// In which colour space the numbers of image files stand, where nobody says it.
///
/// A single channel is data. Otherwise the first of these that knows: the rules, by the file's name;
/// what the file says of itself; the rules of the configuration; the kind of its numbers, of which whole
/// ones are the screen's and others stand in the working space.
class OSSEVALUATION_EXPORT OssEvFileColors
{
public:
    /// Stands for a data space in every configuration.
    static constexpr const char *Data = "Data";

    /// For files of certain names, without folder. In the pattern `*` stands for any letters, `?` for
    /// one; large letters are small ones, and "-", "." and blanks are "_".
    struct Rule
    {
        std::string pattern;
        /// Data, or a colour space.
        std::string space;

        friend bool operator==(const Rule &a, const Rule &b)
        {
            return a.pattern == b.pattern && a.space == b.space;
        }
    };

    using Rules = std::vector<Rule>;

    /// What is known of a file.
    struct File
    {
        std::string path;
        int channels = 4;
        bool isInteger = false;
        /// What it says of itself; mostly nothing.
        std::string space;
    };

    /// Normals, roughness and the like, by the names that are common for them.
    static const Rules &usualRules();

    /// The built-in colour spaces when null.
    explicit OssEvFileColors(OssEvColorSpaces::Pointer spaces = {}, Rules rules = {});

    const OssEvColorSpaces::Pointer &spaces() const { return m_spaces; }

    /// Data, or a colour space.
    std::string spaceOf(const File &file) const;
    /// The same for a file that holds colours, whatever its name or its channels.
    std::string colorSpaceOf(const File &file) const;

private:
    std::string ruled(const std::string &path) const;

    OssEvColorSpaces::Pointer m_spaces;
    Rules m_rules;
};
