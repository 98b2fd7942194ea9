#include "OssEvaluation/Geometry/OssEvMeshFile.h"

#include "OssEvaluation/Geometry/ObjText.h"
#include "OssEvaluation/Geometry/OssEvMeshScene.h"
#include "OssEvaluation/Geometry/OssEvUnwrap.h"

#include <assimp/config.h>
#include <assimp/Importer.hpp>
#include <assimp/postprocess.h>
#include <assimp/ProgressHandler.hpp>
#include <assimp/scene.h>
#include <sys/stat.h>

#include <algorithm>
#include <cctype>
#include <exception>
#include <filesystem>
#include <fstream>
#include <utility>

namespace {

using OssEvMeshFile::Options;
using OssEvMeshFile::Part;

constexpr long long MaximumFileSize = 1LL << 31;
constexpr double ShareOfLibrary = 0.7; // of the progress

OssEvResult refused(const std::string &path, const std::string &reason)
{
    return OssEvResult::failure("Cannot read \"" + path + "\": " + reason);
}

/// Carries what the library tells on, and tells it when to stop.
class Progress : public Assimp::ProgressHandler
{
public:
    Progress(const OssEvCancel *cancel, const std::function<void(double)> &told)
        : m_cancel(cancel)
        , m_told(told)
    {
    }

    bool Update(float share) override
    {
        if (m_told && share >= 0.0F)
            m_told(ShareOfLibrary * std::min(double(share), 1.0));
        return !isCancelled();
    }

    bool isCancelled() const { return m_cancel != nullptr && m_cancel->isCancelled(); }

private:
    const OssEvCancel *m_cancel;
    const std::function<void(double)> &m_told;
};

std::string stem(const std::string &path)
{
    return std::filesystem::path(path).stem().string();
}

/// What the library says where it says something.
std::string inWords(const std::string &path, const std::string &said)
{
    std::string kind = std::filesystem::path(path).extension().string();
    std::transform(kind.begin(), kind.end(), kind.begin(),
                   [](unsigned char c) { return char(std::toupper(c)); });
    const std::string file = kind.size() > 1 ? kind.substr(1) + " file" : std::string("mesh file");
    // Of formats that it knows by their first bytes it says no more.
    if (said.empty() || said.find("No suitable reader") != std::string::npos)
        return "it is no " + file + ", or it is damaged: export it again from where it was made";
    return said;
}

/// What the library refused as a whole, without what it refused. Null where that is no help.
const aiScene *readAgain(const std::string &path, Assimp::Importer *importer,
                         OssEvMeshCheck::Report *report)
{
    if (std::filesystem::path(path).extension() != ".obj")
        return nullptr;
    const ObjText cleaned = ObjText::read(path);
    const aiScene *read = importer->ReadFileFromMemory(cleaned.text.data(), cleaned.text.size(), 0,
                                                       "obj");
    if (read != nullptr && cleaned.leftOut > 0) {
        using namespace OssEvMeshCheck;
        Finding found = finding(Kind::LeftOut, cleaned.leftOut);
        found.text += " (" + cleaned.firstFault + ")";
        report->push_back(found);
    }
    return read;
}

OssEvResult readScene(const std::string &path, Progress *progress, std::unique_ptr<aiScene> *scene,
                      OssEvMeshCheck::Report *report)
{
    Assimp::Importer importer;
    importer.SetPropertyBool(AI_CONFIG_IMPORT_NO_SKELETON_MESHES, true);
    // Nodes that only say where others turn would hide the names of objects.
    importer.SetPropertyBool(AI_CONFIG_IMPORT_FBX_PRESERVE_PIVOTS, false);
    importer.SetPropertyBool(AI_CONFIG_IMPORT_FBX_READ_ANIMATIONS, false);
    importer.SetPropertyBool(AI_CONFIG_IMPORT_FBX_READ_CAMERAS, false);
    importer.SetPropertyBool(AI_CONFIG_IMPORT_FBX_READ_LIGHTS, false);
    importer.SetProgressHandler(progress);
    const aiScene *read = importer.ReadFile(path, 0);
    const std::string said = importer.GetErrorString();
    if (read == nullptr && !progress->isCancelled())
        read = readAgain(path, &importer, report);
    importer.SetProgressHandler(nullptr); // which gives ours away before it could be deleted
    if (progress->isCancelled())
        return refused(path, "it was stopped");
    if (read == nullptr)
        return refused(path, inWords(path, said));
    if (read->mNumMeshes == 0)
        return refused(path, OssEvMeshCheck::inWords(
                                 {OssEvMeshCheck::finding(OssEvMeshCheck::Kind::NoFaces, 0)}));
    scene->reset(importer.GetOrphanedScene());
    return {};
}

// The library looks for the end of a PLY file's header for ever when there is none.
bool isHeaderCutOff(const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    std::string text(std::size_t(1) << 16, '\0');
    file.read(text.data(), std::streamsize(text.size()));
    text.resize(std::size_t(file.gcount()));
    return text.rfind("ply", 0) == 0 && text.find("end_header") == std::string::npos;
}

OssEvResult checkFile(const std::string &path)
{
    struct stat status = {};
    if (::stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode))
        return refused(path, "there is no such file");
    if (status.st_size > MaximumFileSize)
        return refused(path, "it is larger than 2 GB");
    if (isHeaderCutOff(path))
        return refused(path, "its header has no end");
    return {};
}

