#include "OssCore/Values/OssColor.h"
#include "OssEvaluation/Files/OssEvImageFiles.h"
#include "OssEvaluation/Paint/OssEvPaintBake.h"
#include "OssModel/Evaluation/OssEvaluationService.h"
#include "OssModel/Graph/OssShaderNetworkUtils.h"
#include "OssModel/Images/OssColorManagement.h"
#include "OssModel/Images/OssDisplayColor.h"
#include "OssModel/Images/OssPixelStore.h"
#include "OssModel/Nodes/OssSnBakePointNode.h"
#include "OssModel/Nodes/OssSnResultKey.h"
#include "OssModel/Objects/OssCanvasManager.h"
#include "OssModel/Objects/OssImageSet.h"
#include "OssModel/Project/OssProjectColors.h"
#include "support/ModelFixture.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QTemporaryDir>

#include <cmath>

namespace {

using Values = OssProjectColors::Values;

QString text(const char *latin)
{
    return QString::fromLatin1(latin);
}

/// One tile of a color.
OssEvPaintBuffer painted(const std::array<float, 4> &color)
{
    auto tile = std::make_shared<OssEvPaintTile>();
    for (int i = 0; i < OssEvPaintTile::Texels; ++i)
        tile->setTexel(i, {color[0], color[1], color[2], color[3], 0.0F});
    OssEvPaintBuffer paint(OssEvPaintTile::Size);
    paint.setTile({1001, 0, 0}, tile);
    return paint;
}

/// Tells in which space it was asked to bake.
class Canvas final : public OssCanvasWidget
{
public:
    void handleBakeBehavior(OssImageSet *) override {}

    OssResult bakePaint() override
    {
        bakedIn = OssColorManagement::spaces()->working();
        return fails ? OssResult::failure(text("full")) : OssResult();
    }

    std::string bakedIn;
    bool fails = false;
};

class ColorManagement : public ModelFixture
{
protected:
    OssColorSettings film() const
    {
        OssColorSettings colors = m_project->colors();
        colors.working = text("ACEScg");
        return colors;
    }

    OssSnBaseNode *color(double red, double green, double blue)
    {
        OssSnBaseNode *node = add("Procedural/Color");
        node->setAttribute(text("Color"), QVariant::fromValue(OssColor(red, green, blue, 1.0)));
        return node;
    }

    static OssColor valueOf(const OssSnBaseNode *node)
    {
        return node->attribute(text("Color")).value<OssColor>();
    }

    /// The node's picture as a PNG has it.
    QColor pictureOf(const OssSnBaseNode *node)
    {
        const QString path = folder.filePath(text("picture.png"));
        OssEvaluationService::BakeJob job;
        job.node = node;
        job.outputPoint = node->prefferedOutputPoint();
        job.entity = m_project->entities().first();
        job.patches = {1001};
        job.resolution = 16;
        const OssResult baked = OssEvaluationService::instance()->bake(job, path);
        EXPECT_TRUE(baked) << qPrintable(baked.error());
        return QImage(path).pixelColor(8, 8);
    }

    /// What the engine has at a place, in the working space.
    std::array<float, 3> valuesOf(const OssSnBaseNode *node)
    {
        std::array<float, 3> values{};
        const QString path = folder.filePath(text("values.exr"));
        OssEvaluationService::BakeJob job;
        job.node = node;
        job.outputPoint = node->prefferedOutputPoint();
        job.entity = m_project->entities().first();
        job.patches = {1001};
        job.resolution = 16;
        EXPECT_TRUE(OssEvaluationService::instance()->bake(job, path));
        OssEvImageFiles files;
        const OssEvImageProvider::Image image{path.toStdString(),
                                              OssEvImageProvider::ColorSpace::Data};
        EXPECT_TRUE(files.read(image, 0, 0, {}, [&](int, int, const OssEvTilePointer &tile) {
            for (int k = 0; k < 3; ++k)
                values[std::size_t(k)] = tile->texel(std::min(k, tile->channels() - 1), 8, 8);
        }));
        return values;
    }

    static void expectColor(const QColor &seen, int red, int green, int blue)
    {
        EXPECT_NEAR(seen.red(), red, 1);
        EXPECT_NEAR(seen.green(), green, 1);
        EXPECT_NEAR(seen.blue(), blue, 1);
    }

    QString write(const char *name, const QByteArray &content) const
    {
        QFile file(folder.filePath(text(name)));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return file.fileName();
    }

