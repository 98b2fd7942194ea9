#include "OssEvaluation/Geometry/StlReader.h"

#include "OssEvaluation/Geometry/FileBytes.h"
#include "OssEvaluation/Geometry/MeshParts.h"
#include "OssEvaluation/Geometry/ObjLines.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <set>
#include <system_error>
#include <utility>

namespace {

using OssEvMeshFile::Options;
using OssEvMeshFile::Reading;
using Vector3 = OssEvMesh::Vector3;

constexpr std::size_t HeadSize = 80;
constexpr std::size_t FacetSize = 50;
constexpr std::size_t LooksEvery = 4096; ///< facets
constexpr int LongestKey = 16;           ///< letters that are looked at
const std::string NoMaterial = "DefaultMaterial";

struct Facet
{
    Vector3 normal;
    std::array<Vector3, 3> corners;
};

/// The mesh of a solid, facet by facet.
class Solid
{
public:
    Solid(const MeshParts::Goal &goal, const aiMatrix4x4 &matrix)
        : m_goal(goal)
        , m_matrix(matrix)
        , m_forNormals(matrix)
        , m_isMoved(!matrix.IsIdentity())
        , m_isMirrored(aiMatrix3x3(matrix).Determinant() < 0.0F)
        , m_recent(std::size_t(1) << RecentBits, None)
    {
        m_forNormals.Inverse().Transpose();
    }

    void makeRoom(std::size_t facets)
    {
        OssEvMesh *mesh = m_goal.mesh;
        MeshParts::makeRoom(3 * facets, &mesh->positions);
        MeshParts::makeRoom(3 * facets, &mesh->normals);
        MeshParts::makeRoom(facets, &mesh->triangles);
        MeshParts::makeRoom(facets, &mesh->faces);
        MeshParts::makeRoom(facets, &mesh->materials);
    }

    void add(const Facet &facet)
    {
        OssEvMesh *mesh = m_goal.mesh;
        aiVector3D moved(facet.normal[0], facet.normal[1], facet.normal[2]);
        if (m_isMoved)
            moved = m_forNormals * moved;
        moved.NormalizeSafe();
        const Vector3 normal{moved.x, moved.y, moved.z};
        std::array<std::uint32_t, 3> triangle{};
        for (std::size_t k = 0; k < 3; ++k)
            triangle[m_isMirrored ? 2 - k : k] = vertex(facet.corners[k], normal);
        mesh->faces.push_back(mesh->faces.empty() ? 0 : mesh->faces.back() + 1);
        mesh->triangles.push_back(triangle);
        mesh->materials.push_back(m_goal.slot);
        m_hasFacets = true;
    }

    bool hasFacets() const { return m_hasFacets; }

    void finish()
    {
        OssEvMesh *mesh = m_goal.mesh;
        mesh->uvs.resize(mesh->positions.size());
    }

private:
    static constexpr std::uint32_t None = 0xFFFFFFFFU;
    static constexpr int RecentBits = 14;

    std::uint32_t vertex(Vector3 place, const Vector3 &normal)
    {
        if (m_isMoved) {
            const aiVector3D moved = m_matrix * aiVector3D(place[0], place[1], place[2]);
            place = {moved.x, moved.y, moved.z};
        }
        // Of two slots the older is given up, so that nothing is looked for in all of the memory.
        std::uint32_t *slots = &m_recent[slotOf(place, normal)];
        for (const std::size_t i : {0, 1}) {
            if (slots[i] != None && isSame(slots[i], place, normal))
                return slots[i];
        }
        OssEvMesh *mesh = m_goal.mesh;
        slots[1] = slots[0];
        slots[0] = std::uint32_t(mesh->positions.size());
        mesh->positions.push_back(place);
        mesh->normals.push_back(normal);
        return slots[0];
    }

    bool isSame(std::uint32_t vertex, const Vector3 &place, const Vector3 &normal) const
    {
        return m_goal.mesh->positions[vertex] == place && m_goal.mesh->normals[vertex] == normal;
    }

