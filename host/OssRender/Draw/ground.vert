uniform mat4 viewProjection;
uniform vec3 centre;
uniform float reach;
out vec3 worldPlace;

void main()
{
    vec2 at = vec2(float(gl_VertexID & 1), float((gl_VertexID >> 1) & 1)) * 2.0 - 1.0;
    worldPlace = centre + vec3(at.x, 0.0, at.y) * reach;
    gl_Position = viewProjection * vec4(worldPlace, 1.0);
}
