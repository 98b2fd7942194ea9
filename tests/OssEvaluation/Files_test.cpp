#include "OssEvaluation/EngineFixture.h"
#include "OssEvaluation/Files/OssEvBake.h"
#include "OssEvaluation/Files/OssEvColorSpaces.h"
#include "OssEvaluation/Files/OssEvFile.h"
#include "OssEvaluation/Files/OssEvImageFiles.h"
#include "OssEvaluation/Files/OssEvImageFormat.h"
#include "OssEvaluation/Files/OssEvUdim.h"

#include <OpenImageIO/imageio.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

namespace fs = std::filesystem;

class Files : public EngineFixture
{
protected:
    void SetUp() override
    {
        std::string pattern = (fs::temp_directory_path() / "files-XXXXXX").string();
        ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
        folder = pattern;
    }

    void TearDown() override { fs::remove_all(folder); }

    std::string path(const std::string &name) const { return folder + "/" + name; }

    std::string content(const std::string &name) const
    {
        std::ifstream file(path(name), std::ios::binary);
        std::ostringstream text;
        text << file.rdbuf();
        return text.str();
    }

    std::vector<std::string> names() const
    {
        std::vector<std::string> result;
        for (const auto &entry : fs::directory_iterator(folder))
            result.push_back(entry.path().filename().string());
        std::sort(result.begin(), result.end());
        return result;
    }

    OssEvBake::Job job(const std::shared_ptr<const OssEvGraph> &graph, const std::string &node,
                       const std::string &name, int size = 300)
    {
        OssEvBake::Job result;
        result.target = target(graph, node, size);
        result.path = path(name);
        return result;
    }

    Collected readBack(const std::string &name, const std::string &space = "Automatic",
                       int size = 300, int patch = 1001)
    {
        OssEvGraphBuilder builder;
        builder.addNode("File", "image", {{"File", path(name)}, {"ColorSpace", space}});
        OssEvTarget wanted = target(builder.finish(), "File", size);
        wanted.images = std::make_shared<OssEvImageFiles>();
        wanted.patch = patch;
        return evaluate(wanted);
    }

    std::string folder;
};

std::shared_ptr<const OssEvGraph> wave()
{
    OssEvGraphBuilder builder;
    const int image = builder.addNode("Wave", "image", {{"File", std::string("odd")}});
    const int noise = builder.addNode("Noise", "fractalNoise");
    const int merge = builder.addNode("Merge", "merge", {{"Amount", 0.9}});
    builder.connect(image, "", merge, "Over");
    builder.connect(noise, "", merge, "Mask");
    builder.addNode("Place", "uv");
    return builder.finish();
}

TEST_F(Files, whatIsBakedReadsBackTheSame)
{
    const auto graph = wave();

    struct Case
    {
        const char *node;
        const char *file;
        double tolerance;
        bool isData;
    };

    const std::vector<Case> cases{{"Merge", "a.exr", 0.0, false},  {"Merge", "a.png", 2e-3, false},
                                  {"Merge", "a.tif", 2e-3, false}, {"Noise", "n.exr", 0.0, false},
                                  {"Noise", "n.png", 1e-3, true},  {"Place", "p.exr", 0.0, true},
                                  {"Place", "p.tiff", 1e-3, true}};
    for (const Case &test : cases) {
        OssEvBake::Job what = job(graph, test.node, test.file);
        what.isData = test.isData;
        what.isPrecise = std::string(test.node) == "Place";
        int progress = 0;
        what.onProgress = [&progress](int done, int) {
            progress = done;
        };
        const OssEvResult result = OssEvBake::run(engine.get(), what);
        ASSERT_TRUE(result) << test.file << ": " << result.error();
        EXPECT_EQ(progress, 3);
        const Collected direct = evaluate(target(graph, test.node, 300));
        const Collected back = readBack(test.file, test.isData ? "Data" : "Automatic");
        ASSERT_TRUE(back.outcome.ok()) << back.outcome.error;
        const int channels = direct.tiles.begin()->second->channels();
        for (int y = 0; y < 300; y += 7) {
            for (int x = 0; x < 300; x += 7) {
                for (int k = 0; k < channels; ++k)
                    ASSERT_NEAR(direct.texel(k, x, y), back.texel(k, x, y), test.tolerance)
                        << test.file << " " << k << ": " << x << ", " << y;
            }
        }
    }
    EXPECT_EQ(names().size(), cases.size()) << "nothing else is left";
}

