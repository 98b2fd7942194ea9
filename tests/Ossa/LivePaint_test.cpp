#include "Ossa/Surfaces/LitScene.h"
#include "Ossa/Viewer/ObjectView.h"
#include "OssEvaluation/Schedule/OssEvEngine.h"
#include "OssEvaluation/Values/OssEvHalf.h"
#include "OssModel/Evaluation/OssEvaluationService.h"
#include "OssModel/Evaluation/OssSnEvaluationGraph.h"
#include "OssModel/Export/OssExportManager.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Images/OssLivePaint.h"
#include "OssModel/Nodes/OssSnResultKey.h"
#include "PaintFixture.h"
#include "support/PassTime.h"

#include <QEventLoop>
#include <QImage>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTimer>

#include <future>

namespace {

/// What is evaluated while there is paint that is in no image yet.
class LivePaint : public PaintFixture
{
protected:
    /// Of a node behind the paint, at a place of the patch: red, green, blue, alpha.
    std::array<float, 4> shown(double u, double v, int patch = 1001)
    {
        const auto graph = OssSnEvaluationGraph::of(m_behind, m_behind->prefferedOutputPoint());
        OssEvRequest request;
        auto *service = OssEvaluationService::instance();
        request.target = service->target(graph, m_network->geoEntity(), patch, Resolution);
        OssEvTilePointer tile;
        std::promise<bool> done;
        request.onTile = [&](const OssEvArrival &arrival) {
            tile = arrival.tile;
        };
        request.onFinished = [&](const OssEvOutcome &outcome) {
            done.set_value(outcome.ok());
        };
        service->engine()->start(std::move(request));
        EXPECT_TRUE(done.get_future().get());
        std::array<float, 4> color{};
        for (int c = 0; tile && c < tile->channels(); ++c)
            color[std::size_t(c)] = tile->texel(c, int(u * Resolution),
                                                int((1.0 - v) * Resolution));
        return color;
    }

    void SetUp() override
    {
        PaintFixture::SetUp();
        m_behind = add("Adjust/Invert");
        m_behind->setInputNode(m_behind->inputNames().first(), m_paint,
                               m_paint->prefferedOutputPoint());
        history()->clear();
    }

    QString key() const { return OssSnResultKey::of(m_behind, m_behind->prefferedOutputPoint()); }

