#pragma once

#include "OssEvaluation/OssEvaluation_export.h"
#include "OssEvaluation/Values/OssEvResult.h"

#include <memory>
#include <string>
#include <vector>

/// The shape of a brush that is not round: how much each place of a square is covered, 0 to 1. Smaller
/// copies of it are kept, so that small dabs do not flicker. Immutable.
class OSSEVALUATION_EXPORT OssEvStamp
{
public:
    using Pointer = std::shared_ptr<const OssEvStamp>;

    /// Pixels across, at most; larger pictures are made smaller.
    static constexpr int LargestSize = 1024;

    /// Rows from the top, `size` across and down. `name` is where it is from.
    OssEvStamp(int size, std::vector<float> coverage, std::string name = {});

    /// Alpha of a picture or, where all of it is opaque, how dark it is: so pictures of ink on paper do
    /// as well. What is not square is centred. Refuses what cannot be read and what covers nothing; the
    /// message names the file.
    static OssEvResult read(const std::string &path, Pointer *stamp);

    /// At a place from -1 to 1, x to the right and y downwards; 0 outside. `across`: texels that the
    /// whole square takes.
    float coverage(double x, double y, double across) const;

    int size() const { return m_levels.front().size; }

    /// The path that it was read from, or what it was given.
    const std::string &name() const { return m_name; }

private:
    struct Level
    {
        int size;
        std::vector<float> values;

        float at(int x, int y) const;
        float between(double x, double y) const;
    };

    std::string m_name;
    std::vector<Level> m_levels; ///< each half the size of the one before
};
