#include "Ossa/Surfaces/LitRenderer.h"
#include "Ossa/Surfaces/LitScene.h"
#include "Ossa/Surfaces/ObjectCamera.h"
#include "Ossa/Viewer/ObjectView.h"
#include "Ossa/Viewer/ViewerPanel.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "support/InterfaceUser.h"
#include "support/ModelFixture.h"
#include "support/PassTime.h"
#include "support/Text.h"

#include <QAction>
#include <QSignalSpy>
#include <QTest>

// The material in light, as the Viewer follows it.

namespace {

class LitView : public ModelFixture
{
protected:
    void SetUp() override
    {
        ModelFixture::SetUp();
        m_color = add("Procedural/Color", "Rust");
        m_shader = add("Shaders/Standard Surface", "Metal");
        ASSERT_TRUE(wire(m_color, m_shader, "Base Color"));
        OssShaderNetworkManager::instance()->setCurrentShaderNetwork(m_network);
        m_network->geoEntity()->setGeometry(text("plane"));
        look(m_shader);
        m_scene.setResolution(256);
        m_scene.setActive(true);
        ASSERT_TRUE(QTest::qWaitFor([this] { return whole(); }, 20000)) << problem();
    }

    void TearDown() override
    {
        m_scene.setActive(false);
        ModelFixture::TearDown();
    }

    void look(OssSnBaseNode *node)
    {
        m_network->viewerNode()->setInputNode(text("1"), node, node->prefferedOutputPoint());
        m_network->setViewerNodeCurrentEdge(1, true);
    }

    std::string problem() const { return m_scene.problem().toStdString(); }

    bool whole() const
    {
        const auto scene = m_scene.scene();
        return scene->probe && scene->objects.size() == 1
               && scene->objects.front().materials.count(1001) == 1;
    }

    /// One value everywhere, which needs no texture.
    glm::vec4 value(OssRdMaterial::Map map) const
    {
        const auto scene = m_scene.scene();
        const OssRdMaterial::Channel4 &channels =
            scene->objects.front().materials.at(1001).maps[std::size_t(map)];
        return channels.texels ? glm::vec4(-1.0F) : channels.value;
    }

    /// Whether a map comes to be that value.
    bool comes(OssRdMaterial::Map map, const glm::vec4 &wanted)
    {
        return QTest::qWaitFor([&] { return glm::distance(value(map), wanted) < 2e-3F; }, 20000);
    }