    static std::size_t slotOf(const Vector3 &place, const Vector3 &normal)
    {
        std::array<std::uint32_t, 4> words{};
        std::memcpy(words.data(), &place, sizeof(place));
        std::memcpy(&words[3], &normal[0], sizeof(float));
        std::uint64_t hash = words[0] * 0x9E3779B97F4A7C15ULL + words[1] * 0xC2B2AE3D27D4EB4FULL;
        hash ^= words[2] * 0xFF51AFD7ED558CCDULL + words[3] * 0xBF58476D1CE4E5B9ULL;
        return std::size_t((hash * 0x9E3779B97F4A7C15ULL) >> (64 - RecentBits + 1)) * 2;
    }

    MeshParts::Goal m_goal;
    const aiMatrix4x4 m_matrix;
    aiMatrix3x3 m_forNormals;
    bool m_isMoved;
    bool m_isMirrored;
    bool m_hasFacets = false;
    std::vector<std::uint32_t> m_recent; ///< vertices, in pairs
};

OssEvResult countedResult(std::size_t faces)
{
    using namespace OssEvMeshCheck;
    if (faces == 0)
        return OssEvResult::failure(inWords({finding(Kind::NoFaces, 0)}));
    if (faces > MostFaces)
        return OssEvResult::failure(inWords({finding(Kind::TooManyFaces, faces)}));
    return {};
}

class Reader
{
public:
    Reader(std::string path, const Options &options, const OssEvCancel *cancel,
           const std::function<void(double)> &progress)
        : m_path(std::move(path))
        , m_cancel(cancel)
        , m_progress(progress)
        , m_stem(std::filesystem::path(m_path).stem().string())
        , m_matrix(MeshParts::placing(1.0, options.up == Options::Up::Z, options))
        , m_parts(options, &reading)
    {
    }

    /// False where the library is to have a look at it.
    bool run(OssEvResult *result)
    {
        std::error_code fault;
        const std::uintmax_t size = std::filesystem::file_size(m_path, fault);
        FileBytes bytes(m_path);
        const char *head = fault || size < HeadSize + 4 ? nullptr : bytes.next(HeadSize + 4);
        if (head == nullptr)
            return readText(result);
        std::uint32_t count = 0;
        std::memcpy(&count, head + HeadSize, sizeof(count));
        if (size != HeadSize + 4 + std::uintmax_t(count) * FacetSize)
            return readText(result);
        if (std::string(head, HeadSize).find("COLOR=") != std::string::npos)
            return false;
        return readBinary(&bytes, count, result);
    }

    std::vector<std::shared_ptr<OssEvMesh>> meshes() const { return m_parts.meshes(); }

    Reading reading;

private:
    bool isStopped(double share)
    {
        if (m_progress)
            m_progress(share);
        return m_cancel != nullptr && m_cancel->isCancelled();
    }

    Solid solidOf(const std::string &name)
    {
        const std::string object = uniqueName(name.empty() ? m_stem : name);
        const MeshParts::Goal goal = m_parts.goal(object, NoMaterial);
        m_parts.tellWithoutUvs(object, goal.part);
        return {goal, m_matrix};
    }

    std::string uniqueName(const std::string &wanted)
    {
        std::string unique = wanted;
        for (int i = 2; !m_taken.insert(unique).second; ++i)
            unique = wanted + " " + std::to_string(i);
        return unique;
    }

    /// The file has as many facets as it says.
    bool readBinary(FileBytes *bytes, std::size_t count, OssEvResult *result)
    {
        constexpr std::uint16_t IsColored = 0x8000;
        reading.faces = count;
        *result = countedResult(count);
        if (!*result)
            return true;
        Solid solid = solidOf({});
        solid.makeRoom(count);
        for (std::size_t i = 0; i < count; ++i) {
            if (i % LooksEvery == 0 && isStopped(double(i) / double(count))) {
                *result = OssEvResult::failure("it was stopped");
                return true;
            }
            const char *raw = bytes->next(FacetSize);
            if (raw == nullptr)
                return false;
            Facet facet{};
            std::uint16_t more = 0;
            std::memcpy(&facet, raw, sizeof(facet));
            std::memcpy(&more, raw + sizeof(facet), sizeof(more));
            if ((more & IsColored) != 0)
                return false;
            solid.add(facet);
        }
        solid.finish();
        return true;
    }

