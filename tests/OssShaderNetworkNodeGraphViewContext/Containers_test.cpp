#include "GraphFixture.h"
#include "Layout/ContainerPlacement.h"
#include "Layout/GroupPortPlacement.h"
#include "OssNodeGraph/Items/OssNgBackdropNode.h"

namespace {

TEST(ContainerPlacement, respacingClearsTheReferenceAndKeepsOrderAndDistances)
{
    const QRectF reference(0, 0, 100, 80);
    const QVector<QRectF> members{{10, -50, 50, 40},
                                  {20, 60, 50, 40},
                                  {20, 120, 50, 40},
                                  {400, 130, 50, 40},
                                  {20, 500, 50, 40}};
    const QVector<qreal> shifts = ContainerPlacement::respaced(members, reference);
    EXPECT_EQ(shifts, (QVector<qreal>{0.0, 50.0, 50.0, 50.0, 50.0}));
    EXPECT_EQ(ContainerPlacement::respaced({{0, 110, 50, 50}}, reference), QVector<qreal>{0.0});
}

TEST(GroupPortPlacement, inputsStandLeftOfWhatTheyFeedAndNeverOnEachOther)
{
    using Input = GroupPortPlacement::Input;
    const QVector<QRectF> fed{{500, 100, 120, 90}, {500, 130, 120, 90}};
    const QVector<Input> inputs{{{100, 40}, 0}, {{80, 40}, 0}, {{100, 40}, 1}, {{60, 40}, -1}};
    const QVector<QPointF> places = GroupPortPlacement::inputPositions(inputs, fed);
    EXPECT_EQ(places.first(), QPointF(500 - 150 - 100, 100));
    EXPECT_EQ(places.at(1), QPointF(500 - 150 - 80, 170));
    for (int i = 0; i < inputs.size(); ++i) {
        for (int k = i + 1; k < inputs.size(); ++k)
            EXPECT_FALSE(QRectF(places.at(i), inputs.at(i).size)
                             .intersects(QRectF(places.at(k), inputs.at(k).size)))
                << i << " " << k;
    }
    EXPECT_GT(places.at(3).y(), places.at(2).y());
}

class ContainerTest : public GraphFixture
{
protected:
    void SetUp() override
    {
        GraphFixture::SetUp();
        contextOf(m_network->viewerNode())->setNodePosition({3000, 3000});
        m_node = addAt("Filter/Blur", {40, 60});
        m_area = addAt("Misc/Backdrop", {0, 0}, "Area");
        m_backdrop = qobject_cast<OssNgBackdropNode *>(itemOf(m_area));
        m_backdrop->setRect({0, 0, 300, 200});
        OssUndoManager::instance()->clear();
    }

    QRectF area() const { return m_backdrop->rect().translated(m_backdrop->pos()); }

    static QRectF rectOf(const OssSnBaseNode *node) { return itemOf(node)->sceneBoundingRect(); }

    /// One step that leads back.
    void expectUndone(const QRectF &before)
    {
        EXPECT_EQ(undoCount(), 1);
        OssUndoManager::instance()->undo();
        EXPECT_EQ(area(), before);
        EXPECT_EQ(itemOf(m_node)->pos(), QPointF(40, 60));
        OssUndoManager::instance()->clear();
    }

    OssSnBaseNode *m_node = nullptr;
    OssSnBaseNode *m_area = nullptr;
    OssNgBackdropNode *m_backdrop = nullptr;
};

TEST_F(ContainerTest, aContainerStretchesAroundWhatItIsToHoldAndKnowsItsMembers)
{
    OssSnBaseNode *outside = addAt("Filter/Blur", {600, 60});
    OssUndoManager::instance()->clear();
    const QRectF before = area();
    Q_EMIT m_area->containerStretchedBy(outside);
    EXPECT_TRUE(area().contains(rectOf(outside)));
    EXPECT_TRUE(area().contains(before));
    expectUndone(before);
    Q_EMIT m_area->containerChildrenRefreshed({m_node, outside}, true);
    EXPECT_EQ(m_node->container(), m_area);
    EXPECT_TRUE(area().contains(rectOf(m_node) | rectOf(outside)));
    EXPECT_EQ(m_backdrop->childrenList().size(), 2);
    Q_EMIT m_area->containerChildrenRefreshed({outside}, true);
    EXPECT_EQ(m_node->container(), nullptr);
    EXPECT_FALSE(area().contains(rectOf(m_node)));
}

TEST_F(ContainerTest, aMovedContainerTakesItsMembersAlong)
{
    OssSnBaseNode *other = addAt("Filter/Blur", {20, 400});
    OssUndoManager::instance()->clear();
    const QRectF before = area();
    Q_EMIT m_area->containerMovedDown(other);
    EXPECT_TRUE(logHas(QStringLiteral("About to move container 'Area' down wrt to Blur 2'")));
    EXPECT_EQ(area().top(), rectOf(other).bottom() + 30.0);
    EXPECT_TRUE(area().contains(rectOf(m_node)));
    expectUndone(before);
    Q_EMIT m_area->containerMovedToFreshLocation(true);
    EXPECT_EQ(area().top(), before.top());
    EXPECT_TRUE(area().contains(rectOf(m_node)));
    EXPECT_FALSE(area().intersects(rectOf(other) | rectOf(m_network->viewerNode())));
    expectUndone(before);
}

TEST_F(ContainerTest, respacingMakesRoomBelowTheReferenceInsideTheContainer)
{
    OssSnBaseNode *below = addAt("Filter/Blur", {40, 90});
    OssUndoManager::instance()->clear();
    const QRectF before = area();
    Q_EMIT m_area->containerRespacedWrt(m_node);
    EXPECT_EQ(rectOf(below).top(), rectOf(m_node).bottom() + 30.0);
    EXPECT_TRUE(area().contains(rectOf(below)));
    expectUndone(before);
    OssSnBaseNode *peer = addAt("Misc/Backdrop", {0, 800});
    qobject_cast<OssNgBackdropNode *>(itemOf(peer))->setRect({0, 0, 700, 100});
    Q_EMIT m_area->containerPeersStretched({peer});
    EXPECT_EQ(area().width(), 700.0);
    Q_EMIT m_area->containerPeersStretched({m_node});
    EXPECT_TRUE(logHas(QStringLiteral("[ !! ] Invalid container gui node found for node 'Blur'")));
}

} // namespace
