#include "GraphFixture.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "PluginUnderTest.h"
#include "View/Backdrops.h"

namespace {

using Networks = OssShaderNetworkManager;

class LayeredArrangingTest : public GraphFixture
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(pluginUnderTest());
        GraphFixture::SetUp();
        contextOf(m_network->viewerNode())->setNodePosition({5000, 5000});
    }

    static std::string arrange(const QList<OssSnBaseNode *> &nodes,
                               Networks::Arrangement how = Networks::ArrangeInLayers)
    {
        return Networks::instance()->requestArrangement(nodes, how).error().toStdString();
    }

    static QPointF placeOf(const OssSnBaseNode *node) { return itemOf(node)->pos(); }
};

TEST_F(LayeredArrangingTest, theGraphIsLaidOutInOneStepWithFramesNotesAndViewer)
{
    OssSnBaseNode *end = addAt("Layer/Merge", {900, 300});
    OssSnBaseNode *base = addAt("Filter/Blur", {1000, 700});
    OssSnBaseNode *over = addAt("Procedural/Color", {1200, 60});
    OssSnBaseNode *source = addAt("Procedural/Color", {1010, 900});
    OssSnBaseNode *outside = addAt("Procedural/Color", {1500, 800});
    wire(base, end, "Base");
    wire(over, end, "Over");
    wire(source, base);
    wire(outside, base, "Radius");
    OssSnBaseNode *note = addAt("Misc/Sticky Note", {1200, 0});
    contextOf(note)->setNodePosition({1200, rectOf(over).bottom() + 10});
    OssSnBaseNode *area = addArea({950, 640, 400, 500});
    base->setContainer(area);
    source->setContainer(area);
    OssSnBaseNode *viewer = m_network->viewerNode();
    wire(end, viewer, "1");
    contextOf(viewer)->setNodePosition({-500, -500});
    const QPointF apart = placeOf(note) - placeOf(over);
    begin();
    const QByteArray before = m_project->stateHash();
    EXPECT_EQ(arrange(m_network->nodes()), "");
    EXPECT_EQ(placeOf(end), QPointF(900, 300));
    EXPECT_TRUE(rectOf(area).contains(rectOf(base) | rectOf(source)));
    EXPECT_EQ(Backdrops::inside(area).size(), 2);
    EXPECT_EQ(source->container(), area);
    EXPECT_EQ(placeOf(note) - placeOf(over), apart);
    EXPECT_GE(rectOf(viewer).left(), rectOf(end).right());
    EXPECT_LT(rectOf(outside).right(), rectOf(base).left());
    expectWhole();
    const QByteArray after = m_project->stateHash();
    expectStep("Arrange");
    undo();
    EXPECT_EQ(m_project->stateHash(), before);
    OssUndoManager::instance()->redo();
    EXPECT_EQ(m_project->stateHash(), after);
    begin();
    EXPECT_EQ(arrange(m_network->nodes()), "");
    expectNothingDone("a second time");
}

TEST_F(LayeredArrangingTest, aBackdropThatIsSaidToLieOnOneThatLiesOnItCountsOnce)
{
    OssSnBaseNode *node = addAt("Procedural/Color", {150, 150});
    OssSnBaseNode *inner = addArea({100, 100, 400, 300});
    OssSnBaseNode *outer = addArea({0, 0, 900, 700});
    node->setContainer(inner);
    outer->setContainer(inner);
    inner->setContainer(nullptr);
    EXPECT_EQ(Backdrops::containerOf(outer), inner);
    EXPECT_FALSE(Backdrops::containerOf(inner));
    EXPECT_EQ(arrange(m_network->nodes()), "");
    Networks::instance()->requestLayout(m_network, {});
    EXPECT_TRUE(rectOf(inner).contains(rectOf(node)));
}

