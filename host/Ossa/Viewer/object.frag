#ifdef GL_ES
#extension GL_OES_standard_derivatives : enable
#endif
uniform sampler2D picture;
uniform bool hasPicture;
uniform bool isLit;

varying highp vec3 seenNormal;
varying highp vec3 seenPlace;
varying highp vec2 place;

// What shows through where the picture is transparent.
const lowp vec3 bare = vec3(0.19, 0.20, 0.22);
// Over the viewer's left shoulder.
const highp vec3 light = vec3(-0.35, 0.45, 0.82);
// Parts of the light: from everywhere, from the eye, and from over the shoulder.
const highp float ambient = 0.12;
const highp float fill = 0.28;
const highp float key = 0.60;
const highp float least = 0.0001;

void main()
{
    // A face that straddles patches is drawn in each and kept where it belongs. Where a pixel is half
    // covered its middle lies beyond the edge of a face, by up to a pixel.
    highp vec2 past = max(fwidth(place), vec2(least));
    if (any(lessThan(place, -past)) || any(greaterThan(place, vec2(1.0) + past)))
        discard;
    lowp vec4 texel = hasPicture ? texture2D(picture, place) : vec4(0.0);
    highp vec3 color = texel.rgb + (1.0 - texel.a) * bare;
    if (isLit) {
        highp vec3 n = normalize(seenNormal);
        highp vec3 toEye = normalize(-seenPlace);
        n = dot(n, toEye) < 0.0 ? -n : n;
        highp float bright = ambient + fill * max(dot(n, toEye), 0.0)
                             + key * max(dot(n, normalize(light)), 0.0);
        // The picture is made for a screen. Light multiplies what it stands for, so a factor of
        // light is that factor to the power of 1 / 2.2 here.
        color *= pow(bright, 1.0 / 2.2);
    }
    gl_FragColor = vec4(color, 1.0);
}
