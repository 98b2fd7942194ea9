// What a file holds, made into parts: objects, materials, transformations, sets of coordinates.

#include "OssEvaluation/Geometry/OssEvMeshFile.h"
#include "OssEvaluation/Geometry/OssEvPolygons.h"
#include "OssEvaluation/TestFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>

namespace {

using OssEvMeshCheck::Kind;
using OssEvMeshFile::Options;
using OssEvMeshFile::Reading;
using Vector3 = OssEvMesh::Vector3;

class MeshFiles : public testing::Test
{
protected:
    std::string read(const std::string &name, const std::string &content,
                     const Options &options = {})
    {
        reading = {};
        return OssEvMeshFile::read(folder.write(name, content), options, &reading).error();
    }

    std::vector<std::string> partNames() const
    {
        std::vector<std::string> names;
        for (const auto &part : reading.parts)
            names.push_back(part.name);
        return names;
    }

    const OssEvMesh &mesh(std::size_t part = 0) const { return *reading.parts.at(part).mesh; }

    TestFolder folder;
    Reading reading;
};

// Two objects, the second of two materials.
const char *const House = "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nvt 0.1 0.1\nvt 0.4 0.1\nvt 0.4 0.4\n"
                          "vt 0.1 0.4\nvt 0.6 0.6\nvt 0.9 0.6\nvt 0.9 0.9\n"
                          "o Wall\nusemtl Stone\nf 1/1 2/2 3/3 4/4\n"
                          "o Door\nusemtl Wood\nf 1/5 2/6 3/7\nusemtl Iron\nf 1/8 3/9 4/10\n"
                          "vt 1.1 0.1\nvt 1.4 0.1\nvt 1.4 0.4\n";

Options split(Options::Split how)
{
    Options options;
    options.split = how;
    return options;
}

TEST_F(MeshFiles, facesThatNameWhatIsNotThereAreLeftOutAndTold)
{
    const std::string stray = std::string(House) + "f 1/1 2/2 99/3\nf 1/1 2/77 3/3\nf -4 -30 -1\n";
    ASSERT_EQ(read("stray.obj", stray, split(Options::Split::Objects)), "");
    EXPECT_EQ(partNames(), (std::vector<std::string>{"Wall", "Door"}));
    EXPECT_EQ(reading.materials, (std::vector<std::string>{"Stone", "Wood", "Iron"}));
    EXPECT_EQ(reading.faces, 4U);
    ASSERT_EQ(reading.parts.front().report.size(), 1U);
    EXPECT_EQ(reading.parts.front().report.front().kind, Kind::LeftOut);
    EXPECT_EQ(
        reading.parts.front().report.front().text,
        "3 faces name what the file does not have, and are left out (line 23, \"f 1/1 2/2 99/3\")");
    EXPECT_TRUE(reading.parts.front().mesh);
}

TEST_F(MeshFiles, whatCannotBeReadNamesTheFileTheReasonAndWhatToDo)
{
    const std::string good = House;
    const std::string half = "solid wall\nfacet normal 0 0 1\nouter loop\nvertex 0 0 0\nvertex 1";
    const std::string garbage = std::string("\x7f\x45\x4c\x46\0\1\2", 7) + std::string(200, '\xfe');

    struct Case
    {
        const char *name;
        std::string content;
        const char *reason;
        const char *advice;
    };

    const char *const again = "export it again from where it was made";
    const std::vector<Case> cases{
        {"empty.obj", "", "no faces", "export polygons"},
        {"points.obj", "v 0 0 0\nv 1 0 0\n", "no faces", "export polygons"},
        {"nan.obj", "v nan 0 0\n" + good, "no numbers", again},
        {"infinite.obj", "v inf 0 0\n" + good, "no numbers", again},
        {"words.obj", "v here there 0\n" + good, "line 1, \"v here there 0\"", again},
        {"short.obj", good + "v 1 2\n", "line 23, \"v 1 2\"", again},
        {"commas.obj", "v 0,5 1,5 0\n" + good, "line 1", again},
        {"uvs.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n", "no texture coordinates", "unwrap"},
        {"garbage.obj", garbage, "no faces", "export polygons"},
        {"garbage.fbx", garbage, "no FBX file, or it is damaged", again},
        {"garbage.glb", garbage, "no GLB file, or it is damaged", again},
        {"garbage.gltf", garbage, "no GLTF file, or it is damaged", again},
        {"garbage.ply", garbage, "no PLY file, or it is damaged", again},
        {"garbage.stl", garbage, "it ", again},
        {"head.fbx", "Kaydara FBX Binary  " + std::string("\0\x1a\0\x84\x1c\0\0\xff\xff", 9),
         "damaged", again},
        {"open.fbx", "; FBX 7.4.0 project file\nObjects: {\n Geometry: 1, \"Geometry::\", {\n",
         "damaged", again},
        {"empty.gltf", "", "damaged", again},
        {"open.gltf", R"({"asset":{"version":"2.0"},"meshes":[)", "damaged", again},
        {"lost.gltf",
         R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[0]}],"nodes":[{"mesh":0}],)"
         R"("meshes":[{"primitives":[{"attributes":{"POSITION":7}}]}]})",
         "damaged", again},
        {"head.ply", "ply\nformat ascii 1.0\nelement vertex 3\n", "its header has no end", again},
        {"half.stl", half, "it ", "xport "},
        {"good.txt", half, "no mesh file", "OBJ, FBX, glTF, PLY and STL"},
        {"other.fbx", R"(<?xml version="1.0"?><COLLADA/>)", "no FBX file", again},
    };
    for (const Case &one : cases) {
        const std::string path = folder.write(one.name, one.content);
        std::shared_ptr<const OssEvMesh> made;
        const std::string said = OssEvMeshFile::read(path, &made).error();
        for (const std::string &part : {path, std::string(one.reason), std::string(one.advice)})
            EXPECT_NE(said.find(part), std::string::npos) << one.name << ": " << said;
    }
}

