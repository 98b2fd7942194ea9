#pragma once

#include <algorithm>

/// Rectangle of texels. x grows to the right, y downwards, as in a file; the first texel of a patch
/// is (0, 0).
struct OssEvRegion
{
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    int right() const { return x + width; }

    int bottom() const { return y + height; }

    bool isEmpty() const { return width <= 0 || height <= 0; }

    bool contains(int px, int py) const
    {
        return px >= x && px < right() && py >= y && py < bottom();
    }

    OssEvRegion expanded(int margin) const
    {
        return {x - margin, y - margin, width + 2 * margin, height + 2 * margin};
    }

    OssEvRegion intersected(const OssEvRegion &other) const
    {
        const int left = std::max(x, other.x);
        const int top = std::max(y, other.y);
        return {left, top, std::min(right(), other.right()) - left,
                std::min(bottom(), other.bottom()) - top};
    }

    /// The smallest rectangle around both; empty ones do not count.
    OssEvRegion united(const OssEvRegion &other) const
    {
        if (isEmpty() || other.isEmpty())
            return isEmpty() ? other : *this;
        const int left = std::min(x, other.x);
        const int top = std::min(y, other.y);
        return {left, top, std::max(right(), other.right()) - left,
                std::max(bottom(), other.bottom()) - top};
    }

    bool operator==(const OssEvRegion &other) const
    {
        return x == other.x && y == other.y && width == other.width && height == other.height;
    }
};

/// The texels that one evaluation is about: a patch at a size.
struct OssEvFrame
{
    /// Texels across and down, after level and reduction.
    int width = 0;
    int height = 0;
    /// UDIM number of the patch.
    int patch = 1001;
    /// Texels of the full patch that one texel of this frame stands for, along an edge. It is 2
    /// or more in inputs that are halved before it.
    double scale = 1.0;

    OssEvRegion region() const { return {0, 0, width, height}; }

    bool operator==(const OssEvFrame &other) const
    {
        return width == other.width && height == other.height && patch == other.patch
               && scale == other.scale;
    }
};
