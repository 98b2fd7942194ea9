// Files that are read without the library: as it would read them, and no less guarded.

#include "OssEvaluation/Geometry/OssEvMeshFile.h"
#include "OssEvaluation/TestFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace {

using OssEvMeshFile::Options;
using OssEvMeshFile::Reading;

class MeshReaders : public testing::Test
{
protected:
    std::string read(const std::string &name, const std::string &content,
                     const Options &options = {})
    {
        reading = {};
        return OssEvMeshFile::read(folder.write(name, content), options, &reading).error();
    }

    const OssEvMesh &mesh() const { return *reading.parts.at(0).mesh; }

    TestFolder folder;
    Reading reading;
};

std::string binary(const std::vector<float> &numbers)
{
    return {reinterpret_cast<const char *>(numbers.data()), numbers.size() * sizeof(float)};
}

/// A roof of two facets that lie flat beside each other and one that does not.
const std::vector<std::vector<float>> Facets{{0, 0, 2, 0, 0, 0, 1, 0, 0, 1, 1, 0},
                                             {0, 0, 2, 0, 0, 0, 1, 1, 0, 0, 1, 0},
                                             {0, 1, 0, 0, 1, 0, 1, 1, 0, 0.5F, 1, -1}};

std::string stlText(const std::string &between)
{
    std::string text = "solid Roof\n";
    for (const std::vector<float> &facet : Facets) {
        const auto numbers = [&facet](std::size_t first) {
            std::string list;
            for (std::size_t i = first; i < first + 3; ++i)
                list += " " + std::to_string(facet[i]);
            return list;
        };
        text += " facet normal" + numbers(0) + "\n  outer loop" + between;
        for (const std::size_t corner : {3, 6, 9})
            text += "   vertex" + numbers(corner) + "\n";
        text += "  endloop\n endfacet\n";
    }
    return text + "endsolid Roof\n";
}

std::string stlBinary(std::size_t facets)
{
    std::string bytes(80, '\0');
    const auto count = std::uint32_t(facets);
    bytes.append(reinterpret_cast<const char *>(&count), sizeof(count));
    for (const std::vector<float> &facet : Facets)
        bytes += binary(facet) + std::string(2, '\0');
    return bytes;
}

TEST_F(MeshReaders, stlFilesAreReadStraightAsTheLibraryReadsThem)
{
    Options options;
    options.unwraps = true;
    options.up = Options::Up::Z;
    // The library takes more liberties with lines.
    ASSERT_EQ(read("roof.stl", stlText(" "), options), "");
    const OssEvMeshFile::Reading library = reading;
    ASSERT_NE(library.parts[0].mesh, nullptr);
    EXPECT_EQ(library.parts[0].mesh->positions.size(), 7U) << "4 of what is flat and 3";
    ASSERT_EQ(read("roof.stl", stlText("\n"), options), "");
    EXPECT_EQ(reading.objects, library.objects);
    EXPECT_EQ(reading.materials, library.materials);
    EXPECT_EQ(mesh().key(), library.parts[0].mesh->key());
    ASSERT_EQ(read("roof.stl", stlBinary(3), options), "");
    EXPECT_EQ(reading.objects, (std::vector<std::string>{"roof"}));
    EXPECT_EQ(mesh().key(), library.parts[0].mesh->key());
    for (const std::size_t facets : {0, 2, 4, 70000000})
        EXPECT_NE(read("roof.stl", stlBinary(facets), options), "") << facets;
    EXPECT_NE(read("none.stl", stlBinary(0).substr(0, 84), options).find("no faces"),
              std::string::npos);
}

std::string plyHead(const std::string &form, const std::string &more)
{
    std::string text = "ply\nformat " + form + " 1.0\ncomment by hand\nelement vertex 5\n";
    for (const char *name : {"x", "y", "z", "nx", "ny", "nz", "s", "t"})
        text += std::string("property float ") + name + "\n";
    return text + "property uchar red\nproperty uchar green\nproperty uchar blue\n" + more
           + "element face 2\nproperty list uchar int vertex_indices\nend_header\n";
}

const std::vector<std::vector<float>> PlyVertices{{0, 0, 0, 0, 0, 2, 0, 0},
                                                  {1, 0, 0, 0, 0, 2, 1, 0},
                                                  {1, 1, 0, 0, 0, 2, 1, 1},
                                                  {0, 1, 0, 0, 0, 2, 0, 1},
                                                  {0, 0, 0, 0, 0, 2, 0, 0}};

