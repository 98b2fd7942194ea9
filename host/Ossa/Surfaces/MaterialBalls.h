#pragma once

#include "OssModel/Export/OssSurfaceMaps.h"
#include "OssRender/Surface/OssRdMaterial.h"

#include <QImage>
#include <QObject>
#include <QThreadPool>

#include <functional>
#include <memory>

class SurfacePixels;

/// Small pictures of materials: balls in light, drawn one after the other on a thread of their own from
/// maps that are computed behind everything else. GUI thread.
class MaterialBalls : public QObject
{
    Q_OBJECT

public:
    static constexpr int size = 96; ///< pixels of a picture, texels of a map
    static constexpr int ball =
        54; ///< pixels of the ball in its middle, around which there is nothing

    /// Gets a null picture where none can be drawn.
    using Made = std::function<void(const QImage &picture)>;

    explicit MaterialBalls(QObject *parent = nullptr);
    /// Waits for the ball that is being drawn.
    ~MaterialBalls() override;

    /// Of the surface's first patch. `made` is called later, unless this is cancelled or gone by then.
    void start(const OssSurfaceMaps &maps, const Made &made);
    void cancel();

    /// Nothing can be drawn on this machine, as one of the balls has found.
    bool isHopeless() const { return m_isHopeless; }

private:
    struct Painter;

    void draw(const OssRdMaterial &material, const Made &made);

    std::shared_ptr<Painter> m_painter;
    int m_generation = 0;
    bool m_isHopeless = false;
    QThreadPool m_thread;
};
