#include "OssEvaluation/Files/OssEvGltf.h"

#include "OssEvaluation/Files/OssEvFile.h"
#include "OssEvaluation/Geometry/OssEvTangents.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <exception>
#include <fstream>
#include <limits>
#include <map>
#include <sstream>
#include <unordered_map>

// The library's own functions for pictures are not used: they are copied as they are.
#define TINYGLTF_NO_STB_IMAGE
#define TINYGLTF_NO_STB_IMAGE_WRITE
#include <tiny_gltf.h>

namespace {

using namespace OssEvGltf;

/// Sizes in the format have 32 bits.
constexpr std::size_t LargestBuffer = std::numeric_limits<std::uint32_t>::max() / 2;
constexpr int PatchesAcross = 10;
constexpr int FirstPatch = 1001;

int patchOf(const OssEvMesh &mesh, const std::array<std::uint32_t, 3> &triangle)
{
    float u = 0.0F;
    float v = 0.0F;
    for (const std::uint32_t vertex : triangle) {
        u += mesh.uvs[vertex][0] / 3.0F;
        v += mesh.uvs[vertex][1] / 3.0F;
    }
    return FirstPatch + int(std::floor(u)) + PatchesAcross * int(std::floor(v));
}

bool hasSlot(const std::vector<int> &slots, int slot)
{
    return slots.empty() || std::find(slots.begin(), slots.end(), slot) != slots.end();
}

class Writer
{
public:
    explicit Writer(const Scene &scene)
        : m_scene(scene)
    {
        m_model.asset.version = "2.0";
        m_model.asset.generator = "Ossa";
        m_model.buffers.resize(1);
        m_model.samplers.resize(1);
        m_model.samplers[0].wrapS = TINYGLTF_TEXTURE_WRAP_CLAMP_TO_EDGE;
        m_model.samplers[0].wrapT = TINYGLTF_TEXTURE_WRAP_CLAMP_TO_EDGE;
        m_model.samplers[0].minFilter = TINYGLTF_TEXTURE_FILTER_LINEAR_MIPMAP_LINEAR;
        m_model.samplers[0].magFilter = TINYGLTF_TEXTURE_FILTER_LINEAR;
    }

    /// Throws what keeps it from being made.
    std::string bytes(const OssEvCancel *cancel)
    {
        for (const Material &material : m_scene.materials) {
            if (cancel != nullptr && cancel->isCancelled())
                throw std::runtime_error("it was cancelled");
            addMaterial(material);
        }
        tinygltf::Scene scene;
        for (const Object &object : m_scene.objects)
            addObject(object, &scene);
        m_model.scenes.push_back(scene);
        m_model.defaultScene = 0;
        if (buffer().empty())
            throw std::runtime_error("there are no faces");
        std::ostringstream stream;
        tinygltf::TinyGLTF library;
        if (!library.WriteGltfSceneToStream(&m_model, stream, false, true))
            throw std::runtime_error("it cannot be put together");
        return stream.str();
    }

private:
    std::vector<unsigned char> &buffer() { return m_model.buffers[0].data; }

    int addView(const void *data, std::size_t size, int target)
    {
        buffer().resize((buffer().size() + 3) / 4 * 4);
        if (buffer().size() + size > LargestBuffer)
            throw std::runtime_error("it would be too large for the format: make textures smaller");
        tinygltf::BufferView view;
        view.buffer = 0;
        view.byteOffset = buffer().size();
        view.byteLength = size;
        view.target = target;
        const auto *first = static_cast<const unsigned char *>(data);
        buffer().insert(buffer().end(), first, first + size);
        m_model.bufferViews.push_back(view);
        return int(m_model.bufferViews.size()) - 1;
    }

    /// Index of the texture; -1 where there is no path.
    int addTexture(const std::string &path)
    {
        if (path.empty())
            return -1;
        const auto known = m_textures.find(path);
        if (known != m_textures.end())
            return known->second;
        std::ifstream file(path, std::ios::binary);
        const std::string content((std::istreambuf_iterator<char>(file)), {});
        if (content.empty())
            throw std::runtime_error("\"" + path + "\" cannot be read");
        tinygltf::Image image;
        image.mimeType = "image/png";
        image.bufferView = addView(content.data(), content.size(), 0);
        m_model.images.push_back(image);
        tinygltf::Texture texture;
        texture.source = int(m_model.images.size()) - 1;
        texture.sampler = 0;
        m_model.textures.push_back(texture);
        const int index = int(m_model.textures.size()) - 1;
        m_textures.emplace(path, index);
        return index;
    }

