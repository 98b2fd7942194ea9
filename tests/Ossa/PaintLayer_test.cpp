#include "OssEvaluation/Paint/OssEvPaintGround.h"
#include "OssModel/Evaluation/OssEvaluationService.h"
#include "OssModel/Images/OssLivePaint.h"
#include "OssModel/Images/OssPixelStore.h"
#include "PaintFixture.h"

namespace {

/// Several nodes that are painted on at once.
using PaintLayer = PaintFixture;

TEST_F(PaintLayer, severalNodesAreOneStepOfTheHistoryEachInItsOwnColor)
{
    OssSnImageSetNodeBase *rough = paintNode();
    rough->imageSet()->setResolution(2 * Resolution);
    rough->imageSet()->setScalar(true);
    history()->clear();
    ASSERT_TRUE(m_session->setAlong({rough}));
    m_session->setColorAlong(rough, OssColor(0.25, 0.25, 0.25));
    dab();
    EXPECT_EQ(undoCount(), 1);
    ASSERT_TRUE(m_session->bake());
    EXPECT_EQ(undoCount(), 2);
    // Both have it, at the same place and of the same size.
    const auto value = [](OssSnImageSetNodeBase *node, double u) {
        const QString pixels = node->imageSet()->pixels().value(1001);
        OssEvPaintGround ground({{{1001, OssPixelStore::find(pixels, {}).toStdString()}},
                                 node->imageSet()->resolution(),
                                 node->imageSet()->isScalar()});
        const int texel = int(u * node->imageSet()->resolution());
        const auto tile = ground.tile({1001, texel / 128, texel / 128});
        return tile ? std::array{tile->texel(0, texel % 128, texel % 128),
                                 tile->texel(3, texel % 128, texel % 128)}
                    : std::array{-1.0F, -1.0F};
    };
    EXPECT_EQ(value(m_paint, 0.5)[0], 1.0F);
    EXPECT_EQ(value(rough, 0.5)[0], 0.25F);
    EXPECT_EQ(value(m_paint, 0.5 + 3.0 / 64.0)[1], 1.0F);
    EXPECT_EQ(value(rough, 0.5 + 3.0 / 64.0)[1], 1.0F);
    EXPECT_EQ(value(m_paint, 0.6)[1], 0.0F);
    EXPECT_EQ(value(rough, 0.6)[1], 0.0F);
    history()->undo();
    EXPECT_TRUE(m_session->hasPaint());
    history()->undo();
    EXPECT_FALSE(m_session->hasPaint());
    history()->redo();
    EXPECT_TRUE(m_session->hasPaint());
    // Who leaves one of them leaves its paint in its images.
    ASSERT_TRUE(m_session->setAlong({}));
    EXPECT_TRUE(rough->imageSet()->pixels().contains(1001));
    EXPECT_FALSE(images()->pixels().contains(1001));
    EXPECT_TRUE(hasPaint());
    m_session->clear();
    EXPECT_FALSE(m_session->hasPaint());
}

TEST_F(PaintLayer, picturesOfAnyOfThemShowItsOwnPaintWhileAStrokeGoesOn)
{
    OssSnImageSetNodeBase *rough = paintNode();
    ASSERT_TRUE(m_session->setAlong({rough}));
    m_session->setColorAlong(rough, OssColor(0.25, 0.25, 0.25));
    m_session->show(rough);
    m_pictures.setPaint(&m_session->shownBuffer());
    ViewerLook look;
    look.raw = true;
    m_pictures.setLook(look);
    m_pictures.begin({1001}, Resolution, {});
    ASSERT_TRUE(m_session->begin(QPointF(0.3, 0.5)));
    m_session->moveTo({0.5, 0.5});
    m_session->moveTo({0.7, 0.5});
    const auto middle = [&] {
        return m_pictures.picture(1001).pixelColor(Resolution / 2, Resolution / 2);
    };
    EXPECT_EQ(middle(), QColor(64, 64, 64)) << "not the red of the first";
    m_session->publishInHand();
    ASSERT_NE(rough->imageSet()->livePaint(), nullptr) << "all have it";
    EXPECT_EQ(m_session->published(), rough->imageSet()->livePaint());
    m_session->cancel();
    EXPECT_EQ(middle().alpha(), 0);
    EXPECT_EQ(rough->imageSet()->livePaint(), nullptr);
    dab();
    EXPECT_EQ(middle(), QColor(64, 64, 64));
    history()->undo();
    EXPECT_EQ(middle().alpha(), 0);
}

TEST_F(PaintLayer, whatReadsAllOfThemBakesThemInOneStep)
{
    OssSnImageSetNodeBase *rough = paintNode();
    ASSERT_TRUE(m_session->setAlong({rough}));
    history()->clear();
    dab();
    OssEvaluationService::settlePaint({m_paint, rough});
    EXPECT_FALSE(m_session->hasPaint());
    EXPECT_TRUE(images()->pixels().contains(1001));
    EXPECT_TRUE(rough->imageSet()->pixels().contains(1001));
    EXPECT_EQ(undoCount(), 2);
    history()->undo();
    EXPECT_TRUE(m_session->hasPaint());
    EXPECT_FALSE(rough->imageSet()->pixels().contains(1001));
    OssEvaluationService::settlePaint({});
    EXPECT_TRUE(history()->canRedo()) << "nothing was baked";
}

TEST_F(PaintLayer, fourNodesLeaveTheHistoryAsOneDoesAndKeepTheirValues)
{
    const QVector<OssSnImageSetNodeBase *> others{paintNode(), paintNode(), paintNode()};
    history()->clear();
    ASSERT_TRUE(m_session->setAlong(others));
    m_session->setColorAlong(others.at(1), OssColor(0.25, 0.25, 0.25));
    stroke({0.3, 0.4}, {0.6, 0.5});
    EXPECT_FALSE(history()->isMacroOpen());
    EXPECT_EQ(undoCount(), 1);
    const auto row = [](const OssEvPaintBuffer &paint) {
        std::vector<OssEvPaintTile::Texel> texels(Resolution);
        EXPECT_TRUE(
            paint.readRow(1001, Resolution, 0, Resolution * 55 / 100, Resolution, texels.data()));
        return texels;
    };
    const auto own = row(m_session->buffer());
    ASSERT_NE(others.at(1)->imageSet()->livePaint(), nullptr);
    const auto along = row(others.at(1)->imageSet()->livePaint()->paint());
    for (std::size_t i = 0; i < own.size(); ++i) {
        EXPECT_EQ(along[i][3], own[i][3]) << "both are covered alike";
        EXPECT_NEAR(along[i][1], 0.25F * own[i][3], 1e-3F);
    }
    EXPECT_EQ(own[Resolution / 2][3], 1.0F);
    history()->undo();
    EXPECT_FALSE(m_session->hasPaint());
    history()->redo();
    ASSERT_TRUE(m_session->begin(QPointF(0.2, 0.2)));
    m_session->moveTo({0.4, 0.2});
    m_session->cancel();
    EXPECT_FALSE(history()->isMacroOpen());
    EXPECT_EQ(undoCount(), 1);
    OssEvBrush brush = Brushes::instance()->brush();
    brush.tool = OssEvBrush::Tool::Fill;
    Brushes::instance()->setBrush(brush);
    ASSERT_TRUE(m_session->fill(QPointF(0.5, 0.5)));
    EXPECT_FALSE(history()->isMacroOpen());
    EXPECT_EQ(undoCount(), 2);
    history()->undo();
    history()->undo();
    EXPECT_FALSE(m_session->hasPaint());
    // What was chosen for a node is still there when one comes back to it.
    ASSERT_TRUE(m_session->setAlong({}));
    ASSERT_TRUE(m_session->setAlong(others));
    EXPECT_DOUBLE_EQ(m_session->colorAlong(others.at(1)).red(), 0.25);
    EXPECT_DOUBLE_EQ(m_session->colorAlong(others.at(0)).red(), 0.5);
}

} // namespace
