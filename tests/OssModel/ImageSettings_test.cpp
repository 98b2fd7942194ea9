#include "OssCore/Values/OssColor.h"
#include "OssEvaluation/Files/OssEvImageFiles.h"
#include "OssModel/Evaluation/OssEvaluationService.h"
#include "OssModel/Graph/OssShaderNetworkUtils.h"
#include "OssModel/Images/OssPixelStore.h"
#include "OssModel/Nodes/OssSnBakePointNode.h"
#include "OssModel/Objects/OssImageSet.h"
#include "support/ModelFixture.h"

#include <QDir>
#include <QImage>
#include <QTemporaryDir>

#include <cmath>

namespace {

QString text(const char *latin)
{
    return QString::fromLatin1(latin);
}

/// How a bake point's images are kept, seen in their files.
class ImageSettings : public ModelFixture
{
protected:
    void SetUp() override
    {
        ModelFixture::SetUp();
        m_color = add("Procedural/Color");
        m_node = bakePointOf(m_color);
    }

    OssSnBakePointNode *bakePointOf(OssSnBaseNode *source)
    {
        auto *node = qobject_cast<OssSnBakePointNode *>(
            m_network->createPaintableNode({}, text("Misc/Bake Point")));
        EXPECT_TRUE(node && wire(source, node));
        return node;
    }

    void paint(double red, double green, double blue)
    {
        m_color->setAttribute(text("Color"), QVariant::fromValue(OssColor(red, green, blue, 1.0)));
    }

    static void bake(OssSnBakePointNode *node)
    {
        EXPECT_FALSE(node->isBakedResultUpToDate());
        const OssResult baked = OssShaderNetworkUtils::bakeBakePoints({node}, true, true);
        EXPECT_TRUE(baked) << qPrintable(baked.error());
        EXPECT_TRUE(node->isBakedResultUpToDate());
    }

    static std::string file(const OssSnBakePointNode *node)
    {
        return OssPixelStore::find(node->imageSet()->pixels().value(1001), {}).toStdString();
    }

    static OssEvImageHeader header(const OssSnBakePointNode *node)
    {
        OssEvImageHeader header;
        EXPECT_TRUE(OssEvImageFiles::readHeader(file(node), &header));
        return header;
    }

    /// Of a place from 0 to 1, from the top left.
    static float texel(const OssSnBakePointNode *node, int channel, double x, double y)
    {
        OssEvImageFiles files;
        const OssEvImageProvider::Image image{file(node), OssEvImageProvider::ColorSpace::Data};
        OssEvImageInfo info;
        EXPECT_TRUE(files.describe(image, &info));
        const int column = int(x * info.width);
        const int row = int(y * info.height);
        float value = -1.0F;
        EXPECT_TRUE(files.read(
            image, 0, row / OssEvTile::Size, {}, [&](int tileX, int, const OssEvTilePointer &tile) {
                if (tileX == column / OssEvTile::Size)
                    value = tile->texel(channel, column % OssEvTile::Size, row % OssEvTile::Size);
            }));
        return value;
    }

