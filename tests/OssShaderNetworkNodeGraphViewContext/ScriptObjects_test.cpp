#include "GraphFixture.h"
#include "GraphUser.h"
#include "OssAPI/NodeGraphPalette.h"
#include "OssInterface/Palettes/OssPalette.h"
#include "OssInterface/Palettes/OssPaletteManager.h"
#include "OssScriptObjects/OssaApplication.h"
#include "OssScriptObjects/OssaNode.h"
#include "OssScriptObjects/OssaNodeGraph.h"
#include "OssScriptObjects/OssScriptManager.h"
#include "OssScriptObjects/OssScriptObjects.h"
#include "PluginUnderTest.h"

#include <QCoreApplication>

#include <functional>
#include <limits>

namespace {

class ScriptObjects : public GraphFixture
{
protected:
    void SetUp() override
    {
        GraphFixture::SetUp();
        pluginUnderTest();
        m_internal = OssPaletteManager::instance()->find(text("Node Graph"));
        ASSERT_NE(m_internal, nullptr);
        m_palette = OssScriptObject<Ossa::NodeGraphPalette>(m_internal);
        ASSERT_NE(m_palette, nullptr);
        m_tabs = qobject_cast<OssSnNodeGraphWidget *>(m_internal->originalWidget());
        ASSERT_NE(m_tabs, nullptr);
        scripts()->clearError();
    }

    /// The type and text of what the call reported, which is forgotten.
    static void expectReported(int type, const char *message)
    {
        ExpectedLog::takePast(text(message));
        EXPECT_TRUE(scripts()->hasError()) << message;
        EXPECT_EQ(int(scripts()->lastError().type), type);
        EXPECT_EQ(scripts()->lastError().message, text(message));
        scripts()->clearError();
    }

    static OssScriptManager *scripts() { return OssScriptManager::instance(); }

    static Ossa::NodeGraph *graph(OssShaderNetwork *network)
    {
        return OssScriptObject<Ossa::NodeGraph>(network);
    }

    OssPalette *m_internal = nullptr;
    Ossa::NodeGraphPalette *m_palette = nullptr;
    OssSnNodeGraphWidget *m_tabs = nullptr;
};

} // namespace

TEST_F(ScriptObjects, tabsAreReachedByIndexAndWrongOnesAreRefused)
{
    EXPECT_EQ(m_palette->currentTabIndex(), m_tabs->currentIndex());
    m_palette->setCurrentTabIndex(-1);
    expectReported(13, "CurrentTabIndex cannot be a negative number");
    m_palette->setCurrentTabIndex(m_tabs->count());
    expectReported(13, "CurrentTabIndex cannot be larger than or equal to the number of open tabs");
    EXPECT_EQ(m_tabs->currentIndex(), 0);
    EXPECT_EQ(m_palette->nodeGraphView(m_tabs->count()), nullptr);
    EXPECT_EQ(m_palette->nodeGraphView(-1), nullptr);
    EXPECT_FALSE(scripts()->hasError());
    ASSERT_EQ(m_palette->nodeGraphViewList().size(), m_tabs->count());
    EXPECT_EQ(m_palette->nodeGraphViewList().first(), m_palette->nodeGraphView(0));
    EXPECT_EQ(m_palette->nodeGraphView(0)->internalObject(), m_tabs->widget(0));
}

