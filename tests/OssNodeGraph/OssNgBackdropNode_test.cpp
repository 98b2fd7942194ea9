#include "OssNodeGraph/Items/OssNgBackdropNode.h"

#include "OssNodeGraph/Items/OssNgBackdropNodeRectChangeUndo.h"
#include "support/ExampleGraph.h"

#include <gtest/gtest.h>

#include <QSignalSpy>

namespace {

struct Room
{
    GraphScene scene;
    OssNgBackdropNode *backdrop = scene.add<OssNgBackdropNode>(QString(), {0, 0});
    OssNgExtendedNode *inside = scene.add(QStringLiteral("in"), {60, 60}, {}, {}, {});
    OssNgExtendedNode *outside = scene.add(QStringLiteral("out"), {900, 60}, {}, {}, {});

    Room() { backdrop->setRect({0, 0, 400, 300}); }
};

} // namespace

TEST(OssNgBackdropNode, boundsAreTheRectangle)
{
    Room room;
    EXPECT_EQ(room.backdrop->boundingRect(), QRectF(0, 0, 400, 300));
    EXPECT_EQ(room.backdrop->rect(), QRectF(0, 0, 400, 300));
}

TEST(OssNgBackdropNode, oneThatComesBackIsPaintedWhole)
{
    Room room;
    room.scene.removeItem(room.backdrop);
    QRectF painted;
    QObject::connect(&room.scene, &QGraphicsScene::changed, &room.scene,
                     [&painted](const QList<QRectF> &region) {
                         for (const QRectF &rect : region)
                             painted |= rect;
                     });
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
    painted = {};
    room.scene.addItem(room.backdrop);
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
    EXPECT_TRUE(painted.contains(QRectF(0, 0, 400, 300)));
}

TEST(OssNgBackdropNode, nodesInsideIsLiveAndChildrenAreNot)
{
    Room room;
    EXPECT_EQ(room.backdrop->nodesInside(), QList<OssNgNode *>{room.inside});
    EXPECT_TRUE(room.backdrop->childrenList().isEmpty());
    room.backdrop->refreshChildrenList();
    room.inside->setPosition({900, 300});
    EXPECT_TRUE(room.backdrop->nodesInside().isEmpty());
    EXPECT_EQ(room.backdrop->childrenList().size(), 1);
}

TEST(OssNgBackdropNode, deadChildIsNullInTheList)
{
    Room room;
    auto child = std::make_unique<OssNgNode>();
    child->setPosition({40, 160});
    room.scene.addItem(child.get());
    room.backdrop->refreshChildrenList();
    ASSERT_EQ(room.backdrop->childrenList().size(), 2);
    child.reset();
    int dead = 0;
    for (const auto &entry : room.backdrop->childrenList())
        dead += entry.isNull() ? 1 : 0;
    EXPECT_EQ(dead, 1);
}

TEST(OssNgBackdropNode, movingByCodeLeavesChildrenWhereTheyAre)
{
    Room room;
    room.backdrop->refreshChildrenList();
    room.backdrop->setPosition({50, 50});
    EXPECT_EQ(room.inside->pos(), QPointF(60, 60));
}

TEST(OssNgBackdropNode, onlyTitleBarAndEdgesTakeClicks)
{
    Room room;
    EXPECT_TRUE(room.backdrop->hitTest({200, 10}));
    EXPECT_TRUE(room.backdrop->hitTest({398, 200}));
    EXPECT_FALSE(room.backdrop->hitTest({200, 200}));
    EXPECT_EQ(room.backdrop->resizeEdgesAt({399, 299}), Qt::RightEdge | Qt::BottomEdge);
    EXPECT_EQ(room.backdrop->resizeEdgesAt({200, 14}), Qt::Edges());
}

TEST(OssNgBackdropNode, rectUndoRestoresTheSize)
{
    Room room;
    room.backdrop->saveBoundingRect();
    room.backdrop->setRect({0, 0, 250, 200});
    OssNgBackdropNodeRectChangeUndo step(room.backdrop);
    step.undo();
    EXPECT_EQ(room.backdrop->rect(), QRectF(0, 0, 400, 300));
    step.redo();
    EXPECT_EQ(room.backdrop->rect(), QRectF(0, 0, 250, 200));
}

TEST(OssNgBackdropNode, zOrderIsAnnouncedForTheUserOnlyAndStaysBelowWires)
{
    Room room;
    QSignalSpy changed(room.backdrop, &OssNgBackdropNode::zOrderChanged);
    room.backdrop->setZOrder(3);
    EXPECT_EQ(changed.count(), 0);
    room.backdrop->changeZOrder(5000);
    EXPECT_EQ(changed.count(), 1);
    room.backdrop->changeZOrder(5000);
    EXPECT_EQ(changed.count(), 1) << "it lies there already";
    EXPECT_LT(room.backdrop->zValue(), -1.0);
}

TEST(OssNgBackdropNode, wrapLeavesRoomForTheTitle)
{
    Room room;
    const QRectF bounds(1000, 1000, 300, 100);
    room.backdrop->wrapAroundSelection(bounds);
    const qreal title = room.backdrop->titleBarHeight();
    EXPECT_EQ(room.backdrop->sceneBoundingRect(),
              bounds.adjusted(-title, -2 * title, title, title));
}
