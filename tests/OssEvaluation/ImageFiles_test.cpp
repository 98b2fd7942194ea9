#include "OssEvaluation/ImageFilesFixture.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <limits>

#include <fcntl.h>

namespace {

constexpr int Size = OssEvTile::Size;

class ImageFiles : public ImageFilesFixture
{};

/// Another value for every texel and channel.
float pattern(const std::string &channel, int x, int y)
{
    const float base = channel == "A" ? 1.0F : 0.0F;
    return base + float(x % 64) / 64.0F + float(y % 32) / 2048.0F
           + (channel == "G"   ? 0.25F
              : channel == "B" ? 0.5F
                               : 0.0F);
}

TEST_F(ImageFiles, headersThatPromiseTooMuchAreRefusedBeforeAnyPixel)
{
    const std::pair<const char *, const char *> cases[] = {
        {"P5\n65537 1\n255\n", "it is too large (65537 x 1)"},
        {"P5\n1 65537\n255\n", "it is too large (1 x 65537)"},
        {"P5\n65536 65536\n255\n", "it is too large (65536 x 65536)"},
        {"P5\n32768 16385\n255\n", "it is too large (32768 x 16385)"},
    };
    for (const auto &[header, reason] : cases) {
        const std::string path = folder.write("large.pgm", header);
        EXPECT_EQ(error(path), "Cannot read \"" + path + "\": " + reason);
    }
    const std::string most = folder.write("most.pgm", "P5\n32768 16384\n255\n");
    OssEvImageHeader header;
    EXPECT_TRUE(OssEvImageFiles::readHeader(most, &header)) << "the largest that is allowed";
    EXPECT_EQ(header.width, 32768);
    for (const char *none : {"P5\n0 5\n255\n", "P5\n5 -5\n255\n", "P5\n"})
        EXPECT_NE(error(folder.write("none.pgm", none)), "") << none;
}

TEST_F(ImageFiles, whatIsNoPlainPictureIsRefused)
{
    PlainExr many;
    many.channels.clear();
    for (int i = 0; i < 65; ++i)
        many.channels.push_back("c" + std::to_string(100 + i));
    EXPECT_NE(error(write("many.exr", many)).find("it has 65 channels"), std::string::npos);
    many.channels.pop_back();
    EXPECT_EQ(error(write("fewer.exr", many)), "");

    PlainExr deep;
    deep.isDeep = true;
    const std::string path = write("deep.exr", deep);
    EXPECT_EQ(error(path), "Cannot read \"" + path + "\": deep images hold no plain colours");
}

TEST_F(ImageFiles, drawingsLieInTheMiddleOfASquareAndReadNoOtherFile)
{
    // Half as high as it is wide; half of what is red is let through.
    const std::string drawing = R"(<svg xmlns="http://www.w3.org/2000/svg" width="20" height="10">
        <rect width="10" height="10" fill="#ff0000" fill-opacity="0.5"/>
        <rect x="10" width="10" height="10" fill="#808080"/>
        <image x="15" y="3" width="2" height="2" href="other.svg"/></svg>)";
    folder.write("other.svg", R"(<svg xmlns="http://www.w3.org/2000/svg" width="2" height="2">
        <rect width="2" height="2" fill="#ffffff"/></svg>)");
    const Image image = read(folder.write("drawing.svg", drawing), 4);
    ASSERT_TRUE(image.result) << image.result.error();
    EXPECT_EQ(image.info.width, image.info.height);
    const int side = image.info.width / 16;
    const auto at = [&](double u, double v) {
        std::array<float, 4> color{};
        for (int c = 0; c < 4; ++c)
            color[std::size_t(c)] = image.texel(c, int(u * side), int(v * side));
        return color;
    };
    EXPECT_EQ(at(0.5, 0.1)[3], 0.0F);
    EXPECT_EQ(at(0.5, 0.9)[3], 0.0F);
    EXPECT_NEAR(at(0.25, 0.5)[0], 0.5F, 0.01F) << "premultiplied light";
    EXPECT_NEAR(at(0.25, 0.5)[3], 0.5F, 0.01F);
    EXPECT_NEAR(at(0.75, 0.5)[1], 0.2159F, 0.002F) << "as the screen has it";
    EXPECT_EQ(at(0.8, 0.45), at(0.75, 0.5)) << "what is in another file does not lie over it";

