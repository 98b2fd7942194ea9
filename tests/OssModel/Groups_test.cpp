#include "OssModel/Graph/OssLinkedCustomAttributeManager.h"
#include "OssModel/Graph/OssShaderNetworkContextLoader.h"
#include "OssModel/Graph/OssShaderNetworkIO.h"
#include "OssModel/Graph/OssSnBaseContext.h"
#include "support/ModelFixture.h"

#include <QClipboard>
#include <QFile>
#include <QGuiApplication>
#include <QSignalSpy>
#include <QTemporaryDir>

namespace {

const QString Radius = QStringLiteral("Radius");

QString text(const char *latin)
{
    return QString::fromLatin1(latin);
}

/// Where a node stands, without anything that shows it.
class Place : public OssSnBaseContext
{
public:
    using OssSnBaseContext::OssSnBaseContext;

    void initializeGui() override {}

    QPointF nodePosition() const override { return m_position; }

    QSizeF nodeSize() const override { return {100.0, 50.0}; }

    bool setNodePosition(QPointF position) override
    {
        m_position = position;
        return true;
    }

    bool setNodePositionUndo(QPointF position) override
    {
        const QPointF before = m_position;
        m_position = position;
        OssUndoManager::instance()->record(
            {}, [this, before] { m_position = before; },
            [this, position] { m_position = position; });
        return true;
    }

private:
    QPointF m_position;
};

class Places : public OssShaderNetworkContextLoader
{
public:
    QList<OssSnBaseContext *> load(const QString &, OssSnBaseNode *node) override
    {
        return {nullptr, new Place(node)}; // the node owns it
    }
};

class Groups : public ModelFixture
{
protected:
    OssSnGroupNode *group(const QList<OssSnBaseNode *> &nodes)
    {
        return m_network->groupNodes(nodes);
    }

    QStringList order() const
    {
        QStringList names;
        const QList<OssSnBaseNode *> nodes = m_network->nodes();
        for (const OssSnBaseNode *node : nodes)
            names.append(node->name());
        return names;
    }

    /// The first network of what is saved, changed as text and opened.
    void reopenWith(const QByteArray &from, const QByteArray &to)
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(text("Groups.ossa"));
        ASSERT_TRUE(OssProjectManager::instance()->saveProjectAs(path));
        QFile file(path + QStringLiteral("/project.xml"));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        QByteArray content = file.readAll();
        ASSERT_TRUE(content.contains(from)) << content.constData();
        content.replace(from, to);
        file.close();
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        file.close();
        const OssResult opened = OssProjectManager::instance()->openProject(path);
        ASSERT_TRUE(opened) << qPrintable(opened.error());
        m_project = OssProjectManager::instance()->currentProject();
        m_network = m_project->shadingGroups().first()->network();
    }
};

TEST_F(Groups, whatComesOutOfAGroupStandsWhereItsAgePutsIt)
{
    OssSnBaseNode *first = add("Filter/Blur", "First");
    add("Filter/Blur", "Second");
    OssSnBaseNode *third = add("Filter/Blur", "Third");
    OssSnBaseNode *fourth = add("Filter/Blur", "Fourth");
    const QByteArray start = m_project->stateHash();
    OssUndoManager::instance()->clear();
    OssSnGroupNode *made = group({fourth, first});
    m_network->removeNodes({m_network->node(text("Second")), third});
    m_network->ungroup(made);
    EXPECT_EQ(order(), (QStringList{text("Viewer"), text("First"), text("Fourth")}));
    expectUndoIsExact(start);
    OssUndoManager::instance()->setIndex(0);

    made = group({first, third});
    made->groupNetwork()->createNode(text("Filter/Blur"), text("Fresh"));
    m_network->ungroup(made);
    EXPECT_EQ(order(), (QStringList{text("Viewer"), text("First"), text("Second"), text("Third"),
                                    text("Fourth"), text("Fresh")}));
    expectUndoIsExact(start);
}

