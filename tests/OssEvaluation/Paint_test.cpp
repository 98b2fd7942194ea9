#include "OssEvaluation/Files/OssEvImageFiles.h"
#include "OssEvaluation/Files/OssEvImageWriter.h"
#include "OssEvaluation/Paint/OssEvPaintBake.h"
#include "OssEvaluation/Paint/OssEvStroke.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <functional>

namespace {

constexpr int Resolution = 256;
using Texel = OssEvPaintTile::Texel;
const Texel Bare{0.0F, 0.0F, 0.0F, 0.0F, 1.0F};

struct Dab
{
    double x; // texels from the left of patch 1001, to the right
    double y; // texels from the top of patch 1001, downwards
};

/// Where dabs fall along a line, as the distance between them says.
std::vector<Dab> dabsBetween(const Dab &from, const Dab &to, double radius)
{
    const double step = OssEvStroke::Spacing * radius;
    const double length = std::hypot(to.x - from.x, to.y - from.y);
    std::vector<Dab> dabs;
    for (double at = 0.0; at <= length; at += step)
        dabs.push_back(
            {from.x + (to.x - from.x) * at / length, from.y + (to.y - from.y) * at / length});
    return dabs;
}

/// What a stroke makes of a texel, in plain words: the most that one dab covers, with the stroke's
/// opacity over what was there.
Texel painted(Texel before, const std::vector<Dab> &dabs, const OssEvBrush &brush, double x,
              double y)
{
    double most = 0.0;
    for (const Dab &dab : dabs) {
        const double distance = std::hypot(x + 0.5 - dab.x, y + 0.5 - dab.y);
        const double edge = std::max(1.0, brush.radius * (1.0 - brush.hardness));
        const double t = std::min(1.0, std::max(0.0, (brush.radius + 0.5 - distance) / edge));
        most = std::max(most, t * t * (3.0 - 2.0 * t));
    }
    const double alpha = most * brush.opacity;
    for (std::size_t plane = 0; plane < before.size(); ++plane) {
        double source = 0.0;
        if (!brush.erases && plane < 3)
            source = double(brush.color[plane]);
        if (!brush.erases && plane == 3)
            source = 1.0;
        before[plane] = float(alpha * source + (1.0 - alpha) * double(before[plane]));
    }
    return before;
}

Texel texelOf(const OssEvPaintBuffer &buffer, int patch, int x, int y)
{
    const OssEvPaintTilePointer tile = buffer.tile(
        {patch, x / OssEvPaintTile::Size, y / OssEvPaintTile::Size});
    return tile ? tile->texel(y % OssEvPaintTile::Size * OssEvPaintTile::Size
                              + x % OssEvPaintTile::Size)
                : Bare;
}

/// Alpha at a place counted from patch 1001, also beyond its borders; below 0 where no patch is.
float alphaAt(const OssEvPaintBuffer &buffer, int x, int y)
{
    const bool right = x >= Resolution;
    const bool above = y < 0;
    if (right && above)
        return -1.0F;
    const int patch = right ? 1002 : above ? 1011 : 1001;
    return texelOf(buffer, patch, right ? x - Resolution : x, above ? y + Resolution : y)[3];
}

/// Patches 1001 and 1002 lie side by side, 1011 above 1001.
const std::vector<int> Patches{1001, 1002, 1011};

OssEvStroke::Areas draw(OssEvPaintBuffer *buffer, const OssEvBrush &brush, const Dab &from,
                        const Dab &to, const std::vector<int> &patches = Patches)
{
    OssEvStroke stroke(buffer, brush, patches);
    OssEvStroke::Areas areas = stroke.moveTo(from.x / Resolution, 1.0 - from.y / Resolution);
    for (const auto &area : stroke.moveTo(to.x / Resolution, 1.0 - to.y / Resolution))
        areas[area.first] = area.second;
    return areas;
}

class Paint : public testing::Test
{
protected:
    Paint()
        : folder(std::filesystem::temp_directory_path()
                 / ("paint-" + std::to_string(::testing::UnitTest::GetInstance()->random_seed())
                    + ::testing::UnitTest::GetInstance()->current_test_info()->name()))
    {
        std::filesystem::create_directories(folder);
    }

