#include "OssModel/Graph/OssLayerStreamUtils.h"
#include "OssModel/Graph/OssShaderNetworkUtils.h"
#include "OssModel/Nodes/OssLayerRefreshSuspensionManager.h"
#include "OssModel/Nodes/OssLayerShaderModelManager.h"
#include "OssModel/Nodes/OssSnBaseTeleportNode.h"
#include "OssModel/Nodes/OssSnMaterialNode.h"
#include "OssModel/Nodes/OssSnMultiChannelMergeNode.h"
#include "OssModel/Nodes/OssSnProducer.h"
#include "OssModel/Nodes/OssSnTeleportNodeManager.h"
#include "OssModel/Types/OssLayerShaderModel.h"
#include "support/ModelFixture.h"

#include <QSignalSpy>
#include <QTemporaryDir>

namespace {

QString text(const char *latin)
{
    return QString::fromLatin1(latin);
}

/// Nodes that carry all streams of a shader model side by side.
class Streams : public ModelFixture
{
protected:
    void SetUp() override
    {
        ModelFixture::SetUp();
        m_material = qobject_cast<OssSnMaterialNode *>(add("_System/Material", "Material"));
        m_merge = m_network->createMultiChannelMergeNode(m_material->shaderModel());
        ASSERT_NE(m_merge, nullptr);
        OssUndoManager::instance()->clear();
    }

