#include "GraphFixture.h"
#include "GraphUser.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssModel/Graph/OssShaderNetworkUtils.h"
#include "OssModel/Layers/OssLayerManager.h"
#include "OssModel/Nodes/OssSnBakePointNode.h"
#include "OssModel/Nodes/OssSnMultiChannelGroupNode.h"
#include "OssModel/Objects/OssImageSet.h"

#include <QApplication>
#include <QClipboard>
#include <QSignalSpy>
#include <QtTest>

namespace {

/// Color and Noise over each other, blurred, levelled: color -> merge(Base), noise -> merge(Over),
/// merge -> blur -> levels.
class CommandsTest : public GraphFixture
{
protected:
    void SetUp() override
    {
        GraphFixture::SetUp();
        OssApplication::setPopupsAllowed(false);
        m_color = addAt("Procedural/Color", {0, 0});
        m_scalar = addAt("Procedural/Scalar", {0, 200});
        m_merge = addAt("Layer/Merge", {300, 0});
        m_blur = addAt("Filter/Blur", {600, 0});
        m_levels = addAt("Adjust/Levels", {900, 0});
        wire(m_color, m_merge, "Base");
        wire(m_scalar, m_merge, "Over");
        wire(m_merge, m_blur);
        wire(m_blur, m_levels);
        m_viewer = m_network->viewerNode();
        contextOf(m_viewer)->setNodePosition({1300, 400});
        select({});
        OssUndoManager::instance()->clear();
        OssDebugLog::instance()->clear();
    }

    QSet<OssSnBaseNode *> selection() const
    {
        const QList<OssSnBaseNode *> nodes = m_network->selectedNodes();
        return QSet<OssSnBaseNode *>(nodes.cbegin(), nodes.cend());
    }

    OssSnBaseNode *viewed(int input) const { return m_viewer->inputNode(QString::number(input)); }

