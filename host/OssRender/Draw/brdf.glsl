// The same as OssRdBrdf, which says where it comes from.
const float pi = 3.14159265358979;
const float dielectric = 0.04;
const float leastRoughness = 0.03;

uniform sampler2D albedoTable;

vec2 albedo(float cosine, float roughness)
{
    // The outermost texels stand for 0 and 1.
    float size = float(textureSize(albedoTable, 0).x);
    vec2 at = clamp(vec2(cosine, roughness), 0.0, 1.0) * (size - 1.0) / size + 0.5 / size;
    return textureLod(albedoTable, at, 0.0).rg;
}

float schlick(float cosine)
{
    float left = clamp(1.0 - cosine, 0.0, 1.0);
    float square = left * left;
    return square * square * left;
}

// Distribution times masking over 4 cos cos. half_ is of length 1.
float specular(vec3 normal, vec3 half_, float eye, float light, float roughness)
{
    float alpha = max(roughness, leastRoughness) * max(roughness, leastRoughness);
    float square = alpha * alpha;
    float cosine = max(dot(normal, half_), 0.0);
    vec3 sine = cross(normal, half_); // keeps the digits that 1 - cosine * cosine would lose
    float d = cosine * cosine * square + dot(sine, sine);
    float masking = light * sqrt(eye * eye * (1.0 - square) + square)
                    + eye * sqrt(light * light * (1.0 - square) + square);
    return square / (pi * d * d) * 0.5 / max(masking, 1e-6);
}
