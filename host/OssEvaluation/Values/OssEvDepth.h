#pragma once

#include <array>
#include <string_view>

/// How finely the values of an image are kept.
enum class OssEvDepth { Byte, Half, Float, Short };

/// What the depths are called, in their order, where a user chooses one.
constexpr std::array<std::string_view, 4> OssEvDepthNames{"8 bit", "16 bit half", "32 bit float",
                                                          "16 bit"};
