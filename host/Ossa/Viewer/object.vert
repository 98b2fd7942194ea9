attribute highp vec3 position;
attribute highp vec3 normal;
attribute highp vec2 uv;

uniform highp mat4 camera;
uniform highp mat4 projection;
uniform highp mat3 normals;
uniform highp vec2 patchOrigin;

varying highp vec3 seenNormal;
varying highp vec3 seenPlace;
varying highp vec2 place;

void main()
{
    highp vec4 seen = camera * vec4(position, 1.0);
    seenPlace = seen.xyz;
    seenNormal = normals * normal;
    // Patches grow upwards, pictures downwards.
    place = vec2(uv.x - patchOrigin.x, 1.0 - (uv.y - patchOrigin.y));
    gl_Position = projection * seen;
}
