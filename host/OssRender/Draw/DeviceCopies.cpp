#include "OssRender/Draw/DeviceCopies.h"

#include <algorithm>
#include <cstddef>

namespace {

void filter(GLenum target, GLint small, GLint wrapX)
{
    glTexParameteri(target, GL_TEXTURE_MIN_FILTER, small);
    glTexParameteri(target, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(target, GL_TEXTURE_WRAP_S, wrapX);
    glTexParameteri(target, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
}

/// Of the cube that is bound. As floats, for a sun is brighter than half floats count.
void fillFaces(const std::array<OssRdPicture, 6> &faces, int level)
{
    for (int face = 0; face < 6; ++face) {
        const OssRdPicture &picture = faces[std::size_t(face)];
        glTexImage2D(GL_TEXTURE_CUBE_MAP_POSITIVE_X + GLenum(face), level, GL_RGB32F, picture.width,
                     picture.height, 0, GL_RGB, GL_FLOAT, picture.texels.data());
    }
}

using Changes = OssRdMaterial::Changes;

/// Whether a change is gone and no other lies in its place.
bool baresTexels(const Changes &before, const Changes &now)
{
    return std::any_of(before.cbegin(), before.cend(), [&now](const auto &gone) {
        return std::none_of(now.cbegin(), now.cend(),
                            [&gone](const auto &change) { return change->area() == gone->area(); });
    });
}

/// Over the texture that is bound.
void lay(const OssRdMaterial::Change &change, bool hasSmaller)
{
    const std::size_t levels = hasSmaller ? change.parts.size() : 1;
    for (std::size_t level = 0; level < levels; ++level) {
        const OssRdMaterial::Change::Part &part = change.parts[level];
        glTexSubImage2D(GL_TEXTURE_2D, GLint(level), part.area.x, part.area.y, part.area.width,
                        part.area.height, GL_RGBA, GL_HALF_FLOAT, part.rgba.data());
    }
}

} // namespace

void DeviceCopies::beginFrame()
{
    for (auto &copy : m_copies)
        copy.second.isUsed = false;
}

void DeviceCopies::endFrame()
{
    for (auto copy = m_copies.begin(); copy != m_copies.end();)
        copy = copy->second.isUsed ? std::next(copy) : m_copies.erase(copy);
}

DeviceCopies::Copy &DeviceCopies::find(const std::shared_ptr<const void> &of, bool *isNew)
{
    Copy &copy = m_copies[of.get()];
    *isNew = copy.of == nullptr;
    copy.of = of;
    copy.isUsed = true;
    return copy;
}

void DeviceCopies::mesh(const std::shared_ptr<const OssRdGeometry> &geometry)
{
    bool isNew = false;
    Copy &copy = find(geometry, &isNew);
    if (isNew)
        fillMesh(*geometry, &copy);
    glBindVertexArray(copy.array.get());
}

void DeviceCopies::fillMesh(const OssRdGeometry &geometry, Copy *copy)
{
    using Vertex = OssRdGeometry::Vertex;
    copy->array = makeArray();
    copy->vertices = makeBuffer();
    copy->indices = makeBuffer();
    glBindVertexArray(copy->array.get());
    glBindBuffer(GL_ARRAY_BUFFER, copy->vertices.get());
    glBufferData(GL_ARRAY_BUFFER, GLsizeiptr(geometry.vertices.size() * sizeof(Vertex)),
                 geometry.vertices.data(), GL_STATIC_DRAW);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, copy->indices.get());
    glBufferData(GL_ELEMENT_ARRAY_BUFFER,
                 GLsizeiptr(geometry.indices.size() * sizeof(std::uint32_t)),
                 geometry.indices.data(), GL_STATIC_DRAW);
    const auto attribute = [](GLuint place, GLint size, std::size_t offset) {
        glEnableVertexAttribArray(place);
        // NOLINTNEXTLINE(performance-no-int-to-ptr): OpenGL takes the offset into its buffer so.
        const auto *first = reinterpret_cast<const void *>(offset);
        glVertexAttribPointer(place, size, GL_FLOAT, GL_FALSE, sizeof(Vertex), first);
    };
    attribute(0, 3, offsetof(Vertex, position));
    attribute(1, 3, offsetof(Vertex, normal));
    attribute(2, 4, offsetof(Vertex, tangent));
    attribute(3, 2, offsetof(Vertex, uv));
}

void DeviceCopies::draw(const OssRdGeometry::Part &part)
{
    // NOLINTNEXTLINE(performance-no-int-to-ptr): OpenGL takes the offset into its buffer so.
    const auto *first = reinterpret_cast<const void *>(std::size_t(part.first)
                                                       * sizeof(std::uint32_t));
    glDrawElements(GL_TRIANGLES, part.count, GL_UNSIGNED_INT, first);
}

bool DeviceCopies::bindFlat(const std::shared_ptr<const void> &of, int unit)
{
    bool isNew = false;
    Copy &copy = find(of, &isNew);
    if (isNew)
        copy.texture = makeTexture();
    glActiveTexture(GL_TEXTURE0 + GLenum(unit));
    glBindTexture(GL_TEXTURE_2D, copy.texture.get());
    return isNew;
}

void DeviceCopies::fillTexels(const OssRdMaterial::Texels &texels)
{
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA16F, texels.size, texels.size, 0, GL_RGBA, GL_HALF_FLOAT,
                 texels.rgba.data());
    int size = texels.size;
    for (std::size_t i = 0; i < texels.smaller.size(); ++i) {
        size /= 2;
        glTexImage2D(GL_TEXTURE_2D, GLint(i) + 1, GL_RGBA16F, size, size, 0, GL_RGBA, GL_HALF_FLOAT,
                     texels.smaller[i].data());
    }
    filter(GL_TEXTURE_2D, GL_LINEAR_MIPMAP_LINEAR, GL_CLAMP_TO_EDGE);
}