    OssSnBaseNode *m_behind = nullptr;
};

TEST_F(LivePaint, strokesAndErasersAreSeenBehindOtherNodesAsTheyEnd)
{
    const std::array<float, 4> turquoise{0.0F, 1.0F, 1.0F, 1.0F};
    const std::array<float, 4> nothing{1.0F, 1.0F, 1.0F, 0.0F};
    const QString before = key();
    stroke({0.2, 0.5}, {0.8, 0.5});
    EXPECT_TRUE(key() != before) << "who looks hears of it";
    EXPECT_EQ(shown(0.5, 0.5), turquoise);
    EXPECT_EQ(shown(0.5, 0.8), nothing);
    EXPECT_EQ(shown(0.5, 0.5, 1002), nothing);
    ASSERT_TRUE(m_session->bake());
    EXPECT_EQ(images()->livePaint(), nullptr);
    EXPECT_EQ(shown(0.5, 0.5), turquoise);
    setBrush(Qt::black, true);
    dab();
    EXPECT_TRUE(hasPaint()) << "nothing was baked";
    EXPECT_EQ(shown(0.5, 0.5), nothing);
    EXPECT_EQ(shown(0.3, 0.5), turquoise) << "the images beneath stay";
    history()->undo();
    EXPECT_EQ(shown(0.5, 0.5), turquoise);
    history()->redo();
    EXPECT_EQ(shown(0.5, 0.5), nothing);
    ASSERT_TRUE(m_session->bake());
    EXPECT_EQ(shown(0.5, 0.5), nothing);
    EXPECT_EQ(shown(0.3, 0.5), turquoise);
}

TEST_F(LivePaint, theStrokeInHandIsSeenBehindOtherNodesAndGoesWhenItIsTakenBack)
{
    const std::array<float, 4> nothing{1.0F, 1.0F, 1.0F, 0.0F};
    const std::array<float, 4> turquoise{0.0F, 1.0F, 1.0F, 1.0F};
    stroke({0.5, 0.2}, {0.5, 0.8});
    const auto ended = images()->livePaint();
    setBrush(Qt::black, true);
    ASSERT_TRUE(m_session->begin(QPointF(0.2, 0.5)));
    m_session->moveTo({0.5, 0.5});
    m_session->moveTo({0.7, 0.5});
    EXPECT_EQ(images()->livePaint(), ended);
    m_session->publishInHand();
    EXPECT_EQ(shown(0.5, 0.5), nothing);
    EXPECT_EQ(shown(0.5, 0.3), turquoise);
    const auto inHand = images()->livePaint();
    m_session->cancel();
    EXPECT_EQ(shown(0.5, 0.5), turquoise);
    EXPECT_EQ(inHand->paint().tiles().size(), ended->paint().tiles().size());
    EXPECT_NE(inHand->revision(1001), ended->revision(1001));
}

TEST_F(LivePaint, patchesThatKeepTheirPaintAreNotComputedAgain)
{
    dab({0.5, 0.5});
    dab({1.5, 0.5});
    const auto before = images()->livePaint();
    ASSERT_TRUE(before->has(1002));
    dab({0.2, 0.2});
    const auto after = images()->livePaint();
    EXPECT_NE(after->revision(1001), before->revision(1001));
    EXPECT_EQ(after->revision(1002), before->revision(1002));
}

TEST_F(LivePaint, smallerImagesAreEnlargedBeneathAndLargePaintMadeSmaller)
{
    dab();
    ASSERT_TRUE(m_session->bake());
    images()->setResolution(4 * Resolution);
    setBrush(Qt::blue, false, 24.0);
    dab({0.25, 0.5});
    ASSERT_EQ(m_session->buffer().resolution(), 4 * Resolution);
    EXPECT_EQ(shown(0.25, 0.5), (std::array<float, 4>{1.0F, 1.0F, 0.0F, 1.0F}));
    EXPECT_EQ(shown(0.5, 0.5), (std::array<float, 4>{0.0F, 1.0F, 1.0F, 1.0F}));
}

TEST_F(LivePaint, picturesThatHaveThePaintDoNotGetItTwice)
{
    OssEvBrush brush = Brushes::instance()->brush();
    brush.opacity = 0.5;
    Brushes::instance()->setBrush(brush);
    ViewerLook look;
    look.raw = true;
    m_pictures.setLook(look);
    const auto arrive = [&](float red) {
        const auto tile = tileOf(4, {red, 0.0F, 0.0F, 1.0F});
        m_pictures.setTile(1001, Resolution, {0, 0}, ViewerPixels::picture(*tile, look), tile);
    };
    const auto red = [&] {
        return m_pictures.picture(1001).pixelColor(Resolution / 2, Resolution / 2).redF();
    };
    m_pictures.begin({1001}, Resolution, {});
    arrive(0.0F);
    dab();
    EXPECT_NEAR(red(), 0.5, 0.01) << "over what has no paint";
    m_pictures.setIncluded(m_session->published());
    m_pictures.begin({1001}, Resolution, {});
    EXPECT_NEAR(red(), 0.5, 0.01) << "until other pixels come";
    dab();
    EXPECT_NEAR(red(), 0.75, 0.01) << "over pixels that have no paint yet";
    history()->undo();
    arrive(0.5F);
    EXPECT_NEAR(red(), 0.5, 0.01);
    dab();
    EXPECT_NEAR(red(), 0.75, 0.01);
    QVector<float> values;
    ASSERT_TRUE(m_pictures.values(1001, {Resolution / 2, Resolution / 2}, &values));
    EXPECT_NEAR(values.at(0), 0.75F, 0.01F);
    history()->undo();
    EXPECT_NEAR(red(), 0.5, 0.01);
    history()->undo();
    m_pictures.setShowsOwnImages(true);
    m_pictures.showPaint(1001, {0.0, 0.0, 1.0, 1.0});
    EXPECT_NEAR(red(), 0.0, 0.02) << "half of it is known to be paint";
}

TEST_F(LivePaint, whatUndonePaintLayOverIsSeenAtOnceAsFarAsItIsKnown)
{
    ViewerLook look;
    look.raw = true;
    m_pictures.setLook(look);
    const auto undoFrom = [&](double opacity, float red, float green) {
        OssEvBrush brush = Brushes::instance()->brush();
        brush.opacity = opacity;
        Brushes::instance()->setBrush(brush);
        dab();
        const auto painted = tileOf(4, {red, green, 0.0F, 1.0F});
        m_pictures.setIncluded(m_session->published());
        m_pictures.begin({1001}, Resolution, {});
        m_pictures.setTile(1001, Resolution, {0, 0}, ViewerPixels::picture(*painted, look),
                           painted);
        history()->undo();
        return m_pictures.picture(1001).pixelColor(Resolution / 2, Resolution / 2);
    };
    const QColor half = undoFrom(0.5, 0.5F, 0.25F);
    EXPECT_NEAR(half.redF(), 0.0, 0.01);
    EXPECT_NEAR(half.greenF(), 0.5, 0.01) << "red lay over a merge's green";
    const QColor whole = undoFrom(0.99, 0.99F, 0.005F);
    EXPECT_NEAR(whole.redF(), 0.99, 0.01) << "until other pixels come";
}

TEST_F(LivePaint, paintingOnDuringAnEvaluationLeavesNoHoles)
{
    ViewerLook look;
    look.raw = true;
    m_pictures.setLook(look);
    m_pictures.begin({1001}, Resolution, {});
    const auto coarse = tileOf(4, {0.0F, 0.0F, 1.0F, 1.0F});
    m_pictures.setTile(1001, Resolution / 2, {0, 0},
                       ViewerPixels::picture(*coarse, look).copy(0, 0, 32, 32), coarse);
    dab();
    m_pictures.expectSamePicture();
    m_pictures.setIncluded(m_session->published());
    m_pictures.begin({1001}, Resolution, {});
    history()->undo();
    const QColor middle = m_pictures.picture(1001).pixelColor(Resolution / 2, Resolution / 2);
    EXPECT_EQ(middle, QColor(Qt::blue));
}

TEST_F(LivePaint, watchedExportsHaveFreshPaintAndLeaveTheHistoryAlone)
{
    OssSnBaseNode *shader = add("Shaders/Standard Surface");
    shader->setInputNode(text("Base Color"), m_paint, m_paint->prefferedOutputPoint());
    QTemporaryDir folder;
    OssExportOptions options;
    options.folder = folder.path();
    options.resolution = Resolution;
    options.patches = {1001};
    OssExportPlan::waitForMeshes(m_project);
    OssExportPreset preset;
    ASSERT_TRUE(OssExportPreset::read("<ExportPreset Name='P'><File Name='$channel' Format='png' "
                                      "Each='true'/></ExportPreset>",
                                      text("preset"), &preset));
    OssExportPlan plan;
    ASSERT_TRUE(OssExportPlan::make(m_project, preset, options, &plan));
    OssExportManager *exports = OssExportManager::instance();
    ASSERT_TRUE(exports->run(plan, {}));
    const QString file = folder.filePath(text("Base_Color.png"));
    const auto red = [&] {
        QEventLoop loop;
        QObject::connect(exports, &OssExportManager::finished, &loop, &QEventLoop::quit);
        QTimer::singleShot(20000, &loop, &QEventLoop::quit);
        loop.exec();
        return QImage(file).pixelColor(Resolution / 2, Resolution / 2).red();
    };
    exports->setWatching(true);
    dab();
    EXPECT_EQ(red(), 255);
    EXPECT_TRUE(hasPaint()) << "nothing was baked";
    ASSERT_TRUE(m_session->bake());
    red();
    history()->undo();
    red();
    EXPECT_TRUE(hasPaint());
    EXPECT_TRUE(history()->canRedo());
    history()->undo();
    EXPECT_LT(red(), 255);
    EXPECT_TRUE(history()->canRedo());
    exports->setWatching(false);
}

TEST_F(LivePaint, anotherNodesPictureMasksStrokesAndIsFollowed)
{
    OssSnBaseNode *color = add("Procedural/Color");
    color->setAttribute(text("Color"), QVariant::fromValue(OssColor(0.25, 0.25, 0.25, 1)));
    PaintMask *mask = m_session->mask();
    QSignalSpy changed(mask, &PaintMask::changed);
    mask->setSource(color);
    EXPECT_FALSE(m_session->begin(QPointF(0.5, 0.5))) << "it is not there yet";
    EXPECT_TRUE(QTest::qWaitFor([&] { return mask->mask() != nullptr; }));
    const auto alpha = [&] {
        return shown(0.5, 0.5)[3];
    };
    dab();
    EXPECT_NEAR(alpha(), 0.25F, 0.01F);
    history()->undo();
    mask->setInverted(true);
    dab();
    EXPECT_NEAR(alpha(), 0.75F, 0.01F);
    history()->undo();
    mask->setInverted(false);
    changed.clear();
    color->setAttribute(text("Color"), QVariant::fromValue(OssColor(1, 1, 1, 1)));
    EXPECT_TRUE(QTest::qWaitFor([&] { return !changed.isEmpty(); }));
    dab();
    EXPECT_NEAR(alpha(), 1.0F, 0.01F);
    history()->undo();
    m_network->removeNodes({color});
    EXPECT_EQ(mask->source(), nullptr);
    dab();
    EXPECT_NEAR(alpha(), 1.0F, 0.01F);
    history()->undo();
    history()->undo();
    EXPECT_TRUE(QTest::qWaitFor([&] { return mask->mask() != nullptr; }));
}

TEST_F(LivePaint, theFreshPaintOfARemovedNodeGoesAndComesWithIt)
{
    dab();
    const int before = undoCount();
    {
        const OssUndoManager::AutoMacro macro(text("Delete"));
        m_network->removeNodes({m_paint});
    }
    EXPECT_EQ(undoCount(), before + 1);
    EXPECT_FALSE(hasPaint());
    ASSERT_TRUE(m_session->setNode(nullptr));
    EXPECT_EQ(undoCount(), before + 1);
    history()->undo();
    EXPECT_TRUE(hasPaint());
    EXPECT_EQ(shown(0.5, 0.5), (std::array<float, 4>{0.0F, 1.0F, 1.0F, 1.0F}));
    history()->redo();
    EXPECT_FALSE(hasPaint());
}

// --- in light

/// A cube with a layer of metallic and base color, as one brush moves both, seen in light.
class LitPainting : public PaintFixture
{
protected:
    void SetUp() override
    {
        PaintFixture::SetUp();
        setBrush(Qt::white);
        OssSnBaseNode *shader = add("Shaders/Standard Surface", "Metal");
        OssSnImageSetNodeBase *color = paintNode();
        ASSERT_TRUE(wire(m_paint, shader, "Metallic"));
        ASSERT_TRUE(wire(color, shader, "Base Color"));
        ASSERT_TRUE(m_session->setAlong({color}));
        m_session->setColorAlong(color, OssColor(0.0, 0.0, 1.0));
        OssShaderNetworkManager::instance()->setCurrentShaderNetwork(m_network);
        m_network->viewerNode()->setInputNode(text("1"), shader, shader->prefferedOutputPoint());
        m_network->setViewerNodeCurrentEdge(1, true);
        m_view = std::make_unique<ObjectView>(&m_pictures);
        m_view->setCanvas(m_session.get());
        m_view->light()->setResolution(Resolution);
        QObject::connect(m_view->light(), &LitScene::progressed, m_view.get(),
                         [this](int thousandths) { m_progress = thousandths; });
        m_view->show();
        m_view->setPainted(true);
        ASSERT_TRUE(QTest::qWaitFor([this] { return isWhole(); }, 20000));
        ASSERT_EQ(metallic(), 0.0F);
    }

