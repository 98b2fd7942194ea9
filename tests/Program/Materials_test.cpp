#include "Ossa/Commands/MaterialCommands.h"
#include "Ossa/Palettes/MaterialListModel.h"
#include "Ossa/Palettes/MaterialPictures.h"
#include "Ossa/Surfaces/LitSurface.h"
#include "Ossa/Viewer/MaterialDrop.h"
#include "OssModel/Evaluation/OssViewedNode.h"
#include "OssModel/Export/OssExportMaterials.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Project/OssNodeTypeWatch.h"
#include "OssModel/Types/OssMaterialTypes.h"
#include "OssModel/Types/OssSnDataKind.h"
#include "OssModel/Types/OssSnNodeType.h"
#include "Program/StartedProgram.h"

#include <QDir>
#include <QDropEvent>
#include <QMimeData>
#include <QSignalSpy>
#include <QTest>

namespace {

/// With a material of the user's own, "Materials/Toys/Plain Paint".
class Materials : public StartedProgram
{
protected:
    void SetUp() override
    {
        StartedProgram::SetUp();
        auto *group = qobject_cast<OssSnGroupNode *>(add("Misc/Group", "Paint"));
        OssSnBaseNode *shader = group->groupNetwork()->createNode(text("Shaders/Standard Surface"));
        wire(shader, group->createOutput(text("Material"), OssSnDataKind::Material));
        const OssResult published = OssNodeTypeWatch::instance()->publish(
            group, {OssMaterialTypes::categoryOf(text("Toys")), text("Plain Paint"), text("Red")});
        ASSERT_TRUE(published) << published.error().toStdString();
        StartedProgram::SetUp(); // a project without it
    }

    void TearDown() override
    {
        QFile::remove(OssNodeTypeWatch::filePath(m_key));
        OssNodeTypeWatch::instance()->start();
        QDir(MaterialPictures::folderPath()).removeRecursively();
    }

    static OssSnBaseNode *lookedAt(const OssShaderNetwork *network)
    {
        const OssSnBaseNode *viewer = network->viewerNode();
        return viewer ? viewer->inputNode(text("1")) : nullptr;
    }

    // No view has the focus here.
    const ExpectedLog m_fallback{"fallback onto current", ExpectedLog::Possible};
    const QString m_key = text("Materials/Toys/Plain Paint");
};

TEST_F(Materials, areListedByFolderAndFoundWithNoOtherType)
{
    MaterialPictures pictures;
    const MaterialListModel toys(&pictures, text("Toys"));
    ASSERT_EQ(toys.rowCount(), 1);
    EXPECT_EQ(toys.index(0).data().toString(), text("Plain Paint"));
    EXPECT_TRUE(MaterialListModel::folders().contains(text("Toys")));
    MaterialListModel all(&pictures, {});
    EXPECT_GT(all.rowCount(), 1) << "installed ones as well";
    for (int row = 0; row < all.rowCount(); ++row)
        EXPECT_TRUE(OssMaterialTypes::isMaterial(
            all.index(row).data(OssNodeTypeListModel::PathKeyRole).toString()));
    all.setSearchText(text("plainpaint"));
    ASSERT_EQ(all.rowCount(), 1);
    EXPECT_EQ(all.index(0).data(OssNodeTypeListModel::PathKeyRole).toString(), m_key);
}

TEST_F(Materials, aDropOnTheObjectIsOneStepThatShowsIt)
{
    QWidget view;
    new MaterialDrop(&view);
    QMimeData data;
    data.setData(OssNodeTypeListModel::MimeType, m_key.toUtf8());
    QDragEnterEvent enter({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&view, &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop({5.0, 5.0}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    const int nodes = m_network->nodeCount();
    QCoreApplication::sendEvent(&view, &drop);
    EXPECT_TRUE(drop.isAccepted());
    ASSERT_EQ(m_network->nodeCount(), nodes + 1);
    const OssSnBaseNode *made = m_network->selectedNodes().value(0);
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->nodeType()->pathKey, m_key);
    EXPECT_EQ(lookedAt(m_network), made);
    const QVector<LitSurface> lit = LitSurface::of(project(), m_network->geoEntity(),
                                                   OssViewedNode::now());
    ASSERT_EQ(lit.size(), 1);
    EXPECT_TRUE(OssExportMaterial::of(lit.first().shown.node).node)
        << "the material inside the group, with all of its channels";
    const QVector<OssExportMaterial> exported = OssExportMaterial::of(project());
    ASSERT_EQ(exported.size(), 1);
    EXPECT_EQ(exported.first().name(), made->name()) << "not that of the shader inside";
    history()->undo();
    EXPECT_EQ(m_network->nodeCount(), nodes) << "one step";

    for (const char *other : {"Filter/Blur", "Materials/", "Materials/Toys/Gone",
                              "Materials/Toys/Plain Paint\nMaterials/Toys/Plain Paint"}) {
        data.setData(OssNodeTypeListModel::MimeType, other);
        EXPECT_TRUE(MaterialDrop::materialIn(&data).isEmpty()) << other;
    }
}

TEST_F(Materials, anotherObjectThanTheOneInTheGraphGetsItWhenItIsMeant)
{
    OssGeoEntity *other = project()->addEntity(text("Other"));
    ASSERT_NE(other, nullptr);
    const OssShaderNetwork *graph = other->shadingGroups().first()->network();
    const int nodes = m_network->nodeCount();
    ASSERT_TRUE(MaterialCommands::putOnObject(m_key, other));
    EXPECT_EQ(m_network->nodeCount(), nodes);
    const OssSnBaseNode *made = graph->selectedNodes().value(0);
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(lookedAt(graph), made);
}

TEST_F(Materials, picturesAreDrawnOnceForWhatAMaterialIs)
{
    const auto drawn = [this](MaterialPictures *pictures) {
        const QSignalSpy made(pictures, &MaterialPictures::made);
        if (pictures->picture(m_key).isNull())
            EXPECT_TRUE(QTest::qWaitFor([&] { return !made.isEmpty(); }, 60000));
        return pictures->picture(m_key);
    };
    const QDir folder(MaterialPictures::folderPath());
    const int steps = history()->count();
    MaterialPictures first;
    const QImage picture = drawn(&first);
    EXPECT_EQ(history()->count(), steps) << "no step of the document";
    if (picture.isNull())
        GTEST_SKIP() << "there is no OpenGL here";
    EXPECT_EQ(qAlpha(picture.pixel(1, 1)), 0);
    EXPECT_EQ(qAlpha(picture.pixel(picture.rect().center())), 255);
    // Whoever comes next reads what is kept. The window's own palette keeps others there.
    QImage marked = picture;
    marked.fill(Qt::green);
    const QFileInfoList kept = folder.entryInfoList(QDir::Files);
    ASSERT_FALSE(kept.isEmpty());
    for (const QFileInfo &file : kept)
        ASSERT_TRUE(marked.save(file.filePath()));
    MaterialPictures second;
    EXPECT_EQ(drawn(&second).pixelColor(1, 1), QColor(Qt::green));
    // But no damaged file.
    for (const QFileInfo &damaged : kept) {
        QFile file(damaged.filePath());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("no picture");
    }
    MaterialPictures third;
    EXPECT_EQ(drawn(&third), picture);
}

} // namespace
