#include "Ossa/Surfaces/ObjectCamera.h"

#include <QtMath>

#include <algorithm>
#include <cmath>

namespace {

constexpr float firstYaw = 28.0F;
constexpr float firstPitch = 18.0F;
constexpr float steepestPitch = 89.0F;
constexpr float degreesAcross = 240.0F; ///< a drag over the whole view turns by so much
constexpr float margin = 1.15F;
// Of the radius: nearer one would be inside what is looked at, farther it would be a dot.
constexpr float nearest = 0.05F;
constexpr float farthest = 200.0F;

/// Half of what is seen at distance 1.
float halfHeight()
{
    return std::tan(qDegreesToRadians(ObjectCamera::fieldOfView) / 2.0F);
}

} // namespace

void ObjectCamera::frame(const QVector3D &centre, float radius)
{
    m_centre = centre;
    m_radius = std::max(radius, 1e-6F);
    m_distance = margin * m_radius / std::sin(qDegreesToRadians(fieldOfView) / 2.0F);
}

void ObjectCamera::resetDirection()
{
    m_yaw = firstYaw;
    m_pitch = firstPitch;
}

void ObjectCamera::orbit(const QPointF &way)
{
    m_yaw = std::fmod(m_yaw - float(way.x()) * degreesAcross, 360.0F);
    m_pitch = std::clamp(m_pitch + float(way.y()) * degreesAcross, -steepestPitch, steepestPitch);
}

void ObjectCamera::pan(const QPointF &way)
{
    const float seen = 2.0F * halfHeight() * m_distance;
    const QVector3D onScreen(-float(way.x()) * seen, float(way.y()) * seen, 0.0F);
    m_centre += rotation().transposed().mapVector(onScreen);
}

void ObjectCamera::zoomAt(const QVector3D &place, float factor)
{
    const QVector3D ahead = rotation().transposed().mapVector({0.0F, 0.0F, -1.0F});
    const QVector3D from = eye();
    const float depth = QVector3D::dotProduct(place - from, ahead);
    if (depth <= 0.0F)
        return;
    // Whoever is nearer, or farther, already stays there.
    const float wanted = std::clamp(depth / factor, std::min(nearest * m_radius, depth),
                                    std::max(farthest * m_radius, depth));
    const QVector3D eyeThen = place + (from - place) * (wanted / depth);
    m_distance = wanted;
    m_centre = eyeThen + ahead * wanted;
}

QVector3D ObjectCamera::eye() const
{
    return m_centre + rotation().transposed().mapVector({0.0F, 0.0F, m_distance});
}

QVector3D ObjectCamera::wayTo(const QPointF &place, const QSizeF &size) const
{
    const double shorter = std::min(size.width(), size.height());
    const double unit = 2.0 * double(halfHeight()) / shorter;
    const QVector3D way(float((place.x() - size.width() / 2.0) * unit),
                        float((size.height() / 2.0 - place.y()) * unit), -1.0F);
    return rotation().transposed().mapVector(way);
}

QVector3D ObjectCamera::besideCentre(const QPointF &place, const QSizeF &size) const
{
    return eye() + wayTo(place, size) * m_distance;
}

QMatrix4x4 ObjectCamera::rotation() const
{
    QMatrix4x4 turned;
    turned.rotate(m_pitch, 1.0F, 0.0F, 0.0F);
    turned.rotate(-m_yaw, 0.0F, 1.0F, 0.0F);
    return turned;
}

QMatrix4x4 ObjectCamera::view() const
{
    QMatrix4x4 view;
    view.translate(0.0F, 0.0F, -m_distance);
    view *= rotation();
    view.translate(-m_centre);
    return view;
}

QMatrix4x4 ObjectCamera::projection(float aspect) const
{
    // Panning takes the object away from the centre, so its depth is not known to be near it.
    const float far = m_distance + 4.0F * farthest * m_radius;
    const float near = std::max(m_distance - 8.0F * m_radius, 0.02F * m_distance);
    const float high = near * halfHeight() * (aspect < 1.0F ? 1.0F / aspect : 1.0F);
    QMatrix4x4 projection;
    projection.frustum(-high * aspect, high * aspect, -high, high, near, far);
    return projection;
}