TEST_F(LayeredArrangingTest, backdropsThatHoldNothingButBackdropsStayTogether)
{
    OssSnBaseNode *outer = addArea({3000, 0, 900, 700});
    OssSnBaseNode *inner = addArea({3100, 100, 600, 400});
    inner->setContainer(outer);
    wire(addAt("Procedural/Color", {3200, 2000}), addAt("Filter/Blur", {0, 1500}));
    EXPECT_EQ(arrange(m_network->nodes()), "");
    EXPECT_EQ(Backdrops::containerOf(inner), outer);
    EXPECT_EQ(rectOf(inner).topLeft() - rectOf(outer).topLeft(), QPointF(100, 100));
}

TEST_F(LayeredArrangingTest, aSelectionIsLaidOutWhereItStandsAndNothingElseMoves)
{
    OssSnBaseNode *end = addAt("Filter/Blur", {0, 0});
    OssSnBaseNode *middle = addAt("Filter/Blur", {30, 400});
    OssSnBaseNode *source = addAt("Procedural/Color", {-900, 900});
    OssSnBaseNode *inTheWay = addAt("Filter/Blur", {-330, 10});
    wire(middle, end);
    wire(source, middle);
    const QPointF far = placeOf(source);
    const QPointF there = placeOf(inTheWay);
    begin();
    EXPECT_EQ(arrange({end, middle}), "");
    EXPECT_EQ(placeOf(source), far);
    EXPECT_EQ(placeOf(inTheWay), there);
    EXPECT_LT(rectOf(middle).right(), rectOf(end).left());
    EXPECT_FALSE(rectOf(middle).intersects(rectOf(inTheWay)));
    EXPECT_FALSE(rectOf(end).intersects(rectOf(inTheWay)));
    expectStepBack("Arrange");
}

TEST_F(LayeredArrangingTest, aSelectionAcrossBackdropsIsLaidOutInEachOfThem)
{
    OssSnBaseNode *free = addAt("Filter/Blur", {3000, 0});
    OssSnBaseNode *other = addAt("Filter/Blur", {3040, 150});
    OssSnBaseNode *framed = addAt("Filter/Blur", {100, 100});
    OssSnBaseNode *source = addAt("Filter/Blur", {120, 300});
    OssSnBaseNode *left = addAt("Procedural/Color", {100, 600});
    wire(source, framed);
    wire(framed, free);
    wire(other, free);
    OssSnBaseNode *area = addArea({0, 0, 900, 900});
    for (OssSnBaseNode *node : {framed, source, left})
        node->setContainer(area);
    const QPointF there = placeOf(left);
    begin();
    EXPECT_EQ(arrange({free, other, framed, source}), "");
    for (OssSnBaseNode *node : {framed, source, left}) {
        EXPECT_EQ(Backdrops::containerOf(node), area);
        EXPECT_TRUE(rectOf(area).contains(rectOf(node)));
    }
    EXPECT_FALSE(Backdrops::containerOf(other));
    EXPECT_LT(rectOf(source).right(), rectOf(framed).left());
    EXPECT_LT(rectOf(other).right(), rectOf(free).left());
    EXPECT_EQ(placeOf(left), there);
    expectStepBack("Arrange");
}

TEST_F(LayeredArrangingTest, dotsLeadWiresAroundTheNodesInTheirWay)
{
    // The end takes from all of a chain, so that long wires pass what stands between.
    QList<OssSnBaseNode *> chain{addAt("Procedural/Color", {0, 0})};
    for (int i = 1; i < 6; ++i) {
        chain.append(addAt("Layer/Merge", {100.0 * i, 50.0 * i}));
        wire(chain.at(i - 1), chain.at(i), "Base");
        wire(chain.at(std::max(0, i - 3)), chain.at(i), "Over");
        wire(chain.first(), chain.at(i), "Mask");
    }
    const int before = m_network->nodes().size();
    begin();
    EXPECT_EQ(arrange(m_network->nodes(), Networks::ArrangeWithDots), "");
    EXPECT_GE(m_network->nodes().size(), before);
    expectWhole();
    expectStepBack("Arrange with Dots");
}