TEST_F(MeshFiles, objFilesAreReadLineByLineHoweverTheyAreWritten)
{
    const std::string loose = "# by hand\r\n\r\n  v 0 0 0 1 0 0\r\nv 2 0 0 2\r\nv 1 1 0 # third\r\n"
                              "vt 0 0\r\nvt 1 0 0\r\nvt 1 1\r\nvn 0 0 2\r\n"
                              "g Roof\r\nusemtl Red Clay \r\nf -3/-3/1 \\\r\n -2/-2/1 -1/-1/1\r\n"
                              "l 1 2\r\np 1\r\ns off\r\ng Roof Again\r\nf 1/1 2/2 3/3";
    ASSERT_EQ(read("loose.obj", loose, split(Options::Split::Objects)), "");
    EXPECT_EQ(partNames(), (std::vector<std::string>{"Roof", "Roof Again"}));
    EXPECT_EQ(reading.materials, (std::vector<std::string>{"Red Clay"}));
    EXPECT_EQ(mesh().positions.at(1), (Vector3{1, 0, 0})) << "its fourth number divides";
    EXPECT_EQ(mesh().normals.at(1), (Vector3{0, 0, 1}));
    EXPECT_EQ(mesh().colors.at(0), (std::array<float, 4>{1, 0, 0, 1}));
    EXPECT_EQ(mesh().colors.at(1), (std::array<float, 4>{1, 1, 1, 1}));
    EXPECT_EQ(mesh(1).triangles.size(), 1U) << "the last line has no end";
    std::string large = "v 0 0 0\nv 1 0 0\nv 1 1 0\nvt 0 0\nvt 0.001 0\nvt 0.001 0.001\n";
    for (int i = 0; i < 150000; ++i)
        large += "f 1/1 2/2 3/3\n"; // more than is in memory at a time
    ASSERT_EQ(read("large.obj", large), "");
    EXPECT_EQ(reading.faces, 150000U);
    EXPECT_EQ(mesh().positions.size(), 3U);
}