    for (const char *none : {"", "<svg", "<html></html>", "PK"})
        EXPECT_NE(error(folder.write("none.svg", none)), "") << none;
}

TEST_F(ImageFiles, headersSayWhatTheFileHolds)
{
    PlainExr image;
    image.width = 7;
    image.height = 5;
    image.value = pattern;
    OssEvImageHeader header;
    ASSERT_TRUE(OssEvImageFiles::readHeader(write("half.exr", image), &header));
    EXPECT_EQ(header.width, 7);
    EXPECT_EQ(header.height, 5);
    EXPECT_EQ(header.channels, 4);
    EXPECT_FALSE(header.isInteger);
    EXPECT_FALSE(header.isPrecise);
    EXPECT_EQ(header.format, "openexr");
    image.isHalf = false;
    ASSERT_TRUE(OssEvImageFiles::readHeader(write("float.exr", image), &header));
    EXPECT_TRUE(header.isPrecise);
    ASSERT_TRUE(OssEvImageFiles::readHeader(
        folder.write("grey.pgm", "P5\n2 2\n255\n" + std::string(4, 'x')), &header));
    EXPECT_EQ(header.channels, 1);
    EXPECT_TRUE(header.isInteger);
    EXPECT_FALSE(OssEvImageFiles::readHeader(folder.path("gone.exr"), &header));
}

TEST_F(ImageFiles, everyTexelArrivesHoweverTheFileIsLaidOut)
{
    const std::vector<std::string> rgba{"A", "B", "G", "R"};
    const std::pair<const char *, PlainExr> cases[] = {
        {"rows of halves", {rgba, 0, 0, 300, 200, true}},
        {"rows of floats", {rgba, 0, 0, 300, 200, false}},
        {"a picture away from the origin", {rgba, 17, -40, 140, 260, true}},
        {"floats away from the origin", {rgba, -300, 25, 140, 260, false}},
        {"tiles that do not match ours", {rgba, 0, 0, 300, 290, true, 48, 40}},
        {"float tiles that do not match ours", {rgba, 0, 0, 300, 290, false, 200, 56}},
        {"tiles larger than the picture", {rgba, 0, 0, 20, 30, true, 64, 64}},
        {"one texel", {rgba, 0, 0, 1, 1, true}},
        {"exactly a tile", {rgba, 0, 0, 128, 128, true}},
    };
    for (const auto &[what, layout] : cases) {
        SCOPED_TRACE(what);
        PlainExr file = layout;
        file.value = pattern;
        const Image image = read(write(std::string(what) + ".exr", file));
        ASSERT_EQ(image.result.error(), "");
        ASSERT_EQ(image.info.width, layout.width);
        ASSERT_EQ(image.info.height, layout.height);
        EXPECT_EQ(image.tiles.size(), std::size_t(OssEvTilesAcross(layout.width))
                                          * std::size_t(OssEvTilesAcross(layout.height)));
        EXPECT_EQ(image.info.format,
                  layout.isHalf ? OssEvTile::Format::Half : OssEvTile::Format::Float);
        const char *const names[] = {"R", "G", "B", "A"};
        for (int y = 0; y < layout.height; ++y) {
            for (int x = 0; x < layout.width; x += 3) {
                for (int k = 0; k < 4; ++k)
                    ASSERT_NEAR(image.texel(k, x, y), pattern(names[k], x, y), 1e-3)
                        << names[k] << " at " << x << ", " << y;
            }
        }
    }
}

