#include "../support/ModelFixture.h"
#include "OssCore/Values/OssColor.h"
#include "OssEvaluation/Geometry/OssEvMesh.h"
#include "OssModel/Evaluation/OssEvaluationService.h"
#include "OssModel/Evaluation/OssPatchList.h"
#include "OssModel/Graph/OssShaderNetworkIO.h"
#include "OssModel/Nodes/OssSnMaterialNode.h"
#include "OssModel/Nodes/OssSnResultKey.h"
#include "OssModel/Nodes/OssSnUpstream.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>

#include <set>

namespace {

/// Documents as pictures: what a wire carries, written to a file and read back.
class Evaluation : public ModelFixture
{
protected:
    OssSnBaseNode *color(double red, double green, double blue)
    {
        OssSnBaseNode *node = add("Procedural/Color");
        node->setAttribute(QStringLiteral("Color"),
                           QVariant::fromValue(OssColor(red, green, blue, 1.0)));
        return node;
    }

    OssResult bake(const OssSnBaseNode *node)
    {
        OssEvaluationService::BakeJob job;
        job.node = node;
        job.outputPoint = node->prefferedOutputPoint();
        job.entity = m_project->shadingGroups().first()->geoEntity();
        job.patches = {1001};
        job.resolution = 16;
        return OssEvaluationService::instance()->bake(
            job, m_folder.filePath(QStringLiteral("made.<UDIM>.png")));
    }

    /// The middle of the picture, or an invalid colour with the failure.
    QColor pixel(const OssSnBaseNode *node)
    {
        const OssResult baked = bake(node);
        EXPECT_TRUE(baked) << qPrintable(baked.error());
        const QImage image(m_folder.filePath(QStringLiteral("made.1001.png")));
        return baked && image.width() == 16 ? image.pixelColor(8, 8) : QColor();
    }

    QTemporaryDir m_folder;
};

OssSnBaseNode *valueOf(const OssSnMaterialNode *material, const char *stream)
{
    return material->groupNetwork()->node(QString::fromLatin1(stream) + QStringLiteral(" Value"));
}

} // namespace

TEST_F(Evaluation, whatOnlyPassesPixelsOnDoesNotChangeThem)
{
    OssSnBaseNode *red = color(1.0, 0.0, 0.0);
    OssSnBaseNode *dot = add("Misc/Dot");
    OssSnBaseNode *invert = add("Adjust/Invert");
    ASSERT_TRUE(wire(red, dot));
    ASSERT_TRUE(wire(dot, invert));
    EXPECT_EQ(pixel(dot), QColor(255, 0, 0));
    EXPECT_EQ(pixel(invert), QColor(0, 255, 255));
    invert->setBypassed(true);
    EXPECT_EQ(pixel(invert), QColor(255, 0, 0));
    invert->setBypassed(false);
    invert->setEnabled(0);
    EXPECT_EQ(pixel(invert), QColor(255, 0, 0));
}

TEST_F(Evaluation, aGroupMakesTheSamePictureAsItsNodes)
{
    OssSnBaseNode *red = color(1.0, 0.0, 0.0);
    OssSnBaseNode *invert = add("Adjust/Invert");
    OssSnBaseNode *after = add("Misc/Dot");
    ASSERT_TRUE(wire(red, invert));
    ASSERT_TRUE(wire(invert, after));
    ASSERT_TRUE(m_network->groupNodes({invert}));
    EXPECT_EQ(pixel(after), QColor(0, 255, 255));
}

TEST_F(Evaluation, aSharedSourceReachesEveryNodeThatAsksForIt)
{
    OssSnBaseNode *red = color(1.0, 0.0, 0.0);
    OssSnBaseNode *invert = add("Adjust/Invert");
    OssSnBaseNode *merge = add("Layer/Merge");
    ASSERT_TRUE(wire(red, invert));
    ASSERT_TRUE(wire(red, merge, "Base"));
    ASSERT_TRUE(wire(invert, merge, "Over"));
    EXPECT_EQ(pixel(merge), QColor(0, 255, 255));
    merge->setAttribute(QStringLiteral("Amount"), 0.0);
    EXPECT_EQ(pixel(merge), QColor(255, 0, 0));
}