TEST_F(Groups, aGroupNeverFeedsItself)
{
    OssSnBaseNode *first = add("Filter/Blur", "First");
    OssSnBaseNode *outside = add("Filter/Blur", "Outside");
    OssSnBaseNode *inner = add("Filter/Blur", "Inner");
    OssSnBaseNode *last = add("Filter/Blur", "Last");
    OssSnBaseNode *beside = add("Filter/Blur", "Beside");
    ASSERT_TRUE(wire(first, outside));
    ASSERT_TRUE(wire(outside, inner));
    ASSERT_TRUE(wire(inner, last));
    ASSERT_TRUE(wire(first, beside));
    const QByteArray start = m_project->stateHash();
    OssUndoManager::instance()->clear();
    const QList<OssSnBaseNode *> between{outside, inner};
    EXPECT_EQ(m_network->nodesBetween({last, first}), between);
    EXPECT_EQ(m_network->nodesBetween({first, inner}), QList<OssSnBaseNode *>{outside});
    EXPECT_TRUE(m_network->nodesBetween({outside, inner, beside}).isEmpty());
    EXPECT_EQ(group({first, last, beside}), nullptr);
    EXPECT_EQ(m_project->stateHash(), start);
    EXPECT_EQ(OssUndoManager::instance()->count(), 0);

    OssSnGroupNode *inside = group(between);
    ASSERT_TRUE(inside);
    EXPECT_EQ(m_network->nodesBetween({first, last}), QList<OssSnBaseNode *>{inside});
    OssSnGroupNode *all = group({first, inside, last});
    ASSERT_TRUE(all);
    m_network->ungroup(all);
    m_network->ungroup(inside);
    EXPECT_EQ(m_project->stateHash(), start);
    expectUndoIsExact(start);
}

TEST_F(Groups, onlyAGroupOfTheNetworkIsTakenApart)
{
    auto *outer = qobject_cast<OssSnGroupNode *>(add("Misc/Group"));
    auto *inner = qobject_cast<OssSnGroupNode *>(
        outer->groupNetwork()->createNode(text("Misc/Group")));
    inner->groupNetwork()->createNode(text("Filter/Blur"));
    const QByteArray before = m_project->stateHash();
    EXPECT_TRUE(m_network->ungroup(inner).isEmpty());
    EXPECT_TRUE(m_network->ungroup(nullptr).isEmpty());
    EXPECT_EQ(m_project->stateHash(), before);
}

TEST_F(Groups, portsCarryWhatTheirStreamsDo)
{
    OssSnBaseNode *scalar = add("Procedural/Scalar");
    OssSnBaseNode *merge = add("Layer/Merge");
    ASSERT_TRUE(wire(scalar, merge, "Mask"));
    OssSnGroupNode *made = group({merge});
    ASSERT_EQ(made->inputPorts().size(), 1);
    EXPECT_EQ(made->inputPorts().first().kind, OssSnDataKind::Scalar);
    EXPECT_EQ(made->inputNodesInside().first()->outputPoints().first().kind, OssSnDataKind::Scalar);
    OssSnGroupNode *second = group({scalar});
    EXPECT_EQ(second->outputPoints().first().kind, OssSnDataKind::Scalar);
}

TEST_F(Groups, portsThatArePastedComeTogetherAndKeepTheirKinds)
{
    auto *from = qobject_cast<OssSnGroupNode *>(add("Misc/Group", "From"));
    auto *to = qobject_cast<OssSnGroupNode *>(add("Misc/Group", "To"));
    ASSERT_TRUE(from && to);
    const QList<OssSnBaseNode *> ports{from->createInput(text("Mask"), OssSnDataKind::Scalar),
                                       from->createInput(text("Facing"), OssSnDataKind::Vector),
                                       from->createOutput(text("Depth"), OssSnDataKind::Scalar)};
    QSignalSpy one(to, &OssSnBaseNode::inputAdded);
    QSignalSpy list(to, &OssSnBaseNode::inputListAdded);
    OssUndoManager::instance()->clear();
    const QByteArray before = m_project->stateHash();
    OssShaderNetworkIO::duplicateNodes(to->groupNetwork(), ports, true);
    const QStringList names{text("Mask"), text("Facing")};
    ASSERT_EQ(list.count(), 1) << "a picture of the node is laid out once";
    EXPECT_EQ(list.first().first().toStringList(), names);
    EXPECT_EQ(one.count(), 0);
    ASSERT_EQ(to->inputNames(), names);
    EXPECT_EQ(to->inputPorts().at(0).kind, OssSnDataKind::Scalar);
    EXPECT_EQ(to->inputPorts().at(1).kind, OssSnDataKind::Vector);
    ASSERT_EQ(to->outputPoints().size(), 1);
    EXPECT_EQ(to->outputPoints().first().kind, OssSnDataKind::Scalar);
    expectUndoIsExact(before);
    EXPECT_EQ(to->inputNames(), names);
}

