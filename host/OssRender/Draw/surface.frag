// Ways of drawing: LIT; SAMPLED, with mirrorSamples; BUMPS, where a map stands out;
// COATED; COARSE, quickly; WIRES.
in vec3 worldPlace;
in vec3 worldNormal;
in vec4 worldTangent;
in vec2 place;
out vec4 color;

// Channels, four to a map, in the order of OssRdMaterial.
uniform sampler2D colorMap;
uniform sampler2D shapeMap;
uniform sampler2D glowMap;
uniform sampler2D coatMap;
uniform vec4 values[4];
uniform bvec4 hasTexels;
uniform float reach; // of a displacement of 1

uniform vec3 eye;
uniform int shows;
uniform samplerCube mirrored;
uniform int mirrorLevels;
uniform bool hasProbe;
uniform samplerCube dull;
uniform samplerCube sharp; // with plain mip levels
uniform int mirrorSamples;
uniform mat3 toSurrounding;
uniform float intensity;

uniform vec3 toKeyLight;
uniform vec3 keyLight;
uniform sampler2DShadow shadowMap;
uniform mat4 toShadow;
uniform float shadowBias;
uniform float shadowStep;

const float least = 0.0001;

vec4 map(int index, sampler2D texels)
{
    // Rows of pictures go downwards.
    return hasTexels[index] ? texture(texels, vec2(place.x, 1.0 - place.y)) : values[index];
}

// Rough surfaces do not send most where a mirror would, but nearer to where they face (Lagarde and de
// Rousiers 2014).
vec3 mirrorReady(vec3 n, vec3 toEye, float roughness)
{
    float smoothness = 1.0 - roughness;
    float mirrors = smoothness * (sqrt(smoothness) + roughness);
    vec3 direction = normalize(mix(n, reflect(-toEye, n), mirrors));
    return textureLod(mirrored, toSurrounding * direction, roughness * float(mirrorLevels - 1)).rgb;
}

#ifdef SAMPLED
// A facet that the eye sees, from two numbers between 0 and 1 (Heitz 2018). The normal is z.
vec3 seenFacet(vec3 toEye, float alpha, vec2 random)
{
    vec3 stretched = normalize(vec3(alpha * toEye.xy, toEye.z));
    float length2 = dot(stretched.xy, stretched.xy);
    vec3 first = length2 > 1e-7 ? vec3(-stretched.y, stretched.x, 0.0) * inversesqrt(length2)
                                : vec3(1.0, 0.0, 0.0);
    vec3 second = cross(stretched, first);
    float radius = sqrt(random.x);
    float angle = 2.0 * pi * random.y;
    float x = radius * cos(angle);
    float y = radius * sin(angle);
    float part = 0.5 * (1.0 + stretched.z);
    y = (1.0 - part) * sqrt(1.0 - x * x) + part * y;
    vec3 half_ = x * first + y * second + sqrt(max(0.0, 1.0 - x * x - y * y)) * stretched;
    return normalize(vec3(alpha * half_.xy, max(half_.z, 1e-5)));
}

vec2 evenPoint(int i, int count)
{
    uint bits = uint(i);
    bits = (bits << 16u) | (bits >> 16u);
    bits = ((bits & 0x55555555u) << 1u) | ((bits & 0xAAAAAAAAu) >> 1u);
    bits = ((bits & 0x33333333u) << 2u) | ((bits & 0xCCCCCCCCu) >> 2u);
    bits = ((bits & 0x0F0F0F0Fu) << 4u) | ((bits & 0xF0F0F0F0u) >> 4u);
    bits = ((bits & 0x00FF00FFu) << 8u) | ((bits & 0xFF00FF00u) >> 8u);
    return vec2((float(i) + 0.5) / float(count), float(bits) * 2.3283064365386963e-10);
}

