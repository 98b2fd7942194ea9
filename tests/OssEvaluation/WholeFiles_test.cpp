#include "OssEvaluation/Files/OssEvFile.h"
#include "OssEvaluation/Files/OssEvImageWriter.h"
#include "OssEvaluation/TestFolder.h"
#include "support/SystemCallFaults.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <map>

#include <fcntl.h>

namespace {

namespace fs = std::filesystem;

class WholeFiles : public testing::Test
{
protected:
    TestFolder folder;
};

OssEvResult put(const std::string &path, const std::string &content)
{
    constexpr std::size_t Piece = 100000;
    OssEvFile file(path);
    for (std::size_t i = 0; i < content.size(); i += Piece)
        file.write(content.data() + i, std::min(Piece, content.size() - i));
    return file.finish();
}

TEST_F(WholeFiles, aFileIsWholeOrNotThere)
{
    {
        OssEvFile abandoned(folder.path("a"));
        EXPECT_TRUE(abandoned.write("half", 4));
    }
    EXPECT_TRUE(folder.names().empty());
    {
        OssEvFile file(folder.path("a"));
        EXPECT_TRUE(file.write("xxxx world", 10));
        EXPECT_TRUE(file.seek(0));
        EXPECT_TRUE(file.write("good", 4));
        EXPECT_TRUE(folder.names() != std::vector<std::string>{"a"}) << "not before it is finished";
        EXPECT_TRUE(file.finish());
    }
    EXPECT_EQ(folder.content("a"), "good world");
    fs::create_symlink("a", folder.path("link"));
    EXPECT_TRUE(put(folder.path("link"), "new"));
    EXPECT_EQ(folder.content("a"), "new") << "a link keeps pointing to what is written";
    EXPECT_TRUE(fs::is_symlink(folder.path("link")));
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"a", "link"}));
}

TEST_F(WholeFiles, everyStepThatCanFailIsLookedAt)
{
    std::map<std::string, int> told;
    for (int number = 1;; ++number) {
        ASSERT_EQ(put(folder.path("a"), "old").error(), "");
        OssEvResult result;
        std::string call;
        bool happened = false;
        {
            const SystemCallFaults fault(number, EIO);
            result = put(folder.path("a"), "new");
            happened = SystemCallFaults::happened();
            call = SystemCallFaults::failedCall();
        }
        const std::string now = folder.content("a");
        EXPECT_TRUE(now == "old" || now == "new") << now;
        if (result) {
            EXPECT_EQ(now, "new") << call;
        } else {
            ++told[call];
            EXPECT_EQ(result.error(),
                      "Cannot write \"" + folder.path("a") + "\": Input/output error");
        }
        EXPECT_EQ(folder.names(), std::vector<std::string>{"a"}) << call;
        if (!happened)
            break;
    }
    EXPECT_EQ(told, (std::map<std::string, int>{
                        {"write", 1}, {"fsync", 2}, {"close", 1}, {"rename", 1}, {"open", 1}}));
}

TEST_F(WholeFiles, aWriteThatIsInterruptedGoesOn)
{
    const std::string content(700000, 'x'); // several bufferfuls
    int interrupted = 0;
    for (int number = 1;; ++number) {
        const SystemCallFaults fault(number, EINTR);
        const OssEvResult result = put(folder.path("a"), content);
        if (!SystemCallFaults::happened())
            break;
        if (std::string(SystemCallFaults::failedCall()) != "write")
            continue;
        ++interrupted;
        EXPECT_EQ(result.error(), "");
        EXPECT_TRUE(folder.content("a") == content);
    }
    EXPECT_GE(interrupted, 3);
}

TEST_F(WholeFiles, newFilesGetWhatTheUserGivesThemAndOldOnesKeepTheirs)
{
    for (const int mask : {0022, 0027, 0077, 0}) {
        fs::remove(folder.path("a"));
        const mode_t before = ::umask(mode_t(mask));
        EXPECT_TRUE(put(folder.path("a"), "new"));
        const mode_t after = ::umask(before);
        EXPECT_EQ(int(after), mask) << "the mask itself is as it was";
        EXPECT_EQ(int(fs::status(folder.path("a")).permissions()), 0666 & ~mask);
    }
    for (const int mode : {0600, 0640, 0755}) {
        ASSERT_EQ(::chmod(folder.path("a").c_str(), mode_t(mode)), 0);
        EXPECT_TRUE(put(folder.path("a"), "newer"));
        EXPECT_EQ(int(fs::status(folder.path("a")).permissions()), mode);
    }
}

TEST_F(WholeFiles, placesAreCountedAndLargeContentArrivesWhole)
{
    OssEvFile file(folder.path("a"));
    EXPECT_EQ(file.position(), 0U);
    std::string expected;
    for (int i = 0; i < 30; ++i) {
        const std::string piece(std::size_t(1) << (i % 20), char('a' + i % 26));
        EXPECT_TRUE(file.write(piece.data(), piece.size()));
        expected += piece;
        EXPECT_EQ(file.position(), expected.size());
    }
    EXPECT_TRUE(file.seek(10));
    EXPECT_EQ(file.position(), 10U);
    EXPECT_TRUE(file.write("0123456789", 10));
    EXPECT_EQ(file.position(), 20U);
    expected.replace(10, 10, "0123456789");
    ASSERT_TRUE(file.finish());
    EXPECT_TRUE(folder.content("a") == expected);
}