TEST_F(ScriptObjects, aTabIsFoundOrOpenedForAGraph)
{
    auto *group = addGroup();
    auto *other = addGroup();
    auto *inside = graph(group->groupNetwork());
    const int index = m_palette->indexForNodeGraph(inside);
    ASSERT_EQ(index, 1);
    EXPECT_EQ(m_tabs->currentIndex(), 0) << "is not made current";
    EXPECT_EQ(m_palette->nodeGraphView(index)->nodeGraph(), inside);
    EXPECT_EQ(m_palette->indexForNodeGraph(inside), 1) << "found, not opened again";
    EXPECT_EQ(m_palette->indexForNodeGraph(graph(other->groupNetwork())), 2);
    m_palette->closeTab(1);
    EXPECT_EQ(m_tabs->count(), 2);
    EXPECT_EQ(m_palette->indexForNodeGraph(inside), 2) << "reopened at the end";
    EXPECT_EQ(m_palette->indexForNodeGraph(graph(m_network)), 0);
    EXPECT_FALSE(scripts()->hasError());
    EXPECT_EQ(m_palette->indexForNodeGraph(nullptr), -1);
    expectReported(11, "Cannot obtain the Shader Network object");
}

TEST_F(ScriptObjects, aViewIsZoomedAndMoved)
{
    Ossa::NodeGraphView *view = m_palette->nodeGraphView(0);
    ASSERT_NE(view, nullptr);
    EXPECT_EQ(view->nodeGraph()->internalObject(), m_network);
    for (const float level : {2.0F, 0.5F, 1.0F}) {
        view->setZoomLevel(level);
        EXPECT_NEAR(view->zoomLevel(), level, 1e-4);
        EXPECT_NEAR(m_view->transform().m11(), double(level), 1e-4);
    }
    view->setCenter({300.0, -200.0});
    EXPECT_NEAR(view->center().x(), 300.0, 2.0);
    EXPECT_NEAR(view->center().y(), -200.0, 2.0);
    const QPoint middle(m_view->width() / 2, m_view->height() / 2);
    EXPECT_EQ(view->posFromGlobalPos(m_view->mapToGlobal(middle)), view->center());
    const float none = std::numeric_limits<float>::quiet_NaN();
    for (const float level : {0.0F, -1.0F, 1e30F, 1e-30F, none}) {
        view->setZoomLevel(level);
        expectReported(13, "ZoomLevel must be between 0.0001 and 10000");
    }
    const QPointF center = view->center();
    view->setCenter({double(none), 0.0});
    expectReported(13, "Center must be a finite point");
    EXPECT_EQ(view->center(), center);
    EXPECT_NEAR(view->zoomLevel(), 1.0F, 1e-4) << "the view still stands";
}

TEST_F(ScriptObjects, otherObjectsAreReportedByEverySlot)
{
    QObject stranger;
    const Ossa::NodeGraphPalette none(&stranger);
    EXPECT_TRUE(none.isNull());
    expectReported(
        11, "Invalid OssPalette object passed to Ossa::NodeGraphPalette::NodeGraphPalette().");
    const Ossa::NodeGraphView noView(&stranger);
    expectReported(11,
                   "Invalid QGraphicsView object passed to Ossa::NodeGraphView::NodeGraphView().");
    EXPECT_EQ(noView.zoomLevel(), 0.0F);
    expectReported(0, "Internal QGraphicsView object not valid");

    OssPalette plain;
    plain.setBodyWidget(new QWidget);
    Ossa::NodeGraphPalette wrong(&plain);
    const std::function<bool()> slotsOfThePalette[] = {
        [&] { return wrong.currentTabIndex() == -1; },
        [&] { return wrong.setCurrentTabIndex(-1), true; },
        [&] { return wrong.closeTab(0), true; },
        [&] { return wrong.nodeGraphViewList().isEmpty(); },
        [&] { return wrong.nodeGraphView(0) == nullptr; },
        [&] { return wrong.indexForNodeGraph(nullptr) == -1; },
    };
    for (const auto &answersNothing : slotsOfThePalette) {
        EXPECT_TRUE(answersNothing()) << &answersNothing - slotsOfThePalette;
        expectReported(11, "Cannot obtain the Node Graph widget");
    }

    QGraphicsView foreign;
    const Ossa::NodeGraphView wrongView(&foreign);
    EXPECT_EQ(wrongView.nodeGraph(), nullptr);
    expectReported(11, "Cannot obtain the Node Graph view");
    EXPECT_EQ(wrongView.center(), QPointF());
    expectReported(11, "Cannot obtain the Node Graph view");

    auto passing = std::make_unique<OssPalette>();
    const Ossa::NodeGraphPalette gone(passing.get());
    passing.reset();
    EXPECT_EQ(gone.currentTabIndex(), -1);
    expectReported(0, "Internal OssPalette object not valid");
}

