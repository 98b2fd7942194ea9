#include "Ossa/Viewer/NodeThumbnails.h"

#include "OssInterface/Palettes/OssPalette.h"
#include "OssInterface/Palettes/OssPaletteManager.h"
#include "OssModel/Evaluation/OssEvaluationService.h"
#include "OssNodeGraph/Items/OssNgNode.h"
#include "OssNodeGraph/Items/OssNgSceneIndex.h"
#include "OssNodeGraph/View/OssNgView.h"
#include "support/ModelFixture.h"
#include "support/PassTime.h"
#include "support/Text.h"

#include <QGraphicsScene>
#include <QPainter>
#include <QSet>
#include <QTabWidget>
#include <QTest>

namespace {

/// A graph palette with two items of the model: one in view, one far away.
class Thumbnails : public ModelFixture
{
protected:
    void SetUp() override
    {
        ModelFixture::SetUp();
        auto *palette = new OssPalette;
        palette->setObjectName(text("Node Graph"));
        palette->setContextHelpKey(text("node_graph_palette"));
        auto *tabs = new QTabWidget;
        auto *view = new OssNgView;
        view->setScene(&m_scene);
        tabs->addTab(view, text("Root"));
        palette->setBodyWidget(tabs);
        OssPaletteManager::instance()->registerPalette(palette, true, QString());
        palette->resize(600, 400);
        palette->show();
        m_node = add("Procedural/Color");
        place(&m_near, m_node, {0.0, 0.0});
        place(&m_away, add("Procedural/Color"), {20000.0, 0.0});
        view->centerOn(&m_near);
    }

    void TearDown() override
    {
        OssNgSceneIndex::releaseItems(&m_scene);
        OssPaletteManager::instance()->deletePalettes();
        ModelFixture::TearDown();
    }

    void place(OssNgNode *item, OssSnBaseNode *node, const QPointF &position)
    {
        item->setBusinessNode(node);
        item->setPosition(position);
        m_scene.addItem(item);
    }

    static std::uint64_t tilesComputed()
    {
        return OssEvaluationService::instance()->engine()->statistics().tilesComputed;
    }

    OssSnBaseNode *m_node = nullptr;
    OssNgNode m_near;
    OssNgNode m_away;
    OssNgNode m_below;
    QGraphicsScene m_scene;
};

} // namespace

TEST_F(Thumbnails, areOfNodesInViewFollowEditsAndGoWhenSwitchedOff)
{
    const qreal plain = m_near.boundingRect().height();
    NodeThumbnails thumbnails;
    passTime(300);
    EXPECT_EQ(m_near.boundingRect().height(), plain) << "off at first";
    thumbnails.setEnabled(true);
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_near.boundingRect().height() > plain; }, 20000));
    EXPECT_EQ(m_away.boundingRect().height(), plain) << "nothing for what is not seen";

    const auto greenTexels = [this] {
        QImage picture(200, 200, QImage::Format_RGB32);
        picture.fill(Qt::black);
        QPainter painter(&picture);
        m_scene.render(&painter, {0, 0, 200, 200}, m_near.boundingRect());
        painter.end();
        int count = 0;
        for (int i = 0; i < 200 * 200; ++i) {
            const QColor color(picture.pixel(i % 200, i / 200));
            count += color.green() > 200 && color.red() < 90 && color.blue() < 90 ? 1 : 0;
        }
        return count;
    };
    EXPECT_EQ(greenTexels(), 0);
    m_node->setAttribute(text("Color"), text("0,1,0,1"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return greenTexels() > 1000; }, 20000)) << greenTexels();
    const std::uint64_t computed = tilesComputed();
    m_near.setPosition({5.0, 0.0});
    m_node->setName(text("Moved"));
    passTime(400);
    EXPECT_EQ(tilesComputed(), computed) << "where a node stands and its name change no picture";

    thumbnails.setEnabled(false);
    EXPECT_EQ(m_near.boundingRect().height(), plain);
}

TEST_F(Thumbnails, takeTheRoomThatThereIsAndNoMore)
{
    const QRectF plain = m_near.bodyRect();
    place(&m_below, add("Procedural/Color"), {0.0, plain.height() + 40.0});
    NodeThumbnails thumbnails;
    thumbnails.setEnabled(true);
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return m_near.bodyRect().height() > plain.height(); }, 20000));
    const auto overlap = [this] {
        return m_near.bodyRect()
            .translated(m_near.pos())
            .intersects(m_below.bodyRect().translated(m_below.pos()));
    };
    EXPECT_FALSE(overlap());
    const qreal low = m_near.bodyRect().height();
    m_below.setPosition({0.0, plain.height() + 10.0});
    m_node->setName(text("Told")); // a step, as a move by hand is
    EXPECT_TRUE(QTest::qWaitFor([&] { return m_near.bodyRect() == plain; }, 20000));
    m_below.setPosition({0.0, 400.0});
    m_node->setName(text("Again"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return m_near.bodyRect().height() > low; }, 20000))
        << "with room it is whole";
}

TEST_F(Thumbnails, ofMaterialsAreBallsInLight)
{
    OssSnBaseNode *shader = add("Shaders/Standard Surface");
    m_near.setBusinessNode(shader);
    ASSERT_TRUE(wire(m_node, shader, "Base Color"));
    m_node->setAttribute(text("Color"), QColor(Qt::red));
    const qreal plain = m_near.boundingRect().height();
    NodeThumbnails thumbnails;
    thumbnails.setEnabled(true);
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_near.boundingRect().height() > plain; }, 20000));
    QImage picture(200, 200, QImage::Format_RGB32);
    picture.fill(Qt::black);
    QPainter painter(&picture);
    m_scene.render(&painter, {0, 0, 200, 200}, m_near.boundingRect());
    painter.end();
    // Red of very many shades, and none at the picture's left and right edge.
    QSet<int> shades;
    int beside = 0;
    for (int y = 0; y < 200; ++y) {
        for (int x = 0; x < 200; ++x) {
            const QColor color(picture.pixel(x, y));
            const bool isRed = color.red() > 40 && color.red() > 2 * color.green();
            if (isRed)
                shades.insert(color.red());
            beside += isRed && (x < 30 || x > 170) ? 1 : 0;
        }
    }
    EXPECT_GT(shades.size(), 30);
    EXPECT_EQ(beside, 0);
}