TEST_F(Evaluation, everythingUpstreamIsVisitedOnceSourcesFirst)
{
    OssSnBaseNode *red = color(1.0, 0.0, 0.0);
    OssSnBaseNode *invert = add("Adjust/Invert");
    OssSnBaseNode *dot = add("Misc/Dot");
    OssSnBaseNode *merge = add("Layer/Merge");
    ASSERT_TRUE(wire(red, invert));
    ASSERT_TRUE(wire(red, dot));
    ASSERT_TRUE(wire(dot, merge, "Base"));
    ASSERT_TRUE(wire(invert, merge, "Over"));
    QVector<const OssSnBaseNode *> visited;
    OssSnUpstream::walk(merge, [&](const OssSnBaseNode *node, const auto &inputs) {
        for (const OssSnUpstream::Input &input : inputs) {
            EXPECT_TRUE(!input.source.node || visited.contains(input.source.node));
            EXPECT_TRUE(input.source.node == red || input.name != QLatin1String("Base"))
                << "through the dot";
        }
        visited.append(node);
    });
    EXPECT_EQ(visited.size(), 3);
    EXPECT_EQ(visited.last(), merge);
}

TEST_F(Evaluation, aLoopThroughTeleportsEndsWithAReason)
{
    OssSnBaseNode *invert = add("Adjust/Invert");
    OssSnBaseNode *broadcast = add("Teleport Broadcast/Broadcast");
    OssSnBaseNode *receiver = add("Teleport Receiver/Receiver");
    for (OssSnBaseNode *end : {broadcast, receiver})
        ASSERT_TRUE(end->setAttribute(QStringLiteral("channel"), QStringLiteral("Round")));
    ASSERT_TRUE(wire(invert, broadcast));
    ASSERT_TRUE(wire(receiver, invert));
    const OssResult baked = bake(invert);
    EXPECT_TRUE(baked.error().contains(invert->name())) << qPrintable(baked.error());
    EXPECT_FALSE(OssSnResultKey::of(invert, QStringLiteral("Output")).isEmpty());
}

TEST_F(Evaluation, whatCannotBeComputedIsSaidInWordsAndLeavesNoFile)
{
    OssSnBaseNode *dot = add("Misc/Dot", "Loose End");
    const OssResult baked = bake(dot);
    EXPECT_FALSE(baked);
    EXPECT_FALSE(baked.error().isEmpty());
    EXPECT_TRUE(QDir(m_folder.path()).isEmpty());
}

TEST_F(Evaluation, aBakeThatIsStoppedLeavesNoFile)
{
    OssSnBaseNode *red = color(1.0, 0.0, 0.0);
    OssEvaluationService::BakeJob job;
    job.node = red;
    job.outputPoint = red->prefferedOutputPoint();
    job.patches = {1001};
    job.resolution = 512;
    job.onProgress = [](int, int) {
        return false;
    };
    EXPECT_FALSE(OssEvaluationService::instance()->bake(
        job, m_folder.filePath(QStringLiteral("made.<UDIM>.exr"))));
    EXPECT_TRUE(QDir(m_folder.path()).isEmpty());
}