    OssSnBaseNode *m_color = nullptr;
    OssSnBaseNode *m_shader = nullptr;
    LitScene m_scene;
};

TEST_F(LitView, followsTheChannelsOfTheMaterial)
{
    m_color->setAttribute(text("Color"), QColor::fromRgbF(1.0, 0.5, 0.0));
    m_shader->setAttribute(text("Metallic"), 1.0);
    m_shader->setAttribute(text("Roughness"), 0.25);
    m_scene.follow();
    EXPECT_TRUE(comes(OssRdMaterial::Shape, {0.5F, 0.5F, 1.0F, 0.25F})) << problem();
    EXPECT_TRUE(comes(OssRdMaterial::Color, {1.0F, 0.5F, 0.0F, 1.0F})) << problem();

    // What is not a material is a base colour on what is usual otherwise.
    look(m_color);
    m_scene.follow();
    EXPECT_TRUE(comes(OssRdMaterial::Shape, {0.5F, 0.5F, 0.0F, 0.5F})) << problem();
    EXPECT_TRUE(comes(OssRdMaterial::Color, {1.0F, 0.5F, 0.0F, 1.0F})) << problem();
}

TEST_F(LitView, eachMaterialIsOnTheFacesOfItsSlotAndWithoutOneTheObjectIsBare)
{
    // The ball has the slots "Ball" and "Foot".
    m_network->geoEntity()->setGeometry(text("shaderBall"));
    OssSnBaseNode *foot = add("Shaders/Standard Surface", "Foot");
    foot->setAttribute(text("Metallic"), 1.0);
    m_scene.follow();
    const auto objects = [this] {
        return m_scene.scene()->objects;
    };
    const auto metallicOf = [&objects](std::size_t which) {
        const auto all = objects();
        const bool has = all.size() == 2 && all[which].materials.count(1001) == 1;
        return has ? all[which].materials.at(1001).maps[OssRdMaterial::Shape].value.b : -1.0F;
    };
    ASSERT_TRUE(QTest::qWaitFor([&] { return metallicOf(1) == 1.0F; }, 20000)) << problem();
    EXPECT_EQ(metallicOf(0), 0.0F);
    EXPECT_EQ(objects()[0].slots, std::vector<int>{0});
    EXPECT_EQ(objects()[1].slots, std::vector<int>{1});
    EXPECT_EQ(objects()[0].geometry, objects()[1].geometry);

    // The same from the other side: what is looked at comes first.
    look(foot);
    m_scene.follow();
    ASSERT_TRUE(QTest::qWaitFor([&] { return metallicOf(0) == 1.0F; }, 20000)) << problem();
    EXPECT_EQ(objects()[0].slots, std::vector<int>{1});
    // What is no material is looked at all over.
    look(m_color);
    m_scene.follow();
    EXPECT_EQ(objects().size(), 1U);
    EXPECT_TRUE(objects()[0].slots.empty());

    m_network->setViewerNodeCurrentEdge(2, true);
    m_scene.follow();
    EXPECT_TRUE(m_scene.isBare());
    ASSERT_EQ(objects().size(), 1U);
    EXPECT_TRUE(objects()[0].materials.empty());
}

TEST_F(LitView, progressOfTheMapsOnlyGrowsAndTheUserStopsIt)
{
    m_network->geoEntity()->setGeometry(text("cube")); // six patches of four maps
    QVector<int> told;
    QObject::connect(&m_scene, &LitScene::progressed, &m_scene,
                     [&told](int thousandths) { told.append(thousandths); });
    m_scene.follow();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !told.isEmpty() && told.last() == 1000; }, 20000));
    EXPECT_GT(told.size(), 3);
    EXPECT_TRUE(std::is_sorted(told.cbegin(), told.cend()));

    m_scene.setResolution(512);
    OssStatusManager::instance()->askToStop();
    EXPECT_EQ(told.last(), 1000);
    const auto size = [this] {
        const auto scene = m_scene.scene();
        const auto &texels = scene->objects.front().materials.at(1001).maps[0].texels;
        return texels ? texels->size : 0;
    };
    const int before = size();
    passTime(100);
    EXPECT_EQ(size(), before);
    // What follows begins it again.
    told.clear();
    m_scene.follow();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !told.isEmpty() && told.last() == 1000; }, 20000));
}

TEST_F(LitView, theViewerFollowsEachChannelWhileAValueIsDragged)
{
    m_scene.setActive(false);
    ViewerPanel panel;
    panel.resize(500, 500);
    panel.show();
    OssActionTreeManager::instance()->findAction(text("/Ossa/Viewer/Show Object"))->trigger();
    auto *object = panel.findChild<ObjectView *>();
    ASSERT_NE(object, nullptr);
    const auto shape = [object] {
        const auto scene = object->light()->scene();
        const auto &objects = scene->objects;
        const bool has = !objects.empty() && objects.front().materials.count(1001) == 1;
        return has ? objects.front().materials.at(1001).maps[OssRdMaterial::Shape].value
                   : glm::vec4(0.0F);
    };
    ASSERT_TRUE(QTest::qWaitFor([&] { return shape().a == 0.5F; }, 20000));
    // No step of the history: as while the hand holds a slider.
    {
        const OssUndoManager::Pause pause;
        m_shader->setAttribute(text("Roughness"), 0.25);
    }
    EXPECT_TRUE(QTest::qWaitFor([&] { return shape().a == 0.25F; }, 20000));
    m_shader->setAttribute(text("Metallic"), 1.0);
    EXPECT_TRUE(QTest::qWaitFor([&] { return shape().b == 1.0F; }, 20000));
}

