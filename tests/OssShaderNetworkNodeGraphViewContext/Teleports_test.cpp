#include "GraphFixture.h"
#include "OssNodeGraph/Items/OssNgExtendedNode.h"

namespace {

/// What the icons of teleports say of who is heard.
class TeleportItems : public GraphFixture
{
protected:
    OssSnBaseNode *teleport(const char *key, const QPointF &place, const char *name)
    {
        OssSnBaseNode *node = addAt(key, place, name);
        node->setAttribute(QStringLiteral("channel"), QStringLiteral("Far"));
        return node;
    }

    /// The icon that says that a signal comes, and no other.
    static bool hasSignal(const OssSnBaseNode *node)
    {
        const auto *item = qobject_cast<const OssNgExtendedNode *>(itemOf(node));
        EXPECT_NE(item->isIconVisible(0), item->isIconVisible(1));
        return item->isIconVisible(1);
    }
};

} // namespace

TEST_F(TeleportItems, iconsFollowWhereverTheSenderGoes)
{
    const OssSnBaseNode *heard = teleport("Teleport Receiver/Receiver", {600, 0}, "R");
    EXPECT_FALSE(hasSignal(heard));
    OssSnBaseNode *first = teleport("Teleport Broadcast/Broadcast", {0, 0}, "A");
    const OssSnBaseNode *second = teleport("Teleport Broadcast/Broadcast", {0, 200}, "B");
    EXPECT_TRUE(hasSignal(heard));
    EXPECT_TRUE(hasSignal(first));
    EXPECT_FALSE(hasSignal(second)) << "one is heard";
    first->setName(QStringLiteral("C"));
    EXPECT_FALSE(hasSignal(first));
    EXPECT_TRUE(hasSignal(second));
    OssUndoManager::instance()->undo();
    EXPECT_TRUE(hasSignal(first));
    m_network->removeNodes({m_network->node(QStringLiteral("B"))});
    OssSnBaseNode *group = m_network->groupNodes({first});
    ASSERT_NE(group, nullptr);
    EXPECT_TRUE(hasSignal(heard));
    m_network->removeNodes({group});
    EXPECT_FALSE(hasSignal(heard)) << "it went with its group";
    OssUndoManager::instance()->undo();
    EXPECT_TRUE(hasSignal(heard));
}