TEST_F(MeshFiles, numbersNeedNoDigitBeforeThePoint)
{
    ASSERT_EQ(read("points.obj", "v .5 -.25 0\nv 1 +.5 0\nv 1 1 .0\nvt .1 .2\nvt 1 0\nvt 1 1\n"
                                 "f 1/1 2/2 3/3\n"),
              "");
    EXPECT_EQ(mesh().positions.front(), (Vector3{0.5F, -0.25F, 0.0F}));
    EXPECT_EQ(mesh().positions.at(1)[1], 0.5F);
    EXPECT_TRUE(reading.parts.front().report.empty());
}

TEST_F(MeshFiles, objectsAndMaterialSlotsBecomePartsAsAsked)
{
    ASSERT_EQ(read("house.obj", House), "");
    EXPECT_EQ(partNames(), (std::vector<std::string>{""}));
    EXPECT_EQ(reading.objects, (std::vector<std::string>{"Wall", "Door"}));
    EXPECT_EQ(reading.materials, (std::vector<std::string>{"Stone", "Wood", "Iron"}));
    EXPECT_EQ(reading.faces, 4U);
    EXPECT_EQ(mesh().materialNames, reading.materials);
    EXPECT_EQ(mesh().materials, (std::vector<std::int32_t>{0, 0, 1, 2}));
    EXPECT_EQ(mesh().faces, (std::vector<std::int32_t>{0, 0, 1, 2}));
    EXPECT_EQ(mesh().patches(), (std::vector<int>{1001, 1002}));

    ASSERT_EQ(read("house.obj", House, split(Options::Split::Objects)), "");
    EXPECT_EQ(partNames(), (std::vector<std::string>{"Wall", "Door"}));
    EXPECT_EQ(mesh(0).triangles.size(), 2U);
    EXPECT_EQ(mesh(0).patches(), (std::vector<int>{1001}));
    EXPECT_EQ(mesh(1).materialNames, (std::vector<std::string>{"Wood", "Iron"}));
    EXPECT_EQ(mesh(1).positions.size(), 6U);

    ASSERT_EQ(read("house.obj", House, split(Options::Split::Materials)), "");
    EXPECT_EQ(partNames(), (std::vector<std::string>{"Stone", "Wood", "Iron"}));
    EXPECT_EQ(mesh(2).patches(), (std::vector<int>{1002}));
}

TEST_F(MeshFiles, sameVerticesBecomeOneAndOthersStayApart)
{
    // The library hands over six vertices; two corners are shared, and one has other coordinates.
    ASSERT_EQ(read("quad.obj",
                   "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nvt 0 0\nvt 1 0\nvt 1 1\nvt 0 1\n"
                   "vt 0.5 0.5\nf 1/1 2/2 3/3\nf 1/1 3/5 4/4\n"),
              "");
    EXPECT_EQ(mesh().positions.size(), 5U);
}

TEST_F(MeshFiles, isScaledAndTurnedUpright)
{
    const std::string text = "v 0 0 1\nv 1 0 1\nv 1 2 3\nvt 0 0\nvt 1 0\nvt 1 1\nf 1/1 2/2 3/3\n";
    Options options;
    options.scale = 10.0;
    options.up = Options::Up::Z;
    ASSERT_EQ(read("up.obj", text, options), "");
    const auto &places = mesh().positions;
    const auto tall = std::max_element(places.begin(), places.end(),
                                       [](const auto &a, const auto &b) { return a[1] < b[1]; });
    EXPECT_NEAR((*tall)[0], 10.0F, 1e-4F);
    EXPECT_NEAR((*tall)[1], 30.0F, 1e-4F) << "what was z points up";
    EXPECT_NEAR((*tall)[2], -20.0F, 1e-4F) << "nothing is mirrored";
}