    void addMaterial(const Material &from)
    {
        tinygltf::Material material;
        material.name = from.name;
        material.doubleSided = true;
        material.alphaMode = from.blends ? "BLEND" : "OPAQUE";
        auto &surface = material.pbrMetallicRoughness;
        surface.baseColorTexture.index = addTexture(from.baseColor);
        surface.metallicRoughnessTexture.index = addTexture(from.occlusionRoughnessMetallic);
        if (from.hasOcclusion)
            material.occlusionTexture.index = addTexture(from.occlusionRoughnessMetallic);
        material.normalTexture.index = addTexture(from.normal);
        material.emissiveTexture.index = addTexture(from.emissive);
        if (!from.emissive.empty())
            material.emissiveFactor = {1.0, 1.0, 1.0};
        if (!from.clearCoat.empty())
            addClearCoat(from, &material);
        m_model.materials.push_back(material);
    }

    void addClearCoat(const Material &from, tinygltf::Material *material)
    {
        const std::string name = "KHR_materials_clearcoat";
        const tinygltf::Value texture(
            tinygltf::Value::Object{{"index", tinygltf::Value(addTexture(from.clearCoat))}});
        material->extensions[name] = tinygltf::Value(
            tinygltf::Value::Object{{"clearcoatFactor", tinygltf::Value(1.0)},
                                    {"clearcoatTexture", texture},
                                    {"clearcoatRoughnessFactor", tinygltf::Value(1.0)},
                                    {"clearcoatRoughnessTexture", texture}});
        if (m_model.extensionsUsed.empty())
            m_model.extensionsUsed.push_back(name);
    }

    void addObject(const Object &object, tinygltf::Scene *scene)
    {
        const auto &surfaces = object.surfaces;
        const bool hasNormals = std::any_of(
            surfaces.begin(), surfaces.end(), [this](const Surface &one) {
                return !m_scene.materials[std::size_t(one.material)].normal.empty();
            });
        const OssEvTangents tangents = hasNormals ? OssEvTangents::of(*object.mesh)
                                                  : OssEvTangents();
        tinygltf::Mesh mesh;
        mesh.name = object.name;
        for (const Surface &surface : surfaces) {
            const std::vector<std::size_t> faces = facesOf(*object.mesh, surface);
            if (!faces.empty())
                mesh.primitives.push_back(primitive(*object.mesh, tangents, faces, surface));
        }
        if (mesh.primitives.empty())
            return;
        m_model.meshes.push_back(mesh);
        tinygltf::Node node;
        node.name = object.name;
        node.mesh = int(m_model.meshes.size()) - 1;
        m_model.nodes.push_back(node);
        scene->nodes.push_back(int(m_model.nodes.size()) - 1);
    }

    static std::vector<std::size_t> facesOf(const OssEvMesh &mesh, const Surface &surface)
    {
        std::vector<std::size_t> faces;
        for (std::size_t i = 0; i < mesh.triangles.size(); ++i) {
            if (patchOf(mesh, mesh.triangles[i]) == surface.patch
                && hasSlot(surface.slots, mesh.materials[i]))
                faces.push_back(i);
        }
        return faces;
    }

