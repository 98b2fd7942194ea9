#pragma once

#include <epoxy/gl.h>
#include <glm/glm.hpp>

#include <string>
#include <unordered_map>
#include <utility>

/// A name that OpenGL gave out, given back by its own function. The device must be current.
template <void (*release)(GLuint)>
class GlName
{
public:
    GlName() = default;

    explicit GlName(GLuint name)
        : m_name(name)
    {
    }

    GlName(GlName &&other) noexcept
        : m_name(std::exchange(other.m_name, 0))
    {
    }

    GlName &operator=(GlName &&other) noexcept
    {
        std::swap(m_name, other.m_name);
        return *this;
    }

    GlName(const GlName &) = delete;
    GlName &operator=(const GlName &) = delete;

    ~GlName()
    {
        if (m_name)
            release(m_name);
    }

    explicit operator bool() const { return m_name != 0; }

    GLuint get() const { return m_name; }

private:
    GLuint m_name = 0;
};

void releaseTexture(GLuint name);
void releaseBuffer(GLuint name);
void releaseArray(GLuint name);
void releaseFramebuffer(GLuint name);
void releaseRenderbuffer(GLuint name);
void releaseProgram(GLuint name);
void releaseSampler(GLuint name);

using GlTexture = GlName<releaseTexture>;
using GlBuffer = GlName<releaseBuffer>;
using GlArray = GlName<releaseArray>;
using GlFramebuffer = GlName<releaseFramebuffer>;
using GlRenderbuffer = GlName<releaseRenderbuffer>;
using GlSampler = GlName<releaseSampler>;

GlTexture makeTexture();
GlBuffer makeBuffer();
GlArray makeArray();

/// A vertex and a fragment shader. Uniforms that a shader does not have are passed over.
class GlProgram
{
public:
    /// Parts of a shader are put together under one line with the version. `problem` gets what the
    /// compiler says.
    bool build(const std::string &vertex, const std::string &fragment, std::string *problem);

    void use() const;
    void set(const char *name, int value);
    void set(const char *name, float value);
    void set(const char *name, const glm::vec2 &value);
    void set(const char *name, const glm::vec3 &value);
    void set(const char *name, const glm::vec3 *values, int count);
    void set(const char *name, const glm::vec4 *values, int count);
    void set(const char *name, const glm::bvec4 &value);
    void set(const char *name, const glm::mat3 &value);
    void set(const char *name, const glm::mat4 &value);

private:
    GLint place(const char *name);

    GlName<releaseProgram> m_program;
    std::unordered_map<std::string, GLint> m_places;
};

/// Pictures to draw into: colours as half floats with several samples or one, and depth.
class GlTarget
{
public:
    bool resize(int width, int height, int samples);
    void begin() const;
    /// The pixels as floats, RGBA, from the bottom.
    void read(float *pixels) const;

private:
    bool makeFrame(GlFramebuffer *frame, GlRenderbuffer *color, GlRenderbuffer *depth, int samples);

    int m_width = 0;
    int m_height = 0;
    int m_samples = 0;
    GlFramebuffer m_frame;
    GlRenderbuffer m_color;
    GlRenderbuffer m_depth;
    GlFramebuffer m_plain; ///< one sample, where there are several
    GlRenderbuffer m_plainColor;
    GlRenderbuffer m_none;
};
