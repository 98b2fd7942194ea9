#pragma once

#include "OssRender/Draw/GlObjects.h"
#include "OssRender/Draw/OssRdScene.h"

#include <memory>
#include <unordered_map>

/// What of a scene lies on the device: each thing once, known again by its pointer, and gone with the
/// first frame that does not use it. The device must be current.
class DeviceCopies
{
public:
    void beginFrame();
    void endFrame();

    /// Binds it for drawing.
    void mesh(const std::shared_ptr<const OssRdGeometry> &geometry);
    /// Of the mesh that is bound.
    static void draw(const OssRdGeometry::Part &part);
    /// Bind a texture to a unit.
    void texels(const OssRdMaterial::Channel4 &channels, int unit);
    enum class Light { Mirrored, Sharp, Dull };
    void probe(const std::shared_ptr<const OssRdLightProbe> &probe, Light light, int unit);
    void picture(const std::shared_ptr<const OssRdPicture> &picture, int unit);

private:
    struct Copy
    {
        std::shared_ptr<const void> of; ///< so that no other thing gets its address
        bool isUsed = false;
        GlTexture texture;
        GlTexture sharp;
        GlTexture dull;
        GlArray array;
        GlBuffer vertices;
        GlBuffer indices;
        OssRdMaterial::Changes changes; ///< that the texture has
    };

    /// `isNew`: it has to be filled.
    Copy &find(const std::shared_ptr<const void> &of, bool *isNew);
    /// Binds its texture; whether that has to be filled.
    bool bindFlat(const std::shared_ptr<const void> &of, int unit);
    static void fillMesh(const OssRdGeometry &geometry, Copy *copy);
    static void fillTexels(const OssRdMaterial::Texels &texels);
    static void fillProbe(const OssRdLightProbe &probe, Copy *copy);

    std::unordered_map<const void *, Copy> m_copies;
};
