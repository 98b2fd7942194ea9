#include "OssEvaluation/Geometry/OssEvMeshScene.h"

#include "OssEvaluation/Geometry/EqualVertices.h"
#include "OssEvaluation/Geometry/MeshParts.h"

#include <assimp/scene.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <map>
#include <optional>

namespace {

using OssEvMeshFile::Options;
using OssEvMeshFile::Reading;

constexpr int DeepestNode = 1000;

/// One mesh of the scene where a node puts it.
struct Placed
{
    unsigned mesh;
    aiMatrix4x4 matrix;
    std::string object;
};

std::string text(const aiString &from)
{
    return {from.C_Str(), from.length};
}

bool hasPolygons(const aiMesh &mesh)
{
    return std::any_of(mesh.mFaces, mesh.mFaces + mesh.mNumFaces,
                       [](const aiFace &face) { return face.mNumIndices > 2; });
}

std::string uvName(const aiMesh &mesh, unsigned set)
{
    const aiString *name = mesh.GetTextureCoordsName(set);
    return name != nullptr && name->length > 0 ? text(*name) : "UV " + std::to_string(set + 1);
}

/// The set of the name, or the first; none where the mesh has no such set.
std::optional<unsigned> uvSet(const aiMesh &mesh, const std::string &wanted)
{
    for (unsigned i = 0; i < AI_MAX_NUMBER_OF_TEXTURECOORDS; ++i) {
        if (mesh.HasTextureCoords(i) && (wanted.empty() || uvName(mesh, i) == wanted))
            return i;
    }
    return {};
}

/// Factors to metres: FBX counts centimetres unless it says otherwise.
double unitOf(const aiScene &scene)
{
    double centimetres = 0.0;
    float single = 0.0F;
    const aiMetadata *notes = scene.mMetaData;
    if (notes == nullptr)
        return 1.0;
    if (!notes->Get("UnitScaleFactor", centimetres) && notes->Get("UnitScaleFactor", single))
        centimetres = double(single);
    return centimetres > 0.0 ? centimetres / 100.0 : 1.0;
}

/// Whether the file says that its z points upwards; the library leaves that to us.
bool isZUp(const aiScene &scene, Options::Up wanted)
{
    constexpr int Z = 2;
    int axis = 0;
    if (wanted != Options::Up::FromFile)
        return wanted == Options::Up::Z;
    return scene.mMetaData != nullptr && scene.mMetaData->Get("UpAxis", axis) && axis == Z;
}

class Collector
{
public:
    Collector(const aiScene &scene, std::string name)
        : m_scene(scene)
        , m_name(std::move(name))
    {
    }

    /// False for a scene that is too deep to be meant.
    bool collect(const aiNode &node, const aiMatrix4x4 &above, int depth)
    {
        if (depth > DeepestNode)
            return false;
        const aiMatrix4x4 matrix = above * node.mTransformation;
        for (unsigned i = 0; i < node.mNumMeshes; ++i) {
            if (hasPolygons(*m_scene.mMeshes[node.mMeshes[i]]))
                placed.push_back({node.mMeshes[i], matrix, objectName(node)});
        }
        for (unsigned i = 0; i < node.mNumChildren; ++i) {
            if (!collect(*node.mChildren[i], matrix, depth + 1))
                return false;
        }
        return true;
    }

    std::vector<Placed> placed;

private:
    /// Unique: two nodes of a name are two objects.
    std::string objectName(const aiNode &node)
    {
        const auto known = m_names.find(&node);
        if (known != m_names.end())
            return known->second;
        std::string wanted = text(node.mName);
        // What the library calls things that have no name.
        if (wanted.empty() || wanted.front() == '<' || wanted == "RootNode" || wanted == "ROOT"
            || (&node == m_scene.mRootNode && node.mNumChildren == 0))
            wanted = m_name;
        std::string unique = wanted;
        for (int i = 2; m_taken.count(unique) > 0; ++i)
            unique = wanted + " " + std::to_string(i);
        m_taken[unique] = true;
        return m_names[&node] = unique;
    }

    const aiScene &m_scene;
    std::string m_name;
    std::map<const aiNode *, std::string> m_names;
    std::map<std::string, bool> m_taken;
};

/// Vertices of one mesh of which several are the same.
class Weld
{
public:
    Weld(const aiMesh &mesh, std::optional<unsigned> uvs)
        : m_mesh(mesh)
        , m_uvs(uvs)
    {
        const auto placeOf = [&mesh](std::uint32_t i) {
            const aiVector3D &place = mesh.mVertices[i];
            return std::array<float, 3>{place.x, place.y, place.z};
        };
        // Mostly there is nothing to weld where there are indices, and much where there are none.
        if (mesh.mNumVertices < 3 * mesh.mNumFaces) {
            newOf = firstOfEqual(mesh.mNumVertices, placeOf);
            haveSeparatePlaces = isFirst(mesh.mNumVertices);
        }
        if (!haveSeparatePlaces)
            newOf = firstOfEqual(mesh.mNumVertices, placeOf,
                                 [this](std::uint32_t a, std::uint32_t b) { return isSame(a, b); });
        for (std::uint32_t i = 0; i < mesh.mNumVertices; ++i) {
            if (newOf[i] != i) {
                newOf[i] = newOf[newOf[i]]; // that one has its own already
                continue;
            }
            newOf[i] = std::uint32_t(firsts.size());
            firsts.push_back(i);
        }
    }