/// A triangle under a node that mirrors and moves, with colours and two sets of coordinates.
std::string sceneText()
{
    const std::vector<float> numbers{
        0,    0,    0,     1,    0,    0,     0, 1, 0,             // positions
        0,    0,    1,     0,    0,    1,                          // first set
        0.5F, 0.5F, 0.75F, 0.5F, 0.5F, 0.75F,                      // second set
        1,    0,    0,     1,    0,    1,     0, 1, 0, 0, 1, 0.5F, // colours
    };
    std::string bytes(numbers.size() * sizeof(float), '\0');
    std::memcpy(bytes.data(), numbers.data(), bytes.size());
    const char *digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string coded;
    for (std::size_t i = 0; i + 2 < bytes.size(); i += 3) {
        const auto at = [&](std::size_t k) {
            return unsigned(static_cast<unsigned char>(bytes[i + k]));
        };
        const unsigned word = at(0) << 16U | at(1) << 8U | at(2);
        for (const unsigned shift : {18U, 12U, 6U, 0U})
            coded += digits[word >> shift & 63U];
    }
    return R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[0]}],
        "nodes":[{"name":"Group","translation":[5,0,0],"scale":[-2,2,2],"children":[1]},
                 {"name":"Leaf","mesh":0}],
        "materials":[{"name":"Green"}],
        "meshes":[{"name":"M","primitives":[{"attributes":{"POSITION":0,"TEXCOORD_0":1,
            "TEXCOORD_1":2,"COLOR_0":3},"material":0}]}],
        "accessors":[
            {"bufferView":0,"componentType":5126,"count":3,"type":"VEC3","min":[0,0,0],"max":[1,1,0]},
            {"bufferView":1,"componentType":5126,"count":3,"type":"VEC2"},
            {"bufferView":2,"componentType":5126,"count":3,"type":"VEC2"},
            {"bufferView":3,"componentType":5126,"count":3,"type":"VEC4"}],
        "bufferViews":[{"buffer":0,"byteOffset":0,"byteLength":36},
            {"buffer":0,"byteOffset":36,"byteLength":24},{"buffer":0,"byteOffset":60,"byteLength":24},
            {"buffer":0,"byteOffset":84,"byteLength":48}],
        "buffers":[{"byteLength":132,"uri":"data:application/octet-stream;base64,)"
           + coded + R"("}]})";
}

TEST_F(MeshFiles, nodesPutTheirMeshesAndColorsAndSetsAreRead)
{
    ASSERT_EQ(read("leaf.gltf", sceneText(), split(Options::Split::Objects)), "");
    EXPECT_EQ(partNames(), (std::vector<std::string>{"Leaf"}));
    EXPECT_EQ(reading.uvSets, (std::vector<std::string>{"UV 1", "UV 2"}));
    ASSERT_EQ(mesh().positions.size(), 3U);
    std::vector<Vector3> places = mesh().positions;
    std::sort(places.begin(), places.end());
    EXPECT_EQ(places, (std::vector<Vector3>{{3, 0, 0}, {5, 0, 0}, {5, 2, 0}}));
    // Mirrored, the front still is where it was.
    for (const Vector3 &normal : mesh().normals)
        EXPECT_NEAR(normal[2], 1.0F, 1e-5F);
    const auto &triangle = mesh().triangles.front();
    const Vector3 &a = mesh().positions[triangle[0]];
    const Vector3 &b = mesh().positions[triangle[1]];
    const Vector3 &c = mesh().positions[triangle[2]];
    EXPECT_GT((b[0] - a[0]) * (c[1] - a[1]) - (c[0] - a[0]) * (b[1] - a[1]), 0.0F);
    ASSERT_EQ(mesh().colors.size(), 3U);
    EXPECT_NE(std::find(mesh().colors.begin(), mesh().colors.end(),
                        (std::array<float, 4>{0, 0, 1, 0.5F})),
              mesh().colors.end());

    Options options;
    options.uvSet = "UV 2";
    ASSERT_EQ(read("leaf.gltf", sceneText(), options), "");
    for (const auto &uv : mesh().uvs)
        EXPECT_GE(std::min(uv[0], uv[1]), 0.24F) << "of the second set";
    options.uvSet = "Missing";
    ASSERT_EQ(read("leaf.gltf", sceneText(), options), "");
    EXPECT_EQ(reading.parts[0].mesh, nullptr);
    ASSERT_EQ(reading.parts[0].report.size(), 1U);
    EXPECT_EQ(reading.parts[0].report[0].text, "\"Leaf\" has no texture coordinates \"Missing\"");
    EXPECT_EQ(reading.uvSets.size(), 2U) << "what could be chosen is told all the same";
}

