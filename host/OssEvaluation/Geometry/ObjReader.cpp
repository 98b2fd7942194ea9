#include "OssEvaluation/Geometry/ObjReader.h"

#include "OssEvaluation/Geometry/MeshParts.h"
#include "OssEvaluation/Geometry/ObjLines.h"
#include "OssEvaluation/Geometry/ObjVertices.h"

#include <algorithm>
#include <array>
#include <filesystem>

namespace {

using OssEvMeshFile::Options;
using OssEvMeshFile::Reading;
using Vector3 = OssEvMesh::Vector3;
using Color = std::array<float, 4>;
using Corner = ObjNumbers::Corner;
using Corners = std::vector<Corner>;

constexpr std::uint32_t None = ObjNumbers::None;
constexpr std::size_t LooksEvery = 4096; ///< lines
constexpr double ShareOfText = 0.7;      ///< of the progress
constexpr std::size_t LongestTold = 60;  ///< letters of a line
// Names of what has none in the file.
const std::string NoObject = "defaultobject";
const std::string NoMaterial = "DefaultMaterial";
const std::string OnlyUvSet = "UV 1";

/// Names of objects, which are unique: a group of a name that was there is another.
class Objects
{
public:
    explicit Objects(std::string file)
        : m_file(std::move(file))
    {
    }

    void open(const std::string &name)
    {
        m_current = std::size_t(std::find(m_names.begin(), m_names.end(), name) - m_names.begin());
        if (m_current == m_names.size())
            add(name);
    }

    void openGroup(const std::string &name)
    {
        if (name == m_group)
            return;
        m_group = name;
        if (!name.empty())
            add(name);
    }

    /// What has faces is called.
    const std::string &current()
    {
        if (m_names.empty())
            add(NoObject);
        std::string &unique = m_unique[m_current];
        if (!unique.empty())
            return unique;
        const std::string wanted = m_names[m_current].front() == '<' ? m_file : m_names[m_current];
        unique = wanted;
        for (int i = 2; std::count(m_unique.begin(), m_unique.end(), unique) > 1; ++i)
            unique = wanted + " " + std::to_string(i);
        return unique;
    }

private:
    void add(const std::string &name)
    {
        m_current = m_names.size();
        m_names.push_back(name);
        m_unique.emplace_back();
    }

    std::string m_file;
    std::string m_group;
    std::vector<std::string> m_names;
    std::vector<std::string> m_unique;
    std::size_t m_current = 0;
};

/// A face that names what had not come yet.
struct Deferred
{
    std::string object;
    std::string material;
    Corners corners;
    std::size_t line;
    std::string told;
};

class Reader
{
public:
    Reader(const std::string &path, const Options &options, Reading *reading)
        : m_reading(reading)
        , m_parts(options, reading)
        , m_lines(path)
        , m_objects(std::filesystem::path(path).stem().string())
        , m_matrix(MeshParts::placing(1.0, options.up == Options::Up::Z, options))
        , m_takesUvs(options.uvSet.empty() || options.uvSet == OnlyUvSet)
    {
    }

    OssEvResult run(const OssEvCancel *cancel, const std::function<void(double)> &progress)
    {
        std::string_view line;
        for (std::size_t i = 0; m_fault.empty() && m_lines.next(&line); ++i) {
            if (i % LooksEvery == 0) {
                if (cancel != nullptr && cancel->isCancelled())
                    return OssEvResult::failure("it was stopped");
                if (progress)
                    progress(ShareOfText * m_lines.share());
            }
            take(line);
        }
        if (!m_fault.empty())
            return OssEvResult::failure(m_fault);
        takeDeferred();
        endChunk();
        using namespace OssEvMeshCheck;
        if (m_reading->faces == 0)
            return OssEvResult::failure(inWords({finding(Kind::NoFaces, 0)}));
        if (m_reading->faces > MostFaces)
            return OssEvResult::failure(inWords({finding(Kind::TooManyFaces, m_reading->faces)}));
        if (m_hasUvs)
            m_reading->uvSets = {OnlyUvSet};
        return {};
    }

    std::vector<std::shared_ptr<OssEvMesh>> meshes() const { return m_parts.meshes(); }

