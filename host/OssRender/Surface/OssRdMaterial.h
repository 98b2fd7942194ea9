#pragma once

#include "OssEvaluation/Values/OssEvRegion.h"

#include <glm/glm.hpp>

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

/// What a surface is made of on a patch: its channels, four to a map. Each map is one value
/// everywhere, or texels.
struct OssRdMaterial
{
    enum Map {
        Color, ///< base colour, scene-linear and not premultiplied; opacity
        Shape, ///< normal map's x and y from 0 to 1, y upwards; metallic; roughness
        Glow,  ///< emission, scene-linear; ambient occlusion, 1 where there is none
        Coat,  ///< clear coat; its roughness; displacement
        Maps
    };

    /// Square, RGBA as half floats, row by row from the top. Immutable once shared.
    struct Texels
    {
        int size = 0;
        std::vector<std::uint16_t> rgba;
        /// Copies of it, each half the size of the one before (OssRdMips); none: whoever draws makes them.
        std::vector<std::vector<std::uint16_t>> smaller;
        /// Of a colour map: nothing shines through.
        bool isOpaque = false;
    };

    /// What of a map has become other since, as while one paints: a part of its texels and what follows
    /// of it in the smaller copies. Immutable once shared.
    struct Change
    {
        struct Part
        {
            OssEvRegion area;
            std::vector<std::uint16_t> rgba;
        };

        std::vector<Part>
            parts; ///< of the map itself, then of its copies as far as they are changed
        bool isOpaque = false;

        const OssEvRegion &area() const { return parts.front().area; }
    };

    using Changes = std::vector<std::shared_ptr<const Change>>;

    struct Channel4
    {
        glm::vec4 value{0.0F};
        std::shared_ptr<const Texels> texels;
        /// Of the texels, in the order in which they came; each has an area of its own.
        Changes changes = {};

        friend bool operator==(const Channel4 &a, const Channel4 &b)
        {
            return a.value == b.value && a.texels == b.texels && a.changes == b.changes;
        }
    };

    /// How far a displacement of 1 stands out, in the world's lengths: for light, where 0 means that a
    /// normal map says it all, and for surfaces that are moved.
    float reach = 0.0F;
    float height = 0.0F;

    std::array<Channel4, Maps> maps{{{{0.5F, 0.5F, 0.5F, 1.0F}, {}},
                                     {{0.5F, 0.5F, 0.0F, 0.5F}, {}},
                                     {{0.0F, 0.0F, 0.0F, 1.0F}, {}},
                                     {{0.0F, 0.1F, 0.0F, 0.0F}, {}}}};

    friend bool operator==(const OssRdMaterial &a, const OssRdMaterial &b)
    {
        return a.reach == b.reach && a.height == b.height && a.maps == b.maps;
    }
};
