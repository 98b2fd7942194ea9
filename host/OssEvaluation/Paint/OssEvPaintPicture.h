#pragma once

#include "OssEvaluation/Files/OssEvColorSpaces.h"
#include "OssEvaluation/OssEvaluation_export.h"
#include "OssEvaluation/Values/OssEvResult.h"

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

/// A picture whose colours a brush paints with, repeated in both directions. Smaller copies of it are
/// kept, so that it does not flicker where it is small. Immutable.
class OSSEVALUATION_EXPORT OssEvPaintPicture
{
public:
    using Pointer = std::shared_ptr<const OssEvPaintPicture>;
    /// Premultiplied and scene-linear.
    using Color = std::array<float, 4>;

    /// Pixels across, at most; of larger ones a half or quarter is used.
    static constexpr int LargestSize = 4096;

    /// Rows from the top.
    OssEvPaintPicture(int width, int height, const std::vector<Color> &pixels,
                      std::string name = {});

    /// Null colours: the built-in ones. Refuses what cannot be read; the message names the file.
    static OssEvResult read(const std::string &path, const OssEvColorSpaces::Pointer &colors,
                            Pointer *picture);

    /// At a place of which the picture takes 0 to 1, x to the right and y downwards. `across`: texels
    /// that its width takes.
    Color at(double x, double y, double across) const;

    int width() const { return m_levels.front().width; }

    int height() const { return m_levels.front().height; }

    const std::string &name() const { return m_name; }

private:
    struct Level
    {
        int width;
        int height;
        std::vector<std::array<std::uint16_t, 4>> pixels; ///< half floats

        Color pixel(int x, int y) const;
        Color between(double x, double y) const;
    };

    Level halved(const Level &fine) const;

    std::string m_name;
    std::vector<Level> m_levels; ///< each half the size of the one before
};