TEST_F(Groups, theirPortsAreRefusedNamesThatAreTakenAndLoseTheirNodes)
{
    auto *made = qobject_cast<OssSnGroupNode *>(add("Misc/Group"));
    made->groupNetwork()->createNode(text("Filter/Blur"), text("Inside"));
    ASSERT_NE(made->createInput(text("In"), OssSnDataKind::Color), nullptr);
    ASSERT_NE(made->createOutput(text("Out"), OssSnDataKind::Color), nullptr);
    OssSnBaseNode::InputPort plain;
    plain.name = text("Plain");
    made->addInput(plain);
    made->addOutputPoint({text("Bare"), {}, OssSnDataKind::Color});
    const QByteArray before = m_project->stateHash();
    for (const char *name : {"", "  ", "Inside", "In", "Out"}) {
        EXPECT_EQ(made->createInput(text(name), OssSnDataKind::Color), nullptr) << name;
        EXPECT_EQ(made->createOutput(text(name), OssSnDataKind::Color), nullptr) << name;
        EXPECT_FALSE(made->renameInput(text("In"), text(name))) << name;
        EXPECT_FALSE(made->renameOutputPoint(text("Out"), text(name))) << name;
    }
    EXPECT_EQ(m_project->stateHash(), before);
    EXPECT_TRUE(made->removeInput(text("Plain")));
    EXPECT_TRUE(made->removeOutputPoint(text("Bare")));
    EXPECT_FALSE(made->removeInput(text("None")));
    EXPECT_FALSE(made->removeOutputPoint(text("None")));
    EXPECT_TRUE(made->removeInput(text("In")));
    EXPECT_TRUE(made->removeOutputPoint(text("Out")));
    EXPECT_EQ(made->groupNetwork()->nodeCount(), 1) << "with the nodes that stood for them";
}

TEST_F(Groups, groupsStandWhereTheirNodesStoodAndGiveThemTheirWay)
{
    Places loader;
    OssShaderNetworkManager::instance()->registerContextLoader(text("NodeGraphView"), &loader);
    OssSnBaseNode *left = add("Filter/Blur");
    OssSnBaseNode *right = add("Filter/Blur");
    ASSERT_NE(left->viewContext(), nullptr);
    left->viewContext()->setNodePosition({100.0, 0.0});
    right->viewContext()->setNodePosition({300.0, 200.0});
    OssSnGroupNode *made = group({left, right});
    EXPECT_EQ(made->viewContext()->nodePosition(), QPointF(200.0, 100.0));
    m_network->ungroup(made);
    EXPECT_EQ(left->viewContext()->nodePosition(), QPointF(100.0, 0.0));
    OssUndoManager::instance()->undo();
    made->viewContext()->setNodePosition({1200.0, 90.0});
    m_network->ungroup(made);
    EXPECT_EQ(left->viewContext()->nodePosition(), QPointF(1100.0, -10.0));
    EXPECT_EQ(right->viewContext()->nodePosition(), QPointF(1300.0, 190.0));
    OssUndoManager::instance()->undo();
    EXPECT_EQ(left->viewContext()->nodePosition(), QPointF(100.0, 0.0));
    const OssSnBaseNode *bakePoint = m_network->createPaintableNode({7.0, 8.0},
                                                                    text("Misc/Bake Point"));
    EXPECT_EQ(bakePoint->viewContext()->nodePosition(), QPointF(7.0, 8.0));
    EXPECT_EQ(m_network->createPaintableNode({}, text("Filter/Blur")), nullptr);
    EXPECT_EQ(bakePoint->viewContext()->inputs().size(), 1);
    left->viewContext()->addInputTag(text("Input"), text("_mine"));
    EXPECT_TRUE(left->hasInputTag(text("Input"), text("_mine")));
    EXPECT_FALSE(left->hasInputTag(text("Radius"), text("_mine")));
    EXPECT_FALSE(left->hasInputTag(text("Input"), text("_other")));
    EXPECT_FALSE(left->viewContext()->versionMatch(right->viewContext()));
    right->viewContext()->copyGuiStateFrom(left->viewContext());
    right->viewContext()->copyGuiStateFrom(nullptr);
    EXPECT_TRUE(left->viewContext()->versionMatch(right->viewContext()));
    EXPECT_FALSE(left->viewContext()->versionMatch(nullptr));
    OssProjectManager::instance()->closeProject();
}

