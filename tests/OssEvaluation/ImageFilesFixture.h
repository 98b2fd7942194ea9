#pragma once

#include "OssEvaluation/Files/OssEvImageFiles.h"
#include "OssEvaluation/PlainExr.h"
#include "OssEvaluation/TestFolder.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <utility>

/// Image files in a folder of the test's own, read as the engine reads them.
class ImageFilesFixture : public testing::Test
{
protected:
    using ColorSpace = OssEvImageProvider::ColorSpace;

    /// The tiles of a whole image.
    struct Image
    {
        OssEvImageInfo info;
        OssEvResult result;
        std::map<std::pair<int, int>, OssEvTilePointer> tiles;

        float texel(int channel, int x, int y) const
        {
            const auto found = tiles.find({x / OssEvTile::Size, y / OssEvTile::Size});
            if (found == tiles.end() || channel >= found->second->channels()) {
                ADD_FAILURE() << "nothing at " << x << ", " << y << " in channel " << channel;
                return 0.0F;
            }
            return found->second->texel(channel, x % OssEvTile::Size, y % OssEvTile::Size);
        }
    };

    Image read(const std::string &path, int reduction = 0,
               ColorSpace colorSpace = ColorSpace::Automatic)
    {
        Image image;
        const OssEvImageProvider::Image what{path, colorSpace, 1001};
        image.result = m_files.describe(what, &image.info);
        int height = image.info.height;
        for (int i = 0; i < reduction; ++i)
            height = (height + 1) / 2;
        const int rows = image.info.isSequential ? 1 : OssEvTilesAcross(height);
        for (int row = 0; row < rows && image.result; ++row) {
            image.result = m_files.read(
                what, reduction, row, {}, [&image](int x, int y, OssEvTilePointer tile) {
                    EXPECT_TRUE(image.tiles.emplace(std::pair(x, y), tile).second)
                        << "one tile for each place";
                });
        }
        return image;
    }

    std::string error(const std::string &path)
    {
        OssEvImageHeader header;
        const std::string told = OssEvImageFiles::readHeader(path, &header).error();
        OssEvImageInfo info;
        EXPECT_EQ(m_files.describe({path, ColorSpace::Automatic, 1001}, &info).error(), told)
            << "both say the same";
        return told;
    }

    std::string write(const std::string &name, const PlainExr &image) const
    {
        return folder.write(name, image.bytes());
    }

    TestFolder folder;
    OssEvImageFiles m_files;
};