    OssSnBaseNode *m_color = nullptr;
    OssSnBaseNode *m_scalar = nullptr;
    OssSnBaseNode *m_merge = nullptr;
    OssSnBaseNode *m_blur = nullptr;
    OssSnBaseNode *m_levels = nullptr;
    OssSnBaseNode *m_viewer = nullptr;
};

// --- the viewer

TEST_F(CommandsTest, whatIsDoneToEverythingIsNotDoneToTheViewer)
{
    wire(m_blur, m_viewer, "1");
    OssUndoManager::instance()->clear();
    const QByteArray start = m_project->stateHash();
    using Command = void (OssShaderNetworkView::*)();

    const struct
    {
        Command command;
        int left;
    } cases[] = {
        {&OssShaderNetworkView::deleteSelectedNodes, 1},
        {&OssShaderNetworkView::cutNodesAction, 1},
        {&OssShaderNetworkView::deleteAllNodes, 1},
        {&OssShaderNetworkView::bypassSelectedNode, 6},
        {&OssShaderNetworkView::disableSelectedNodes, 6},
        {&OssShaderNetworkView::duplicateSelectedNodes, 11},
    };

    int number = 0;
    for (const auto &c : cases) {
        ++number;
        select(m_network->nodes());
        (m_view->*c.command)();
        EXPECT_EQ(m_network->viewerNode(), m_viewer) << number;
        EXPECT_EQ(m_network->nodes().size(), c.left) << number;
        EXPECT_TRUE(m_viewer->enabledAsBool() && !m_viewer->isBypassed()) << number;
        expectWhole();
        EXPECT_EQ(undoCount(),
                  c.command == Command(&OssShaderNetworkView::bypassSelectedNode) ? 5 : 1)
            << number;
        OssUndoManager::instance()->setIndex(0);
        EXPECT_EQ(m_project->stateHash(), start) << number;
    }
    select({m_viewer});
    m_view->deleteSelectedNodes();
    EXPECT_EQ(m_network->viewerNode(), nullptr) << "by itself it is meant";
}

TEST_F(CommandsTest, aViewerNumberShowsTheSelectedNodeAndTurnsToIt)
{
    select({m_blur});
    m_view->connectSelectedNodeToViewer(nullptr, 3);
    EXPECT_EQ(viewed(3), m_blur);
    EXPECT_EQ(m_network->viewerNodeCurrentEdge(), 3);
    EXPECT_EQ(undoText(), text("Connect node 'Blur' to Viewer"));
    EXPECT_EQ(selection(), QSet<OssSnBaseNode *>{m_viewer});
    select({});
    m_view->connectSelectedNodeToViewer(nullptr, 1);
    EXPECT_EQ(m_network->viewerNodeCurrentEdge(), 1);
    EXPECT_EQ(undoCount(), 1);
    select({m_viewer});
    m_view->connectSelectedNodeToViewer(nullptr, 3);
    EXPECT_EQ(m_network->viewerNodeCurrentEdge(), 3);
    select({m_blur, m_levels});
    m_view->connectSelectedNodeToViewer(nullptr, 5);
    EXPECT_EQ(viewed(5), nullptr);
    EXPECT_EQ(m_network->viewerNodeCurrentEdge(), 3);
}

TEST_F(CommandsTest, viewerInputZeroIsForMaterials)
{
    OssSnBaseNode *shader = addAt("Shaders/Standard Surface", {1200, 0});
    select({shader});
    m_view->connectSelectedNodeToViewer(nullptr, 0);
    EXPECT_EQ(viewed(0), shader);
    EXPECT_EQ(m_network->viewerNodeCurrentEdge(), 0);
}

TEST_F(CommandsTest, theCurrentMaterialIsOneProxyThatFollows)
{
    OssSnBaseNode *shader = addAt("Shaders/Standard Surface", {1200, 0});
    OssLayerManager *layers = OssLayerManager::instance();
    ASSERT_TRUE(layers->connectNodeToCurrentMaterialProxy(m_network, shader,
                                                          shader->prefferedOutputPoint(), {}));
    OssSnBaseNode *proxy = OssLayerManager::currentMaterialProxy(m_network);
    ASSERT_NE(proxy, nullptr);
    EXPECT_EQ(viewed(0), proxy);
    EXPECT_EQ(itemOf(m_viewer)->inputPortText(text("0")), text("0:Current Material"));
    OssSnBaseNode *other = addAt("Shaders/Standard Surface", {1200, 300});
    ASSERT_TRUE(layers->connectNodeToCurrentMaterialProxy(m_network, other,
                                                          other->prefferedOutputPoint(), {}));
    EXPECT_EQ(OssLayerManager::currentMaterialProxy(m_network), proxy);
    EXPECT_EQ(proxy->inputNodes(), QList<OssSnBaseNode *>{other});
    EXPECT_FALSE(layers->connectNodeToCurrentMaterialProxy(m_network, other, text("None"), {}));
    OssSnGroupNode *group = m_network->groupNodes({other});
    ASSERT_TRUE(layers->connectNodeToCurrentMaterialProxy(group->groupNetwork(), other,
                                                          other->prefferedOutputPoint(), {}));
    EXPECT_EQ(proxy->network(), group->groupNetwork());
    expectWhole();
    undo();
    EXPECT_EQ(proxy->network(), m_network);
    expectWhole();
    m_network->moveCurrentViewerNodeToNetwork();
    expectWhole();
    undoAll();
    EXPECT_EQ(OssLayerManager::currentMaterialProxy(m_network), nullptr);
}

TEST_F(CommandsTest, severalOutputsAreOfferedInAMenu)
{
    OssSnBaseNode *noise = addAt("Procedural/Noise/Fractal Noise", {0, 400});
    ASSERT_GT(noise->outputPointCount(), 1);
    OssApplication::setPopupsAllowed(true);
    QStringList offered;
    chooseInMenu(-1, &offered);
    m_view->connectSelectedNodeToViewer(noise, 2);
    EXPECT_EQ(offered, noise->outputPointNames());
    EXPECT_EQ(m_viewer->inputOutputPoint(text("2")), noise->outputPointNames().last());
}

TEST_F(CommandsTest, materialsAreLookedAtAsTheCurrentOneOrStreamByStream)
{
    OssSnBaseNode *material = addAt("_System/Material", {1200, 0}, "Rust");
    ASSERT_GT(material->outputPointCount(), 1);
    m_view->connectSelectedNodeToViewer(material, 0);
    const OssSnBaseNode *proxy = OssLayerManager::currentMaterialProxy(m_network);
    ASSERT_NE(proxy, nullptr);
    EXPECT_EQ(viewed(0), proxy);
    EXPECT_EQ(proxy->inputNodes(), QList<OssSnBaseNode *>{material});
    OssSnBaseNode *other = addAt("_System/Material", {1200, 400}, "Wood");
    m_view->connectSelectedNodeToViewer(other, 2); // nobody to ask for a stream
    EXPECT_EQ(viewed(2), nullptr);
    OssApplication::setPopupsAllowed(true);
    for (const int index : {0, 2}) { // the model, a separator, a stream
        QStringList offered;
        chooseInMenu(index, &offered);
        m_view->connectSelectedNodeToViewer(other, 2);
        EXPECT_EQ(offered.size(), other->outputPointCount() + 2);
        EXPECT_EQ(viewed(2), index == 0 ? nullptr : other);
        EXPECT_EQ(proxy->inputNodes(), QList<OssSnBaseNode *>{other});
    }
}

TEST_F(CommandsTest, theViewerComesToThePointerAndStaysOutOfTheHistory)
{
    OssUndoManager::instance()->clear();
    m_view->window()->show();
    const QPoint place(200, 150);
    QCursor::setPos(m_view->viewport()->mapToGlobal(place));
    m_view->moveViewerToMouse();
    EXPECT_EQ(itemOf(m_viewer)->pos(), m_view->mapToScene(place));
    EXPECT_EQ(undoCount(), 0);
    OssSnGroupNode *group = m_network->groupNodes({m_levels});
    OssShaderNetworkView inside(nullptr);
    inside.setNetwork(group->groupNetwork());
    inside.connectSelectedNodeToViewer(m_blur, 1); // which is outside
    expectLogged("doesn't belong to the network");
    EXPECT_EQ(viewed(1), nullptr);
}

// --- copies

TEST_F(CommandsTest, copiesComeUnderThePointerSelectedAndInOneStep)
{
    select({m_merge, m_blur, m_viewer});
    begin();
    m_view->copyNodesAction();
    expectNothingDone("a copy");
    m_view->pasteNodesAction();
    ASSERT_EQ(selection().size(), 2);
    OssSnBaseNode *blur = m_network->node(text("Blur 2"));
    OssSnBaseNode *merge = m_network->node(text("Merge 2"));
    ASSERT_TRUE(blur && merge);
    EXPECT_EQ(blur->inputNode(text("Input")), merge);
    EXPECT_EQ(itemOf(blur)->pos() - itemOf(merge)->pos(), QPointF(300, 0));
    const QPointF corner = (rectOf(blur) | rectOf(merge)).topLeft();
    EXPECT_EQ(corner, m_view->mapToScene(m_view->creationPoint()));
    expectStepBack("Paste Nodes");
    select({m_viewer});
    m_view->duplicateSelectedNodes();
    m_view->cutNodesAction();
    expectNothingDone("the viewer");
    select({m_blur});
    m_view->cutNodesAction();
    EXPECT_EQ(undoText(), text("Cut Nodes"));
    EXPECT_EQ(m_network->node(text("Blur")), nullptr);
    m_view->pasteNodesAction();
    EXPECT_NE(m_network->node(text("Blur")), nullptr);
    EXPECT_FALSE(OssShaderNetworkManager::instance()->isAttributeSmartLinkingEnabled());
    m_blur = nullptr;
}

// --- swapping and renaming

TEST_F(CommandsTest, swappingExchangesTheFirstTwoInputs)
{
    select({m_merge});
    m_view->swapInputs();
    EXPECT_EQ(m_merge->inputNode(text("Base")), m_scalar);
    EXPECT_EQ(m_merge->inputNode(text("Over")), m_color);
    EXPECT_EQ(undoText(), text("Swap Inputs"));
    undo();
    EXPECT_EQ(m_merge->inputNode(text("Base")), m_color);
    select({});
    m_view->swapInputs();
    expectLogged("More than one node selected for swap inputs.");
    expectLogged("Only one node must be selected for swapping inputs.");
    select({m_color});
    m_view->swapInputs();
    expectLogged("fewer than two inputs to swap.");
}

TEST_F(CommandsTest, halfASwapIsNone)
{
    // Neither input of the merge can be wired to "Output" of what has none.
    OssSnBaseNode *split = addAt("Channel/Split", {0, 400});
    for (const bool base : {true, false}) {
        const char *const input = base ? "Base" : "Over";
        ASSERT_TRUE(m_merge->setInputNode(text(input), split, text("Red")));
        select({m_merge});
        begin();
        const ExpectedLog refused("Cannot connect: ", ExpectedLog::Possible);
        m_view->swapInputs();
        EXPECT_EQ(m_merge->inputNode(text(input)), split);
        expectNothingDone(input);
        ASSERT_TRUE(wire(base ? m_color : m_scalar, m_merge, input));
    }
}

TEST_F(CommandsTest, renamingTakesTheTypedName)
{
    select({m_blur});
    OssApplication::setPopupsAllowed(true);
    typeInDialog("Soft");
    m_view->popupRenameWindow();
    EXPECT_EQ(m_blur->name(), text("Soft"));
    typeInDialog("Hard", Qt::Key_Escape);
    m_view->popupRenameWindow();
    OssApplication::setPopupsAllowed(false);
    EXPECT_EQ(m_blur->name(), text("Soft"));
    m_view->popupRenameWindow(); // without a user nothing is typed
    EXPECT_EQ(m_blur->name(), text("Soft"));
    select({m_blur, m_merge});
    m_view->popupRenameWindow();
    expectLogged("Only one node must be selected for renaming");
    m_view->popupRenameWindow(nullptr);
    expectLogged("NodeToRename is NULL");
}

TEST_F(CommandsTest, mergesOfManyChannelsAreSwappedWholeOrNotAtAll)
{
    auto *merge = qobject_cast<OssSnMultiChannelGroupNode *>(
        addAt("_System/MultiChannelMerge", {1500, 0}));
    auto *base = addAt("_System/Material", {1200, 0});
    auto *over = addAt("_System/Material", {1200, 300});
    select({merge});
    const auto swap = [&](const char *said) {
        begin();
        m_view->swapInputs();
        expectLogged(said);
        expectNothingDone(said);
    };
    swap("Base input node is not a Multi-Channel-Group node");
    ASSERT_TRUE(merge->batchConnectInputNode(text("Base"),
                                             qobject_cast<OssSnMultiChannelGroupNode *>(base)));
    swap("Over input node is not a Multi-Channel-Group node");
    ASSERT_TRUE(merge->batchConnectInputNode(text("Over"),
                                             qobject_cast<OssSnMultiChannelGroupNode *>(over)));
    ASSERT_TRUE(wire(m_color, merge, "Roughness Over"));
    swap("not all the input ports match up");
    OssUndoManager::instance()->clear();
    ASSERT_TRUE(merge->setInputNode(text("Roughness Over"), over, text("Roughness")));
    m_view->swapInputs();
    EXPECT_EQ(merge->inputNode(text("Roughness Over")), base);
    EXPECT_EQ(merge->inputNode(text("Normal Base")), over);
}

// --- selecting along the graph

TEST_F(CommandsTest, selectionWalksUpAndDownAndStaysAtTheEnds)
{
    using View = OssShaderNetworkView;
    using Nodes = QList<OssSnBaseNode *>;

    const struct
    {
        Nodes from;
        void (View::*walk)();
        Nodes to;
    } cases[] = {
        {{m_blur}, &View::selectAllUpstream, {m_blur, m_merge, m_color, m_scalar}},
        {{m_blur}, &View::selectStreamUpstream, {m_blur, m_merge, m_color}},
        {{m_scalar}, &View::selectAllDownstream, {m_scalar, m_merge, m_blur, m_levels}},
        // It is laid over the stream, it does not carry it on.
        {{m_scalar}, &View::selectStreamDownstream, {m_scalar}},
        {{m_merge}, &View::selectUpstream, {m_color, m_scalar}},
        {{m_color, m_scalar}, &View::selectUpstream, {m_color, m_scalar}},
        {{m_color, m_scalar}, &View::selectDownstream, {m_merge}},
        {{m_merge}, &View::addSelectDownstream, {m_merge, m_blur}},
        {{m_color, m_blur}, &View::selectNextSibling, {m_scalar}}, // the blur has none
        {{m_scalar}, &View::addSelectPrevSibling, {m_color, m_scalar}},
        {{m_color, m_levels}, &View::selectBetween, {m_color, m_merge, m_blur, m_levels}},
        {{m_color}, &View::selectBetween, {m_color}},
    };

    for (const auto &c : cases) {
        select(c.from);
        (m_view->*c.walk)();
        EXPECT_EQ(selection(), (QSet<OssSnBaseNode *>(c.to.cbegin(), c.to.cend()))) << &c - cases;
    }
    EXPECT_EQ(undoCount(), 0);
    OssSnBaseNode *backdrop = add("Misc/Backdrop");
    backdrop->viewContext()->setNodePosition({5000, 5000});
    backdrop->viewContext()->setNodeSizeUndo({600, 400});
    m_blur->viewContext()->setNodePosition({5200, 5200});
    select({backdrop});
    m_view->selectContents();
    EXPECT_EQ(selection(), (QSet<OssSnBaseNode *>{backdrop, m_blur}));
    m_merge->addTag(text("_systemShader")); // the application's own
    m_merge->setDescription(text("stays"));
    m_view->selectAll();
    EXPECT_FALSE(m_merge->selected());
    EXPECT_TRUE(m_blur->selected() && m_levels->selected());
}

TEST_F(CommandsTest, walksLeaveAGroupButSelectNothingOutside)
{
    OssSnGroupNode *group = m_network->groupNodes({m_merge, m_blur});
    ASSERT_NE(group, nullptr);
    EXPECT_TRUE(
        OssShaderNetworkUtils::getUpstreamNodes(m_blur, true, true, false).contains(m_color));
    EXPECT_FALSE(
        OssShaderNetworkUtils::getUpstreamNodes(m_blur, false, true, false).contains(m_color));
    EXPECT_TRUE(OssShaderNetworkUtils::getDownstreamNodes(m_merge, true, true).contains(m_levels));
    m_manager->showNetworkInView(group->groupNetwork(), m_view);
    m_blur->setSelected(true);
    m_view->selectAllUpstream();
    EXPECT_TRUE(m_merge->selected());
    EXPECT_FALSE(m_color->selected());
    m_manager->showNetworkInView(m_network, m_view);
}

TEST_F(CommandsTest, whereNothingInTheGraphShowsItTheUserIsTold)
{
    const ExpectedLog possible("", ExpectedLog::Possible);
    OssSnBaseNode *layer = addAt("_System/Graph Layer Input", {0, 300}, "Layer");
    OssSnBaseNode *split = addAt("Channel/Split", {0, 400});
    wire(split, m_merge, "Over");
    auto *bake = qobject_cast<OssSnBakePointNode *>(
        m_network->createPaintableNode({}, text("Misc/Bake Point")));
    bake->imageSet()->setResolution(8);
    wire(m_color, bake);
    using View = OssShaderNetworkView;

    const struct
    {
        void (View::*command)();
        QList<OssSnBaseNode *> selected;
        const char *said;
    } cases[] = {
        {&View::copyNodesAction, {m_blur}, "Copied Blur"},
        {&View::copyNodesAction, {m_blur, m_levels, m_viewer}, "Copied 2 nodes"},
        {&View::copyNodesAction, {m_viewer}, nullptr},
        {&View::exportNodes, {m_viewer}, "Select the nodes to export first"},
        {&View::deleteSelectedNodes, {layer}, "Layer is what a layer stands on and stays"},
        {&View::swapInputs, {m_merge}, "The inputs of Merge cannot be swapped"},
        {&View::bakeSelectedBakePoints, {m_blur}, "No Bake Point nodes are selected"},
        {&View::updateUpstreamBakePoints, {}, "No nodes are selected"},
        {&View::updateSelectedBakePoints, {bake}, "Never baked so far, and so not updated: Bake"},
        {&View::bakeSelectedBakePoints, {bake}, "Baked Bake Point"},
        {&View::bakeSelectedBakePoints, {bake}, "All baked results are up to date"},
        {&View::bakeSelectedBakePointsAgain, {m_blur}, "No Bake Point nodes are selected"},
        {&View::bakeSelectedBakePointsAgain, {bake}, "Baked Bake Point"},
    };

    for (const auto &c : cases) {
        select(c.selected);
        QSignalSpy spy(OssStatusManager::instance(), &OssStatusManager::messageShown);
        (m_view->*c.command)();
        QStringList said;
        for (const QList<QVariant> &message : spy)
            said.append(message.first().toString());
        said.removeAll(QString());
        const QString all = said.join(QLatin1Char('|'));
        if (c.said)
            EXPECT_TRUE(all.startsWith(text(c.said))) << c.said << qPrintable(all);
        else
            EXPECT_FALSE(all.contains(text("up to date")) || all.contains(text("Copied")))
                << &c - cases << qPrintable(all);
    }
}

TEST_F(CommandsTest, whereThereIsNothingToPasteTheUserIsTold)
{
    const ExpectedLog possible("", ExpectedLog::Possible);
    QApplication::clipboard()->clear();
    QSignalSpy spy(OssStatusManager::instance(), &OssStatusManager::messageShown);
    m_view->pasteNodesAction();
    ASSERT_GE(spy.count(), 1);
    EXPECT_EQ(spy.first().first().toString(), text("There are no nodes in the clipboard"));
}

} // namespace
