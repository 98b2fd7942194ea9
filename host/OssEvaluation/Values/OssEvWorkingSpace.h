#pragma once

#include <array>

/// What red, green and blue of the space in which everything is computed stand for, as far as kernels
/// need it. Of itself linear BT.709.
struct OssEvWorkingSpace
{
    using Weights = std::array<float, 3>;
    /// Rows for red, green and blue.
    using Matrix = std::array<float, 9>;

    static constexpr Weights Bt709Luminance{0.2126F, 0.7152F, 0.0722F};
    static constexpr Matrix Identity{1, 0, 0, 0, 1, 0, 0, 0, 1};

    /// Shares of the channels in how bright a colour is.
    Weights luminance = Bt709Luminance;
    /// The channels are those of linear BT.709, and the matrices nothing.
    bool isBt709 = true;
    Matrix fromBt709 = Identity;
    Matrix toBt709 = Identity;
};
