#pragma once

#include "OssEvaluation/OssEvaluation_export.h"

#include <array>
#include <cstdint>
#include <vector>

class OssEvMesh;

/// What is known of a mesh as a whole: its box, its charts and parts, how densely it is laid out. Worked out
/// once (OssEvMesh::facts()), then read by several threads.
class OSSEVALUATION_EXPORT OssEvMeshFacts
{
public:
    using Vector3 = std::array<float, 3>;
    /// Three rows of three.
    using Matrix = std::array<float, 9>;

    struct Box
    {
        Vector3 low{};
        Vector3 high{};

        float diagonal() const;
    };

    /// What hangs together: its number from 0 on for each triangle, in the order of their first triangles.
    struct Islands
    {
        std::vector<std::int32_t> ofTriangle;
        int count = 0;
    };

    explicit OssEvMeshFacts(const OssEvMesh &mesh);

    const Box &box() const { return m_box; }

    const Box &worldBox() const { return m_worldBox; }

    /// In the texture space: triangles that share vertices of one place and one texture coordinate.
    const Islands &charts() const { return m_charts; }

    /// In space: triangles that share the places of vertices.
    const Islands &parts() const { return m_parts; }

    /// Edge of a patch over edge of the square of surface that it takes, the mean of all surface; 0 without
    /// any.
    double density() const { return m_density; }

    /// Of a normal in the object's space, which need not be of length 1 afterwards.
    Vector3 normalToWorld(const Vector3 &normal) const;

    /// Of a direction in the world, likewise.
    Vector3 directionToObject(const Vector3 &direction) const;

private:
    Box m_box;
    Box m_worldBox;
    Islands m_charts;
    Islands m_parts;
    double m_density = 0.0;
    Matrix m_toObject{};
};
