#include "OssEvaluation/Geometry/PlyReader.h"

#include "OssEvaluation/Geometry/MeshParts.h"
#include "OssEvaluation/Geometry/PlyHeader.h"
#include "OssEvaluation/Geometry/PlyNumbers.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <string_view>
#include <system_error>
#include <utility>

namespace {

using OssEvMeshFile::Options;
using OssEvMeshFile::Reading;
using Type = PlyHeader::Type;
using Property = PlyHeader::Property;
using Element = PlyHeader::Element;

constexpr std::size_t LooksEvery = 4096; ///< vertices or faces
constexpr std::size_t MostCorners = 1U << 20;
const std::string OnlyUvSet = "UV 1";

/// What of a vertex is wanted.
enum Field { X, Y, Z, NormalX, NormalY, NormalZ, U, V, Red, Green, Blue, Alpha, FieldCount };

Field fieldOf(std::string_view name)
{
    struct Name
    {
        std::string_view name;
        Field field;
    };

    static constexpr Name Names[] = {
        {"x", X},
        {"y", Y},
        {"z", Z},
        {"nx", NormalX},
        {"ny", NormalY},
        {"nz", NormalZ},
        {"u", U},
        {"s", U},
        {"tx", U},
        {"texture_u", U},
        {"v", V},
        {"t", V},
        {"ty", V},
        {"texture_v", V},
        {"red", Red},
        {"r", Red},
        {"green", Green},
        {"g", Green},
        {"blue", Blue},
        {"b", Blue},
        {"alpha", Alpha},
        {"diffuse_red", Red},
        {"diffuse_green", Green},
        {"diffuse_blue", Blue},
        {"diffuse_alpha", Alpha},
    };
    for (const Name &known : Names) {
        if (known.name == name)
            return known.field;
    }
    return FieldCount;
}

class Reader
{
public:
    Reader(const std::string &path, const Options &options, const OssEvCancel *cancel,
           const std::function<void(double)> &progress)
        : m_path(path)
        , m_options(options)
        , m_cancel(cancel)
        , m_progress(progress)
        , m_matrix(MeshParts::placing(1.0, options.up == Options::Up::Z, options))
        , m_parts(options, &reading)
    {
    }

    /// False where the library is to have a look at it.
    bool run(OssEvResult *result)
    {
        std::error_code fault;
        m_size = std::filesystem::file_size(m_path, fault);
        if (fault || !m_header.read(m_path) || !isKnown())
            return false;
        if (m_header.form == PlyHeader::Form::Text)
            m_numbers = std::make_unique<PlyTextNumbers>(m_path, m_header);
        else
            m_numbers = std::make_unique<PlyBinaryNumbers>(m_path, m_header);
        m_goal = m_parts.goal(std::filesystem::path(m_path).stem().string(), {});
        for (const Element &element : m_header.elements) {
            const bool isRead = &element == m_vertices ? readVertices(result)
                                : &element == m_faces  ? readFaces(result)
                                                       : pass(element);
            if (!isRead || !*result)
                return isRead;
        }
        using namespace OssEvMeshCheck;
        if (reading.faces == 0)
            *result = OssEvResult::failure(inWords({finding(Kind::NoFaces, 0)}));
        else if (reading.faces > MostFaces)
            *result = OssEvResult::failure(inWords({finding(Kind::TooManyFaces, reading.faces)}));
        return true;
    }

    std::vector<std::shared_ptr<OssEvMesh>> meshes() const { return m_parts.meshes(); }

    Reading reading;

private:
    static bool isColor(Field field) { return field >= Red && field <= Alpha; }

    bool hasField(Field field) const
    {
        return std::find(m_fields.begin(), m_fields.end(), field) != m_fields.end();
    }

    /// Vertices first, then faces with nothing of their own, and no more of either than the file has room for.
    bool isKnown() { return findElements() && knowsVertices() && knowsFaces(); }

    bool findElements()
    {
        for (const Element &element : m_header.elements) {
            if (element.name == "vertex" && m_vertices == nullptr && m_faces == nullptr)
                m_vertices = &element;
            else if (element.name == "face" && m_vertices != nullptr && m_faces == nullptr)
                m_faces = &element;
            else if (element.name != "edge")
                return false;
        }
        return m_vertices != nullptr && m_faces != nullptr && m_vertices->count <= m_size
               && m_faces->count <= m_size;
    }

