#include "Ossa/Viewer/ObjectView.h"

#include "Ossa/Surfaces/ObjectCamera.h"
#include "Ossa/Surfaces/ScenePick.h"
#include "Ossa/Viewer/ViewerPictures.h"
#include "OssEvaluation/Geometry/OssEvMesh.h"
#include "OssRender/Draw/OssRdScene.h"
#include "support/InterfaceUser.h"
#include "support/PassTime.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QVector2D>

#include <set>

namespace {

constexpr int Size = 240;

/// Four colours, each in a quarter of the picture.
QImage quarters(int size)
{
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x)
            image.setPixelColor(x, y,
                                y < size / 2 ? (x < size / 2 ? Qt::red : Qt::green)
                                             : (x < size / 2 ? Qt::blue : Qt::white));
    }
    return image;
}

QImage plain(int size, const QColor &color)
{
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(color);
    return image;
}

void expectColor(const QColor &seen, const QColor &wanted, const char *where)
{
    EXPECT_NEAR(seen.red(), wanted.red(), 4) << where;
    EXPECT_NEAR(seen.green(), wanted.green(), 4) << where;
    EXPECT_NEAR(seen.blue(), wanted.blue(), 4) << where;
}

/// Drawing needs an OpenGL context; where there is none these tests say so.
class ObjectDrawing : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!renderer.problem().isEmpty())
            GTEST_SKIP() << "no OpenGL context can be made here: "
                         << qPrintable(renderer.problem());
    }

    /// Straight at the object; a plane reaches from a quarter to three quarters of the view.
    ObjectRenderer::View straight() const
    {
        ObjectRenderer::View view;
        view.size = {Size, Size};
        view.projection.ortho(-1.0F, 1.0F, -1.0F, 1.0F, 0.1F, 10.0F);
        view.camera.translate(QVector3D(0.0F, 0.0F, -3.0F) - renderer.centre());
        view.ground = Qt::black;
        view.isLit = false;
        return view;
    }

    void setPatches(const QList<int> &patches, int resolution = 64)
    {
        renderer.setPatches(patches, resolution);
    }

    void setPicture(int patch, const QImage &picture)
    {
        renderer.update(patch, picture, picture.rect());
    }

    QColor middle(const ObjectRenderer::View &view)
    {
        return renderer.render(view).pixelColor(Size / 2, Size / 2);
    }

    ObjectRenderer renderer;
};

TEST_F(ObjectDrawing, aPatchLiesOnTheObjectTheRightWayUp)
{
    renderer.setMesh(OssEvShapes::plane());
    setPatches({1001}, 256);
    setPicture(1001, quarters(256));
    ObjectRenderer::View view = straight();
    const QImage image = renderer.render(view);
    ASSERT_EQ(image.size(), QSize(Size, Size));
    expectColor(image.pixelColor(90, 90), Qt::red, "upper left");
    expectColor(image.pixelColor(150, 90), Qt::green, "upper right");
    expectColor(image.pixelColor(90, 150), Qt::blue, "lower left");
    expectColor(image.pixelColor(150, 150), Qt::white, "lower right");
    expectColor(image.pixelColor(20, 20), Qt::black, "beside it");

    // Part of a picture replaces that part.
    renderer.update(1001, plain(256, Qt::yellow), {0, 0, 128, 128});
    const QImage after = renderer.render(view);
    expectColor(after.pixelColor(90, 90), Qt::yellow, "upper left");
    expectColor(after.pixelColor(150, 90), Qt::green, "upper right");

    // The light leaves hues alone and gets weaker to the side.
    view.isLit = true;
    const QColor lit = renderer.render(view).pixelColor(150, 150);
    EXPECT_GT(lit.red(), 180);
    EXPECT_EQ(lit.red(), lit.green());
    view.camera.rotate(70.0F, 0.0F, 1.0F, 0.0F);
    EXPECT_LT(renderer.render(view).pixelColor(Size / 2 + 10, 150).red(), lit.red() - 20);
}

TEST_F(ObjectDrawing, largerPicturesAreFittedToTheTexture)
{
    renderer.setMesh(OssEvShapes::plane());
    setPatches({1001}, 4096);
    ASSERT_EQ(ObjectRenderer::textureSize(1, 4096), 2048);
    setPicture(1001, quarters(4096));
    renderer.update(1001, plain(4096, Qt::yellow), {2048, 0, 2048, 2048});
    const QImage image = renderer.render(straight());
    expectColor(image.pixelColor(90, 90), Qt::red, "upper left");
    expectColor(image.pixelColor(150, 90), Qt::yellow, "upper right");
}

