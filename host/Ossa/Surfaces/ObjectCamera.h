#pragma once

#include <QMatrix4x4>
#include <QPointF>
#include <QSizeF>
#include <QVector3D>

/// Where an object is looked at from: turns around a point, with y upwards. Angles in degrees,
/// lengths in the object's world.
class ObjectCamera
{
public:
    static constexpr float fieldOfView = 35.0F; ///< over the shorter side of the view

    /// Looks at a ball so that it fills the view, from where the camera stood.
    void frame(const QVector3D &centre, float radius);
    /// From the front and a little from above and the side.
    void resetDirection();

    /// Turns the object under the pointer; a way in parts of the view's shorter side.
    void orbit(const QPointF &way);

    /// Walks around it, eastwards.
    void turn(float degrees) { m_yaw += degrees; }

    /// Moves what lies in the centre by the same way on screen.
    void pan(const QPointF &way);
    /// Comes nearer to a place by a factor above 1, as far as it is good for anything; what lies there
    /// stays where it is on screen. A drag turns around what lies as deep.
    void zoomAt(const QVector3D &place, float factor);

    /// Where the eye is, and the way to what is seen at a place of a view of that size.
    QVector3D eye() const;
    QVector3D wayTo(const QPointF &place, const QSizeF &size) const;
    /// What is seen there as deep as what the object turns around.
    QVector3D besideCentre(const QPointF &place, const QSizeF &size) const;

    /// World to camera, which looks along -z.
    QMatrix4x4 view() const;
    /// Camera to clip space. `aspect` is width by height.
    QMatrix4x4 projection(float aspect) const;

private:
    QMatrix4x4 rotation() const;

    QVector3D m_centre;
    float m_radius = 1.0F;
    float m_distance = 4.0F;
    float m_yaw = 0.0F;
    float m_pitch = 0.0F;
};
