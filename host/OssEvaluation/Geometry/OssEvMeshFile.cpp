#include "OssEvaluation/Geometry/OssEvMeshFile.h"

#include <assimp/config.h>
#include <assimp/Importer.hpp>
#include <assimp/postprocess.h>
#include <assimp/scene.h>
#include <sys/stat.h>

#include <exception>
#include <fstream>

namespace {

constexpr long long MaximumFileSize = 1LL << 31;
constexpr std::size_t MaximumVertices = 100'000'000;

OssEvResult refused(const std::string &path, const std::string &reason)
{
    return OssEvResult::failure("Cannot read \"" + path + "\": " + reason);
}

OssEvMesh::Vector3 vector3(const aiVector3D &from)
{
    return {from.x, from.y, from.z};
}

OssEvResult addMesh(const std::string &path, const aiMesh &from, OssEvMesh *to)
{
    if (!from.HasTextureCoords(0))
        return refused(path,
                       "\"" + std::string(from.mName.C_Str()) + "\" has no texture coordinates");
    if (to->positions.size() + from.mNumVertices > MaximumVertices)
        return refused(path, "it has too many vertices");
    const auto first = std::uint32_t(to->positions.size());
    for (unsigned i = 0; i < from.mNumVertices; ++i) {
        to->positions.push_back(vector3(from.mVertices[i]));
        to->uvs.push_back({from.mTextureCoords[0][i].x, from.mTextureCoords[0][i].y});
        if (from.HasNormals())
            to->normals.push_back(vector3(from.mNormals[i]));
    }
    for (unsigned i = 0; i < from.mNumFaces; ++i) {
        const aiFace &face = from.mFaces[i];
        if (face.mNumIndices == 3)
            to->triangles.push_back(
                {first + face.mIndices[0], first + face.mIndices[1], first + face.mIndices[2]});
    }
    return {};
}

OssEvResult readScene(const std::string &path, OssEvMesh *mesh)
{
    Assimp::Importer importer;
    importer.SetPropertyInteger(AI_CONFIG_PP_SBP_REMOVE,
                                aiPrimitiveType_LINE | aiPrimitiveType_POINT);
    const aiScene *scene = importer.ReadFile(
        path, aiProcess_Triangulate | aiProcess_SortByPType | aiProcess_JoinIdenticalVertices
                  | aiProcess_GenSmoothNormals | aiProcess_PreTransformVertices);
    if (scene == nullptr)
        return refused(path, importer.GetErrorString());
    if (scene->mNumMeshes == 0)
        return refused(path, "it has no faces");
    for (unsigned i = 0; i < scene->mNumMeshes; ++i) {
        const OssEvResult result = addMesh(path, *scene->mMeshes[i], mesh);
        if (!result)
            return result;
    }
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

} // namespace

OssEvResult OssEvMeshFile::read(const std::string &path, std::shared_ptr<const OssEvMesh> *mesh)
{
    struct stat status = {};
    if (::stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode))
        return refused(path, "there is no such file");
    if (status.st_size > MaximumFileSize)
        return refused(path, "it is larger than 2 GB");
    if (isHeaderCutOff(path))
        return refused(path, "its header has no end");
    try {
        auto made = std::make_shared<OssEvMesh>();
        OssEvResult result = readScene(path, made.get());
        if (result)
            result = made->finish(path);
        if (result)
            *mesh = std::move(made);
        return result;
    } catch (const std::exception &fault) {
        return refused(path, fault.what());
    }
}