    OssResult reopened()
    {
        const QString path = m_project->path();
        OssProjectManager::instance()->closeProject();
        m_project = nullptr;
        m_network = nullptr;
        const OssResult opened = OssProjectManager::instance()->openProject(path);
        m_project = OssProjectManager::instance()->currentProject();
        return opened;
    }

    static std::string working() { return OssColorManagement::spaces()->working(); }

    QTemporaryDir folder;
};

const QByteArray Config = R"(ocio_profile_version: 2
roles: {scene_linear: Wide, aces_interchange: Exchange}
file_rules:
  - !<Rule> {name: Default, colorspace: Wide}
displays:
  Monitor:
    - !<View> {name: Plain, colorspace: Wide}
colorspaces:
  - !<ColorSpace>
    name: Wide
  - !<ColorSpace>
    name: Exchange
    to_scene_reference: !<BuiltinTransform> {style: ACEScg_to_ACES2065-1, direction: inverse}
)";

TEST_F(ColorManagement, aProjectsChoiceIsSavedAndUsedAndUndone)
{
    const QByteArray start = m_project->stateHash();
    EXPECT_EQ(working(), "Linear");
    m_project->setColors(film());
    EXPECT_EQ(working(), "ACEScg");
    EXPECT_TRUE(OssProjectManager::instance()->isModified());
    OssUndoManager::instance()->undo();
    EXPECT_EQ(working(), "Linear");
    EXPECT_EQ(m_project->stateHash(), start);
    OssUndoManager::instance()->redo();
    EXPECT_EQ(working(), "ACEScg");
    m_project->setFileRules({text("*_plate*=ACEScg")});
    ASSERT_TRUE(OssProjectManager::instance()->saveProjectAs(folder.filePath(text("A.ossa"))));
    ASSERT_TRUE(reopened());
    EXPECT_EQ(m_project->colors().working, text("ACEScg"));
    EXPECT_EQ(m_project->fileRules(), QStringList{text("*_plate*=ACEScg")});
    EXPECT_EQ(working(), "ACEScg");
    OssProjectManager::instance()->closeProject();
    EXPECT_EQ(working(), "Linear") << "it was the project's";
}

TEST_F(ColorManagement, aProjectThatSaysNothingIsBuiltInAndLinear)
{
    m_project->setFileRules({});
    OssSnBaseNode *node = color(1.0, 0.0, 0.0);
    const QString key = OssSnResultKey::of(node, node->prefferedOutputPoint());
    EXPECT_FALSE(stateLines().join().contains("workingSpace"));
    EXPECT_FALSE(stateLines().join().contains("colorConfig"));
    EXPECT_FALSE(stateLines().join().contains("fileRules"));
    expectColor(pictureOf(node), 255, 0, 0);
    EXPECT_EQ(OssColorManagement::instance()->key(), QString());
    m_project->setColors(film());
    EXPECT_NE(OssSnResultKey::of(node, node->prefferedOutputPoint()), key)
        << "all that was baked is out of date";
    OssUndoManager::instance()->undo();
    EXPECT_EQ(OssSnResultKey::of(node, node->prefferedOutputPoint()), key);
}

TEST_F(ColorManagement, numbersOfColorsAreThoseOfTheWorkingSpace)
{
    OssSnBaseNode *node = color(1.0, 0.0, 0.0);
    m_project->setColors(film());
    // The red of AP1 lies beyond what a screen shows.
    expectColor(pictureOf(node), 255, 0, 0);
    node->setAttribute(text("Color"), QVariant::fromValue(OssColor(0.6131, 0.0702, 0.0206, 1.0)));
    expectColor(pictureOf(node), 255, 0, 0);
    node->setAttribute(text("Color"), QVariant::fromValue(OssColor(0.1, 0.3, 0.05, 1.0)));
    const QColor shown = OssDisplayColor::ofLinear(valueOf(node));
    const QColor seen = pictureOf(node);
    expectColor(seen, shown.red(), shown.green(), shown.blue());
    EXPECT_GT(seen.green(), 152) << "0.3 of BT.709 would be 149";
    const OssColor back = OssDisplayColor::toLinear(QColor(255, 0, 0));
    EXPECT_NEAR(back.red(), 0.6131, 1e-3);
    EXPECT_NEAR(back.green(), 0.0702, 1e-3);
}

