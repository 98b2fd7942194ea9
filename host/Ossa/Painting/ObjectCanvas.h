#pragma once

#include "Ossa/Painting/PaintStart.h"
#include "OssEvaluation/Paint/OssEvSurfaceStroke.h"

#include <QMatrix4x4>
#include <QObject>
#include <QPolygonF>
#include <QSize>
#include <QTimer>

#include <memory>
#include <optional>

class PaintSession;
class QThread;

/// An object as a canvas: the pointer's way over its picture becomes strokes of a session. Places in
/// pixels from the top left corner. What takes long for large meshes is made ready on a thread of its
/// own. GUI thread.
class ObjectCanvas : public QObject
{
    Q_OBJECT

public:
    enum class Press {
        Beside, ///< the brush does not reach the object
        Begun,
        Refused ///< and the user knows why
    };

    /// The session must outlive the canvas.
    explicit ObjectCanvas(PaintSession *session, QObject *parent = nullptr);
    /// Waits for what is being made ready.
    ~ObjectCanvas() override;

    /// While on, gets ready what is seen and painted on.
    void setActive(bool on);
    /// What is seen; null: nothing.
    void setMesh(const std::shared_ptr<const OssEvMesh> &mesh);
    /// How it is seen; size in pixels of the places.
    void setView(const QMatrix4x4 &camera, const QMatrix4x4 &projection, const QSize &size);

    bool isReady() const { return surface() != nullptr; }

    Press press(const QPointF &place, double pressure = 1.0);
    /// A straight line from where the last stroke ended; as press() where there was none.
    Press pressLine(const QPointF &place, double pressure = 1.0);

    /// The last stroke was taken back: no line goes on from there.
    void forgetEnd() { m_lastEnd.reset(); }

    void move(const QPointF &place, double pressure = 1.0);
    /// Fills as the brush says, or along a line.
    Press fill(const QPointF &place, const std::optional<QPointF> &end = std::nullopt);

    /// Chooses whose colours are cloned; false beside the object.
    bool setCloneSource(const QPointF &place);
    /// Where these are seen; while a stroke clones, whose colours the brush lays down at a place.
    std::optional<QPointF> cloneSource(const QPointF &place);

    /// The brush's outline as it would touch the object; empty where it does not.
    QPolygonF outline(const QPointF &place, double part = 1.0);
    /// Texture coordinates of what is seen at a place.
    std::optional<QPointF> uvAt(const QPointF &place);

Q_SIGNALS:
    void ready();

private:
    /// Null until what is seen is ready for the paint's resolution.
    std::shared_ptr<OssEvPaintSurface> surface() const;
    void prepare();
    void prepareDepths();
    void adopt();
    /// Refused, with a word to the user, when nothing can be painted.
    Press check();
    Press begin(const QPointF &from, double pressure);
    PaintStart startAt(const QPointF &place, double pressure);
    std::shared_ptr<const OssEvPaintView> makeView(const OssEvPaintSurface *surface) const;
    const OssEvPaintView &frame();
    QPointF flipped(const QPointF &place) const;
    void noteEnd(const QPointF &place);

    PaintSession *m_session;
    bool m_isActive = false;
    std::shared_ptr<const OssEvMesh> m_mesh;
    std::unique_ptr<QThread> m_depthThread; ///< that looks how deep what is seen lies
    QTimer m_rest;                          ///< since the view moved
    QMatrix4x4 m_toClip;
    QSize m_size;
    std::shared_ptr<const OssEvPaintView> m_frame; ///< without depths; null: made when asked for
    std::shared_ptr<const OssEvPaintView> m_depths;
    std::optional<glm::vec3> m_lastEnd;     ///< of the last stroke, on the surface
    std::optional<glm::vec3> m_cloneSource; ///< on the surface
    std::optional<QPointF> m_cloneWay;      ///< to it, as the view is; none: strokes begin with it
};
