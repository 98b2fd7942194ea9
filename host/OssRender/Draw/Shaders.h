#pragma once

/// Texts of the files beside this one.
namespace OssRdShaders {

extern const char *const surface_vert;
extern const char *const surface_frag;
extern const char *const brdf_glsl;
extern const char *const background_vert;
extern const char *const background_frag;
extern const char *const depth_vert;
extern const char *const depth_frag;
extern const char *const ground_vert;
extern const char *const ground_frag;

} // namespace OssRdShaders
