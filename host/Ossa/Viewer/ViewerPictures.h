#pragma once

#include "Ossa/Viewer/ViewerPixels.h"
#include "OssCore/Values/OssColor.h"

#include <QHash>
#include <QList>
#include <QObject>

#include <array>
#include <memory>
#include <optional>

class OssEvPaintBuffer;
class OssLivePaint;

/// The patches as they are shown: display pixels of what the viewer looks at, with paint that is in
/// no image yet on top. What all views of the Viewer draw.
class ViewerPictures : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// What is there goes on being shown until its pixels are replaced. `problem` says why nothing
    /// will come, in words.
    void begin(const QList<int> &patches, int resolution, const QString &problem);
    /// A tile of a coarser picture is shown enlarged.
    void setTile(int patch, int resolution, const QPoint &place, const QImage &picture,
                 const OssEvTilePointer &tile);

    /// How paint is shown from now on; the tiles that come are pictures already.
    void setLook(const ViewerLook &look) { m_look = look; }

    /// Null: there is no paint. It is looked at in setTile() and showPaint() and must outlive them.
    void setPaint(const OssEvPaintBuffer *paint) { m_paint = paint; }

    /// The paint that the pixels have which come after the next begin(); null: none.
    void setIncluded(std::shared_ptr<const OssLivePaint> paint) { m_included = std::move(paint); }

    /// Whether what is shown is the paint's own images, so that an eraser can be seen to take from
    /// them. Otherwise only fresh paint is seen to go.
    void setShowsOwnImages(bool own) { m_showsOwnImages = own; }

    /// What begins next will look as what is shown: no coarse picture is wanted in between.
    void expectSamePicture() { m_expectsSame = true; }

    /// Shows the paint in an area as it is now; in parts of the patch, from its top left corner.
    void showPaint(int patch, const QRectF &area);

    /// Ascending.
    QList<int> patches() const;

    bool has(int patch) const { return m_patches.contains(patch); }

    /// Pixels across a patch.
    int resolution() const { return m_resolution; }

    QString problem() const { return m_problem; }

    /// ARGB32, premultiplied; null for a patch that is not there.
    QImage picture(int patch) const;
    /// The values at a pixel with paint on them, premultiplied; false where none have come.
    bool values(int patch, const QPoint &pixel, QVector<float> *channels) const;
    /// The scene-linear colour at a place in patches, v upwards, not premultiplied; none where nothing has
    /// come.
    std::optional<OssColor> colorAt(const QPointF &uv) const;

Q_SIGNALS:
    /// Other patches, another resolution or another problem.
    void began();
    /// In pixels of the patch.
    void changed(int patch, const QRect &area);

private:
    using Included = std::shared_ptr<const OssLivePaint>;

    struct Tile
    {
        OssEvTilePointer values;
        Included paint;                         ///< that the values have
        const OssEvPaintBuffer *over = nullptr; ///< of which that is an earlier state
        int generation = 0;
    };

    struct Patch
    {
        QImage picture;
        QHash<QPair<int, int>, Tile> tiles;  ///< also older ones, until others come
        QHash<QPair<int, int>, Tile> coarse; ///< the same, until all others have come
        int coarseResolution = 0;
    };

    /// Texels of a row within a tile, with what they have.
    struct Run
    {
        int count = 0;
        const Tile *tile = nullptr; ///< null: nothing has come
    };

    enum Rows { AllRows, PaintedRows };

    /// Makes the pixels of an area anew from values and paint.
    void compose(int number, Patch *patch, const QRect &area, Rows rows);
    void composeTile(int number, Patch *patch, const QRect &area, Rows rows);
    Run readBeneath(const Patch &patch, int x, int y, int count, float *rgba, bool *isColor) const;
    static void dropOlder(Patch *patch, const QRect &area, int generation);
    bool readPaint(int number, int x, int y, const Run &run, std::array<float, 5> *paint) const;
    /// What a texel keeps of what lies beneath is, where it cannot be told what an eraser would bare, what its
    /// paint does not hide.
    bool readRow(const OssEvPaintBuffer &paint, int number, int x, int y, int count,
                 std::array<float, 5> *texels) const;

    QHash<int, Patch> m_patches;
    int m_resolution = 1024;
    QString m_problem;
    ViewerLook m_look;
    const OssEvPaintBuffer *m_paint = nullptr;
    Included m_included;
    int m_generation = 0; ///< counts begin()
    bool m_showsOwnImages = false;
    bool m_expectsSame = false;
    bool m_hidesCoarse = false;
};
