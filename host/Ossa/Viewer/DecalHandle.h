#pragma once

#include "Ossa/Surfaces/ScenePick.h"
#include "Ossa/Viewer/DecalPlace.h"
#include "OssCore/Undo/OssUndoManager.h"

#include <QCursor>
#include <QMetaObject>
#include <QObject>
#include <QPointer>
#include <QPolygonF>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

class OssAttributeEdit;
class OssEvMesh;
class OssGeoEntity;
class OssShaderNetwork;
class OssSnBaseNode;
class QMouseEvent;
class QPainter;
class QWidget;

/// The hand that places a decal on the object: a drag within its outline moves it over the surface, to which it
/// turns (with Shift it keeps its direction), one at the knob turns it (with Shift in steps), at a corner it
/// becomes larger and smaller, at a side longer. One gesture is one step; Escape takes it back.
///
/// It is for the one decal that is selected, or else for the one that is looked at, if it belongs to the
/// object that is seen. Takes the left button there from its view.
class DecalHandle : public QObject
{
    Q_OBJECT

public:
    struct Sight
    {
        std::function<glm::mat4()> toClip; ///< from the world
        std::function<ScenePick::Ray(const QPointF &)> ray;
    };

    /// The widget owns it.
    DecalHandle(QWidget *view, Sight sight);
    ~DecalHandle() override;

    /// What is seen; null: nothing.
    void setSeen(const std::shared_ptr<const OssEvMesh> &mesh, const OssGeoEntity *entity);
    /// Off while something else has the pointer.
    void setActive(bool active);

    bool isDragged() const { return m_macro != nullptr; }

    void draw(QPainter *painter);
    /// Whether there was a gesture.
    bool takeBack();

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    enum class Part { None, Middle, Knob, Corner, Across, Upwards };

    /// On the view.
    struct Marks
    {
        QPolygonF corners;
        QPolygonF sides; ///< across, upwards, and those opposite
        QPointF middle;
        QPointF knob;
        bool isSeen = false;
        bool facesAway = false;
    };

    OssSnBaseNode *node() const;
    bool isInWorld(const OssSnBaseNode &node) const;
    /// From the space of the decal to the world.
    glm::mat4 space(const OssSnBaseNode &node) const;
    ScenePick::Ray rayWithin(const OssSnBaseNode &node, const QPointF &view) const;
    Marks marks(const OssSnBaseNode &node) const;
    Part partAt(const QPointF &view) const;
    bool press(const QMouseEvent &event);
    bool move(const QMouseEvent &event);
    bool begin(Part part, const QPointF &view);
    DecalPlace moved(const QPointF &view, bool turns) const;
    DecalPlace dragged(const QMouseEvent &event) const;
    void finish();
    void hover(Part part);
    void watchNetwork();

    QWidget *m_view;
    Sight m_sight;
    std::shared_ptr<const OssEvMesh> m_mesh;
    QPointer<const OssGeoEntity> m_entity;
    bool m_isActive = true;
    Part m_hovered = Part::None;
    std::optional<QCursor> m_ownCursor; ///< of the view, while one of a mark is shown
    QMetaObject::Connection m_selection;

    QPointer<OssSnBaseNode> m_node; ///< in hand
    Part m_part = Part::None;
    DecalPlace m_start;
    QPointF m_offset;            ///< from where it was taken to its middle, on the view
    glm::vec2 m_taken{0.0F};     ///< where it was taken, on its plane
    bool m_isSwallowing = false; ///< the button that held it is not let go of yet
    std::unique_ptr<OssUndoManager::AutoMacro> m_macro;
    std::vector<std::unique_ptr<OssAttributeEdit>> m_edits;
};
