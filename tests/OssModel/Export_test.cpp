#include "ExportFixture.h"
#include "OssCore/Program/OssSettings.h"
#include "OssModel/Evaluation/OssEvaluationService.h"
#include "OssModel/Evaluation/OssProblems.h"
#include "OssModel/Export/OssExportPresets.h"

#include <cmath>

namespace {

TEST_F(Export, shippedPresetsWriteWhatTheySay)
{
    wire(color(0.2, 0.4, 0.6), m_shader, "Base Color");
    m_shader->setAttribute(text("Roughness"), 0.3);
    m_shader->setAttribute(text("Metallic"), 0.7);
    m_shader->setAttribute(text("Opacity"), 0.8);
    const QVector<OssExportPresets::Entry> entries = OssExportPresets::all();
    EXPECT_GE(entries.size(), 5);
    for (const OssExportPresets::Entry &entry : entries) {
        const OssResult written = write(entry.preset);
        EXPECT_TRUE(written) << qPrintable(entry.preset.name + written.error());
        EXPECT_EQ(m_plan.notes, QStringList()) << "each channel of theirs is there";
        OssExportPreset again;
        EXPECT_TRUE(OssExportPreset::read(entry.preset.write(), {}, &again));
        EXPECT_EQ(again.files, entry.preset.files) << qPrintable(entry.preset.name);
    }
    const auto screen = [](double light) {
        return float(1.055 * std::pow(light, 1 / 2.4) - 0.055);
    };
    expectNear(mean("plane_baseColor.png"), {screen(0.2), screen(0.4), screen(0.6), 0.8F});
    expectNear(mean("plane_occlusionRoughnessMetallic.png"), {1.0F, 0.3F, 0.7F});
    expectNear(mean("plane_normal.png"), {0.5F, 0.5F, 1.0F});
    expectNear(mean("plane_MaskMap.png"), {0.7F, 1.0F, 1.0F, 0.7F});
    expectNear(mean("plane_Roughness.png"), {0.3F});
    expectNear(mean("T_plane_ORM.tga"), {1.0F, 0.3F, 0.7F});
    // The published matrix from BT.709 to AP1.
    expectNear(mean("v001/plane_Base_Color.1001.exr"), {0.2868F, 0.3886F, 0.5698F});
    expectNear(mean("v001/plane_Roughness.1001.exr"), {0.3F});
}

TEST_F(Export, greenOfNormalsPointsDownWhereThePresetSaysSo)
{
    wire(color(0.6, 0.7, 0.9), m_shader, "Normal");
    ASSERT_TRUE(
        write(presetOf("<File Name='up' Format='tif'><Channel To='RGB' From='Normal'/></File>"
                       "<File Name='down' Format='tif' Normal='-Y'>"
                       "<Channel To='RGB' From='Normal'/></File>")));
    expectNear(mean("up.tif"), {0.6F, 0.7F, 0.9F});
    expectNear(mean("down.tif"), {0.6F, 0.3F, 0.9F});
}

TEST_F(Export, channelsArePackedFromAnywhere)
{
    wire(color(0.1, 0.2, 0.3, 0.5), m_shader, "Base Color");
    m_shader->setAttribute(text("Roughness"), 0.25);
    const auto result = write(presetOf(
        "<File Name='mix' Format='png'><Channel To='R' From='Base Color' Component='Blue'/>"
        "<Channel To='G' From='Roughness' Invert='true'/><Channel To='B' Value='0.6'/>"
        "<Channel To='A' From='Base Color'/></File>"
        "<File Name='gray' Format='exr' Depth='32 bit float'>"
        "<Channel To='R' From='Base Color' Component='Luminance'/></File>"
        "<File Name='cut' Format='exr'><Channel To='RGBA' From='Base Color'/></File>"
        "<File Name='straight' Format='png' Space='Linear'><Channel To='RGBA' From='Base "
        "Color'/></File>"));
    ASSERT_TRUE(result) << qPrintable(result.error());
    expectNear(mean("mix.png"), {0.3F, 0.75F, 0.6F, 0.5F});
    expectNear(mean("gray.exr"), {0.2126F * 0.1F + 0.7152F * 0.2F + 0.0722F * 0.3F});
    expectNear(mean("cut.exr"), {0.05F, 0.1F, 0.15F, 0.5F});
    expectNear(mean("straight.png"), {0.1F, 0.2F, 0.3F, 0.5F});
    EXPECT_EQ(read("gray.exr").nativespec().format, OIIO::TypeDesc::FLOAT);
}

TEST_F(Export, patchesAreFilesAndPaddingGoesAsFarAsAsked)
{
    usePatches();
    wire(add("Geometry/UV"), m_shader, "Base Color");
    const OssExportPreset preset = presetOf("<File Name='$object[_$material][.$udim]' Format='exr' "
                                            "Depth='32 bit float'><Channel To='RGB' From='Base "
                                            "Color'/></File>");
    // Charts cover the middle half of a patch of 64, from 16 on.
    for (const int padding : {0, 8, int(OssExportOptions::EndlessPadding)}) {
        m_options.padding = padding;
        ASSERT_TRUE(write(preset));
        EXPECT_EQ(names(), QStringList({text("plane.1001.exr"), text("plane.1002.exr")}));
        const OIIO::ImageBuf image = read("plane.1001.exr");
        const auto column = [&image](int x) {
            return std::lround(image.getchannel(x, 32, 0, 0) * 64.0F - 0.5F);
        };
        EXPECT_EQ(column(32), 32) << padding;
        EXPECT_EQ(column(9), padding == 0 ? 9 : 16) << padding;
        EXPECT_EQ(column(3), padding < 0 ? 16 : 3) << padding;
        EXPECT_EQ(column(61), padding < 0 ? 47 : 61) << padding;
    }
    m_options.patches = {1002};
    ASSERT_TRUE(plan(preset));
    EXPECT_EQ(names(), QStringList{text("plane.1002.exr")}) << "named as with all of them";
    m_options.patches = {1003};
    EXPECT_EQ(plan(preset).error(), text("plane: there is no patch 1003"));
    m_options.patches.clear();
    EXPECT_TRUE(plan(presetOf("<File Name='$object' Format='exr'><Channel To='R' From='Metallic'/>"
                              "</File>"))
                    .error()
                    .startsWith(text("Two files would be called")));
}

TEST_F(Export, plansSayWhatIsWrittenOtherwiseAndWhatCannotBe)
{
    OssSnBaseNode *second = add("Shaders/Standard Surface", "Roof Top");
    wire(color(0.5, 0.5, 0.5), second, "Base Color");
    OssExportPreset each = presetOf("<File Name='$project/[$object_][$material_]$channel_$version' "
                                    "Format='jpg' Quality='50' Each='true'/>");
    m_options.version = 12;
    m_options.writesConstants = false;
    ASSERT_TRUE(plan(each));
    EXPECT_EQ(names(), QStringList{text("Test/Roof_Top_Base_Color_v012.jpg")});
    m_options.writesConstants = true;
    m_options.channels = QStringList{text("Metallic")};
    m_options.materials = QStringList{text("plane/Wall")};
    ASSERT_TRUE(plan(each));
    EXPECT_EQ(names(), QStringList{text("Test/Metallic_v012.jpg")}) << "one material is chosen";
    EXPECT_EQ(m_plan.files.first().bytes(), 64 * 64);
    EXPECT_EQ(m_plan.files.first().spaceText(), text("Data"));
    m_options.materials = QStringList{text("plane/Door")};
    EXPECT_EQ(plan(each).error(), text("There is no material \"plane/Door\""));
    m_options.materials.clear();
    m_options.channels = QStringList{text("Metallic"), text("Roughnes")};
    EXPECT_EQ(plan(each).error(), text("No material has a channel \"Roughnes\""));
    m_options.channels.clear();

    ASSERT_TRUE(plan(presetOf("<File Name='$material' Format='jpg'><Channel To='RGB' From='Glow' "
                              "Default='0.5'/><Channel To='A' From='Opacity'/></File>")));
    EXPECT_EQ(m_plan.notes, QStringList({text("Wall has no \"Glow\": 0.5 is written"),
                                         text("JPEG files have no alpha: it is left out of "
                                              "\"$material\""),
                                         text("Roof Top has no \"Glow\": 0.5 is written")}));
    m_options.resolution = 0;
    EXPECT_EQ(plan(each).error(), text("No texture has 0 texels a side"));
    m_options.folder.clear();
    EXPECT_EQ(plan(each).error(), text("Choose a folder for the textures"));
    m_options.folder = m_folder.path();
    m_options.resolution = 64;
    for (OssSnBaseNode *shader : {m_shader, second})
        shader->setBypassed(true);
    EXPECT_TRUE(plan(each).error().startsWith(text("There is no material to export")));
}

struct BadPreset
{
    const char *xml;
    const char *reason;
};

const BadPreset badPresets[] = {
    {"<Other/>", "it is no export preset"},
    {"<ExportPreset Name='a'/>", "it has no files"},
    {"<ExportPreset><File Name='a' Format='png'/></ExportPreset>", "it has no name"},
    {"<!DOCTYPE a><ExportPreset Name='a'/>", "document type"},
    {"<ExportPreset Name='a'><Fil/></ExportPreset>", "line 1: \"Fil\" is not known"},
    {"<ExportPreset Name='a'><File Name='a' Format='png' Bits='8'/></ExportPreset>",
     "\"Bits\" is not known of a File"},
    {"<ExportPreset Name='a'><File Name='a' Format='psd'>R</File></ExportPreset>",
     "images are written as exr, png"},
    {"<ExportPreset Name='a'><File Name='../a' Format='png'/></ExportPreset>",
     "\"../a\" is no name of a file below a folder"},
    {"<ExportPreset Name='a'><File Name='a[.$udim' Format='png'/></ExportPreset>",
     "brackets do not match"},
    {"<ExportPreset Name='a'><File Name='a$mat' Format='png'/></ExportPreset>",
     "\"$mat\" is no token; there are $project"},
    {"<ExportPreset Name='a'><File Name='a' Format='png' Each='true'/></ExportPreset>",
     "need $channel in their names"},
    {"<ExportPreset Name='a'><File Name='a' Format='png' Depth='9 bit'/></ExportPreset>",
     "there is no depth \"9 bit\""},
    {"<ExportPreset Name='a'><File Name='a' Format='png' Depth='32 bit float'/></ExportPreset>",
     "PNG files hold 16 bit or 8 bit, not 32 bit float"},
    {"<ExportPreset Name='a'><File Name='a' Format='png' Space='Red'/></ExportPreset>",
     "there is no color space \"Red\""},
    {"<ExportPreset Name='a'><File Name='a' Format='png'><Channel To='RX' Value='1'/></File>"
     "</ExportPreset>",
     "To says R, G, B or A"},
    {"<ExportPreset Name='a'><File Name='a' Format='png'><Channel To='RG' Value='1'/></File>"
     "</ExportPreset>",
     "needs R, or R, G and B, or all four"},
    {"<ExportPreset Name='a'><File Name='a' Format='png'><Channel To='R' Value='1e999'/></File>"
     "</ExportPreset>",
     "\"1e999\" is no number"},
    {"<ExportPreset Name='a'><File Name='a' Format='png'><Channel To='RR' Value='1'/></File>"
     "</ExportPreset>",
     "R is said twice"},
    {"<ExportPreset Name='a'", "line 1"},
};

TEST_F(Export, presetsThatMakeNoSenseAreRefusedInWords)
{
    for (const BadPreset &test : badPresets) {
        OssExportPreset preset;
        preset.name = text("untouched");
        const QString error = OssExportPreset::read(test.xml, text("mine.xml"), &preset).error();
        EXPECT_TRUE(error.startsWith(text("Cannot read \"mine.xml\": "))
                    && error.contains(text(test.reason)))
            << test.xml << ": " << qPrintable(error);
        EXPECT_EQ(preset.name, text("untouched"));
    }
}

TEST_F(Export, ownPresetsComeFirstAndCanBeRemoved)
{
    OssExportPreset preset;
    ASSERT_TRUE(OssExportPresets::find(text("one file per channel"), &preset));
    preset.description = text("Mine");
    ASSERT_TRUE(OssExportPresets::save(preset));
    ASSERT_TRUE(OssExportPresets::find(preset.name, &preset));
    EXPECT_EQ(preset.description, text("Mine"));
    ASSERT_TRUE(OssExportPresets::remove(preset.name));
    EXPECT_FALSE(OssExportPresets::remove(preset.name)) << "the program's stays";
    ASSERT_TRUE(OssExportPresets::find(preset.name, &preset));
    EXPECT_NE(preset.description, text("Mine"));
    EXPECT_TRUE(OssExportPresets::find(text("none"), &preset)
                    .error()
                    .startsWith(text("There is no export preset \"none\"; there are \"Film")));
    const ExpectedLog expected("broken.xml\": line 1: it is no export preset");
    QFile broken(QDir(OssExportPresets::ownFolder()).filePath(text("broken.xml")));
    ASSERT_TRUE(broken.open(QIODevice::WriteOnly) && broken.write("<A/>") > 0);
    broken.close();
    EXPECT_GE(OssExportPresets::all().size(), 5) << "the others are still there";
    EXPECT_TRUE(broken.remove());
}

TEST_F(Export, aFileThatCannotBeWrittenKeepsNoOtherFromIt)
{
    ASSERT_TRUE(QDir(m_folder.path()).mkdir(text("b.png"))) << "a folder is in the way";
    wire(add("Geometry/UV"), m_shader, "Normal"); // beside what fails
    OssSnBaseNode *image = add("Misc/Image");
    image->setAttribute(text("File"), m_folder.filePath(text("missing.png")));
    wire(image, m_shader, "Metallic");
    const ExpectedLog first("b.png");
    const ExpectedLog second("missing.png");
    const OssResult result = write(
        presetOf("<File Name='a' Format='png'><Channel To='R' From='Roughness'/></File>"
                 "<File Name='b' Format='png'><Channel To='R' From='Roughness'/></File>"
                 "<File Name='c' Format='png'><Channel To='R' From='Metallic'/></File>"
                 "<File Name='d' Format='png'><Channel To='R' From='Roughness'/></File>"));
    EXPECT_FALSE(result);
    EXPECT_EQ(result.error().split(QLatin1Char('\n')).size(), 2) << qPrintable(result.error());
    EXPECT_TRUE(result.error().contains(text("missing.png"))) << qPrintable(result.error());
    const OssExportJob *job = OssExportManager::instance()->job();
    EXPECT_EQ(job->written(),
              QStringList({m_folder.filePath(text("a.png")), m_folder.filePath(text("d.png"))}));
    EXPECT_TRUE(OssProblems::instance()->reason(image).contains(text("missing.png")));
    EXPECT_EQ(QDir(m_folder.path()).entryList({text("*.png*")}, QDir::Files),
              QStringList({text("a.png"), text("d.png")}));
}

TEST_F(Export, stoppedItLeavesWholeFilesOnly)
{
    wire(add("Procedural/Noise/Fractal Noise"), m_shader, "Roughness");
    m_options.resolution = 2048;
    QFile old(m_folder.filePath(text("b.exr")));
    ASSERT_TRUE(old.open(QIODevice::WriteOnly) && old.write("old") > 0);
    old.close();
    ASSERT_TRUE(plan(presetOf(
        "<File Name='a' Format='exr' Resolution='64'><Channel To='R' From='Roughness'/></File>"
        "<File Name='b' Format='exr'><Channel To='R' From='Roughness'/></File>"
        "<File Name='c' Format='exr'><Channel To='R' From='Roughness'/></File>")));
    bool wasPaused = false;
    const OssResult result = OssExportManager::instance()->run(
        m_plan, [&](const OssExportJob &job) {
            if (!job.currentFile().endsWith(text("b.exr")) || job.thousandths() < 30)
                return true;
            OssExportManager::instance()->job()->setPaused(true);
            wasPaused = job.isPaused();
            return false;
        });
    EXPECT_TRUE(result.isCancelled());
    EXPECT_TRUE(wasPaused) << "what is paused can be stopped";
    EXPECT_EQ(QDir(m_folder.path()).entryList(QDir::Files),
              QStringList({text("a.exr"), text("b.exr")}));
    EXPECT_EQ(QFileInfo(old).size(), 3);
}

TEST_F(Export, watchingWritesAgainWhatChangedAndNothingElse)
{
    OssSnBaseNode *base = color(0.2, 0.2, 0.2);
    wire(base, m_shader, "Base Color");
    OssExportManager *exports = OssExportManager::instance();
    EXPECT_FALSE(exports->exportAgain()) << "nothing was exported yet";
    const OssExportPreset preset = presetOf("<File Name='$channel' Format='exr' Each='true'/>");
    ASSERT_TRUE(write(preset));
    const int all = m_plan.files.size();
    const auto waitForEnd = [exports] {
        QEventLoop loop;
        QObject::connect(exports, &OssExportManager::finished, &loop, &QEventLoop::quit);
        QTimer::singleShot(20000, &loop, &QEventLoop::quit);
        loop.exec();
    };
    exports->setWatching(true);
    base->setAttribute(text("Color"), QVariant::fromValue(OssColor(0.6, 0.2, 0.2, 1)));
    waitForEnd();
    EXPECT_EQ(exports->job()->written(), QStringList{m_folder.filePath(text("Base_Color.exr"))});
    EXPECT_EQ(exports->job()->keys().size(), all);
    expectNear(mean("Base_Color.exr"), {0.6F, 0.2F, 0.2F});
    m_shader->setAttribute(text("Roughness"), 0.125);
    waitForEnd();
    EXPECT_EQ(exports->job()->written(), QStringList{m_folder.filePath(text("Roughness.exr"))});
    exports->setWatching(false);
    ASSERT_TRUE(exports->exportAgain());
    waitForEnd();
    EXPECT_EQ(exports->job()->written().size(), all) << "asked for, all are written";
    OssProjectManager::instance()->newProject(text("Other"));
    EXPECT_FALSE(exports->canExportAgain());
}

TEST_F(Export, channelsAreRefusedWhereThePresetSaysWhichGoWhere)
{
    m_options.channels = QStringList{text("Roughness")};
    const OssExportPreset packed = presetOf(
        "<File Name='a' Format='png'><Channel To='R' From='Metallic'/></File>");
    EXPECT_TRUE(
        plan(packed).error().contains(text("\"Test\" says itself which channels go where")));
    EXPECT_TRUE(plan(presetOf("<File Name='$channel' Format='png' Each='true'/>")));
    EXPECT_EQ(names(), QStringList{text("Roughness.png")});
}

TEST_F(Export, aFolderThatCannotBeWrittenToIsToldOnce)
{
    QFile inTheWay(m_folder.filePath(text("maps")));
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    const ExpectedLog expected("maps");
    const OssResult result = write(
        presetOf("<File Name='maps/$channel' Format='png' Each='true'/>"));
    ASSERT_FALSE(result);
    EXPECT_FALSE(result.error().contains(QLatin1Char('\n'))) << qPrintable(result.error());
    EXPECT_TRUE(result.error().contains(text("maps\""))) << qPrintable(result.error());
    const OssExportJob *job = OssExportManager::instance()->job();
    EXPECT_EQ(job->failures().size(), 1);
    EXPECT_EQ(job->failedFiles().size(), m_plan.files.size()) << "the table shows each";
}

} // namespace