    std::vector<std::uint32_t> firsts; ///< the mesh's vertex for each new one
    std::vector<std::uint32_t> newOf;  ///< the new one for each of the mesh's
    bool haveSeparatePlaces = false;

private:
    bool isFirst(std::uint32_t count) const
    {
        std::uint32_t i = 0;
        while (i < count && newOf[i] == i)
            ++i;
        return i == count;
    }

    bool isSame(std::uint32_t a, std::uint32_t b) const
    {
        const auto equal = [a, b](const auto *values, std::size_t bytes) {
            return std::memcmp(values + a, values + b, bytes) == 0;
        };
        return equal(m_mesh.mVertices, sizeof(aiVector3D))
               && (!m_mesh.HasNormals() || equal(m_mesh.mNormals, sizeof(aiVector3D)))
               && (!m_uvs || equal(m_mesh.mTextureCoords[*m_uvs], 2 * sizeof(float)))
               && (!m_mesh.HasVertexColors(0) || equal(m_mesh.mColors[0], sizeof(aiColor4D)));
    }

    const aiMesh &m_mesh;
    std::optional<unsigned> m_uvs;
};

void addVertices(const aiMesh &from, const Weld &weld, std::optional<unsigned> uvs,
                 const aiMatrix4x4 &matrix, OssEvMesh *mesh)
{
    const std::size_t before = mesh->positions.size();
    const std::size_t count = before + weld.firsts.size();
    const aiMatrix3x3 linear(matrix);
    aiMatrix3x3 forNormals = linear;
    forNormals.Inverse().Transpose();
    MeshParts::makeRoom(count, &mesh->positions);
    MeshParts::makeRoom(count, &mesh->normals);
    MeshParts::makeRoom(count, &mesh->uvs);
    if (from.HasVertexColors(0) || !mesh->colors.empty())
        mesh->colors.resize(before, {1.0F, 1.0F, 1.0F, 1.0F});
    for (const std::uint32_t i : weld.firsts) {
        const aiVector3D place = matrix * from.mVertices[i];
        mesh->positions.push_back({place.x, place.y, place.z});
        aiVector3D normal;
        if (from.HasNormals())
            normal = (forNormals * from.mNormals[i]).NormalizeSafe();
        mesh->normals.push_back({normal.x, normal.y, normal.z});
        OssEvMesh::Vector2 uv{};
        if (uvs)
            uv = {from.mTextureCoords[*uvs][i].x, from.mTextureCoords[*uvs][i].y};
        mesh->uvs.push_back(uv);
        if (from.HasVertexColors(0)) {
            const aiColor4D &color = from.mColors[0][i];
            mesh->colors.push_back({color.r, color.g, color.b, color.a});
        }
    }
    if (!mesh->colors.empty())
        mesh->colors.resize(count, {1.0F, 1.0F, 1.0F, 1.0F});
}

std::size_t trianglesOf(const aiMesh &mesh)
{
    std::size_t count = 0;
    for (unsigned i = 0; i < mesh.mNumFaces; ++i)
        count += std::max(mesh.mFaces[i].mNumIndices, 2U) - 2;
    return count;
}

/// False where a face names a vertex that is none.
bool addFaces(const aiMesh &from, const Weld &weld, bool isMirrored, std::size_t firstVertex,
              const MeshParts::Goal &goal)
{
    OssEvMesh *mesh = goal.mesh;
    const std::size_t count = mesh->triangles.size() + trianglesOf(from);
    MeshParts::makeRoom(count, &mesh->triangles);
    MeshParts::makeRoom(count, &mesh->faces);
    MeshParts::makeRoom(count, &mesh->materials);
    std::vector<std::uint32_t> corners;
    for (unsigned i = 0; i < from.mNumFaces; ++i) {
        const aiFace &face = from.mFaces[i];
        if (face.mNumIndices < 3)
            continue;
        corners.clear();
        for (unsigned k = 0; k < face.mNumIndices; ++k) {
            if (face.mIndices[k] >= from.mNumVertices)
                return false;
            corners.push_back(std::uint32_t(firstVertex) + weld.newOf[face.mIndices[k]]);
        }
        if (isMirrored)
            std::reverse(corners.begin(), corners.end());
        MeshParts::addFace(goal, corners);
    }
    return true;
}

std::string materialName(const aiScene &scene, const aiMesh &mesh)
{
    return mesh.mMaterialIndex < scene.mNumMaterials
               ? text(scene.mMaterials[mesh.mMaterialIndex]->GetName())
               : std::string();
}

/// UV sets of all meshes, those that every mesh has first.
std::vector<std::string> uvSetsOf(const aiScene &scene, const std::vector<Placed> &placed)
{
    std::vector<std::string> names;
    std::map<std::string, std::size_t> counts;
    for (const Placed &one : placed) {
        const aiMesh &mesh = *scene.mMeshes[one.mesh];
        for (unsigned i = 0; i < AI_MAX_NUMBER_OF_TEXTURECOORDS; ++i) {
            if (!mesh.HasTextureCoords(i))
                continue;
            MeshParts::addOnce(uvName(mesh, i), &names);
            ++counts[uvName(mesh, i)];
        }
    }
    std::stable_sort(names.begin(), names.end(), [&](const auto &a, const auto &b) {
        return counts[a] == placed.size() && counts[b] != placed.size();
    });
    return names;
}

class Converter
{
public:
    Converter(std::unique_ptr<aiScene> scene, const Options &options, Reading *reading)
        : m_scene(std::move(scene))
        , m_options(options)
        , m_reading(reading)
        , m_parts(options, reading)
    {
    }