    /// Vertices of these faces alone, in the order in which they come.
    tinygltf::Primitive primitive(const OssEvMesh &mesh, const OssEvTangents &tangents,
                                  const std::vector<std::size_t> &faces, const Surface &surface)
    {
        const bool hasTangents = !m_scene.materials[std::size_t(surface.material)].normal.empty();
        std::unordered_map<std::uint32_t, std::uint32_t> places;
        places.reserve(2 * faces.size());
        std::vector<std::uint32_t> indices;
        std::vector<OssEvMesh::Vector3> positions;
        std::vector<OssEvMesh::Vector3> normals;
        std::vector<OssEvMesh::Vector2> uvs;
        std::vector<OssEvTangents::Tangent> directions;
        const float u0 = float((surface.patch - FirstPatch) % PatchesAcross);
        const float v0 = float((surface.patch - FirstPatch) / PatchesAcross);
        const auto add = [&](std::uint32_t corner) {
            const auto [place, isNew] = places.emplace(corner, std::uint32_t(positions.size()));
            indices.push_back(place->second);
            if (!isNew)
                return;
            const std::uint32_t vertex = hasTangents ? tangents.sources[corner] : corner;
            if (hasTangents)
                directions.push_back(tangents.tangents[corner]);
            positions.push_back(mesh.positions[vertex]);
            normals.push_back(unit(mesh.normals[vertex]));
            // v grows downwards in the format.
            uvs.push_back({mesh.uvs[vertex][0] - u0, 1.0F - (mesh.uvs[vertex][1] - v0)});
        };
        for (const std::size_t face : faces) {
            for (const std::uint32_t corner :
                 hasTangents ? tangents.triangles[face] : mesh.triangles[face])
                add(corner);
        }
        tinygltf::Primitive result;
        result.mode = TINYGLTF_MODE_TRIANGLES;
        result.material = surface.material;
        result.attributes["POSITION"] = addVectors(positions, TINYGLTF_TYPE_VEC3);
        setBounds(positions, &m_model.accessors.back());
        result.attributes["NORMAL"] = addVectors(normals, TINYGLTF_TYPE_VEC3);
        if (hasTangents)
            result.attributes["TANGENT"] = addVectors(directions, TINYGLTF_TYPE_VEC4);
        result.attributes["TEXCOORD_0"] = addVectors(uvs, TINYGLTF_TYPE_VEC2);
        tinygltf::Accessor order = accessor(indices.size(), TINYGLTF_COMPONENT_TYPE_UNSIGNED_INT,
                                            TINYGLTF_TYPE_SCALAR);
        order.bufferView = addView(indices.data(), indices.size() * sizeof indices[0],
                                   TINYGLTF_TARGET_ELEMENT_ARRAY_BUFFER);
        result.indices = addAccessor(order);
        return result;
    }

    static OssEvMesh::Vector3 unit(const OssEvMesh::Vector3 &vector)
    {
        const float length = std::sqrt(vector[0] * vector[0] + vector[1] * vector[1]
                                       + vector[2] * vector[2]);
        if (length <= 0.0F)
            return {0.0F, 0.0F, 1.0F};
        return {vector[0] / length, vector[1] / length, vector[2] / length};
    }

    static tinygltf::Accessor accessor(std::size_t count, int componentType, int type)
    {
        tinygltf::Accessor result;
        result.count = count;
        result.componentType = componentType;
        result.type = type;
        return result;
    }

    int addAccessor(const tinygltf::Accessor &accessor)
    {
        m_model.accessors.push_back(accessor);
        return int(m_model.accessors.size()) - 1;
    }

    template <class Vector>
    int addVectors(const std::vector<Vector> &values, int type)
    {
        tinygltf::Accessor result = accessor(values.size(), TINYGLTF_COMPONENT_TYPE_FLOAT, type);
        result.bufferView = addView(values.data(), values.size() * sizeof values[0],
                                    TINYGLTF_TARGET_ARRAY_BUFFER);
        return addAccessor(result);
    }

    static void setBounds(const std::vector<OssEvMesh::Vector3> &values,
                          tinygltf::Accessor *accessor)
    {
        for (std::size_t k = 0; k < 3; ++k) {
            const auto less = [k](const auto &a, const auto &b) {
                return a[k] < b[k];
            };
            const auto [least, most] = std::minmax_element(values.begin(), values.end(), less);
            accessor->minValues.push_back(double((*least)[k]));
            accessor->maxValues.push_back(double((*most)[k]));
        }
    }

    const Scene &m_scene;
    tinygltf::Model m_model;
    std::map<std::string, int> m_textures; ///< by path
};

} // namespace

std::set<int> OssEvGltf::patchesOf(const OssEvMesh &mesh, const std::vector<int> &slots)
{
    std::set<int> patches;
    for (std::size_t i = 0; i < mesh.triangles.size(); ++i) {
        if (hasSlot(slots, mesh.materials[i]))
            patches.insert(patchOf(mesh, mesh.triangles[i]));
    }
    return patches;
}

OssEvResult OssEvGltf::write(const Scene &scene, const std::string &path, const OssEvCancel *cancel)
{
    try {
        const std::string bytes = Writer(scene).bytes(cancel);
        OssEvFile file(path);
        if (file.error().empty())
            file.write(bytes.data(), bytes.size());
        return file.finish();
    } catch (const std::exception &fault) {
        return OssEvResult::failure("Cannot write \"" + path + "\": " + fault.what());
    }
}