// The application finds the palette by name, in the class that the plug-in gave it.
TEST_F(ScriptObjects, thePaletteIsFoundInItsOwnClassAndOthersInTheGeneralOne)
{
    const auto *application = OssScriptObject<Ossa::Application>(qApp);
    EXPECT_EQ(application->palette(text("Node Graph")), m_palette);
    const Ossa::Palette *other = application->palette(text("Node Properties"));
    ASSERT_NE(other, nullptr);
    EXPECT_STREQ(other->metaObject()->className(), "Ossa::Palette");
}

TEST_F(ScriptObjects, nodesArePlacedByEachOtherAndInBackdrops)
{
    const auto script = [](OssSnBaseNode *node) {
        return OssScriptObject<Ossa::Node>(node);
    };
    OssSnBaseNode *first = addAt("Filter/Blur", {0, 0}, "First");
    OssSnBaseNode *second = addAt("Filter/Blur", {900, 700}, "Second");
    OssSnBaseNode *area = addArea({2000, 0, 300, 200}, "Area");
    auto *inside = addInside(addGroup(), "Filter/Blur");
    begin();
    script(second)->placeUnderneath(script(first));
    EXPECT_EQ(rectOf(second).center().x(), rectOf(first).center().x());
    EXPECT_GT(rectOf(second).top(), rectOf(first).bottom());
    expectStepBack("Place Underneath");
    script(second)->placeNextTo(script(first));
    EXPECT_EQ(rectOf(second).left(), rectOf(first).right() + 30.0);
    expectStepBack("Place Next to");
    script(second)->placeOnTop(script(first));
    EXPECT_EQ(rectOf(second).topLeft(), rectOf(first).bottomRight() + QPointF(30, 30));
    expectStepBack("Place on Top");
    script(area)->placeNextTo(script(first));
    expectStepBack("Place Next to");

    EXPECT_EQ(script(second)->container(), nullptr);
    script(second)->setContainer(script(area));
    EXPECT_EQ(script(second)->container(), script(area));
    EXPECT_TRUE(rectOf(area).contains(rectOf(second)));
    script(second)->placeUnderneath(script(first));
    EXPECT_EQ(script(second)->container(), nullptr) << "it lies there no more";
    script(second)->setContainer(script(first));
    expectReported(4, "The node \"First\" is no backdrop");
    const ExpectedLog expected("[ !! ] '/Area' cannot lie in '/Area'");
    script(area)->setContainer(script(area));
    expectReported(10, "\"Area\" cannot lie in \"Area\"");
    script(second)->placeNextTo(script(inside));
    expectReported(12, "Nodes are placed by another one of their graph");
    script(second)->placeNextTo(nullptr);
    expectReported(12, "Nodes are placed by another one of their graph");

    script(area)->setPosition(rectOf(second).topLeft() - QPointF(20, 40));
    EXPECT_EQ(script(second)->container(), script(area));
    script(area)->setSize({100, 80});
    EXPECT_EQ(script(second)->container(), nullptr);
}