    void tellLeftOut(OssEvMeshCheck::Report *report) const
    {
        using namespace OssEvMeshCheck;
        if (m_leftOut == 0)
            return;
        Finding found = finding(Kind::LeftOut, m_leftOut);
        found.text += " (" + m_firstLeftOut + ")";
        report->push_back(found);
    }

private:
    void take(std::string_view line)
    {
        ObjWords words(line);
        const std::string_view key = words.next();
        if (key == "v")
            takePlace(&words, line);
        else if (key == "vt")
            takeNumbers<2>(&words, line, &m_numbers.uvs);
        else if (key == "vn")
            takeNumbers<3>(&words, line, &m_numbers.normals);
        else if (key == "f")
            takeFace(&words, line);
        else if (key == "usemtl")
            useMaterial(std::string(words.rest()));
        else if (key == "o")
            openObject(std::string(words.next()));
        else if (key == "g")
            openGroup(std::string(words.rest()));
    }

    std::string told(std::string_view line) const
    {
        const std::string text(line.substr(0, LongestTold));
        return "line " + std::to_string(m_lines.number()) + ", \"" + text
               + (line.size() > LongestTold ? "...\"" : "\"");
    }

    std::string damagedAt(std::string_view line) const
    {
        return "it is no OBJ file, or it is damaged (" + told(line)
               + "); export it again from where it was made";
    }

    /// How many there are; what is no number is a fault.
    template <std::size_t Most>
    std::size_t numbers(ObjWords *words, std::string_view line, std::array<float, Most> *values)
    {
        std::size_t count = 0;
        for (bool isThere = true; count < Most; ++count) {
            if (!words->number(&(*values)[count], &isThere))
                m_fault = damagedAt(line);
            if (!isThere)
                break;
        }
        return count;
    }

    template <std::size_t Count, class List>
    void takeNumbers(ObjWords *words, std::string_view line, List *list)
    {
        std::array<float, Count> values{};
        if (numbers(words, line, &values) == 0)
            m_fault = damagedAt(line);
        list->push_back(values);
    }

    /// x y z, with w or with a colour.
    void takePlace(ObjWords *words, std::string_view line)
    {
        std::array<float, 6> values{};
        const std::size_t count = numbers(words, line, &values);
        if (count < 3)
            m_fault = damagedAt(line);
        Vector3 place{values[0], values[1], values[2]};
        if (count == 4 && values[3] != 0.0F) {
            for (float &number : place)
                number /= values[3];
        }
        const Color white{1.0F, 1.0F, 1.0F, 1.0F};
        if (count == 6) {
            m_numbers.colors.resize(m_numbers.places.size(), white);
            m_numbers.colors.push_back({values[3], values[4], values[5], 1.0F});
        } else if (!m_numbers.colors.empty()) {
            m_numbers.colors.push_back(white);
        }
        m_numbers.places.push_back(place);
    }

    enum class Known { Yes, NotYet, Never };

    /// "3/1/2", of which the last two may be missing; negative ones count back from the last.
    Known corner(std::string_view word, Corner *made) const
    {
        Known known = Known::Yes;
        *made = {None, None, None};
        for (std::size_t i = 0; i < made->size(); ++i) {
            if (i > 0) {
                if (word.empty())
                    break;
                if (word.front() != '/')
                    return Known::Never;
                word.remove_prefix(1);
                if (word.empty() || word.front() == '/')
                    continue;
            }
            long long index = 0;
            const auto count = (long long)(m_numbers.count(i));
            if (!ObjWords::index(&word, &index) || index == 0 || index < -count
                || index >= (long long)(None))
                return Known::Never;
            if (index > count)
                known = Known::NotYet;
            (*made)[i] = std::uint32_t(index > 0 ? index - 1 : count + index);
        }
        return word.empty() ? known : Known::Never;
    }

