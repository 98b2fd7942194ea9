#pragma once

#include "Ossa/Painting/BrushHand.h"
#include "Ossa/Painting/EveryMove.h"
#include "Ossa/Painting/SheetHand.h"
#include "Ossa/Surfaces/LitRenderer.h"
#include "Ossa/Surfaces/LitScene.h"
#include "Ossa/Surfaces/ObjectCamera.h"
#include "Ossa/Surfaces/ScenePick.h"
#include "Ossa/Viewer/ObjectRenderer.h"
#include "Ossa/Viewer/PatchCoverage.h"
#include "Ossa/Viewer/WipeLine.h"

#include <QElapsedTimer>
#include <QHash>
#include <QTimer>
#include <QWidget>

#include <optional>

class DecalHandle;
class ObjectCanvas;
class OssGeoEntity;
class PaintSession;
class ViewerPictures;

/// The object: in light, as the material that is looked at, or with the patches as they are shown flat
/// on its surface. Left drag turns it, middle drag moves it, the wheel comes nearer to what is
/// under the pointer, Shift and a drag turns what surrounds it. Where OpenGL cannot be had it says so.
///
/// While one paints, the left button draws on the object: Shift goes on from the last stroke in a straight
/// line, Ctrl picks the colour under the pointer, or what is cloned, Escape takes the stroke in hand back. Alt and a drag, or
/// a drag from beside the object, turns it, with Shift what surrounds it. While one does not paint, a decal can be
/// placed (DecalHandle).
///
/// Draws only while it is seen. Light is drawn on a thread of its own. Pixels of patches that arrive are
/// handed to OpenGL some at a time between frames, so that a large picture does not hold up the user.
class ObjectView : public QWidget
{
    Q_OBJECT

public:
    /// The pictures must outlive the view.
    explicit ObjectView(const ViewerPictures *pictures, QWidget *parent = nullptr);
    ~ObjectView() override;

    /// Null: nothing. Another shape than before is framed. `entity`: whose it is.
    void setMesh(const std::shared_ptr<const OssEvMesh> &mesh,
                 const OssGeoEntity *entity = nullptr);

    bool isLit() const { return m_isLit; }

    /// Whether the object is seen in light, which draws strokes in hand by itself.
    bool isMaterial() const { return m_isLit && m_lightProblem.isEmpty(); }

    void setLit(bool lit);
    /// What strokes on the object go to; must outlive the view. To be called once.
    void setCanvas(PaintSession *session);
    /// While on, one can paint: what is painted on is seen by itself, with the stroke in hand.
    void setPainted(bool painted);

    /// What light and surroundings there are.
    LitScene *light() { return &m_light; }

    /// How the material is looked at; size and camera are the view's own.
    const OssRdView &look() const { return m_look; }

    void setLook(const OssRdView &look);
    /// For the display.
    void setScreen(const LitPicture::Screen &screen);
    /// Something that is looked at may be another.
    void follow();
    /// Seen at a place of the view, in light; null beside all objects, and where patches are seen.
    const OssGeoEntity *objectAt(const QPointF &place) const;
    void frameAll();

    /// Keeps the material as it is now, in light, beside what is looked at from now on: it lies left of a
    /// line that the left button draws. Not where patches are seen.
    void keepPicture();
    void dropKeptPicture();

    bool isComparing() const { return m_wipe->isShown(); }

    /// What is looked at, in words.
    void setShownName(const QString &name);

    QSize sizeHint() const override { return {420, 380}; }

Q_SIGNALS:
    void litChanged(bool lit);
    /// By the user, and let go of.
    void surroundingsTurned();
    /// The user points at the object and may be about to paint.
    void entered();

protected:
    void showEvent(QShowEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void tabletEvent(QTabletEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void enterEvent(QEvent *event) override;
    void leaveEvent(QEvent *event) override;

private:
    /// Whether a stroke or gradient is, which lies where the camera was when it began.
    bool isInHand() const;
    /// False where nothing is in hand.
    bool takeStrokeBack();
    void startLight();
    void activateLight();
    void frameLight();
    void drawLight();
    void paintLight(QPainter *painter);
    /// How to go on where nothing is looked at.
    void paintHint(QPainter *painter) const;
    void paintPatches(QPainter *painter);
    void paintWords(QPainter *painter, const QString &words);
    void begin();
    void noteChange(int patch, const QRect &area);
    void scheduleFrame();
    bool takePictures();
    void redraw();
    /// What is seen at a place: on the object, or beside it as deep as its middle.
    QVector3D placeAt(const QPointF &place) const;
    ScenePick::Ray rayTo(const QPointF &place) const;
    DecalHandle *makeDecalHandle();

    // Painting
    void followStrokes();
    void placeCanvas();
    bool paintPress(const QMouseEvent &event);
    bool paintMove(const QMouseEvent &event);
    bool sheetMove(const QMouseEvent &event);
    void paintRelease(const QPointF &place);
    void pick(const QPointF &place);
    void drawOutline(QPainter *painter);

    const ViewerPictures *m_pictures;
    std::unique_ptr<ObjectRenderer> m_renderer; ///< made when the view is first seen
    std::shared_ptr<const OssEvMesh> m_mesh;
    ObjectCamera m_camera;
    PatchCoverage m_coverage;
    QHash<int, QRect> m_stale; ///< areas that the renderer has not got yet
    QTimer m_frame;
    QImage m_image;
    bool m_isStale = true;
    bool m_isFramed = false;
    bool m_isLit = true;
    QPoint m_last;
    std::optional<QPointF>
        m_zoomPoint;       ///< of the pointer, since which the wheel alone moved the camera
    QVector3D m_zoomPlace; ///< what is seen there

    LitScene m_light;
    std::unique_ptr<LitRenderer> m_litRenderer; ///< made when light is first seen
    OssRdView m_look;
    LitPicture::Screen m_screen;
    QImage m_litImage;
    QString m_lightProblem;
    bool m_isLightFramed = false;
    bool m_isTurning = true; ///< the button held moves the camera or what surrounds
    bool m_isMoving = false;
    bool m_hasTurned = false; ///< what surrounds it
    DecalHandle *m_decal;     ///< the wipe line goes before it
    WipeHandle *m_wipe;
    std::vector<OssRdScene::Object> m_kept;
    QString m_keptName;
    QString m_shownName;

    PaintSession *m_session = nullptr;
    std::unique_ptr<ObjectCanvas> m_canvas;
    BrushHand m_hand;
    EveryMoveOver m_everyMove{this};
    SheetHand m_sheetHand;
    std::optional<QPointF> m_pointer; ///< where the brush is shown
    std::optional<QPointF> m_gradientFrom;
    bool m_isPainted = false;
};
