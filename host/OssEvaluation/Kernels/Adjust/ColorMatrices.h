#pragma once

#include "OssEvaluation/Values/OssEvWorkingSpace.h"

#include <array>
#include <string>
#include <vector>

/// The way from one encoding of colours to another: matrices with a curve after the first and after
/// the second.
struct OssEvColorWay
{
    enum Code { Straight, FromSrgb, ToSrgb, Cube, CubeRoot };

    OssEvWorkingSpace::Matrix first = OssEvWorkingSpace::Identity;
    Code before = Straight;
    OssEvWorkingSpace::Matrix middle = OssEvWorkingSpace::Identity;
    Code after = Straight;
    OssEvWorkingSpace::Matrix last = OssEvWorkingSpace::Identity;
    /// Whether the curves have a meaning for a single channel.
    bool hasGrey = false;
};

/// In the order of what follows takes as numbers; the first is the working space.
const std::vector<std::string> &OssEvColorSpaceNames();
OssEvColorWay OssEvColorSpaceWay(int from, int to, const OssEvWorkingSpace &working);

/// Makes neutral what a light of this temperature in Kelvin lit, with the luminance of white kept;
/// 6500 leaves colours as they are. A positive tint, up to 1, takes green away.
OssEvColorWay OssEvWhiteBalance(double temperature, double tint, const OssEvWorkingSpace &working);

/// Display values of sRGB of a colour of the working space.
std::array<float, 3> OssEvDisplayed(const std::array<float, 3> &color,
                                    const OssEvWorkingSpace &working);
