#pragma once

#include <array>
#include <cmath>

/// The colour at a place between pixels, whose middles lie at whole numbers: of the four around it each in
/// proportion. `pixel` gives that of a column and row.
template <class Pixel>
std::array<float, 4> OssEvBetween(double x, double y, const Pixel &pixel)
{
    const int left = int(std::floor(x));
    const int top = int(std::floor(y));
    const auto right = float(x - left);
    const auto down = float(y - top);
    const std::array<float, 4> a = pixel(left, top);
    const std::array<float, 4> b = pixel(left + 1, top);
    const std::array<float, 4> c = pixel(left, top + 1);
    const std::array<float, 4> d = pixel(left + 1, top + 1);
    std::array<float, 4> mixed{};
    for (std::size_t i = 0; i < mixed.size(); ++i)
        mixed[i] = (a[i] * (1.0F - right) + b[i] * right) * (1.0F - down)
                   + (c[i] * (1.0F - right) + d[i] * right) * down;
    return mixed;
}