TEST_F(ImageFiles, beyondItsEdgesATileGoesOnAsTheImageEnds)
{
    PlainExr file;
    file.width = 130;
    file.height = 5;
    file.value = pattern;
    for (const bool isHalf : {true, false}) {
        file.isHalf = isHalf;
        const Image image = read(write(isHalf ? "half.exr" : "float.exr", file));
        ASSERT_EQ(image.result.error(), "");
        const OssEvTile &last = *image.tiles.at({1, 0});
        for (const int y : {0, 4, 5, 127}) {
            for (const int x : {1, 2, 127})
                EXPECT_EQ(last.texel(0, x, y), last.texel(0, 1, std::min(y, 4)));
        }
    }
}

TEST_F(ImageFiles, numbersThatAreNoneNeverReachTheTiles)
{
    constexpr float Endless = std::numeric_limits<float>::infinity();
    constexpr float None = std::numeric_limits<float>::quiet_NaN();
    for (const bool isHalf : {true, false}) {
        for (const int tile : {0, 32}) {
            PlainExr file;
            file.width = file.height = 70;
            file.isHalf = isHalf;
            file.tileWidth = file.tileHeight = tile;
            file.value = [](const std::string &channel, int x, int y) {
                const float bad[] = {Endless, -Endless, None};
                return (x + y) % 7 == 0 ? bad[x % 3] : channel == "A" ? 1.0F : 0.5F;
            };
            const std::string path = write(
                (isHalf ? "half" : "float") + std::to_string(tile) + ".exr", file);
            for (const int reduction : {0, 1}) {
                const Image image = read(path, reduction);
                ASSERT_EQ(image.result.error(), "");
                for (int y = 0; y < Size; ++y) {
                    for (int x = 0; x < Size; ++x) {
                        for (int k = 0; k < 4; ++k)
                            ASSERT_TRUE(std::isfinite(image.texel(k, x, y)))
                                << isHalf << tile << ": " << x << ", " << y;
                    }
                }
            }
            const Image image = read(path);
            EXPECT_EQ(image.texel(0, 1, 0), 0.5F) << "the others are as they were";
        }
    }
}

TEST_F(ImageFiles, whatIsTooBrightForAHalfIsAsBrightAsOneCanBe)
{
    PlainExr file;
    file.value = [](const std::string &channel, int x, int) {
        const float endless = std::numeric_limits<float>::infinity();
        return channel == "A" ? 1.0F : x == 1 ? endless : x == 2 ? -endless : 2.0F;
    };
    const Image image = read(write("bright.exr", file));
    EXPECT_EQ(image.texel(0, 0, 0), 2.0F);
    EXPECT_EQ(image.texel(0, 1, 0), 65504.0F);
    EXPECT_EQ(image.texel(0, 2, 0), -65504.0F);
}

TEST_F(ImageFiles, halvingIsTheMeanOfTwoByTwoAlsoAtOddEdges)
{
    PlainExr file;
    file.width = 261;
    file.height = 135;
    file.isHalf = false;
    file.value = [](const std::string &channel, int x, int y) {
        return channel == "A" ? 1.0F : float((x * 7 + y * 13) % 29) / 8.0F;
    };
    const auto at = [&file](int x, int y) {
        return file.value("R", std::min(x, 260), std::min(y, 134));
    };
    const Image image = read(write("odd.exr", file), 1);
    ASSERT_EQ(image.result.error(), "");
    EXPECT_EQ(image.tiles.size(), 2U) << "131 x 68 texels";
    for (int y = 0; y < 68; ++y) {
        for (int x = 0; x < 131; ++x) {
            const float mean = (at(2 * x, 2 * y) + at(2 * x + 1, 2 * y) + at(2 * x, 2 * y + 1)
                                + at(2 * x + 1, 2 * y + 1))
                               / 4.0F;
            ASSERT_NEAR(image.texel(0, x, y), mean, 1e-5) << x << ", " << y;
        }
    }
    // Halved so often that one texel is left.
    const Image least = read(folder.path("odd.exr"), 9);
    ASSERT_EQ(least.result.error(), "");
    EXPECT_EQ(least.tiles.size(), 1U);
    EXPECT_NEAR(least.texel(0, 0, 0), 14.0F / 8.0F, 0.2F);
    EXPECT_EQ(least.texel(3, 0, 0), 1.0F);
}