TEST_F(LitView, whatWasKeptLiesLeftOfALineThatTheUserDraws)
{
    m_scene.setActive(false);
    ViewerPanel panel;
    panel.resize(500, 500);
    panel.show();
    OssActionTreeManager::instance()->findAction(text("/Ossa/Viewer/Show Object"))->trigger();
    OssActionTreeManager::instance()->findAction(text("/Ossa/Viewer/Show Base Color"))->trigger();
    auto *object = panel.findChild<ObjectView *>();
    const auto color = [object] {
        const auto scene = object->light()->scene();
        const bool has = scene->objects.size() == 1 && scene->objects[0].materials.count(1001) == 1;
        return has ? scene->objects[0].materials.at(1001).maps[OssRdMaterial::Color].value
                   : glm::vec4(-1.0F);
    };
    m_color->setAttribute(text("Color"), QColor(Qt::red));
    ASSERT_TRUE(QTest::qWaitFor([&] { return color().r == 1.0F; }, 20000));
    OssActionTreeManager::instance()->findAction(text("/Ossa/Viewer/Compare"))->trigger();
    ASSERT_TRUE(object->isComparing());
    m_color->setAttribute(text("Color"), QColor(Qt::blue));
    ASSERT_TRUE(QTest::qWaitFor([&] { return color().b == 1.0F; }, 20000));
    const auto seen = [object](int x) {
        return object->grab().toImage().pixelColor(x, object->height() / 2 + 20);
    };
    const auto isRed = [](const QColor &c) {
        return c.red() > 200 && c.blue() < 50;
    };
    const auto isBlue = [](const QColor &c) {
        return c.blue() > 200 && c.red() < 50;
    };
    const int middle = object->width() / 2;
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return isRed(seen(middle - 12)) && isBlue(seen(middle + 12)); }, 20000));

    // Drawn to the left, with the button that else turns the object.
    const QPoint line(middle, object->height() / 2);
    dragMouse(object, Qt::LeftButton, line, line - QPoint(40, 0));
    EXPECT_TRUE(QTest::qWaitFor([&] { return isBlue(seen(middle - 12)); }, 20000));
    EXPECT_TRUE(isRed(seen(middle - 52)));
    OssActionTreeManager::instance()->findAction(text("/Ossa/Viewer/Compare"))->trigger();
    EXPECT_FALSE(object->isComparing());
    EXPECT_TRUE(QTest::qWaitFor([&] { return isBlue(seen(middle - 52)); }, 20000));
}

TEST_F(LitView, surfacesStandOutWhenAskedTo)
{
    OssSnBaseNode *height = add("Procedural/Scalar", "Height");
    ASSERT_TRUE(wire(height, m_shader, "Displacement"));
    height->setAttribute(text("Value"), 0.5);
    m_shader->setAttribute(text("Height"), 0.1);
    const auto highest = [this] {
        const auto scene = m_scene.scene();
        float most = 0.0F;
        for (const OssRdGeometry::Vertex &vertex : scene->objects.front().geometry->vertices)
            most = std::max(most, vertex.position.z);
        return most;
    };
    m_scene.follow();
    EXPECT_EQ(highest(), 0.0F);
    m_scene.setDisplaced(true);
    EXPECT_TRUE(QTest::qWaitFor([&] { return std::abs(highest() - 0.05F) < 1e-4F; }, 20000));
    // It follows edits.
    m_shader->setAttribute(text("Height"), 0.4);
    m_scene.follow();
    EXPECT_TRUE(QTest::qWaitFor([&] { return std::abs(highest() - 0.2F) < 1e-4F; }, 20000));
    m_scene.setDisplaced(false);
    EXPECT_EQ(highest(), 0.0F);
}

TEST_F(LitView, surroundingsThatCannotBeReadAreToldAndChangeNothing)
{
    const auto before = m_scene.scene()->probe;
    QSignalSpy refused(&m_scene, &LitScene::refused);
    m_scene.setSurroundings(text("/nowhere/sky.hdr"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !refused.isEmpty(); }, 20000));
    EXPECT_TRUE(refused.front().front().toString().contains(text("/nowhere/sky.hdr")));
    EXPECT_EQ(m_scene.scene()->probe, before);

    // One that was chosen once and is gone when the next session begins.
    LitScene next;
    QSignalSpy told(&next, &LitScene::refused);
    next.setSurroundings(text("/nowhere/sky.hdr"));
    next.setActive(true);
    EXPECT_TRUE(QTest::qWaitFor([&] { return next.scene()->probe != nullptr; }, 20000));
    EXPECT_EQ(told.size(), 1);
    m_scene.setSurroundings(text("Overcast"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_scene.scene()->probe != before; }, 20000));
}

/// A picture of a scene from the front, with a map of the base color that is a half.
LitRenderer::Request paintedRequest(const OssRdScene &bare)
{
    auto scene = std::make_shared<OssRdScene>(bare);
    auto texels = std::make_shared<OssRdMaterial::Texels>();
    texels->size = 64;
    texels->rgba.assign(std::size_t(64) * 64 * 4, 0x3800);
    texels->isOpaque = true;
    scene->objects.front().materials.at(1001).maps[OssRdMaterial::Color].texels = texels;
    LitRenderer::Request request;
    request.scene = scene;
    request.screen.colors = OssEvColorSpaces::builtIn();
    request.view.width = 200;
    request.view.height = 800;
    request.view.ground = {0.1F, 0.1F, 0.1F, 1.0F};
    ObjectCamera camera;
    camera.frame({}, 1.5F);
    request.view.camera = LitPicture::toMatrix(camera.view());
    request.view.projection = LitPicture::toMatrix(camera.projection(0.25F));
    request.isPainted = true;
    return request;
}

