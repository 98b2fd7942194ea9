#include "OssEvaluation/Geometry/OssEvMesh.h"
#include "OssEvaluation/Kernels/MergeRows.h"
#include "OssEvaluation/Paint/OssEvPaintBake.h"
#include "OssEvaluation/Paint/OssEvSurfaceStroke.h"
#include "OssEvaluation/PaintTexels.h"

#include <glm/gtc/matrix_transform.hpp>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace {

using Tool = OssEvBrush::Tool;
using Within = OssEvBrush::Within;
using Color = OssEvPaintGround::Color;

constexpr int Resolution = 256;
constexpr int View = 400;

/// Strokes with brushes that depend on what is there.
class PaintTools : public testing::Test
{
protected:
    PaintTools()
    {
        m_brush.radius = 20.0;
        m_brush.hardness = 1.0;
    }

    static OssEvBrush colored(float red, float green, float blue, double radius = 20.0)
    {
        OssEvBrush brush;
        brush.color = {red, green, blue};
        brush.radius = radius;
        brush.hardness = 1.0;
        return brush;
    }

    /// From one texel to another, counted from the top left corner of patch 1001.
    void draw(const OssEvBrush &brush, glm::vec2 from, glm::vec2 to,
              OssEvPaintGround *ground = nullptr)
    {
        OssEvFlatStroke stroke(&m_buffer, brush, {1001, 1002}, ground);
        stroke.moveTo(double(from.x) / Resolution, 1.0 - double(from.y) / Resolution);
        stroke.moveTo(double(to.x) / Resolution, 1.0 - double(to.y) / Resolution);
        stroke.finish();
    }

    /// What is seen of paint alone.
    Color at(int x, int y, int patch = 1001) const
    {
        const OssEvPaintTile::Texel texel = texelOf(m_buffer, patch, x, y);
        return {texel[0], texel[1], texel[2], texel[3]};
    }

    static void expectColor(const Color &is, const Color &wanted, float tolerance = 0.002F)
    {
        for (std::size_t c = 0; c < 4; ++c)
            EXPECT_NEAR(is[c], wanted[c], tolerance) << "channel " << c;
    }

    OssEvBrush m_brush;
    OssEvPaintBuffer m_buffer{Resolution};
};

/// An image of one colour, painted and baked.
class Images
{
public:
    explicit Images(const Color &color, int resolution = Resolution)
    {
        OssEvBrush brush;
        brush.color = {color[0], color[1], color[2]};
        brush.radius = 2.0 * resolution;
        OssEvPaintBake::Job job;
        job.paint = OssEvPaintBuffer(resolution);
        OssEvFlatStroke stroke(&job.paint, brush, {1001});
        stroke.moveTo(0.5, 0.5);
        stroke.finish();
        job.path = m_path;
        EXPECT_TRUE(OssEvPaintBake::run(job));
    }

    ~Images() { std::remove(m_path.c_str()); }

    Images(const Images &) = delete;
    Images &operator=(const Images &) = delete;

    OssEvPaintGround::Images ground() const { return {{{1001, m_path}}, Resolution}; }

private:
    std::string m_path = testing::TempDir() + "PaintTools_beneath.exr";
};

TEST_F(PaintTools, modesBlendWithPaintAndWithTheImagesBeneath)
{
    // Of half the size: texels beneath are between those of the file.
    const Images images({0.5F, 0.25F, 1.0F, 1.0F}, Resolution / 2);
    OssEvPaintGround ground(images.ground());
    const auto &modes = OssEvMergeRows::modes();
    const auto mode = [&](const char *name) {
        return int(std::find(modes.cbegin(), modes.cend(), name) - modes.cbegin());
    };
    OssEvBrush brush = colored(0.5F, 0.5F, 0.5F);
    brush.blend = mode("Multiply");
    draw(brush, {60, 60}, {60, 60}, &ground);
    expectColor(at(60, 60), {0.25F, 0.125F, 0.5F, 1.0F});
    EXPECT_EQ(texelOf(m_buffer, 1001, 60, 60)[OssEvPaintTile::Keep], 0.0F);
    EXPECT_EQ(texelOf(m_buffer, 1001, 60, 100)[OssEvPaintTile::Keep], 1.0F);
    // Once more, on the paint of the first time, with half the opacity.
    brush.opacity = 0.5;
    draw(brush, {60, 60}, {60, 60}, &ground);
    expectColor(at(60, 60), {0.1875F, 0.09375F, 0.375F, 1.0F});
    // Where nothing is, a mode has nothing to work on.
    brush.opacity = 1.0;
    draw(brush, {Resolution + 60, 60}, {Resolution + 60, 60}, &ground);
    expectColor(at(60, 60, 1002), {0.5F, 0.5F, 0.5F, 1.0F});
    brush.blend = mode("Add");
    draw(brush, {60, 60}, {60, 60}, &ground);
    expectColor(at(60, 60), {0.6875F, 0.59375F, 0.875F, 1.0F});
    // In a space whose brightness is blue, what is blended by brightness keeps blue.
    brush.blend = mode("Luminosity");
    brush.luminance = {0.0F, 0.0F, 1.0F};
    draw(brush, {60, 60}, {60, 60}, &ground);
    EXPECT_NEAR(at(60, 60)[2], 0.5F, 1e-4F);
    EXPECT_TRUE(ground.state());
}