TEST_F(LayeredArrangingTest, aChainIsStraightenedFromItsEndOn)
{
    OssSnBaseNode *end = addAt("Layer/Merge", {900, 300});
    OssSnBaseNode *middle = addAt("Filter/Blur", {500, 700});
    OssSnBaseNode *source = addAt("Procedural/Color", {480, 60});
    wire(middle, end, "Over");
    wire(source, middle);
    begin();
    EXPECT_EQ(arrange({end, middle, source}, Networks::StraightenChain), "");
    EXPECT_EQ(placeOf(end), QPointF(900, 300));
    const auto isLevel = [](OssSnBaseNode *from, OssSnBaseNode *to, const char *input) {
        const OssNgEdge *edge = itemOf(to)->input(text(input));
        return edge
               && std::abs(itemOf(from)->outputPortScenePos(edge->sourceOutput()).y()
                           - itemOf(to)->inputPortScenePos(text(input)).y())
                      < 0.01;
    };
    EXPECT_TRUE(isLevel(middle, end, "Over"));
    EXPECT_TRUE(isLevel(source, middle, "Input"));
    EXPECT_LT(rectOf(source).right(), rectOf(middle).left());
    expectStepBack("Straighten Chain");
}

TEST_F(LayeredArrangingTest, onlyWhatOverlapsIsTidied)
{
    OssSnBaseNode *first = addAt("Filter/Blur", {0, 0});
    OssSnBaseNode *over = addAt("Filter/Blur", {500, 500});
    OssSnBaseNode *apart = addAt("Filter/Blur", {1000, 0});
    contextOf(over)->setNodePosition({20, 20});
    begin();
    EXPECT_EQ(arrange(m_network->nodes(), Networks::TidyOverlaps), "");
    EXPECT_EQ(placeOf(first), QPointF(0, 0));
    EXPECT_EQ(placeOf(apart), QPointF(1000, 0));
    EXPECT_FALSE(rectOf(over).intersects(rectOf(first)));
    EXPECT_LT((placeOf(over) - QPointF(20, 20)).manhattanLength(), 400.0);
    expectStepBack("Tidy Overlaps");
}

TEST_F(LayeredArrangingTest,
       autoplaceRefitsOnlyBackdropsWithMovedMembersAreRefittedAndTheViewerStandsRight)
{
    OssSnBaseNode *blur = addAt("Filter/Blur", {0, 0});
    OssSnBaseNode *color = addAt("Procedural/Color", {30, 120});
    OssSnBaseNode *apart = addAt("Filter/Blur", {2000, 2000});
    wire(color, blur);
    OssSnBaseNode *viewer = m_network->viewerNode();
    contextOf(viewer)->setNodePosition({-600, 900});
    wire(blur, viewer, "1");
    OssSnBaseNode *area = addArea({-60, -80, 500, 500});
    OssSnBaseNode *loose = addArea({1900, 1900, 700, 700});
    begin();
    m_manager->beautifyNodesLayout(m_network, {}, true);
    EXPECT_EQ(rectOf(loose), QRectF(1900, 1900, 700, 700));
    EXPECT_EQ(placeOf(apart), QPointF(2000, 2000));
    EXPECT_TRUE(rectOf(area).contains(rectOf(color) | rectOf(blur)));
    EXPECT_GE(rectOf(viewer).left(), rectOf(blur).right());
    expectStep("Layout Nodes");
}

TEST_F(LayeredArrangingTest, scriptsMeanTheWholeGraphWhateverIsSelected)
{
    OssSnBaseNode *blur = addAt("Filter/Blur", {0, 0});
    OssSnBaseNode *color = addAt("Procedural/Color", {30, 120});
    wire(color, blur);
    OssSnBaseNode *other = addAt("Filter/Blur", {2000, 2000});
    contextOf(m_network->viewerNode())->setNodePosition({5000, 5000});
    select({other});
    begin();
    OssShaderNetworkManager::instance()->requestLayout(m_network, {});
    EXPECT_EQ(rectOf(color).right() + 150.0, 0.0);
    expectStep("Layout Nodes");
}

} // namespace