// --- what files and the clipboard bring

TEST_F(Groups, portsThatHaveNoPlaceLeaveNoWireBehind)
{
    auto *made = qobject_cast<OssSnGroupNode *>(add("Misc/Group"));
    OssSnBaseNode *in = made->createInput(text("In"), OssSnDataKind::Color);
    OssSnBaseNode *out = made->createOutput(text("Out"), OssSnDataKind::Color);
    OssSnBaseNode *blur = made->groupNetwork()->createNode(text("Filter/Blur"));
    ASSERT_TRUE(wire(in, blur));
    ASSERT_TRUE(wire(blur, out));
    const QByteArray nodes = OssShaderNetworkIO::nodesToText({in, blur, out});
    QList<OssSnBaseNode *> inserted;
    ASSERT_TRUE(OssShaderNetworkIO::nodesFromText(m_network, nodes, {}, &inserted));
    ASSERT_EQ(inserted.size(), 1);
    EXPECT_EQ(inserted.first()->inputNode(text("Input")), nullptr);
    EXPECT_TRUE(inserted.first()->outgoingConnections().isEmpty());
}

TEST_F(Groups, loopsInsideThemAreCutAndPortsThatLieAreBroughtIntoBounds)
{
    const ExpectedLog expected("close a loop");
    auto *made = qobject_cast<OssSnGroupNode *>(add("Misc/Group"));
    OssSnBaseNode *first = made->groupNetwork()->createNode(text("Filter/Blur"), text("First"));
    OssSnBaseNode *second = made->groupNetwork()->createNode(text("Filter/Blur"), text("Second"));
    ASSERT_TRUE(wire(first, second));
    made->createInput(text("In"), OssSnDataKind::Material);
    ASSERT_NO_FATAL_FAILURE(reopenWith(
        "name=\"First\" type=\"OssSnBaseNode\" key=\"Filter/Blur\"/>",
        "name=\"First\" type=\"OssSnBaseNode\" key=\"Filter/Blur\"><inputPort name=\"Input\" "
        "kind=\"99\"/><inputPort name=\"Input\" kind=\"1\"/><inputPort name=\"\" kind=\"1\"/>"
        "<outputPort name=\"Output\" kind=\"-7\"/><outputPort name=\"Output\"/>"
        "<input name=\"Input\" node=\"Second\" point=\"Output\"/></object>"));
    const auto *group = qobject_cast<OssSnGroupNode *>(m_network->node(text("Group")));
    ASSERT_NE(group, nullptr);
    first = group->groupNetwork()->node(text("First"));
    second = group->groupNetwork()->node(text("Second"));
    EXPECT_NE(bool(first->inputNode(text("Input"))), bool(second->inputNode(text("Input"))));
    ASSERT_EQ(first->inputPorts().size(), 1);
    EXPECT_EQ(first->inputPorts().first().kind, OssSnDataKind::Data);
    ASSERT_EQ(first->outputPoints().size(), 1);
    EXPECT_EQ(first->outputPoints().first().kind, OssSnDataKind::Color);
    EXPECT_EQ(group->inputPorts().first().kind, OssSnDataKind::Material);
}

