#pragma once

#include "OssRender/OssRender_export.h"
#include "OssRender/Values/OssRdPicture.h"

/// How a surface reflects: microfacets of GGX (Walter et al. 2007) with height-correlated masking
/// (Heitz 2014), Schlick's Fresnel, and what bounces between them given back as a factor (Turquin
/// 2019). Diffuse light is what is not reflected.
///
/// Directions of length 1 away from the surface, whose normal is z. Roughness is what users see; its
/// square is the width of the distribution.
namespace OssRdBrdf {

/// Part of the light from all around that goes to a viewer: x times the reflectivity head on, and y.
using AlbedoTable = OssRdGrid<glm::vec2>;

constexpr int TableSize = 64;

/// Columns are cosines of the viewer's angle, rows are roughness, both from 0 to 1 at the centres of
/// the outermost texels. Made once, on first need; any thread.
OSSRENDER_EXPORT const AlbedoTable &albedoTable();
/// A facet's normal, drawn as they are distributed, from two numbers between 0 and 1.
OSSRENDER_EXPORT glm::vec3 facet(const glm::vec2 &random, float roughness);

/// The i-th of so many points that cover the unit square evenly (Hammersley).
OSSRENDER_EXPORT glm::vec2 evenPoint(unsigned i, unsigned count);

} // namespace OssRdBrdf