TEST_F(Files, aFailedBakeNamesFileAndReasonAndLeavesTheOldOne)
{
    std::ofstream(path("old.exr")) << "old";
    OssEvGraphBuilder builder;
    const int broken = builder.addNode("Photo", "image", {{"File", std::string("broken")}});
    const int blur = builder.addNode("Blur", "blur");
    builder.connect(broken, "", blur, "Input");
    const OssEvResult result = OssEvBake::run(engine.get(),
                                              job(builder.finish(), "Blur", "old.exr"));
    EXPECT_EQ(result.error(), "Cannot write \"" + path("old.exr")
                                  + "\": \"Photo\": Cannot read \"broken\": its pixels cannot be "
                                    "decoded");
    EXPECT_EQ(content("old.exr"), "old");
    EXPECT_EQ(names(), std::vector<std::string>{"old.exr"});

    const OssEvResult nowhere = OssEvBake::run(engine.get(), job(wave(), "Noise", "none/a.exr"));
    EXPECT_NE(nowhere.error().find(path("none/a.exr")), std::string::npos);
}

TEST_F(Files, aCancelledBakeLeavesNoHalfFile)
{
    std::ofstream(path("old.png")) << "old";
    for (const char *name : {"old.png", "new.exr", "new.tif"}) {
        OssEvCancel cancel;
        OssEvBake::Job what = job(wave(), "Noise", name, 2048);
        what.cancel = &cancel;
        what.onProgress = [&cancel](int done, int total) {
            EXPECT_LT(done, total);
            cancel.cancel();
        };
        const OssEvResult result = OssEvBake::run(engine.get(), what);
        EXPECT_EQ(result.error(), "Cannot write \"" + path(name) + "\": it was cancelled");
    }
    EXPECT_EQ(names(), std::vector<std::string>{"old.png"});
    EXPECT_EQ(content("old.png"), "old");
}

TEST_F(Files, aFileIsWholeOrNotThere)
{
    {
        OssEvFile abandoned(path("a"));
        EXPECT_TRUE(abandoned.write("half", 4));
    }
    EXPECT_TRUE(names().empty());
    {
        OssEvFile file(path("a"));
        EXPECT_TRUE(file.write("xxxx world", 10));
        EXPECT_TRUE(file.seek(0));
        EXPECT_TRUE(file.write("good", 4));
        EXPECT_TRUE(names() != std::vector<std::string>{"a"}) << "not before it is finished";
        EXPECT_TRUE(file.finish());
    }
    EXPECT_EQ(content("a"), "good world");
    EXPECT_EQ(names(), std::vector<std::string>{"a"});
    ASSERT_EQ(::chmod(path("a").c_str(), 0640), 0);
    fs::create_symlink("a", path("link"));
    {
        OssEvFile file(path("link"));
        file.write("new", 3);
        EXPECT_TRUE(file.finish());
    }
    EXPECT_EQ(content("a"), "new") << "a link keeps pointing to what is written";
    EXPECT_TRUE(fs::is_symlink(path("link")));
    EXPECT_EQ(int(fs::status(path("a")).permissions()) & 0777, 0640);
    {
        OssEvFile failed(path("a"));
        failed.write("bad", 3);
        failed.fail("the sky fell");
        EXPECT_EQ(failed.finish().error(), "Cannot write \"" + path("a") + "\": the sky fell");
    }
    EXPECT_EQ(content("a"), "new");
    EXPECT_EQ(names(), (std::vector<std::string>{"a", "link"}));
}

/// Writing beyond so many bytes fails, as on a full disk.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes)
        : m_handler(std::signal(SIGXFSZ, SIG_IGN))
    {
        ::getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit{bytes, m_before.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }

    FileSizeLimit(const FileSizeLimit &) = delete;
    FileSizeLimit &operator=(const FileSizeLimit &) = delete;

    ~FileSizeLimit()
    {
        ::setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }

private:
    void (*m_handler)(int);
    rlimit m_before{};
};

TEST_F(Files, aFullDiskIsNoticedAndLeavesTheOldFile)
{
    for (const char *name : {"a.exr", "a.png", "a.tif"})
        std::ofstream(path(name)) << "old";
    for (const char *name : {"a.exr", "a.png", "a.tif"}) {
        OssEvResult result;
        {
            const FileSizeLimit limit(200000);
            result = OssEvBake::run(engine.get(), job(wave(), "Merge", name, 1024));
        }
        EXPECT_NE(result.error().find("Cannot write \"" + path(name)), std::string::npos)
            << name << ": " << result.error();
        EXPECT_EQ(content(name), "old");
    }
    EXPECT_EQ(names(), (std::vector<std::string>{"a.exr", "a.png", "a.tif"}));
}

