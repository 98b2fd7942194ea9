#include "OssEvaluation/Geometry/OssEvMeshFile.h"

#include "OssEvaluation/Geometry/GltfReader.h"
#include "OssEvaluation/Geometry/ObjReader.h"
#include "OssEvaluation/Geometry/OssEvMeshScene.h"
#include "OssEvaluation/Geometry/OssEvUnwrap.h"
#include "OssEvaluation/Geometry/PlyReader.h"
#include "OssEvaluation/Geometry/StlReader.h"

#include <assimp/BaseImporter.h>
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
#include <future>
#include <new>
#include <set>
#include <utility>

namespace {

using OssEvMeshFile::Options;
using OssEvMeshFile::Part;

constexpr long long MaximumFileSize = 1LL << 31;
constexpr double ShareOfReading = 0.7; // of the progress
const std::string ExportAgain = "; export it again from where it was made";

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
            m_told(ShareOfReading * std::min(double(share), 1.0));
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

std::string suffixOf(const std::string &path)
{
    std::string suffix = std::filesystem::path(path).extension().string();
    std::transform(suffix.begin(), suffix.end(), suffix.begin(),
                   [](unsigned char c) { return char(std::tolower(c)); });
    return suffix.empty() ? suffix : suffix.substr(1);
}

/// With what the library says, where it says something.
std::string inWords(const std::string &path, const std::string &said)
{
    std::string kind = suffixOf(path);
    std::transform(kind.begin(), kind.end(), kind.begin(),
                   [](unsigned char c) { return char(std::toupper(c)); });
    const std::string file = kind.empty() ? std::string("mesh file") : kind + " file";
    const std::string all = "it is no " + file + ", or it is damaged" + ExportAgain;
    // Of formats that it knows by their first bytes it says no more.
    if (said.empty() || said.find("No suitable reader") != std::string::npos)
        return all;
    return all + " (" + said + ")";
}

/// Leaves the one reader that files of the suffix are for: the library has dozens, tries all of them on
/// what it does not know, and some go down with files that were never meshes.
void keepReaderOf(const std::string &suffix, Assimp::Importer *importer)
{
    std::vector<Assimp::BaseImporter *> others;
    for (std::size_t i = 0; i < importer->GetImporterCount(); ++i) {
        Assimp::BaseImporter *reader = importer->GetImporter(i);
        std::set<std::string> suffixes;
        reader->GetExtensionList(suffixes);
        if (suffixes.count(suffix) == 0)
            others.push_back(reader);
    }
    for (Assimp::BaseImporter *reader : others) {
        importer->UnregisterLoader(reader);
        delete reader; // it is the caller's from then on
    }
}

OssEvResult readScene(const std::string &path, Progress *progress, std::unique_ptr<aiScene> *scene)
{
    Assimp::Importer importer;
    importer.SetPropertyBool(AI_CONFIG_IMPORT_NO_SKELETON_MESHES, true);
    // Nodes that only say where others turn would hide the names of objects.
    importer.SetPropertyBool(AI_CONFIG_IMPORT_FBX_PRESERVE_PIVOTS, false);
    importer.SetPropertyBool(AI_CONFIG_IMPORT_FBX_READ_ANIMATIONS, false);
    importer.SetPropertyBool(AI_CONFIG_IMPORT_FBX_READ_CAMERAS, false);
    importer.SetPropertyBool(AI_CONFIG_IMPORT_FBX_READ_LIGHTS, false);
    keepReaderOf(suffixOf(path), &importer);
    importer.SetProgressHandler(progress);
    const aiScene *read = importer.ReadFile(path, 0);
    const std::string said = importer.GetErrorString();
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
        return refused(path, "there is no such file; find it again, or choose another");
    if (status.st_size > MaximumFileSize)
        return refused(path, "it is larger than 2 GB; split it into several files or reduce it");
    if (!OssEvMeshFile::isMeshFile(path))
        return refused(path, "it is no mesh file; those are OBJ, FBX, glTF, PLY and STL files");
    if (isHeaderCutOff(path))
        return refused(path, "its header has no end" + ExportAgain);
    return {};
}

/// Makes texture coordinates where they are wanted, looks at the mesh and finishes it.
OssEvResult complete(const std::string &path, const Options &options,
                     const std::shared_ptr<OssEvMesh> &mesh, Part *part)
{
    if (!mesh->isFinite())
        return refused(path, "it has coordinates that are no numbers" + ExportAgain);
    if (options.unwraps) {
        OssEvUnwrap::unwrap(mesh.get());
        part->report.clear();
    }
    if (!part->report.empty())
        return {};
    // Beside finishing, which touches nothing that is looked at.
    std::future<OssEvMeshCheck::Report> checked = std::async(
        std::launch::async, [&mesh] { return OssEvMeshCheck::of(*mesh); });
    const OssEvResult result = mesh->finish(path);
    part->report = checked.get();
    if (OssEvMeshCheck::isUseless(part->report))
        return {};
    if (result)
        part->mesh = mesh;
    return result;
}

/// Meshes that are not complete yet.
OssEvResult readMeshes(const std::string &path, const Options &options, Progress *progress,
                       const OssEvCancel *cancel, std::vector<std::shared_ptr<OssEvMesh>> *meshes,
                       OssEvMeshFile::Reading *reading, OssEvMeshCheck::Report *leftOut)
{
    OssEvResult result;
    bool isDone = false;
    const std::string suffix = suffixOf(path);
    const auto tell = [progress](double share) {
        progress->Update(float(share));
    };
    if (suffix == "glb" || suffix == "gltf")
        result = GltfReader::read(path, options, meshes, reading, cancel, &isDone);
    else if (suffix == "ply")
        result = PlyReader::read(path, options, meshes, reading, cancel, tell, &isDone);
    else if (suffix == "stl")
        result = StlReader::read(path, options, meshes, reading, cancel, tell, &isDone);
    if (isDone) {
        // What the other library would not read better.
    } else if (suffix == "obj") {
        result = ObjReader::read(path, options, meshes, reading, leftOut, cancel, tell);
    } else {
        std::unique_ptr<aiScene> scene;
        result = readScene(path, progress, &scene);
        if (!result)
            return result;
        result = OssEvMeshScene::convert(std::move(scene), options, stem(path), meshes, reading,
                                         cancel);
    }
    if (progress->isCancelled())
        return refused(path, "it was stopped");
    return result ? result : refused(path, result.error());
}

OssEvResult readWhole(const std::string &path, const Options &options,
                      OssEvMeshFile::Reading *reading, const OssEvCancel *cancel,
                      const std::function<void(double)> &progress)
{
    Progress told(cancel, progress);
    OssEvMeshCheck::Report leftOut;
    std::vector<std::shared_ptr<OssEvMesh>> meshes;
    OssEvResult result = readMeshes(path, options, &told, cancel, &meshes, reading, &leftOut);
    for (std::size_t i = 0; i < meshes.size() && result; ++i) {
        if (told.isCancelled())
            return refused(path, "it was stopped");
        if (progress)
            progress(ShareOfReading + (1.0 - ShareOfReading) * double(i) / double(meshes.size()));
        result = complete(path, options, std::exchange(meshes[i], nullptr), &reading->parts[i]);
    }
    if (result) {
        OssEvMeshCheck::Report &first = reading->parts.front().report;
        first.insert(first.end(), leftOut.begin(), leftOut.end());
    }
    return result;
}

} // namespace

OssEvResult OssEvMeshFile::read(const std::string &path, const Options &options, Reading *reading,
                                const OssEvCancel *cancel,
                                const std::function<void(double)> &progress)
{
    const OssEvResult checked = checkFile(path);
    if (!checked)
        return checked;
    try {
        return readWhole(path, options, reading, cancel, progress);
    } catch (const std::bad_alloc &) {
        return refused(path, "there is not enough memory for it; reduce it, or split it");
    } catch (const std::exception &fault) {
        return refused(path, inWords(path, fault.what()));
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
        return refused(path, OssEvMeshCheck::inWords({whole.report.front()}));
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
    const std::vector<std::string> &all = suffixes();
    return std::find(all.begin(), all.end(), suffixOf(path)) != all.end();
}