TEST_F(Groups, whatTheClipboardCannotBringIsTold)
{
    QGuiApplication::clipboard()->setText(text("<ossaNodes major=\"1\"><object"));
    EXPECT_TRUE(OssShaderNetworkIO::pasteNodesFromClipboard(m_network, true).isEmpty());
    EXPECT_TRUE(logHas(text("the clipboard")));
    OssSnBaseNode *blur = add("Filter/Blur");
    OssShaderNetworkIO::copyNodesToClipboard({blur}, text("for you"));
    EXPECT_TRUE(QGuiApplication::clipboard()->text().contains(text("note=\"for you\"")));
    EXPECT_TRUE(OssShaderNetworkIO::pasteNodesFromClipboard(nullptr, true).isEmpty());
    EXPECT_TRUE(logHas(text("holds no nodes")));
    EXPECT_TRUE(OssShaderNetworkIO::duplicateNodes(nullptr, {blur}, true).isEmpty());
    const int steps = undoCount();
    EXPECT_TRUE(OssShaderNetworkIO::duplicateNodes(m_network, {}, true).isEmpty());
    EXPECT_EQ(undoCount(), steps);
    QList<OssSnBaseNode *> inserted{blur};
    EXPECT_FALSE(OssShaderNetworkIO::nodesFromText(nullptr, "", {}, &inserted));
    EXPECT_TRUE(inserted.isEmpty());
    EXPECT_TRUE(blur->dumpNodeInfo().contains(text("Input Input")));
}

// --- knobs

TEST_F(Groups, knobsAreLinkedOnceAndToWhatIsInsideAndOfTheirType)
{
    OssSnBaseNode *outside = add("Filter/Blur", "Outside");
    OssSnGroupNode *made = group({add("Filter/Blur", "First"), add("Filter/Blur", "Second")});
    OssSnBaseNode *first = made->groupNetwork()->node(text("First"));
    OssSnBaseNode *second = made->groupNetwork()->node(text("Second"));
    const QString knob = made->createKnob(first, Radius);
    ASSERT_TRUE(made->addKnobLink(knob, second, Radius));
    const QByteArray before = m_project->stateHash();
    const int steps = undoCount();
    const ExpectedLog expected[] = {ExpectedLog("is no knob and stays"),
                                    ExpectedLog("Node is NULL", ExpectedLog::Possible)};
    EXPECT_TRUE(made->addKnobLink(knob, second, Radius)) << "it is linked";
    EXPECT_FALSE(made->addKnobLink(knob, nullptr, Radius));
    EXPECT_FALSE(made->addKnobLink(knob, outside, Radius));
    EXPECT_FALSE(made->addKnobLink(knob, second, text("Quality"))) << "of another type";
    EXPECT_FALSE(made->addKnobLink(text("None"), second, Radius));
    EXPECT_EQ(made->createKnob(nullptr, Radius), QString());
    EXPECT_FALSE(made->deleteAttribute(text("None")));
    made->renameKnobName(knob, text("Radius"), text("Radius"));
    made->renameKnobName(knob, text("Radius"), {});
    made->renameKnobName(text("None"), text("Radius"), text("Way"));
    EXPECT_EQ(made->removeBrokenLinks(), 0);
    EXPECT_EQ(m_project->stateHash(), before);
    EXPECT_EQ(undoCount(), steps);
    EXPECT_EQ(OssLinkedCustomAttributeManager::instance()->links(made, knob).size(), 2);

    // A link of which one half goes leaves the other, and the node's other followers.
    OssLinkedCustomAttributeManager *linker = OssLinkedCustomAttributeManager::instance();
    const QString quality = made->createKnob(first, text("Quality"));
    ASSERT_TRUE(made->deleteAttribute(knob));
    EXPECT_TRUE(linker->knobsOf(first, Radius).isEmpty());
    EXPECT_EQ(linker->knobsOf(first, text("Quality")).size(), 1);
    EXPECT_EQ(linker->knobs(made), QStringList{quality});
    first->setAttribute(text("Quality"), text("Box"));
    EXPECT_EQ(made->attribute(quality).toString(), text("Box"));
    first->setAttribute(Radius, 44.0);
    EXPECT_FALSE(made->exists(knob));
    OssUndoManager::instance()->undo();
    OssUndoManager::instance()->undo();
    OssUndoManager::instance()->undo(); // the knob is there again
    made->setAttribute(knob, 45.0);
    EXPECT_EQ(first->attribute(Radius).toDouble(), 45.0);
    EXPECT_EQ(second->attribute(Radius).toDouble(), 45.0);
}

