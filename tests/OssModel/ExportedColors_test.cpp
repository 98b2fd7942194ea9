// Textures that leave a project whose colors are not the usual ones, read with another library's eyes.
#include "OssCore/Values/OssColor.h"
#include "OssModel/Export/OssExportManager.h"
#include "OssModel/Export/OssExportPlan.h"
#include "OssModel/Export/OssExportPreset.h"
#include "support/ModelFixture.h"
#include "support/Text.h"

#include <OpenImageIO/imagebuf.h>
#include <OpenImageIO/imagebufalgo.h>

#include <QFile>
#include <QTemporaryDir>

namespace {

class ExportedColors : public ModelFixture
{
protected:
    void SetUp() override
    {
        ModelFixture::SetUp();
        m_shader = add("Shaders/Standard Surface", "Wall");
        ASSERT_TRUE(wire(color(0.6, 0.2, 0.05), m_shader, "Base Color"));
        m_options.folder = m_folder.path();
        m_options.resolution = 16;
    }

    OssSnBaseNode *color(double red, double green, double blue)
    {
        OssSnBaseNode *node = add("Procedural/Color");
        node->setAttribute(text("Color"), QVariant::fromValue(OssColor(red, green, blue, 1.0)));
        return node;
    }

    OssResult write(const char *file)
    {
        OssExportPreset preset;
        const QByteArray xml = QByteArray("<ExportPreset Name=\"Test\">") + file
                               + "</ExportPreset>";
        OssResult result = OssExportPreset::read(xml, text("test.xml"), &preset);
        OssExportPlan plan;
        if (result)
            result = OssExportPlan::make(m_project, preset, m_options, &plan);
        if (result && !plan.files.isEmpty())
            m_space = plan.files.first().spaceText();
        return result ? OssExportManager::instance()->run(plan, {}) : result;
    }

    void expectMean(const char *name, const std::vector<float> &wanted, float tolerance) const
    {
        OIIO::ImageBuf image(m_folder.filePath(text(name)).toStdString());
        ASSERT_TRUE(image.read(0, 0, true, OIIO::TypeDesc::FLOAT)) << name << image.geterror();
        const std::vector<float> found = OIIO::ImageBufAlgo::computePixelStats(image).avg;
        ASSERT_EQ(found.size(), wanted.size()) << name;
        for (std::size_t i = 0; i < wanted.size(); ++i)
            EXPECT_NEAR(found[i], wanted[i], tolerance) << name << " " << i;
    }

    QTemporaryDir m_folder;
    OssSnBaseNode *m_shader = nullptr;
    OssExportOptions m_options;
    QString m_space;
};

const char *const Film = R"(<File Name="film" Format="exr" Depth="32 bit float" Space="ACEScg">
    <Channel To="R" From="Base Color"/><Channel To="G" From="Base Color"/>
    <Channel To="B" From="Base Color"/></File>)";
const char *const Plain = R"(<File Name="plain" Format="exr" Depth="32 bit float">
    <Channel To="R" From="Base Color"/><Channel To="G" From="Base Color"/>
    <Channel To="B" From="Base Color"/></File>)";
const char *const Screen = R"(<File Name="screen" Format="png" Depth="16 bit">
    <Channel To="R" From="Base Color"/><Channel To="G" From="Base Color"/>
    <Channel To="B" From="Base Color"/></File>)";
const char *const Numbers = R"(<File Name="rough" Format="png" Depth="16 bit">
    <Channel To="R" From="Roughness"/></File>)";

TEST_F(ExportedColors, leaveTheWorkingSpaceForThatOfTheFile)
{
    m_shader->setAttribute(text("Roughness"), 0.25);
    m_project->setWorkingSpace(text("ACEScg"));
    for (const char *file : {Film, Plain, Screen, Numbers})
        ASSERT_TRUE(write(file)) << file;
    expectMean("film.exr", {0.6F, 0.2F, 0.05F}, 1e-6F);
    expectMean("plain.exr", {0.6F, 0.2F, 0.05F}, 1e-6F);
    std::array<float, 4> seen{0.6F, 0.2F, 0.05F, 1.0F};
    ASSERT_TRUE(OssColorManagement::spaces()->fromWorking("sRGB", seen.data(), 1));
    EXPECT_GT(seen[0], 0.95F) << "0.6 of BT.709 would be 0.8";
    expectMean("screen.png", {std::min(seen[0], 1.0F), seen[1], seen[2]}, 2e-5F);
    expectMean("rough.png", {0.25F}, 2e-5F);
    ASSERT_TRUE(write(Plain));
    EXPECT_EQ(m_space, text("ACEScg"));
    m_project->setWorkingSpace({});
    ASSERT_TRUE(write(Plain));
    EXPECT_EQ(m_space, text("Linear"));
    for (const char *file : {Film, Screen, Numbers})
        ASSERT_TRUE(write(file)) << file;
    expectMean("film.exr", {0.4381F, 0.2261F, 0.0778F}, 1e-3F);
    expectMean("screen.png", {0.7977F, 0.4845F, 0.2478F}, 1e-3F);
    expectMean("rough.png", {0.25F}, 2e-5F);
}

TEST_F(ExportedColors, inASpaceThatNobodyKnowsAreRefused)
{
    const OssResult written = write(R"(<File Name="a" Format="png" Space="Nowhere">
        <Channel To="R" From="Base Color"/></File>)");
    EXPECT_TRUE(written.error().contains(text("there is no color space \"Nowhere\"")))
        << qPrintable(written.error());
}

} // namespace
