#include "Ossa/Surfaces/LitScene.h"
#include "Ossa/Viewer/ObjectView.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssEvaluation/Values/OssEvHalf.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "PaintFixture.h"

// The object in light while one paints on it.

namespace {

/// A cube with a layer of metallic and base color, as one brush moves both.
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
    QTest::qWait(100);
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
