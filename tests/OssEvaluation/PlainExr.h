#pragma once

#include <functional>
#include <string>
#include <vector>

/// EXR files byte by byte, without a library: also such as no program of ours would write.
struct PlainExr
{
    /// In the order of the alphabet, as the format wants them.
    std::vector<std::string> channels{"A", "B", "G", "R"};
    /// The first texel's place, and the size.
    int left = 0;
    int top = 0;
    int width = 4;
    int height = 4;
    /// Half floats, or floats.
    bool isHalf = true;
    /// Of the file's tiles; 0 for rows.
    int tileWidth = 0;
    int tileHeight = 0;
    bool isDeep = false;
    /// x and y from the first texel.
    std::function<float(const std::string &channel, int x, int y)> value = [](const std::string &,
                                                                              int, int) {
        return 0.5F;
    };

    std::string bytes() const;

private:
    std::string header() const;
    std::string block(int x, int y, int columns, int rows) const;
};