void DeviceCopies::texels(const OssRdMaterial::Channel4 &channels, int unit)
{
    const bool isNew = bindFlat(channels.texels, unit);
    Changes &known = m_copies[channels.texels.get()].changes;
    if (!isNew && known == channels.changes)
        return;
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    if (isNew || baresTexels(known, channels.changes)) {
        fillTexels(*channels.texels);
        known.clear();
    }
    const bool hasSmaller = !channels.texels->smaller.empty();
    for (const auto &change : channels.changes) {
        if (std::find(known.cbegin(), known.cend(), change) == known.cend())
            lay(*change, hasSmaller);
    }
    known = channels.changes;
    if (!hasSmaller)
        glGenerateMipmap(GL_TEXTURE_2D);
}

void DeviceCopies::probe(const std::shared_ptr<const OssRdLightProbe> &probe, Light light, int unit)
{
    bool isNew = false;
    Copy &copy = find(probe, &isNew);
    glActiveTexture(GL_TEXTURE0 + GLenum(unit));
    if (isNew)
        fillProbe(*probe, &copy);
    const GlTexture &texture = light == Light::Mirrored ? copy.texture
                               : light == Light::Sharp  ? copy.sharp
                                                        : copy.dull;
    glBindTexture(GL_TEXTURE_CUBE_MAP, texture.get());
}

void DeviceCopies::fillProbe(const OssRdLightProbe &probe, Copy *copy)
{
    copy->texture = makeTexture();
    glBindTexture(GL_TEXTURE_CUBE_MAP, copy->texture.get());
    for (int level = 0; level < OssRdLightProbe::Levels; ++level)
        fillFaces(probe.faces[std::size_t(level)], level);
    glTexParameteri(GL_TEXTURE_CUBE_MAP, GL_TEXTURE_MAX_LEVEL, OssRdLightProbe::Levels - 1);
    filter(GL_TEXTURE_CUBE_MAP, GL_LINEAR_MIPMAP_LINEAR, GL_CLAMP_TO_EDGE);
    copy->sharp = makeTexture();
    glBindTexture(GL_TEXTURE_CUBE_MAP, copy->sharp.get());
    fillFaces(probe.faces[0], 0);
    glGenerateMipmap(GL_TEXTURE_CUBE_MAP);
    filter(GL_TEXTURE_CUBE_MAP, GL_LINEAR_MIPMAP_LINEAR, GL_CLAMP_TO_EDGE);
    copy->dull = makeTexture();
    glBindTexture(GL_TEXTURE_CUBE_MAP, copy->dull.get());
    fillFaces(probe.dull, 0);
    filter(GL_TEXTURE_CUBE_MAP, GL_LINEAR, GL_CLAMP_TO_EDGE);
}

void DeviceCopies::picture(const std::shared_ptr<const OssRdPicture> &picture, int unit)
{
    if (!bindFlat(picture, unit))
        return;
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGB16F, picture->width, picture->height, 0, GL_RGB, GL_FLOAT,
                 picture->texels.data());
    filter(GL_TEXTURE_2D, GL_LINEAR, GL_REPEAT);
}