TEST_F(PaintTools, imagesThatCannotBeReadAreTold)
{
    OssEvPaintGround ground({{{1001, testing::TempDir() + "PaintTools_none.exr"}}, Resolution});
    {
        std::FILE *file = std::fopen((testing::TempDir() + "PaintTools_none.exr").c_str(), "w");
        ASSERT_NE(file, nullptr);
        std::fputs("no picture", file);
        std::fclose(file);
    }
    EXPECT_EQ(ground.tile({1001, 0, 0}), nullptr);
    EXPECT_NE(ground.state().error().find("PaintTools_none.exr"), std::string::npos);
    std::remove((testing::TempDir() + "PaintTools_none.exr").c_str());
}

TEST_F(PaintTools, clonesCopyWhatWasThereBeforeTheStroke)
{
    draw(colored(1, 0, 0), {50, 50}, {50, 50});
    draw(colored(0, 1, 0, 6.0), {60, 50}, {60, 50});
    m_brush.tool = Tool::Clone;
    m_brush.radius = 30.0;
    m_brush.cloneFrom = {-100.0, 0.0};
    // Far enough to come over its own copy.
    draw(m_brush, {150, 50}, {250, 50});
    expectColor(at(150, 50), {1, 0, 0, 1});
    expectColor(at(160, 50), {0, 1, 0, 1});
    EXPECT_EQ(at(150, 75)[3], 0.0F) << "clones what is bare";
    EXPECT_EQ(at(250, 50)[3], 0.0F) << "clones its own copy";
}

TEST_F(PaintTools, smearingTakesColorsAlongAndBlurringMixesThem)
{
    OssEvBrush whole = colored(1, 0, 0, 60.0);
    draw(whole, {60, 120}, {60, 120});
    whole.color = {0, 0, 1};
    draw(whole, {180, 120}, {180, 120});
    ASSERT_EQ(at(130, 120)[2], 1.0F);
    m_brush.tool = Tool::Blur;
    EXPECT_EQ(at(118, 120)[2], 0.0F);
    draw(m_brush, {118, 110}, {118, 130});
    EXPECT_GT(at(118, 120)[2], 0.2F);
    EXPECT_LT(at(118, 120)[0], 0.8F);
    expectColor(at(70, 120), {1, 0, 0, 1});
    m_brush.tool = Tool::Smear;
    m_brush.radius = 10.0;
    draw(m_brush, {100, 120}, {150, 120});
    expectColor(at(140, 120), {1, 0, 0, 1}, 0.05F);
    expectColor(at(140, 140), {0, 0, 1, 1});
}

TEST_F(PaintTools, picturesRepeatOverPatchesAndStencilsLetPaintThrough)
{
    std::vector<Color> pixels(64 * 64, Color{0, 0, 1, 1});
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        if (i % 64 < 32)
            pixels[i] = {1, 0, 0, 1};
    }
    m_brush.picture = std::make_shared<const OssEvPaintPicture>(64, 64, pixels);
    m_brush.pictureRepeats = 2.0;
    m_brush.radius = 100.0;
    draw(m_brush, {128, 128}, {128, 128});
    for (const int x : {80, 110, 160, 180})
        expectColor(at(x, 128), x % 128 < 64 ? Color{1, 0, 0, 1} : Color{0, 0, 1, 1}, 0.01F);
    // A sheet of 40 texels across around the middle, open in its right half.
    std::vector<float> open(64 * 64, 0.0F);
    for (std::size_t i = 0; i < open.size(); ++i)
        open[i] = i % 64 < 32 ? 0.0F : 1.0F;
    OssEvBrush green = colored(0, 1, 0, 100.0);
    green.stencil = std::make_shared<const OssEvStamp>(64, open);
    green.toSheet = {1.0 / 20.0, 0.0, -128.0 / 20.0, 0.0, -1.0 / 20.0, 128.0 / 20.0};
    draw(green, {128, 128}, {128, 128});
    expectColor(at(140, 128), {0, 1, 0, 1}, 0.01F);
    expectColor(at(118, 128), {0, 0, 1, 1}, 0.01F);
    expectColor(at(160, 128), {1, 0, 0, 1}, 0.01F);
}

