#pragma once

#include "OssEvaluation/Paint/OssEvPaintSurface.h"

#include <QObject>

#include <memory>

class QThread;

/// The surface of the object that is painted on, made ready on a thread of its own as that takes long for
/// large meshes. GUI thread.
class PaintSurfaces : public QObject
{
    Q_OBJECT

public:
    using MeshPointer = std::shared_ptr<const OssEvMesh>;

    explicit PaintSurfaces(QObject *parent = nullptr);
    /// Waits for what is being made.
    ~PaintSurfaces() override;

    /// Null until it is ready for paint of so many texels across a patch.
    std::shared_ptr<OssEvPaintSurface> find(const MeshPointer &mesh, int resolution) const;
    /// Has it made, if it is not there.
    void want(const MeshPointer &mesh, int resolution);
    void forget();

Q_SIGNALS:
    void ready();

private:
    void make();

    MeshPointer m_mesh; ///< that is wanted
    int m_resolution = 0;
    std::shared_ptr<OssEvPaintSurface> m_surface;
    std::unique_ptr<QThread> m_thread;
};