TEST_F(Evaluation, filesThatCannotBeWrittenAreRefusedBeforeAnythingIsComputed)
{
    OssEvaluationService::BakeJob job;
    job.node = color(1.0, 0.0, 0.0);
    job.outputPoint = job.node->prefferedOutputPoint();
    job.patches = {1001};
    job.resolution = 16;
    const auto reasonOf = [&](const QString &path) {
        return OssEvaluationService::instance()->bake(job, path).error();
    };
    for (const char *name : {"made.txt", "made", "made.psd"}) {
        const QString path = m_folder.filePath(QString::fromLatin1(name));
        EXPECT_TRUE(reasonOf(path).contains(path)) << name;
        EXPECT_TRUE(reasonOf(path).contains(QStringLiteral("written as"))) << name;
    }
    EXPECT_TRUE(QDir(m_folder.path()).isEmpty());
    QFile file(m_folder.filePath(QStringLiteral("file")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    const QString below = m_folder.filePath(QStringLiteral("file/made.png"));
    EXPECT_TRUE(reasonOf(below).contains(m_folder.filePath(QStringLiteral("file"))))
        << qPrintable(reasonOf(below));
    EXPECT_EQ(reasonOf(m_folder.filePath(QStringLiteral("deep/er/made.png"))), QString());
    EXPECT_TRUE(QFile::exists(m_folder.filePath(QStringLiteral("deep/er/made.png"))));
}

TEST_F(Evaluation, whatNobodyCanComputeIsNamed)
{
    const ExpectedLog expected("has the unknown type 'Elsewhere/Color'");
    OssSnBaseNode *invert = add("Adjust/Invert");
    ASSERT_TRUE(wire(color(1.0, 0.0, 0.0), invert));
    QByteArray nodes = OssShaderNetworkIO::nodesToText(invert->inputNodes() + QList{invert});
    nodes.replace("Procedural/Color", "Elsewhere/Color");
    QList<OssSnBaseNode *> inserted;
    ASSERT_TRUE(OssShaderNetworkIO::nodesFromText(m_network, nodes, {}, &inserted));
    const OssResult baked = bake(inserted.last());
    EXPECT_FALSE(baked);
    EXPECT_FALSE(baked.error().isEmpty());
    EXPECT_TRUE(QDir(m_folder.path()).isEmpty());
}

TEST_F(Evaluation, objectsHaveTheirShapesAndNoneWhereOneCannotBeRead)
{
    auto *service = OssEvaluationService::instance();
    OssGeoEntity *object = m_network->geoEntity();
    EXPECT_TRUE(service->mesh(object)->key() == OssEvShapes::plane()->key());
    const QStringList shapes = OssGeometrySource::shapes();
    std::set<OssEvKey> keys;
    for (const QString &shape : shapes) {
        object->setGeometry(shape);
        keys.insert(service->mesh(object)->key());
    }
    EXPECT_EQ(int(keys.size()), shapes.size());
    EXPECT_TRUE(service->mesh(nullptr)->key() == OssEvShapes::plane()->key());
    object->setGeometry(m_folder.filePath(QStringLiteral("none.obj")));
    EXPECT_EQ(service->mesh(object), nullptr);
    EXPECT_TRUE(logHas(QStringLiteral("none.obj")));
    OssDebugLog::instance()->clear();
    EXPECT_EQ(service->mesh(object), nullptr);
    EXPECT_FALSE(logHas(QStringLiteral("none.obj"))) << "it is told once";
    EXPECT_EQ(service->patches(object), QList<int>());
}

TEST_F(Evaluation, imageFilesAreRead)
{
    QImage picture(16, 16, QImage::Format_RGB32);
    picture.fill(Qt::green);
    const QString path = m_folder.filePath(QStringLiteral("green leaf 1001.png"));
    ASSERT_TRUE(picture.save(path));
    OssSnBaseNode *image = add("Misc/Image");
    ASSERT_TRUE(image->setAttribute(QStringLiteral("File"), path));
    EXPECT_EQ(pixel(image), QColor(Qt::green));
}

TEST(PatchLists, areNumbersAndRangesOrNothingAtAll)
{
    EXPECT_EQ(OssPatchList::fromText(QStringLiteral("1003, 1001-1002,1002")),
              (QList<int>{1001, 1002, 1003}));
    EXPECT_EQ(OssPatchList::fromText(QStringLiteral("9999")), QList<int>{9999});
    EXPECT_EQ(OssPatchList::toText({1001, 1002, 1003, 1011, 1013, 1014}),
              QStringLiteral("1001-1003,1011,1013-1014"));
    for (const char *bad : {"", "1000", "10000", "1002-1001", "1001-", "-1001", "1001-1002-1003",
                            "1001,x", "x-1001", "1001-99999999"})
        EXPECT_TRUE(OssPatchList::fromText(QString::fromLatin1(bad)).isEmpty()) << bad;
}

// --- pictures of materials

TEST_F(Evaluation, aMaterialsPictureIsALitBallOnNothing)
{
    auto *material = qobject_cast<OssSnMaterialNode *>(add("_System/Material"));
    const auto picture = [&] {
        const QString path = m_folder.filePath(QStringLiteral("ball.png"));
        const OssResult made = material->generateMaterialThumbnail(path, 32);
        EXPECT_TRUE(made) << qPrintable(made.error());
        return QImage(path);
    };
    valueOf(material, "Base Color")
        ->setAttribute(QStringLiteral("Color"), QVariant::fromValue(OssColor(0.6, 0.1, 0.1)));
    const QImage ball = picture();
    ASSERT_EQ(ball.size(), QSize(32, 32));
    for (const QPoint &corner : {QPoint(0, 0), QPoint(31, 0), QPoint(0, 31), QPoint(31, 31)})
        EXPECT_EQ(ball.pixelColor(corner).alpha(), 0);
    EXPECT_EQ(ball.pixelColor(16, 16).alpha(), 255);
    int soft = 0;
    for (int x = 0; x < ball.width(); ++x) {
        for (int y = 0; y < ball.height(); ++y) {
            const int alpha = ball.pixelColor(x, y).alpha();
            soft += alpha > 0 && alpha < 255 ? 1 : 0;
        }
    }
    EXPECT_GT(soft, 8) << "the rim is soft";
    EXPECT_GT(ball.pixelColor(16, 16).red(), 2 * ball.pixelColor(16, 16).green());
    const QColor lit = ball.pixelColor(10, 9);
    const QColor dark = ball.pixelColor(27, 23);
    EXPECT_GT(lit.red(), dark.red() + 40);
    EXPECT_GT(dark.red(), 0) << "some light comes from everywhere";

    // A rough surface has no highlight, a metal's is of its colour and all else is darker.
    valueOf(material, "Roughness")->setAttribute(QStringLiteral("Value"), 1.0);
    EXPECT_LT(picture().pixelColor(12, 12).green(), ball.pixelColor(12, 12).green() + 1);
    valueOf(material, "Metallic")->setAttribute(QStringLiteral("Value"), 1.0);
    EXPECT_LT(picture().pixelColor(20, 20).red(), ball.pixelColor(20, 20).red());
}

// Streams that are not there are as usual; ones that cannot be computed give no picture.
TEST_F(Evaluation, aMaterialHasAPictureWhereItsStreamsCanBeComputed)
{
    auto *material = qobject_cast<OssSnMaterialNode *>(add("_System/Material"));
    const QString path = m_folder.filePath(QStringLiteral("none.png"));
    for (const char *stream : {"Base Color", "Roughness", "Metallic"}) {
        const int steps = OssUndoManager::instance()->index();
        material->groupNetwork()->removeNodes({valueOf(material, stream)});
        EXPECT_FALSE(material->generateMaterialThumbnail(path, 32)) << stream;
        EXPECT_FALSE(QFile::exists(path)) << stream;
        material->removeOutputPoint(QString::fromLatin1(stream));
        EXPECT_TRUE(material->generateMaterialThumbnail(path, 32)) << stream;
        QFile::remove(path);
        OssUndoManager::instance()->setIndex(steps);
    }
    EXPECT_FALSE(
        material->generateMaterialThumbnail(m_folder.filePath(QStringLiteral("ball.png/x")), 32));
    material->setShaderModelId({});
    EXPECT_FALSE(material->generateMaterialThumbnail(path, 32));
}