TEST_F(ObjectDrawing, everyPatchHasItsOwnPicture)
{
    const QList<int> patches{1001, 1002, 1003, 1004, 1005, 1006};
    const QColor colors[] = {Qt::red, Qt::green, Qt::blue, Qt::cyan, Qt::magenta, Qt::yellow};
    renderer.setMesh(OssEvShapes::cube());
    setPatches(patches);
    std::set<QRgb> seen;
    std::set<QRgb> wanted;
    for (int i = 0; i < 6; ++i) {
        setPicture(patches.at(i), plain(64, colors[i]));
        wanted.insert(colors[i].rgb());
    }
    for (const QVector3D &turn :
         {QVector3D(0, 0, 0), {0, 90, 0}, {0, 180, 0}, {0, 270, 0}, {90, 0, 0}, {270, 0, 0}}) {
        ObjectRenderer::View view = straight();
        view.camera.rotate(turn.x(), 1, 0, 0);
        view.camera.rotate(turn.y(), 0, 1, 0);
        seen.insert(middle(view).rgb());
    }
    EXPECT_EQ(seen, wanted);
    // A patch that is no longer there is bare.
    setPatches({1001});
    setPatches(patches);
    const QColor front = middle(straight());
    EXPECT_TRUE(wanted.count(front.rgb()) == 0 || front == colors[0]);
}

TEST_F(ObjectDrawing, facesThatStraddlePatchesShowBoth)
{
    const auto mesh = std::make_shared<OssEvMesh>();
    mesh->positions = {
        {-0.5F, -0.5F, 0.0F}, {0.5F, -0.5F, 0.0F}, {0.5F, 0.5F, 0.0F}, {-0.5F, 0.5F, 0.0F}};
    mesh->uvs = {{0.5F, 0.1F}, {1.5F, 0.1F}, {1.5F, 0.9F}, {0.5F, 0.9F}};
    mesh->triangles = {{0, 1, 2}, {0, 2, 3}};
    mesh->faces = {0, 0};
    ASSERT_TRUE(mesh->finish("quad").ok());
    renderer.setMesh(mesh);
    setPatches({1001, 1002});
    setPicture(1001, plain(64, Qt::red));
    setPicture(1002, plain(64, Qt::green));
    const QImage drawn = renderer.render(straight());
    expectColor(drawn.pixelColor(Size / 2 - 30, Size / 2), Qt::red, "left");
    expectColor(drawn.pixelColor(Size / 2 + 30, Size / 2), Qt::green, "right");
}

TEST_F(ObjectDrawing, theViewShowsPicturesAsTheyArriveAndTurnsUnderTheMouse)
{
    ViewerPictures pictures;
    pictures.begin({1001}, 256, {});
    ObjectView view(&pictures);
    view.resize(Size, Size);
    view.setMesh(OssEvShapes::plane());
    view.setLit(false);
    view.show();
    const auto middle = [&] {
        return view.grab().toImage().pixelColor(Size / 2, Size / 2);
    };
    EXPECT_NE(middle(), QColor(Qt::green));
    const QImage green = plain(128, Qt::green);
    const auto tile = std::make_shared<OssEvTile>(4, OssEvTile::Format::Half,
                                                  std::array<float, 4>{0.0F, 1.0F, 0.0F, 1.0F});
    for (int i = 0; i < 4; ++i)
        pictures.setTile(1001, 256, {128 * (i % 2), 128 * (i / 2)}, green, tile);
    passTime(120);
    EXPECT_EQ(middle(), QColor(Qt::green));

    const QImage before = view.grab().toImage();
    const QPoint centre(Size / 2, Size / 2);
    dragMouse(&view, Qt::LeftButton, centre, centre + QPoint(60, 0));
    EXPECT_NE(view.grab().toImage(), before);
    dragMouse(&view, Qt::MiddleButton, centre, centre - QPoint(500, 0));
    EXPECT_NE(middle(), QColor(Qt::green)) << "moved out of the view";
    view.frameAll();
    EXPECT_EQ(middle(), QColor(Qt::green));
}

