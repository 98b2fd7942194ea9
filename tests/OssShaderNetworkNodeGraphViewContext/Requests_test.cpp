#include "GraphFixture.h"
#include "GraphUser.h"
#include "OssInterface/Properties/OssPortOrder.h"
#include "OssModel/Types/OssSnTags.h"
#include "OssNodeGraph/Items/OssNgNodeMarks.h"
#include "PluginUnderTest.h"

#include <QListWidget>
#include <QSignalSpy>
#include <QTest>

// What the rest of the program asks the node graph for.

namespace {

class Requests : public GraphFixture
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(pluginUnderTest());
        GraphFixture::SetUp();
        m_networks = OssShaderNetworkManager::instance();
        m_group = addGroup("Group");
        m_inner = addInside(m_group, "Filter/Blur", "Inner");
        m_color = addAt("Procedural/Color", {0, 0}, "Color");
        m_viewer = m_network->viewerNode();
        begin();
    }

    OssSnBaseNode *port(const char *name, qreal y) const
    {
        OssSnBaseNode *node = m_group->createInput(text(name), OssSnDataKind::Color);
        contextOf(node)->setNodePosition({0, y});
        return node;
    }

    OssShaderNetworkManager *m_networks = nullptr;
    OssSnGroupNode *m_group = nullptr;
    OssSnBaseNode *m_inner = nullptr;
    OssSnBaseNode *m_color = nullptr;
    OssSnBaseNode *m_viewer = nullptr;
    QByteArray m_before;
};

TEST_F(Requests, goingToANodeOpensItsTabSelectsItAndFlashes)
{
    EXPECT_TRUE(m_networks->goToNode(m_inner));
    OssShaderNetworkView *inside = m_manager->currentView();
    EXPECT_EQ(inside->network(), m_group->groupNetwork());
    EXPECT_EQ(m_group->groupNetwork()->selectedNodes(), QList<OssSnBaseNode *>{m_inner});
    EXPECT_EQ(inside->flashingNode(), itemOf(m_inner));
    EXPECT_TRUE(inside->viewportInSceneCoords().contains(rectOf(m_inner)));

    EXPECT_TRUE(m_networks->goToNode(m_color));
    EXPECT_EQ(m_manager->currentView(), m_view);
    EXPECT_EQ(m_view->flashingNode(), itemOf(m_color));
    expectNothingDone("looking");

    EXPECT_FALSE(m_networks->goToNode(nullptr));
    m_network->removeNodes({m_group});
    EXPECT_FALSE(m_networks->goToNode(m_group));
    EXPECT_EQ(m_manager->currentView(), m_view);
}

TEST_F(Requests, aFlashEndsByItselfAndWithItsNode)
{
    m_view->flashNode(itemOf(m_color));
    m_network->removeNodes({m_color});
    m_view->grab(); // paints nothing of it
    EXPECT_TRUE(QTest::qWaitFor([this] { return !m_view->flashingNode(); }));
}

TEST_F(Requests, theViewerIsWiredToANodeOfAnyGraphOfTheObject)
{
    EXPECT_TRUE(m_networks->requestViewer(m_color));
    EXPECT_EQ(m_viewer->inputNode(text("1")), m_color);
    expectStep("Attach viewer to node");
    EXPECT_TRUE(m_networks->requestViewer(m_color, 3));
    EXPECT_EQ(m_viewer->inputNode(text("3")), m_color);
    EXPECT_EQ(m_network->viewerNodeCurrentEdge(), 3);
    m_networks->goToNode(m_inner);
    EXPECT_TRUE(m_networks->requestViewer(m_inner));
    EXPECT_EQ(m_viewer->inputNode(text("3")), m_inner);
    EXPECT_FALSE(m_networks->requestViewer(nullptr));
}

TEST_F(Requests, theEyeIsOnTheNodeThatIsLookedAt)
{
    m_networks->requestViewer(m_color);
    EXPECT_TRUE(itemOf(m_color)->hasMark(OssNgNodeMarks::GuiActive));
    undo();
    EXPECT_FALSE(itemOf(m_color)->hasMark(OssNgNodeMarks::GuiActive));
}

