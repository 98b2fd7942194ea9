#include "OssEvaluation/Geometry/MeshParts.h"

#include "OssEvaluation/Geometry/EqualVertices.h"
#include "OssEvaluation/Geometry/OssEvPolygons.h"

#include <algorithm>

namespace {

using OssEvMeshFile::Options;

template <class Value>
void keep(const std::vector<std::uint32_t> &kept, std::size_t before, std::vector<Value> *values)
{
    if (values->empty())
        return;
    for (std::size_t i = 0; i < kept.size(); ++i)
        (*values)[before + i] = (*values)[before + kept[i]];
    values->resize(before + kept.size());
}

} // namespace

const char *const MeshParts::NoSuchVertex =
    "a face names a vertex that does not exist; export it again from where it was made";

void MeshParts::addOnce(const std::string &name, std::vector<std::string> *list)
{
    if (std::find(list->begin(), list->end(), name) == list->end())
        list->push_back(name);
}

MeshParts::MeshParts(const Options &options, OssEvMeshFile::Reading *reading)
    : m_options(options)
    , m_reading(reading)
{
}

MeshParts::Goal MeshParts::goal(const std::string &object, const std::string &material)
{
    addOnce(object, &m_reading->objects);
    addOnce(material, &m_reading->materials);
    std::string name;
    if (m_options.split == Options::Split::Objects)
        name = object;
    else if (m_options.split == Options::Split::Materials)
        name = material;
    const auto [known, isNew] = m_places.emplace(name, m_targets.size());
    if (isNew) {
        m_targets.emplace_back();
        m_reading->parts.push_back({name, nullptr, {}});
    }
    Target &target = m_targets[known->second];
    const auto [slot, isNewSlot] = target.materials.emplace(
        material, std::int32_t(target.mesh->materialNames.size()));
    if (isNewSlot)
        target.mesh->materialNames.push_back(material);
    return {known->second, target.mesh.get(), slot->second};
}

void MeshParts::tellWithoutUvs(const std::string &object, std::size_t part)
{
    OssEvMeshCheck::Report &report = m_reading->parts[part].report;
    if (m_options.unwraps || !report.empty())
        return; // one is enough
    const std::string which = m_options.uvSet.empty() ? "" : " \"" + m_options.uvSet + "\"";
    report.push_back(OssEvMeshCheck::finding(
        OssEvMeshCheck::Kind::NoUvs, 0, "\"" + object + "\" has no texture coordinates" + which));
}

std::vector<std::shared_ptr<OssEvMesh>> MeshParts::meshes() const
{
    std::vector<std::shared_ptr<OssEvMesh>> list;
    for (const Target &target : m_targets)
        list.push_back(target.mesh);
    return list;
}

aiMatrix4x4 MeshParts::placing(double scale, bool isZUp, const Options &options)
{
    aiMatrix4x4 matrix;
    const auto whole = float(scale * options.scale);
    aiMatrix4x4::Scaling({whole, whole, whole}, matrix);
    if (isZUp) {
        // z becomes y, and y becomes -z.
        const aiMatrix4x4 turned(1, 0, 0, 0, 0, 0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1);
        matrix = matrix * turned;
    }
    return matrix;
}

void MeshParts::addFace(const Goal &goal, const std::vector<std::uint32_t> &corners)
{
    OssEvMesh *mesh = goal.mesh;
    const std::int32_t number = mesh->faces.empty() ? 0 : mesh->faces.back() + 1;
    if (corners.size() == 3)
        mesh->triangles.push_back({corners[0], corners[1], corners[2]});
    else
        OssEvPolygons::addTriangles(mesh->positions, corners, &mesh->triangles);
    while (mesh->faces.size() < mesh->triangles.size()) {
        mesh->faces.push_back(number);
        mesh->materials.push_back(goal.slot);
    }
}

std::vector<std::uint32_t> MeshParts::weld(OssEvMesh *mesh, std::size_t before)
{
    const OssEvMesh::Vector3 *places = mesh->positions.data() + before;
    const std::size_t count = mesh->positions.size() - before;
    const auto placeOf = [places](std::uint32_t i) {
        return places[i];
    };
    std::vector<std::uint32_t> numbers = firstOfEqual(count, placeOf);
    const auto isFirst = [&numbers](std::uint32_t i) {
        return numbers[i] == i;
    };
    std::uint32_t unique = 0;
    while (unique < count && isFirst(unique))
        ++unique;
    if (unique == count)
        return {};
    const auto isSame = [before](const auto &values, std::uint32_t a, std::uint32_t b) {
        return values.empty() || values[before + a] == values[before + b];
    };
    numbers = firstOfEqual(count, placeOf, [&](std::uint32_t a, std::uint32_t b) {
        return isSame(mesh->positions, a, b) && isSame(mesh->normals, a, b)
               && isSame(mesh->uvs, a, b) && isSame(mesh->colors, a, b);
    });
    std::vector<std::uint32_t> kept;
    for (std::uint32_t i = 0; i < count; ++i) {
        if (isFirst(i)) {
            numbers[i] = std::uint32_t(before + kept.size());
            kept.push_back(i);
        } else {
            numbers[i] = numbers[numbers[i]]; // that one has its own already
        }
    }
    keep(kept, before, &mesh->positions);
    keep(kept, before, &mesh->normals);
    keep(kept, before, &mesh->uvs);
    keep(kept, before, &mesh->colors);
    return numbers;
}