TEST_F(Files, hostileImagesAreRefusedInWords)
{
    const auto error = [this](const std::string &name) {
        return readBack(name).outcome.error;
    };
    EXPECT_NE(error("missing.png").find("there is no such file"), std::string::npos);
    fs::create_directory(path("folder.png"));
    EXPECT_NE(error("folder.png").find("it is not a file"), std::string::npos);
    std::ofstream(path("text.png")) << "this is no picture";
    std::ofstream(path("empty.exr")) << "";
    for (const char *name : {"text.png", "empty.exr"})
        EXPECT_NE(error(name).find(path(name)), std::string::npos) << error(name);

    // A header that promises 100000 x 100000 texels and holds none.
    std::ofstream(path("huge.pgm")) << "P5\n100000 100000\n255\n";
    EXPECT_NE(error("huge.pgm").find("too large (100000 x 100000)"), std::string::npos)
        << error("huge.pgm");

    ASSERT_TRUE(OssEvBake::run(engine.get(), job(wave(), "Merge", "good.exr")));
    ASSERT_TRUE(OssEvBake::run(engine.get(), job(wave(), "Merge", "good.png")));
    for (const char *name : {"good.exr", "good.png"}) {
        const std::string whole = content(name);
        const std::string cut = std::string("cut.") + (name + 5);
        std::ofstream(path(cut), std::ios::binary) << whole.substr(0, whole.size() / 2);
        EXPECT_NE(error(cut).find(path(cut)), std::string::npos) << cut << ": " << error(cut);
        // Flipped bytes may read as other pixels, but never as more than pixels.
        for (std::size_t i = 60; i < whole.size(); i += whole.size() / 23) {
            std::string spoilt = whole;
            spoilt[i] = char(spoilt[i] ^ 0x5A);
            std::ofstream(path(cut), std::ios::binary) << spoilt;
            const Collected result = readBack(cut);
            EXPECT_EQ(result.finished, 1);
        }
    }
}

TEST_F(Files, displayValuesBecomeLinearAndDataStaysAsItIs)
{
    // One row of 8-bit colours.
    std::ofstream file(path("grey.ppm"), std::ios::binary);
    file << "P6\n4 4\n255\n";
    for (int i = 0; i < 16; ++i)
        file << char(188) << char(188) << char(188);
    file.close();
    const double linear = std::pow((188.0 / 255.0 + 0.055) / 1.055, 2.4);
    EXPECT_NEAR(readBack("grey.ppm", "Automatic", 128).texel(0, 60, 60), linear, 1e-3);
    EXPECT_NEAR(readBack("grey.ppm", "Color", 128).texel(1, 60, 60), linear, 1e-3);
    EXPECT_NEAR(readBack("grey.ppm", "Data", 128).texel(1, 60, 60), 188.0 / 255.0, 1e-3);
    std::ofstream mask(path("mask.pgm"), std::ios::binary);
    mask << "P5\n4 4\n255\n" << std::string(16, char(188));
    mask.close();
    EXPECT_NEAR(readBack("mask.pgm", "Automatic", 128).texel(0, 60, 60), 188.0 / 255.0, 1e-3)
        << "a single channel is no color";
}

TEST_F(Files, everyFormatIsReadAndThoseThatSaySoAreWritten)
{
    OssEvGraphBuilder builder;
    builder.addNode("Color", "constant", {{"Color", OssEvColor{0.25F, 0.5F, 0.75F, 1}}});
    const auto graph = builder.finish();
    for (const OssEvImageFormat &format : OssEvImageFormat::all()) {
        for (const std::string_view suffix : format.suffixes) {
            const std::string name = "made." + std::string(suffix);
            EXPECT_EQ(OssEvImageFormat::ofFile(path(name)), &format) << name;
            EXPECT_NE(OIIO::ImageInput::create(std::string(suffix)), nullptr) << name;
            const OssEvResult baked = OssEvBake::run(engine.get(), job(graph, "Color", name, 64));
            EXPECT_EQ(baked.ok(), format.writer != nullptr) << name;
            OssEvImageHeader header;
            EXPECT_EQ(OssEvImageFiles::readHeader(path(name), &header).ok(), baked.ok()) << name;
        }
    }
    const OssEvResult refused = OssEvBake::run(engine.get(), job(graph, "Color", "made", 64));
    EXPECT_EQ(refused.error(),
              "Cannot write \"" + path("made") + "\": images are written as .exr, .png or .tif");
    EXPECT_EQ(OssEvImageFormat::ofFile("made.EXR"), &OssEvImageFormat::usual());
}

