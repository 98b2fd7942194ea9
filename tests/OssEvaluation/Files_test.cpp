#include "OssEvaluation/EngineFixture.h"
#include "OssEvaluation/Files/OssEvBake.h"
#include "OssEvaluation/Files/OssEvImageFiles.h"
#include "OssEvaluation/Files/OssEvImageFormat.h"
#include "OssEvaluation/Files/OssEvUdim.h"
#include "OssEvaluation/TestFolder.h"
#include "support/FileSizeLimit.h"

#include <OpenImageIO/imageio.h>

#include <filesystem>

namespace {

namespace fs = std::filesystem;

class Files : public EngineFixture
{
protected:
    std::string path(const std::string &name) const { return folder.path(name); }

    OssEvResult bake(const std::shared_ptr<const OssEvGraph> &graph, const std::string &node,
                     const std::string &name, int size = 300)
    {
        return OssEvBake::run(engine.get(), job(graph, node, name, size));
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
        const auto graph = nodeOf("image", {{"File", path(name)}, {"ColorSpace", space}});
        OssEvTarget wanted = target(graph, "Node", size);
        wanted.images = std::make_shared<OssEvImageFiles>();
        wanted.patch = patch;
        return evaluate(wanted);
    }

    TestFolder folder;
};

std::shared_ptr<const OssEvGraph> wave()
{
    return graphOf({{"Wave", "image", file("odd")},
                    {"Noise", "fractalNoise"},
                    {"Merge", "merge", {{"Amount", 0.9}}, {{"Over", "Wave"}, {"Mask", "Noise"}}},
                    {"Place", "uv"}});
}

std::shared_ptr<const OssEvGraph> colored(const OssEvColor &color)
{
    return nodeOf("constant", {{"Color", color}});
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
        SCOPED_TRACE(test.file);
        expectNear(readBack(test.file, test.isData ? "Data" : "Automatic"),
                   evaluate(graph, test.node, 300), 300, test.tolerance);
    }
    EXPECT_EQ(folder.names().size(), cases.size()) << "nothing else is left";
}

TEST_F(Files, aFailedBakeNamesFileAndReasonAndLeavesTheOldOne)
{
    folder.write("old.exr", "old");
    const auto graph = graphOf(
        {{"Photo", "image", file("broken")}, {"Blur", "blur", {}, {{"Input", "Photo"}}}});
    const OssEvResult result = bake(graph, "Blur", "old.exr");
    EXPECT_EQ(result.error(), "Cannot write \"" + path("old.exr")
                                  + "\": \"Photo\": Cannot read \"broken\": its pixels cannot be "
                                    "decoded");
    EXPECT_EQ(folder.content("old.exr"), "old");
    EXPECT_EQ(folder.names(), std::vector<std::string>{"old.exr"});

    const OssEvResult nowhere = bake(wave(), "Noise", "none/a.exr");
    EXPECT_NE(nowhere.error().find(path("none/a.exr")), std::string::npos);
}

TEST_F(Files, aCancelledBakeLeavesNoHalfFile)
{
    folder.write("old.png", "old");
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
    EXPECT_EQ(folder.names(), std::vector<std::string>{"old.png"});
    EXPECT_EQ(folder.content("old.png"), "old");
}

TEST_F(Files, aFullDiskIsNoticedAndLeavesTheOldFile)
{
    for (const char *name : {"a.exr", "a.png", "a.tif"})
        folder.write(name, "old");
    for (const char *name : {"a.exr", "a.png", "a.tif"}) {
        OssEvResult result;
        {
            const FileSizeLimit limit(200000);
            result = bake(wave(), "Merge", name, 1024);
        }
        EXPECT_NE(result.error().find("Cannot write \"" + path(name)), std::string::npos)
            << name << ": " << result.error();
        EXPECT_EQ(folder.content(name), "old");
    }
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"a.exr", "a.png", "a.tif"}));
}