/// The same with dark paint on a corner.
std::shared_ptr<const OssRdScene> painted(const OssRdScene &scene)
{
    auto made = std::make_shared<OssRdScene>(scene);
    auto change = std::make_shared<OssRdMaterial::Change>();
    change->parts = {
        {{0, 0, 24, 24}, std::vector<std::uint16_t>(std::size_t(24) * 24 * 4, 0x2C00)}};
    change->isOpaque = true;
    made->objects.front().materials.at(1001).maps[OssRdMaterial::Color].changes = {change};
    return made;
}

QRect differing(const QImage &before, const QImage &after)
{
    QRect area;
    for (int y = 0; y < before.height(); ++y) {
        for (int x = 0; x < before.width(); ++x) {
            if (after.pixel(x, y) != before.pixel(x, y))
                area |= QRect(x, y, 1, 1);
        }
    }
    return area;
}

TEST_F(LitView, whatIsPaintedIsLaidOverTheSharpPicture)
{
    LitRenderer renderer;
    QVector<QImage> pictures;
    QObject::connect(&renderer, &LitRenderer::drawn, &renderer,
                     [&pictures](const QImage &picture) { pictures.append(picture); });
    LitRenderer::Request request = paintedRequest(*m_scene.scene());
    renderer.draw(request);
    ASSERT_TRUE(QTest::qWaitFor([&] { return pictures.size() == 3; }, 60000));
    const QImage before = pictures.last();

    // A stroke in hand.
    pictures.clear();
    request.scene = painted(*request.scene);
    request.isMoving = true;
    renderer.draw(request);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !pictures.isEmpty(); }, 60000));
    ASSERT_EQ(pictures.first().size(), before.size());
    const QRect area = differing(before, pictures.first());
    EXPECT_FALSE(area.isEmpty());
    EXPECT_LT(area.width(), before.width() / 2);

    // At rest it becomes what it is without.
    request.isMoving = false;
    renderer.draw(request);
    request.isPainted = false;
    LitRenderer other;
    QVector<QImage> others;
    QObject::connect(&other, &LitRenderer::drawn, &other,
                     [&others](const QImage &picture) { others.append(picture); });
    other.draw(request);
    ASSERT_TRUE(QTest::qWaitFor([&] { return others.size() == 3; }, 60000));
    EXPECT_TRUE(QTest::qWaitFor([&] { return pictures.last() == others.last(); }, 60000));
    EXPECT_TRUE(area.contains(differing(before, others.last())));
}

TEST_F(LitView, theLastThatIsAskedForIsDrawnCoarselyWhileItMovesAndExactlyAtRest)
{
    LitRenderer renderer;
    QVector<QImage> pictures;
    QObject::connect(&renderer, &LitRenderer::drawn, &renderer,
                     [&pictures](const QImage &picture) { pictures.append(picture); });
    LitRenderer::Request request;
    request.scene = m_scene.scene();
    request.screen.colors = OssEvColorSpaces::builtIn();
    request.view.width = 200;
    request.view.height = 800;
    ObjectCamera camera;
    camera.frame({}, 1.5F);
    request.view.camera = LitPicture::toMatrix(camera.view());
    request.view.projection = LitPicture::toMatrix(camera.projection(0.25F));
    request.isMoving = true;
    renderer.draw(request);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !pictures.isEmpty(); }, 20000));
    EXPECT_LT(pictures.first().height(), 800);
    EXPECT_EQ(pictures.first().width() * 4, pictures.first().height());

    pictures.clear();
    request.isMoving = false;
    renderer.draw(request);
    ASSERT_TRUE(QTest::qWaitFor([&] { return pictures.size() == 3; }, 60000));
    EXPECT_EQ(pictures.last().size(), QSize(200, 800));

    // Nothing is drawn of what gives the same picture.
    pictures.clear();
    request.scene = std::make_shared<OssRdScene>(*request.scene);
    renderer.draw(request);
    passTime(100);
    EXPECT_TRUE(pictures.isEmpty());

    // Of many only the last need be drawn, and the thread ends while there is work.
    for (int i = 0; i < 50; ++i) {
        request.screen.exposure = 0.01 * i;
        renderer.draw(request);
    }
    ASSERT_TRUE(QTest::qWaitFor([&] { return !pictures.isEmpty(); }, 60000));
    EXPECT_LT(pictures.size(), 50);
    request.screen.exposure = 1.0;
    renderer.draw(request);
}

} // namespace
