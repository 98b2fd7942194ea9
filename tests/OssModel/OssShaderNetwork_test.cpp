#include "support/ModelFixture.h"

#include <QSignalSpy>

namespace {

using NetworkTest = ModelFixture;

TEST_F(NetworkTest, editsCanBeUndoneToTheIdenticalDocument)
{
    const QByteArray start = m_project->stateHash();
    OssSnBaseNode *color = add("Procedural/Color", "Base");
    OssSnBaseNode *blur = add("Filter/Blur");
    OssSnBaseNode *merge = add("Layer/Merge");
    ASSERT_TRUE(wire(color, blur));
    ASSERT_TRUE(wire(blur, merge, "Base"));
    ASSERT_TRUE(wire(color, merge, "Over"));
    blur->setAttribute(QStringLiteral("Radius"), 2.5);
    merge->setAttribute(QStringLiteral("BlendMode"), QStringLiteral("Screen"));
    blur->setName(QStringLiteral("Soft"));
    blur->setDescription(QStringLiteral("softens"));
    blur->toggleDisable();
    merge->toggleBypass();
    color->setCacheActive(CacheActive);
    blur->setInputEnabled(QStringLiteral("Input"), false);
    m_network->removeNodes({blur, color});
    EXPECT_EQ(merge->inputNode(QStringLiteral("Base")), nullptr);
    expectUndoIsExact(start);
    // The nodes came back as the same objects.
    OssUndoManager::instance()->undo();
    EXPECT_EQ(m_network->node(QStringLiteral("Soft")), blur);
    EXPECT_EQ(merge->inputNode(QStringLiteral("Base")), blur);
}

TEST_F(NetworkTest, removalIsOneStepAndKeepsOrderAndIds)
{
    QList<OssSnBaseNode *> nodes;
    for (int i = 0; i < 6; ++i)
        nodes.append(add("Filter/Blur"));
    for (int i = 1; i < 6; ++i)
        wire(nodes.at(i - 1), nodes.at(i));
    const QStringList ids{nodes.at(1)->uuidString(), nodes.at(4)->uuidString()};
    const QByteArray before = m_project->stateHash();
    const int steps = undoCount();
    m_network->removeNodes({nodes.at(1), nodes.at(4)});
    EXPECT_EQ(undoCount(), steps + 1);
    EXPECT_EQ(m_network->nodeCount(), 5); // and the viewer
    OssUndoManager::instance()->undo();
    EXPECT_EQ(m_project->stateHash(), before);
    EXPECT_EQ(OssObjectReferenceManager::instance()->getPointer(ids.at(0)), nodes.at(1));
    EXPECT_EQ(OssObjectReferenceManager::instance()->getPointer(ids.at(1)), nodes.at(4));
}

TEST_F(NetworkTest, connectionsThatCannotBeAreRefusedWithTheReason)
{
    const ExpectedLog expected[] = {ExpectedLog("\"A\" already takes its input from \"A\""),
                                    ExpectedLog("\"B\" has no input \"Nothing\""),
                                    ExpectedLog("\"A\" has no output \"Nothing\"")};
    OssSnBaseNode *a = add("Filter/Blur", "A");
    OssSnBaseNode *b = add("Filter/Blur", "B");
    auto *group = qobject_cast<OssSnGroupNode *>(add("Misc/Group"));
    OssSnBaseNode *inside = group->groupNetwork()->createNode(QStringLiteral("Filter/Blur"));
    ASSERT_TRUE(wire(a, b));
    const QByteArray before = m_project->stateHash();
    const int steps = undoCount();
    EXPECT_FALSE(wire(b, a));
    EXPECT_TRUE(logHas(QStringLiteral("close a loop")));
    EXPECT_FALSE(wire(a, a));
    EXPECT_FALSE(wire(inside, a));
    EXPECT_TRUE(logHas(QStringLiteral("different networks")));
    EXPECT_FALSE(wire(a, b, "Nothing"));
    EXPECT_FALSE(b->setInputNode(QStringLiteral("Input"), a, QStringLiteral("Nothing")));
    EXPECT_EQ(undoCount(), steps);
    EXPECT_EQ(m_project->stateHash(), before);
}

TEST_F(NetworkTest, outputsAreUsedFromTheFirstWireToTheLast)
{
    OssSnBaseNode *a = add("Filter/Blur");
    OssSnBaseNode *b = add("Filter/Blur");
    OssSnBaseNode *c = add("Filter/Blur");
    QSignalSpy used(a, &OssSnBaseNode::outputPointUsed);
    QSignalSpy freed(a, &OssSnBaseNode::outputPointFreed);
    QSignalSpy detached(a, &OssSnBaseNode::outputNodeDetached);
    wire(a, b);
    wire(a, c);
    EXPECT_EQ(detached.count(), 0);
    wire(c, b); // replaces
    EXPECT_EQ(detached.count(), 1);
    EXPECT_EQ(used.count(), 1);
    EXPECT_EQ(freed.count(), 0);
    m_network->removeNodes({c});
    EXPECT_EQ(freed.count(), 1);
    EXPECT_TRUE(a->outputNodes().isEmpty());
    EXPECT_EQ(b->inputNode(QStringLiteral("Input")), nullptr);
}

TEST_F(NetworkTest, extractionHealsTheStream)
{
    OssSnBaseNode *a = add("Filter/Blur");
    OssSnBaseNode *b = add("Filter/Blur");
    OssSnBaseNode *c = add("Filter/Blur");
    OssSnBaseNode *d = add("Layer/Merge");
    wire(a, b);
    wire(b, c);
    wire(b, d, "Over");
    const int steps = undoCount();
    const QByteArray before = m_project->stateHash();
    m_network->extractNodes({b}, true);
    EXPECT_EQ(c->inputNode(QStringLiteral("Input")), a);
    EXPECT_EQ(d->inputNode(QStringLiteral("Over")), a);
    EXPECT_TRUE(b->outgoingConnections().isEmpty());
    EXPECT_EQ(undoCount(), steps + 1);
    OssUndoManager::instance()->undo();
    EXPECT_EQ(m_project->stateHash(), before);
}

TEST_F(NetworkTest, namesAreUniqueAndUsable)
{
    const ExpectedLog expected("There is no node type 'No/Such Type'");
    EXPECT_EQ(add("Filter/Blur")->name(), QStringLiteral("Blur"));
    EXPECT_EQ(add("Filter/Blur")->name(), QStringLiteral("Blur 2"));
    OssSnBaseNode *third = add("Filter/Blur", "Blur 2");
    EXPECT_EQ(third->name(), QStringLiteral("Blur 3"));
    m_network->removeNodes({m_network->node(QStringLiteral("Blur 2"))});
    EXPECT_EQ(m_network->generateUniqueNodeName(QStringLiteral("Blur 3")),
              QStringLiteral("Blur 2"));
    OssUndoManager::instance()->undo();
    EXPECT_EQ(m_network->generateUniqueNodeName(QStringLiteral("Blur")), QStringLiteral("Blur 4"));
    third->setName(QStringLiteral("a/b"));
    EXPECT_EQ(third->name(), QStringLiteral("a_b"));
    third->setName(QStringLiteral("  "));
    EXPECT_EQ(third->name(), QStringLiteral("a_b"));
    EXPECT_EQ(m_network->node(QStringLiteral("a_b")), third);
    EXPECT_EQ(add("No/Such Type"), nullptr);
}

TEST_F(NetworkTest, protectedNodesStay)
{
    const ExpectedLog expected("is protected and stays");
    OssSnBaseNode *input = add("_System/Graph Layer Input");
    ASSERT_NE(input, nullptr);
    const int steps = undoCount();
    m_network->removeNodes({input});
    EXPECT_EQ(input->network(), m_network);
    EXPECT_EQ(undoCount(), steps);
}

TEST_F(NetworkTest, portChangesKeepWiresAndCanBeUndone)
{
    auto *group = qobject_cast<OssSnGroupNode *>(add("Misc/Group"));
    OssSnBaseNode *source = add("Procedural/Color");
    OssSnBaseNode *target = add("Filter/Blur");
    const QByteArray start = m_project->stateHash();
    OssUndoManager::instance()->clear();
    ASSERT_NE(group->createInput(QStringLiteral("A"), OssSnDataKind::Color), nullptr);
    ASSERT_NE(group->createInput(QStringLiteral("B"), OssSnDataKind::Scalar), nullptr);
    ASSERT_NE(group->createOutput(QStringLiteral("Out"), OssSnDataKind::Color), nullptr);
    EXPECT_EQ(group->createInput(QStringLiteral("A"), OssSnDataKind::Color), nullptr);
    wire(source, group, "B");
    wire(group, target);
    ASSERT_TRUE(group->renameInput(QStringLiteral("B"), QStringLiteral("Wet")));
    ASSERT_TRUE(group->renameOutputPoint(QStringLiteral("Out"), QStringLiteral("Result")));
    ASSERT_TRUE(group->reorderInputs({QStringLiteral("Wet"), QStringLiteral("A")}));
    EXPECT_FALSE(group->reorderInputs({QStringLiteral("Wet")}));
    EXPECT_EQ(group->inputNode(QStringLiteral("Wet")), source);
    EXPECT_EQ(target->inputOutputPoint(QStringLiteral("Input")), QStringLiteral("Result"));
    group->removeInput(QStringLiteral("Wet"));
    group->removeOutputPoint(QStringLiteral("Result"));
    EXPECT_EQ(target->inputNode(QStringLiteral("Input")), nullptr);
    expectUndoIsExact(start);
}

TEST_F(NetworkTest, attributesTakeOnlyWhatTheirTypeIs)
{
    const ExpectedLog expected[] = {ExpectedLog("has no attribute 'Nothing'"),
                                    ExpectedLog("'Nonsense' is no value for 'BlendMode'")};
    OssSnBaseNode *merge = add("Layer/Merge");
    EXPECT_FALSE(merge->setAttribute(QStringLiteral("Nothing"), 1));
    EXPECT_FALSE(merge->setAttribute(QStringLiteral("BlendMode"), QStringLiteral("Nonsense")));
    EXPECT_TRUE(merge->setAttribute(QStringLiteral("Amount"), QStringLiteral("0.25")));
    EXPECT_EQ(merge->attribute(QStringLiteral("Amount")), QVariant(0.25));
}

TEST_F(NetworkTest, viewerMovesWithItsWiresAndWithoutAnUndoStep)
{
    auto *group = qobject_cast<OssSnGroupNode *>(add("Misc/Group"));
    OssSnBaseNode *source = add("Procedural/Color");
    OssSnBaseNode *viewer = m_network->viewerNode();
    ASSERT_NE(viewer, nullptr);
    wire(source, viewer, "1");
    const int steps = undoCount();
    EXPECT_EQ(group->groupNetwork()->moveCurrentViewerNodeToNetwork(), viewer);
    EXPECT_EQ(viewer->network(), group->groupNetwork());
    EXPECT_EQ(viewer->inputNode(QStringLiteral("1")), source);
    EXPECT_EQ(undoCount(), steps);
    m_network->removeNodes({});
    group->groupNetwork()->removeNodes({viewer});
    EXPECT_EQ(m_network->viewerNode(), nullptr);
    EXPECT_NE(m_network->moveCurrentViewerNodeToNetwork(), nullptr);
}

} // namespace
