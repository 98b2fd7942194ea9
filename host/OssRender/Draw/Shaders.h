#pragma once

/// Texts of the files beside this one.
namespace OssRdShaders {

extern const char *const SurfaceVertex;
extern const char *const SurfaceFragment;
extern const char *const Brdf;
extern const char *const BackgroundVertex;
extern const char *const BackgroundFragment;
extern const char *const DepthVertex;
extern const char *const DepthFragment;
extern const char *const GroundVertex;
extern const char *const GroundFragment;

} // namespace OssRdShaders
