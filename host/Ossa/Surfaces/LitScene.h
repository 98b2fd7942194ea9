#pragma once

#include "Ossa/Surfaces/SurfacePixels.h"
#include "Ossa/Surfaces/Surroundings.h"
#include "OssRender/Draw/OssRdScene.h"

#include <QObject>
#include <QPointer>

#include <memory>

class OssGeoEntity;

/// What the Viewer shows in light: the surface that is looked at on its object, under a surrounding.
/// Computes only while it is active; geometry and light are made ready on threads of their own. GUI
/// thread.
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
    void setAlone(bool alone) { m_pixels.setFirst(alone); }

    /// A name of OssRdEnvironment or a file. Until its light is there the last one goes on; one that cannot
    /// be read is told and changes nothing.
    void setSurroundings(const QString &nameOrFile);

    QString surroundings() const { return m_surroundingsName; }

    /// In radians.
    void setTurn(float turn);

    float turn() const { return m_scene.turn; }

    void setKeyLight(bool on);

    /// As it is now; with no object where nothing is there to see.
    std::shared_ptr<const OssRdScene> scene() const;

    /// Of the object; null while there is none.
    std::shared_ptr<const OssRdGeometry> geometry() const { return m_geometry; }

    /// Why there is nothing to see, in words.
    QString problem() const { return m_problem.isEmpty() ? m_pixels.problem() : m_problem; }

Q_SIGNALS:
    void changed();
    /// Another object's shape.
    void reshaped();
    /// The surroundings could not be had.
    void refused(const QString &reason);

private:
    void makeGeometry(const std::shared_ptr<const OssEvMesh> &mesh);
    /// Has work done on another thread and what comes of it used here, unless this is gone by then.
    template <class Work, class Use>
    void elsewhere(Work work, Use use);

    SurfacePixels m_pixels;
    OssRdScene m_scene;
    std::shared_ptr<const OssEvMesh> m_mesh;
    std::shared_ptr<const OssRdGeometry> m_geometry;
    QString m_surroundingsName;
    QString m_problem;
    int m_resolution = 1024;
    bool m_isActive = false;
};