// Placed and mirrored nodes without names, several slots and UV sets, strips and fans, vertices that are the
// same, indices and colours of all sizes: read straight, and by the library, which alone reads a file with
// an extension that has to be known.
TEST_F(MeshFiles, gltfReadStraightIsWhatTheLibraryMakesOfIt)
{
    const char *root = std::getenv("OSSA_ROOT");
    ASSERT_NE(root, nullptr) << "OSSA_ROOT names the source tree";
    std::ifstream stream(std::string(root) + "/tests/OssEvaluation/parts.gltf");
    std::ostringstream bytes;
    bytes << stream.rdbuf();
    const std::string text = bytes.str();
    ASSERT_EQ(text.front(), '{');
    using Split = OssEvMeshFile::Options::Split;
    for (const Split split : {Split::One, Split::Objects, Split::Materials}) {
        OssEvMeshFile::Options options;
        options.split = split;
        options.scale = 2.0;
        OssEvMeshFile::Reading straight;
        OssEvMeshFile::Reading library;
        const std::string path = folder.write("parts.gltf", text);
        ASSERT_TRUE(OssEvMeshFile::read(path, options, &straight));
        folder.write("parts.gltf", R"({"extensionsUsed":["KHR_materials_unlit"],)"
                                   R"("extensionsRequired":["KHR_materials_unlit"],)"
                                       + text.substr(1));
        ASSERT_TRUE(OssEvMeshFile::read(path, options, &library));
        EXPECT_EQ(straight.objects, library.objects);
        EXPECT_EQ(straight.materials, library.materials);
        EXPECT_EQ(straight.uvSets, library.uvSets);
        EXPECT_EQ(straight.faces, 40U);
        ASSERT_EQ(straight.parts.size(), library.parts.size());
        for (std::size_t i = 0; i < straight.parts.size(); ++i) {
            EXPECT_EQ(straight.parts[i].name, library.parts[i].name);
            ASSERT_TRUE(straight.parts[i].mesh && library.parts[i].mesh);
            EXPECT_EQ(straight.parts[i].mesh->key(), library.parts[i].mesh->key());
        }
    }
}

TEST_F(MeshFiles, objectsOfOneNameStayTwo)
{
    const std::string node = R"({"name":"Leaf","mesh":0},)";
    std::string twice = sceneText();
    twice.insert(twice.find(R"({"name":"Leaf")"), node);
    twice.replace(twice.find(R"("children":[1])"), 14, R"("children":[1,2])");
    ASSERT_EQ(read("twice.gltf", twice, split(Options::Split::Objects)), "");
    EXPECT_EQ(partNames(), (std::vector<std::string>{"Leaf", "Leaf 2"}));
    EXPECT_EQ(reading.faces, 2U);
}

