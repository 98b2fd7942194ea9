#include "NodeFixture.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssNodeGraph/Items/OssNgDotNode.h"
#include "OssNodeGraph/Items/OssNgEdge.h"
#include "OssNodeGraph/Items/OssNgNodePositionChangeUndo.h"
#include "OssNodeGraph/Items/OssNgSceneIndex.h"
#include "OssNodeGraph/Items/OssNgUINode.h"
#include "OssNodeGraph/View/OssNgAccessible.h"
#include "support/Saving.h"

#include <QSignalSpy>

namespace {

/// Two nodes, the second with two inputs.
class OssNgNodePair : public testing::Test
{
protected:
    GraphScene scene;
    OssNgExtendedNode *a = scene.add("A", {0, 0});
    OssNgExtendedNode *b = scene.add("B", {300, 40}, {In, Out});
};

/// Nodes and wires; a scene holds items of its own making too.
int itemsIn(const QGraphicsScene &scene)
{
    const QList<QGraphicsItem *> items = scene.items();
    return int(std::count_if(items.begin(), items.end(), [](const QGraphicsItem *item) {
        return item->type() > QGraphicsItem::UserType;
    }));
}

TEST_F(OssNgNodePair, boundsStartAtOriginAndDoNotDependOnHoverOrSelection)
{
    const QRectF bounds = a->boundingRect();
    EXPECT_EQ(bounds.topLeft(), QPointF());
    a->setHovered(true);
    a->setSelected(true);
    a->refresh();
    EXPECT_EQ(a->boundingRect(), bounds);
}

TEST_F(OssNgNodePair, selectionReachesTheBusinessNodeAsLongAsItLives)
{
    {
        OssSerializableObject business;
        a->setBusinessNode(&business);
        const QSignalSpy changed(&business, &OssSerializableObject::selectedChanged);
        a->setSelected(true);
        EXPECT_TRUE(business.selected());
        scene.clearSelection();
        EXPECT_FALSE(business.selected());
        EXPECT_EQ(changed.count(), 2);
    }
    EXPECT_EQ(a->businessNode(), nullptr);
    a->setSelected(true); // must not reach the dead one
}

TEST_F(OssNgNodePair, wireFollowsBothEnds)
{
    const OssNgEdge *edge = b->attachInput(In, a, Out);
    ASSERT_NE(edge, nullptr);
    a->setPosition({-50, 70});
    b->setPosition({400, -20});
    const QPainterPath path = edge->path();
    EXPECT_EQ(path.pointAtPercent(0.0), a->outputPortScenePos(Out));
    EXPECT_EQ(path.pointAtPercent(1.0), b->inputPortScenePos(In));
    EXPECT_EQ(OssNgSceneIndex::of(&scene)->edgeAt(edge->markerPosition(), 3.0), edge);
}

TEST_F(OssNgNodePair, modelAttachAndDetachAnnounceNothing)
{
    const QSignalSpy changed(b, &OssNgNode::inputSourceChanged);
    b->attachInput(In, a, Out);
    b->detachInput(In);
    EXPECT_EQ(changed.count(), 0);
    EXPECT_EQ(b->input(In), nullptr);
    EXPECT_TRUE(a->outputs().isEmpty());
    EXPECT_EQ(OssNgSceneIndex::of(&scene)->wireCount(), 0);
}

TEST_F(OssNgNodePair, attachReplacesTheWireOfAnInputAndMarksOutputs)
{
    auto *c = scene.add("C", {0, 200}, {}, {Out});
    b->attachInput(In, a, Out);
    EXPECT_TRUE(a->outputPort(Out)->used);
    b->attachInput(In, c, Out);
    EXPECT_FALSE(a->outputPort(Out)->used);
    EXPECT_EQ(b->inputs().size(), 1);
    EXPECT_EQ(b->input(In)->source(), c);
}

TEST_F(OssNgNodePair, portsThatAreBuiltAnewTakeTheirWiresBack)
{
    OssNgEdge *edge = b->attachInput(In, a, Out);
    b->clearInputPorts();
    b->addInputPort(Out);
    b->addInputPort(In);
    EXPECT_EQ(b->input(In), edge);
    EXPECT_EQ(edge->path().pointAtPercent(1.0), b->inputPortScenePos(In));
    a->clearOutputPorts();
    a->addOutputPort(Out);
    a->addOutputPort(In);
    EXPECT_TRUE(a->outputPort(Out)->used);
    EXPECT_FALSE(a->outputPort(In)->used);
}

TEST(OssNgNode, portsThatGoTakeTheirRowsAndWiresAndRenamedOnesKeepThem)
{
    const QStringList names = texts({"A", "B", "C"});
    GraphScene scene;
    auto *source = scene.add("Source", {0, 0}, names, names);
    auto *target = scene.add("Target", {300, 0}, names, names);
    OssNgEdge *first = target->attachInput(names[0], source, names[0]);
    OssNgEdge *second = target->attachInput(names[1], source, names[1]);
    source->renameOutputPort(names[0], text("New"));
    target->renameInputPort(names[1], text("Other"));
    EXPECT_EQ(first->sourceOutput(), text("New"));
    EXPECT_EQ(first->destinationInput(), names[0]);
    EXPECT_EQ(second->sourceOutput(), names[1]);
    EXPECT_EQ(second->destinationInput(), text("Other"));
    EXPECT_EQ(target->input(text("Other")), second);
    source->renameOutputPort(text("None"), text("D"));
    source->renameOutputPort(names[1], names[2]);
    target->renameInputPort(text("None"), text("D"));
    target->renameInputPort(names[0], names[2]);
    EXPECT_EQ(source->outputPortNames(), QStringList({text("New"), names[1], names[2]}));
    EXPECT_EQ(target->inputPortNames(), QStringList({names[0], text("Other"), names[2]}))
        << "a name is one port's";
    const qreal height = target->boundingRect().height();
    target->removeInputPort(text("Other"));
    EXPECT_EQ(target->inputs(), QList<OssNgEdge *>{first});
    source->removeOutputPort(text("New"));
    EXPECT_TRUE(target->inputs().isEmpty());
    for (const int i : {0, 1})
        target->removeOutputPort(names[i]);
    const qreal left = target->boundingRect().height();
    EXPECT_LT(left, height);
    target->removeInputPort(text("None"));
    EXPECT_EQ(target->boundingRect().height(), left);
}

TEST(OssNgNode, addingKnownPortsReordersThem)
{
    OssNgNode node;
    node.addInputPorts({text("a"), text("b"), text("c")});
    node.addInputPorts({text("c"), text("a")});
    EXPECT_EQ(node.inputPortNames(), texts({"c", "b", "a"}));
}

TEST_F(OssNgNodePair, portIsCalledTheSameBesideItAndInWords)
{
    OssNgNode &node = *b;
    node.attachInput(In, a, Out);
    EXPECT_EQ(node.inputPortText(In), In);
    node.setConnectionPrettyNames({text("Front")}, {});
    EXPECT_EQ(node.inputPortText(In), text("Front"));
    EXPECT_EQ(node.inputDescriptiveName(In), text("Front"));
    EXPECT_TRUE(OssNgAccessible::portDescriptions(&node).first().startsWith(text("Front, from")));
    node.setConnectionDescriptiveNames({text("Front of it")}, {});
    EXPECT_EQ(node.inputPortText(In), text("Front of it"));
    EXPECT_EQ(node.inputDescriptiveName(In), text("Front of it"));
    // A text says what is there just now; the port is called as before.
    node.setInputPortText(In, text("0:Noise"));
    EXPECT_EQ(node.inputPortText(In), text("0:Noise"));
    EXPECT_EQ(node.inputDescriptiveName(In), text("Front of it"));
}

TEST(OssNgNode, namesAndKindsGivenBeforePortsApplyToThem)
{
    OssNgNode node;
    node.setConnectionDescriptiveNames({}, {text("Surface")});
    node.setConnectionPrettyNames({text("Base Input")}, {});
    node.setPortKinds({{In, int(OssNgPortKind::Vector)}}, {});
    node.addInputPort(In);
    node.addOutputPort(Out);
    EXPECT_EQ(node.inputPortText(In), text("Base Input"));
    EXPECT_EQ(node.outputPointDescriptiveName(Out), text("Surface"));
    EXPECT_EQ(node.outputPointDescriptiveName(text("none")), text("none"));
    EXPECT_EQ(node.inputPort(In)->kind, OssNgPortKind::Vector);
}

TEST(OssNgNode, survivesTheDeathOfItsScene)
{
    OssNgNode source;
    OssNgNode destination;
    source.addOutputPort(Out);
    destination.addInputPort(In);
    {
        QGraphicsScene scene;
        scene.addItem(&source);
        scene.addItem(&destination);
        destination.attachInput(In, &source, Out);
        EXPECT_EQ(itemsIn(scene), 3);
        OssNgSceneIndex::releaseItems(&scene);
        EXPECT_EQ(itemsIn(scene), 0);
    }
    EXPECT_EQ(source.scene(), nullptr);
    source.setPosition({10, 10});
    EXPECT_EQ(destination.input(In)->source(), &source);
    QGraphicsScene other;
    other.addItem(&source);
    other.addItem(&destination);
    EXPECT_EQ(itemsIn(other), 3);
    OssNgSceneIndex::releaseItems(&other);
}

TEST(OssNgNode, deathOfEitherEndTakesTheWireAlong)
{
    QGraphicsScene scene;
    auto destination = std::make_unique<OssNgNode>();
    destination->addInputPort(In);
    scene.addItem(destination.get());
    {
        OssNgNode source;
        source.addOutputPort(Out);
        scene.addItem(&source);
        destination->attachInput(In, &source, Out);
    }
    EXPECT_EQ(destination->input(In), nullptr);
    destination.reset();
    EXPECT_EQ(itemsIn(scene), 0);
    EXPECT_EQ(OssNgSceneIndex::of(&scene)->nodeCount(), 0);
}

TEST(OssNgNode, sceneThatDeletesItsItemsLeavesNothingDangling)
{
    auto scene = std::make_unique<QGraphicsScene>();
    auto *source = new OssNgNode;
    auto *destination = new OssNgNode;
    const QPointer<OssNgNode> watch = destination;
    scene->addItem(source);
    scene->addItem(destination);
    destination->attachInput(In, source, Out);
    scene.reset();
    EXPECT_TRUE(watch.isNull());
}

TEST_F(OssNgNodePair, disposeTwiceIsHarmless)
{
    b->attachInput(In, a, Out);
    b->dispose();
    b->dispose();
    EXPECT_EQ(b->scene(), nullptr);
    EXPECT_TRUE(a->outputs().isEmpty());
}

TEST(OssNgNode, positionIsSavedAndLoadedWithoutAnnouncement)
{
    OssNgNode node;
    node.setPosition({12.25, -7.5});
    OssNgNode copy;
    const QSignalSpy moved(&copy, &OssNgNode::posChanged);
    OssUndoManager::instance()->clear();
    ASSERT_TRUE(loaded(saved(&node), &copy));
    EXPECT_EQ(copy.pos(), QPointF(12.25, -7.5));
    EXPECT_EQ(moved.count(), 0);
    EXPECT_EQ(OssUndoManager::instance()->count(), 0);
}

TEST_F(OssNgNodePair, positionUndoGoesBackAndForthAndOutlivesItsNode)
{
    a->savePosition();
    a->setPosition({90, 30});
    OssNgNodePositionChangeUndo step(a);
    const QSignalSpy moved(a, &OssNgNode::posChanged);
    step.undo();
    EXPECT_EQ(a->pos(), QPointF(0, 0));
    step.redo();
    EXPECT_EQ(a->pos(), QPointF(90, 30));
    EXPECT_EQ(moved.count(), 2);
    auto gone = std::make_unique<OssNgNode>();
    OssNgNodePositionChangeUndo ofGone(gone.get(), {0, 0}, {5, 5});
    gone.reset();
    ofGone.undo();
    ofGone.redo();
}

TEST_F(OssNgNodePair, modeSetByCodeIsSilentAndByUserAnnouncedOnce)
{
    const QSignalSpy changed(b, &OssNgExtendedNode::nodePortListModeChanged);
    b->setPortListMode(OssNgExtendedNode::Collapsed);
    EXPECT_EQ(changed.count(), 0);
    b->cyclePortListMode();
    EXPECT_EQ(changed.count(), 1);
    EXPECT_EQ(b->portListMode(), OssNgExtendedNode::Expanded);
}

TEST_F(OssNgNodePair, hiddenPortsWiresEndAtTheHeader)
{
    const OssNgEdge *edge = b->attachInput(Out, a, Out);
    const qreal expanded = b->boundingRect().height();
    b->setPortListMode(OssNgExtendedNode::Collapsed);
    EXPECT_LT(b->boundingRect().height(), expanded);
    const QPointF end = edge->path().pointAtPercent(1.0);
    EXPECT_EQ(end, b->inputPortScenePos(Out));
    EXPECT_TRUE(b->sceneBoundingRect().contains(end));
}

TEST_F(OssNgNodePair, connectedOnlyFollowsTheConnections)
{
    b->setPortListMode(OssNgExtendedNode::ConnectedOnly);
    EXPECT_FALSE(b->inputPort(In)->listed);
    b->attachInput(In, a, Out);
    EXPECT_TRUE(b->inputPort(In)->listed);
    EXPECT_FALSE(b->inputPort(Out)->listed);
    b->detachInput(In);
    EXPECT_FALSE(b->inputPort(In)->listed);
}

TEST(OssNgExtendedNode, portsOfAClusterShareARowWhenStreamsAreCollapsed)
{
    OssNgExtendedNode node;
    const QString base = text("Base");
    node.addInputPorts({text("Base_a"), text("Base_b"), text("Mask")});
    node.setPortCluster(base, {text("Base_a"), text("Base_b")});
    EXPECT_NE(node.inputPort(text("Base_a"))->position, node.inputPort(text("Base_b"))->position);
    node.setPortListMode(OssNgExtendedNode::StreamCollapsed);
    EXPECT_EQ(node.inputPort(text("Base_a"))->position, node.inputPort(text("Base_b"))->position);
    EXPECT_EQ(node.inputPortText(text("Base_a")), base);
    EXPECT_TRUE(node.isInputInCluster(text("Base_b")));
    EXPECT_FALSE(node.isInputInCluster(text("Mask")));
}

TEST(OssNgUINode, isFoundByTheNamesThatScriptsKnow)
{
    const OssNgUINode note;
    EXPECT_GE(note.metaObject()->indexOfMethod("setLabel(QString)"), 0);
    EXPECT_GE(note.metaObject()->indexOfMethod("setNodeBackgroundColour(QColor)"), 0);
}

TEST(OssNgDotNode, onlyTheDiscTakesClicks)
{
    OssNgDotNode dot;
    EXPECT_TRUE(dot.hitTest(dot.bodyRect().center()));
    EXPECT_FALSE(dot.hitTest(QPointF(1, 1)));
    EXPECT_EQ(dot.metaObject()->indexOfMethod("setLabel(QString)"), -1);
}

} // namespace
