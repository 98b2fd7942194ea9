#include "OssModel/Layers/OssLayerManager.h"
#include "OssModel/Layers/OssLayerShader.h"
#include "OssModel/Layers/OssLayerShaderManager.h"
#include "OssModel/Layers/OssMaterialPaintManager.h"
#include "OssModel/Nodes/OssLayerRefreshSuspensionManager.h"
#include "support/ModelFixture.h"

#include <QMimeData>
#include <QSignalSpy>
#include <QUrl>

#include <algorithm>
#include <functional>

namespace {

QString text(const char *latin)
{
    return QString::fromLatin1(latin);
}

class NodeState : public ModelFixture
{
protected:
    /// Told when it changes and on undo and redo, silent and without a step when it does not.
    void expectOneStepAndTold(const QSignalSpy &told, const std::function<void()> &set)
    {
        SCOPED_TRACE(told.signal().constData());
        const QByteArray before = m_project->stateHash();
        const int steps = undoCount();
        set();
        const QByteArray after = m_project->stateHash();
        EXPECT_NE(after, before);
        set();
        EXPECT_EQ(told.count(), 1);
        EXPECT_EQ(undoCount(), steps + 1);
        EXPECT_FALSE(OssUndoManager::instance()->undoText().isEmpty());
        OssUndoManager::instance()->undo();
        EXPECT_EQ(m_project->stateHash(), before);
        OssUndoManager::instance()->redo();
        EXPECT_EQ(m_project->stateHash(), after);
        EXPECT_EQ(told.count(), 3);
    }
};

TEST_F(NodeState, switchesAreToldAndRecordedOnceForEachChange)
{
    using Node = OssSnBaseNode;
    Node *node = add("Filter/Blur");
    QStringList order = node->nodeAttributes();
    std::reverse(order.begin(), order.end());
    expectOneStepAndTold(QSignalSpy(node, &Node::descriptionChanged),
                         [&] { node->setDescription(text("soft")); });
    expectOneStepAndTold(QSignalSpy(node, &Node::enabledChanged), [&] { node->setEnabled(0); });
    expectOneStepAndTold(QSignalSpy(node, &Node::bypassedChanged),
                         [&] { node->setBypassed(true); });
    expectOneStepAndTold(QSignalSpy(node, &Node::lockedChanged), [&] { node->setLocked(true); });
    expectOneStepAndTold(QSignalSpy(node, &Node::cacheActiveChanged),
                         [&] { node->setCacheActive(CachePending); });
    expectOneStepAndTold(QSignalSpy(node, &Node::nodeAttributesSet),
                         [&] { node->setNodeAttributesUndo(order); });
    expectOneStepAndTold(QSignalSpy(node, &Node::nameChanged),
                         [&] { node->setName(text("Soft")); });
    expectOneStepAndTold(QSignalSpy(node, &Node::inputEnabledChanged),
                         [&] { node->setInputEnabled(text("Radius"), false); });
}

TEST_F(NodeState, whatIsNoStateIsRefusedAndWhatIsShownOnlyIsNoStep)
{
    OssSnBaseNode *node = add("Filter/Blur");
    const QByteArray before = m_project->stateHash();
    const int steps = undoCount();
    for (const int state : {-1, 3, 77})
        node->setCacheActive(state);
    node->setNodeAttributesUndo({text("Radius")});
    EXPECT_EQ(node->cacheActive(), CacheOff);
    QSignalSpy active(node, &OssSnBaseNode::guiActiveChanged);
    QSignalSpy error(node, &OssSnBaseNode::errorTextChanged);
    for (int i = 0; i < 2; ++i) {
        node->setGuiActive(true);
        node->setErrorText(text("It is broken"));
    }
    EXPECT_EQ(active.count(), 1);
    EXPECT_EQ(error.count(), 1);
    EXPECT_EQ(undoCount(), steps);
    EXPECT_EQ(m_project->stateHash(), before);
}

TEST_F(NodeState, aNodeThatStandsNowhereIsNamedWithoutAStep)
{
    OssSnBaseNode *loose = new OssSnBaseNode(
        OssShaderNetworkManager::instance()->nodeType(text("Filter/Blur")));
    const std::unique_ptr<OssSnBaseNode> owner(loose);
    const int steps = undoCount();
    loose->setName(text("Loose"));
    EXPECT_EQ(undoCount(), steps);
    EXPECT_EQ(loose->path(), text("/Loose"));
    EXPECT_EQ(loose->viewContext(), nullptr);
}

TEST_F(NodeState, whatIsInsideAGroupLeavesAndComesBackWithIt)
{
    auto *group = qobject_cast<OssSnGroupNode *>(add("Misc/Group"));
    OssSnBaseNode *inside = group->groupNetwork()->createNode(text("Filter/Blur"));
    QSignalSpy left(inside, &OssSnBaseNode::nodeRemovedFromNetwork);
    EXPECT_TRUE(m_network->getAllNodes().contains(inside));
    m_network->removeNodes({group});
    EXPECT_EQ(left.count(), 1);
    EXPECT_FALSE(m_network->getAllNodes().contains(inside));
    OssUndoManager::instance()->undo();
    EXPECT_EQ(m_network->nodeByPath(text("/Group/Blur")), inside);
    EXPECT_EQ(m_network->nodeByPath(text("/Blur/Group")), nullptr);
    EXPECT_EQ(group->groupNetwork()->rootNetwork(), m_network);
    EXPECT_EQ(group->groupNetwork()->geoEntity(), m_network->geoEntity());
}

TEST_F(NodeState, aNodeLiesInOneContainerOfItsNetworkAndNeverInItself)
{
    using Node = OssSnBaseNode;
    Node *outer = add("Misc/Backdrop", "Outer");
    Node *inner = add("Misc/Backdrop", "Inner");
    Node *node = add("Filter/Blur");
    auto *group = qobject_cast<OssSnGroupNode *>(add("Misc/Group"));
    Node *elsewhere = group->groupNetwork()->createNode(QStringLiteral("Misc/Backdrop"));
    const QByteArray before = m_project->stateHash();
    OssUndoManager::instance()->clear();
    node->setContainer(inner);
    node->setContainer(inner);
    EXPECT_EQ(OssUndoManager::instance()->undoText(), QStringLiteral("Put Blur into Inner"));
    inner->setContainer(outer);
    EXPECT_EQ(undoCount(), 2);
    expectUndoIsExact(before);
    OssUndoManager::instance()->clear();
    for (Node *refused : {inner, outer, elsewhere})
        outer->setContainer(refused);
    EXPECT_TRUE(logHas(QStringLiteral("[ !! ] '/Outer' cannot lie in '/Inner'")));
    EXPECT_TRUE(logHas(QStringLiteral("[ !! ] '/Outer' cannot lie in '/Outer'")));
    EXPECT_TRUE(logHas(QStringLiteral("cannot lie in '/Group/Backdrop'")));
    EXPECT_EQ(outer->container(), nullptr);
    EXPECT_EQ(undoCount(), 0);
    node->setContainer(nullptr);
    EXPECT_EQ(OssUndoManager::instance()->undoText(), QStringLiteral("Take Blur out of Inner"));
    node->setContainer(inner);
    const Node *converted = OssShaderNetworkManager::instance()->convertNodeToKeyPath(
        node, QStringLiteral("Filter/Sharpen"));
    ASSERT_NE(converted, nullptr);
    EXPECT_EQ(converted->container(), inner);
}

TEST_F(NodeState, viewsAreHeldBackUntilTheLastLockGoes)
{
    QSignalSpy allowed(m_network, &OssShaderNetwork::allowViewUpdateChanged);
    {
        const OssShaderNetwork::ViewUpdateLock outer(m_network);
        {
            const OssShaderNetwork::ViewUpdateLock inner(m_network);
            const OssShaderNetwork::ViewUpdateLock nothing(nullptr);
            EXPECT_FALSE(m_network->allowViewUpdate());
        }
        EXPECT_FALSE(m_network->allowViewUpdate());
        EXPECT_EQ(allowed.count(), 1);
    }
    EXPECT_TRUE(m_network->allowViewUpdate());
    EXPECT_EQ(allowed.count(), 2);
}

TEST_F(NodeState, theViewersInputIsOneOfTenAndSaved)
{
    QSignalSpy changed(m_network->viewerNode(), &OssSnBaseNode::viewerNodeCurrentEdgeChanged);
    for (const int edge : {7, -1, 10, 99})
        m_network->setViewerNodeCurrentEdge(edge, true);
    EXPECT_EQ(m_network->viewerNodeCurrentEdge(), 7);
    EXPECT_EQ(changed.count(), 1);
    m_network->setViewerNodeCurrentEdge(3, false);
    EXPECT_EQ(changed.count(), 1);
    m_network->removeNodes({m_network->viewerNode()});
    m_network->setViewerNodeCurrentEdge(4, true); // there is none that could be told
    EXPECT_EQ(m_network->viewerNodeCurrentEdge(), 4);
}

TEST_F(NodeState, whatIsCurrentIsToldWhenItIsAnother)
{
    OssShaderNetworkManager *networks = OssShaderNetworkManager::instance();
    auto *group = qobject_cast<OssSnGroupNode *>(add("Misc/Group"));
    QSignalSpy network(networks, &OssShaderNetworkManager::currentShaderNetworkChanged);
    QSignalSpy view(networks, &OssShaderNetworkManager::currentViewNetworkChanged);
    for (int i = 0; i < 2; ++i) {
        networks->setCurrentShaderNetwork(m_network);
        networks->setCurrentViewNetwork(group->groupNetwork());
        networks->setCurrentViewerNode(m_network->viewerNode());
    }
    EXPECT_EQ(network.count(), 0) << "it was the current one";
    EXPECT_EQ(view.count(), 1);
    networks->setCurrentShaderNetwork(nullptr);
    EXPECT_EQ(network.count(), 1);
    EXPECT_EQ(networks->getShaderNetwork(nullptr), nullptr);
}

// --- shaders and materials

TEST_F(NodeState, aMaterialIsLookedAtThroughOneProxyThatGoesWhereItIs)
{
    OssLayerManager *layers = OssLayerManager::instance();
    OssSnBaseNode *shader = add("Shaders/Standard Surface");
    const QByteArray start = m_project->stateHash();
    OssUndoManager::instance()->clear();
    const QString output = shader->prefferedOutputPoint();
    EXPECT_EQ(OssLayerManager::currentMaterialProxy(m_network), nullptr);
    EXPECT_EQ(OssLayerManager::currentMaterialProxy(nullptr), nullptr);
    EXPECT_FALSE(layers->connectNodeToCurrentMaterialProxy(nullptr, shader, output, {}));
    EXPECT_FALSE(layers->connectNodeToCurrentMaterialProxy(m_network, nullptr, output, {}));
    EXPECT_FALSE(layers->connectNodeToCurrentMaterialProxy(m_network, shader, text("None"), {}));
    EXPECT_FALSE(layers->connectNodeToCurrentMaterialProxy(m_network, shader, output, text("No")));
    EXPECT_EQ(undoCount(), 0);
    EXPECT_EQ(m_project->stateHash(), start);

    ASSERT_TRUE(layers->connectNodeToCurrentMaterialProxy(m_network, shader, output, {}));
    OssSnBaseNode *proxy = OssLayerManager::currentMaterialProxy(m_network);
    ASSERT_NE(proxy, nullptr);
    EXPECT_EQ(m_network->viewerNode()->inputNode(text("0")), proxy);
    EXPECT_EQ(proxy->inputNode(text("Input")), shader);
    EXPECT_EQ(undoCount(), 1);
    auto *group = qobject_cast<OssSnGroupNode *>(add("Misc/Group"));
    OssSnBaseNode *inside = group->groupNetwork()->createNode(text("Shaders/Standard Surface"));
    ASSERT_TRUE(layers->connectNodeToCurrentMaterialProxy(group->groupNetwork(), inside, {},
                                                          inside->prefferedOutputPoint()));
    EXPECT_EQ(OssLayerManager::currentMaterialProxy(m_network), proxy) << "there is one only";
    EXPECT_EQ(proxy->network(), group->groupNetwork());
    EXPECT_EQ(proxy->inputNode(text("Input")), inside);
    OssUndoManager::instance()->undo();
    EXPECT_EQ(proxy->network(), m_network);
    EXPECT_EQ(proxy->inputNode(text("Input")), shader);
    OssUndoManager::instance()->redo();
    EXPECT_EQ(proxy->network(), group->groupNetwork());
}

TEST_F(NodeState, shadersAreKnownAndTheCurrentOneFeedsTheViewer)
{
    OssLayerShaderManager *shaders = OssLayerShaderManager::instance();
    OssSnBaseNode *shader = add("Shaders/Standard Surface");
    OssSnBaseNode *blur = add("Filter/Blur");
    OssSnBaseNode *material = add("_System/Material");
    EXPECT_TRUE(shaders->isLayerShader(shader));
    EXPECT_FALSE(shaders->isLayerShader(blur));
    EXPECT_FALSE(shaders->isLayerShader(material)) << "a group is none by itself";
    EXPECT_FALSE(shaders->isLayerShader(nullptr));
    EXPECT_EQ(shaders->getLayerShader(blur), nullptr);
    OssLayerShader *part = shaders->getLayerShader(shader);
    ASSERT_NE(part, nullptr);
    EXPECT_EQ(shaders->getLayerShader(shader), part);
    EXPECT_EQ(part->node(), shader);
    EXPECT_FALSE(part->isStackShader());
    shader->addTag(text("_stackShader"));
    EXPECT_TRUE(part->isStackShader());

    m_network->setViewerNodeCurrentEdge(5, false);
    shaders->setCurrentShader(nullptr);
    EXPECT_EQ(m_network->viewerNodeCurrentEdge(), 5);
    shaders->setCurrentShader(shader);
    EXPECT_EQ(m_network->viewerNode()->inputNode(text("0")), shader);
    EXPECT_EQ(m_network->viewerNodeCurrentEdge(), 0);
    shaders->setCurrentShader(blur); // a proxy is wired by whoever makes it
    EXPECT_EQ(m_network->viewerNode()->inputNode(text("0")), shader);

    auto *group = qobject_cast<OssSnGroupNode *>(add("Misc/Group"));
    OssSnBaseNode *inside = group->groupNetwork()->createNode(text("Filter/Blur"));
    EXPECT_FALSE(shaders->isSystemShaderNode(group, true));
    group->addTag(text("_systemShader"));
    EXPECT_TRUE(shaders->isSystemShaderNode(group, false));
    EXPECT_FALSE(shaders->isSystemShaderNode(inside, false));
    EXPECT_TRUE(shaders->isSystemShaderNode(inside, true));
    EXPECT_FALSE(shaders->isSystemShaderNode(blur, true));
}

TEST(LayerRefresh, waitsForTheLastScopeAndIsToldOnce)
{
    auto *layers = OssLayerRefreshSuspensionManager::instance();
    using Suspender = OssLayerRefreshSuspensionManager::RefreshStateSuspender;
    QSignalSpy resumed(layers, &OssLayerRefreshSuspensionManager::resumed);
    {
        const Suspender outer;
        {
            const Suspender inner;
            EXPECT_TRUE(layers->isSuspended());
        }
        EXPECT_TRUE(layers->isSuspended());
        EXPECT_EQ(resumed.count(), 0);
    }
    EXPECT_FALSE(layers->isSuspended());
    EXPECT_EQ(resumed.count(), 1);
}

TEST(DraggedArchives, areFoundByTheirSuffix)
{
    const OssMaterialPaintManager *paint = OssMaterialPaintManager::instance();
    QMimeData data;
    const auto drag = [&data](std::initializer_list<const char *> paths) {
        QList<QUrl> urls;
        for (const char *path : paths)
            urls.append(QUrl::fromLocalFile(text(path)));
        data.setUrls(urls);
    };
    drag({"/a/x.png", "/a/rust.OMA", "/a/dirt.opc"});
    EXPECT_EQ(paint->pathListFromMimeData(&data),
              (QStringList{text("/a/rust.OMA"), text("/a/dirt.opc")}));
    EXPECT_TRUE(paint->draggableMaterialType(&data));
    EXPECT_TRUE(paint->draggableCustomProceduralType(&data));
    drag({"/a/rust.oma"});
    EXPECT_TRUE(paint->draggableMaterialType(&data));
    EXPECT_FALSE(paint->draggableCustomProceduralType(&data));
    drag({"/a/x.png"});
    EXPECT_FALSE(paint->draggableMaterialType(&data));
    EXPECT_TRUE(paint->pathListFromMimeData(nullptr).isEmpty());
}

} // namespace