TEST_F(ObjectDrawing, anObjectOfAnySizeIsFramedWhenItComes)
{
    ViewerPictures pictures;
    pictures.begin({1001}, 256, {});
    ObjectView view(&pictures);
    view.resize(Size, Size);
    view.setLit(false);
    view.show();
    const QColor ground = view.grab().toImage().pixelColor(5, 5);
    for (const float scale : {100.0F, 1.0F, 0.01F}) {
        auto mesh = std::make_shared<OssEvMesh>(*OssEvShapes::plane());
        mesh->world = {scale, 0, 0, 0, 0, scale, 0, 0, 0, 0, scale, 0};
        view.setMesh(mesh);
        const QImage image = view.grab().toImage();
        EXPECT_NE(image.pixelColor(Size / 2, Size / 2), ground) << double(scale);
        for (const QPoint &corner : {QPoint(3, 3), QPoint(Size - 4, 3), QPoint(3, Size - 4)})
            EXPECT_EQ(image.pixelColor(corner), ground) << double(scale);
    }
    // The user's own view of it stays while nothing else comes.
    view.frameAll();
    const QImage framed = view.grab().toImage();
    turnWheel(&view, {120, 120}, 240);
    const QImage near = view.grab().toImage();
    EXPECT_NE(near, framed);
    view.resize(Size + 1, Size);
    view.resize(Size, Size);
    EXPECT_EQ(view.grab().toImage(), near);
}

TEST(ObjectMeasures, areThoseOfTheObjectOrOfNothing)
{
    ObjectRenderer renderer; // measures without a screen, too
    renderer.setMesh(OssEvShapes::plane());
    EXPECT_GT(renderer.radius(), 0.1F);
    auto moved = std::make_shared<OssEvMesh>(*OssEvShapes::plane());
    const QVector3D centre = renderer.centre();
    const float radius = renderer.radius();
    moved->world = {2, 0, 0, 10, 0, 2, 0, 0, 0, 0, 2, 0};
    renderer.setMesh(moved);
    EXPECT_NEAR(renderer.radius(), 2.0F * radius, 1e-4F);
    EXPECT_NEAR(renderer.centre().x(), 2.0F * centre.x() + 10.0F, 1e-4F);
    using Mesh = std::shared_ptr<const OssEvMesh>;
    for (const Mesh &nothing : {Mesh(), Mesh(std::make_shared<OssEvMesh>())}) {
        renderer.setMesh(nothing);
        EXPECT_EQ(renderer.centre(), QVector3D());
        EXPECT_EQ(renderer.radius(), 1.0F);
    }
}

TEST(ObjectTextures, takeNoMoreMemoryThanTheyMay)
{
    EXPECT_EQ(ObjectRenderer::textureSize(1, 4096), 2048);
    EXPECT_EQ(ObjectRenderer::textureSize(1, 512), 512);
    EXPECT_EQ(ObjectRenderer::textureSize(6, 4096), 1024);
    for (const int patches : {1, 6, 49, 50, 200, 1000}) {
        const qint64 size = ObjectRenderer::textureSize(patches, 4096);
        EXPECT_LE(patches * size * size * 16 / 3, ObjectRenderer::textureBytes) << patches;
        EXPECT_GE(size, 64);
    }
}

/// A camera that looks at a ball.
class ObjectCameras : public testing::Test
{
protected:
    ObjectCameras() { camera.frame(centre, radius); }

    /// From -1 to 1 within the view.
    QVector3D onScreen(const QVector3D &place, float aspect = 1.0F) const
    {
        return (camera.projection(aspect) * camera.view()).map(place);
    }

    float distance() const { return camera.view().map(centre).length(); }

    /// How the object's own upward direction is seen.
    QVector3D up() const { return camera.view().mapVector({0.0F, 1.0F, 0.0F}); }

    const QVector3D centre{3.0F, -2.0F, 7.0F};
    const float radius = 5.0F;
    ObjectCamera camera;
};

TEST_F(ObjectCameras, frameWhatTheyLookAtAndKeepItThere)
{
    camera.resetDirection();
    EXPECT_LT(onScreen(centre).toVector2D().length(), 1e-4F);
    const float framed = distance();
    camera.orbit({0.3, 5.0});
    EXPECT_NEAR(distance(), framed, 1e-3F);
    EXPECT_GT(up().z(), 0.9F) << "seen from above";
    // What is dragged stays under the pointer: a quarter of the view to the right.
    camera.pan({0.25, 0.0});
    EXPECT_NEAR(onScreen(centre).x(), 0.5F, 1e-3F);
}

