#include "OssEvaluation/Files/OssEvUdim.h"
#include "OssEvaluation/TestFolder.h"
#include "OssEvaluation/Values/OssEvPatch.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <utility>

namespace {

TEST(ImageNames, onlyAPatchNumberRightBeforeTheSuffixMakesAPattern)
{
    const std::pair<const char *, const char *> cases[] = {
        {"a/rock.1001.exr", "a/rock.<UDIM>.exr"},
        {"a/rock.1999.exr", "a/rock.<UDIM>.exr"},
        {"rock.v2.1010.tif", "rock.v2.<UDIM>.tif"},
        {"a/.1001.exr", "a/.<UDIM>.exr"},
        {"a/rock.1000.exr", "a/rock.1000.exr"},
        {"a/rock.2000.exr", "a/rock.2000.exr"}, // a year, or a frame
        {"a/rock.0999.exr", "a/rock.0999.exr"},
        {"a/IMG_1234.jpg", "a/IMG_1234.jpg"}, // a photo's number
        {"a/rock.11001.exr", "a/rock.11001.exr"},
        {"a/rock.101.exr", "a/rock.101.exr"},
        {"a/rock.10o1.exr", "a/rock.10o1.exr"},
        {"a/rock-1001.exr", "a/rock-1001.exr"},
        {"a/rock1001.exr", "a/rock1001.exr"},
        {"a/1001.exr", "a/1001.exr"},
        {"a/rock.1001", "a/rock.1001"},
        {"rock.1001.", "rock.<UDIM>."},
        {"a/rock_1001.exr", "a/rock_1001.exr"}, // there is no such file
        {"a/rock.<UDIM>.exr", "a/rock.<UDIM>.exr"},
        {"a.1001.b/rock.<UDIM>.exr", "a.1001.b/rock.<UDIM>.exr"},
        {"a.1001.b/rock", "a.1001.b/rock"}, // a folder's number
        {"a/rock.%(UDIM)d.1001.exr", "a/rock.%(UDIM)d.1001.exr"},
        {"", ""},
        {".", "."},
        {"1001", "1001"},
    };
    for (const auto &[path, pattern] : cases)
        EXPECT_EQ(OssEvUdim::pattern(path), pattern) << path;
}

TEST(ImageNames, behindALineANumberCountsWhereTheFirstPatchLiesBesideIt)
{
    const TestFolder folder;
    folder.write("brick_1002.png", "");
    folder.write("photo_1444.png", "");
    EXPECT_EQ(OssEvUdim::pattern(folder.path("brick_1002.png")), folder.path("brick_1002.png"));
    folder.write("brick_1001.png", "");
    EXPECT_EQ(OssEvUdim::pattern(folder.path("brick_1002.png")), folder.path("brick_<UDIM>.png"));
    EXPECT_EQ(OssEvUdim::pattern(folder.path("photo_1444.png")), folder.path("photo_1444.png"));
    std::filesystem::create_directory(folder.path("wood_1001.png"));
    EXPECT_EQ(OssEvUdim::pattern(folder.path("wood_1002.png")), folder.path("wood_1002.png"))
        << "a folder is no patch";
    folder.write("rock-1001.png", "");
    EXPECT_EQ(OssEvUdim::pattern(folder.path("rock-1002.png")), folder.path("rock-<UDIM>.png"));
    for (const char *name : {"rock1001.png", "rock 1001.png"}) {
        folder.write(name, "");
        EXPECT_EQ(OssEvUdim::pattern(folder.path(name)), folder.path(name)) << name;
    }
}

TEST(ImageNames, theNumberStandsInThePlaceOfTheToken)
{
    EXPECT_EQ(OssEvUdim::file("a.<UDIM>.exr", 1015), "a.1015.exr");
    EXPECT_EQ(OssEvUdim::file("%(UDIM)d.exr", 1001), "1001.exr");
    EXPECT_EQ(OssEvUdim::file("plain.exr", 1001), "plain.exr");
    EXPECT_EQ(OssEvUdim::file("<UDIM>/rock.<UDIM>.exr", 1011), "1011/rock.1011.exr");
    EXPECT_FALSE(OssEvUdim::isPattern("a.<udim>.exr"));
    EXPECT_FALSE(OssEvUdim::isPattern("a.1001.exr"));
    EXPECT_TRUE(OssEvUdim::isPattern("<UDIM>"));
}

TEST(ImageNames, patchesAreThoseWhoseFilesAreThere)
{
    const TestFolder folder;
    for (const char *name :
         {"rock.1003.exr", "rock.1001.exr", "rock.9999.exr", "rock.1000.exr", "rock.0999.exr",
          "rock.1002.png", "rock.1004.exr.bak", "rock.10010.exr", "rock.100.exr", "rock.10x5.exr",
          "xrock.1006.exr", "rock.<UDIM>.exr", "stone.1007.exr", "set1001.1001.exr",
          "set1001.1012.exr", "set1002.1001.exr"})
        folder.write(name, "");
    EXPECT_EQ(OssEvUdim::patches(folder.path("rock.<UDIM>.exr")),
              (std::vector<int>{1001, 1003, 9999}));
    EXPECT_EQ(OssEvUdim::patches(folder.path("stone.%(UDIM)d.exr")), std::vector<int>{1007});
    EXPECT_EQ(OssEvUdim::patches(folder.path("set1001.<UDIM>.exr")), (std::vector<int>{1001, 1012}))
        << "a number elsewhere in the name is no patch";
    EXPECT_TRUE(OssEvUdim::patches(folder.path("gravel.<UDIM>.exr")).empty());
    EXPECT_TRUE(OssEvUdim::patches(folder.path("none/rock.<UDIM>.exr")).empty());
    EXPECT_TRUE(OssEvUdim::patches(folder.path("rock.1001.exr")).empty()) << "no pattern";
}

TEST(Patches, numbersNameRowsOfTen)
{
    const std::array<int, 3> places[] = {
        {1001, 0, 0}, {1010, 9, 0}, {1011, 0, 1}, {1100, 9, 9}, {9999, 8, 899}};
    for (const auto &[patch, column, row] : places) {
        EXPECT_EQ(OssEvPatch::column(patch), column) << patch;
        EXPECT_EQ(OssEvPatch::row(patch), row) << patch;
        EXPECT_EQ(OssEvPatch::number(column, row), patch);
        EXPECT_TRUE(OssEvPatch::isValid(patch));
    }
    for (const auto &outside : {std::pair(-1, 0), {10, 0}, {0, -1}, {9, 899}, {0, 900}})
        EXPECT_EQ(OssEvPatch::number(outside.first, outside.second), 0);
    for (const int bad : {0, 1000, 10000, -1001})
        EXPECT_FALSE(OssEvPatch::isValid(bad)) << bad;
}

} // namespace