    OssEvResult run(const std::string &name, const OssEvCancel *cancel)
    {
        Collector collector(*m_scene, name);
        if (m_scene->mRootNode == nullptr
            || !collector.collect(
                *m_scene->mRootNode,
                MeshParts::placing(unitOf(*m_scene), isZUp(*m_scene, m_options.up), m_options), 0))
            return OssEvResult::failure(
                "its objects are nested more than 1000 deep; flatten them where it was made");
        const OssEvResult counted = count(collector.placed);
        if (!counted)
            return counted;
        m_reading->uvSets = uvSetsOf(*m_scene, collector.placed);
        for (const Placed &placed : collector.placed) {
            if (cancel != nullptr && cancel->isCancelled())
                return OssEvResult::failure("it was stopped");
            if (!add(placed))
                return OssEvResult::failure(MeshParts::NoSuchVertex);
        }
        return {};
    }

    /// As the parts of the reading.
    std::vector<std::shared_ptr<OssEvMesh>> meshes() const { return m_parts.meshes(); }

private:
    OssEvResult count(const std::vector<Placed> &all)
    {
        if (all.empty())
            return OssEvResult::failure(OssEvMeshCheck::inWords(
                {OssEvMeshCheck::finding(OssEvMeshCheck::Kind::NoFaces, 0)}));
        for (const Placed &placed : all) {
            m_reading->faces += trianglesOf(*m_scene->mMeshes[placed.mesh]);
            ++m_uses[placed.mesh];
        }
        if (m_reading->faces <= OssEvMeshCheck::MostFaces)
            return {};
        return OssEvResult::failure(OssEvMeshCheck::inWords(
            {OssEvMeshCheck::finding(OssEvMeshCheck::Kind::TooManyFaces, m_reading->faces)}));
    }

    bool add(const Placed &placed)
    {
        const aiMesh &from = *m_scene->mMeshes[placed.mesh];
        const MeshParts::Goal goal = m_parts.goal(placed.object, materialName(*m_scene, from));
        const std::optional<unsigned> uvs = uvSet(from, m_options.uvSet);
        if (!uvs)
            m_parts.tellWithoutUvs(placed.object, goal.part);
        const Weld weld(from, uvs);
        const std::size_t first = goal.mesh->positions.size();
        goal.mesh->hasSeparatePlaces = first == 0 && weld.haveSeparatePlaces;
        addVertices(from, weld, uvs, placed.matrix, goal.mesh);
        const bool isMirrored = aiMatrix3x3(placed.matrix).Determinant() < 0.0F;
        const bool isWhole = addFaces(from, weld, isMirrored, first, goal);
        if (--m_uses[placed.mesh] == 0) {
            delete m_scene->mMeshes[placed.mesh];
            m_scene->mMeshes[placed.mesh] = new aiMesh; // the scene's
        }
        return isWhole;
    }

    std::unique_ptr<aiScene> m_scene;
    const Options &m_options;
    Reading *m_reading;
    std::map<unsigned, int> m_uses;
    MeshParts m_parts;
};

} // namespace

OssEvResult OssEvMeshScene::convert(std::unique_ptr<aiScene> scene, const Options &options,
                                    const std::string &name,
                                    std::vector<std::shared_ptr<OssEvMesh>> *meshes,
                                    Reading *reading, const OssEvCancel *cancel)
{
    Converter converter(std::move(scene), options, reading);
    const OssEvResult result = converter.run(name, cancel);
    if (result)
        *meshes = converter.meshes();
    return result;
}
