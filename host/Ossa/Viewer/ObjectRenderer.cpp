#include "Ossa/Viewer/ObjectRenderer.h"

#include "OssEvaluation/Geometry/OssEvMesh.h"
#include "OssEvaluation/Values/OssEvPatch.h"

#include <QCoreApplication>
#include <QMatrix3x3>
#include <QOffscreenSurface>
#include <QOpenGLBuffer>
#include <QOpenGLContext>
#include <QOpenGLFramebufferObject>
#include <QOpenGLFunctions>
#include <QOpenGLPixelTransferOptions>
#include <QOpenGLShaderProgram>
#include <QOpenGLTexture>
#include <QVector2D>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <limits>

// Outside of any namespace, as Qt wants it.
static void loadShaders()
{
    Q_INIT_RESOURCE(viewer);
}

namespace {

constexpr int singlePatch = 2048;
constexpr int oneOfSeveral = 1024;
constexpr int smallestTexture = 64;
constexpr int samples = 4;

struct Vertex
{
    float position[3];
    float normal[3];
    float uv[2];
};

enum Attribute { Position, Normal, Uv };

QString tr(const char *text)
{
    return QCoreApplication::translate("ObjectRenderer", text);
}

QMatrix4x4 toMatrix(const std::array<float, 12> &rows)
{
    return {rows[0], rows[1], rows[2],  rows[3],  rows[4], rows[5], rows[6], rows[7],
            rows[8], rows[9], rows[10], rows[11], 0.0F,    0.0F,    0.0F,    1.0F};
}

} // namespace

int ObjectRenderer::textureSize(int patches, int resolution)
{
    int size = std::min(resolution, patches > 1 ? oneOfSeveral : singlePatch);
    // Four bytes a pixel, and a third more for the mip levels.
    const auto bytes = [&] {
        return qint64(patches) * size * size * 4 * 4 / 3;
    };
    while (size > smallestTexture && bytes() > textureBytes)
        size /= 2;
    return size;
}

ObjectRenderer::ObjectRenderer()
{
    loadShaders();
    if (!start())
        release();
}

ObjectRenderer::~ObjectRenderer()
{
    release();
}

bool ObjectRenderer::start()
{
    QSurfaceFormat format;
    format.setDepthBufferSize(24);
    m_context = std::make_unique<QOpenGLContext>();
    m_context->setFormat(format);
    if (!m_context->create()) {
        fail(tr("The object cannot be shown: this screen has no OpenGL"));
        return false;
    }
    m_surface = std::make_unique<QOffscreenSurface>();
    m_surface->setFormat(m_context->format());
    m_surface->create();
    if (!makeCurrent()) {
        fail(tr("The object cannot be shown: OpenGL does not draw off screen here"));
        return false;
    }
    m_program = std::make_unique<QOpenGLShaderProgram>();
    const bool compiled = m_program->addShaderFromSourceFile(QOpenGLShader::Vertex,
                                                             QStringLiteral(":/viewer/object.vert"))
                          && m_program->addShaderFromSourceFile(
                              QOpenGLShader::Fragment, QStringLiteral(":/viewer/object.frag"));
    m_program->bindAttributeLocation("position", Position);
    m_program->bindAttributeLocation("normal", Normal);
    m_program->bindAttributeLocation("uv", Uv);
    if (!compiled || !m_program->link()) {
        fail(tr("The object cannot be shown: OpenGL refuses the shaders: %1")
                 .arg(m_program->log().trimmed()));
        return false;
    }
    m_vertices = std::make_unique<QOpenGLBuffer>(QOpenGLBuffer::VertexBuffer);
    m_indices = std::make_unique<QOpenGLBuffer>(QOpenGLBuffer::IndexBuffer);
    return true;
}

void ObjectRenderer::fail(const QString &reason)
{
    m_problem = reason;
}

bool ObjectRenderer::makeCurrent()
{
    return m_context && m_surface && m_context->makeCurrent(m_surface.get());
}

void ObjectRenderer::release()
{
    // Without a context they have nothing to give back.
    const bool current = makeCurrent();
    m_textures.clear();
    m_target.reset();
    m_vertices.reset();
    m_indices.reset();
    m_program.reset();
    if (current)
        m_context->doneCurrent();
    m_context.reset();
    m_surface.reset();
}

// --- what is drawn

void ObjectRenderer::setMesh(std::shared_ptr<const OssEvMesh> mesh)
{
    if (mesh == m_mesh)
        return;
    m_mesh = std::move(mesh);
    m_isUploaded = false;
    measure();
}