    OssSnMaterialNode *m_material = nullptr;
    OssSnMultiChannelMergeNode *m_merge = nullptr;
};

TEST_F(Streams, modelsAreShadersByThemselvesWithTheirInputs)
{
    OssLayerShaderModelManager *models = OssLayerShaderModelManager::instance();
    EXPECT_EQ(models->modelIds(), QStringList{text("Standard Surface")});
    const OssLayerShaderModel *model = models->model(text("Standard Surface"));
    ASSERT_NE(model, nullptr);
    EXPECT_EQ(models->model(text("None")), nullptr);
    ASSERT_NE(model->input(text("Normal")), nullptr);
    EXPECT_EQ(model->input(text("Normal"))->kind(), OssSnDataKind::Vector);
    EXPECT_EQ(model->input(text("None")), nullptr);
    OssSnBaseNode *shader = add("Shaders/Standard Surface");
    EXPECT_EQ(models->matchingShaderModelNodePair(m_material, m_merge).second, m_merge);
    EXPECT_EQ(models->matchingShaderModelNodePair(m_material, shader).first, nullptr);
    EXPECT_EQ(models->matchingShaderModelNodePair(nullptr, m_merge).second, nullptr);
    EXPECT_EQ(m_network->createMultiChannelMergeNode(nullptr), nullptr);
}

TEST_F(Streams, allOfThemAreWiredTogetherOrNone)
{
    const QStringList streams = m_material->shaderModel()->inputList();
    const QByteArray start = m_project->stateHash();
    ASSERT_TRUE(m_merge->batchConnectInputNode(text("Base"), m_material));
    EXPECT_EQ(undoCount(), 1);
    ASSERT_TRUE(m_merge->batchConnectInputNode(text("Over"), m_material));
    for (const QString &stream : streams) {
        EXPECT_EQ(m_merge->inputOutputPoint(OssLayerStreamUtils::baseInputName(stream)), stream);
        EXPECT_EQ(m_merge->inputOutputPoint(OssLayerStreamUtils::overInputName(stream)), stream);
        EXPECT_EQ(OssShaderNetworkUtils::streamInput(m_merge, stream),
                  OssLayerStreamUtils::baseInputName(stream));
    }
    ASSERT_TRUE(m_merge->batchConnectInputNode(text("Base"), nullptr));
    EXPECT_EQ(m_merge->inputNode(text("Normal Base")), nullptr);
    EXPECT_EQ(OssShaderNetworkUtils::streamInput(m_merge, text("Normal")), QString())
        << "what lies over it is not its stream";
    expectUndoIsExact(start);

    OssUndoManager::instance()->clear();
    auto *other = qobject_cast<OssSnMaterialNode *>(add("_System/Material", "Other"));
    other->setShaderModelId(text("Elsewhere"));
    auto *less = qobject_cast<OssSnMaterialNode *>(add("_System/Material", "Less"));
    less->removeOutputPoint(text("Displacement"));
    EXPECT_FALSE(less->isValid());
    EXPECT_FALSE(less->errorText().isEmpty());
    auto *behind = m_network->createMultiChannelMergeNode(m_material->shaderModel());
    ASSERT_TRUE(behind->batchConnectInputNode(text("Base"), m_merge));
    const QByteArray before = m_project->stateHash();
    const int steps = undoCount();
    const ExpectedLog loop("would close a loop");
    EXPECT_FALSE(m_merge->batchConnectInputNode(text("Base"), other)) << "of another model";
    EXPECT_FALSE(m_merge->batchConnectInputNode(text("Base"), less)) << "has not all streams";
    EXPECT_FALSE(other->batchConnectInputNode(text("Base"), nullptr)) << "has no model";
    EXPECT_FALSE(m_material->batchConnectInputNode(text("Base"), nullptr)) << "takes nothing";
    EXPECT_FALSE(m_merge->batchConnectInputNode(text("Base"), behind)) << "a loop";
    EXPECT_EQ(m_project->stateHash(), before);
    EXPECT_EQ(undoCount(), steps);
}

TEST_F(Streams, aNodeIsValidWhileItHasThePortsOfItsModel)
{
    QSignalSpy validity(m_merge, &OssSnMultiChannelGroupNode::validityChanged);
    EXPECT_TRUE(m_merge->isValid());
    EXPECT_EQ(m_merge->inputNames().first(), text("Mask"));
    m_merge->setShaderModelId(m_merge->shaderModelId());
    EXPECT_EQ(undoCount(), 0) << "it has that model";
    ASSERT_TRUE(m_merge->removeInput(text("Roughness Over")));
    EXPECT_FALSE(m_merge->isValid());
    EXPECT_TRUE(m_merge->errorText().contains(text("Standard Surface")));
    ASSERT_TRUE(m_merge->removeInput(text("Roughness Base")));
    EXPECT_EQ(validity.count(), 1);
    OssUndoManager::instance()->undo();
    OssUndoManager::instance()->undo();
    EXPECT_TRUE(m_merge->isValid());
    EXPECT_TRUE(m_merge->errorText().isEmpty());
    EXPECT_EQ(validity.count(), 2);
    m_merge->setShaderModelId(text("Elsewhere"));
    EXPECT_FALSE(m_merge->isValid()) << "nobody knows that model";
    EXPECT_EQ(m_merge->shaderModel(), nullptr);
    EXPECT_FALSE(m_merge->configureStreams());
    OssUndoManager::instance()->undo();
    EXPECT_TRUE(m_merge->isValid());
    m_merge->setShaderModelId({});
    EXPECT_TRUE(m_merge->isValid()) << "nothing is asked of it";
}

TEST_F(Streams, aMaterialsStreamsFeedItsPreview)
{
    const OssSnBaseNode *preview = m_material->groupNetwork()->node(text("Preview"));
    ASSERT_NE(preview, nullptr);
    for (const QString &stream : m_material->shaderModel()->inputList()) {
        EXPECT_NE(preview->inputNode(stream), nullptr) << qPrintable(stream);
        const auto producer = OssSnProducer::of(m_material, stream);
        EXPECT_EQ(producer.node, preview->inputNode(stream));
    }
    EXPECT_EQ(OssSnProducer::of(m_material, text("Material")).node, preview);
    const int nodes = m_material->groupNetwork()->nodeCount();
    m_material->connectPreviewShaderNetwork();
    EXPECT_EQ(m_material->groupNetwork()->nodeCount(), nodes) << "it has one";
    EXPECT_EQ(OssSnProducer::of(nullptr, text("Material")).node, nullptr);
    EXPECT_EQ(OssSnProducer::ofInput(m_merge, text("None")).node, nullptr);
}

// --- teleports

class Teleports : public ModelFixture
{
protected:
    OssSnBaseTeleportNode *teleport(const char *key, const char *name, const char *channel,
                                    OssShaderNetwork *network = nullptr)
    {
        auto *node = qobject_cast<OssSnBaseTeleportNode *>(
            (network ? network : m_network)->createNode(text(key), text(name)));
        node->setAttribute(text("channel"), text(channel));
        return node;
    }

    OssSnBaseTeleportNode *broadcast(const char *name, const char *channel,
                                     OssShaderNetwork *network = nullptr)
    {
        return teleport("Teleport Broadcast/Broadcast", name, channel, network);
    }

    OssSnBaseTeleportNode *receiver(const char *name, const char *channel,
                                    OssShaderNetwork *network = nullptr)
    {
        return teleport("Teleport Receiver/Receiver", name, channel, network);
    }