TEST_F(Requests, renamingWhatTheViewerLooksAtRenamesItsInput)
{
    OssSnBaseNode *shader = addAt("Shaders/Standard Surface", {0, 300}, "Rock");
    m_viewer->setInputNode(text("0"), shader, shader->prefferedOutputPoint());
    const auto shown = [this] {
        return itemOf(m_viewer)->inputPortText(text("0"));
    };
    EXPECT_STREQ(qPrintable(shown()), "0:Rock");
    shader->setName(text("Sand"));
    EXPECT_STREQ(qPrintable(shown()), "0:Sand");
    undo();
    EXPECT_STREQ(qPrintable(shown()), "0:Rock");
    m_viewer->setInputNode(text("0"), nullptr, {});
    EXPECT_STREQ(qPrintable(shown()), "0");
}

TEST_F(Requests, nodesAndItemsBearTheirNamesForDumps)
{
    EXPECT_EQ(m_color->objectName(), text("Color"));
    m_color->setName(text("Red"));
    EXPECT_EQ(m_color->objectName(), text("Red"));
    EXPECT_EQ(itemOf(m_color)->objectName(), text("Red"));
    undo();
    EXPECT_EQ(m_color->objectName(), text("Color"));
    reopen();
    EXPECT_EQ(m_network->node(text("Color"))->objectName(), text("Color"));
}

TEST_F(Requests, aNodeMovesOntoAnotherUndoably)
{
    OssSnBaseNode *blur = addAt("Filter/Blur", {500, 70});
    begin();
    m_networks->requestSamePosition(m_color, blur);
    EXPECT_EQ(itemOf(blur)->pos(), itemOf(m_color)->pos());
    expectStepBack("Move node");
    m_networks->requestSamePosition(m_color, nullptr);
    expectNothingDone();
}

TEST_F(Requests, panelsOpenWhereTheyAreAskedFor)
{
    const auto *widget = m_manager->nodePropertiesWidget();
    OssSnBaseNode *blur = addAt("Filter/Blur", {300, 0});
    OssSnBaseNode *levels = addAt("Adjust/Levels", {600, 0});
    m_networks->requestProperties(blur);
    m_networks->requestPropertiesAfter(m_color, blur);
    m_networks->requestPropertiesBefore(levels, blur);
    const auto place = [widget](const OssSnBaseNode *node) {
        const QWidget *panel = widget->panel(node);
        return panel ? panel->parentWidget()->layout()->indexOf(const_cast<QWidget *>(panel)) : -1;
    };
    EXPECT_EQ(place(levels), 0);
    EXPECT_EQ(place(blur), 1);
    EXPECT_EQ(place(m_color), 2);
}

TEST_F(Requests, portsAreOrderedByTheirPlacesAndPlacesByTheirPorts)
{
    OssSnBaseNode *low = port("Low", 900);
    OssSnBaseNode *high = port("High", 100);
    begin();
    EXPECT_EQ(m_group->inputNames(), QStringList({text("Low"), text("High")}));
    m_networks->requestPlacesInOrderOfPorts(m_group);
    EXPECT_LT(itemOf(low)->y(), itemOf(high)->y());
    expectStepBack("Arrange Inputs");
    m_networks->requestPortsInOrderOfPlaces(m_group);
    EXPECT_EQ(m_group->inputNames(), QStringList({text("High"), text("Low")}));
    expectStepBack("Order Ports by Position");
    EXPECT_EQ(m_group->inputNames(), QStringList({text("Low"), text("High")}));
}