void ObjectRenderer::measure()
{
    m_centre = {};
    m_radius = 1.0F;
    if (!m_mesh || m_mesh->positions.empty())
        return;
    const QMatrix4x4 world = toMatrix(m_mesh->world);
    constexpr float most = std::numeric_limits<float>::max();
    QVector3D low(most, most, most);
    QVector3D high(-most, -most, -most);
    for (const OssEvMesh::Vector3 &position : m_mesh->positions) {
        const QVector3D place = world.map(QVector3D(position[0], position[1], position[2]));
        for (int axis = 0; axis < 3; ++axis) {
            low[axis] = std::min(low[axis], place[axis]);
            high[axis] = std::max(high[axis], place[axis]);
        }
    }
    m_centre = (low + high) / 2.0F;
    m_radius = 0.0F;
    for (const OssEvMesh::Vector3 &position : m_mesh->positions) {
        const QVector3D place = world.map(QVector3D(position[0], position[1], position[2]));
        m_radius = std::max(m_radius, place.distanceToPoint(m_centre));
    }
}

void ObjectRenderer::upload()
{
    std::vector<Vertex> vertices(m_mesh->positions.size());
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        std::copy_n(m_mesh->positions[i].data(), 3, vertices[i].position);
        std::copy_n(m_mesh->normals[i].data(), 3, vertices[i].normal);
        std::copy_n(m_mesh->uvs[i].data(), 2, vertices[i].uv);
    }
    std::vector<quint32> indices;
    m_parts.clear();
    for (const int patch : m_mesh->patches()) {
        Part part{patch, int(indices.size()), 0};
        for (const std::int32_t triangle : m_mesh->trianglesOf(patch)) {
            const auto &corners = m_mesh->triangles[std::size_t(triangle)];
            indices.insert(indices.end(), corners.begin(), corners.end());
        }
        part.count = int(indices.size()) - part.first;
        m_parts.push_back(part);
    }
    const auto fill = [](QOpenGLBuffer *buffer, const auto &values) {
        buffer->create();
        buffer->bind();
        buffer->allocate(values.data(), int(values.size() * sizeof(values[0])));
        buffer->release();
    };
    fill(m_vertices.get(), vertices);
    fill(m_indices.get(), indices);
    m_isUploaded = true;
}

void ObjectRenderer::setPatches(const QList<int> &patches, int resolution)
{
    const int size = textureSize(patches.size(), resolution);
    if (!makeCurrent())
        return;
    for (auto at = m_textures.begin(); at != m_textures.end();)
        at = size == m_size && patches.contains(at->first) ? std::next(at) : m_textures.erase(at);
    m_size = size;
    m_context->doneCurrent();
}

ObjectRenderer::Texture &ObjectRenderer::textureOf(int patch, bool *isNew)
{
    Texture &texture = m_textures[patch];
    const OssRdCoverage::Pointer coverage = OssRdCoverageStore::instance()->find(m_mesh, patch);
    *isNew = !texture.texels || coverage != texture.coverage;
    if (!*isNew)
        return texture;
    texture.coverage = coverage;
    if (coverage && (m_size & (m_size - 1)) == 0)
        texture.mips = std::make_unique<OssRdMips<std::uint8_t>>(m_size, coverage);
    if (texture.texels)
        return texture;
    texture.texels = std::make_shared<QOpenGLTexture>(QOpenGLTexture::Target2D);
    QOpenGLTexture &made = *texture.texels;
    made.setFormat(QOpenGLTexture::RGBA8_UNorm);
    made.setSize(m_size, m_size);
    made.setMipLevels(made.maximumMipLevels());
    made.setAutoMipMapGenerationEnabled(false);
    made.allocateStorage(QOpenGLTexture::RGBA, QOpenGLTexture::UInt8);
    made.setMinMagFilters(QOpenGLTexture::LinearMipMapLinear, QOpenGLTexture::Linear);
    made.setWrapMode(QOpenGLTexture::ClampToEdge);
    return texture;
}

bool ObjectRenderer::lacksCoverage(int patch) const
{
    const auto found = m_textures.find(patch);
    return found != m_textures.end() && !found->second.coverage;
}