TEST_F(ScriptObjects, graphsArrangeNodesInWaysThatTheyName)
{
    const auto script = [](OssSnBaseNode *node) {
        return OssScriptObject<Ossa::Node>(node);
    };
    OssSnBaseNode *first = addAt("Filter/Blur", {0, 0});
    OssSnBaseNode *second = addAt("Filter/Blur", {900, 700});
    auto *own = graph(m_network);
    begin();
    own->arrange({script(first), script(second)}, text("Align left"));
    EXPECT_EQ(rectOf(first).left(), rectOf(second).left());
    expectStepBack("Align Left");
    EXPECT_TRUE(own->arrangements().contains(text("place right at own height")));
    own->arrange({script(first)}, text("align left"));
    expectReported(12, "Align Left: select two nodes or more");
    own->arrange({script(first)}, text("sideways"));
    const QString all = own->arrangements().join(text(", "));
    expectReported(2, qPrintable(text("There is no arrangement \"sideways\"; there are ") + all));
}

TEST_F(ScriptObjects, positionsAndSizesAreUndoable)
{
    auto *node = OssScriptObject<Ossa::Node>(add("Misc/Backdrop"));
    const QByteArray start = m_project->stateHash();
    node->setPosition({120.0, -40.0});
    node->setSize({500.0, 300.0});
    EXPECT_EQ(node->position(), QPointF(120.0, -40.0));
    EXPECT_EQ(node->size(), QSizeF(500.0, 300.0));
    EXPECT_NE(m_project->stateHash(), start);
    undo();
    undo();
    EXPECT_EQ(m_project->stateHash(), start);
}

TEST_F(ScriptObjects, aRootTabThatWasClosedIsOpenedAgain)
{
    auto *root = graph(m_network);
    auto *group = addGroup();
    EXPECT_EQ(m_palette->indexForNodeGraph(graph(group->groupNetwork())), 1);
    m_palette->closeTab(0);
    EXPECT_EQ(m_tabs->count(), 1);
    m_tabs->updateRootLevelText(m_network); // the first tab is another's
    EXPECT_EQ(m_tabs->tabText(0), group->name());
    EXPECT_EQ(m_palette->indexForNodeGraph(root), 0);
    EXPECT_EQ(m_tabs->count(), 2);
    EXPECT_EQ(m_tabs->widget(0), m_view);
    m_palette->closeTab(1);
    m_tabs->updateRootLevelText(m_network);
    // A graph that nothing shows and no group holds has no tab.
    OssShaderNetwork alone;
    EXPECT_EQ(m_palette->indexForNodeGraph(graph(&alone)), -1);
    expectReported(11, "Cannot create a NodeGraphView");
    while (m_tabs->count() > 1)
        m_tabs->removeTab(1);
    const OtherPage other;
    EXPECT_EQ(m_palette->nodeGraphViewList().size(), 1) << "what is no view";
    scripts()->clearError();
    ExpectedLog::takePast(QString());
}

TEST_F(ScriptObjects, placesAndSizesHaveTheirBounds)
{
    auto *node = OssScriptObject<Ossa::Node>(add("Misc/Backdrop"));
    begin();
    const double none = std::numeric_limits<double>::quiet_NaN();
    for (const QPointF &place : {QPointF(1e9, 0.0), QPointF(0.0, -1e9), QPointF(none, 0.0)}) {
        node->setPosition(place);
        expectReported(13, "Places of a graph are at most a million from its middle");
    }
    for (const QSizeF &size : {QSizeF(1e9, 10.0), QSizeF(10.0, 1e9)}) {
        node->setSize(size);
        EXPECT_TRUE(scripts()->hasError());
        ExpectedLog::takePast(text("A node is at most"));
        scripts()->clearError();
    }
    expectNothingDone();
    Ossa::NodeGraph *root = graph(m_network);
    Ossa::Node *made = root->createNode(text("Misc/Dot"), {}, {70.0, 80.0});
    EXPECT_EQ(made->position(), QPointF(70.0, 80.0));
    made->setSize({500.0, 300.0});
    expectReported(12, "The node has no size of its own");
    EXPECT_EQ(root->createNode(text("No/Such"), {}, {70.0, 80.0}), nullptr);
    ExpectedLog::takePast(text("There is no node type"));
    scripts()->clearError();
}