TEST_F(ImageFiles, theKeyIsAnotherAsSoonAsTheFileMayBe)
{
    const std::string path = folder.write("a.pgm", "P5\n2 2\n255\naaaa");
    const auto keyAt = [&](long seconds, long nanoseconds) {
        const timespec times[2] = {{seconds, nanoseconds}, {seconds, nanoseconds}};
        EXPECT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
        OssEvImageInfo info;
        EXPECT_TRUE(m_files.describe({path, ColorSpace::Automatic, 1001}, &info));
        return info.content;
    };
    const OssEvKey key = keyAt(1000000000, 5);
    EXPECT_EQ(keyAt(1000000000, 5), key);
    EXPECT_NE(keyAt(1000000000, 6), key) << "two saves within a second";
    EXPECT_NE(keyAt(1000000001, 5), key);
    folder.write("a.pgm", "P5\n2 2\n255\naaaa and more");
    EXPECT_NE(keyAt(1000000000, 5), key) << "a tool that sets times back";
}

TEST_F(ImageFiles, onlyAFewFilesStayOpen)
{
    const auto openFiles = [] {
        return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
    };
    const auto before = openFiles();
    for (int i = 0; i < 40; ++i) {
        const std::string name = "image" + std::to_string(i) + ".pgm";
        const Image image = read(folder.write(name, "P5\n2 2\n255\naaaa"));
        ASSERT_EQ(image.result.error(), "");
    }
    EXPECT_LE(openFiles() - before, 10);
}

TEST_F(ImageFiles, nothingIsReadForWhomNobodyWaits)
{
    const std::string path = folder.write("a.pgm", "P5\n300 300\n255\n" + std::string(90000, 'x'));
    OssEvImageInfo info;
    const OssEvImageProvider::Image image{path, ColorSpace::Automatic, 1001};
    ASSERT_TRUE(m_files.describe(image, &info));
    ASSERT_TRUE(info.isSequential);
    OssEvCancel cancel;
    int delivered = 0;
    EXPECT_TRUE(m_files.read(image, 0, 0, cancel, [&](int, int, const OssEvTilePointer &) {
        if (++delivered == 3)
            cancel.cancel();
    }));
    EXPECT_EQ(delivered, 3) << "a row of tiles, and no further one";
    EXPECT_TRUE(m_files.read(image, 0, 0, cancel,
                             [&](int, int, const OssEvTilePointer &) { ++delivered; }));
    EXPECT_EQ(delivered, 3);
}

TEST_F(ImageFiles, aFileThatGoesAfterItWasDescribedIsAFaultInWords)
{
    PlainExr file;
    file.value = pattern;
    const std::string path = write("a.exr", file);
    OssEvImageInfo info;
    ASSERT_TRUE(m_files.describe({path, ColorSpace::Automatic, 1001}, &info));
    std::filesystem::remove(path);
    const OssEvResult result = m_files.read({path, ColorSpace::Automatic, 1001}, 0, 0, {},
                                            [](int, int, const OssEvTilePointer &) {});
    EXPECT_EQ(result.error(), "Cannot read \"" + path + "\": there is no such file");
}

TEST_F(ImageFiles, pixelsThatAreMissingAreAFaultInWords)
{
    PlainExr file;
    file.width = file.height = 200;
    file.value = pattern;
    const std::string whole = file.bytes();
    for (const std::size_t part : {std::size_t(3), std::size_t(2)}) {
        const std::string path = folder.write("cut.exr", whole.substr(0, whole.size() / part));
        const Image image = read(path);
        EXPECT_EQ(image.result.error().rfind("Cannot read \"" + path + "\": ", 0), 0U)
            << image.result.error();
    }
}

} // namespace