void ObjectRenderer::update(int patch, const QImage &picture, const QRect &area)
{
    if (picture.isNull() || area.isEmpty() || m_size <= 0 || !makeCurrent())
        return;
    bool isNew = false;
    const Texture &texture = textureOf(patch, &isNew);
    const QRect wanted = isNew ? picture.rect() : area & picture.rect();
    // Whole pixels of the texture, and two by two, for each pair is one of the next copy.
    const int step = std::max(1, picture.width() / m_size);
    const QRect whole(0, 0, m_size, m_size);
    const QRect to = QRect(QPoint((wanted.left() / step) & ~1, (wanted.top() / step) & ~1),
                           QPoint((wanted.right() / step) | 1, (wanted.bottom() / step) | 1))
                     & whole;
    QImage pixels = picture.copy(to.left() * step, to.top() * step, to.width() * step,
                                 to.height() * step);
    if (step > 1)
        pixels = pixels.scaled(to.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    upload(texture, pixels.convertToFormat(QImage::Format_RGBA8888_Premultiplied), to);
    if (!texture.mips && !m_withoutMipmaps.contains(patch))
        m_withoutMipmaps.append(patch);
    m_context->doneCurrent();
}

void ObjectRenderer::upload(const Texture &texture, const QImage &pixels, const QRect &to)
{
    QOpenGLFunctions *gl = m_context->functions();
    texture.texels->bind();
    gl->glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    gl->glTexSubImage2D(GL_TEXTURE_2D, 0, to.x(), to.y(), to.width(), to.height(), GL_RGBA,
                        GL_UNSIGNED_BYTE, pixels.constBits());
    std::vector<OssEvRegion> changed;
    if (texture.mips)
        changed = texture.mips->update({to.x(), to.y(), to.width(), to.height()},
                                       [&](int y) { return pixels.constScanLine(y - to.y()); });
    for (std::size_t level = 0; level < changed.size(); ++level) {
        const OssEvRegion &part = changed[level];
        const std::vector<std::uint8_t> texels = texture.mips->texels(int(level), part);
        gl->glTexSubImage2D(GL_TEXTURE_2D, GLint(level) + 1, part.x, part.y, part.width,
                            part.height, GL_RGBA, GL_UNSIGNED_BYTE, texels.data());
    }
    texture.texels->release();
}

// --- drawing

void ObjectRenderer::makeMipmaps()
{
    for (const int patch : qAsConst(m_withoutMipmaps)) {
        const auto found = m_textures.find(patch);
        if (found != m_textures.end() && !found->second.mips)
            found->second.texels->generateMipMaps();
    }
    m_withoutMipmaps.clear();
}

QImage ObjectRenderer::render(const View &view)
{
    if (!m_problem.isEmpty() || view.size.isEmpty() || !makeCurrent())
        return {};
    if (!m_target || m_target->size() != view.size) {
        QOpenGLFramebufferObjectFormat format;
        format.setAttachment(QOpenGLFramebufferObject::Depth);
        format.setSamples(samples);
        m_target = std::make_unique<QOpenGLFramebufferObject>(view.size, format);
    }
    if (!m_target->isValid() || !m_target->bind()) {
        fail(tr("The object cannot be shown: OpenGL has no memory for the picture"));
        m_context->doneCurrent();
        return {};
    }
    QOpenGLFunctions *gl = m_context->functions();
    gl->glViewport(0, 0, view.size.width(), view.size.height());
    gl->glClearColor(float(view.ground.redF()), float(view.ground.greenF()),
                     float(view.ground.blueF()), 1.0F);
    gl->glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    if (m_mesh) {
        if (!m_isUploaded)
            upload();
        makeMipmaps();
        drawParts(view);
    }
    m_target->release();
    const QImage image = m_target->toImage();
    m_context->doneCurrent();
    return image;
}

void ObjectRenderer::drawParts(const View &view)
{
    QOpenGLFunctions *gl = m_context->functions();
    gl->glEnable(GL_DEPTH_TEST);
    m_program->bind();
    m_vertices->bind();
    m_indices->bind();
    const auto attribute = [this](Attribute place, std::size_t offset, int size) {
        m_program->enableAttributeArray(place);
        m_program->setAttributeBuffer(place, GL_FLOAT, int(offset), size, sizeof(Vertex));
    };
    attribute(Position, offsetof(Vertex, position), 3);
    attribute(Normal, offsetof(Vertex, normal), 3);
    attribute(Uv, offsetof(Vertex, uv), 2);
    const QMatrix4x4 camera = view.camera * toMatrix(m_mesh->world);
    m_program->setUniformValue("camera", camera);
    m_program->setUniformValue("projection", view.projection);
    m_program->setUniformValue("normals", camera.normalMatrix());
    m_program->setUniformValue("isLit", view.isLit);
    m_program->setUniformValue("picture", 0);
    for (const Part &part : m_parts) {
        const auto found = m_textures.find(part.patch);
        QOpenGLTexture *texture = found != m_textures.end() ? found->second.texels.get() : nullptr;
        m_program->setUniformValue("hasPicture", texture != nullptr);
        m_program->setUniformValue("patchOrigin", QVector2D(float(OssEvPatch::column(part.patch)),
                                                            float(OssEvPatch::row(part.patch))));
        if (texture)
            texture->bind(0);
        const auto offset = std::size_t(part.first) * sizeof(quint32);
        // NOLINTNEXTLINE(performance-no-int-to-ptr): OpenGL takes the offset into its buffer so.
        const auto *first = reinterpret_cast<const void *>(offset);
        gl->glDrawElements(GL_TRIANGLES, part.count, GL_UNSIGNED_INT, first);
        if (texture)
            texture->release(0);
    }
    for (const Attribute place : {Position, Normal, Uv})
        m_program->disableAttributeArray(place);
    m_indices->release();
    m_vertices->release();
    m_program->release();
}
