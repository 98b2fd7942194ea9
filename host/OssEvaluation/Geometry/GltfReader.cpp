#include "OssEvaluation/Geometry/GltfReader.h"

#include "OssEvaluation/Geometry/GltfScene.h"
#include "OssEvaluation/Geometry/MeshParts.h"

#include <algorithm>

namespace {

using OssEvMeshFile::Options;
using OssEvMeshFile::Reading;
using Primitive = GltfScene::Primitive;

std::string uvName(std::size_t set)
{
    return "UV " + std::to_string(set + 1);
}

/// The set of the name, or the first; null where there is none.
const GltfScene::Numbers *uvSet(const Primitive &primitive, const std::string &wanted)
{
    for (std::size_t i = 0; i < primitive.uvs.size(); ++i) {
        if (wanted.empty() || uvName(i) == wanted)
            return &primitive.uvs[i];
    }
    return nullptr;
}

/// UV sets of all primitives, those that every one has first.
std::vector<std::string> uvSetsOf(const GltfScene &scene)
{
    std::size_t most = 0;
    for (const GltfScene::Placed &placed : scene.placed()) {
        for (const Primitive &primitive : scene.primitives(placed.mesh))
            most = std::max(most, primitive.uvs.size());
    }
    std::vector<std::string> names;
    for (std::size_t i = 0; i < most; ++i)
        names.push_back(uvName(i)); // sets are counted, so whoever has one has those before
    return names;
}

/// All vertices, those that are the same as well.
void addVertices(const Primitive &from, const GltfScene::Numbers *uvs, const aiMatrix4x4 &matrix,
                 OssEvMesh *mesh)
{
    const std::size_t before = mesh->positions.size();
    const std::size_t count = from.positions.count();
    const std::array<float, 4> white{1.0F, 1.0F, 1.0F, 1.0F};
    const bool isMoved = !matrix.IsIdentity();
    aiMatrix3x3 forNormals(matrix);
    forNormals.Inverse().Transpose();
    MeshParts::makeRoom(before + count, &mesh->positions);
    MeshParts::makeRoom(before + count, &mesh->normals);
    MeshParts::makeRoom(before + count, &mesh->uvs);
    for (std::size_t i = 0; i < count; ++i) {
        mesh->positions.push_back(from.positions.at<3>(i));
        if (!isMoved)
            continue;
        OssEvMesh::Vector3 &place = mesh->positions.back();
        const aiVector3D moved = matrix * aiVector3D(place[0], place[1], place[2]);
        place = {moved.x, moved.y, moved.z};
    }
    mesh->normals.resize(before + count);
    for (std::size_t i = 0; i < count && from.normals.isThere(); ++i) {
        const OssEvMesh::Vector3 given = from.normals.at<3>(i);
        const aiVector3D normal = (forNormals * aiVector3D(given[0], given[1], given[2]))
                                      .NormalizeSafe();
        mesh->normals[before + i] = {normal.x, normal.y, normal.z};
    }
    mesh->uvs.resize(before + count);
    for (std::size_t i = 0; i < count && uvs != nullptr; ++i) {
        const OssEvMesh::Vector2 uv = uvs->at<2>(i);
        mesh->uvs[before + i] = {uv[0], 1.0F - uv[1]}; // the file's grow downwards
    }
    if (!from.colors.isThere() && mesh->colors.empty())
        return;
    mesh->colors.resize(before + count, white);
    for (std::size_t i = 0; i < count && from.colors.isThere(); ++i) {
        mesh->colors[before + i] = from.colors.at<4>(i);
        if (from.colors.parts() == 3)
            mesh->colors[before + i][3] = 1.0F;
    }
}

/// Corners of a triangle by their place among the primitive's.
std::array<std::size_t, 3> cornersOf(int mode, std::size_t triangle)
{
    if (mode == TINYGLTF_MODE_TRIANGLES)
        return {3 * triangle, 3 * triangle + 1, 3 * triangle + 2};
    if (mode == TINYGLTF_MODE_TRIANGLE_FAN)
        return {0, triangle + 1, triangle + 2};
    // Every second one of a strip goes round the other way.
    return triangle % 2 == 0 ? std::array<std::size_t, 3>{triangle, triangle + 1, triangle + 2}
                             : std::array<std::size_t, 3>{triangle + 1, triangle, triangle + 2};
}

/// False where a face names a vertex that is none. Without numbers they are counted from `before` on.
bool addFaces(const Primitive &from, const std::vector<std::uint32_t> &numbers, std::size_t before,
              bool isMirrored, const MeshParts::Goal &goal)
{
    OssEvMesh *mesh = goal.mesh;
    const std::size_t count = from.triangles();
    const std::size_t whole = mesh->triangles.size() + count;
    MeshParts::makeRoom(whole, &mesh->triangles);
    MeshParts::makeRoom(whole, &mesh->faces);
    MeshParts::makeRoom(whole, &mesh->materials);
    std::int32_t face = mesh->faces.empty() ? 0 : mesh->faces.back() + 1;
    for (std::size_t i = 0; i < count; ++i) {
        std::array<std::uint32_t, 3> triangle{};
        const std::array<std::size_t, 3> corners = cornersOf(from.mode, i);
        for (std::size_t k = 0; k < 3; ++k) {
            const std::size_t vertex = from.indices.isThere() ? from.indices.index(corners[k])
                                                              : corners[k];
            if (vertex >= from.positions.count())
                return false;
            triangle[isMirrored ? 2 - k : k] = numbers.empty() ? std::uint32_t(before + vertex)
                                                               : numbers[vertex];
        }
        mesh->triangles.push_back(triangle);
        mesh->faces.push_back(face++);
    }
    mesh->materials.resize(whole, goal.slot);
    return true;
}

bool addPrimitive(const GltfScene::Placed &placed, const Primitive &from, const Options &options,
                  MeshParts *parts)
{
    const MeshParts::Goal goal = parts->goal(placed.object, from.material);
    const GltfScene::Numbers *uvs = uvSet(from, options.uvSet);
    if (uvs == nullptr)
        parts->tellWithoutUvs(placed.object, goal.part);
    const std::size_t before = goal.mesh->positions.size();
    addVertices(from, uvs, placed.matrix, goal.mesh);
    const std::vector<std::uint32_t> numbers = MeshParts::weld(goal.mesh, before);
    goal.mesh->hasSeparatePlaces = before == 0 && numbers.empty();
    const bool isMirrored = aiMatrix3x3(placed.matrix).Determinant() < 0.0F;
    return addFaces(from, numbers, before, isMirrored, goal);
}

std::size_t countFaces(const GltfScene &scene)
{
    std::size_t count = 0;
    for (const GltfScene::Placed &placed : scene.placed()) {
        for (const Primitive &primitive : scene.primitives(placed.mesh))
            count += primitive.triangles();
    }
    return count;
}

OssEvResult convert(const GltfScene &scene, const Options &options, Reading *reading,
                    const OssEvCancel *cancel, MeshParts *parts)
{
    using namespace OssEvMeshCheck;
    reading->faces = countFaces(scene);
    if (reading->faces == 0)
        return OssEvResult::failure(inWords({finding(Kind::NoFaces, 0)}));
    if (reading->faces > MostFaces)
        return OssEvResult::failure(inWords({finding(Kind::TooManyFaces, reading->faces)}));
    reading->uvSets = uvSetsOf(scene);
    for (const GltfScene::Placed &placed : scene.placed()) {
        for (const Primitive &primitive : scene.primitives(placed.mesh)) {
            if (cancel != nullptr && cancel->isCancelled())
                return OssEvResult::failure("it was stopped");
            if (!addPrimitive(placed, primitive, options, parts))
                return OssEvResult::failure(MeshParts::NoSuchVertex);
        }
    }
    return {};
}

} // namespace

OssEvResult GltfReader::read(const std::string &path, const Options &options,
                             std::vector<std::shared_ptr<OssEvMesh>> *meshes, Reading *reading,
                             const OssEvCancel *cancel, bool *isUnderstood)
{
    GltfScene scene;
    *isUnderstood = scene.open(path,
                               MeshParts::placing(1.0, options.up == Options::Up::Z, options));
    if (!*isUnderstood)
        return {};
    MeshParts parts(options, reading);
    const OssEvResult result = convert(scene, options, reading, cancel, &parts);
    if (result)
        *meshes = parts.meshes();
    return result;
}