/// Makes texture coordinates where they are wanted, looks at the mesh and finishes it.
OssEvResult complete(const std::string &path, const Options &options,
                     const std::shared_ptr<OssEvMesh> &mesh, Part *part)
{
    if (options.unwraps) {
        OssEvUnwrap::unwrap(mesh.get());
        part->report.clear();
    }
    if (!part->report.empty())
        return {};
    part->report = OssEvMeshCheck::of(*mesh);
    if (OssEvMeshCheck::isUseless(part->report))
        return {};
    const OssEvResult result = mesh->finish(path);
    if (result)
        part->mesh = mesh;
    return result;
}

} // namespace

OssEvResult OssEvMeshFile::read(const std::string &path, const Options &options, Reading *reading,
                                const OssEvCancel *cancel,
                                const std::function<void(double)> &progress)
{
    OssEvResult result = checkFile(path);
    if (!result)
        return result;
    try {
        Progress told(cancel, progress);
        std::unique_ptr<aiScene> scene;
        OssEvMeshCheck::Report leftOut;
        result = readScene(path, &told, &scene, &leftOut);
        if (!result)
            return result;
        std::vector<std::shared_ptr<OssEvMesh>> meshes;
        result = OssEvMeshScene::convert(std::move(scene), options, stem(path), &meshes, reading,
                                         cancel);
        if (!result)
            return refused(path, result.error());
        for (std::size_t i = 0; i < meshes.size() && result; ++i) {
            if (told.isCancelled())
                return refused(path, "it was stopped");
            if (progress)
                progress(ShareOfLibrary
                         + (1.0 - ShareOfLibrary) * double(i) / double(meshes.size()));
            result = complete(path, options, std::exchange(meshes[i], nullptr), &reading->parts[i]);
        }
        OssEvMeshCheck::Report &first = reading->parts.front().report;
        first.insert(first.end(), leftOut.begin(), leftOut.end());
        return result;
    } catch (const std::exception &fault) {
        return refused(path, fault.what());
    }
}

OssEvResult OssEvMeshFile::read(const std::string &path, std::shared_ptr<const OssEvMesh> *mesh)
{
    Reading reading;
    const OssEvResult result = read(path, {}, &reading);
    if (!result)
        return result;
    const Part &whole = reading.parts.front();
    if (!whole.mesh)
        return refused(path, whole.report.front().text);
    *mesh = whole.mesh;
    return {};
}

const std::vector<std::string> &OssEvMeshFile::suffixes()
{
    static const std::vector<std::string> all{"obj", "fbx", "glb", "gltf", "ply", "stl"};
    return all;
}

bool OssEvMeshFile::isMeshFile(const std::string &path)
{
    std::string suffix = std::filesystem::path(path).extension().string();
    std::transform(suffix.begin(), suffix.end(), suffix.begin(),
                   [](unsigned char c) { return char(std::tolower(c)); });
    const std::vector<std::string> &all = suffixes();
    return !suffix.empty() && std::find(all.begin(), all.end(), suffix.substr(1)) != all.end();
}