TEST_F(WholeFiles, theFirstFaultIsTheOneThatIsTold)
{
    folder.write("a", "old");
    {
        OssEvFile file(folder.path("a"));
        EXPECT_TRUE(file.write("bad", 3));
        file.fail("the cause");
        file.fail("the consequence");
        EXPECT_FALSE(file.write("x", 1));
        EXPECT_FALSE(file.seek(0));
        EXPECT_EQ(file.finish().error(), "Cannot write \"" + folder.path("a") + "\": the cause");
    }
    EXPECT_EQ(folder.content("a"), "old");
    EXPECT_EQ(folder.names(), std::vector<std::string>{"a"});
}

TEST_F(WholeFiles, whereNothingCanBeWrittenIsSaidAtOnce)
{
    OssEvFile file(folder.path("none/a"));
    EXPECT_NE(file.error().find(folder.path("none/a")), std::string::npos);
    EXPECT_FALSE(file.write("x", 1));
    EXPECT_FALSE(file.finish());
    EXPECT_TRUE(folder.names().empty());
    fs::create_directory(folder.path("taken"));
    EXPECT_FALSE(put(folder.path("taken"), "x")) << "a folder is not replaced";
    EXPECT_EQ(folder.names(), std::vector<std::string>{"taken"});
}

TEST_F(WholeFiles, namesWithoutAFolderLieInThePresentOne)
{
    const fs::path before = fs::current_path();
    fs::current_path(folder.path(""));
    const OssEvResult result = put("plain", "content");
    fs::current_path(before);
    EXPECT_EQ(result.error(), "");
    EXPECT_EQ(folder.content("plain"), "content");
}

// --- images

constexpr int Size = OssEvTile::Size;

class ImageWriters : public WholeFiles
{
protected:
    OssEvResult open(const std::string &name, int width, int height)
    {
        OssEvImageWriter::Description description;
        description.width = width;
        description.height = height;
        return OssEvImageWriter::open(folder.path(name), description, &writer);
    }

    /// A row of tiles.
    OssEvResult writeGrey(int width)
    {
        const std::array<float, 4> grey{0.5F, 0.5F, 0.5F, 1.0F};
        const auto tile = std::make_shared<OssEvTile>(4, OssEvTile::Format::Float, grey);
        return writer->writeTiles(
            std::vector<OssEvTilePointer>(std::size_t(OssEvTilesAcross(width)), tile));
    }

    std::unique_ptr<OssEvImageWriter> writer;
};

TEST_F(ImageWriters, anImageThatLacksRowsIsNoImage)
{
    for (const char *name : {"a.exr", "a.png", "a.tif"}) {
        folder.write(name, "old");
        ASSERT_TRUE(open(name, 200, 2 * Size + 1));
        for (int i = 0; i < 2; ++i)
            ASSERT_TRUE(writeGrey(200));
        EXPECT_EQ(writer->finish().error(),
                  "Cannot write \"" + folder.path(name) + "\": rows are missing");
        writer.reset();
        EXPECT_EQ(folder.content(name), "old");
    }
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"a.exr", "a.png", "a.tif"}));
}

TEST_F(ImageWriters, imagesWithoutTexelsAreRefused)
{
    for (const auto &size : {std::pair(0, 5), {5, 0}, {-1, 5}}) {
        for (const char *name : {"a.exr", "a.png", "a.tif"}) {
            EXPECT_EQ(open(name, size.first, size.second).error(),
                      "Cannot write \"" + folder.path(name) + "\": it has no texels");
            EXPECT_EQ(writer, nullptr);
        }
    }
    EXPECT_TRUE(folder.names().empty());
}

// Not TIFF: its library reads what it wrote and falls over when a single read fails.
TEST_F(ImageWriters, aDiskThatFailsIsNoticed)
{
    for (const char *name : {"a.exr", "a.png"}) {
        folder.write(name, "old");
        int failures = 0;
        for (int number = 1;; ++number) {
            const SystemCallFaults fault(number, ENOSPC);
            OssEvResult result = open(name, Size, Size);
            if (result)
                result = writeGrey(Size);
            if (result)
                result = writer->finish();
            const std::string call = SystemCallFaults::failedCall();
            if (!SystemCallFaults::happened())
                break;
            if (!result) {
                ++failures;
                EXPECT_EQ(result.error().rfind("Cannot write \"" + folder.path(name), 0), 0U)
                    << result.error();
            }
            const std::string now = folder.content(name);
            EXPECT_TRUE(now == "old" || now.size() > 60) << name << ", " << call;
            writer.reset();
            folder.write(name, "old");
        }
        EXPECT_GE(failures, 5) << name;
    }
}

} // namespace