TEST_F(MeshFiles, otherFormatsAreRead)
{
    const std::string ply = "ply\nformat ascii 1.0\nelement vertex 3\nproperty float x\n"
                            "property float y\nproperty float z\nproperty float s\n"
                            "property float t\nproperty uchar red\nproperty uchar green\n"
                            "property uchar blue\nelement face 1\n"
                            "property list uchar int vertex_indices\nend_header\n"
                            "0 0 0 0 0 255 0 0\n1 0 0 1 0 255 0 0\n0 1 0 0 1 255 0 0\n3 0 1 2\n";
    ASSERT_EQ(read("red.ply", ply, split(Options::Split::Objects)), "");
    EXPECT_EQ(partNames(), (std::vector<std::string>{"red"})) << "after the file";
    ASSERT_EQ(mesh().colors.size(), 3U);
    EXPECT_EQ(mesh().colors[0], (std::array<float, 4>{1, 0, 0, 1}));

    const std::string stl =
        "solid Part\nfacet normal 0 0 1\nouter loop\nvertex 0 0 0\nvertex 1 0 0\n"
        "vertex 0 1 0\nendloop\nendfacet\nendsolid Part\n";
    ASSERT_EQ(read("part.stl", stl), "");
    EXPECT_EQ(reading.parts[0].mesh, nullptr) << "the format has no texture coordinates";
    ASSERT_FALSE(reading.parts[0].report.empty());
    EXPECT_EQ(reading.parts[0].report[0].kind, Kind::NoUvs);
    Options options;
    options.unwraps = true;
    ASSERT_EQ(read("part.stl", stl, options), "");
    ASSERT_NE(reading.parts[0].mesh, nullptr);
    EXPECT_EQ(mesh().patches(), (std::vector<int>{1001}));
}

/// A quad of 100 units that stands on its edge where `up` (1: y, 2: z) is the axis that points upwards.
std::string fbxText(int up, double unit)
{
    return "; FBX 7.3.0 project file\nFBXHeaderExtension: { FBXHeaderVersion: 1003\n FBXVersion: 7300 }\n"
           "GlobalSettings: { Version: 1000\n Properties70: {\n"
           "P: \"UpAxis\", \"int\", \"Integer\", \"\","
           + std::to_string(up)
           + "\nP: \"UpAxisSign\", \"int\", \"Integer\", \"\",1\n"
             "P: \"FrontAxis\", \"int\", \"Integer\", \"\","
           + std::to_string(up == 1 ? 2 : 1) + "\nP: \"FrontAxisSign\", \"int\", \"Integer\", \"\","
           + std::to_string(up == 1 ? 1 : -1)
           + "\nP: \"CoordAxis\", \"int\", \"Integer\", \"\",0\n"
             "P: \"CoordAxisSign\", \"int\", \"Integer\", \"\",1\n"
             "P: \"UnitScaleFactor\", \"double\", \"Number\", \"\","
           + std::to_string(unit)
           + "\n } }\nObjects: {\n Geometry: 10, \"Geometry::\", \"Mesh\" {\n"
             "Vertices: *12 { a: 0,0,0,100,0,0,"
           + std::string(up == 1 ? "100,100,0,0,100,0" : "100,0,100,0,0,100")
           + " }\nPolygonVertexIndex: *4 { a: 0,1,2,-4 }\n"
             "LayerElementUV: 0 { Version: 101\n Name: \"Paint\"\n"
             "MappingInformationType: \"ByPolygonVertex\"\n"
             "ReferenceInformationType: \"IndexToDirect\"\n"
             "UV: *8 { a: 0,0,1,0,1,1,0,1 }\n UVIndex: *4 { a: 0,1,2,3 } }\n"
             "Layer: 0 { Version: 100\n LayerElement: { Type: \"LayerElementUV\"\n"
             "TypedIndex: 0 } } }\n"
             "Model: 20, \"Model::Sign\", \"Mesh\" { Version: 232 } }\n"
             "Connections: {\n C: \"OO\",20,0\n C: \"OO\",10,20\n }\n";
}

