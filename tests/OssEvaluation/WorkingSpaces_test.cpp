// Pictures on their way through working spaces other than the built-in one.
#include "OssEvaluation/EngineFixture.h"
#include "OssEvaluation/Files/OssEvBake.h"
#include "OssEvaluation/Files/OssEvImageFiles.h"
#include "OssEvaluation/Paint/OssEvPaintBake.h"
#include "OssEvaluation/TestFolder.h"

#include <OpenImageIO/imageio.h>

#include <array>
#include <cmath>
#include <cstdlib>

namespace {

using Spaces = OssEvColorSpaces::Pointer;

Spaces working(const char *space, const Spaces &config = OssEvColorSpaces::builtIn())
{
    Spaces spaces;
    const OssEvResult result = config->withWorking(space, &spaces);
    EXPECT_TRUE(result) << result.error();
    return spaces;
}

/// Knows AP1 under another name, and says how it hangs together with other configurations.
const char *const Facility = R"(ocio_profile_version: 2
search_path: "."
roles:
  scene_linear: Wide
  aces_interchange: Exchange
  data: Numbers
file_rules:
  - !<Rule> {name: Wide, pattern: "*_plate*", extension: "*", colorspace: Wide}
  - !<Rule> {name: Default, colorspace: Wide}
displays:
  Monitor:
    - !<View> {name: Plain, colorspace: Wide}
colorspaces:
  - !<ColorSpace>
    name: Exchange
    to_scene_reference: !<BuiltinTransform> {style: ACEScg_to_ACES2065-1, direction: inverse}
  - !<ColorSpace>
    name: Wide
  - !<ColorSpace>
    name: Bent
    to_scene_reference: !<FileTransform> {src: bend.spi1d}
  - !<ColorSpace>
    name: Numbers
    isdata: true
)";

const char *const Lut = "Version 1\nFrom 0 1\nLength 2\nComponents 1\n{\n0\nEND\n}\n";

std::string lut(const char *end)
{
    std::string text = Lut;
    return text.replace(text.find("END"), 3, end);
}

class WorkingSpaces : public EngineFixture
{
protected:
    std::string path(const std::string &name) const { return folder.path(name); }

    /// A PNG of 16 bits that holds these numbers.
    std::string picture(const std::string &name, const std::array<unsigned short, 3> &numbers)
    {
        auto file = OIIO::ImageOutput::create("png");
        EXPECT_TRUE(file->open(path(name), OIIO::ImageSpec(4, 4, 3, OIIO::TypeDesc::UINT16)));
        std::vector<unsigned short> values;
        for (int i = 0; i < 16; ++i)
            values.insert(values.end(), numbers.begin(), numbers.end());
        EXPECT_TRUE(file->write_image(OIIO::TypeDesc::UINT16, values.data()));
        file->close();
        return path(name);
    }

    OssEvTarget read(const std::string &file, const OssEvFileColors &colors,
                     const std::string &space = "Automatic")
    {
        OssEvTarget wanted = target(nodeOf("image", {{"File", file}, {"ColorSpace", space}}),
                                    "Node", 4);
        wanted.images = std::make_shared<OssEvImageFiles>(colors);
        return wanted;
    }

    std::array<double, 3> colorOf(const std::string &file, const OssEvFileColors &colors,
                                  const std::string &space = "Automatic")
    {
        const Collected seen = evaluate(read(file, colors, space));
        EXPECT_EQ(seen.outcome.error, "");
        std::array<double, 3> color{};
        for (int k = 0; k < 3; ++k)
            color[std::size_t(k)] = double(seen.texel(k, 1, 1));
        return color;
    }

    std::string write(const OssEvTarget &what, const std::string &name, const Spaces &colors,
                      const char *space, bool isData = false)
    {
        OssEvBake::Job job;
        job.target = what;
        job.path = path(name);
        job.form.depth = OssEvDepth::Short;
        job.form.colors = colors;
        job.form.space = space;
        job.isData = isData;
        const OssEvResult result = OssEvBake::run(engine.get(), job);
        EXPECT_TRUE(result) << result.error();
        return job.path;
    }

