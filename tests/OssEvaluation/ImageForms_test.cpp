#include "OssEvaluation/Files/OssEvColorSpaces.h"
#include "OssEvaluation/Files/OssEvImageFormat.h"
#include "OssEvaluation/Files/OssEvImageWriter.h"
#include "OssEvaluation/TestFolder.h"

#include <gtest/gtest.h>
#include <OpenImageIO/imagebuf.h>
#include <OpenImageIO/imagebufalgo.h>
#include <webp/decode.h>

#include <cmath>
#include <set>

namespace {

using Color = std::array<float, 4>;

/// Files in any form, looked at with another library's eyes.
class ImageForms : public testing::Test
{
protected:
    OssEvResult write(const std::string &name, const OssEvImageWriter::Description &description,
                      const std::vector<OssEvTilePointer> &tiles)
    {
        std::unique_ptr<OssEvImageWriter> writer;
        OssEvResult result = OssEvImageWriter::open(folder.path(name), description, &writer);
        if (result)
            result = writer->writeTiles(tiles);
        return result ? writer->finish() : result;
    }

    OssEvResult write(const std::string &name, OssEvImageForm form, const Color &value,
                      int channels = 4, bool isData = false)
    {
        OssEvImageWriter::Description description;
        description.width = description.height = 32;
        description.channels = channels;
        description.isData = isData;
        description.form = std::move(form);
        return write(name, description,
                     {std::make_shared<OssEvTile>(channels, OssEvTile::Format::Float, value)});
    }

    /// As the numbers stand in the file, straight or not.
    OIIO::ImageBuf read(const std::string &name) const
    {
        OIIO::ImageSpec config;
        config["oiio:UnassociatedAlpha"] = 1;
        OIIO::ImageBuf image(folder.path(name), 0, 0, nullptr, &config);
        EXPECT_TRUE(image.read(0, 0, true, OIIO::TypeDesc::FLOAT)) << name << image.geterror();
        return image;
    }