    static bool takeNumbers(ObjWords *words, Vector3 *values)
    {
        for (float &value : *values) {
            bool isThere = true;
            if (!words->number(&value, &isThere) || !isThere)
                return false;
        }
        return words->next().empty();
    }

    /// Facets of text, word by word.
    bool readText(OssEvResult *result)
    {
        if (!beginsWithSolid())
            return false;
        ObjLines lines(m_path);
        std::string_view line;
        for (std::size_t i = 0; lines.next(&line); ++i) {
            if (i % LooksEvery == 0 && isStopped(lines.share())) {
                *result = OssEvResult::failure("it was stopped");
                return true;
            }
            ObjWords words(line);
            const std::string_view key = words.next();
            if (!key.empty() && !take(key, &words))
                return false;
        }
        if (m_place != Place::Outside || reading.faces == 0)
            return false;
        *result = countedResult(reading.faces);
        return true;
    }

    bool beginsWithSolid() const
    {
        std::ifstream file(m_path, std::ios::binary);
        std::string word;
        file >> std::setw(LongestKey) >> word;
        return word == "solid";
    }

    /// False where the line is not what may come at this place.
    bool take(std::string_view key, ObjWords *words)
    {
        if (key == "solid" && m_place == Place::Outside) {
            m_solid = std::make_unique<Solid>(solidOf(std::string(words->rest())));
            m_place = Place::InSolid;
        } else if (key == "facet" && m_place == Place::InSolid && words->next() == "normal"
                   && takeNumbers(words, &m_facet.normal)) {
            m_place = Place::InFacet;
            m_corners = 0;
        } else if (key == "outer" && m_place == Place::InFacet && m_corners == 0) {
            m_place = Place::InLoop;
        } else if (key == "vertex" && m_place == Place::InLoop && m_corners < 3
                   && takeNumbers(words, &m_facet.corners[m_corners])) {
            ++m_corners;
        } else if (key == "endloop" && m_place == Place::InLoop && m_corners == 3) {
            m_place = Place::InFacet;
        } else if (key == "endfacet" && m_place == Place::InFacet && m_corners == 3) {
            m_place = Place::InSolid;
            if (++reading.faces <= OssEvMeshCheck::MostFaces)
                m_solid->add(m_facet);
        } else if (key == "endsolid" && m_place == Place::InSolid && m_solid->hasFacets()) {
            m_solid->finish();
            m_place = Place::Outside;
        } else {
            return false;
        }
        return true;
    }

    enum class Place { Outside, InSolid, InFacet, InLoop };

    const std::string m_path;
    const OssEvCancel *m_cancel;
    const std::function<void(double)> &m_progress;
    const std::string m_stem;
    const aiMatrix4x4 m_matrix;
    MeshParts m_parts;
    std::set<std::string> m_taken;
    // Of text
    Place m_place = Place::Outside;
    std::unique_ptr<Solid> m_solid;
    Facet m_facet{};
    std::size_t m_corners = 0;
};

} // namespace

OssEvResult StlReader::read(const std::string &path, const Options &options,
                            std::vector<std::shared_ptr<OssEvMesh>> *meshes, Reading *reading,
                            const OssEvCancel *cancel, const std::function<void(double)> &progress,
                            bool *isUnderstood)
{
    Reader reader(path, options, cancel, progress);
    OssEvResult result;
    *isUnderstood = reader.run(&result);
    if (*isUnderstood) {
        *reading = std::move(reader.reading);
        *meshes = reader.meshes();
    }
    return result;
}