TEST_F(ObjectCameras, showTheWholeBallInNarrowViewsToo)
{
    const QMatrix4x4 back = camera.view().inverted();
    for (const float aspect : {0.25F, 1.0F, 4.0F}) {
        for (const QVector3D &side : {QVector3D(1, 0, 0), {0, 1, 0}, {0, 0, 1}}) {
            const QVector3D at = onScreen(centre + radius * back.mapVector(side), aspect);
            for (int axis = 0; axis < 3; ++axis)
                EXPECT_LT(std::abs(at[axis]), 1.0F) << double(aspect);
        }
    }
}

TEST_F(ObjectCameras, comeAsNearAndGoAsFarAsIsOfUse)
{
    const float framed = distance();
    camera.zoomAt(centre, 2.0F);
    EXPECT_NEAR(distance(), framed / 2.0F, 1e-4F);
    camera.zoomAt(centre, 1e9F);
    EXPECT_NEAR(distance(), 0.05F * radius, 1e-4F);
    camera.zoomAt(centre, 1e-9F);
    EXPECT_NEAR(distance(), 200.0F * radius, 1e-2F);
    camera.frame(centre, 0.0F);
    EXPECT_GT(distance(), 0.0F) << "a point is looked at from somewhere";
}

TEST_F(ObjectCameras, comeNearerToAPlaceThatStaysWhereItIsAndNotThroughIt)
{
    constexpr QSizeF View(400.0, 200.0);
    camera.resetDirection();
    for (const QPointF &pointer : {QPointF(90.0, 60.0), QPointF(260.0, 150.0)}) {
        const QVector3D eye = camera.eye();
        const QVector3D way = camera.wayTo(pointer, View);
        const QVector3D seen = onScreen(eye + 3.0F * way, 2.0F);
        EXPECT_NEAR(seen.x(), pointer.x() / 200.0 - 1.0, 1e-4);
        EXPECT_NEAR(seen.y(), 1.0 - pointer.y() / 100.0, 1e-4);
        const QVector3D place = eye + 0.7F * distance() * way; // in front of the middle
        for (int i = 0; i < 60; ++i) {
            camera.zoomAt(place, 1.15F);
            ASSERT_LT((onScreen(place, 2.0F) - seen).toVector2D().length(), 2e-3F) << i;
            ASSERT_LT(camera.view().map(place).z(), -0.04F * radius) << "before the eye";
        }
        camera.orbit({0.1, 0.0});
        EXPECT_LT((onScreen(place, 2.0F) - seen).toVector2D().length(), 0.5F)
            << "what is looked at stays in view while it is turned";
        camera.frame(centre, radius);
    }
}

TEST(ScenePicks, meetWhatIsNearestWhereverItStands)
{
    const auto ball = std::make_shared<OssEvMesh>(*OssEvShapes::sphere());
    ball->world = {2, 0, 0, 5, 0, 2, 0, 0, 0, 0, 2, 0}; // twice as large, moved along x
    ASSERT_TRUE(ball->finish("ball"));
    const ScenePick::Ray ray{{5.0F, 0.0F, 10.0F}, {0.0F, 0.0F, -3.0F}};
    OssRdScene scene;
    scene.objects.push_back({OssRdGeometry::of(*OssEvShapes::plane()), {}});
    scene.objects.push_back({OssRdGeometry::of(*ball), {}});
    for (const auto &met : {ScenePick::firstOf(*ball, ray), ScenePick::firstOf(scene, ray)}) {
        ASSERT_TRUE(met);
        EXPECT_NEAR(met->x, 5.0F, 1e-4F);
        EXPECT_NEAR(met->z, 2.0F, 0.02F) << "facets lie a little within";
    }
    EXPECT_FALSE(ScenePick::firstOf(scene, {{5.0F, 0.0F, 10.0F}, {0.0F, 0.0F, 1.0F}}))
        << "behind the eye";
    EXPECT_FALSE(ScenePick::firstOf(*ball, {{0.0F, 9.0F, 10.0F}, {0.0F, 0.0F, -1.0F}}));
}

TEST_F(ObjectCameras, turnOverTheTopOnlyToTheTop)
{
    for (const double way : {50.0, -50.0}) {
        camera.orbit({0.0, way});
        EXPECT_GT(up().y(), 0.0F) << "upright";
        EXPECT_LT(up().y(), 0.1F) << "from above or below";
    }
    const QVector3D before = onScreen({1, 2, 3});
    camera.orbit({360.0 / 240.0, 0.0});
    EXPECT_LT((onScreen({1, 2, 3}) - before).length(), 1e-3F) << "once around";
}

} // namespace
