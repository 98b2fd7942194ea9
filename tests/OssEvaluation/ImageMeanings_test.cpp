#include "OssEvaluation/Files/OssEvImageWriter.h"
#include "OssEvaluation/ImageFilesFixture.h"

#include <cmath>

namespace {

/// What the numbers in a file stand for.
class ImageMeanings : public ImageFilesFixture
{};

TEST_F(ImageMeanings, channelsAreFoundByTheirNames)
{
    struct Case
    {
        std::vector<std::string> channels;
        int count;
        std::array<float, 4> texel;
    };

    const std::map<std::string, float> values{{"R", 0.25F}, {"G", 0.5F},   {"B", 0.75F},
                                              {"A", 0.5F},  {"Y", 0.125F}, {"Z", 9.0F}};
    const Case cases[] = {
        {{"Y"}, 1, {0.125F, 0, 0, 0}},
        {{"A", "Y"}, 4, {0.125F, 0.125F, 0.125F, 0.5F}},
        {{"B", "G", "R"}, 4, {0.25F, 0.5F, 0.75F, 1.0F}},
        {{"A", "B", "G", "R"}, 4, {0.25F, 0.5F, 0.75F, 0.5F}},
        {{"B", "G", "R", "Z"}, 4, {0.25F, 0.5F, 0.75F, 1.0F}},
    };
    for (const Case &set : cases) {
        std::string names;
        for (const std::string &channel : set.channels)
            names += channel;
        for (const bool isHalf : {true, false}) {
            PlainExr file;
            file.channels = set.channels;
            file.isHalf = isHalf;
            file.value = [&values](const std::string &channel, int, int) {
                return values.at(channel);
            };
            const Image image = read(write(names + (isHalf ? "h.exr" : "f.exr"), file));
            ASSERT_EQ(image.result.error(), "") << names;
            ASSERT_EQ(image.info.channels, set.count) << names;
            for (int k = 0; k < set.count; ++k)
                EXPECT_EQ(image.texel(k, 2, 2), set.texel[std::size_t(k)]) << names << " " << k;
        }
    }
}

/// Writes a picture of one colour as a file of whole numbers.
void writeIntegers(const std::string &path, const std::array<float, 4> &value, bool isData)
{
    OssEvImageWriter::Description description;
    description.width = description.height = 4;
    description.isData = isData;
    std::unique_ptr<OssEvImageWriter> writer;
    ASSERT_TRUE(OssEvImageWriter::open(path, description, &writer));
    ASSERT_TRUE(
        writer->writeTiles({std::make_shared<OssEvTile>(4, OssEvTile::Format::Float, value)}));
    ASSERT_TRUE(writer->finish());
}

double display(double linear)
{
    return linear <= 0.0031308 ? linear * 12.92 : 1.055 * std::pow(linear, 1.0 / 2.4) - 0.055;
}

TEST_F(ImageMeanings, alphaIsApartInFilesOfWholeNumbersAndInData)
{
    for (const char *name : {"a.png", "a.tif"}) {
        writeIntegers(folder.path(name), {0.1F, 0.2F, 0.3F, 0.5F}, false);
        const Image color = read(folder.path(name));
        const Image data = read(folder.path(name), 0, ColorSpace::Data);
        const float premultiplied[] = {0.1F, 0.2F, 0.3F};
        for (int k = 0; k < 3; ++k) {
            EXPECT_NEAR(color.texel(k, 1, 1), premultiplied[k], 1e-3) << name;
            EXPECT_NEAR(data.texel(k, 1, 1), display(double(premultiplied[k]) / 0.5), 1e-3)
                << name << ": as it stands in the file";
        }
        EXPECT_NEAR(color.texel(3, 1, 1), 0.5F, 1e-3);
        EXPECT_NEAR(data.texel(3, 1, 1), 0.5F, 1e-3);
        EXPECT_EQ(data.info.format, OssEvTile::Format::Float) << "16 bits are more than a half has";
        EXPECT_EQ(color.info.format, OssEvTile::Format::Half);
        EXPECT_NE(color.info.content, data.info.content);
    }
}

TEST_F(ImageMeanings, whatDoesNotFitIntoWholeNumbersIsCut)
{
    for (const char *name : {"a.png", "a.tif"}) {
        writeIntegers(folder.path(name), {5.0F, -2.0F, 0.25F, 1.0F}, true);
        const Image image = read(folder.path(name), 0, ColorSpace::Data);
        EXPECT_EQ(image.texel(0, 0, 0), 1.0F) << name;
        EXPECT_EQ(image.texel(1, 0, 0), 0.0F) << name;
        EXPECT_NEAR(image.texel(2, 0, 0), 0.25F, 1e-5F) << name;
        const std::string other = folder.path(std::string("clear ") + name);
        writeIntegers(other, {0.0F, 0.5F, 0.25F, 0.0F}, true);
        const Image clear = read(other, 0, ColorSpace::Data);
        EXPECT_EQ(clear.texel(0, 0, 0), 0.0F) << "nothing is divided by nothing";
        EXPECT_NEAR(clear.texel(1, 0, 0), 0.5F, 1e-4F) << "light without cover stays";
        EXPECT_EQ(clear.texel(3, 0, 0), 0.0F);
    }
}

TEST_F(ImageMeanings, meaningsOfFilesFollowFromWhatTheyHold)
{
    struct Case
    {
        const char *name;
        std::string content;
        ColorSpace colorSpace;
        int channels;
        OssEvTile::Format format;
        double value;
    };

    using Format = OssEvTile::Format;
    const std::string grey = "P5\n2 2\n255\n" + std::string(4, char(128));
    const std::string deepGrey = "P5\n2 2\n65535\n"
                                 + std::string("\x80\x01\x80\x01\x80\x01\x80\x01");
    const std::string color = "P6\n2 2\n255\n" + std::string(12, char(128));
    const double plain = 128.0 / 255.0;
    const double linear = std::pow((plain + 0.055) / 1.055, 2.4);
    PlainExr file;
    PlainExr single;
    single.channels = {"Y"};
    const Case cases[] = {
        {"grey.pgm", grey, ColorSpace::Automatic, 1, Format::Half, plain},
        {"grey.pgm", grey, ColorSpace::Data, 1, Format::Half, plain},
        {"grey.pgm", grey, ColorSpace::Color, 4, Format::Half, linear},
        {"deep.pgm", deepGrey, ColorSpace::Data, 1, Format::Float, 0x8001 / 65535.0},
        {"color.ppm", color, ColorSpace::Automatic, 4, Format::Half, linear},
        {"color.ppm", color, ColorSpace::Data, 4, Format::Half, plain},
        {"half.exr", file.bytes(), ColorSpace::Automatic, 4, Format::Half, 0.5},
        {"half.exr", file.bytes(), ColorSpace::Color, 4, Format::Half, 0.5},
        {"half.exr", file.bytes(), ColorSpace::Data, 4, Format::Half, 0.5},
        {"single.exr", single.bytes(), ColorSpace::Color, 1, Format::Half, 0.5},
    };
    for (const Case &meaning : cases) {
        const Image image = read(folder.write(meaning.name, meaning.content), 0,
                                 meaning.colorSpace);
        ASSERT_EQ(image.result.error(), "") << meaning.name;
        EXPECT_EQ(image.info.channels, meaning.channels) << meaning.name;
        EXPECT_EQ(image.info.format, meaning.format) << meaning.name;
        EXPECT_NEAR(image.texel(0, 1, 1), meaning.value, 1e-3) << meaning.name;
    }
}

} // namespace
