#pragma once

#include "OssEvaluation/Values/OssEvCancel.h"

#include <assimp/types.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include <tiny_gltf.h>

/// What there is in a glTF file to be made a mesh of, checked so that it can be read without looking.
class GltfScene
{
public:
    /// Numbers of an accessor, each of as many floats as it was opened for.
    class Numbers
    {
    public:
        bool isThere() const { return m_data != nullptr; }

        std::size_t count() const { return m_count; }

        template <std::size_t Count>
        std::array<float, Count> at(std::size_t i) const
        {
            std::array<float, Count> values{};
            const unsigned char *from = m_data + i * m_stride;
            if (m_type == TINYGLTF_COMPONENT_TYPE_FLOAT) {
                if (m_parts >= Count) // mostly, and quick since the size is known
                    std::memcpy(values.data(), from, sizeof(values));
                else
                    std::memcpy(values.data(), from, sizeof(float) * m_parts);
                return values;
            }
            for (std::size_t k = 0; k < std::min(Count, m_parts); ++k)
                values[k] = whole(from, k);
            return values;
        }

        std::size_t parts() const { return m_parts; }

        /// Of indices.
        std::uint32_t index(std::size_t i) const
        {
            const unsigned char *from = m_data + i * m_stride;
            if (m_type == TINYGLTF_COMPONENT_TYPE_UNSIGNED_INT)
                return number<std::uint32_t>(from);
            return m_type == TINYGLTF_COMPONENT_TYPE_UNSIGNED_SHORT ? number<std::uint16_t>(from)
                                                                    : *from;
        }

    private:
        friend class GltfScene;

        template <class Number>
        static Number number(const unsigned char *from)
        {
            Number value{};
            std::memcpy(&value, from, sizeof(value));
            return value;
        }

        /// Normalised.
        float whole(const unsigned char *from, std::size_t k) const
        {
            return m_type == TINYGLTF_COMPONENT_TYPE_UNSIGNED_BYTE
                       ? float(from[k]) / 255.0F
                       : float(number<std::uint16_t>(from + 2 * k)) / 65535.0F;
        }

        const unsigned char *m_data = nullptr;
        std::size_t m_count = 0;
        std::size_t m_stride = 0;
        std::size_t m_parts = 0;
        int m_type = 0;
    };

    struct Primitive
    {
        int mode = TINYGLTF_MODE_TRIANGLES; ///< or strips, or fans
        Numbers positions;
        Numbers normals;
        Numbers colors;
        std::vector<Numbers> uvs; ///< by set
        Numbers indices;          ///< none: one after the other
        std::string material;

        std::size_t corners() const
        {
            return indices.isThere() ? indices.count() : positions.count();
        }

        std::size_t triangles() const
        {
            const std::size_t count = corners();
            return mode == TINYGLTF_MODE_TRIANGLES ? count / 3 : count < 3 ? 0 : count - 2;
        }
    };

    /// A mesh where a node puts it.
    struct Placed
    {
        int mesh = 0;
        aiMatrix4x4 matrix;
        std::string object;
    };

    /// False for what is not known here, or not as it should be. Images are not read.
    bool open(const std::string &path, const aiMatrix4x4 &above);

    const std::vector<Placed> &placed() const { return m_placed; }

    /// With faces.
    const std::vector<Primitive> &primitives(int mesh) const
    {
        return m_primitives[std::size_t(mesh)];
    }

private:
    bool openMeshes();
    bool openPrimitive(const tinygltf::Primitive &from, Primitive *made) const;
    /// True as well where there is no such attribute.
    bool openAttribute(const tinygltf::Primitive &from, const std::string &name,
                       bool isWholeAllowed, std::size_t count, Numbers *made) const;
    bool open(int accessor, Numbers *made) const;
    bool collect(int node, const aiMatrix4x4 &above, bool isOnly, int depth);
    std::string objectName(int node, bool isOnly);

    tinygltf::Model m_model;
    std::vector<std::vector<Primitive>> m_primitives; ///< by mesh
    std::vector<Placed> m_placed;
    std::string m_file; ///< its name, for what has none
    std::vector<std::string> m_taken;
};
