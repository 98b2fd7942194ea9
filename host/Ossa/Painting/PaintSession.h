#pragma once

#include "Ossa/Painting/PaintComposer.h"
#include "Ossa/Painting/PaintJournal.h"
#include "Ossa/Painting/PaintMask.h"
#include "Ossa/Painting/PaintStart.h"
#include "Ossa/Painting/PaintSurfaces.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssCore/Values/OssColor.h"
#include "OssCore/Values/OssResult.h"
#include "OssEvaluation/Paint/OssEvSurfaceStroke.h"

#include <QElapsedTimer>
#include <QHash>
#include <QObject>
#include <QPointer>
#include <QRectF>
#include <QTimer>
#include <QVector>

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <set>

class EveryMove;
class OssImageSet;
class OssLivePaint;
class PaintTileStore;
class OssSnImageSetNodeBase;

/// The user's painting: on which node, and the paint buffer, which holds the
/// strokes that are in no image yet. GUI thread.
///
/// Every stroke is a step of the history, and so is clearing the buffer and baking it into the
/// images, which leaves it empty; undoing that brings the strokes back. The paint of a node that is removed
/// goes with it, in the same step. What the history needs for
/// that is in a PaintTileStore. The buffer holds paint for
/// one image set: before other images are painted on it is dealt with as the preferences say. It is
/// baked by itself after a stroke that makes it larger than bufferBytes.
///
/// Every stroke is on disk when it ends (PaintJournal), and the copy of unsaved work names it: a crash
/// costs none. When the user rests, pixel files are made that have the paint on them; baking takes them as
/// they are.
///
/// What is painted may go to several nodes at once, as the channels of a material: each stroke is then one
/// on each of them, in a colour of its own, and one step.
class PaintSession : public QObject
{
    Q_OBJECT

public:
    static constexpr std::size_t bufferBytes = std::size_t(512) << 20;

    explicit PaintSession(QObject *parent = nullptr);
    ~PaintSession() override;

    /// What strokes go to; null when there is nothing to paint on.
    OssSnImageSetNodeBase *node() const;
    /// False when the user did not want to leave the paint on the node before.
    bool setNode(OssSnImageSetNodeBase *node);

    /// Other nodes that strokes go to as well. False when the user did not want to leave the paint on those
    /// before.
    bool setAlong(const QVector<OssSnImageSetNodeBase *> &nodes);
    QVector<OssSnImageSetNodeBase *> along() const;
    enum class ColorOf {
        Strokes,
        GradientsEnd,
    };

    /// Scene-linear; what strokes leave on one of them.
    OssColor colorAlong(const OssSnImageSetNodeBase *node, ColorOf of = ColorOf::Strokes) const;
    void setColorAlong(const OssSnImageSetNodeBase *node, const OssColor &color,
                       ColorOf of = ColorOf::Strokes);

    /// Whether there is paint that is in no image yet, on whatever node.
    bool hasPaint() const;

    /// How large the brush is on patches that lie flat: in texels, of which a pixel takes so many.
    double flatRadius(double pixel) const;
    /// The object that is painted on; null when there is none.
    std::shared_ptr<const OssEvMesh> mesh() const;

    /// Of node() alone.
    const OssEvPaintBuffer &buffer() const { return m_buffer; }

    /// Of all that are painted on, the one whose paint views show over their picture; node() unless it is told.
    void show(const OssSnImageSetNodeBase *node);

    const OssEvPaintBuffer &shownBuffer() const { return m_shown->m_buffer; }

    /// The shown paint as it is evaluated; null: there is none.
    std::shared_ptr<const OssLivePaint> published() const;
    /// Has what is evaluated from now on show the stroke in hand as well, as far as it has come.
    void publishInHand();

    /// While it runs what is evaluated has the stroke in hand, on all nodes.
    void withStroke(const std::function<void()> &run);

    /// Of all strokes.
    PaintMask *mask() { return m_leader ? m_leader->mask() : &m_mask; }

