#include "GraphFixture.h"

namespace {

class AutoplaceTest : public GraphFixture
{
protected:
    static QPointF placeOf(const OssSnBaseNode *node) { return itemOf(node)->pos(); }
};

TEST_F(AutoplaceTest, selectionOrAllLeavesAreLaidOutInOneStep)
{
    OssSnBaseNode *merge = addAt("Layer/Merge", {800, 400});
    OssSnBaseNode *base = addAt("Procedural/Color", {810, 410});
    OssSnBaseNode *over = addAt("Procedural/Color", {100, 900});
    OssSnBaseNode *apart = addAt("Filter/Blur", {2000, 2000});
    wire(base, merge, "Base");
    wire(over, merge, "Over");
    OssUndoManager::instance()->clear();
    merge->setSelected(true);
    m_manager->beautifyNodesLayout();
    expectStep("Layout Nodes");
    EXPECT_EQ(placeOf(merge), QPointF(800, 400));
    EXPECT_EQ(placeOf(base).y(), 400.0);
    EXPECT_EQ(rectOf(base).right() + 150.0, 800.0);
    EXPECT_EQ(placeOf(over).x(), placeOf(base).x());
    EXPECT_GE(placeOf(over).y(), rectOf(base).bottom() + 60.0);
    EXPECT_EQ(placeOf(apart), QPointF(2000, 2000));
    undo();
    EXPECT_EQ(placeOf(base), QPointF(810, 410));
    EXPECT_EQ(placeOf(over), QPointF(100, 900));
    merge->setSelected(false);
    OssUndoManager::instance()->clear();
    m_manager->beautifyNodesLayout(m_network);
    EXPECT_EQ(rectOf(base).right() + 150.0, 800.0);
    m_manager->beautifyNodesLayout(m_network, QList<OssSnBaseNode *>{nullptr});
    EXPECT_EQ(undoCount(), 1);
}

TEST_F(AutoplaceTest, viewersDoNotKeepANodeFromBeingALeafAndToViewIsNotFollowed)
{
    OssSnBaseNode *color = addAt("Procedural/Color", {0, 0});
    OssSnBaseNode *blur = addAt("Filter/Blur", {-40, 30});
    wire(color, blur);
    OssSnBaseNode *viewer = m_network->viewerNode();
    ASSERT_TRUE(wire(blur, viewer, "1"));
    ASSERT_TRUE(wire(color, viewer, "ToView"));
    const QPointF viewerPlace(900, 0);
    contextOf(viewer)->setNodePosition(viewerPlace);
    m_manager->beautifyNodesLayout(m_network);
    EXPECT_EQ(placeOf(viewer), viewerPlace);
    EXPECT_EQ(placeOf(blur), QPointF(-40, 30));
    EXPECT_EQ(rectOf(color).right() + 150.0, -40.0);
}

TEST_F(AutoplaceTest, backdropsAreRefittedAroundWhatTheyHeldAndNothingIsSaidAboutNothing)
{
    OssSnBaseNode *blur = addAt("Filter/Blur", {0, 0});
    OssSnBaseNode *color = addAt("Procedural/Color", {30, 120});
    wire(color, blur);
    contextOf(m_network->viewerNode())->setNodePosition({3000, 0});
    OssSnBaseNode *area = addArea({-60, -80, 500, 500});
    const OssNgBackdropNode *backdrop = backdropOf(area);
    OssUndoManager::instance()->clear();
    area->setSelected(true); // stands for what lies on it
    m_manager->beautifyNodesLayout(m_network);
    const qreal margin = backdrop->titleBarHeight();
    const QRectF members = rectOf(blur) | rectOf(color);
    EXPECT_EQ(rectOf(area), members.adjusted(-margin, -2 * margin, margin, margin));
    EXPECT_EQ(undoCount(), 1);
    undo();
    EXPECT_EQ(rectOf(area), QRectF(-60, -80, 500, 500));

    m_network->removeNodes({blur, color});
    m_manager->beautifyNodesLayout(m_network);
    expectLogged("[ !! ] Nothing to autoplace.");
}

TEST_F(AutoplaceTest, hiddenNodesAndTheViewerOnABackdropStayAndEmptyBackdropsToo)
{
    OssSnBaseNode *merge = addAt("Layer/Merge", {0, 0});
    OssSnBaseNode *color = addAt("Procedural/Color", {30, 120});
    OssSnBaseNode *hidden = addAt("Filter/Blur", {200, 300});
    OssSnBaseNode *viewer = m_network->viewerNode();
    contextOf(viewer)->setNodePosition({250, 200});
    wire(color, merge, "Base");
    wire(hidden, merge, "Over");
    wire(color, viewer, "1");
    itemOf(hidden)->setVisible(false);
    OssSnBaseNode *area = addArea({-60, -80, 900, 900});
    OssSnBaseNode *empty = addArea({5000, 5000, 900, 900});
    area->setSelected(true);
    OssUndoManager::instance()->clear();
    m_manager->beautifyNodesLayout(m_network);
    EXPECT_EQ(placeOf(viewer), QPointF(250, 200)) << "it only looks";
    EXPECT_EQ(placeOf(hidden), QPointF(200, 300));
    EXPECT_LT(rectOf(color).right(), itemOf(merge)->x());
    EXPECT_EQ(contextOf(empty)->nodeSize(), QSizeF(900, 900));
    EXPECT_EQ(placeOf(empty), QPointF(5000, 5000));
    const QRectF shown = rectOf(merge) | rectOf(color) | rectOf(viewer);
    const qreal margin = backdropOf(area)->titleBarHeight();
    EXPECT_EQ(rectOf(area), shown.adjusted(-margin, -2 * margin, margin, margin))
        << "around what is to be seen";
    itemOf(hidden)->setVisible(true);
}

TEST_F(AutoplaceTest, anEmptyBackdropOnAnotherGoesWithIt)
{
    OssSnBaseNode *end = addAt("Filter/Blur", {-9000, 5000});
    OssSnBaseNode *blur = addAt("Filter/Blur", {-9100, 5300});
    OssSnBaseNode *color = addAt("Procedural/Color", {-9200, 5600});
    wire(blur, end);
    wire(color, blur);
    OssSnBaseNode *outer = addArea({-9300, 5200, 900, 800});
    OssSnBaseNode *inner = addArea({-8900, 5700, 300, 200});
    m_manager->beautifyNodesLayout(m_network);
    EXPECT_EQ(placeOf(end), QPointF(-9000, 5000));
    EXPECT_TRUE(rectOf(outer).contains(rectOf(inner)));
    EXPECT_TRUE(rectOf(outer).contains(rectOf(blur)) && rectOf(outer).contains(rectOf(color)));
    EXPECT_LT(rectOf(outer).width(), 1500.0);
    EXPECT_LT(rectOf(outer).right(), itemOf(end)->x());
    const QRectF before = rectOf(outer);
    m_manager->beautifyNodesLayout(m_network);
    EXPECT_EQ(rectOf(outer), before);
}

TEST_F(AutoplaceTest, whatLiesOnTwoBackdropsIsFittedIntoOne)
{
    OssSnBaseNode *end = addAt("Filter/Blur", {3000, 0});
    OssSnBaseNode *both = addAt("Filter/Blur", {0, 0});
    OssSnBaseNode *one = addAt("Procedural/Color", {-100, 2000});
    wire(both, end);
    wire(one, both);
    contextOf(m_network->viewerNode())->setNodePosition({9000, 0});
    OssSnBaseNode *small = addArea({-60, -80, 300, 300});
    OssSnBaseNode *large = addArea({-200, -40, 500, 2400});
    m_manager->beautifyNodesLayout(m_network);
    EXPECT_TRUE(rectOf(small).contains(rectOf(both)));
    EXPECT_TRUE(rectOf(large).contains(rectOf(one)));
    EXPECT_FALSE(rectOf(large).intersects(rectOf(both)));
    EXPECT_LT(rectOf(large).height(), 600.0);
}

TEST_F(AutoplaceTest, backdropsAreInNobodysWay)
{
    OssSnBaseNode *blur = addAt("Filter/Blur", {0, 0});
    OssSnBaseNode *color = addAt("Procedural/Color", {30, 500});
    wire(color, blur);
    contextOf(m_network->viewerNode())->setNodePosition({3000, 0});
    addArea({-350, -40, 250, 150});
    m_manager->beautifyNodesLayout(m_network, blur);
    EXPECT_EQ(rectOf(color).right(), -150.0);
}

TEST_F(AutoplaceTest, theHostAsksForAWholeNetworkForOneNodeOrForSeveral)
{
    QList<OssSnBaseNode *> ends;
    QList<OssSnBaseNode *> sources;
    for (int i = 0; i < 3; ++i) {
        ends.append(addAt("Filter/Blur", {0, 1000.0 * i}));
        sources.append(addAt("Procedural/Color", {10, 1000.0 * i + 20}));
        wire(sources.last(), ends.last());
    }
    const auto laidOut = [&] {
        QString which;
        for (int i = 0; i < 3; ++i)
            which += QLatin1Char(itemOf(sources.at(i))->x() < 0.0 ? 'x' : '-');
        undo();
        return which.toStdString();
    };
    OssShaderNetworkManager *networks = OssShaderNetworkManager::instance();
    select({});
    Q_EMIT networks->beautifyNodesLayout(m_network, ends.at(1));
    EXPECT_EQ(laidOut(), "-x-");
    Q_EMIT networks->beautifyNodesLayout(m_network,
                                         QList<OssSnBaseNode *>{ends.at(0), nullptr, ends.at(2)});
    EXPECT_EQ(laidOut(), "x-x");
    Q_EMIT networks->beautifyNodesLayout(m_network);
    EXPECT_EQ(laidOut(), "xxx");
    begin();
    Q_EMIT networks->beautifyNodesLayout(m_network, static_cast<OssSnBaseNode *>(nullptr));
    Q_EMIT networks->beautifyNodesLayout(m_network, QList<OssSnBaseNode *>());
    expectNothingDone();
}

TEST_F(AutoplaceTest, notesGoWithTheirNodesAndWhatStandsWellLeavesNoStep)
{
    OssSnBaseNode *blur = addAt("Filter/Blur", {0, 0});
    OssSnBaseNode *color = addAt("Procedural/Color", {30, 400});
    OssSnBaseNode *note = addAt("Misc/Sticky Note", {40, 300});
    OssSnBaseNode *lone = addAt("Misc/Sticky Note", {3000, 3000});
    wire(color, blur);
    contextOf(note)->setNodePosition({30, rectOf(color).bottom() + 20});
    contextOf(m_network->viewerNode())->setNodePosition({5000, 0});
    const QPointF apart = placeOf(note) - placeOf(color);
    begin();
    m_manager->beautifyNodesLayout(m_network, {}, true);
    expectStep("Layout Nodes");
    EXPECT_EQ(placeOf(note) - placeOf(color), apart);
    EXPECT_EQ(placeOf(lone), QPointF(3000, 3000));
    begin();
    m_manager->beautifyNodesLayout(m_network, {}, true);
    m_manager->beautifyNodesLayout(m_network, lone);
    expectNothingDone();
}

TEST_F(AutoplaceTest, portsWithoutNodesKeepTheirPlacesAndOneAloneHasNoOrder)
{
    auto *group = addGroup();
    OssSnBaseNode *single = group->createInput(text("A"), OssSnDataKind::Color);
    OssSnBaseNode *end = group->createOutput(text("Z"), OssSnDataKind::Color);
    OssUndoManager::instance()->clear();
    m_manager->reorderGroupInputsByPos(group);
    m_manager->reorderGroupOutputsByPos(group);
    EXPECT_EQ(undoCount(), 0);
    EXPECT_NE(single, end);
    OssSnBaseNode *second = group->createInput(text("B"), OssSnDataKind::Color);
    OssSnBaseNode::InputPort loose;
    loose.name = text("Loose");
    group->addInput(loose);
    group->reorderInputs({text("A"), text("Loose"), text("B")});
    contextOf(single)->setNodePosition({0, 500});
    contextOf(second)->setNodePosition({0, 0});
    OssUndoManager::instance()->clear();
    m_manager->reorderGroupInputsByPos(group);
    EXPECT_EQ(group->inputNames(), texts({"B", "Loose", "A"}));
    // An order that is there already moves nothing, a name that is none or comes twice neither.
    OssUndoManager::instance()->clear();
    m_manager->arrangeGroupInputNodesByOrder(
        group->groupNetwork(), {text("B"), text("None"), text("Z"), text("B"), text("A")});
    EXPECT_EQ(undoCount(), 0);
    EXPECT_EQ(placeOf(second), QPointF(0, 0));
    EXPECT_EQ(placeOf(single), QPointF(0, 500));
    m_manager->arrangeGroupInputNodesByOrder(nullptr, {});
    expectLogged("Network is NULL");
}

} // namespace
