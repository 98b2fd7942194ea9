#include "OssCore/Documents/OssDeserializer.h"
#include "OssCore/Documents/OssSerializer.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssNodeGraph/Items/OssNgDotNode.h"
#include "OssNodeGraph/Items/OssNgEdge.h"
#include "OssNodeGraph/Items/OssNgNodePositionChangeUndo.h"
#include "OssNodeGraph/Items/OssNgSceneIndex.h"
#include "OssNodeGraph/Items/OssNgUINode.h"
#include "OssNodeGraph/View/OssNgAccessible.h"
#include "support/ExampleGraph.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QLinearGradient>
#include <QSignalSpy>

namespace {

const QString In = QStringLiteral("Input");
const QString Out = QStringLiteral("Output");

struct Pair
{
    GraphScene scene;
    OssNgExtendedNode *a = scene.add(QStringLiteral("A"), {0, 0}, {}, {In}, {Out});
    OssNgExtendedNode *b = scene.add(QStringLiteral("B"), {300, 40}, {}, {In, Out}, {Out});
};

/// Nodes and wires; a scene holds items of its own making too.
int itemsIn(const QGraphicsScene &scene)
{
    const QList<QGraphicsItem *> items = scene.items();
    return int(std::count_if(items.begin(), items.end(), [](const QGraphicsItem *item) {
        return item->type() > QGraphicsItem::UserType;
    }));
}

} // namespace

TEST(OssNgNode, boundsStartAtOriginAndDoNotDependOnHoverOrSelection)
{
    Pair pair;
    const QRectF bounds = pair.a->boundingRect();
    EXPECT_EQ(bounds.topLeft(), QPointF());
    pair.a->setHovered(true);
    pair.a->setSelected(true);
    pair.a->refresh();
    EXPECT_EQ(pair.a->boundingRect(), bounds);
}

TEST(OssNgNode, selectionOfItemReachesBusinessNode)
{
    Pair pair;
    OssSerializableObject business;
    pair.a->setBusinessNode(&business);
    QSignalSpy changed(&business, &OssSerializableObject::selectedChanged);
    pair.a->setSelected(true);
    EXPECT_TRUE(business.selected());
    pair.scene.clearSelection();
    EXPECT_FALSE(business.selected());
    EXPECT_EQ(changed.count(), 2);
}

TEST(OssNgNode, deadBusinessNodeIsForgotten)
{
    Pair pair;
    {
        OssSerializableObject business;
        pair.a->setBusinessNode(&business);
    }
    EXPECT_EQ(pair.a->businessNode(), nullptr);
    pair.a->setSelected(true); // must not reach the dead one
}

TEST(OssNgNode, wireFollowsBothEnds)
{
    Pair pair;
    const OssNgEdge *edge = pair.b->attachInput(In, pair.a, Out);
    ASSERT_NE(edge, nullptr);
    pair.a->setPosition({-50, 70});
    pair.b->setPosition({400, -20});
    const QPainterPath path = edge->path();
    EXPECT_EQ(path.pointAtPercent(0.0), pair.a->outputPortScenePos(Out));
    EXPECT_EQ(path.pointAtPercent(1.0), pair.b->inputPortScenePos(In));
    EXPECT_EQ(OssNgSceneIndex::of(&pair.scene)->edgeAt(edge->markerPosition(), 3.0), edge);
}

TEST(OssNgNode, modelAttachAndDetachAnnounceNothing)
{
    Pair pair;
    QSignalSpy changed(pair.b, &OssNgNode::inputSourceChanged);
    pair.b->attachInput(In, pair.a, Out);
    pair.b->detachInput(In);
    EXPECT_EQ(changed.count(), 0);
    EXPECT_EQ(pair.b->input(In), nullptr);
    EXPECT_TRUE(pair.a->outputs().isEmpty());
    EXPECT_EQ(OssNgSceneIndex::of(&pair.scene)->wireCount(), 0);
}

TEST(OssNgNode, attachReplacesTheWireOfAnInputAndMarksOutputs)
{
    Pair pair;
    auto *c = pair.scene.add(QStringLiteral("C"), {0, 200}, {}, {}, {Out});
    pair.b->attachInput(In, pair.a, Out);
    EXPECT_TRUE(pair.a->outputPort(Out)->used);
    pair.b->attachInput(In, c, Out);
    EXPECT_FALSE(pair.a->outputPort(Out)->used);
    EXPECT_EQ(pair.b->inputs().size(), 1);
    EXPECT_EQ(pair.b->input(In)->source(), c);
}