TEST_F(PaintTools, masksLetThroughWhereTheyAreBright)
{
    // Two tiles of a mask half as fine: bright red on the left, half of it in the right one.
    OssEvPaintMask mask({1001}, Resolution / 2);
    constexpr OssEvWorkingSpace::Weights weights{0.5F, 0.25F, 0.25F};
    const OssEvTile red(4, OssEvTile::Format::Half, {2.0F, 0.0F, 0.0F, 1.0F});
    const OssEvTile low(1, OssEvTile::Format::Float, {0.5F});
    mask.setTile(1001, 0, 0, red, weights);
    EXPECT_FLOAT_EQ(mask.at(1001, 0.5, 0.5), 1.0F);
    EXPECT_FLOAT_EQ(mask.at(1002, 0.5, 0.5), 0.0F);
    mask.setTile(1001, 0, 0, low, weights);
    EXPECT_NEAR(mask.at(1001, 0.1, 0.9), 0.5F, 1e-4F);
    mask.setTile(1002, 0, 0, red, weights);
    EXPECT_FLOAT_EQ(mask.at(1002, 0.5, 0.5), 0.0F) << "not a patch of its";
    OssEvBrush brush = colored(1.0F, 1.0F, 0.0F);
    brush.mask = std::make_shared<OssEvPaintMask>(mask);
    draw(brush, {60.5F, 60.5F}, {60.5F, 60.5F});
    expectColor(at(60, 60), {0.5F, 0.5F, 0.0F, 0.5F});
    brush.mask = mask.turned();
    draw(brush, {160.5F, 60.5F}, {240.5F, 60.5F});
    expectColor(at(160, 60), {0.5F, 0.5F, 0.0F, 0.5F});
    draw(brush, {20.5F, 200.5F}, {20.5F, 200.5F});
    draw(brush, {20.5F, 200.5F}, {20.5F, 200.5F});
    expectColor(at(20, 200), {0.75F, 0.75F, 0.0F, 0.75F});
}

TEST_F(PaintTools, whatIsPaintedAlreadyOrBareCanBeKept)
{
    draw(colored(1, 0, 0), {60, 60}, {60, 60});
    OssEvBrush blue = colored(0, 0, 1);
    blue.within = Within::Painted;
    draw(blue, {75, 60}, {75, 60});
    expectColor(at(70, 60), {0, 0, 1, 1});
    EXPECT_EQ(at(90, 60)[3], 0.0F);
    blue.within = Within::Bare;
    draw(blue, {50, 60}, {50, 60});
    expectColor(at(50, 60), {1, 0, 0, 1});
    expectColor(at(35, 60), {0, 0, 1, 1});
}

/// On a cube of six patches that is looked at from a corner.
class PaintToolsOnObject : public PaintTools
{
protected:
    PaintToolsOnObject()
        : m_surface(std::make_shared<OssEvPaintSurface>(OssEvShapes::cube(), Resolution))
    {
        look(glm::vec3(2.0F));
        m_brush.sizeIn = OssEvBrush::SizeIn::World;
        m_brush.worldRadius = 0.3;
    }

    void look(const glm::vec3 &eye)
    {
        const glm::mat4 clip = glm::perspective(0.6F, 1.0F, 0.1F, 100.0F)
                               * glm::lookAt(eye, glm::vec3(0.0F), glm::vec3(0, 1, 0));
        m_view = std::make_shared<OssEvPaintView>(m_surface.get(), clip, View, View);
    }

    glm::dvec2 pixelOf(const glm::vec3 &place) const
    {
        return {glm::vec2(*m_view->project(place))};
    }

    void stroke(const OssEvBrush &brush, std::initializer_list<glm::vec3> places)
    {
        OssEvSurfaceStroke stroke(&m_buffer, brush, m_surface, m_view);
        for (const glm::vec3 &place : places) {
            const glm::dvec2 pixel = pixelOf(place);
            stroke.moveTo(pixel.x, pixel.y);
        }
        stroke.finish();
    }