    OssSnBaseNode *m_color = nullptr;
    OssSnBakePointNode *m_node = nullptr;
};

double fromScreen(double value)
{
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

} // namespace

TEST_F(ImageSettings, newImagesHaveTheProjectsSizeAndThenTheOneThatIsAskedFor)
{
    EXPECT_EQ(m_node->imageSet()->resolution(), 2048);
    const QByteArray before = m_project->stateHash();
    OssUndoManager::instance()->clear();
    m_project->setNewResolution(512);
    m_project->setNewResolution(500);
    EXPECT_EQ(m_project->newResolution(), 512) << "that is no size";
    OssSnBakePointNode *small = bakePointOf(m_color);
    EXPECT_EQ(small->imageSet()->resolution(), 512);
    auto *late = qobject_cast<OssSnBakePointNode *>(add("Misc/Bake Point"));
    ASSERT_TRUE(wire(m_color, late));
    bake(late);
    EXPECT_EQ(header(late).width, 512);
    EXPECT_TRUE(small->setAttribute(text("resolution"), text("256")));
    EXPECT_EQ(small->imageSet()->resolution(), 256);
    OssUndoManager::instance()->undo();
    EXPECT_EQ(small->imageSet()->resolution(), 512);
    OssUndoManager::instance()->redo();
    expectUndoIsExact(before);
    bake(small);
    EXPECT_EQ(header(small).width, 256);
    small->setAttribute(text("resolution"), text("16384"));
    EXPECT_FALSE(small->isBakedResultUpToDate());

    const QTemporaryDir folder;
    const QString path = folder.filePath(text("Sizes.ossa"));
    ASSERT_TRUE(OssProjectManager::instance()->saveProjectAs(path));
    ASSERT_TRUE(OssProjectManager::instance()->openProject(path));
    EXPECT_EQ(OssProjectManager::instance()->currentProject()->newResolution(), 512);
}

TEST_F(ImageSettings, valuesAreAsFineAsTheDepthSays)
{
    m_node->setAttribute(text("resolution"), text("256"));
    constexpr double Value = 0.2001;
    const double byte = fromScreen(std::round(255.0 * 0.4846) / 255.0); // as a screen shows it

    const struct
    {
        const char *depth;
        const char *space;
        double value; ///< of 0.2001
        double large; ///< of 3
        double precision;
        bool isFloat;
    } cases[] = {
        {"16 bit half", "sRGB", Value, 3.0, 1e-4, false},
        {"32 bit float", "sRGB", Value, 3.0, 1e-7, true},
        {"8 bit", "sRGB", byte, 1.0, 2e-4, false},
        {"8 bit", "Linear", 51.0 / 255.0, 1.0, 1e-4, false},
        {"16 bit", "Linear", std::round(Value * 65535.0) / 65535.0, 1.0, 1e-7, true},
    };

    for (const auto &test : cases) {
        SCOPED_TRACE(std::string(test.depth) + " " + test.space);
        paint(Value, 3.0, 0.0);
        m_node->setAttribute(text("depth"), text(test.depth));
        m_node->setAttribute(text("fileSpace"), text(test.space));
        if (!m_node->isBakedResultUpToDate())
            bake(m_node);
        EXPECT_EQ(header(m_node).isPrecise, test.isFloat);
        EXPECT_NEAR(texel(m_node, 0, 0.5, 0.5), test.value, test.precision);
        EXPECT_NEAR(texel(m_node, 1, 0.5, 0.5), test.large, 1e-6);
    }
    // Where a stream goes into the shading it is the same.
    OssSnBaseNode *input = add("_System/Shader Input");
    ASSERT_TRUE(wire(m_color, input));
    OssSnBakePointNode *behind = bakePointOf(input);
    behind->setAttribute(text("depth"), text("32 bit float"));
    behind->setAttribute(text("resolution"), text("256"));
    bake(behind);
    EXPECT_NEAR(texel(behind, 0, 0.5, 0.5), byte, 2e-4);
    EXPECT_NEAR(texel(behind, 1, 0.5, 0.5), 1.0, 1e-6);
    input->setAttribute(text("ColorSpace"), text("Scalar"));
    bake(behind);
    EXPECT_NEAR(texel(behind, 0, 0.5, 0.5), 51.0 / 255.0, 1e-6);
    input->setAttribute(text("Depth"), text("32 bit float"));
    bake(behind);
    EXPECT_NEAR(texel(behind, 1, 0.5, 0.5), 3.0, 1e-6);
}

TEST_F(ImageSettings, scalarsAreOneChannelAndOldDocumentsKeepValuesAsTheyCome)
{
    m_node->setAttribute(text("resolution"), text("256"));
    paint(1.0, 0.0, 0.0);
    bake(m_node);
    EXPECT_EQ(header(m_node).channels, 4);
    m_node->setAttribute(text("scalar"), true);
    bake(m_node);
    EXPECT_EQ(header(m_node).channels, 1);
    EXPECT_NEAR(texel(m_node, 0, 0.5, 0.5), 0.2126, 1e-3);
    m_node->setAttribute(text("scalar"), false);
    m_node->imageSet()->setDepth(5121);
    ASSERT_TRUE(m_node->removeUserAttribute(text("depth"))); // those had none
    paint(0.2001, 3.0, 0.0);
    bake(m_node);
    EXPECT_NEAR(texel(m_node, 1, 0.5, 0.5), 3.0, 1e-6);
}

TEST_F(ImageSettings, nothingIsLostToADepthThatNobodyChose)
{
    paint(0.2001, 3.0, 0.0);
    OssImageSet *images = m_network->createImageSet(text("Images"), nullptr, 16);
    m_node->setImageSet(images, true);
    for (const int depth : {5121, 5123}) {
        images->setDepth(depth);
        ASSERT_TRUE(m_color->bake(images, text("Output")));
        EXPECT_NEAR(texel(m_node, 1, 0.5, 0.5), depth == 5121 ? 3.0 : 1.0, 1e-6) << depth;
    }
}

TEST_F(ImageSettings, colorGoesOnBeyondTheShapesAsFarAsTheBleedSays)
{
    const QTemporaryDir folder;
    QFile mesh(folder.filePath(text("square.obj")));
    ASSERT_TRUE(mesh.open(QIODevice::WriteOnly));
    for (const char *corner : {"0.25 0.25", "0.75 0.25", "0.75 0.75", "0.25 0.75"})
        mesh.write(QByteArray("v ") + corner + " 0\nvt " + corner + "\n");
    mesh.write("f 1/1 2/2 3/3 4/4\n");
    mesh.close();
    m_network->geoEntity()->setGeometry(mesh.fileName());
    QImage picture(256, 256, QImage::Format_RGB32);
    picture.fill(Qt::black);
    for (int y = 64; y < 192; ++y) {
        for (int x = 64; x < 192; ++x)
            picture.setPixelColor(x, y, Qt::white);
    }
    ASSERT_TRUE(picture.save(folder.filePath(text("square.png"))));
    OssSnBaseNode *image = add("Misc/Image");
    image->setAttribute(text("File"), folder.filePath(text("square.png")));
    ASSERT_TRUE(wire(image, m_node));
    m_node->setAttribute(text("resolution"), text("1024"));

    const struct
    {
        int bleed;
        bool isNear; ///< whether 3 texels from the edge are as the edge is, and 8
        bool isFar;
    } cases[] = {{16, true, false}, {40, true, true}, {0, false, false}};

    for (const auto &test : cases) {
        m_node->setAttribute(text("bleed"), test.bleed);
        bake(m_node);
        EXPECT_EQ(texel(m_node, 0, 0.25 - 3.0 / 1024, 0.5) > 0.2F, test.isNear) << test.bleed;
        EXPECT_EQ(texel(m_node, 0, 0.25 - 8.0 / 1024, 0.5) > 0.2F, test.isFar) << test.bleed;
    }
}

TEST_F(ImageSettings, patchesWithoutPixelsHaveTheFillColor)
{
    m_node->setAttribute(text("resolution"), text("256"));
    bake(m_node);
    m_node->setAttribute(text("fillColor"), QVariant::fromValue(OssColor(0.0, 1.0, 0.0, 1.0)));
    const QTemporaryDir folder;
    OssEvaluationService::BakeJob job;
    job.node = m_node;
    job.outputPoint = m_node->prefferedOutputPoint();
    job.patches = {1002};
    job.resolution = 16;
    ASSERT_TRUE(
        OssEvaluationService::instance()->bake(job, folder.filePath(text("seen.<UDIM>.png"))));
    EXPECT_EQ(QImage(folder.filePath(text("seen.1002.png"))).pixelColor(8, 8), QColor(0, 255, 0));
}