TEST_F(Requests, portsMovedInThePanelAreReorderedAndTheirNodesFollowInOneStep)
{
    OssSnBaseNode *first = port("First", 0);
    OssSnBaseNode *second = port("Second", 300);
    OssSnBaseNode *a = m_group->createOutput(text("A"), OssSnDataKind::Color);
    OssSnBaseNode *b = m_group->createOutput(text("B"), OssSnDataKind::Color);
    begin();
    OssPortOrder order(m_group, nullptr);
    QSignalSpy byHand(m_networks, &OssShaderNetworkManager::nodeGraphIsManuallyChanged);
    order.inputs()->setCurrentRow(0);
    QTest::keyClick(order.inputs(), Qt::Key_Down, Qt::AltModifier);
    QCoreApplication::processEvents();
    EXPECT_EQ(m_group->inputNames(), QStringList({text("Second"), text("First")}));
    EXPECT_LT(itemOf(second)->y(), itemOf(first)->y());
    EXPECT_EQ(byHand.count(), 1);
    expectStepBack("Reorder Ports of Group");
    EXPECT_EQ(order.inputs()->item(0)->text(), text("First")) << "the list follows";

    order.outputs()->setCurrentRow(1);
    QTest::keyClick(order.outputs(), Qt::Key_Up, Qt::AltModifier);
    QTest::keyClick(order.outputs(), Qt::Key_Up, Qt::AltModifier); // there is no further up
    QCoreApplication::processEvents();
    EXPECT_EQ(m_group->outputPointNames(), QStringList({text("B"), text("A")}));
    EXPECT_LT(itemOf(b)->y(), itemOf(a)->y()) << "else the next move would put them back";
    m_group->setLocked(true);
    EXPECT_FALSE(order.isEnabled());
}

TEST_F(Requests, systemShadersAreMarkedWhereverTheyCome)
{
    const auto marked = [](const OssSnBaseNode *node) {
        return itemOf(node)->hasMark(OssNgNodeMarks::SystemShader);
    };
    EXPECT_FALSE(marked(m_inner));
    m_group->addTag(OssSnTags::systemShader());
    OssUndoManager::instance()->resetClean(); // no step, but saved
    EXPECT_TRUE(marked(m_group));
    m_network->removeNodes({m_group});
    undo();
    EXPECT_TRUE(marked(m_inner)) << "inside";
}

TEST_F(Requests, removedAndNewNodesAreToldOf)
{
    QSignalSpy added(m_view, &OssShaderNetworkView::nodeAdded);
    QSignalSpy removed(m_view, &OssShaderNetworkView::nodeRemoved);
    m_view->createNodeAt(text("Filter/Blur"), {10, 10});
    EXPECT_EQ(added.count(), 1);
    select({m_color, m_group});
    m_view->deleteSelectedNodes();
    EXPECT_EQ(removed.count(), 2);
    m_view->deleteAllNodes();
    EXPECT_EQ(removed.count(), 3) << "the viewer stays";
}

TEST_F(Requests, everyCommandThatChangesTheGraphSaysThatItWasByHand)
{
    OssSnBaseNode *blur = addAt("Filter/Blur", {300, 0});
    wire(m_color, blur);
    begin();
    const ExpectedLog expected("fallback onto current nodegraph");
    QSignalSpy byHand(m_networks, &OssShaderNetworkManager::nodeGraphIsManuallyChanged);
    for (const char *name : {"Extract", "Duplicate", "Connect Selected Node to Viewer", "Bypass",
                             "Delete", "Remove All Nodes"}) {
        select({blur});
        byHand.clear();
        graphAction(name)->trigger();
        EXPECT_EQ(byHand.count(), 1) << name;
        undo();
    }
    byHand.clear();
    graphAction("Select All")->trigger();
    EXPECT_EQ(byHand.count(), 0);
    Q_EMIT itemOf(blur)->inputSourceChanged(nullptr, text("Input"), {});
    EXPECT_EQ(byHand.count(), 1) << "a wire cut by hand";
}

TEST_F(Requests, wiresAreSwitchedOffAndOnWithOneCommand)
{
    OssSnBaseNode *merge = addAt("Layer/Merge", {300, 0});
    wire(m_color, merge, "Base");
    wire(m_color, merge, "Over");
    begin();
    m_before = m_project->stateHash();
    for (const char *input : {"Base", "Over"})
        itemOf(merge)->input(text(input))->setSelected(true);
    graphAction("Toggle Wire")->trigger();
    EXPECT_FALSE(merge->isInputEnabled(text("Base")) || merge->isInputEnabled(text("Over")));
    EXPECT_TRUE(itemOf(merge)->input(text("Over"))->hasMark(OssNgEdge::Bypassed));
    expectStep("Disable Wires");
    graphAction("Toggle Wire")->trigger();
    EXPECT_TRUE(merge->isInputEnabled(text("Base")) && merge->isInputEnabled(text("Over")));
    EXPECT_STREQ(qPrintable(undoText()), "Enable Wires");
    undo();
    expectUndoIsExact(m_before);
}

} // namespace