TEST_F(ColorManagement, colorsOfNodesAreConvertedInOneStepAndCounted)
{
    OssSnBaseNode *red = color(0.8, 0.1, 0.1);
    OssSnBaseNode *grey = color(0.18, 0.18, 0.18);
    OssSnBaseNode *ramp = add("Adjust/Remap Ramp");
    const QString ramped = text("0,0,0,0,1 0.5,0.2,0.6,0.1,1 1,1,1,1,1");
    ramp->setAttribute(text("Ramp"), ramped);
    const QColor seen = pictureOf(red);
    const QByteArray before = m_project->stateHash();
    const int steps = undoCount();
    const int expected = 2;
    EXPECT_EQ(OssProjectColors::countColors(m_project, film()), expected);
    int converted = 0;
    ASSERT_TRUE(OssProjectColors::change(m_project, film(), Values::Converted, &converted));
    EXPECT_EQ(converted, expected);
    EXPECT_EQ(undoCount(), steps + 1);
    EXPECT_NEAR(valueOf(red).red(), 0.8 * 0.6131 + 0.1 * (0.3395 + 0.0474), 2e-3);
    EXPECT_EQ(valueOf(grey).red(), 0.18) << "greys are greys everywhere";
    expectColor(pictureOf(red), seen.red(), seen.green(), seen.blue());
    EXPECT_NE(ramp->attribute(text("Ramp")).toString(), ramped);
    OssUndoManager::instance()->undo();
    EXPECT_EQ(m_project->stateHash(), before);
    EXPECT_EQ(working(), "Linear");
    ASSERT_TRUE(OssProjectColors::change(m_project, film(), Values::Kept, &converted));
    EXPECT_EQ(converted, 0);
    EXPECT_EQ(valueOf(red).red(), 0.8);
}

TEST_F(ColorManagement, greysAreTheSameNumbersInEverySpace)
{
    for (int i = 1; i < 20; ++i)
        color(i / 20.0, i / 20.0, i / 20.0);
    color(3.7, 3.7, 3.7);
    EXPECT_EQ(OssProjectColors::countColors(m_project, film()), 0);
}

TEST_F(ColorManagement, whatWasBakedSaysInWhichSpaceItIs)
{
    auto *point = qobject_cast<OssSnBakePointNode *>(
        m_network->createPaintableNode({}, text("Misc/Bake Point")));
    ASSERT_TRUE(point && wire(color(0.8, 0.1, 0.1), point));
    ASSERT_TRUE(OssShaderNetworkUtils::bakeBakePoints({point}, true, true));
    const QColor seen = pictureOf(point);
    m_project->setColors(film());
    EXPECT_FALSE(point->isBakedResultUpToDate());
    expectColor(pictureOf(point), seen.red(), seen.green(), seen.blue());
    ASSERT_TRUE(OssShaderNetworkUtils::bakeBakePoints({point}, true, true));
    const QColor film = pictureOf(point);
    EXPECT_GT(film.red(), seen.red()) << "the same numbers in a wider space";
    m_project->setWorkingSpace({});
    expectColor(pictureOf(point), film.red(), film.green(), film.blue());
}

TEST_F(ColorManagement, paintThatIsNoColorStaysWhatItIs)
{
    auto *point = qobject_cast<OssSnBakePointNode *>(
        m_network->createPaintableNode({}, text("Misc/Bake Point")));
    ASSERT_NE(point, nullptr);
    // Paint has four channels, whatever it is.
    OssEvPaintBake::Job paint;
    paint.paint = painted({0.5F, 0.25F, 0.125F, 1.0F});
    paint.path = OssPixelStore::newPath().toStdString();
    ASSERT_TRUE(QDir().mkpath(QFileInfo(QString::fromStdString(paint.path)).path()));
    ASSERT_TRUE(OssEvPaintBake::run(paint));
    QString file;
    ASSERT_TRUE(OssPixelStore::adopt(QString::fromStdString(paint.path), &file));
    point->imageSet()->setPixels({{1001, file}});
    EXPECT_NEAR(valuesOf(point)[0], 0.5F, 1e-3F);
    m_project->setColors(film());
    EXPECT_NEAR(valuesOf(point)[0], 0.5F * 0.6131F + 0.25F * 0.3395F + 0.125F * 0.0474F, 2e-3F);
    point->setAttribute(text("scalar"), true);
    EXPECT_NEAR(valuesOf(point)[0], 0.5F, 1e-3F);
    EXPECT_NEAR(valuesOf(point)[1], 0.25F, 1e-3F);
}