    /// What is painted at a place of the surface that is seen.
    Color seenAt(const glm::vec3 &place) const
    {
        const glm::dvec2 pixel = pixelOf(place);
        const auto uv = m_view->uvAt(*m_surface, pixel.x, pixel.y);
        EXPECT_TRUE(uv.has_value());
        return OssEvPaintReader(&m_buffer, nullptr).at(uv.value_or(glm::vec2(0.0F)));
    }

    std::size_t patchesFilledBy(Within within, const glm::vec3 &place)
    {
        m_buffer.clear();
        OssEvBrush brush = m_brush;
        brush.tool = Tool::Fill;
        brush.within = within;
        OssEvSurfaceStroke stroke(&m_buffer, brush, m_surface, m_view);
        const glm::dvec2 pixel = pixelOf(place);
        EXPECT_TRUE(stroke.keepWithin(pixel.x, pixel.y));
        EXPECT_TRUE(stroke.fill(std::nullopt, [](double) { return true; }));
        return m_buffer.patches().size();
    }

    std::shared_ptr<OssEvPaintSurface> m_surface;
    std::shared_ptr<const OssEvPaintView> m_view;
};

TEST_F(PaintToolsOnObject, strokesOverAnEdgeLeaveNoTexelOut)
{
    for (const glm::vec3 &eye :
         {glm::vec3(3.0F, 0.0F, 3.0F), glm::vec3(1.0F, 0.7F, 3.0F), glm::vec3(0.7F, 0.5F, 3.0F)}) {
        look(eye);
        m_buffer.clear();
        m_brush.worldRadius = 0.1;
        stroke(m_brush, {{0.3F, 0.0F, 0.5F}, {0.5F, -0.1F, 0.3F}});
        int bare = 0;
        for (const int patch : m_surface->mesh()->patches()) {
            for (int i = 0; i < Resolution * Resolution; ++i) {
                const OssEvPaintBuffer::Place place{patch, i % Resolution / OssEvPaintTile::Size,
                                                    i / Resolution / OssEvPaintTile::Size};
                const auto tile = m_surface->tile(place);
                const auto texel = std::size_t(i / Resolution % OssEvPaintTile::Size)
                                       * OssEvPaintTile::Size
                                   + std::size_t(i % Resolution % OssEvPaintTile::Size);
                const glm::vec3 lies(tile->x[texel], tile->y[texel], tile->z[texel]);
                if (glm::length(lies - glm::vec3(0.5F, -0.05F, 0.5F)) < 0.07F
                    && at(i % Resolution, i / Resolution, patch)[3] < 0.99F)
                    ++bare;
            }
        }
        EXPECT_EQ(bare, 0) << eye.x;
    }
}

TEST_F(PaintToolsOnObject, strokesStayOnTheIslandWhereTheyBegin)
{
    m_brush.within = Within::Island;
    stroke(m_brush, {{0.4F, 0.3F, 0.5F}, {0.5F, 0.3F, 0.3F}});
    EXPECT_EQ(m_buffer.patches().size(), 1U);
    m_buffer.clear();
    m_brush.within = Within::Everywhere;
    stroke(m_brush, {{0.4F, 0.3F, 0.5F}, {0.5F, 0.3F, 0.3F}});
    EXPECT_GE(m_buffer.patches().size(), 2U);
}

TEST_F(PaintToolsOnObject, fillsCoverWhatTheyAreToldAlsoWhereNobodyLooks)
{
    const glm::vec3 place(0.1F, 0.2F, 0.5F);
    EXPECT_EQ(patchesFilledBy(Within::Island, place), 1U);
    expectColor(seenAt(place), {1, 1, 1, 1});
    EXPECT_EQ(patchesFilledBy(Within::Face, place), 1U);
    EXPECT_EQ(patchesFilledBy(Within::Material, place), 6U);
    EXPECT_EQ(patchesFilledBy(Within::Everywhere, place), 6U);
    m_buffer.clear();
    OssEvSurfaceStroke stroke(&m_buffer, m_brush, m_surface, m_view);
    EXPECT_FALSE(stroke.fill(std::nullopt, [](double part) { return part < 0.5; }));
    EXPECT_TRUE(m_buffer.isEmpty()) << "what is stopped leaves nothing";
}

