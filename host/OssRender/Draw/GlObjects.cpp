#include "OssRender/Draw/GlObjects.h"

#include <glm/gtc/type_ptr.hpp>

namespace {

constexpr const char *version = "#version 330 core\n";

GLuint compile(GLenum kind, const std::string &text, std::string *problem)
{
    const GLuint shader = glCreateShader(kind);
    const std::string whole = version + text;
    const char *start = whole.c_str();
    glShaderSource(shader, 1, &start, nullptr);
    glCompileShader(shader);
    GLint compiled = GL_FALSE;
    glGetShaderiv(shader, GL_COMPILE_STATUS, &compiled);
    if (compiled)
        return shader;
    char said[2048] = "";
    glGetShaderInfoLog(shader, sizeof said, nullptr, said);
    *problem = said;
    glDeleteShader(shader);
    return 0;
}

} // namespace

void releaseTexture(GLuint name)
{
    glDeleteTextures(1, &name);
}

void releaseBuffer(GLuint name)
{
    glDeleteBuffers(1, &name);
}

void releaseArray(GLuint name)
{
    glDeleteVertexArrays(1, &name);
}

void releaseFramebuffer(GLuint name)
{
    glDeleteFramebuffers(1, &name);
}

void releaseRenderbuffer(GLuint name)
{
    glDeleteRenderbuffers(1, &name);
}

void releaseProgram(GLuint name)
{
    glDeleteProgram(name);
}

void releaseSampler(GLuint name)
{
    glDeleteSamplers(1, &name);
}

GlTexture makeTexture()
{
    GLuint name = 0;
    glGenTextures(1, &name);
    return GlTexture(name);
}

GlBuffer makeBuffer()
{
    GLuint name = 0;
    glGenBuffers(1, &name);
    return GlBuffer(name);
}

GlArray makeArray()
{
    GLuint name = 0;
    glGenVertexArrays(1, &name);
    return GlArray(name);
}

// --- programs

bool GlProgram::build(const std::string &vertex, const std::string &fragment, std::string *problem)
{
    const GLuint first = compile(GL_VERTEX_SHADER, vertex, problem);
    const GLuint second = first ? compile(GL_FRAGMENT_SHADER, fragment, problem) : 0;
    GLint linked = GL_FALSE;
    if (second) {
        m_program = GlName<releaseProgram>(glCreateProgram());
        glAttachShader(m_program.get(), first);
        glAttachShader(m_program.get(), second);
        glLinkProgram(m_program.get());
        glGetProgramiv(m_program.get(), GL_LINK_STATUS, &linked);
        char said[2048] = "";
        glGetProgramInfoLog(m_program.get(), sizeof said, nullptr, said);
        if (!linked)
            *problem = said;
    }
    glDeleteShader(first);
    glDeleteShader(second);
    return linked;
}

void GlProgram::use() const
{
    glUseProgram(m_program.get());
}

GLint GlProgram::place(const char *name)
{
    const auto [found, isNew] = m_places.emplace(name, -1);
    if (isNew)
        found->second = glGetUniformLocation(m_program.get(), name);
    return found->second;
}

void GlProgram::set(const char *name, int value)
{
    glUniform1i(place(name), value);
}

void GlProgram::set(const char *name, float value)
{
    glUniform1f(place(name), value);
}

void GlProgram::set(const char *name, const glm::vec2 &value)
{
    glUniform2fv(place(name), 1, glm::value_ptr(value));
}

void GlProgram::set(const char *name, const glm::vec3 &value)
{
    set(name, &value, 1);
}

void GlProgram::set(const char *name, const glm::vec3 *values, int count)
{
    glUniform3fv(place(name), count, glm::value_ptr(*values));
}

void GlProgram::set(const char *name, const glm::vec4 *values, int count)
{
    glUniform4fv(place(name), count, glm::value_ptr(*values));
}

void GlProgram::set(const char *name, const glm::bvec4 &value)
{
    glUniform4i(place(name), value.x, value.y, value.z, value.w);
}

void GlProgram::set(const char *name, const glm::mat3 &value)
{
    glUniformMatrix3fv(place(name), 1, GL_FALSE, glm::value_ptr(value));
}

void GlProgram::set(const char *name, const glm::mat4 &value)
{
    glUniformMatrix4fv(place(name), 1, GL_FALSE, glm::value_ptr(value));
}

// --- targets

bool GlTarget::makeFrame(GlFramebuffer *frame, GlRenderbuffer *color, GlRenderbuffer *depth,
                         int samples)
{
    GLuint name = 0;
    glGenFramebuffers(1, &name);
    *frame = GlFramebuffer(name);
    glBindFramebuffer(GL_FRAMEBUFFER, name);
    const auto attach = [this, samples](GlRenderbuffer *buffer, GLenum form, GLenum point) {
        GLuint made = 0;
        glGenRenderbuffers(1, &made);
        *buffer = GlRenderbuffer(made);
        glBindRenderbuffer(GL_RENDERBUFFER, made);
        glRenderbufferStorageMultisample(GL_RENDERBUFFER, samples > 1 ? samples : 0, form, m_width,
                                         m_height);
        glFramebufferRenderbuffer(GL_FRAMEBUFFER, point, GL_RENDERBUFFER, made);
    };
    attach(color, GL_RGBA16F, GL_COLOR_ATTACHMENT0);
    attach(depth, GL_DEPTH_COMPONENT24, GL_DEPTH_ATTACHMENT);
    return glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
}

bool GlTarget::resize(int width, int height, int samples)
{
    if (m_frame && width == m_width && height == m_height && samples == m_samples)
        return true;
    m_width = width;
    m_height = height;
    m_samples = samples;
    m_plain = GlFramebuffer();
    const bool made = makeFrame(&m_frame, &m_color, &m_depth, samples)
                      && (samples <= 1 || makeFrame(&m_plain, &m_plainColor, &m_none, 1));
    if (!made)
        m_frame = GlFramebuffer();
    return made;
}

void GlTarget::begin() const
{
    glBindFramebuffer(GL_FRAMEBUFFER, m_frame.get());
    glViewport(0, 0, m_width, m_height);
}

void GlTarget::read(float *pixels) const
{
    if (m_plain) {
        glBindFramebuffer(GL_READ_FRAMEBUFFER, m_frame.get());
        glBindFramebuffer(GL_DRAW_FRAMEBUFFER, m_plain.get());
        glBlitFramebuffer(0, 0, m_width, m_height, 0, 0, m_width, m_height, GL_COLOR_BUFFER_BIT,
                          GL_NEAREST);
    }
    glBindFramebuffer(GL_READ_FRAMEBUFFER, m_plain ? m_plain.get() : m_frame.get());
    glPixelStorei(GL_PACK_ALIGNMENT, 4);
    glReadPixels(0, 0, m_width, m_height, GL_RGBA, GL_FLOAT, pixels);
}