    void takeFace(ObjWords *words, std::string_view line)
    {
        m_corners.clear();
        Known all = Known::Yes;
        for (std::string_view word = words->next(); !word.empty(); word = words->next()) {
            Corner made{};
            const Known known = corner(word, &made);
            all = std::max(all, known);
            m_corners.push_back(made);
        }
        if (all == Known::Never)
            leaveOut(m_lines.number(), told(line));
        else if (all == Known::NotYet)
            m_deferred.push_back(
                {m_objects.current(), m_material, m_corners, m_lines.number(), told(line)});
        else if (m_corners.size() >= 3)
            addFace(m_objects.current());
    }

    void leaveOut(std::size_t line, const std::string &told)
    {
        if (m_leftOut++ == 0 || line < m_leftOutLine) {
            m_leftOutLine = line;
            m_firstLeftOut = told;
        }
    }

    /// Of m_corners and m_material.
    void addFace(const std::string &object)
    {
        m_reading->faces += m_corners.size() - 2;
        if (m_reading->faces > OssEvMeshCheck::MostFaces)
            return; // the others are only counted
        if (!m_vertices) {
            m_goal = m_parts.goal(object, m_material);
            m_chunkObject = object;
            m_chunkHasUvs = false;
            m_vertices = std::make_unique<ObjVertices>(m_numbers, m_matrix, m_takesUvs);
        }
        m_face.clear();
        for (const Corner &corner : m_corners) {
            m_chunkHasUvs = m_chunkHasUvs || corner[1] != None;
            m_face.push_back(m_vertices->of(corner, m_goal.mesh));
        }
        MeshParts::addFace(m_goal, m_face);
    }

    void takeDeferred()
    {
        for (Deferred &face : m_deferred) {
            const bool isWhole = std::all_of(
                face.corners.begin(), face.corners.end(), [this](const Corner &corner) {
                    for (std::size_t i = 0; i < corner.size(); ++i) {
                        if (corner[i] != None && corner[i] >= m_numbers.count(i))
                            return false;
                    }
                    return true;
                });
            if (!isWhole) {
                leaveOut(face.line, face.told);
                continue;
            }
            if (face.object != m_chunkObject || face.material != m_material)
                endChunk();
            m_material = face.material;
            m_corners = std::move(face.corners);
            if (m_corners.size() >= 3)
                addFace(face.object);
        }
    }

    /// Other faces go elsewhere.
    void endChunk()
    {
        if (m_vertices && !(m_chunkHasUvs && m_takesUvs))
            m_parts.tellWithoutUvs(m_chunkObject, m_goal.part);
        m_hasUvs = m_hasUvs || (m_vertices && m_chunkHasUvs);
        m_vertices.reset();
    }

    void useMaterial(const std::string &name)
    {
        if (name.empty() || name == m_material)
            return;
        endChunk();
        m_material = name;
    }

    void openObject(const std::string &name)
    {
        if (name.empty())
            return;
        endChunk();
        m_objects.open(name);
    }

    void openGroup(const std::string &name)
    {
        endChunk();
        m_objects.openGroup(name);
    }

    Reading *m_reading;
    MeshParts m_parts;
    ObjLines m_lines;
    Objects m_objects;
    const aiMatrix4x4 m_matrix;
    const bool m_takesUvs;
    ObjNumbers m_numbers;
    std::string m_material = NoMaterial;
    std::string m_fault;
    // Faces of one object and material slot
    MeshParts::Goal m_goal;
    std::unique_ptr<ObjVertices> m_vertices; ///< null until the first face
    std::string m_chunkObject;
    bool m_chunkHasUvs = false;
    bool m_hasUvs = false;
    // One face
    Corners m_corners;
    std::vector<std::uint32_t> m_face;
    std::vector<Deferred> m_deferred;
    std::size_t m_leftOut = 0;
    std::size_t m_leftOutLine = 0; ///< the first
    std::string m_firstLeftOut;
};

} // namespace

OssEvResult ObjReader::read(const std::string &path, const Options &options,
                            std::vector<std::shared_ptr<OssEvMesh>> *meshes, Reading *reading,
                            OssEvMeshCheck::Report *report, const OssEvCancel *cancel,
                            const std::function<void(double)> &progress)
{
    Reader reader(path, options, reading);
    const OssEvResult result = reader.run(cancel, progress);
    if (result) {
        *meshes = reader.meshes();
        reader.tellLeftOut(report);
    }
    return result;
}
