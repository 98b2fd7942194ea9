#include "OssEvaluation/Geometry/OssEvMeshPack.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <filesystem>

namespace {

// Numbers are little-endian, as those of all machines that this is built for.
constexpr std::array<char, 8> Magic{'o', 's', 's', 'a', 'm', 's', 'h', '1'};
constexpr std::uint64_t MostValues = 1ULL << 30;

struct FileCloser
{
    void operator()(std::FILE *file) const { std::fclose(file); }
};

using File = std::unique_ptr<std::FILE, FileCloser>;

class Writer
{
public:
    explicit Writer(std::FILE *file)
        : m_file(file)
    {
    }

    template <class Value>
    void add(const std::vector<Value> &values)
    {
        const std::uint64_t count = values.size();
        raw(&count, sizeof(count));
        raw(values.data(), values.size() * sizeof(Value));
    }

    void raw(const void *bytes, std::size_t count)
    {
        good = good && (count == 0 || std::fwrite(bytes, 1, count, m_file) == count);
    }

    bool good = true;

private:
    std::FILE *m_file;
};

class Reader
{
public:
    Reader(std::FILE *file, std::uint64_t size)
        : m_file(file)
        , m_left(size)
    {
    }

    template <class Value>
    void take(std::vector<Value> *values)
    {
        std::uint64_t count = 0;
        raw(&count, sizeof(count));
        // A damaged number must not ask for memory that the file cannot fill.
        good = good && count <= MostValues && count * sizeof(Value) <= m_left;
        if (!good)
            return;
        values->resize(std::size_t(count));
        raw(values->data(), std::size_t(count) * sizeof(Value));
    }

    void raw(void *bytes, std::size_t count)
    {
        good = good && count <= m_left
               && (count == 0 || std::fread(bytes, 1, count, m_file) == count);
        m_left -= good ? count : 0;
    }

    bool isAtEnd() const { return m_left == 0; }

    bool good = true;

private:
    std::FILE *m_file;
    std::uint64_t m_left;
};

OssEvResult refused(const char *what, const std::string &path, const std::string &reason)
{
    return OssEvResult::failure(std::string("Cannot ") + what + " \"" + path + "\": " + reason);
}

OssEvResult readMesh(const std::string &path, OssEvMesh *mesh)
{
    const File file(std::fopen(path.c_str(), "rb"));
    if (!file)
        return refused("read", path, std::strerror(errno));
    Reader reader(file.get(), std::filesystem::file_size(path));
    std::array<char, 8> magic{};
    reader.raw(magic.data(), magic.size());
    if (!reader.good || magic != Magic)
        return refused("read", path, "it is no kept mesh of this version");
    reader.take(&mesh->positions);
    reader.take(&mesh->normals);
    reader.take(&mesh->uvs);
    reader.take(&mesh->colors);
    reader.take(&mesh->triangles);
    reader.take(&mesh->faces);
    reader.take(&mesh->materials);
    std::vector<char> names;
    reader.take(&names);
    if (!reader.good || !reader.isAtEnd())
        return refused("read", path, "it is cut off or damaged");
    std::string name;
    for (const char c : names) {
        if (c != '\0') {
            name += c;
            continue;
        }
        mesh->materialNames.push_back(name);
        name.clear();
    }
    return mesh->finish(path);
}

} // namespace

OssEvResult OssEvMeshPack::write(const std::string &path, const OssEvMesh &mesh)
{
    File file(std::fopen(path.c_str(), "wb"));
    if (!file)
        return refused("write", path, std::strerror(errno));
    Writer writer(file.get());
    writer.raw(Magic.data(), Magic.size());
    writer.add(mesh.positions);
    writer.add(mesh.normals);
    writer.add(mesh.uvs);
    writer.add(mesh.colors);
    writer.add(mesh.triangles);
    writer.add(mesh.faces);
    writer.add(mesh.materials);
    std::vector<char> names;
    for (const std::string &name : mesh.materialNames) {
        names.insert(names.end(), name.begin(), name.end());
        names.push_back('\0');
    }
    writer.add(names);
    const bool isClosed = std::fclose(file.release()) == 0;
    return writer.good && isClosed ? OssEvResult()
                                   : refused("write", path, "the disk does not take it");
}

OssEvResult OssEvMeshPack::read(const std::string &path, std::shared_ptr<const OssEvMesh> *mesh)
{
    try {
        auto made = std::make_shared<OssEvMesh>();
        OssEvResult result = readMesh(path, made.get());
        if (result)
            *mesh = std::move(made);
        return result;
    } catch (const std::exception &fault) {
        return refused("read", path, fault.what());
    }
}