    ~Paint() override { std::filesystem::remove_all(folder); }

    std::string file(const std::string &name) const { return (folder / name).string(); }

    using Picture = std::function<std::array<float, 4>(int x, int y)>;

    void write(const std::string &path, int size, const Picture &picture) const
    {
        OssEvImageWriter::Description description;
        description.width = description.height = size;
        description.isPrecise = true;
        std::unique_ptr<OssEvImageWriter> writer;
        ASSERT_TRUE(OssEvImageWriter::open(path, description, &writer).ok());
        for (int row = 0; row < OssEvTilesAcross(size); ++row) {
            std::vector<OssEvTilePointer> tiles;
            for (int column = 0; column < OssEvTilesAcross(size); ++column) {
                auto tile = std::make_shared<OssEvTile>(4, OssEvTile::Format::Float);
                for (int i = 0; i < OssEvTile::Texels; ++i) {
                    const auto color = picture(column * OssEvTile::Size + i % OssEvTile::Size,
                                               row * OssEvTile::Size + i / OssEvTile::Size);
                    for (int c = 0; c < 4; ++c)
                        tile->floatPlane(c)[i] = color[std::size_t(c)];
                }
                tiles.push_back(tile);
            }
            ASSERT_TRUE(writer->writeTiles(tiles).ok());
        }
        ASSERT_TRUE(writer->finish().ok());
    }

    static std::array<float, 4> read(const std::string &path, int x, int y)
    {
        OssEvImageFiles files;
        OssEvImageProvider::Image image;
        image.name = path;
        std::array<float, 4> color{-1.0F, -1.0F, -1.0F, -1.0F};
        const OssEvResult result = files.read(
            image, 0, y / OssEvTile::Size, {},
            [&](int tileX, int tileY, const OssEvTilePointer &tile) {
                if (tileX != x / OssEvTile::Size || tileY != y / OssEvTile::Size)
                    return;
                for (int c = 0; c < tile->channels(); ++c)
                    color[std::size_t(c)] = tile->texel(c, x % OssEvTile::Size,
                                                        y % OssEvTile::Size);
            });
        EXPECT_TRUE(result.ok()) << result.error();
        return color;
    }