    static bool mayHaveType(Field field, Type type)
    {
        const bool isReal = type == Type::Float || type == Type::Double;
        const bool isShare = type == Type::UInt8 || type == Type::UInt16;
        return field == FieldCount || isReal || (isColor(field) && isShare);
    }

    bool knowsVertices()
    {
        for (const Property &property : m_vertices->properties) {
            const Field field = fieldOf(property.name);
            const bool isTwice = field < FieldCount && hasField(field);
            if (property.isList || isTwice || !mayHaveType(field, property.type))
                return false;
            m_fields.push_back(field);
        }
        return hasField(X) && hasField(Y) && hasField(Z);
    }

    bool knowsFaces() const
    {
        std::size_t lists = 0;
        for (const Property &property : m_faces->properties) {
            const bool isCorners = property.name == "vertex_indices"
                                   || property.name == "vertex_index";
            const bool isMore = property.name.find("material") != std::string::npos
                                || property.name.find("tex") != std::string::npos;
            if (property.isList != isCorners || isMore)
                return false;
            lists += isCorners ? 1 : 0;
        }
        return lists == 1;
    }

    bool isStopped(std::size_t done, std::size_t all, OssEvResult *result)
    {
        if (done % LooksEvery != 0)
            return false;
        if (m_progress)
            m_progress(double(done) / double(std::max<std::size_t>(all, 1)));
        if (m_cancel == nullptr || !m_cancel->isCancelled())
            return false;
        *result = OssEvResult::failure("it was stopped");
        return true;
    }

    bool pass(const Element &element)
    {
        for (std::size_t i = 0; i < element.count; ++i) {
            for (const Property &property : element.properties) {
                double value = 1.0;
                if (property.isList && !m_numbers->next(property.countType, &value))
                    return false;
                if (!(value >= 0.0) || value > double(MostCorners))
                    return false;
                for (auto left = std::size_t(value); left > 0; --left) {
                    if (!m_numbers->next(property.type, &value))
                        return false;
                }
            }
            if (!m_numbers->endElement())
                return false;
        }
        return true;
    }

    using Values = std::array<double, FieldCount + 1>;

    /// False where the file has no room for so many vertices.
    bool prepareVertices()
    {
        OssEvMesh *mesh = m_goal.mesh;
        const bool hasUvs = hasField(U) && hasField(V);
        m_takesUvs = hasUvs && (m_options.uvSet.empty() || m_options.uvSet == OnlyUvSet);
        m_hasNormals = hasField(NormalX) && hasField(NormalY) && hasField(NormalZ);
        m_hasColors = std::any_of(m_fields.begin(), m_fields.end(), isColor);
        if (hasUvs)
            reading.uvSets = {OnlyUvSet};
        if (!m_takesUvs)
            m_parts.tellWithoutUvs(reading.objects.front(), m_goal.part);
        m_forNormals = aiMatrix3x3(m_matrix);
        m_forNormals.Inverse().Transpose();
        const std::size_t least = m_fields.size()
                                  * (m_header.form == PlyHeader::Form::Text ? 2 : 1);
        if (m_vertices->count > m_size / least)
            return false;
        MeshParts::makeRoom(m_vertices->count, &mesh->positions);
        MeshParts::makeRoom(m_vertices->count, &mesh->normals);
        MeshParts::makeRoom(m_vertices->count, &mesh->uvs);
        return true;
    }

    bool readVertices(OssEvResult *result)
    {
        if (!prepareVertices())
            return false;
        Values values{};
        for (std::size_t i = 0; i < m_vertices->count; ++i) {
            if (isStopped(i, m_vertices->count + m_faces->count, result))
                return true;
            if (!readVertex(&values))
                return false;
            addVertex(values);
        }
        return true;
    }

    bool readVertex(Values *values)
    {
        (*values)[Alpha] = 1.0;
        for (std::size_t k = 0; k < m_fields.size(); ++k) {
            const Type type = m_vertices->properties[k].type;
            double *value = &(*values)[m_fields[k]];
            if (!m_numbers->next(type, value))
                return false;
            if (isColor(m_fields[k]))
                *value /= type == Type::UInt8 ? 255.0 : type == Type::UInt16 ? 65535.0 : 1.0;
        }
        return m_numbers->endElement();
    }