    /// Texels across a patch of the paint.
    int texelsAcross() const;

    // --- the surface of mesh() in texels of texelsAcross()
    PaintSurfaces *surfaces() { return &m_surfaces; }

    /// Null until it is ready.
    std::shared_ptr<OssEvPaintSurface> surface() const;
    void wantSurface();

    // --- strokes; places in patches, v upwards, or as the view of an object has them
    /// False when there is nothing to paint on, or the brush cannot be used there: the user knows why.
    bool begin(const PaintStart &start);
    /// False also where the surface is not ready.
    bool beginOn(const OssEvSurfaceStroke::ViewPointer &view, const PaintStart &start);
    void moveTo(const QPointF &place, double pressure = 1.0);
    /// As moveTo(), but places that come faster than they can be painted wait for each other and are painted at
    /// once, so that the picture keeps up with the hand.
    void follow(const QPointF &place, double pressure);
    void end();
    /// Takes the stroke in hand back.
    void cancel();

    /// Covers all that the brush may paint on, or does so along a line; on a worker, while other events go
    /// on. As begin() and beginOn().
    bool fill(const PaintStart &start, const std::optional<QPointF> &end = std::nullopt);
    bool fillOn(const OssEvSurfaceStroke::ViewPointer &view, const PaintStart &start,
                const std::optional<QPointF> &end = std::nullopt);

    bool isPainting() const { return m_stroke != nullptr; }

    /// Where the last stroke on patches ended, for one that goes on from there.
    std::optional<QPointF> lastPlace() const { return m_lastPlace; }

    // --- all paint
    void clear();
    /// Composes the paint over the images on a worker, while the user's input waits.
    OssResult bake();
    /// Bakes, or asks, as the preferences say; only when there is paint for the images.
    void handleBakeBehavior(const OssImageSet *images);

Q_SIGNALS:
    /// The picture that is evaluated next will look as what is shown with the paint over it.
    void settled();
    /// The shown paint; in parts of the patch, from its top left corner.
    void painted(int patch, const QRectF &area);
    /// The same of one of the other nodes.
    void paintedAlong(int patch, const QRectF &area);
    /// There is paint where there was none, or none any more; or another node.
    void stateChanged();

private:
    friend class PaintStep;

    enum Notice {
        Show,
        Quietly, ///< the pictures show what becomes of it already
    };

    /// One of those that a session has for other nodes.
    explicit PaintSession(PaintSession *leader);

    /// Those with a node.
    std::vector<PaintSession *> inUse() const;
    PaintSession *spare();
    bool areReady();
    /// As one of another resolution has it.
    PaintStart startOf(const PaintSession &along, const PaintStart &start) const;
    void clearOwn();
    OssResult bakeOwn();
    void takeUp(OssImageSet *images, const QString &name);

    using MakeStroke = std::function<std::unique_ptr<OssEvStroke>(OssEvPaintBuffer *)>;

    /// Gets the buffer ready for a stroke.
    bool makeRoom();
    /// Gets ready for a stroke, which is made when the buffer is.
    bool prepare(const MakeStroke &make);
    MakeStroke flatStroke(const PaintStart &start);
    MakeStroke objectStroke(const OssEvSurfaceStroke::ViewPointer &view, const PaintStart &start);
    OssEvBrush brushAt(const PaintStart &start);
    bool canUse(const OssEvBrush &used, const PaintStart &start);
    void lookBeneath();
    static QString stepName();
    struct Fill;
    using StrokeOf = std::function<MakeStroke(PaintSession *session, const PaintStart &start)>;

