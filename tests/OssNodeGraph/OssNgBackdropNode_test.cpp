#include "OssNodeGraph/Items/OssNgBackdropNode.h"

#include "NodeFixture.h"

#include <QSignalSpy>

namespace {

const QRectF Area(0, 0, 400, 300);

/// A backdrop with one node on it and one beside it.
class OssNgBackdropNodeTest : public testing::Test
{
protected:
    OssNgBackdropNodeTest() { backdrop->setRect(Area); }

    GraphScene scene;
    OssNgBackdropNode *backdrop = scene.add<OssNgBackdropNode>(QString(), {0, 0});
    OssNgExtendedNode *inside = scene.add("in", {60, 60});
    OssNgExtendedNode *outside = scene.add("out", {900, 60});
};

TEST_F(OssNgBackdropNodeTest, oneThatComesBackIsPaintedWhole)
{
    scene.removeItem(backdrop);
    QRectF painted;
    QObject::connect(&scene, &QGraphicsScene::changed, &scene,
                     [&painted](const QList<QRectF> &region) {
                         for (const QRectF &rect : region)
                             painted |= rect;
                     });
    const auto waitForPainting = [] { // which comes in two rounds
        QCoreApplication::processEvents();
        QCoreApplication::processEvents();
    };
    waitForPainting();
    painted = {};
    scene.addItem(backdrop);
    waitForPainting();
    EXPECT_TRUE(painted.contains(Area));
}

TEST_F(OssNgBackdropNodeTest, nodesInsideIsLiveAndChildrenAreNot)
{
    EXPECT_EQ(backdrop->nodesInside(), QList<OssNgNode *>{inside});
    EXPECT_TRUE(backdrop->childrenList().isEmpty());
    backdrop->refreshChildrenList();
    inside->setPosition({900, 300});
    EXPECT_TRUE(backdrop->nodesInside().isEmpty());
    EXPECT_EQ(backdrop->childrenList().size(), 1);
}

TEST_F(OssNgBackdropNodeTest, deadChildIsNullInTheList)
{
    auto child = std::make_unique<OssNgNode>();
    child->setPosition({40, 160});
    scene.addItem(child.get());
    backdrop->refreshChildrenList();
    ASSERT_EQ(backdrop->childrenList().size(), 2);
    child.reset();
    const auto &children = backdrop->childrenList();
    EXPECT_EQ(std::count_if(children.begin(), children.end(),
                            [](const auto &entry) { return entry.isNull(); }),
              1);
}

TEST_F(OssNgBackdropNodeTest, movingByCodeLeavesChildrenWhereTheyAre)
{
    backdrop->refreshChildrenList();
    backdrop->setPosition({50, 50});
    EXPECT_EQ(inside->pos(), QPointF(60, 60));
}

TEST_F(OssNgBackdropNodeTest, onlyTitleBarAndEdgesTakeClicks)
{
    EXPECT_TRUE(backdrop->hitTest({200, 10}));
    EXPECT_TRUE(backdrop->hitTest({398, 200}));
    EXPECT_FALSE(backdrop->hitTest({200, 200}));
    EXPECT_EQ(backdrop->resizeEdgesAt({399, 299}), Qt::RightEdge | Qt::BottomEdge);
    EXPECT_EQ(backdrop->resizeEdgesAt({1, 100}), Qt::Edges(Qt::LeftEdge));
    for (const QPointF &none : {QPointF(200, 14), {-1, 100}, {401, 100}, {100, -1}, {100, 301}})
        EXPECT_EQ(backdrop->resizeEdgesAt(none), Qt::Edges()) << none.x() << " " << none.y();
}

TEST_F(OssNgBackdropNodeTest, zOrderIsAnnouncedForTheUserOnlyAndStaysBelowWires)
{
    const QSignalSpy changed(backdrop, &OssNgBackdropNode::zOrderChanged);
    backdrop->setZOrder(3);
    EXPECT_EQ(changed.count(), 0);
    for (int i = 0; i < 2; ++i) {
        backdrop->changeZOrder(5000);
        EXPECT_EQ(changed.count(), 1) << "the second time it lies there already";
    }
    EXPECT_LT(backdrop->zValue(), -1.0);
}

TEST_F(OssNgBackdropNodeTest, wrapLeavesRoomForTheTitle)
{
    backdrop->wrapAroundSelection({});
    EXPECT_EQ(backdrop->sceneBoundingRect(), Area) << "nothing to go around";
    const QRectF bounds(1000, 1000, 300, 100);
    backdrop->wrapAroundSelection(bounds);
    const qreal title = backdrop->titleBarHeight();
    EXPECT_EQ(backdrop->sceneBoundingRect(), bounds.adjusted(-title, -2 * title, title, title));
}

} // namespace
