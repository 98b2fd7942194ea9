#pragma once

#include "OssEvaluation/Schedule/OssEvPlan.h"
#include "OssEvaluation/Values/OssEvKey.h"
#include "OssModel/Export/OssExportMaterials.h"
#include "OssModel/Nodes/OssSnProducer.h"

#include <array>
#include <memory>

/// What a surface is made of, for whoever shows it in light: the channels of a material packed four at a
/// time, copied out of the document. Of a node that is no material its output is the base colour.
class OSSMODEL_EXPORT OssSurfaceMaps
{
public:
    enum Map {
        Color, ///< base colour, opacity
        Shape, ///< x and y of the normal map, metallic, roughness
        Glow,  ///< emission, ambient occlusion
        Coat,  ///< clear coat, its roughness, displacement
        Maps
    };

    /// GUI thread. Without paint that is in no image yet.
    static OssSurfaceMaps of(const OssSnProducer &shown, const OssGeoEntity *entity);

    /// How far a displacement of 1 stands out, in the world's lengths; 0 where nothing says how far.
    float height() const { return m_height; }

    /// The same for light alone: 0 where a normal map tells it already.
    float reach() const { return m_hasNormal ? 0.0F : m_height; }

    /// Why there is nothing to compute, in words.
    QString problem() const;
    std::shared_ptr<const OssEvMesh> mesh() const;

    /// Four channels as half floats. Any thread.
    OssEvTarget target(Map map, int patch, int resolution) const;
    /// Another key, other pixels; any thread. Looks at files.
    OssEvResult key(Map map, int patch, int resolution, OssEvKey *key) const;

private:
    std::array<OssEvTarget, Maps> m_targets;
    std::shared_ptr<const OssEvMesh> m_mesh;
    float m_height = 0.0F;
    bool m_hasNormal = false;
    QString m_problem;
};
