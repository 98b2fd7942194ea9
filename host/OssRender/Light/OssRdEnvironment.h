#pragma once

#include "OssEvaluation/Values/OssEvResult.h"
#include "OssRender/OssRender_export.h"
#include "OssRender/Values/OssRdPicture.h"

#include <string>
#include <vector>

/// What surrounds an object: radiance from everywhere, as a picture of longitude and latitude. World
/// directions have y upwards; the picture's top is up, its centre is -z, its right +x.
namespace OssRdEnvironment {

/// Those of the program's own making, by the names that users see; the first is the usual one.
OSSRENDER_EXPORT const std::vector<std::string> &names();

/// One of names(); the first for any other. All have the same mean radiance, so that exposure need not
/// follow when another is chosen.
OSSRENDER_EXPORT OssRdPicture make(const std::string &name);

/// A picture of longitude and latitude from a file, usually *.hdr or *.exr, made smaller than
/// MostWidth. Refuses what is no picture of twice its height, has no colours, or holds what is no
/// number.
OSSRENDER_EXPORT OssEvResult read(const std::string &path, OssRdPicture *picture);

constexpr int MostWidth = 2048;
constexpr float Brightness = 0.6F; ///< mean radiance of the program's own

/// Texel coordinates from 0 to 1 of a direction, which need not be of length 1.
OSSRENDER_EXPORT glm::vec2 place(const glm::vec3 &direction);
/// The other way round; of length 1.
OSSRENDER_EXPORT glm::vec3 direction(const glm::vec2 &place);

/// Between texels, all the way round.
OSSRENDER_EXPORT glm::vec3 radiance(const OssRdPicture &picture, const glm::vec3 &direction);

} // namespace OssRdEnvironment
