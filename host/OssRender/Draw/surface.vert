layout(location = 0) in vec3 position;
layout(location = 1) in vec3 normal;
layout(location = 2) in vec4 tangent;
layout(location = 3) in vec2 uv;

uniform mat4 world;
uniform mat3 normals;
uniform mat4 viewProjection;
uniform vec2 patchOrigin;

out vec3 worldPlace;
out vec3 worldNormal;
out vec4 worldTangent;
out vec2 place;

void main()
{
    vec4 at = world * vec4(position, 1.0);
    worldPlace = at.xyz;
    worldNormal = normals * normal;
    worldTangent = vec4(mat3(world) * tangent.xyz, tangent.w);
    place = uv - patchOrigin;
    gl_Position = viewProjection * at;
}