TEST_F(MeshFiles, fbxSaysItsUnitItsAxisAndTheNamesOfItsSets)
{
    for (const int up : {1, 2}) {
        for (const double unit : {1.0, 100.0}) {
            SCOPED_TRACE(std::to_string(up) + " " + std::to_string(unit));
            ASSERT_EQ(read("sign.fbx", fbxText(up, unit), split(Options::Split::Objects)), "");
            EXPECT_EQ(partNames(), (std::vector<std::string>{"Sign"}));
            EXPECT_EQ(reading.uvSets, (std::vector<std::string>{"Paint"}));
            ASSERT_EQ(mesh().positions.size(), 4U);
            Vector3 high{-1e9F, -1e9F, -1e9F};
            for (const Vector3 &place : mesh().positions) {
                for (std::size_t k = 0; k < 3; ++k)
                    high[k] = std::max(high[k], place[k]);
            }
            EXPECT_NEAR(high[0], unit, 1e-3) << "metres";
            EXPECT_NEAR(high[1], unit, 1e-3) << "upwards";
            EXPECT_NEAR(high[2], 0.0, 1e-3);
        }
    }
}

TEST_F(MeshFiles, stopsWhenToldAndSaysHowFarItIs)
{
    OssEvCancel cancel;
    cancel.cancel();
    reading = {};
    const std::string path = folder.write("house.obj", House);
    EXPECT_EQ(OssEvMeshFile::read(path, {}, &reading, &cancel).error(),
              "Cannot read \"" + path + "\": it was stopped");
    std::vector<double> shares;
    ASSERT_TRUE(OssEvMeshFile::read(path, {}, &reading, nullptr,
                                    [&shares](double share) { shares.push_back(share); }));
    ASSERT_FALSE(shares.empty());
    EXPECT_LE(*std::max_element(shares.begin(), shares.end()), 1.0);
}

TEST(MeshPolygons, leaveNoHolesWhateverTheirShape)
{
    const std::vector<std::vector<Vector3>> shapes{
        {{0, 0, 0}, {2, 0, 0}, {0.5F, 0.5F, 0}, {0, 2, 0}},      // hollow
        {{0, 0, 0}, {4, 0, 0}, {4, 4, 0}, {2, 1, 0}, {0, 4, 0}}, // hollow
        {{0, 0, 1}, {0, 3, 1}, {3, 3, 1}, {3, 2, 1}, {1, 2, 1}, {1, 1, 1}, {3, 1, 1}, {3, 0, 1}},
        {{0, 0, 0}, {0, 0, 1}, {0, 1, 1}, {0, 1, 0.5F}, {0, 1, 0}}, // on a line
    };
    for (std::size_t turn = 0; turn < 8 * shapes.size(); ++turn) {
        const std::vector<Vector3> &shape = shapes[turn / 8];
        const auto first = std::uint32_t(turn % 8); // whichever corner begins
        std::vector<std::uint32_t> corners;
        for (std::uint32_t i = 0; i < shape.size(); ++i)
            corners.push_back((i + first) % std::uint32_t(shape.size()));
        std::vector<std::array<std::uint32_t, 3>> triangles;
        OssEvPolygons::addTriangles(shape, corners, &triangles);
        ASSERT_EQ(triangles.size(), shape.size() - 2);
        // Both as vectors: what folds over would be more than the whole.
        const auto doubleArea = [&shape](const std::vector<std::uint32_t> &round) {
            Vector3 sum{};
            for (std::size_t i = 0; i < round.size(); ++i) {
                const Vector3 &a = shape[round[i]];
                const Vector3 &b = shape[round[(i + 1) % round.size()]];
                for (std::size_t k = 0; k < 3; ++k)
                    sum[k] += a[(k + 1) % 3] * b[(k + 2) % 3] - a[(k + 2) % 3] * b[(k + 1) % 3];
            }
            return std::hypot(sum[0], sum[1], sum[2]);
        };
        float parts = 0.0F;
        for (const auto &triangle : triangles)
            parts += doubleArea({triangle[0], triangle[1], triangle[2]});
        EXPECT_NEAR(parts, doubleArea(corners), 1e-5F);
    }
}

} // namespace