    void TearDown() override
    {
        m_view.reset();
        PaintFixture::TearDown();
    }

    bool isWhole() const
    {
        const auto scene = m_view->light()->scene();
        return m_progress == 1000 && scene->objects.size() == 1
               && scene->objects.front().materials.size() == 6;
    }

    const OssRdMaterial::Channel4 &channels(OssRdMaterial::Map map)
    {
        m_seen = m_view->light()->scene();
        return m_seen->objects.front().materials.at(1001).maps[std::size_t(map)];
    }

    /// As it is seen in the middle of a patch, or beside that.
    float texel(OssRdMaterial::Map map, int channel, double x = 0.5)
    {
        return texelOf(channels(map), channel, x);
    }

    static float texelOf(const OssRdMaterial::Channel4 &all, int channel, double x)
    {
        if (!all.texels)
            return all.value[channel];
        const int column = int(x * all.texels->size);
        const int row = all.texels->size / 2;
        const std::uint16_t *found =
            &all.texels
                 ->rgba[(std::size_t(row) * std::size_t(all.texels->size) + std::size_t(column))
                        * 4];
        for (const auto &change : all.changes) {
            const OssEvRegion &area = change->area();
            if (area.contains(column, row))
                found = &change->parts.front()
                             .rgba[(std::size_t(row - area.y) * std::size_t(area.width)
                                    + std::size_t(column - area.x))
                                   * 4];
        }
        return OssEvHalf::toFloat(found[channel]);
    }

