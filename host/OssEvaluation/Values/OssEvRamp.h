#pragma once

#include "OssEvaluation/OssEvaluation_export.h"
#include "OssEvaluation/Values/OssEvResult.h"

#include <array>
#include <string>
#include <string_view>
#include <vector>

/// Colours at places from 0 to 1, mixed between them and constant beyond them.
class OSSEVALUATION_EXPORT OssEvRamp
{
public:
    struct Stop
    {
        double place;
        std::array<float, 4> color; ///< scene-linear, not premultiplied

        bool operator==(const Stop &other) const
        {
            return place == other.place && color == other.color;
        }
    };

    enum class Mix { Linear, Smooth, Step };

    OssEvRamp() = default;
    /// Sorts by place, within 0 to 1; of stops at one place the later ones come behind.
    explicit OssEvRamp(std::vector<Stop> stops);

    /// Reads "0,0,0,0,1 0.5,1,0.2,0,1": place, red, green, blue and alpha of each stop.
    static OssEvResult fromText(std::string_view text, OssEvRamp *ramp);
    /// The shortest digits that read back the same.
    std::string toText() const;

    const std::vector<Stop> &stops() const { return m_stops; }

    /// Premultiplied, and mixed so. Black to white when there is no stop.
    std::array<double, 4> at(double place, Mix mix) const;

    bool operator==(const OssEvRamp &other) const { return m_stops == other.m_stops; }

private:
    std::vector<Stop> m_stops;
};