TEST_F(Files, hostileImagesAreRefusedInWords)
{
    const auto error = [this](const std::string &name) {
        return readBack(name).outcome.error;
    };
    EXPECT_NE(error("missing.png").find("there is no such file"), std::string::npos);
    fs::create_directory(path("folder.png"));
    EXPECT_NE(error("folder.png").find("it is not a file"), std::string::npos);
    folder.write("text.png", "this is no picture");
    folder.write("empty.exr", "");
    for (const char *name : {"text.png", "empty.exr"})
        EXPECT_NE(error(name).find(path(name)), std::string::npos) << error(name);

    // A header that promises 100000 x 100000 texels and holds none.
    folder.write("huge.pgm", "P5\n100000 100000\n255\n");
    EXPECT_NE(error("huge.pgm").find("too large (100000 x 100000)"), std::string::npos)
        << error("huge.pgm");

    ASSERT_TRUE(bake(wave(), "Merge", "good.exr"));
    ASSERT_TRUE(bake(wave(), "Merge", "good.png"));
    for (const char *name : {"good.exr", "good.png"}) {
        const std::string whole = folder.content(name);
        const std::string cut = std::string("cut.") + (name + 5);
        folder.write(cut, whole.substr(0, whole.size() / 2));
        EXPECT_NE(error(cut).find(path(cut)), std::string::npos) << cut << ": " << error(cut);
        // Flipped bytes may read as other pixels, but never as more than pixels.
        for (std::size_t i = 60; i < whole.size(); i += whole.size() / 23) {
            std::string spoilt = whole;
            spoilt[i] = char(spoilt[i] ^ 0x5A);
            folder.write(cut, spoilt);
            const Collected result = readBack(cut);
            EXPECT_EQ(result.finished, 1);
        }
    }
}

TEST_F(Files, everyFormatIsReadAndThoseThatSaySoAreWritten)
{
    const auto graph = colored({0.25F, 0.5F, 0.75F, 1});
    for (const OssEvImageFormat &format : OssEvImageFormat::all()) {
        for (const std::string_view suffix : format.suffixes) {
            const std::string name = "made." + std::string(suffix);
            EXPECT_EQ(OssEvImageFormat::ofFile(path(name)), &format) << name;
            EXPECT_NE(OIIO::ImageInput::create(std::string(suffix)), nullptr) << name;
            const OssEvResult baked = bake(graph, "Node", name, 64);
            EXPECT_EQ(baked.ok(), format.writer != nullptr) << name;
            OssEvImageHeader header;
            EXPECT_EQ(OssEvImageFiles::readHeader(path(name), &header).ok(), baked.ok()) << name;
        }
    }
    const OssEvResult refused = bake(graph, "Node", "made", 64);
    EXPECT_EQ(refused.error(),
              "Cannot write \"" + path("made")
                  + "\": images are written as .exr, .png, .tif, .jpg, .webp, .tga or .tx");
    EXPECT_EQ(OssEvImageFormat::ofFile("made.EXR"), &OssEvImageFormat::usual());
    for (const char *other : {"", "a", "exr", "a.doc", "a.exr ", "a.", "a.png.bak"})
        EXPECT_EQ(OssEvImageFormat::ofFile(other), nullptr) << other;
}

TEST_F(Files, patchesHaveFilesOfTheirOwn)
{
    ASSERT_TRUE(bake(colored({0.25F, 0, 0, 1}), "Node", "rock.1001.exr", 64));
    ASSERT_TRUE(bake(colored({0.75F, 0, 0, 1}), "Node", "rock.1003.exr", 64));
    EXPECT_EQ(OssEvUdim::patches(path("rock.<UDIM>.exr")), (std::vector<int>{1001, 1003}));
    for (const char *name : {"rock.<UDIM>.exr", "rock.1003.exr", "rock.%(UDIM)d.exr"}) {
        EXPECT_EQ(readBack(name, "Automatic", 64, 1001).texel(0, 5, 5), 0.25F) << name;
        EXPECT_EQ(readBack(name, "Automatic", 64, 1003).texel(0, 5, 5), 0.75F) << name;
        EXPECT_EQ(readBack(name, "Automatic", 64, 1002).texel(3, 5, 5), 0.0F)
            << "transparent where there is no file";
    }
    EXPECT_FALSE(readBack("none.<UDIM>.exr").outcome.ok());
}

TEST_F(Files, aChangedFileIsReadAgain)
{
    for (const float red : {0.25F, 0.5F}) {
        ASSERT_TRUE(bake(colored({red, 0, 0, 1}), "Node", "a.exr", 64));
        EXPECT_EQ(readBack("a.exr", "Automatic", 64).texel(0, 1, 1), red);
    }
}

} // namespace