    static void waitFor(const std::shared_ptr<Fill> &fill);
    bool fillWith(const PaintStart &start, const std::optional<QPointF> &end,
                  const StrokeOf &strokeOf);
    void takeFill(const std::vector<OssEvStroke::Change> &changes);
    void letStrokeGo();
    void noteUnseen(int patch, const OssEvRegion &area);
    std::shared_ptr<const OssLivePaint> strokeSoFar();
    void finishStep(const std::vector<OssEvStroke::Change> &changes);
    double texelsInWorld() const;
    bool settle();
    /// False, and the user knows why, when it failed.
    bool bakeOrTell();
    void paint(const std::function<OssEvStroke::Areas()> &step);
    void catchUp(int most);
    OssEvStroke::Areas coverMoves(int most);
    void paintAlong(const OssEvStroke::Areas &areas);
    using Tiles = PaintJournal::Tiles;

    void tellArea(int patch, const QRectF &area);
    void tellAreas(const OssEvStroke::Areas &areas);
    void tellTiles(const Tiles &tiles);

    /// For the steps of the history.
    PaintTileStore *tiles() const { return m_tiles.get(); }

    void setTiles(OssImageSet *images, int resolution, const Tiles &tiles, Notice notice);
    void record(const std::vector<OssEvStroke::Change> &changes, int kind);
    void removeAll(Notice notice);
    void noteChange();
    void publish();
    void composeInAdvance();
    void keep(const PaintJournal::Tiles &tiles);
    void recover();
    void forget();
    void letGo();
    int resolutionOf(const OssImageSet *images) const;
    int widthOf(const QString &pixels) const;

    QPointer<OssSnImageSetNodeBase> m_node;
    QPointer<OssImageSet> m_images;            ///< what the buffer's paint is for
    QPointer<OssSnImageSetNodeBase> m_painted; ///< whose images these are, as far as it is known
    OssEvPaintBuffer m_buffer;
    std::shared_ptr<PaintTileStore> m_tiles;
    PaintJournal m_journal;
    PaintComposer m_composer;
    PaintSurfaces m_surfaces;
    PaintMask m_mask;
    std::shared_ptr<OssEvPaintGround>
        m_ground;  ///< of what is painted on, for brushes that look there
    QTimer m_rest; ///< since the last change of the paint
    std::unique_ptr<OssEvStroke> m_stroke;
    OssEvPaintBuffer m_seen; ///< with the stroke as it was last looked at, in tiles of its own
    std::set<OssEvPaintBuffer::Place> m_unseen; ///< where it has become another since
    std::shared_ptr<const OssLivePaint> m_soFar;
    std::unique_ptr<EveryMove> m_everyMove;             ///< during a stroke
    std::vector<OssEvStrokePath::Point> m_moves;        ///< of the stroke that are not painted yet
    QTimer m_behind;                                    ///< until they are
    QElapsedTimer m_sinceMoves;                         ///< were painted
    int m_movesTook = 0;                                ///< milliseconds
    std::unique_ptr<OssUndoManager::AutoMacro> m_macro; ///< of the stroke in hand
    std::optional<QPointF> m_lastPlace;
    std::vector<std::unique_ptr<PaintSession>> m_along; ///< kept, as the history needs them
    using Colors = QHash<const OssImageSet *, OssColor>;
    Colors m_colorsAlong;                              ///< that were chosen
    Colors m_secondsAlong;                             ///< the same, of gradients
    PaintSession *m_leader = nullptr;                  ///< along which it is
    PaintSession *m_shown = this;                      ///< of these
    std::array<float, 3> m_ownColor{0.5F, 0.5F, 0.5F}; ///< instead of the brush's, with a leader
    std::array<float, 3> m_ownSecond{0.5F, 0.5F, 0.5F};
    bool m_follows = false; ///< its stroke covers what the leader's does, and asks nobody else
    double m_scale = 1.0;   ///< texels for one of the leader's
    mutable std::weak_ptr<const OssEvMesh> m_measured;
    mutable double m_meanTexel = 0.0;     ///< of what was measured, in a patch of one texel
    mutable QHash<QString, int> m_widths; ///< of pixel files, which never change
    bool m_isBusy = false;                ///< baking or filling: no stroke may begin
    bool m_wasRefused = false; ///< the user left the paint out, and it has not changed since
};