    void addVertex(const Values &values)
    {
        OssEvMesh *mesh = m_goal.mesh;
        const aiVector3D place = m_matrix
                                 * aiVector3D(float(values[X]), float(values[Y]), float(values[Z]));
        aiVector3D normal;
        if (m_hasNormals)
            normal = (m_forNormals
                      * aiVector3D(float(values[NormalX]), float(values[NormalY]),
                                   float(values[NormalZ])))
                         .NormalizeSafe();
        mesh->positions.push_back({place.x, place.y, place.z});
        mesh->normals.push_back({normal.x, normal.y, normal.z});
        mesh->uvs.push_back(m_takesUvs ? OssEvMesh::Vector2{float(values[U]), float(values[V])}
                                       : OssEvMesh::Vector2{});
        if (m_hasColors)
            mesh->colors.push_back({float(values[Red]), float(values[Green]), float(values[Blue]),
                                    float(values[Alpha])});
    }

    bool readFaces(OssEvResult *result)
    {
        OssEvMesh *mesh = m_goal.mesh;
        const std::vector<std::uint32_t> numbers = MeshParts::weld(mesh, 0);
        mesh->hasSeparatePlaces = numbers.empty();
        const bool isMirrored = aiMatrix3x3(m_matrix).Determinant() < 0.0F;
        if (m_faces->count > m_size / 4)
            return false; // a count and three corners
        MeshParts::makeRoom(m_faces->count, &mesh->triangles);
        MeshParts::makeRoom(m_faces->count, &mesh->faces);
        MeshParts::makeRoom(m_faces->count, &mesh->materials);
        std::vector<std::uint32_t> corners;
        for (std::size_t i = 0; i < m_faces->count; ++i) {
            if (isStopped(m_vertices->count + i, m_vertices->count + m_faces->count, result))
                return true;
            if (!readCorners(&corners) || !m_numbers->endElement())
                return false;
            if (std::any_of(corners.begin(), corners.end(),
                            [this](std::uint32_t corner) { return corner >= m_vertices->count; })) {
                *result = OssEvResult::failure(MeshParts::NoSuchVertex);
                return true;
            }
            addFace(numbers, isMirrored, &corners);
        }
        return true;
    }

    void addFace(const std::vector<std::uint32_t> &numbers, bool isMirrored,
                 std::vector<std::uint32_t> *corners)
    {
        if (corners->size() < 3)
            return;
        for (std::uint32_t &corner : *corners)
            corner = numbers.empty() ? corner : numbers[corner];
        reading.faces += corners->size() - 2;
        if (isMirrored)
            std::reverse(corners->begin(), corners->end());
        if (reading.faces <= OssEvMeshCheck::MostFaces)
            MeshParts::addFace(m_goal, *corners);
    }

    bool readCorners(std::vector<std::uint32_t> *corners)
    {
        constexpr auto None = double(std::numeric_limits<std::uint32_t>::max());
        for (const Property &property : m_faces->properties) {
            double value = 0.0;
            if (!property.isList) {
                if (!m_numbers->next(property.type, &value))
                    return false;
                continue;
            }
            if (!m_numbers->next(property.countType, &value) || !(value >= 0.0)
                || value > double(MostCorners))
                return false;
            corners->resize(std::size_t(value));
            for (std::uint32_t &corner : *corners) {
                if (!m_numbers->next(property.type, &value))
                    return false;
                corner = value >= 0.0 && value < None ? std::uint32_t(value)
                                                      : std::numeric_limits<std::uint32_t>::max();
            }
        }
        return true;
    }

    const std::string &m_path;
    const Options &m_options;
    const OssEvCancel *m_cancel;
    const std::function<void(double)> &m_progress;
    const aiMatrix4x4 m_matrix;
    aiMatrix3x3 m_forNormals;
    MeshParts m_parts;
    MeshParts::Goal m_goal;
    PlyHeader m_header;
    std::uintmax_t m_size = 0;
    const Element *m_vertices = nullptr;
    const Element *m_faces = nullptr;
    std::vector<Field> m_fields; ///< of the vertices' properties
    std::unique_ptr<PlyNumbers> m_numbers;
    bool m_takesUvs = false;
    bool m_hasNormals = false;
    bool m_hasColors = false;
};

} // namespace

OssEvResult PlyReader::read(const std::string &path, const Options &options,
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
