#pragma once

#include "Ossa/Painting/BrushHand.h"
#include "Ossa/Painting/EveryMove.h"
#include "Ossa/Painting/PaintStart.h"
#include "Ossa/Painting/SheetHand.h"
#include "OssModel/Objects/OssCanvasWidget.h"

#include <QHash>
#include <QImage>
#include <QVariant>
#include <QWidget>

class PaintSession;
class ViewerPictures;

/// The patches of an object side by side, as their numbers place them, and the canvas to paint on
/// them. Middle drag and Alt with left drag pan, the wheel zooms at the pointer.
///
/// While painting the left button draws: Shift goes on from the last stroke in a straight line, Ctrl
/// picks the colour under the pointer, or what is cloned, Escape takes the stroke in hand back. Otherwise left drag pans
/// too. Other keys are commands of the Viewer.
class UvView
    : public QWidget
    , public OssCanvasWidget
{
    Q_OBJECT

public:
    /// Pictures and session must outlive the view.
    UvView(const ViewerPictures *pictures, PaintSession *session, QWidget *parent = nullptr);
    ~UvView() override;

    void setPainting(bool on);

    void handleBakeBehavior(OssImageSet *images) override;
    OssResult bakePaint() override;

    void frameAll();

    /// Keeps what is shown as it looks now, beside what is looked at from now on: it lies left of a line
    /// that the left button draws. Nothing is painted there.
    void keepPicture();
    void dropKeptPicture();

    bool isComparing() const { return !m_kept.isEmpty(); }

    /// What the picture is of, in words.
    void setShownName(const QString &name);

    /// The scene-linear colour under a place of the widget, not premultiplied; invalid where there is
    /// none. Found by its name.
    Q_INVOKABLE QVariant sceneColorAt(const QPoint &place) const;

    QSize sizeHint() const override { return {420, 380}; }

Q_SIGNALS:
    /// The middle of what is seen moved; in patches, v upwards.
    void focusMoved(const QPointF &place);
    /// Values under the pointer, or where there are none an empty text.
    void pointed(const QString &text);
    /// The user points at the canvas and may be about to paint.
    void entered();

protected:
    void paintEvent(QPaintEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void tabletEvent(QTabletEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void enterEvent(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void leaveEvent(QEvent *event) override;

private:
    /// False where no stroke is in hand.
    bool takeStrokeBack();
    QRectF rectOf(int patch) const;
    QPointF toUv(const QPointF &place) const;
    QPointF fromUv(const QPointF &uv) const;
    QString valuesAt(const QPointF &place) const;
    void tellFocus();
    void showBegin();
    void showChange(int patch, const QRect &area);

    static QColor groundColor();
    void drawPatch(QPainter *painter, int patch, const QImage &picture) const;
    void showPointer();

    // Comparing
    double wipePlace() const;
    bool isKeptAt(const QPointF &place) const;
    bool isAtWipe(const QPointF &place) const;
    void moveWipe(const QPointF &place);
    void drawComparison(QPainter *painter) const;

    // Painting
    void paintPress(const QMouseEvent &event);
    void paintRelease(const QPointF &place);
    PaintStart startAt(const QPointF &uv);
    double brushRadius() const;
    void moveOutline(const QPointF &place);
    void drawOutline(QPainter *painter) const;
    QRect outlineRect() const;

    const ViewerPictures *m_pictures;
    PaintSession *m_session;
    QPointF m_pointer; ///< where the brush is shown
    bool m_isPointed = false;
    bool m_isPainting = false;
    BrushHand m_hand;
    EveryMoveOver m_everyMove{this};
    SheetHand m_sheetHand;
    std::optional<QPointF> m_gradientFrom;
    std::optional<QPointF> m_cloneSource; ///< in patches
    std::optional<QPointF> m_cloneWay;    ///< to it; none: the next stroke begins with it
    double m_scale = 300.0;               ///< pixels of a patch
    QPointF m_origin;                     ///< of patch 1001's lower left corner
    QPoint m_last;
    QHash<int, QImage> m_kept; ///< by patch
    QString m_keptName;
    QString m_shownName;
    double m_wipe = 0.5; ///< of the width
    bool m_isWiping = false;
    bool m_fitted = true; ///< everything is shown, until the user looks elsewhere
};
