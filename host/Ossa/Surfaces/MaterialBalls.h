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
    /// In pixels; around the ball, which is in the middle, there is nothing.
    struct Format
    {
        int size = 96; ///< of the picture
        int ball = 54;
        int texels = 96; ///< of a map, each way
    };

    /// Gets a null picture where none can be drawn.
    using Made = std::function<void(const QImage &picture)>;

    explicit MaterialBalls(QObject *parent = nullptr);
    explicit MaterialBalls(const Format &format, QObject *parent = nullptr);
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

    Format m_format;
    std::shared_ptr<Painter> m_painter;
    int m_generation = 0;
    bool m_isHopeless = false;
    QThreadPool m_thread;
};
