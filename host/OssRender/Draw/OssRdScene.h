#pragma once

#include "OssRender/Light/OssRdLightProbe.h"
#include "OssRender/Surface/OssRdGeometry.h"
#include "OssRender/Surface/OssRdMaterial.h"

#include <algorithm>
#include <map>
#include <memory>
#include <vector>

/// What there is to see. What is shared is known again by its pointer and goes to the device once.
struct OssRdScene
{
    struct Object
    {
        std::shared_ptr<const OssRdGeometry> geometry;
        std::map<int, OssRdMaterial> materials; ///< by patch; others look as a default one
        std::vector<int> slots = {};            ///< of the geometry's; none: all

        bool covers(int slot) const
        {
            return slots.empty() || std::find(slots.cbegin(), slots.cend(), slot) != slots.cend();
        }

        friend bool operator==(const Object &a, const Object &b)
        {
            return a.geometry == b.geometry && a.materials == b.materials && a.slots == b.slots;
        }
    };

    std::vector<Object> objects;

    /// Light from all around; none when null.
    std::shared_ptr<const OssRdLightProbe> probe;
    /// What `probe` was made of, to be seen behind the objects.
    std::shared_ptr<const OssRdPicture> surrounding;
    float turn = 0.0F;      ///< of the surrounding around y, in radians
    float intensity = 1.0F; ///< of the surrounding

    /// A light far away, which casts shadows; `keyLight` is its irradiance on what faces it, over pi.
    glm::vec3 toKeyLight{0.4F, 0.8F, 0.45F};
    glm::vec3 keyLight{0.0F};

    /// Whether they look the same from everywhere, as far as is seen by what they share.
    friend bool operator==(const OssRdScene &a, const OssRdScene &b)
    {
        return a.objects == b.objects && a.probe == b.probe && a.surrounding == b.surrounding
               && a.turn == b.turn && a.intensity == b.intensity && a.toKeyLight == b.toKeyLight
               && a.keyLight == b.keyLight;
    }
};

/// How it is looked at.
struct OssRdView
{
    enum class Shows {
        Lit,
        BaseColor,
        Metallic,
        Roughness,
        Normal, ///< of the surface with its normal map, in the world; 0.5 is 0
        Displacement,
        Emission,
        Opacity,
        Occlusion,
        ClearCoat,
        Patches, ///< a grid over the texture coordinates
        Matcap,
        Shape ///< normals of the mesh alone
    };
    enum class Behind { Plain, Surrounding, Blurred };

    int width = 0;
    int height = 0;
    bool isSmooth = true;  ///< several samples a pixel
    bool isCoarse = false; ///< as quickly as can be: with fewer triangles, and less of what is soft
    /// In how many directions a surface looks for what it mirrors; 0: in one, where each roughness has its
    /// blurred picture, which is quick and near enough for what moves.
    int mirrorSamples = 0;
    glm::mat4 camera{1.0F};
    glm::mat4 projection{1.0F};
    Shows shows = Shows::Lit;
    Behind behind = Behind::Plain;
    glm::vec4 ground{0.0F}; ///< what is behind when Plain, premultiplied
    bool hasGroundShadow = true;
    bool hasWires = false;
    bool hidesBackFaces = false;

    friend bool operator==(const OssRdView &a, const OssRdView &b)
    {
        return a.width == b.width && a.height == b.height && a.isSmooth == b.isSmooth
               && a.isCoarse == b.isCoarse && a.mirrorSamples == b.mirrorSamples
               && a.camera == b.camera && a.projection == b.projection && a.shows == b.shows
               && a.behind == b.behind && a.ground == b.ground
               && a.hasGroundShadow == b.hasGroundShadow && a.hasWires == b.hasWires
               && a.hidesBackFaces == b.hidesBackFaces;
    }
};