    static std::array<unsigned short, 3> numbersIn(const std::string &file)
    {
        auto input = OIIO::ImageInput::open(file);
        std::array<unsigned short, 3> numbers{};
        if (input == nullptr) {
            ADD_FAILURE() << OIIO::geterror();
            return numbers;
        }
        const auto channels = std::size_t(input->spec().nchannels);
        std::vector<unsigned short> values(channels * std::size_t(input->spec().image_pixels()));
        EXPECT_TRUE(
            input->read_image(0, 0, 0, int(channels), OIIO::TypeDesc::UINT16, values.data()));
        std::copy_n(values.begin(), 3, numbers.begin());
        return numbers;
    }

    TestFolder folder;
};

TEST_F(WorkingSpaces, filmPrimariesComeOutOfEveryWorkingSpaceAsTheyWentIn)
{
    const OssEvFileColors::Rules rules{{"*_film*", "ACEScg"}};
    const std::array<unsigned short, 3> primaries[] = {
        {65535, 0, 0}, {0, 65535, 0}, {0, 0, 65535}, {40000, 12345, 777}};
    for (const char *space : {"Linear", "ACEScg", "ACES2065-1"}) {
        const Spaces colors = working(space);
        for (const auto &numbers : primaries) {
            const std::string file = picture("red_film.png", numbers);
            const auto out = numbersIn(
                write(read(file, OssEvFileColors(colors, rules)), "out.png", colors, "ACEScg"));
            for (std::size_t k = 0; k < 3; ++k)
                EXPECT_NEAR(int(out[k]), int(numbers[k]), 1) << space << " " << k;
        }
    }
}

TEST_F(WorkingSpaces, aPicturesColorIsAnotherNumberInEachAndDataIsTheSame)
{
    const std::string file = picture("a.png", {65535, 0, 0});
    const OssEvFileColors usual;
    const OssEvFileColors film(working("ACEScg"));
    EXPECT_NEAR(colorOf(file, usual)[0], 1.0, 1e-3);
    EXPECT_NEAR(colorOf(file, usual)[1], 0.0, 1e-3);
    const std::array<double, 3> red = colorOf(file, film);
    EXPECT_NEAR(red[0], 0.6131, 1e-3);
    EXPECT_NEAR(red[1], 0.0702, 1e-3);
    EXPECT_NEAR(red[2], 0.0206, 1e-3);
    const std::string data = picture("b.png", {32768, 40000, 50000});
    for (const OssEvFileColors &colors : {usual, film}) {
        EXPECT_NEAR(colorOf(data, colors, "Data")[0], 32768 / 65535.0, 1e-5);
        EXPECT_NEAR(colorOf(data, colors, "Data")[2], 50000 / 65535.0, 1e-5);
    }
    const auto out = numbersIn(
        write(read(data, film, "Data"), "data.png", film.spaces(), "ACEScg", true));
    EXPECT_EQ(out, (std::array<unsigned short, 3>{32768, 40000, 50000}));
}

TEST_F(WorkingSpaces, anImageNodeNamesTheSpaceOfItsFileWhateverTheRulesSay)
{
    const std::string file = picture("red_film.png", {32768, 0, 0});
    const OssEvFileColors ruled(working("Linear"), {{"*_film*", "ACEScg"}});
    const auto seen = [&](const std::string &kind, const std::string &space) {
        OssEvTarget wanted = read(file, ruled, kind);
        wanted.graph = nodeOf("image",
                              {{"File", file}, {"ColorSpace", kind}, {"FileSpace", space}});
        const Collected out = evaluate(wanted);
        return out.outcome.error.empty() ? std::to_string(out.texel(0, 1, 1)).substr(0, 5)
                                         : out.outcome.error;
    };
    EXPECT_EQ(seen("Automatic", ""), "0.852") << "by the rule";
    EXPECT_EQ(seen("Automatic", "Linear"), "0.500");
    EXPECT_EQ(seen("Color", "sRGB"), "0.213");
    EXPECT_EQ(seen("Data", "sRGB"), "0.500") << "data stays data";
    EXPECT_NE(seen("Automatic", "Nowhere").find("Nowhere"), std::string::npos);
}

