#include "../support/ModelFixture.h"
#include "OssModel/Export/OssExportManager.h"
#include "OssModel/Export/OssExportPresets.h"

#include <OpenImageIO/imagebuf.h>
#include <OpenImageIO/imagebufalgo.h>

#include <QDir>
#include <QTemporaryDir>

namespace {

/// A delivery of a whole example: two objects of one mesh file, four patches.
class ExportedExample : public ModelFixture
{
protected:
    void SetUp() override
    {
        ModelFixture::SetUp();
        open(QStringLiteral("Barrel.ossa"));
    }

    void open(const QString &name)
    {
        const QString path = QDir(OssResourceInfo::instance()->examplePath()).filePath(name);
        const OssResult opened = OssProjectManager::instance()->openProject(path);
        ASSERT_TRUE(opened) << qPrintable(opened.error());
        m_project = OssProjectManager::instance()->currentProject();
        OssExportPlan::waitForMeshes(m_project);
    }

    OssResult write(const char *name)
    {
        OssExportOptions options;
        options.folder = m_folder.path();
        options.resolution = m_resolution;
        OssExportPreset preset;
        OssExportPlan plan;
        OssResult result = OssExportPresets::find(QString::fromLatin1(name), &preset);
        if (result)
            result = OssExportPlan::make(m_project, preset, options, &plan);
        return result ? OssExportManager::instance()->run(plan, {}) : result;
    }

    OIIO::ImageBuf read(const char *name) const
    {
        OIIO::ImageBuf image(m_folder.filePath(QString::fromLatin1(name)).toStdString());
        EXPECT_TRUE(image.read(0, 0, true, OIIO::TypeDesc::FLOAT)) << name;
        return image;
    }

    QTemporaryDir m_folder;
    int m_resolution = 128;
};

TEST_F(ExportedExample, noneHasANodeThatCannotBeComputed)
{
    m_resolution = 32;
    const QDir folder(OssResourceInfo::instance()->examplePath());
    const QStringList projects{QStringLiteral("*.ossa")};
    QStringList names = folder.entryList(projects, QDir::Dirs);
    const QString guides = QStringLiteral("Guides/");
    const QStringList guided = QDir(folder.filePath(guides)).entryList(projects, QDir::Dirs);
    for (const QString &name : guided)
        names.append(guides + name);
    EXPECT_GE(names.size(), 10);
    for (const QString &name : qAsConst(names)) {
        open(name);
        if (OssExportMaterial::of(m_project).isEmpty())
            continue; // its material is the reader's to make
        const OssResult written = write("One File per Channel");
        EXPECT_TRUE(written) << qPrintable(name + QStringLiteral(": ") + written.error());
    }
}

TEST_F(ExportedExample, filesOfEachChannelHoldWhatTheNodesSay)
{
    ASSERT_TRUE(write("One File per Channel"));
    EXPECT_EQ(QDir(m_folder.path()).entryList(QDir::Files).size(), 10 * 3 + 10)
        << "ten channels of three patches, and of the one";
    for (const char *name : {"Wood_Normal.1001.png", "Wood_Normal.1002.png", "Iron_Normal.png"}) {
        const auto stats = OIIO::ImageBufAlgo::computePixelStats(read(name));
        ASSERT_EQ(stats.avg.size(), 3U) << name;
        EXPECT_NEAR(stats.avg[0], 0.5F, 0.02F) << name;
        EXPECT_NEAR(stats.avg[1], 0.5F, 0.02F) << name;
        EXPECT_GT(stats.avg[2], 0.85F) << name;
    }
    const auto roughness = OIIO::ImageBufAlgo::computePixelStats(read("Wood_Roughness.1002.png"));
    ASSERT_EQ(roughness.avg.size(), 1U) << "numbers are one channel";
    EXPECT_GE(roughness.min[0], 0.549F) << "as its levels put it out";
    EXPECT_LE(roughness.max[0], 0.901F);
    EXPECT_GT(roughness.stddev[0], 0.01F);
    EXPECT_EQ(OIIO::ImageBufAlgo::computePixelStats(read("Wood_Metallic.1003.png")).max[0], 0.0F);
    const auto metal = OIIO::ImageBufAlgo::computePixelStats(read("Iron_Metallic.png"));
    EXPECT_GT(metal.max[0], 0.95F);
    EXPECT_LT(metal.min[0], 0.05F) << "where it is rusted through";
}

TEST_F(ExportedExample, packedFilesAgreeWithThoseOfTheChannels)
{
    ASSERT_TRUE(write("One File per Channel"));
    ASSERT_TRUE(write("Game Engine, ORM"));
    const OIIO::ImageBuf packed = read("T_Iron_ORM.tga");
    const OIIO::ImageBuf parts[] = {read("Iron_Ambient_Occlusion.png"), read("Iron_Roughness.png"),
                                    read("Iron_Metallic.png")};
    for (int y = 3; y < 128; y += 11) {
        for (int x = 3; x < 128; x += 11) {
            for (int k = 0; k < 3; ++k)
                EXPECT_NEAR(packed.getchannel(x, y, 0, k), parts[k].getchannel(x, y, 0, 0),
                            1.1F / 255.0F)
                    << x << " " << y << " " << k;
        }
    }
}

} // namespace
