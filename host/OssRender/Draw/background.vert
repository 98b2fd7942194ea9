uniform mat4 fromClip;
out vec3 direction;

void main()
{
    vec2 at = vec2(float((gl_VertexID << 1) & 2), float(gl_VertexID & 2)) * 2.0 - 1.0;
    vec4 near = fromClip * vec4(at, -1.0, 1.0);
    vec4 far = fromClip * vec4(at, 1.0, 1.0);
    direction = far.xyz / far.w - near.xyz / near.w;
    gl_Position = vec4(at, 1.0, 1.0);
}