TEST_F(WorkingSpaces, resultsAreKeptApartByWhatTheirColorsAre)
{
    const std::string file = picture("a.png", {65535, 0, 0});
    const auto keyOf = [&](const OssEvFileColors &colors, const char *space) {
        OssEvBake::Job job;
        job.target = read(file, colors, space);
        job.path = path("a.exr");
        job.isData = std::string(space) == "Data";
        job.form.colors = colors.spaces();
        OssEvKey key;
        EXPECT_TRUE(OssEvBake::key(job, &key));
        return key;
    };
    const OssEvFileColors usual;
    const OssEvFileColors film(working("ACEScg"));
    EXPECT_NE(keyOf(usual, "Automatic"), keyOf(film, "Automatic"));
    EXPECT_EQ(keyOf(film, "Automatic"), keyOf(OssEvFileColors(working("ACEScg")), "Automatic"));
    EXPECT_EQ(keyOf(usual, "Data"), keyOf(film, "Data"));
    // A color that no file gives is the same number, but the file that is written is not.
    OssEvBake::Job job;
    job.target = target(nodeOf("constant", {{"Color", OssEvColor{1, 0, 0, 1}}}), "Node", 4);
    OssEvKey before;
    OssEvKey after;
    ASSERT_TRUE(OssEvBake::key(job, &before));
    job.form.colors = film.spaces();
    ASSERT_TRUE(OssEvBake::key(job, &after));
    EXPECT_NE(before, after);
}

TEST_F(WorkingSpaces, namesTellWhatFilesHold)
{
    const OssEvFileColors usual({}, OssEvFileColors::usualRules());
    const auto spaceOf = [&](const char *name, bool isInteger = true, int channels = 3) {
        return usual.spaceOf({name, channels, isInteger, {}});
    };
    EXPECT_EQ(spaceOf("/a_normal/wall.png"), "sRGB") << "the folder says nothing";
    for (const char *data :
         {"wall_normal.png", "Wall-Normal.1001.png", "wall Roughness.TIF", "wall_metallic.jpg",
          "wall.height.exr", "wall_ao.png", "wall_id.png", "wall_ORM.1002.png"})
        EXPECT_EQ(spaceOf(data), "Data") << data;
    for (const char *color : {"wall.png", "abnormal.png", "metal.png", "wall_idle.png"})
        EXPECT_EQ(spaceOf(color), "sRGB") << color;
    EXPECT_EQ(spaceOf("wall.exr", false), "Linear");
    EXPECT_EQ(spaceOf("wall.png", true, 1), "Data");
    const OssEvFileColors film(working("ACEScg"), {{"*.tif", "ACES2065-1"}});
    EXPECT_EQ(film.spaceOf({"wall.exr", 4, false, {}}), "ACEScg");
    EXPECT_EQ(film.spaceOf({"wall.exr", 4, false, "Linear"}), "Linear") << "it says it itself";
    EXPECT_EQ(film.spaceOf({"wall.tif", 4, false, "Linear"}), "ACES2065-1");
    EXPECT_EQ(OssEvFileColors().spaceOf({"wall_normal.png", 3, true, {}}), "sRGB")
        << "no rules, no data by name";
}

