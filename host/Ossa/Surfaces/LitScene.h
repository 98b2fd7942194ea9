#pragma once

#include "Ossa/Surfaces/LitSurface.h"
#include "Ossa/Surfaces/SurfacePixels.h"
#include "Ossa/Surfaces/Surroundings.h"
#include "OssRender/Draw/OssRdScene.h"
#include "OssRender/Surface/OssRdDisplacement.h"

#include <QObject>
#include <QPointer>
#include <QTimer>

#include <functional>
#include <map>
#include <memory>
#include <vector>

class OssEvMesh;

/// What the Viewer shows in light: the surface that is looked at on its object, the object's other
/// materials, and the objects that belong to it with theirs, under a surrounding. Where there is nothing
/// to look at the object is bare. Computes only while it is active; geometry and light are made ready on
/// threads of their own. GUI thread.
class LitScene : public QObject
{
    Q_OBJECT

public:
    explicit LitScene(QObject *parent = nullptr);
    ~LitScene() override;

    /// Something that is looked at may be another: looks, and has computed what is.
    void follow();
    void setActive(bool active);
    void setResolution(int resolution);

    /// Whether patches are not seen beside it.
    void setAlone(bool alone);
    /// Whether the objects that belong to what is looked at are seen as well.
    void setCompany(bool company);
    /// Whether surfaces really stand out by their displacement.
    void setDisplaced(bool displaced);

    /// What paints on the object.
    struct Hand
    {
        /// Whether a stroke is in hand: what follows of it is not looked at before it ends.
        std::function<bool()> isPainting;
        /// Runs something while what is evaluated has that stroke.
        std::function<void(const std::function<void()> &)> within;
    };

    void setHand(const Hand &hand) { m_hand = hand; }

    /// While one paints what is painted on is seen as it lies under the brush: nothing stands out, and no other
    /// object hides it.
    void setPainted(bool painted);
    /// There is other paint in a part of a patch, from its top left corner: shows it at once, over what is
    /// there.
    void touch(int patch, const QRectF &area);
    /// What is computed next looks as what is shown.
    void expectSame();
    /// Makes up for what was not looked at.
    void strokeEnded();

    /// Gives up the pixels that are not there yet.
    void halt();

    /// A name of OssRdEnvironment or a file. Until its light is there the last one goes on; one that cannot
    /// be read is told and changes nothing.
    void setSurroundings(const QString &nameOrFile);

    QString surroundings() const { return m_surroundingsName; }

    /// In radians.
    void setTurn(float turn);

    float turn() const { return m_scene.turn; }

    /// Of the surroundings; 1: as they are.
    void setIntensity(float intensity);
    void setKeyLight(bool on);

    /// As it is now; with no object where nothing is there to see.
    std::shared_ptr<const OssRdScene> scene() const;

    /// Of the object that is looked at; null while there is none.
    std::shared_ptr<const OssRdGeometry> geometry() const;

    /// Whose geometry of the scene it is; null where it is nobody's by now.
    const OssGeoEntity *entityOf(const OssRdGeometry *geometry) const;

    /// Why what is looked at is not seen, in words.
    QString problem() const;
    /// Whether nothing is looked at, so that the object is bare.
    bool isBare() const;

Q_SIGNALS:
    void changed();
    /// How far the maps are in thousandths, which only grow until others begin. 1000: nothing is computed.
    void progressed(int thousandths);
    /// Another object's shape.
    void reshaped();
    /// The surroundings could not be had.
    void refused(const QString &reason);

private:
    struct Piece
    {
        bool isFirst = false;
        QPointer<const OssSnBaseNode> node;
        QString output;
        QPointer<const OssGeoEntity> entity;
        std::vector<int> slots;
        std::shared_ptr<const OssEvMesh> mesh;
        QString problem;
        SurfacePixels pixels;
    };

    QVector<LitSurface> wanted() const;
    std::unique_ptr<Piece> makePiece();
    /// A piece for each, what is kept with it of the same surface before.
    void arrange(const QVector<LitSurface> &surfaces);
    void followPiece(Piece *piece);
    void followOthers();
    void takeTouches();
    void makeWay();
    void tellProgress();
    /// As it is seen; null while it is being made.
    std::shared_ptr<const OssRdGeometry> geometryOf(const Piece &piece) const;
    void makeGeometry(const std::shared_ptr<const OssEvMesh> &mesh);
    /// Moves the surfaces that are another by now, one mesh after the other.
    void displace();
    /// What lies on a mesh.
    std::vector<OssRdDisplacement::Skin> skinsOf(const OssEvMesh *mesh) const;
    /// Has work done on another thread and what comes of it used here, unless this is gone by then.
    template <class Work, class Use>
    void elsewhere(Work work, Use use);

    OssRdScene m_scene;
    std::vector<std::unique_ptr<Piece>> m_pieces; ///< what is looked at comes first
    /// Of the pieces' meshes; null while it is being made.
    std::map<std::shared_ptr<const OssEvMesh>, std::shared_ptr<const OssRdGeometry>> m_geometries;
    /// The same with surfaces that stand out; null where none does.
    std::map<std::shared_ptr<const OssEvMesh>, std::shared_ptr<const OssRdGeometry>> m_displaced;
    QTimer m_displacing; ///< when no more pixels come for a moment
    bool m_isDisplacing = false;
    bool m_isDisplaced = false;
    QString m_surroundingsName;
    Hand m_hand;
    SurfacePixels::Areas m_touched; ///< not looked at yet
    SurfacePixels::Areas m_inHand;  ///< by the stroke in hand
    QTimer m_touching;
    bool m_isPutOff = false;
    bool m_isPainted = false;
    QTimer m_others; ///< what is not looked at follows when the user rests
    int m_resolution = 1024;
    int m_told = 1000;
    bool m_isActive = false;
    bool m_isAlone = false;
    bool m_hasCompany = true;
};
