#include "ExportFixture.h"
#include "OssEvaluation/Geometry/OssEvMesh.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QtEndian>

#include <algorithm>

namespace {

using GltfExport = Export;

/// Of the JSON part of a binary glTF file.
QJsonObject sceneIn(const QString &path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    EXPECT_EQ(bytes.left(4), QByteArray("glTF"));
    const auto length = qFromLittleEndian<quint32>(bytes.constData() + 12);
    return QJsonDocument::fromJson(bytes.mid(20, int(length))).object();
}

void expectValid(const QString &path)
{
    const QString validator = qEnvironmentVariable("OSSA_GLTF_VALIDATOR");
    if (validator.isEmpty())
        GTEST_SKIP() << "OSSA_GLTF_VALIDATOR names no script";
    QProcess process;
    process.start(text("node"), {validator, path});
    ASSERT_TRUE(process.waitForFinished(60000));
    EXPECT_EQ(process.exitCode(), 0)
        << process.readAll().constData() << process.readAllStandardError().constData();
}

TEST_F(GltfExport, oneGltfFileHoldsObjectsPatchByPatchAndPassesTheValidator)
{
    usePatches();
    wire(add("Procedural/Noise/Fractal Noise"), m_shader, "Roughness");
    wire(color(0.5, 0.5, 1), m_shader, "Normal");
    m_shader->setAttribute(text("Opacity"), 0.5);
    m_shader->setAttribute(text("ClearCoat"), 0.75);
    add("Shaders/Standard Surface", "Spare");
    m_options.file = m_folder.filePath(text("deep/wall.glb"));
    ASSERT_TRUE(OssExportPlan::makeGltf(m_project, m_options, &m_plan));
    EXPECT_EQ(
        m_plan.notes,
        QStringList{text("\"plane/Spare\" is left out: plane has no faces with a material slot of "
                         "that name")});
    const OssResult written = OssExportManager::instance()->run(m_plan, {});
    ASSERT_TRUE(written) << qPrintable(written.error());
    EXPECT_EQ(OssExportManager::instance()->job()->written(), QStringList{m_options.file});
    const QJsonObject scene = sceneIn(m_options.file);
    EXPECT_EQ(scene[text("nodes")].toArray().size(), 1);
    const QJsonArray primitives =
        scene[text("meshes")].toArray().first()[text("primitives")].toArray();
    EXPECT_EQ(primitives.size(), 2) << "one for each patch";
    const QJsonArray materials = scene[text("materials")].toArray();
    ASSERT_EQ(materials.size(), 2);
    EXPECT_EQ(materials.first()[text("name")].toString(), text("Wall.1001"));
    EXPECT_EQ(materials.first()[text("alphaMode")].toString(), text("BLEND"));
    EXPECT_EQ(scene[text("images")].toArray().size(), 8) << "base, packed, normal, coat, no light";
    const QJsonObject coat = materials.first()[text("extensions")][text("KHR_materials_clearcoat")]
                                 .toObject();
    EXPECT_EQ(coat[text("clearcoatFactor")].toDouble(), 1.0);
    EXPECT_TRUE(coat[text("clearcoatRoughnessTexture")].isObject());
    EXPECT_TRUE(primitives.first()[text("attributes")].toObject().contains(text("TANGENT")));
    expectValid(m_options.file);
}

TEST_F(GltfExport, ofSeveralMaterialsEachFillsTheSlotOfItsNameInAGltfFile)
{
    OssGeometrySource ball;
    ball.shape = text("shaderBall");
    m_network->geoEntity()->setSource(ball);
    m_shader->setName(text("Ball"));
    OssSnBaseNode *foot = add("Shaders/Standard Surface", "foot");
    foot->setAttribute(text("ClearCoat"), 1.0);
    add("Shaders/Standard Surface", "Spare");
    m_options.file = m_folder.filePath(text("ball.glb"));
    ASSERT_TRUE(OssExportPlan::makeGltf(m_project, m_options, &m_plan));
    ASSERT_EQ(m_plan.notes.size(), 1);
    EXPECT_TRUE(m_plan.notes.first().contains(text("Spare")));
    ASSERT_TRUE(OssExportManager::instance()->run(m_plan, {}));
    const QJsonObject scene = sceneIn(m_options.file);
    const QJsonArray primitives =
        scene[text("meshes")].toArray().first()[text("primitives")].toArray();
    const QJsonArray materials = scene[text("materials")].toArray();
    const QJsonArray accessors = scene[text("accessors")].toArray();
    ASSERT_EQ(primitives.size(), 2);
    ASSERT_EQ(materials.size(), 2);
    const auto mesh = OssEvShapes::shaderBall();
    for (int i = 0; i < 2; ++i) {
        const int slot = primitives[i][text("material")].toInt();
        EXPECT_EQ(materials[slot][text("name")].toString(),
                  i == 0 ? text("Ball.1001") : text("foot.1001"));
        const auto faces = std::count(mesh->materials.begin(), mesh->materials.end(), i);
        EXPECT_EQ(accessors[primitives[i][text("indices")].toInt()][text("count")].toInt(),
                  3 * int(faces));
    }
    EXPECT_FALSE(materials[0].toObject().contains(text("extensions")));
    EXPECT_TRUE(materials[1].toObject().contains(text("extensions")));
    expectValid(m_options.file);
}

} // namespace