TEST_F(WorkingSpaces, floatsSayInWhichSpaceTheyAre)
{
    const auto red = nodeOf("constant", {{"Color", OssEvColor{1, 0, 0, 1}}});
    OssEvBake::Job job;
    job.target = target(red, "Node", 4);
    job.path = path("film.exr");
    job.form.colors = working("ACEScg");
    ASSERT_TRUE(OssEvBake::run(engine.get(), job));
    EXPECT_NEAR(colorOf(job.path, OssEvFileColors(working("ACEScg")))[0], 1.0, 1e-6);
    const std::array<double, 3> seen = colorOf(job.path, OssEvFileColors());
    EXPECT_NEAR(seen[0], 1.7051, 2e-3);
    EXPECT_NEAR(seen[1], -0.1302, 1e-3);
    EXPECT_NEAR(seen[2], -0.0240, 1e-3);
    EXPECT_NEAR(colorOf(job.path, OssEvFileColors(), "Data")[0], 1.0, 1e-6);
}

TEST_F(WorkingSpaces, fresherPaintLiesOnOlderPaintOfAnotherSpace)
{
    // 1, 0, 0 in BT.709 as a file of the store has it, which says nothing of itself.
    OssEvBake::Job old;
    old.target = target(nodeOf("constant", {{"Color", OssEvColor{1, 0, 0, 1}}}), "Node", 64);
    old.path = path("old.exr");
    ASSERT_TRUE(OssEvBake::run(engine.get(), old));
    OssEvPaintBake::Job paint;
    paint.paint = OssEvPaintBuffer(64);
    paint.beneath = old.path;
    paint.path = path("new.exr");
    paint.colors = working("ACEScg");
    const OssEvResult result = OssEvPaintBake::run(paint);
    ASSERT_TRUE(result) << result.error();
    EXPECT_NEAR(colorOf(paint.path, OssEvFileColors(working("ACEScg")))[0], 0.6131, 1e-3);
    EXPECT_NEAR(colorOf(paint.path, OssEvFileColors())[0], 1.0, 2e-3);
    paint.isData = true;
    ASSERT_TRUE(OssEvPaintBake::run(paint));
    EXPECT_NEAR(colorOf(paint.path, OssEvFileColors(working("ACEScg")))[0], 1.0, 1e-6);
}

TEST_F(WorkingSpaces, anotherConfigurationUnderstandsTheBuiltInNames)
{
    folder.write("bend.spi1d", lut("1"));
    Spaces own;
    const OssEvResult result = OssEvColorSpaces::read(folder.write("own.ocio", Facility), &own);
    ASSERT_TRUE(result) << result.error();
    EXPECT_EQ(own->working(), "Wide");
    const std::string file = picture("a.png", {65535, 0, 0});
    const std::array<double, 3> red = colorOf(file, OssEvFileColors(own));
    EXPECT_NEAR(red[0], 0.6131, 1e-3);
    EXPECT_NEAR(red[1], 0.0702, 1e-3);
    EXPECT_NEAR(colorOf(picture("a_plate.png", {30000, 0, 0}), OssEvFileColors(own))[0],
                30000 / 65535.0, 1e-4)
        << "its own rules";
    EXPECT_EQ(own->linearNames(), (std::vector<std::string>{"Exchange", "Wide", "Bent"}));
    Spaces other;
    EXPECT_FALSE(own->withWorking("Nothing", &other));
    EXPECT_FALSE(own->withWorking("Numbers", &other));
    EXPECT_EQ(other, nullptr);
}

