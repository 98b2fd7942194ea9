#pragma once

#include <glm/glm.hpp>

#include <cstddef>
#include <vector>

/// Colours in a grid, row by row from the top.
template <class Color>
struct OssRdGrid
{
    int width = 0;
    int height = 0;
    std::vector<Color> texels;

    OssRdGrid() = default;

    OssRdGrid(int w, int h)
        : width(w)
        , height(h)
        , texels(std::size_t(w) * std::size_t(h))
    {
    }

    bool isEmpty() const { return texels.empty(); }

    Color &at(int x, int y) { return texels[std::size_t(y) * std::size_t(width) + std::size_t(x)]; }

    const Color &at(int x, int y) const
    {
        return texels[std::size_t(y) * std::size_t(width) + std::size_t(x)];
    }
};

/// Scene-linear, without an alpha.
using OssRdPicture = OssRdGrid<glm::vec3>;
/// Scene-linear and premultiplied.
using OssRdImage = OssRdGrid<glm::vec4>;
