#include "OssEvaluation/Geometry/OssEvMeshFile.h"

#include <assimp/Exporter.hpp>
#include <assimp/Importer.hpp>
#include <assimp/scene.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include <unistd.h>

// A million triangles from a file to a mesh that can be drawn and evaluated, beside what the reading
// library alone needs for the same file: processor time, and the most memory, in sizes of the mesh's own
// arrays. Each measurement is a process of its own, so that none finds memory that another has left.

namespace {

constexpr int Columns = 1000;
constexpr int Rows = 500;

struct Grid
{
    std::vector<float> positions;
    std::vector<float> uvs;
    std::vector<std::uint32_t> indices;
};

Grid grid()
{
    Grid made;
    for (int y = 0; y <= Rows; ++y) {
        for (int x = 0; x <= Columns; ++x) {
            const float u = float(x) / Columns;
            const float v = float(y) / Rows;
            made.positions.insert(made.positions.end(),
                                  {u, v, 0.05F * std::sin(40.0F * u) * std::cos(30.0F * v)});
            made.uvs.insert(made.uvs.end(), {u, v});
        }
    }
    for (int y = 0; y < Rows; ++y) {
        for (int x = 0; x < Columns; ++x) {
            const auto a = std::uint32_t(y * (Columns + 1) + x);
            const std::uint32_t b = a + std::uint32_t(Columns) + 1;
            made.indices.insert(made.indices.end(), {a, a + 1, b + 1, a, b + 1, b});
        }
    }
    return made;
}

void writeObj(const std::string &path, const Grid &made)
{
    std::FILE *file = std::fopen(path.c_str(), "w");
    for (std::size_t i = 0; i < made.positions.size(); i += 3)
        std::fprintf(file, "v %.6f %.6f %.6f\n", double(made.positions[i]),
                     double(made.positions[i + 1]), double(made.positions[i + 2]));
    for (std::size_t i = 0; i < made.uvs.size(); i += 2)
        std::fprintf(file, "vt %.6f %.6f\n", double(made.uvs[i]), double(made.uvs[i + 1]));
    for (std::size_t i = 0; i < made.indices.size(); i += 3)
        std::fprintf(file, "f %u/%u %u/%u %u/%u\n", made.indices[i] + 1, made.indices[i] + 1,
                     made.indices[i + 1] + 1, made.indices[i + 1] + 1, made.indices[i + 2] + 1,
                     made.indices[i + 2] + 1);
    std::fclose(file);
}

template <class Value>
void append(std::string *bytes, const std::vector<Value> &values)
{
    bytes->append(reinterpret_cast<const char *>(values.data()), values.size() * sizeof(Value));
}

void writeGlb(const std::string &path, const Grid &made)
{
    std::string data;
    append(&data, made.positions);
    append(&data, made.uvs);
    append(&data, made.indices);
    const std::size_t vertices = made.positions.size() / 3;
    const auto number = [](std::size_t value) {
        return std::to_string(value);
    };
    const std::size_t uvStart = made.positions.size() * 4;
    const std::size_t indexStart = uvStart + made.uvs.size() * 4;
    std::string text =
        R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[0]}],"nodes":[{"mesh":0}],)"
        R"("meshes":[{"primitives":[{"attributes":{"POSITION":0,"TEXCOORD_0":1},"indices":2}]}],)"
        R"("accessors":[{"bufferView":0,"componentType":5126,"count":)"
        + number(vertices)
        + R"(,"type":"VEC3","min":[0,0,-1],"max":[1,1,1]},{"bufferView":1,"componentType":5126,"count":)"
        + number(vertices) + R"(,"type":"VEC2"},{"bufferView":2,"componentType":5125,"count":)"
        + number(made.indices.size())
        + R"(,"type":"SCALAR"}],"bufferViews":[{"buffer":0,"byteOffset":0,"byteLength":)"
        + number(uvStart) + R"(},{"buffer":0,"byteOffset":)" + number(uvStart) + R"(,"byteLength":)"
        + number(indexStart - uvStart) + R"(},{"buffer":0,"byteOffset":)" + number(indexStart)
        + R"(,"byteLength":)" + number(data.size() - indexStart) + R"(}],"buffers":[{"byteLength":)"
        + number(data.size()) + "}]}";
    text.resize((text.size() + 3) / 4 * 4, ' ');
    const auto word = [](std::size_t value) {
        return std::uint32_t(value);
    };
    const std::vector<std::uint32_t> head{0x46546C67U, 2, word(28 + text.size() + data.size()),
                                          word(text.size()), 0x4E4F534AU};
    const std::vector<std::uint32_t> chunk{word(data.size()), 0x004E4942U};
    std::string whole;
    append(&whole, head);
    whole += text;
    append(&whole, chunk);
    whole += data;
    std::ofstream(path, std::ios::binary) << whole;
}