TEST_F(WorkingSpaces, howBrightAColorIsFollowsTheSpace)
{
    folder.write("bend.spi1d", lut("1"));
    Spaces own;
    ASSERT_TRUE(OssEvColorSpaces::read(folder.write("own.ocio", Facility), &own));
    EXPECT_TRUE(OssEvColorSpaces::builtIn()->workingSpace().isBt709);
    for (const Spaces &film : {working("ACEScg"), own}) {
        const OssEvWorkingSpace space = film->workingSpace();
        EXPECT_FALSE(space.isBt709);
        EXPECT_NEAR(space.luminance[0], 0.27223, 1e-5); // published with AP1
        EXPECT_NEAR(space.luminance[1], 0.67408, 1e-5);
        EXPECT_NEAR(space.luminance[2], 0.05369, 1e-5);
    }
    images->add("green", 256, 256, [](int x, int /*y*/) {
        return TestImages::Texel{0.0F, x < 100 ? 1.0F : 0.5F, 0.0F, 1.0F};
    });
    // Read by a port of one channel, by a filter's, by kernels that look up, and by an export.
    const std::vector<TestNode> nodes{
        {"Image", "image", file("green")},
        {"Port", "combine", {}, {{"Red", "Image"}}},
        {"Constant", "constant", {{"Color", OssEvColor{0, 1, 0, 1}}}},
        {"Folded", "combine", {}, {{"Red", "Constant"}}},
        {"Ramp", "ramp", {}, {{"Input", "Image"}}},
        {"Grey", "brightnessContrast", {{"Saturation", 0.0}}, {{"Input", "Image"}}},
        {"Export", "pack", {{"RedFrom", std::string("Luminance")}}, {{"Red", "Image"}}}};
    for (const std::string node : {"Port", "Folded", "Ramp", "Grey", "Export"}) {
        for (const bool isFilm : {false, true}) {
            OssEvTarget wanted = target(graphOf(nodes), node, 256);
            OssEvGraphBuilder builder(*wanted.graph);
            if (isFilm)
                builder.setWorking(working("ACEScg")->workingSpace());
            wanted.graph = builder.finish();
            const Collected seen = evaluate(wanted);
            ASSERT_EQ(seen.outcome.error, "");
            EXPECT_NEAR(seen.texel(0, 5, 5), isFilm ? 0.67408 : 0.7152, 1e-3)
                << node << (isFilm ? ": kept apart from the other in the cache" : "");
        }
    }
}

TEST_F(WorkingSpaces, aConfigurationIsKnownByWhatIsInItsFiles)
{
    const auto keyOf = [](const std::string &name) {
        Spaces spaces;
        EXPECT_TRUE(OssEvColorSpaces::read(name, &spaces));
        return spaces->key();
    };
    folder.write("bend.spi1d", lut("1"));
    const std::string file = folder.write("own.ocio", Facility);
    const OssEvKey before = keyOf(file);
    EXPECT_FALSE(before.isNull());
    EXPECT_EQ(keyOf(file), before);
    folder.write("bend.spi1d", lut("2"));
    EXPECT_NE(keyOf(file), before) << "a file that it names is another";
    folder.write("bend.spi1d", lut("1"));
    EXPECT_EQ(keyOf(file), before);
    EXPECT_TRUE(OssEvColorSpaces::builtIn()->key().isNull());
    EXPECT_TRUE(working("Linear")->key().isNull());
    EXPECT_FALSE(working("ACEScg")->key().isNull());
}

TEST_F(WorkingSpaces, theEnvironmentsConfigurationIsNamedWhenItCannotBeHad)
{
    Spaces spaces;
    ASSERT_EQ(::setenv("OCIO", "", 1), 0);
    EXPECT_EQ(OssEvColorSpaces::readEnvironment(&spaces).error(),
              "The environment names no color configuration: $OCIO is empty");
    ASSERT_EQ(::setenv("OCIO", path("none.ocio").c_str(), 1), 0);
    EXPECT_NE(OssEvColorSpaces::readEnvironment(&spaces).error().find(path("none.ocio")),
              std::string::npos);
    ASSERT_EQ(::setenv("OCIO", folder.write("own.ocio", Facility).c_str(), 1), 0);
    folder.write("bend.spi1d", lut("1"));
    EXPECT_TRUE(OssEvColorSpaces::readEnvironment(&spaces));
    ::unsetenv("OCIO");
}

} // namespace