TEST_F(PaintToolsOnObject, followersOfAFillCoverTheSameInTheirOwnColors)
{
    m_brush.tool = Tool::Gradient;
    m_brush.gradientTo = OssEvBrush::GradientTo::Color;
    m_brush.color = {1, 0, 0};
    m_brush.secondColor = {0, 0, 1};
    OssEvBrush other = m_brush;
    other.color = {0, 0, 0};
    other.secondColor = {0, 1, 0};
    const OssEvStroke::Line line{glm::vec2(pixelOf({0.0F, 0.5F, 0.0F})),
                                 glm::vec2(pixelOf({0.5F, -0.5F, 0.5F}))};
    const auto always = [](double) {
        return true;
    };
    OssEvPaintBuffer along(Resolution);
    OssEvSurfaceStroke leader(&m_buffer, m_brush, m_surface, m_view);
    OssEvSurfaceStroke follower(&along, other, m_surface, m_view);
    ASSERT_TRUE(leader.isFollowedBy(follower));
    ASSERT_TRUE(leader.fill(line, always, {&follower}));
    OssEvPaintBuffer alone(Resolution);
    OssEvSurfaceStroke byItself(&alone, other, m_surface, m_view);
    ASSERT_TRUE(byItself.fill(line, always));
    ASSERT_EQ(along.tiles().size(), alone.tiles().size());
    ASSERT_EQ(along.tiles().size(), m_buffer.tiles().size());
    for (const auto &[place, tile] : alone.tiles()) {
        ASSERT_NE(along.tile(place), nullptr);
        EXPECT_TRUE(std::equal(tile->values(),
                               tile->values() + OssEvPaintTile::Bytes / sizeof(std::uint16_t),
                               along.tile(place)->values()));
    }
    const Color side = seenAt({0.5F, 0.0F, 0.45F});
    EXPECT_NEAR(side[0] + side[2], 1.0F, 0.01F);
    EXPECT_GT(side[0], 0.1F);
    EXPECT_GT(side[2], 0.1F);
    expectColor(seenAt({-0.4F, 0.5F, -0.4F}), {1, 0, 0, 1}, 0.02F);
}

TEST_F(PaintToolsOnObject, gradientsRunAcrossThePictureOverWhatIsSeen)
{
    m_brush.tool = Tool::Gradient;
    OssEvSurfaceStroke stroke(&m_buffer, m_brush, m_surface, m_view);
    const glm::dvec2 from = pixelOf({0.0F, 0.5F, 0.0F});
    const glm::dvec2 to = pixelOf({0.5F, -0.5F, 0.5F});
    ASSERT_TRUE(stroke.fill(OssEvStroke::Line{glm::vec2(from), glm::vec2(to)},
                            [](double) { return true; }));
    EXPECT_EQ(m_buffer.patches().size(), 3U) << "paints what is hidden";
    const float top = seenAt({0.4F, 0.5F, 0.4F})[3];
    const float side = seenAt({0.5F, 0.0F, 0.45F})[3];
    EXPECT_GT(top, side + 0.2F);
    EXPECT_GT(side, 0.1F);
    EXPECT_GT(seenAt({-0.4F, 0.5F, -0.4F})[3], 0.99F);
}

TEST_F(PaintToolsOnObject, clonesAndSmearsFindTheirColorsAcrossPatches)
{
    // Red on the right side, seen from the corner; cloned to the front.
    OssEvBrush red = m_brush;
    red.color = {1, 0, 0};
    red.worldRadius = 0.1;
    const glm::vec3 source(0.5F, 0.0F, 0.2F);
    const glm::vec3 target(0.2F, 0.0F, 0.5F);
    stroke(red, {source});
    OssEvBrush clone = red;
    clone.tool = Tool::Clone;
    const glm::dvec2 from = pixelOf(source) - pixelOf(target);
    clone.cloneFrom = {from.x, from.y};
    stroke(clone, {target});
    expectColor(seenAt(target), {1, 0, 0, 1}, 0.01F);
    EXPECT_EQ(m_buffer.patches().size(), 2U);
    // Smeared from the right side over the edge to the front.
    m_buffer.clear();
    red.worldRadius = 0.15;
    stroke(red, {{0.5F, 0.0F, 0.3F}});
    OssEvBrush smear = m_brush;
    smear.tool = Tool::Smear;
    smear.worldRadius = 0.1;
    stroke(smear, {{0.5F, 0.0F, 0.35F}, {0.5F, 0.0F, 0.45F}, {0.4F, 0.0F, 0.5F}});
    EXPECT_GT(seenAt({0.42F, 0.0F, 0.5F})[0], 0.5F);
}

} // namespace