    OssSnTeleportNodeManager *m_teleports = OssSnTeleportNodeManager::instance();
};

TEST_F(Teleports, theFirstByPathIsHeardWhereverItIsInTheObject)
{
    auto *group = qobject_cast<OssSnGroupNode *>(add("Misc/Group"));
    OssSnBaseTeleportNode *second = broadcast("B", "One");
    const OssSnBaseTeleportNode *heard = receiver("R", "One", group->groupNetwork());
    EXPECT_EQ(m_teleports->broadcastNode(group->groupNetwork(), text("One")), second);
    OssSnBaseTeleportNode *first = broadcast("A", "One");
    EXPECT_EQ(m_teleports->broadcastNode(m_network, text("One")), first);
    OssSnBaseNode *red = add("Procedural/Color");
    OssSnBaseNode *blue = add("Procedural/Color");
    ASSERT_TRUE(wire(red, first));
    ASSERT_TRUE(wire(blue, second));
    EXPECT_EQ(OssSnProducer::of(heard, text("Output")).node, red);
    m_network->removeNodes({first});
    EXPECT_EQ(OssSnProducer::of(heard, text("Output")).node, blue);
    OssUndoManager::instance()->undo();
    EXPECT_EQ(OssSnProducer::of(heard, text("Output")).node, red);
    first->setAttribute(text("channel"), text("Two"));
    EXPECT_EQ(m_teleports->broadcastNode(m_network, text("One")), second);
    EXPECT_EQ(m_teleports->broadcastNode(m_network, text("Two")), first);
    EXPECT_EQ(m_teleports->broadcastNode(m_network, text("None")), nullptr);
    EXPECT_EQ(m_teleports->broadcastNode(nullptr, text("One")), nullptr);
    EXPECT_TRUE(m_teleports->hasReceivers(m_network, text("One")));
    EXPECT_FALSE(m_teleports->hasReceivers(m_network, text("Two")));
    // A blank channel is none, though both ends have it.
    broadcast("Blank", "");
    const OssSnBaseTeleportNode *deaf = receiver("Deaf", "");
    EXPECT_EQ(m_teleports->broadcastNode(m_network, QString()), nullptr);
    EXPECT_FALSE(m_teleports->hasReceivers(m_network, QString()));
    EXPECT_EQ(OssSnProducer::of(deaf, text("Output")).node, nullptr);
    // Round and round with nothing on the way that computes.
    OssSnBaseTeleportNode *end = receiver("End", "Round");
    ASSERT_TRUE(wire(end, broadcast("Begin", "Round")));
    EXPECT_EQ(OssSnProducer::of(end, text("Output")).node, nullptr);
}

TEST_F(Teleports, channelsAreAnObjectsOwn)
{
    OssShaderNetwork *other =
        m_project->addEntity(text("Other"))->shadingGroups().first()->network();
    OssSnBaseTeleportNode *here = broadcast("B", "One");
    const OssSnBaseTeleportNode *there = receiver("R", "One", other);
    ASSERT_TRUE(wire(add("Procedural/Color"), here));
    EXPECT_EQ(m_teleports->broadcastNode(other, text("One")), nullptr);
    EXPECT_FALSE(m_teleports->hasReceivers(m_network, text("One")));
    EXPECT_TRUE(m_teleports->hasReceivers(other, text("One")));
    EXPECT_EQ(OssSnProducer::of(there, text("Output")).node, nullptr);
}

TEST_F(Teleports, othersLookAgainWhenOneComesGoesOrChangesItsChannel)
{
    OssSnBaseTeleportNode *heard = receiver("R", "One");
    QSignalSpy told(heard, &OssSnBaseTeleportNode::updateState);
    QSignalSpy named(heard, &OssSnBaseTeleportNode::channelNameChanged);
    OssSnBaseTeleportNode *sent = broadcast("B", "One");
    EXPECT_EQ(told.count(), 1) << "before it got its channel it did not matter";
    sent->setDescription(text("no matter"));
    EXPECT_EQ(told.count(), 1);
    QSignalSpy own(sent, &OssSnBaseTeleportNode::updateState);
    m_network->removeNodes({sent});
    EXPECT_EQ(told.count(), 2);
    EXPECT_EQ(own.count(), 0) << "what goes needs no state";
    OssUndoManager::instance()->undo();
    EXPECT_EQ(told.count(), 3);
    const OssSnBaseTeleportNode *second = broadcast("C", "One");
    EXPECT_EQ(told.count(), 3) << "it is not heard";
    sent->setName(text("D"));
    EXPECT_EQ(m_teleports->broadcastNode(m_network, text("One")), second);
    EXPECT_EQ(told.count(), 4) << "now it is";
    OssUndoManager::instance()->undo();
    EXPECT_EQ(told.count(), 5);
    OssSnBaseNode *group = m_network->groupNodes({sent});
    ASSERT_NE(group, nullptr);
    told.clear();
    group->setName(text("A"));
    EXPECT_EQ(told.count(), 1) << "it is the first again";
    told.clear();
    m_network->removeNodes({group});
    EXPECT_EQ(m_teleports->broadcastNode(m_network, text("One")), second);
    EXPECT_EQ(told.count(), 1) << "it went with its group";
    OssUndoManager::instance()->undo();
    EXPECT_EQ(m_teleports->broadcastNode(m_network, text("One")), sent);
    EXPECT_EQ(told.count(), 2);
    EXPECT_EQ(named.count(), 0);
    heard->setAttribute(text("channel"), text("Two"));
    EXPECT_EQ(named.count(), 1);
    EXPECT_EQ(told.count(), 3);
}

TEST_F(Streams, areReckonedOnceWhenManyPortsGoTogether)
{
    const QStringList inputs = m_merge->inputNames();
    QSignalSpy told(m_merge, &OssSnMultiChannelGroupNode::validityChanged);
    QSignalSpy shared(m_merge, &OssSnBaseNode::inputConnectionIsShared);
    {
        const OssLayerRefreshSuspensionManager::RefreshStateSuspender suspender;
        for (const QString &input : inputs)
            m_merge->removeInput(input);
        m_merge->createInput(text("Extra"), OssSnDataKind::Scalar);
        EXPECT_TRUE(m_merge->isValid() && m_merge->errorText().isEmpty()) << "it waits";
        EXPECT_TRUE(shared.isEmpty());
    }
    EXPECT_FALSE(m_merge->isValid());
    EXPECT_EQ(told.count(), 1);
    EXPECT_EQ(m_merge->sharedInputNames(), QStringList{text("Extra")});
    {
        const OssLayerRefreshSuspensionManager::RefreshStateSuspender suspender;
        while (OssUndoManager::instance()->canUndo())
            OssUndoManager::instance()->undo();
    }
    EXPECT_TRUE(m_merge->isValid() && m_merge->errorText().isEmpty());
    EXPECT_EQ(told.count(), 2);
    m_network->removeNodes({m_merge});
    {
        const OssLayerRefreshSuspensionManager::RefreshStateSuspender suspender;
    }
    EXPECT_EQ(told.count(), 2) << "nothing was put off";
}

TEST_F(Teleports, oneMoreReceiverIsNoMatterToTheOthers)
{
    constexpr int Count = 100;
    QList<OssSnBaseTeleportNode *> nodes{broadcast("B", "One")};
    std::vector<std::unique_ptr<QSignalSpy>> told;
    const auto watch = [&](OssSnBaseTeleportNode *node) {
        nodes.append(node);
        told.push_back(std::make_unique<QSignalSpy>(node, &OssSnBaseTeleportNode::updateState));
    };
    watch(nodes.takeFirst());
    for (int i = 0; i < Count; ++i)
        watch(receiver("R", "One"));
    for (int i = 1; i < Count; ++i)
        m_network->removeNodes({nodes.at(i)});
    for (const auto &spy : told)
        EXPECT_LE(spy->count(), 2);
}

TEST_F(Streams, inputsThatBelongToAllStreamsAreSharedAlsoAfterSavingAndUndoing)
{
    EXPECT_EQ(m_merge->sharedInputNames(), QStringList{text("Mask")});
    EXPECT_TRUE(m_material->sharedInputNames().isEmpty());
    m_merge->setShaderModelId({});
    EXPECT_TRUE(m_merge->sharedInputNames().isEmpty()) << "there are no streams";
    OssUndoManager::instance()->undo();
    m_merge->createInput(text("Extra"), OssSnDataKind::Scalar);
    EXPECT_EQ(m_merge->sharedInputNames(), QStringList({text("Mask"), text("Extra")}));
    OssUndoManager::instance()->undo();
    OssUndoManager::instance()->redo();
    EXPECT_EQ(m_merge->sharedInputNames(), QStringList({text("Mask"), text("Extra")}));
    m_merge->renameInput(text("Extra"), text("More"));
    EXPECT_EQ(m_merge->sharedInputNames(), QStringList({text("Mask"), text("More")}));

    QTemporaryDir folder;
    const QString name = m_merge->name();
    OssProjectManager *projects = OssProjectManager::instance();
    ASSERT_TRUE(projects->saveProjectAs(folder.filePath(text("S.ossa"))));
    ASSERT_TRUE(projects->openProject(folder.filePath(text("S.ossa"))));
    const OssSnBaseNode *read =
        projects->currentProject()->shadingGroups().first()->network()->node(name);
    EXPECT_EQ(read->sharedInputNames(), QStringList({text("Mask"), text("More")}));
}

TEST_F(Streams, aNodeThatLacksAPortOfItsStreamsIsNotClustered)
{
    QSignalSpy cleared(m_merge, &OssSnGroupNode::clearPortClusters);
    QSignalSpy updated(m_merge, &OssSnGroupNode::updatePortClusters);
    const QString lost = OssLayerStreamUtils::baseInputName(
        m_merge->shaderModel()->inputList().first());
    m_merge->removeInput(lost);
    EXPECT_EQ(cleared.count(), 1);
    EXPECT_EQ(updated.count(), 0);
    OssUndoManager::instance()->undo();
    EXPECT_EQ(cleared.count(), 1);
    EXPECT_EQ(updated.count(), 1);
}

} // namespace
