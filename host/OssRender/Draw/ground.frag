in vec3 worldPlace;
out vec4 color;

uniform vec3 centre;
uniform float reach;
uniform sampler2DShadow shadowMap;
uniform mat4 toShadow;
uniform float shadowBias;

// How dark a shadow is: the rest of the light comes from all around.
const float strength = 0.55;

void main()
{
    vec4 at = toShadow * vec4(worldPlace, 1.0);
    vec3 to = at.xyz / at.w * 0.5 + 0.5;
    vec2 texel = 1.0 / vec2(textureSize(shadowMap, 0));
    float lit = 0.0;
    for (int i = 0; i < 16; ++i) {
        vec2 offset = (vec2(float(i & 3), float(i >> 2)) - 1.5) * 2.0;
        lit += texture(shadowMap, vec3(to.xy + offset * texel, to.z - shadowBias));
    }
    float fade = 1.0 - smoothstep(0.5, 1.0, distance(worldPlace, centre) / reach);
    color = vec4(0.0, 0.0, 0.0, strength * fade * (1.0 - lit / 16.0));
}