TEST(OssNgNode, wireSurvivesRebuildingAndRenamingOfPorts)
{
    Pair pair;
    OssNgEdge *edge = pair.b->attachInput(In, pair.a, Out);
    pair.b->clearInputPorts();
    pair.b->addInputPort(Out);
    pair.b->addInputPort(In);
    EXPECT_EQ(pair.b->input(In), edge);
    EXPECT_EQ(edge->path().pointAtPercent(1.0), pair.b->inputPortScenePos(In));
    pair.a->clearOutputPorts();
    pair.a->addOutputPort(Out);
    pair.a->addOutputPort(In);
    EXPECT_TRUE(pair.a->outputPort(Out)->used);
    EXPECT_FALSE(pair.a->outputPort(In)->used);
    pair.b->renameInputPort(In, QStringLiteral("Base"));
    EXPECT_EQ(pair.b->input(QStringLiteral("Base")), edge);
    pair.b->removeInputPort(QStringLiteral("Base"));
    EXPECT_TRUE(pair.b->inputs().isEmpty());
    EXPECT_TRUE(pair.a->outputs().isEmpty());
}

TEST(OssNgNode, addingKnownPortsReordersThem)
{
    OssNgNode node;
    node.addInputPorts({QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")});
    node.addInputPorts({QStringLiteral("c"), QStringLiteral("a")});
    EXPECT_EQ(node.inputPortNames(),
              QStringList({QStringLiteral("c"), QStringLiteral("b"), QStringLiteral("a")}));
}

TEST(OssNgNode, portIsCalledTheSameBesideItAndInWords)
{
    Pair pair;
    OssNgNode &node = *pair.b;
    node.attachInput(In, pair.a, Out);
    EXPECT_EQ(node.inputPortText(In), In);
    node.setConnectionPrettyNames({QStringLiteral("Front")}, {});
    EXPECT_EQ(node.inputPortText(In), QStringLiteral("Front"));
    EXPECT_EQ(node.inputDescriptiveName(In), QStringLiteral("Front"));
    EXPECT_TRUE(
        OssNgAccessible::portDescriptions(&node).first().startsWith(QStringLiteral("Front, from")));
    node.setConnectionDescriptiveNames({QStringLiteral("Front of it")}, {});
    EXPECT_EQ(node.inputPortText(In), QStringLiteral("Front of it"));
    EXPECT_EQ(node.inputDescriptiveName(In), QStringLiteral("Front of it"));
    // A text says what is there just now; the port is called as before.
    node.setInputPortText(In, QStringLiteral("0:Noise"));
    EXPECT_EQ(node.inputPortText(In), QStringLiteral("0:Noise"));
    EXPECT_EQ(node.inputDescriptiveName(In), QStringLiteral("Front of it"));
}

TEST(OssNgNode, namesAndKindsGivenBeforePortsApplyToThem)
{
    OssNgNode node;
    node.setConnectionDescriptiveNames({}, {QStringLiteral("Surface")});
    node.setConnectionPrettyNames({QStringLiteral("Base Input")}, {});
    node.setPortKinds({{In, int(OssNgPortKind::Vector)}}, {});
    node.addInputPort(In);
    node.addOutputPort(Out);
    EXPECT_EQ(node.inputPortText(In), QStringLiteral("Base Input"));
    EXPECT_EQ(node.outputPointDescriptiveName(Out), QStringLiteral("Surface"));
    EXPECT_EQ(node.outputPointDescriptiveName(QStringLiteral("none")), QStringLiteral("none"));
    EXPECT_EQ(node.inputPort(In)->kind, OssNgPortKind::Vector);
}

TEST(OssNgNode, invalidColoursLeaveTheCategorysColour)
{
    OssNgNode node;
    node.setCategory(QStringLiteral("Layer"));
    const QColor ofStyle = node.mainColor();
    node.setNodeColor(Qt::magenta, QColor());
    EXPECT_EQ(node.fillBrush().gradient()->stops().first().second, QColor(Qt::magenta));
    node.setNodeColor(QColor(), QColor());
    EXPECT_EQ(node.mainColor(), ofStyle);
}

TEST(OssNgNode, hoverIsAnnouncedOnlyWhenItChanges)
{
    OssNgNode node;
    QSignalSpy changed(&node, &OssNgNode::hoveredChanged);
    node.setHovered(true);
    node.setHovered(true);
    EXPECT_EQ(changed.count(), 1);
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

TEST(OssNgNode, disposeTwiceIsHarmless)
{
    Pair pair;
    pair.b->attachInput(In, pair.a, Out);
    pair.b->dispose();
    pair.b->dispose();
    EXPECT_EQ(pair.b->scene(), nullptr);
    EXPECT_TRUE(pair.a->outputs().isEmpty());
}

TEST(OssNgNode, positionIsSavedAndLoadedWithoutAnnouncement)
{
    OssNgNode node;
    node.setPosition({12.25, -7.5});
    QBuffer buffer;
    buffer.open(QIODevice::ReadWrite);
    OssSerializer serializer(&buffer);
    serializer.beginDocument(QStringLiteral("test"), {});
    node.save(serializer, QStringLiteral("m_GuiNode"), {});
    serializer.endDocument();
    buffer.seek(0);

    OssNgNode loaded;
    QSignalSpy moved(&loaded, &OssNgNode::posChanged);
    OssUndoManager::instance()->clear();
    OssDeserializer deserializer(&buffer, QStringLiteral("test"));
    OssDeserializer::Attributes attributes;
    ASSERT_TRUE(deserializer.beginDocument(QStringLiteral("test"), &attributes));
    ASSERT_TRUE(deserializer.nextElement());
    loaded.load(deserializer);
    EXPECT_EQ(loaded.pos(), QPointF(12.25, -7.5));
    EXPECT_EQ(moved.count(), 0);
    EXPECT_EQ(OssUndoManager::instance()->count(), 0);
}

TEST(OssNgNodePositionChangeUndo, goesBackAndForthAndAnnounces)
{
    Pair pair;
    pair.a->savePosition();
    pair.a->setPosition({90, 30});
    OssNgNodePositionChangeUndo step(pair.a);
    QSignalSpy moved(pair.a, &OssNgNode::posChanged);
    step.undo();
    EXPECT_EQ(pair.a->pos(), QPointF(0, 0));
    step.redo();
    EXPECT_EQ(pair.a->pos(), QPointF(90, 30));
    EXPECT_EQ(moved.count(), 2);
}

TEST(OssNgNode, portsThatGoTakeTheirRowsAndRenamedOnesKeepTheirWires)
{
    QGraphicsScene scene;
    OssNgExtendedNode source;
    OssNgExtendedNode target;
    for (OssNgNode *node : {static_cast<OssNgNode *>(&source), static_cast<OssNgNode *>(&target)}) {
        scene.addItem(node);
        for (const char *name : {"A", "B", "C"}) {
            node->addInputPort(QString::fromLatin1(name));
            node->addOutputPort(QString::fromLatin1(name));
        }
    }
    const QString a = QStringLiteral("A");
    const QString b = QStringLiteral("B");
    OssNgEdge *first = target.attachInput(a, &source, a);
    OssNgEdge *second = target.attachInput(b, &source, b);
    source.renameOutputPort(a, QStringLiteral("New"));
    EXPECT_EQ(first->sourceOutput(), QStringLiteral("New"));
    EXPECT_EQ(second->sourceOutput(), b);
    target.renameInputPort(b, QStringLiteral("Other"));
    EXPECT_EQ(second->destinationInput(), QStringLiteral("Other"));
    EXPECT_EQ(first->destinationInput(), a);
    source.renameOutputPort(QStringLiteral("None"), b);
    target.renameInputPort(QStringLiteral("None"), a);
    EXPECT_EQ(source.outputPortNames(),
              QStringList({QStringLiteral("New"), b, QStringLiteral("C")}));
    const qreal height = target.boundingRect().height();
    target.removeInputPort(QStringLiteral("Other"));
    EXPECT_EQ(target.inputs(), QList<OssNgEdge *>{first});
    source.removeOutputPort(QStringLiteral("New"));
    EXPECT_TRUE(target.inputs().isEmpty());
    for (const char *name : {"A", "B"})
        target.removeOutputPort(QString::fromLatin1(name));
    EXPECT_LT(target.boundingRect().height(), height);
    const qreal left = target.boundingRect().height();
    target.removeInputPort(QStringLiteral("None"));
    EXPECT_EQ(target.boundingRect().height(), left);
}

TEST(OssNgNodePositionChangeUndo, outlivesItsNode)
{
    auto node = std::make_unique<OssNgNode>();
    OssNgNodePositionChangeUndo step(node.get(), {0, 0}, {5, 5});
    node.reset();
    step.undo();
    step.redo();
}

TEST(OssNgExtendedNode, modeSetByCodeIsSilentAndByUserAnnouncedOnce)
{
    Pair pair;
    QSignalSpy changed(pair.b, &OssNgExtendedNode::nodePortListModeChanged);
    pair.b->setPortListMode(OssNgExtendedNode::Collapsed);
    EXPECT_EQ(changed.count(), 0);
    pair.b->cyclePortListMode();
    EXPECT_EQ(changed.count(), 1);
    EXPECT_EQ(pair.b->portListMode(), OssNgExtendedNode::Expanded);
}

TEST(OssNgExtendedNode, hiddenPortsWiresEndAtTheHeader)
{
    Pair pair;
    const OssNgEdge *edge = pair.b->attachInput(Out, pair.a, Out);
    const qreal expanded = pair.b->boundingRect().height();
    pair.b->setPortListMode(OssNgExtendedNode::Collapsed);
    EXPECT_LT(pair.b->boundingRect().height(), expanded);
    const QPointF end = edge->path().pointAtPercent(1.0);
    EXPECT_EQ(end, pair.b->inputPortScenePos(Out));
    EXPECT_TRUE(pair.b->sceneBoundingRect().contains(end));
}

TEST(OssNgExtendedNode, connectedOnlyFollowsTheConnections)
{
    Pair pair;
    pair.b->setPortListMode(OssNgExtendedNode::ConnectedOnly);
    EXPECT_FALSE(pair.b->inputPort(In)->listed);
    pair.b->attachInput(In, pair.a, Out);
    EXPECT_TRUE(pair.b->inputPort(In)->listed);
    EXPECT_FALSE(pair.b->inputPort(Out)->listed);
    pair.b->detachInput(In);
    EXPECT_FALSE(pair.b->inputPort(In)->listed);
}

TEST(OssNgExtendedNode, portsOfAClusterShareARowWhenStreamsAreCollapsed)
{
    OssNgExtendedNode node;
    const QString base = QStringLiteral("Base");
    node.addInputPorts(
        {QStringLiteral("Base_a"), QStringLiteral("Base_b"), QStringLiteral("Mask")});
    node.setPortCluster(base, {QStringLiteral("Base_a"), QStringLiteral("Base_b")});
    EXPECT_NE(node.inputPort(QStringLiteral("Base_a"))->position,
              node.inputPort(QStringLiteral("Base_b"))->position);
    node.setPortListMode(OssNgExtendedNode::StreamCollapsed);
    EXPECT_EQ(node.inputPort(QStringLiteral("Base_a"))->position,
              node.inputPort(QStringLiteral("Base_b"))->position);
    EXPECT_EQ(node.inputPortText(QStringLiteral("Base_a")), base);
    EXPECT_TRUE(node.isInputInCluster(QStringLiteral("Base_b")));
    EXPECT_FALSE(node.isInputInCluster(QStringLiteral("Mask")));
}

TEST(OssNgExtendedNode, iconsAreHiddenAtFirstAndCountUp)
{
    OssNgExtendedNode node;
    EXPECT_EQ(node.addIcon(QStringLiteral("GeoChannel")), 0);
    EXPECT_EQ(node.addIcon(QStringLiteral("ActivePatchRange")), 1);
    EXPECT_FALSE(node.isIconVisible(0));
    node.setIconVisible(0, true);
    EXPECT_TRUE(node.isIconVisible(0));
    node.setIconVisible(7, true);
    EXPECT_FALSE(node.isIconVisible(7));
}

TEST(OssNgUINode, textWrapsAndTheNoteGrows)
{
    OssNgUINode note;
    const qreal before = note.boundingRect().height();
    note.setLabel(QStringLiteral("word ").repeated(60));
    EXPECT_GT(note.boundingRect().height(), before);
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
