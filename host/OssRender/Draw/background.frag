in vec3 direction;
out vec4 color;

uniform sampler2D surrounding;
uniform samplerCube mirrored;
uniform bool isBlurred;
uniform mat3 toSurrounding;
uniform float intensity;

void main()
{
    vec3 d = normalize(toSurrounding * direction);
    vec2 at = vec2(atan(d.x, -d.z) / 6.28318530718 + 0.5, acos(clamp(d.y, -1.0, 1.0)) / 3.14159265359);
    vec3 light = isBlurred ? textureLod(mirrored, d, 2.6).rgb
                           : textureLod(surrounding, at, 0.0).rgb;
    color = vec4(min(light * intensity, vec3(30000.0)), 1.0);
}