std::string plyText(const std::string &more, const std::string &faces)
{
    std::string text = plyHead("ascii", more);
    for (const std::vector<float> &vertex : PlyVertices) {
        for (const float number : vertex)
            text += std::to_string(number) + " ";
        text += "51 102 255\n";
    }
    return text + faces;
}

/// A quad and a triangle that share a corner only by what it is.
std::string plyBinary(bool isBigEndian)
{
    std::string bytes = plyHead(isBigEndian ? "binary_big_endian" : "binary_little_endian", "");
    const auto add = [&bytes, isBigEndian](const auto &number) {
        std::string own(reinterpret_cast<const char *>(&number), sizeof(number));
        if (isBigEndian)
            std::reverse(own.begin(), own.end());
        bytes += own;
    };
    for (const std::vector<float> &vertex : PlyVertices) {
        for (const float number : vertex)
            add(number);
        bytes += "\x33\x66\xff";
    }
    for (const std::vector<int> &face : {std::vector<int>{0, 1, 2, 3}, std::vector<int>{4, 1, 2}}) {
        bytes += char(face.size());
        for (const int corner : face)
            add(std::int32_t(corner));
    }
    return bytes;
}

TEST_F(MeshReaders, plyFilesAreReadStraightAsTheLibraryReadsThem)
{
    const std::string faces = "4 0 1 2 3\n3 4 1 2\n";
    for (const Options::Split split : {Options::Split::One, Options::Split::Objects}) {
        Options options;
        options.split = split;
        options.scale = -2.0;
        // What it has none of is unknown all the same.
        ASSERT_EQ(
            read("quad.ply", plyText("element strip 0\nproperty int length\n", faces), options),
            "");
        const OssEvMeshFile::Reading library = reading;
        ASSERT_NE(library.parts[0].mesh, nullptr);
        EXPECT_EQ(library.parts[0].mesh->positions.size(), 4U);
        for (const std::string &content :
             {plyText("", faces), plyText("element edge 0\nproperty int vertex1\n", faces),
              plyBinary(false), plyBinary(true)}) {
            ASSERT_EQ(read("quad.ply", content, options), "");
            EXPECT_EQ(reading.faces, 3U);
            EXPECT_EQ(reading.objects, library.objects);
            EXPECT_EQ(reading.materials, library.materials);
            EXPECT_EQ(reading.uvSets, library.uvSets);
            EXPECT_EQ(reading.parts[0].name, library.parts[0].name);
            EXPECT_EQ(mesh().key(), library.parts[0].mesh->key());
        }
    }
    for (const char *bad : {"4 0 1 2 5\n3 4 1 2\n", "3 0 1 -2\n3 4 1 2\n"})
        EXPECT_NE(read("bad.ply", plyText("", bad)).find("a vertex that does not exist"),
                  std::string::npos)
            << bad;
}

TEST_F(MeshReaders, damagedPlyAndStlFilesAreRefusedOrReadButNeverMore)
{
    std::mt19937 random(31);
    for (const std::string &whole : {plyText("", "4 0 1 2 3\n3 4 1 2\n"), plyBinary(false),
                                     plyBinary(true), stlText("\n"), stlBinary(3)}) {
        const std::string name = whole.front() == 'p' ? "damaged.ply" : "damaged.stl";
        int refused = 0;
        for (int round = 0; round < 80; ++round) {
            std::string content = whole;
            if (round % 4 == 0)
                content.resize(random() % content.size());
            for (unsigned change = 1 + random() % 4; change > 0 && !content.empty(); --change)
                content[random() % content.size()] = char(random() % 256);
            refused += read(name, content).empty() ? 0 : 1;
            for (const OssEvMeshFile::Part &part : reading.parts) {
                for (const auto &triangle : part.mesh
                                                ? part.mesh->triangles
                                                : std::vector<std::array<std::uint32_t, 3>>()) {
                    for (const std::uint32_t corner : triangle)
                        ASSERT_LT(corner, part.mesh->positions.size());
                }
            }
        }
        EXPECT_GT(refused, 10) << name;
    }
}

} // namespace