struct Figures
{
    double seconds = 0.0; ///< of the processor
    double wall = 0.0;
    double bytes = 0.0;  ///< the most that was in use, beyond that of an empty process
    double arrays = 0.0; ///< of the mesh
};

double secondsOf(clockid_t clock)
{
    timespec time = {};
    clock_gettime(clock, &time);
    return double(time.tv_sec) + double(time.tv_nsec) / 1e9;
}

double mostBytes()
{
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return double(usage.ru_maxrss) * 1024.0;
}

/// `work` gives the bytes of its mesh's arrays.
Figures measure(const std::function<double()> &work)
{
    int ends[2] = {};
    Figures figures;
    if (pipe(ends) != 0)
        return figures;
    const pid_t child = fork();
    if (child == 0) {
        const double before = mostBytes();
        const double start = secondsOf(CLOCK_PROCESS_CPUTIME_ID);
        const double begin = secondsOf(CLOCK_MONOTONIC);
        figures.arrays = work();
        figures.wall = secondsOf(CLOCK_MONOTONIC) - begin;
        figures.seconds = secondsOf(CLOCK_PROCESS_CPUTIME_ID) - start;
        figures.bytes = mostBytes() - before;
        const bool isTold = write(ends[1], &figures, sizeof(figures)) == ssize_t(sizeof(figures));
        _exit(isTold ? 0 : 1);
    }
    close(ends[1]);
    if (read(ends[0], &figures, sizeof(figures)) != ssize_t(sizeof(figures)))
        std::fprintf(stderr, "a measurement failed\n");
    close(ends[0]);
    waitpid(child, nullptr, 0);
    return figures;
}

template <class Value>
double bytesOf(const std::vector<Value> &values)
{
    return double(values.size() * sizeof(Value));
}

double ours(const std::string &path)
{
    OssEvMeshFile::Reading reading;
    if (!OssEvMeshFile::read(path, {}, &reading))
        return 0.0;
    const std::shared_ptr<const OssEvMesh> mesh = reading.parts.front().mesh;
    if (!mesh) // no texture coordinates: it is read, and unwrapped when the user wants it
        return double(reading.faces) * 40.0;
    return bytesOf(mesh->positions) + bytesOf(mesh->normals) + bytesOf(mesh->uvs)
           + bytesOf(mesh->triangles) + bytesOf(mesh->faces) + bytesOf(mesh->materials)
           + bytesOf(mesh->trianglesOf(1001));
}

void compare(const std::string &path)
{
    Figures library;
    Figures whole;
    library.seconds = whole.seconds = 1e9;
    for (int i = 0; i < 5; ++i) {
        const Figures alone = measure([&path] {
            Assimp::Importer importer;
            return importer.ReadFile(path, 0) != nullptr ? 1.0 : 0.0;
        });
        const Figures read = measure([&path] { return ours(path); });
        if (alone.seconds < library.seconds)
            library = alone;
        if (read.seconds < whole.seconds)
            whole = read;
    }
    std::printf("%-6s library %.3f s, %.0f MB; mesh %.3f s = library x %.2f, on the "
                "clock x %.2f; %.0f MB = arrays (%.0f MB) x %.2f\n",
                std::filesystem::path(path).extension().c_str(), library.seconds,
                library.bytes / 1e6, whole.seconds, whole.seconds / library.seconds,
                whole.wall / library.wall, whole.bytes / 1e6, whole.arrays / 1e6,
                whole.bytes / whole.arrays);
}

} // namespace

int main()
{
    const std::filesystem::path folder = std::filesystem::temp_directory_path()
                                         / ("ossa-bench-meshes-" + std::to_string(getpid()));
    std::filesystem::create_directory(folder);
    const std::string obj = folder / "million.obj";
    const std::string glb = folder / "million.glb";
    const std::string fbx = folder / "million.fbx";
    const std::string ply = folder / "million.ply";
    const std::string stl = folder / "million.stl";
    if (const pid_t writer = fork(); writer == 0) {
        const Grid made = grid();
        writeObj(obj, made);
        writeGlb(glb, made);
        Assimp::Importer importer;
        const aiScene *scene = importer.ReadFile(glb, 0);
        Assimp::Exporter exporter;
        const bool areWritten = exporter.Export(scene, "fbxa", fbx) == AI_SUCCESS
                                && exporter.Export(scene, "plyb", ply) == AI_SUCCESS
                                && exporter.Export(scene, "stlb", stl) == AI_SUCCESS;
        if (!areWritten)
            std::fprintf(stderr, "%s\n", exporter.GetErrorString());
        _exit(0);
    } else {
        waitpid(writer, nullptr, 0);
    }
    compare(obj);
    compare(glb);
    compare(fbx);
    compare(ply);
    compare(stl);
    std::filesystem::remove_all(folder);
    return 0;
}