TEST_F(Files, patchesHaveFilesOfTheirOwn)
{
    for (const int patch : {1001, 1003}) {
        OssEvGraphBuilder builder;
        builder.addNode("Color", "constant",
                        {{"Color", OssEvColor{float(patch - 1000) / 4.0F, 0, 0, 1}}});
        ASSERT_TRUE(
            OssEvBake::run(engine.get(), job(builder.finish(), "Color",
                                             "rock." + std::to_string(patch) + ".exr", 64)));
    }
    EXPECT_EQ(OssEvUdim::patches(path("rock.<UDIM>.exr")), (std::vector<int>{1001, 1003}));
    for (const char *name : {"rock.<UDIM>.exr", "rock.1003.exr", "rock.%(UDIM)d.exr"}) {
        EXPECT_EQ(readBack(name, "Automatic", 64, 1001).texel(0, 5, 5), 0.25F) << name;
        EXPECT_EQ(readBack(name, "Automatic", 64, 1003).texel(0, 5, 5), 0.75F) << name;
        EXPECT_EQ(readBack(name, "Automatic", 64, 1002).texel(3, 5, 5), 0.0F)
            << "transparent where there is no file";
    }
    EXPECT_FALSE(readBack("none.<UDIM>.exr").outcome.ok());
    EXPECT_EQ(OssEvUdim::pattern("a/IMG_1234.jpg"), "a/IMG_1234.jpg") << "a photo's number";
    EXPECT_EQ(OssEvUdim::pattern("a/rock.1011.exr"), "a/rock.<UDIM>.exr");
    EXPECT_EQ(OssEvUdim::pattern("a/rock-1011.exr"), "a/rock-1011.exr");
    EXPECT_EQ(OssEvUdim::file("<UDIM>/rock.<UDIM>.exr", 1011), "1011/rock.1011.exr");
    EXPECT_EQ(OssEvUdim::pattern("a/rock.0011.exr"), "a/rock.0011.exr");
    EXPECT_EQ(OssEvUdim::pattern("1001"), "1001");
}

TEST_F(Files, aChangedFileIsReadAgain)
{
    const auto bake = [this](float red) {
        OssEvGraphBuilder builder;
        builder.addNode("Color", "constant", {{"Color", OssEvColor{red, 0, 0, 1}}});
        ASSERT_TRUE(OssEvBake::run(engine.get(), job(builder.finish(), "Color", "a.exr", 64)));
    };
    bake(0.25F);
    EXPECT_EQ(readBack("a.exr", "Automatic", 64).texel(0, 1, 1), 0.25F);
    bake(0.5F);
    EXPECT_EQ(readBack("a.exr", "Automatic", 64).texel(0, 1, 1), 0.5F);
}

TEST(ColorSpaces, theBuiltInOnesNeedNoFile)
{
    const auto spaces = OssEvColorSpaces::builtIn();
    ASSERT_NE(spaces, nullptr);
    const auto names = spaces->names();
    for (const char *name : {"Linear", "sRGB", "Raw"})
        EXPECT_NE(std::find(names.begin(), names.end(), name), names.end()) << name;
    EXPECT_EQ(spaces->displays(), std::vector<std::string>{"sRGB"});
    std::array<float, 4> texel{0.5F, 0.001F, 2.0F, 0.3F};
    ASSERT_TRUE(spaces->fromScene("sRGB", texel.data(), 1));
    EXPECT_NEAR(texel[0], 1.055 * std::pow(0.5, 1.0 / 2.4) - 0.055, 1e-4);
    EXPECT_NEAR(texel[1], 0.01292, 1e-4);
    EXPECT_FLOAT_EQ(texel[3], 0.3F);
    ASSERT_TRUE(spaces->toScene("sRGB", texel.data(), 1));
    EXPECT_NEAR(texel[0], 0.5F, 1e-4);
    EXPECT_NEAR(texel[2], 2.0F, 1e-3);
    EXPECT_FALSE(spaces->toScene("Unheard of", texel.data(), 1));

    std::array<float, 4> screen{0.1F, 0.1F, 0.1F, 1.0F};
    ASSERT_TRUE(spaces->toDisplay("sRGB", "Standard", 1.0, 1.0, screen.data(), 1));
    EXPECT_NEAR(screen[0], 1.055 * std::pow(0.2, 1.0 / 2.4) - 0.055, 1e-3) << "one stop brighter";
    std::array<float, 4> bent{0.25F, 0.25F, 0.25F, 1.0F};
    ASSERT_TRUE(spaces->toDisplay("sRGB", "Raw", 0.0, 2.0, bent.data(), 1));
    EXPECT_NEAR(bent[0], 0.5F, 1e-3);
}

} // namespace