TEST_F(ColorManagement, bakedVectorsStayWhatTheyAre)
{
    auto *point = qobject_cast<OssSnBakePointNode *>(
        m_network->createPaintableNode({}, text("Misc/Bake Point")));
    ASSERT_TRUE(point && wire(add("Geometry/Normal"), point));
    m_project->setColors(film());
    ASSERT_TRUE(OssShaderNetworkUtils::bakeBakePoints({point}, true, true));
    const std::array<float, 3> normal = valuesOf(point);
    EXPECT_GT(std::abs(normal[0]) + std::abs(normal[1]) + std::abs(normal[2]), 0.9F);
    m_project->setWorkingSpace({});
    EXPECT_EQ(valuesOf(point), normal);
}

TEST_F(ColorManagement, freshPaintIsBakedInTheSpaceInWhichItWasPainted)
{
    Canvas canvas;
    OssCanvasManager::instance()->setCurrentCanvas(&canvas);
    ASSERT_TRUE(OssProjectColors::change(m_project, film(), Values::Kept));
    EXPECT_EQ(canvas.bakedIn, "Linear");
    canvas.fails = true;
    OssColorSettings linear = m_project->colors();
    linear.working.clear();
    const int steps = undoCount();
    EXPECT_EQ(OssProjectColors::change(m_project, linear, Values::Kept).error(), text("full"));
    EXPECT_EQ(working(), "ACEScg") << "paint is not given up";
    EXPECT_EQ(undoCount(), steps);
    OssCanvasManager::instance()->setCurrentCanvas(nullptr);
}

TEST_F(ColorManagement, aMissingConfigurationIsNamedAndTheProjectKeepsItsChoice)
{
    const QString config = write("own.ocio", Config);
    m_project->setColorConfig(config);
    EXPECT_EQ(OssColorManagement::instance()->problem(), QString());
    EXPECT_EQ(working(), "Wide");
    ASSERT_TRUE(OssProjectManager::instance()->saveProjectAs(folder.filePath(text("A.ossa"))));
    EXPECT_EQ(m_project->colorConfig(), text("own.ocio")) << "it lies beside the project";
    EXPECT_EQ(working(), "Wide");
    EXPECT_EQ(OssColorManagement::instance()->problem(), QString());
    ASSERT_TRUE(QFile::rename(config, folder.filePath(text("elsewhere.ocio"))));
    ASSERT_TRUE(reopened());
    EXPECT_EQ(OssColorManagement::instance()->problem(),
              text("Cannot read \"%1\": there is no such file. The built-in color spaces stand in, "
                   "with Linear")
                  .arg(config));
    EXPECT_EQ(working(), "Linear");
    EXPECT_EQ(m_project->colorConfig(), text("own.ocio"));
    write("own.ocio", "hello");
    ASSERT_TRUE(reopened());
    EXPECT_TRUE(OssColorManagement::instance()->problem().startsWith(
        text("Cannot read \"%1\": ").arg(config)));
    write("own.ocio", Config);
    ASSERT_TRUE(reopened());
    EXPECT_EQ(OssColorManagement::instance()->problem(), QString());
    m_project->setWorkingSpace(text("Nothing"));
    EXPECT_EQ(OssColorManagement::instance()->problem(),
              text("own.ocio: The color configuration knows no \"Nothing\". Wide stands in"));
}

TEST_F(ColorManagement, newProjectsKnowDataByItsName)
{
    QImage picture(4, 4, QImage::Format_RGB888);
    picture.fill(QColor(128, 128, 255));
    const QString path = folder.filePath(text("wall_normal.png"));
    ASSERT_TRUE(picture.save(path));
    OssSnBaseNode *node = add("Misc/Image");
    node->setAttribute(text("File"), path);
    const QString key = OssSnResultKey::of(node, node->prefferedOutputPoint());
    OssSnBaseNode *inverted = add("Adjust/Invert");
    ASSERT_TRUE(inverted && wire(node, inverted));
    EXPECT_EQ(pictureOf(node).red(), 128) << "numbers are written as they are";
    EXPECT_EQ(pictureOf(inverted).red(), 187) << "0.498 as a color";
    m_project->setFileRules({});
    EXPECT_EQ(pictureOf(node).red(), 128);
    EXPECT_EQ(pictureOf(inverted).red(), 229) << "1 less the light of 128";
    EXPECT_NE(OssSnResultKey::of(node, node->prefferedOutputPoint()), key);
}

} // namespace
