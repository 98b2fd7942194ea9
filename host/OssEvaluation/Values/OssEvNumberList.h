#pragma once

#include <array>
#include <charconv>
#include <cmath>
#include <string_view>
#include <vector>

/// Reads one group at the beginning of the text and takes it off.
template <std::size_t Count>
bool OssEvReadGroup(std::string_view *text, std::array<double, Count> *group)
{
    for (std::size_t i = 0; i < Count; ++i) {
        if (i > 0) {
            if (text->empty() || text->front() != ',')
                return false;
            text->remove_prefix(1);
        }
        double &number = (*group)[i];
        const char *begin = text->data();
        const auto [end, error] = std::from_chars(begin, begin + text->size(), number);
        if (error != std::errc() || !std::isfinite(number))
            return false;
        text->remove_prefix(std::size_t(end - begin));
    }
    return true;
}

/// Reads texts such as "0,0 0.5,0.8 1,1": groups of `Count` finite numbers, joined by commas, with
/// spaces between the groups. False when it is none, or has more than 1024 groups.
template <std::size_t Count>
bool OssEvReadNumbers(std::string_view text, std::vector<std::array<double, Count>> *groups)
{
    constexpr std::size_t Most = 1024;
    const auto skipSpaces = [&text] {
        while (!text.empty()
               && (text.front() == ' ' || text.front() == '\t' || text.front() == '\n'))
            text.remove_prefix(1);
    };
    groups->clear();
    for (skipSpaces(); !text.empty(); skipSpaces()) {
        std::array<double, Count> group{};
        if (!OssEvReadGroup(&text, &group) || groups->size() == Most)
            return false;
        groups->push_back(group);
    }
    return true;
}