    std::filesystem::path folder;
};

TEST_F(Paint, strokesAreTheMostThatADabCoversOverWhatWasThere)
{
    OssEvPaintBuffer buffer(Resolution);
    std::map<std::pair<int, int>, Texel> expected;
    OssEvBrush brush;

    struct Stroke
    {
        Dab from;
        Dab to;
        double radius;
        double hardness;
        double opacity;
        bool erases;
    };

    const Stroke strokes[] = {{{60, 60}, {200, 120}, 20, 0.3, 0.7, false},
                              {{200, 40}, {50, 140}, 7.5, 1.0, 1.0, false},
                              {{128, 20}, {128, 200}, 12, 0.0, 0.6, true},
                              {{127, 127}, {129, 129}, 0.5, 1.0, 1.0, false}};
    float shade = 0.25F;
    for (const Stroke &stroke : strokes) {
        brush.radius = stroke.radius;
        brush.hardness = stroke.hardness;
        brush.opacity = stroke.opacity;
        brush.erases = stroke.erases;
        brush.color = {shade, 4.0F * shade, 1.0F - shade};
        shade += 0.2F;
        const auto dabs = dabsBetween(stroke.from, stroke.to, std::max(brush.radius, 4.0));
        for (int y = 0; y < Resolution; ++y) {
            for (int x = 0; x < Resolution; ++x) {
                Texel &texel = expected.emplace(std::pair(x, y), Bare).first->second;
                texel = painted(texel, dabs, brush, x, y);
            }
        }
        draw(&buffer, brush, stroke.from, stroke.to);
    }
    double worst = 0.0;
    for (const auto &entry : expected) {
        const Texel now = texelOf(buffer, 1001, entry.first.first, entry.first.second);
        for (std::size_t plane = 0; plane < now.size(); ++plane)
            worst = std::max(worst, double(std::abs(now[plane] - entry.second[plane])));
    }
    // Half floats up to 2, rounded once for each stroke.
    EXPECT_LT(worst, 4.0 / 2048.0);
    EXPECT_LT(texelOf(buffer, 1001, 128, 60)[OssEvPaintTile::Keep], 0.5F) << "the eraser erased";
}

TEST_F(Paint, aStrokeDoesNotCareHowOftenThePointerWasSeen)
{
    OssEvBrush brush;
    brush.radius = 16;
    OssEvPaintBuffer once(Resolution);
    draw(&once, brush, {40, 40}, {200, 170});
    OssEvPaintBuffer often(Resolution);
    OssEvStroke stroke(&often, brush, Patches);
    for (int i = 0; i <= 100; ++i)
        stroke.moveTo((40.0 + 1.6 * i) / Resolution, 1.0 - (40.0 + 1.3 * i) / Resolution);
    float worst = 0.0F;
    for (int y = 0; y < Resolution; ++y) {
        for (int x = 0; x < Resolution; ++x)
            worst = std::max(
                worst, std::abs(texelOf(once, 1001, x, y)[3] - texelOf(often, 1001, x, y)[3]));
    }
    EXPECT_LT(worst, 0.002F);
}

TEST_F(Paint, aStrokeGoesOnOverTheBordersOfPatches)
{
    OssEvBrush brush;
    brush.radius = 20;
    brush.hardness = 0.5;
    const Dab from{200, 30};
    const Dab to{320, -40}; // over the corner where four patches meet
    OssEvPaintBuffer buffer(Resolution);
    const OssEvStroke::Areas areas = draw(&buffer, brush, from, to);
    const auto dabs = dabsBetween(from, to, brush.radius);
    float worst = 0.0F;
    for (int y = -100; y < 100; ++y) {
        for (int x = 100; x < 400; ++x) {
            const float seen = alphaAt(buffer, x, y);
            if (seen >= 0.0F)
                worst = std::max(worst, std::abs(seen - painted(Bare, dabs, brush, x, y)[3]));
        }
    }
    EXPECT_LT(worst, 0.001F);
    EXPECT_EQ(buffer.patches(), Patches);
    for (const int patch : Patches)
        EXPECT_EQ(areas.count(patch), 1U) << patch;
}

TEST_F(Paint, whatAStrokeSaysItChangedLeadsBackAndForth)
{
    OssEvPaintBuffer buffer(Resolution);
    OssEvBrush brush;
    draw(&buffer, brush, {30, 30}, {60, 60});
    const OssEvPaintBuffer before = buffer;
    OssEvStroke stroke(&buffer, brush, Patches);
    stroke.moveTo(0.4, 0.6);
    stroke.moveTo(0.9, 0.2);
    const OssEvPaintBuffer after = buffer;
    for (const OssEvStroke::Change &change : stroke.changes())
        buffer.setTile(change.place, change.before);
    EXPECT_EQ(buffer.tiles(), before.tiles());
    for (const OssEvStroke::Change &change : stroke.changes())
        buffer.setTile(change.place, change.after);
    EXPECT_EQ(buffer.tiles(), after.tiles());
    EXPECT_NE(before.tiles(), after.tiles());
    EXPECT_LT(texelOf(before, 1001, 102, 102)[3], 0.01F)
        << "tiles before a stroke stay as they were";
}

TEST_F(Paint, coarsePicturesShowTheMeanOfThePaint)
{
    OssEvPaintBuffer buffer(Resolution);
    OssEvBrush brush;
    brush.radius = 9;
    draw(&buffer, brush, {120, 120}, {140, 150});
    constexpr int Coarse = 64;
    std::vector<Texel> row(Coarse);
    EXPECT_FALSE(buffer.readRow(1002, Coarse, 0, 30, Coarse, row.data()));
    ASSERT_TRUE(buffer.readRow(1001, Coarse, 0, 33, Coarse, row.data()));
    for (int x = 0; x < Coarse; ++x) {
        float sum = 0.0F;
        for (int i = 0; i < 16; ++i)
            sum += texelOf(buffer, 1001, 4 * x + i % 4, 4 * 33 + i / 4)[3];
        EXPECT_NEAR(row[std::size_t(x)][3], sum / 16.0F, 1e-5F) << x;
    }
    EXPECT_GT(row[32][3], 0.5F);
    std::vector<Texel> fine(1);
    ASSERT_TRUE(buffer.readRow(1001, 4 * Resolution, 4 * 130 + 2, 4 * 135 + 1, 1, fine.data()));
    EXPECT_EQ(fine[0], texelOf(buffer, 1001, 130, 135));
}

TEST_F(Paint, bakingComposesThePaintOverTheImage)
{
    const auto beneath = [](int x, int y) {
        const float alpha = float(x + 1) / 256.0F;
        return std::array<float, 4>{alpha * 0.5F, alpha * float(y) / 256.0F, alpha * 3.0F, alpha};
    };
    write(file("beneath.exr"), Resolution, beneath);
    OssEvPaintBake::Job job;
    job.paint = OssEvPaintBuffer(Resolution);
    OssEvBrush brush;
    brush.color = {0.9F, 0.1F, 2.0F};
    brush.opacity = 0.6;
    draw(&job.paint, brush, {60, 60}, {200, 90});
    brush.erases = true;
    draw(&job.paint, brush, {100, 30}, {110, 220});
    job.beneath = file("beneath.exr");
    job.path = file("baked.exr");
    job.isPrecise = true;
    OssEvResult result = OssEvPaintBake::run(job);
    ASSERT_TRUE(result.ok()) << result.error();
    for (const auto &place :
         {std::pair(60, 60), {105, 70}, {105, 200}, {127, 76}, {128, 76}, {250, 250}}) {
        const Texel paint = texelOf(job.paint, 1001, place.first, place.second);
        const auto under = beneath(place.first, place.second);
        const auto now = read(file("baked.exr"), place.first, place.second);
        for (std::size_t c = 0; c < 4; ++c)
            EXPECT_NEAR(now[c], paint[c] + paint[OssEvPaintTile::Keep] * under[c], 1e-5F)
                << place.first << ", " << place.second << " channel " << c;
    }

    job.beneath = file("gone.exr");
    result = OssEvPaintBake::run(job);
    EXPECT_FALSE(result.ok());
    EXPECT_NE(result.error().find("gone.exr"), std::string::npos) << result.error();
    job.beneath.clear();
    job.path = file("fresh.exr");
    ASSERT_TRUE(OssEvPaintBake::run(job).ok());
    EXPECT_EQ(read(file("fresh.exr"), 250, 250), (std::array<float, 4>{}));
    EXPECT_NEAR(read(file("fresh.exr"), 60, 60)[3], 0.6F, 1e-3F);
}

TEST_F(Paint, imagesOfAnotherResolutionAreFittedBeneath)
{
    // A ramp is the same however finely it is sampled.
    const auto ramp = [](int size) {
        return [size](int x, int y) {
            return std::array<float, 4>{(float(x) + 0.5F) / float(size),
                                        (float(y) + 0.5F) / float(size), 0.0F, 1.0F};
        };
    };
    for (const int size : {96, 300}) {
        write(file("ramp.exr"), size, ramp(size));
        OssEvPaintBake::Job job;
        job.paint = OssEvPaintBuffer(Resolution);
        job.beneath = file("ramp.exr");
        job.path = file("fitted.exr");
        job.isPrecise = true;
        ASSERT_TRUE(OssEvPaintBake::run(job).ok());
        for (const int at : {10, 127, 128, 200, 240}) {
            const auto now = read(file("fitted.exr"), at, Resolution - at);
            EXPECT_NEAR(now[0], (at + 0.5) / Resolution, 1e-4) << size;
            EXPECT_NEAR(now[1], (Resolution - at + 0.5) / Resolution, 1e-4) << size;
        }
    }
}

} // namespace