    float metallic(double x = 0.5) { return texel(OssRdMaterial::Shape, 2, x); }

    float blue() { return texel(OssRdMaterial::Color, 2); }

    bool comes(float metal, double x = 0.5)
    {
        return QTest::qWaitFor([&] { return std::abs(metallic(x) - metal) < 0.01F; }, 20000);
    }

    std::unique_ptr<ObjectView> m_view;
    std::shared_ptr<const OssRdScene> m_seen;
    int m_progress = 0;
};

TEST_F(LitPainting, theStrokeInHandIsSeenInAllChannelsOfALayer)
{
    const float before = blue();
    ASSERT_TRUE(m_session->begin(QPointF(0.5, 0.5)));
    EXPECT_TRUE(comes(1.0F));
    EXPECT_TRUE(QTest::qWaitFor([&] { return std::abs(blue() - 1.0F) < 0.01F; }, 20000));
    EXPECT_EQ(metallic(0.2), 0.0F);
    m_session->moveTo({0.2, 0.5});
    m_session->moveTo({0.1, 0.5});
    EXPECT_TRUE(comes(1.0F, 0.2));
    EXPECT_TRUE(m_session->isPainting());
    // What has no other value is as it was.
    EXPECT_TRUE(channels(OssRdMaterial::Glow).changes.empty());
    m_session->cancel();
    EXPECT_TRUE(comes(0.0F));
    EXPECT_TRUE(QTest::qWaitFor([&] { return std::abs(blue() - before) < 0.01F; }, 20000));

    dab();
    EXPECT_TRUE(comes(1.0F));
    // The map has it in the end, not only what is laid over that.
    m_view->follow();
    const auto comesBeneath = [this](float metal) {
        const auto beneath = [this] {
            OssRdMaterial::Channel4 all = channels(OssRdMaterial::Shape);
            all.changes.clear();
            return texelOf(all, 2, 0.5);
        };
        return QTest::qWaitFor([&] { return std::abs(beneath() - metal) < 0.01F; }, 20000);
    };
    EXPECT_TRUE(comesBeneath(1.0F));
    EXPECT_EQ(metallic(), 1.0F);
    history()->undo();
    EXPECT_TRUE(comes(0.0F));
    m_view->follow();
    EXPECT_TRUE(comesBeneath(0.0F));
    EXPECT_EQ(metallic(), 0.0F);
}

TEST_F(LitPainting, whatIsComputedMeanwhileTakesNoPaintAway)
{
    dab({0.8, 0.5});
    EXPECT_TRUE(comes(1.0F, 0.8));
    m_view->follow();
    ASSERT_TRUE(m_session->begin(QPointF(0.5, 0.5)));
    EXPECT_TRUE(comes(1.0F));
    // The picture of the first stroke comes while the second one is in hand.
    EXPECT_TRUE(QTest::qWaitFor([this] { return isWhole(); }, 20000));
    passTime(100);
    EXPECT_EQ(metallic(), 1.0F);
    EXPECT_EQ(metallic(0.8), 1.0F);
    // Another size waits for its end.
    m_view->light()->setResolution(2 * Resolution);
    m_view->follow();
    EXPECT_EQ(channels(OssRdMaterial::Shape).texels->size, Resolution);
    m_session->end();
    EXPECT_TRUE(QTest::qWaitFor(
        [this] { return channels(OssRdMaterial::Shape).texels->size == 2 * Resolution; }, 20000));
    EXPECT_TRUE(comes(1.0F));
    EXPECT_TRUE(comes(1.0F, 0.8));
}

} // namespace