    TestFolder folder;
};

OssEvImageForm form(OssEvDepth depth)
{
    OssEvImageForm result;
    result.depth = depth;
    return result;
}

TEST_F(ImageForms, eachFormatHoldsEachOfItsDepthsAndCompressions)
{
    const std::map<OssEvDepth, OIIO::TypeDesc> types{{OssEvDepth::Byte, OIIO::TypeDesc::UINT8},
                                                     {OssEvDepth::Short, OIIO::TypeDesc::UINT16},
                                                     {OssEvDepth::Half, OIIO::TypeDesc::HALF},
                                                     {OssEvDepth::Float, OIIO::TypeDesc::FLOAT}};
    for (const OssEvImageFormat &format : OssEvImageFormat::all()) {
        std::vector<std::string_view> compressions = format.compressions;
        compressions.emplace_back("");
        for (const OssEvDepth depth : format.depths) {
            for (const std::string_view compression : compressions) {
                const std::string name = "made." + std::string(format.suffixes.front());
                SCOPED_TRACE(name + " " + std::string(compression));
                OssEvImageForm wanted = form(depth);
                wanted.compression = compression;
                const OssEvResult written = write(name, wanted, {0.2F, 0.6F, 1.0F, 1.0F}, 3, true);
                ASSERT_EQ(written.error(), "");
                const OIIO::ImageBuf image = read(name);
                EXPECT_EQ(image.file_format_name(),
                          format.name == "Texture" ? "openexr" : image.file_format_name());
                EXPECT_EQ(image.nativespec().format, types.at(depth));
                EXPECT_EQ(image.nchannels(), 3);
                const float tolerance = format.losesDetail ? 0.02F : 0.003F;
                EXPECT_NEAR(image.getchannel(5, 5, 0, 0), 0.2F, tolerance);
                EXPECT_NEAR(image.getchannel(5, 5, 0, 1), 0.6F, tolerance);
                EXPECT_NEAR(image.getchannel(5, 5, 0, 2), 1.0F, tolerance);
            }
        }
    }
    EXPECT_EQ(write("a.png", form(OssEvDepth::Half), {}).error(),
              "Cannot write \"" + folder.path("a.png")
                  + "\": PNG files hold 16 bit or 8 bit, not 16 bit half");
    OssEvImageForm odd;
    odd.compression = "zap";
    EXPECT_NE(write("a.tga", odd, {}).error().find("no compression \"zap\", only rle or none"),
              std::string::npos);
    odd.compression.clear();
    odd.quality = 50;
    EXPECT_NE(write("a.exr", odd, {}).error().find("OpenEXR files have no quality"),
              std::string::npos);
}

TEST_F(ImageForms, whatAFormatCannotHoldIsRepeatedOrLeftOut)
{
    struct Case
    {
        const char *name;
        int channels;
        int inFile;
    };

    for (const Case &test :
         {Case{"gray.webp", 1, 3}, Case{"gray.jpg", 1, 1}, Case{"gray.tga", 1, 1},
          Case{"alpha.jpg", 4, 3}, Case{"alpha.tga", 4, 4}}) {
        OssEvImageForm wanted;
        wanted.isStraight = true;
        ASSERT_EQ(write(test.name, wanted, {0.4F, 0.4F, 0.4F, 0.5F}, test.channels, true).error(),
                  "");
        const OIIO::ImageBuf image = read(test.name);
        EXPECT_EQ(image.nchannels(), test.inFile) << test.name;
        for (int k = 0; k < std::min(3, image.nchannels()); ++k)
            EXPECT_NEAR(image.getchannel(9, 9, 0, k), 0.4F, 0.02F) << test.name;
    }
}

TEST_F(ImageForms, webPictureKeepsWhatLiesUnderItsAlpha)
{
    OssEvImageForm wanted;
    wanted.isStraight = true;
    wanted.quality = 100;
    ASSERT_EQ(write("a.webp", wanted, {0.4F, 0.2F, 0.8F, 0.0F}, 4, true).error(), "");
    const std::string file = folder.content("a.webp");
    int width = 0;
    int height = 0;
    std::uint8_t *texels = WebPDecodeRGBA(reinterpret_cast<const std::uint8_t *>(file.data()),
                                          file.size(), &width, &height);
    ASSERT_NE(texels, nullptr);
    EXPECT_EQ(width, 32);
    for (int i : {0, 400, 32 * 32 - 1})
        EXPECT_EQ((std::vector<int>{texels[4 * i], texels[4 * i + 1], texels[4 * i + 2],
                                    texels[4 * i + 3]}),
                  (std::vector<int>{102, 51, 204, 0}));
    WebPFree(texels);
}

TEST_F(ImageForms, colorsStandInTheSpaceAskedForAndNumbersInNone)
{
    struct Case
    {
        const char *name;
        const char *space;
        Color expected;
    };

    // Light of BT.709's red in the primaries of film, by the published matrix.
    for (const Case &test :
         {Case{"a.exr", "ACEScg", {0.3065F, 0.0351F, 0.0103F}}, Case{"b.exr", "", {0.5F, 0, 0}},
          Case{"c.exr", "sRGB", {0.7354F, 0, 0}}, Case{"a.png", "", {0.7354F, 0, 0}},
          Case{"b.png", "Linear", {0.5F, 0, 0}},
          Case{"a.tx", "ACEScg", {0.3065F, 0.0351F, 0.0103F}},
          Case{"a.tif", "Gamma 2.2", {0.7297F, 0, 0}}}) {
        OssEvImageForm wanted;
        wanted.space = test.space;
        ASSERT_EQ(write(test.name, wanted, {0.5F, 0, 0, 1}).error(), "") << test.name;
        ASSERT_EQ(write(std::string("data") + test.name, wanted, {0.5F, 0, 0, 1}, 3, true).error(),
                  "");
        const OIIO::ImageBuf color = read(test.name);
        const OIIO::ImageBuf data = read(std::string("data") + test.name);
        for (int k = 0; k < 3; ++k) {
            EXPECT_NEAR(color.getchannel(3, 3, 0, k), test.expected[std::size_t(k)], 6e-4F)
                << test.name << k;
            EXPECT_NEAR(data.getchannel(3, 3, 0, k), k == 0 ? 0.5F : 0.0F, 1e-4F) << test.name << k;
        }
    }
    OssEvImageForm unknown;
    unknown.space = "Purple";
    const OssEvResult refused = write("z.png", unknown, {});
    EXPECT_NE(refused.error().find("Purple"), std::string::npos) << refused.error();
    EXPECT_FALSE(std::ifstream(folder.path("z.png")).good());
}

TEST_F(ImageForms, alphaIsAsTheFormatHasItUnlessTheValuesAreNotMultiplied)
{
    struct Case
    {
        const char *name;
        bool isStraight;
        float expected;
    };

    for (const Case &test : {Case{"a.exr", false, 0.2F}, Case{"b.exr", true, 0.2F},
                             Case{"a.tif", false, 0.4F}, Case{"b.tif", true, 0.2F}}) {
        OssEvImageForm wanted;
        wanted.space = "Linear";
        wanted.isStraight = test.isStraight;
        ASSERT_EQ(write(test.name, wanted, {0.2F, 0.2F, 0.2F, 0.5F}).error(), "");
        const OIIO::ImageBuf image = read(test.name);
        EXPECT_NEAR(image.getchannel(3, 3, 0, 0), test.expected, 1e-3F) << test.name;
        EXPECT_NEAR(image.getchannel(3, 3, 0, 3), 0.5F, 1e-3F) << test.name;
    }
}

TEST_F(ImageForms, noiseHidesTheStepsOf8BitsAndSparesWhatNeedsNone)
{
    OssEvImageForm wanted = form(OssEvDepth::Byte);
    wanted.dithers = true;
    const float between = 100.25F / 255.0F;
    ASSERT_EQ(write("a.png", wanted, {between, 100.0F / 255.0F, 1.0F, 1}, 3, true).error(), "");
    ASSERT_EQ(write("b.png", wanted, {between, 0, 0, 1}, 3, true).error(), "");
    const OIIO::ImageBuf image = read("a.png");
    const OIIO::ImageBuf again = read("b.png");
    double sum = 0;
    std::set<float> values;
    for (int y = 0; y < 32; ++y) {
        for (int x = 0; x < 32; ++x) {
            sum += double(image.getchannel(x, y, 0, 0)) * 255.0;
            values.insert(image.getchannel(x, y, 0, 0));
            EXPECT_EQ(image.getchannel(x, y, 0, 0), again.getchannel(x, y, 0, 0));
            EXPECT_FLOAT_EQ(image.getchannel(x, y, 0, 1), 100.0F / 255.0F);
            EXPECT_EQ(image.getchannel(x, y, 0, 2), 1.0F);
        }
    }
    EXPECT_EQ(values.size(), 2U);
    EXPECT_NEAR(sum / 1024.0, 100.25, 0.06) << "the mean is what was computed";
}

TEST_F(ImageForms, texturesHoldTheirHalvings)
{
    ASSERT_EQ(write("a.tx", {}, {0.25F, 0.5F, 0.75F, 1}).error(), "");
    const auto input = OIIO::ImageInput::open(folder.path("a.tx"));
    ASSERT_NE(input, nullptr);
    EXPECT_TRUE(input->spec().tile_width > 0);
    EXPECT_TRUE(input->seek_subimage(0, 5)) << "32, 16, 8, 4, 2, 1";
    EXPECT_EQ(input->spec().width, 1);
    EXPECT_EQ(folder.names(), std::vector<std::string>{"a.tx"});
}

} // namespace