// The surrounding as the surface mirrors it: for a reflectivity of 1, and where Fresnel adds to 0.
// Each sample takes the level that covers as much as it stands for.
void mirrorSampled(vec3 n, vec3 toEye, float roughness, float share, out vec3 ofOne, out vec3 ofNone)
{
    float alpha = max(roughness, leastRoughness) * max(roughness, leastRoughness);
    vec3 up = abs(n.y) < 0.99 ? vec3(0.0, 1.0, 0.0) : vec3(1.0, 0.0, 0.0);
    vec3 x = normalize(cross(up, n));
    vec3 y = cross(n, x);
    vec3 own = vec3(dot(toEye, x), dot(toEye, y), max(dot(toEye, n), 1e-3));
    float size = float(textureSize(sharp, 0).x);
    float texel = 4.0 * pi / (6.0 * size * size);
    // Dull light needs to be looked for farther around, and what reflects little less well.
    int samples = max(8, int(float(mirrorSamples) * share * clamp(2.0 * roughness, 0.125, 1.0)));
    float square = alpha * alpha;
    float ofEye = sqrt(square + (1.0 - square) * own.z * own.z);
    vec2 weights = vec2(1e-6);
    ofOne = vec3(0.0);
    ofNone = vec3(0.0);
    for (int i = 0; i < samples; ++i) {
        vec3 half_ = seenFacet(own, alpha, evenPoint(i, samples));
        float toHalf = max(dot(own, half_), 0.0);
        vec3 light = 2.0 * toHalf * half_ - own;
        if (light.z <= 0.0)
            continue;
        float ofLight = sqrt(square + (1.0 - square) * light.z * light.z);
        // Masking of both over masking of the eye.
        float weight = light.z * (own.z + ofEye) / (own.z * ofLight + light.z * ofEye);
        float d = half_.z * half_.z * square + dot(half_.xy, half_.xy);
        float density = square / (pi * d * d) / (2.0 * (own.z + ofEye));
        float level = 0.5 * log2(1.0 / (float(samples) * density * texel)) + 0.0;
        vec3 seen = textureLod(sharp, toSurrounding * (x * light.x + y * light.y + n * light.z),
                               max(level, 0.0)).rgb;
        float fresnel = schlick(toHalf);
        ofOne += weight * (1.0 - fresnel) * seen;
        ofNone += weight * fresnel * seen;
        weights += weight * vec2(1.0 - fresnel, fresnel);
    }
    ofOne /= weights.x;
    ofNone /= weights.y;
}
#endif

float lit(vec3 geometric)
{
    // A little outside of the surface, which would else lie in a shadow of its own.
    vec4 at = toShadow * vec4(worldPlace + geometric * shadowStep, 1.0);
    vec3 to = at.xyz / at.w * 0.5 + 0.5;
    if (any(lessThan(to, vec3(0.0))) || any(greaterThan(to, vec3(1.0))))
        return 1.0;
    vec2 texel = 1.0 / vec2(textureSize(shadowMap, 0));
#ifdef COARSE
    return texture(shadowMap, vec3(to.xy, to.z - shadowBias));
#endif
    float sum = 0.0;
    for (int i = 0; i < 4; ++i) {
        vec2 offset = vec2(float(i & 1) - 0.5, float(i >> 1) - 0.5) * 2.0;
        sum += texture(shadowMap, vec3(to.xy + offset * texel, to.z - shadowBias));
    }
    return sum / 4.0;
}

#ifdef BUMPS
// The surface stands out by the coat map's third channel: the normal as it is seen from the heights
// beside a texel (Mikkelsen 2010).
vec3 bumped(vec3 n)
{
    if (!hasTexels[3] || reach == 0.0)
        return n;
    vec2 at = vec2(place.x, 1.0 - place.y);
    vec2 stepX = dFdx(at);
    vec2 stepY = dFdy(at);
    float here = texture(coatMap, at).b;
    float beside = texture(coatMap, at + stepX).b - here;
    float below = texture(coatMap, at + stepY).b - here;
    vec3 x = dFdx(worldPlace);
    vec3 y = dFdy(worldPlace);
    vec3 first = cross(y, n);
    vec3 second = cross(n, x);
    float extent = dot(x, first);
    vec3 gradient = reach * sign(extent) * (beside * first + below * second);
    return normalize(abs(extent) * n - gradient);
}
#endif

vec3 shaded(vec3 geometric, vec4 shape)
{
    // Not made to length 1 before the sum, as maps are baked for.
    vec3 bitangent = worldTangent.w * cross(worldNormal, worldTangent.xyz);
    vec2 xy = shape.xy * 2.0 - 1.0;
    float z = sqrt(max(1.0 - dot(xy, xy), 0.0));
    vec3 n = normalize(xy.x * worldTangent.xyz + xy.y * bitangent + z * worldNormal);
    n = gl_FrontFacing ? n : -n;
    n = any(isnan(n)) ? geometric : n;
#ifdef BUMPS
    n = bumped(n);
#endif
    return n;
}

// What one layer sends to the eye, and how much of the light from below it keeps.
vec3 layer(vec3 n, vec3 toEye, vec3 reflectivity, float roughness, float light, float occlusion,
           out vec3 reflected)
{
    float cosine = max(dot(n, toEye), 0.0);
    vec2 ab = albedo(cosine, roughness);
    vec3 bounces = 1.0 + reflectivity * (1.0 / max(ab.x + ab.y, 1e-4) - 1.0);
    reflected = (reflectivity * ab.x + ab.y) * bounces;
    vec3 sum = vec3(0.0);
#ifdef SAMPLED
    if (hasProbe) {
        vec3 ofOne;
        vec3 ofNone;
        mirrorSampled(n, toEye, roughness, reflectivity == vec3(dielectric) ? 0.5 : 1.0, ofOne, ofNone);
        sum = (reflectivity * ab.x * ofOne + ab.y * ofNone) * bounces * occlusion * intensity;
    }
#else
    if (hasProbe)
        sum = reflected * mirrorReady(n, toEye, roughness) * occlusion * intensity;
#endif
    float toLight = dot(n, toKeyLight);
    if (light > 0.0 && toLight > 0.0 && cosine > 0.0) {
        vec3 half_ = normalize(toEye + toKeyLight);
        vec3 fresnel = reflectivity + (1.0 - reflectivity) * schlick(dot(toEye, half_));
        sum += keyLight * pi * light * toLight * fresnel * bounces
               * specular(n, half_, cosine, toLight, roughness);
    }
    return sum;
}