TEST_F(Groups, linksFollowTheNamesOfTheirNodes)
{
    OssSnGroupNode *made = group({add("Filter/Blur", "First"), add("Filter/Blur", "Second")});
    OssSnBaseNode *first = made->groupNetwork()->node(text("First"));
    const QString knob = made->createKnob(first, Radius);
    made->addKnobLink(knob, made->groupNetwork()->node(text("Second")), Radius);
    first->setName(text("Renamed"));
    ASSERT_NO_FATAL_FAILURE(reopenWith("knobLink", "knobLink")); // nothing is changed
    made = qobject_cast<OssSnGroupNode *>(m_network->node(text("Group")));
    ASSERT_NE(made, nullptr);
    first = made->groupNetwork()->node(text("Renamed"));
    made->setAttribute(knob, 33.0);
    EXPECT_EQ(first->attribute(Radius).toDouble(), 33.0);
    // One that has gone is remembered by the name that it had last.
    first->setName(text("Again"));
    made->groupNetwork()->removeNodes({first});
    EXPECT_EQ(OssLinkedCustomAttributeManager::instance()->links(made, knob).first().nodePath,
              text("Again"));
}

TEST_F(Groups, linksOfWhatIsNoKnobAreNotRead)
{
    OssSnGroupNode *made = group({add("Filter/Blur", "First")});
    made->createKnob(made->groupNetwork()->node(text("First")), Radius);
    ASSERT_NO_FATAL_FAILURE(reopenWith("knob=\"Radius\" node=", "knob=\"Other\" node="));
    made = qobject_cast<OssSnGroupNode *>(m_network->node(text("Group")));
    ASSERT_NE(made, nullptr);
    EXPECT_TRUE(made->isKnob(Radius));
    EXPECT_TRUE(OssLinkedCustomAttributeManager::instance()->knobs(made).isEmpty());
}

TEST_F(Groups, aKnobOfAFileThatIsNoneIsKeptAndNotUsed)
{
    OssSnGroupNode *made = group({add("Filter/Blur", "First")});
    made->createKnob(made->groupNetwork()->node(text("First")), Radius);
    ASSERT_NO_FATAL_FAILURE(reopenWith("name=\"Radius\" prettyName", "name=\"a/b\" prettyName"));
    const OssSnBaseNode *read = m_network->node(text("Group"));
    ASSERT_NE(read, nullptr);
    EXPECT_TRUE(read->userAttributeNames().isEmpty());
}

TEST_F(Groups, knobsAreOfferedForWhatHasAttributesOfItsOwn)
{
    auto *made = qobject_cast<OssSnGroupNode *>(add("Misc/Group"));
    const OssSnBaseNode *in = made->createInput(text("In"), OssSnDataKind::Color);
    const OssSnBaseNode *out = made->createOutput(text("Out"), OssSnDataKind::Color);
    OssSnBaseNode *blur = add("Filter/Blur");
    OssSnBaseNode *tagged = add("Filter/Blur");
    tagged->addTag(text("_shaderInput"));
    for (const OssSnBaseNode *node : {in, out, static_cast<const OssSnBaseNode *>(tagged),
                                      static_cast<const OssSnBaseNode *>(add("Misc/Dot")),
                                      static_cast<const OssSnBaseNode *>(m_network->viewerNode())})
        EXPECT_FALSE(OssSnGroupNode::offersKnobs(node)) << qPrintable(node->name());
    EXPECT_TRUE(OssSnGroupNode::offersKnobs(blur));
    blur->setVersionUUID(text("OSS_Misc_Set_Unlit"));
    EXPECT_FALSE(OssSnGroupNode::offersKnobs(blur));
}

TEST_F(Groups, aNetworkThatBelongsToNoObjectHasNoImages)
{
    OssShaderNetwork alone;
    EXPECT_EQ(alone.createImageSet(text("Set"), nullptr, 16), nullptr);
    EXPECT_EQ(alone.geoEntity(), nullptr);
    EXPECT_NE(alone.createPaintableNode({}), nullptr);
    EXPECT_EQ(alone.viewerNode(), nullptr);
    OssUndoManager::instance()->clear();
}

} // namespace
