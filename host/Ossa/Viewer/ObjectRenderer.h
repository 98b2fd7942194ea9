#pragma once

#include "OssRender/Surface/OssRdMips.h"

#include <QColor>
#include <QImage>
#include <QMatrix4x4>
#include <QVector3D>

#include <cstdint>
#include <map>
#include <memory>
#include <vector>

class OssEvMesh;
class QOffscreenSurface;
class QOpenGLBuffer;
class QOpenGLContext;
class QOpenGLFramebufferObject;
class QOpenGLShaderProgram;
class QOpenGLTexture;

/// Draws a mesh with a picture on each of its patches, with OpenGL, into an image. The only place
/// that knows OpenGL: it has a context of its own and draws off screen, because one OpenGL widget in
/// a window has Qt compose the whole window with OpenGL, which without a GPU is slow everywhere.
///
/// Textures take at most textureBytes: one patch up to 2048 pixels, several up to 1024 each, and so
/// many that it would not be enough smaller ones. They have mip levels, without what lies between charts
/// where that is known. GUI thread.
class ObjectRenderer
{
public:
    static constexpr qint64 textureBytes = qint64(256) << 20;

    /// Pixels across a texture for so many patches of pictures of that resolution.
    static int textureSize(int patches, int resolution);

    struct View
    {
        QSize size; ///< device pixels
        QMatrix4x4 camera;
        QMatrix4x4 projection;
        QColor ground;
        /// A light over the viewer's shoulder; off, the picture's own colours.
        bool isLit = true;
    };

    ObjectRenderer();
    ObjectRenderer(const ObjectRenderer &) = delete;
    ObjectRenderer &operator=(const ObjectRenderer &) = delete;
    ~ObjectRenderer();

    /// Why nothing can be drawn, in words; empty when all is well.
    QString problem() const { return m_problem; }

    /// May be null. Textures go with the mesh.
    void setMesh(std::shared_ptr<const OssEvMesh> mesh);

    /// Middle and radius of the mesh in its world.
    QVector3D centre() const { return m_centre; }

    float radius() const { return m_radius; }

    /// Forgets the textures of other patches; `resolution` is that of the pictures to come.
    void setPatches(const QList<int> &patches, int resolution);
    /// Takes an area of a patch's picture over; all of it where the patch's coverage has become known since.
    void update(int patch, const QImage &picture, const QRect &area);

    /// Whether a patch has smaller copies that were made without knowing what is covered.
    bool lacksCoverage(int patch) const;

    /// Null when nothing can be drawn.
    QImage render(const View &view);

private:
    /// Triangles of a patch in the index buffer.
    struct Part
    {
        int patch = 0;
        int first = 0;
        int count = 0;
    };

    struct Texture
    {
        std::shared_ptr<QOpenGLTexture> texels;
        OssRdCoverage::Pointer coverage;
        std::unique_ptr<OssRdMips<std::uint8_t>> mips; ///< null where OpenGL makes them
    };

    Texture &textureOf(int patch, bool *isNew);
    void upload(const Texture &texture, const QImage &pixels, const QRect &to);
    bool makeCurrent();
    bool start();
    void fail(const QString &reason);
    void upload();
    void measure();
    void drawParts(const View &view);
    void makeMipmaps();
    void release();

    std::unique_ptr<QOffscreenSurface> m_surface;
    std::unique_ptr<QOpenGLContext> m_context;
    std::unique_ptr<QOpenGLShaderProgram> m_program;
    std::unique_ptr<QOpenGLFramebufferObject> m_target;
    std::unique_ptr<QOpenGLBuffer> m_vertices;
    std::unique_ptr<QOpenGLBuffer> m_indices;
    std::map<int, Texture> m_textures;
    QList<int> m_withoutMipmaps;
    std::shared_ptr<const OssEvMesh> m_mesh;
    std::vector<Part> m_parts;
    bool m_isUploaded = false;
    int m_size = 0;
    QVector3D m_centre;
    float m_radius = 1.0F;
    QString m_problem;
};