vec3 litSurface(vec3 geometric, vec3 n, vec3 base, vec4 shape, vec4 glow, vec4 coat)
{
    vec3 toEye = normalize(eye - worldPlace);
    // A bent normal may look away from the eye where the surface does not.
    float away = dot(n, toEye);
    n = away < 0.001 ? normalize(n + (0.001 - away) * toEye) : n;
    float metallic = clamp(shape.b, 0.0, 1.0);
    float roughness = clamp(shape.a, 0.0, 1.0);
    float occlusion = clamp(glow.a, 0.0, 1.0);
    vec3 reflectivity = mix(vec3(dielectric), base, metallic);
    bool facesLight = dot(geometric, toKeyLight) > 0.0;
    float light = keyLight == vec3(0.0) || !facesLight ? 0.0 : lit(geometric);
    vec3 reflected;
    vec3 sum = layer(n, toEye, reflectivity, roughness, light, occlusion, reflected);
    vec3 diffuse = base * (1.0 - metallic) * (1.0 - reflected);
    vec3 around = hasProbe ? texture(dull, toSurrounding * n).rgb * occlusion * intensity
                           : vec3(0.0);
    sum += diffuse * (around + keyLight * light * max(dot(n, toKeyLight), 0.0));
    sum += glow.rgb;
#ifdef COATED
    if (coat.r > 0.0) {
        vec3 ofCoat;
        float thick = clamp(coat.r, 0.0, 1.0);
        vec3 gloss = layer(geometric, toEye, vec3(dielectric), clamp(coat.g, 0.0, 1.0), light,
                           occlusion, ofCoat);
        sum = sum * (1.0 - thick * ofCoat) + thick * gloss;
    }
#endif
    return sum;
}

vec3 patches()
{
    vec2 cells = floor(place * 16.0);
    float checker = mod(cells.x + cells.y, 2.0);
    vec2 big = abs(fract(place * 4.0) - 0.5);
    vec3 tint = vec3(fract(place), 0.35);
    return mix(tint * 0.35, tint * 0.8 + 0.05, checker) * (max(big.x, big.y) > 0.485 ? 0.25 : 1.0);
}

vec3 matcap(vec3 n)
{
    vec3 toEye = normalize(eye - worldPlace);
    vec3 right = normalize(cross(vec3(0.0, 1.0, 0.001), toEye));
    vec3 up = cross(toEye, right);
    vec2 at = vec2(dot(n, right), dot(n, up));
    float key = pow(max(dot(normalize(vec3(-0.45, 0.6, 0.66)), vec3(at, dot(n, toEye))), 0.0), 2.0);
    float edge = pow(1.0 - max(dot(n, toEye), 0.0), 3.0);
    return vec3(0.16, 0.15, 0.15) + key * vec3(0.62, 0.58, 0.52) + edge * vec3(0.25, 0.28, 0.34);
}

void main()
{
    // A face that straddles patches is drawn in each and kept where it belongs. Where a pixel is half
    // covered its middle lies beyond the edge of a face, by up to a pixel.
    vec2 past = max(fwidth(place), vec2(least));
    if (any(lessThan(place, -past)) || any(greaterThan(place, vec2(1.0) + past)))
        discard;
#ifdef WIRES
    color = vec4(vec3(0.02), 1.0) * 0.7;
#else
    vec3 geometric = normalize(worldNormal);
    geometric = gl_FrontFacing ? geometric : -geometric;
    vec4 base = map(0, colorMap);
    vec4 shape = map(1, shapeMap);
    vec4 glow = map(2, glowMap);
    vec4 coat = map(3, coatMap);
    float opacity = clamp(base.a, 0.0, 1.0);
    vec3 n = shaded(geometric, shape);
    vec3 seen;
#ifdef LIT
    seen = litSurface(geometric, n, max(base.rgb, 0.0), shape, glow, coat);
#else
    switch (shows) {
    case 1: seen = base.rgb; break;
    case 2: seen = vec3(shape.b); break;
    case 3: seen = vec3(shape.a); break;
    case 4: seen = n * 0.5 + 0.5; break;
    case 5: seen = vec3(coat.b); break;
    case 6: seen = glow.rgb; break;
    case 7: seen = vec3(opacity); break;
    case 8: seen = vec3(glow.a); break;
    case 9: seen = vec3(coat.r); break;
    case 10: seen = patches(); break;
    case 11: seen = matcap(n); break;
    default: seen = geometric * 0.5 + 0.5; break;
    }
#endif
    opacity = shows == 0 || shows == 11 ? opacity : 1.0;
    color = vec4(min(seen, vec3(30000.0)) * opacity, opacity);
#endif
}
