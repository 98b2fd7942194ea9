#pragma once

#include <glm/glm.hpp>

#include <QVector>

class OssSnBaseNode;

/// Where a decal lies in its space, as its node's attributes say, and where gestures bring it.
struct DecalPlace
{
    static constexpr int attributeCount = 9;

    /// In the order of values().
    static const char *attribute(int index);
    static DecalPlace of(const OssSnBaseNode &node);

    /// What the attributes have to be.
    QVector<double> values() const;

    glm::vec3 across() const { return axes[0]; }

    glm::vec3 up() const { return axes[1]; }

    glm::vec3 out() const { return axes[2]; }

    /// A place on it: -1 to 1 each way from its middle to its edges.
    glm::vec3 at(glm::vec2 place) const;
    /// From its middle in units of space, of a ray's place on its plane; false where the ray goes along it.
    bool onPlane(const glm::vec3 &from, const glm::vec3 &direction, glm::vec2 *place) const;

    /// Its middle there, its back to the surface, and as upright as it was.
    DecalPlace laidOn(const glm::vec3 &place, const glm::vec3 &normal) const;
    /// Turned about what it looks along, in radians against the clock.
    DecalPlace turned(float angle) const;
    /// By a factor as a whole.
    DecalPlace scaled(double factor) const;
    /// By factors across and upwards.
    DecalPlace stretched(const glm::dvec2 &factors) const;

    glm::vec3 middle{0.0F};
    glm::mat3 axes{1.0F}; ///< its columns: across, upwards, outwards
    double scale = 1.0;
    glm::dvec2 size{0.6, 0.6}; ///< before it is scaled
};
