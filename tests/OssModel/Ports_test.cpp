#include "support/ModelFixture.h"

#include <QSignalSpy>
#include <QTemporaryDir>

#include <algorithm>

namespace {

const QString In = QStringLiteral("In");
const QString Out = QStringLiteral("Out");

QString text(const char *latin)
{
    return QString::fromLatin1(latin);
}

/// Ports of a node that is no group: nothing inside follows them.
class Ports : public ModelFixture
{
protected:
    void SetUp() override
    {
        ModelFixture::SetUp();
        m_node = add("Filter/Blur", "Node");
        m_source = add("Procedural/Color", "Source");
        m_target = add("Layer/Merge", "Target");
        add("Layer/Merge", "Other");
        for (const char *name : {"A", "B", "C"}) {
            m_node->addInput(input(name));
            m_node->addOutputPoint({text(name), {}, OssSnDataKind::Color});
        }
        ASSERT_TRUE(wire(m_source, m_node, "B"));
        ASSERT_TRUE(m_target->setInputNode(text("Base"), m_node, text("B")));
        ASSERT_TRUE(m_target->setInputNode(text("Over"), m_node, text("C")));
        OssUndoManager::instance()->clear();
        m_start = m_project->stateHash();
    }

    static OssSnBaseNode::InputPort input(const char *name)
    {
        OssSnBaseNode::InputPort port;
        port.name = text(name);
        return port;
    }

    QStringList inputs() const { return m_node->inputNames(); }

    QStringList outputs() const { return m_node->outputPointNames(); }

    OssSnBaseNode *m_node = nullptr;
    OssSnBaseNode *m_source = nullptr;
    OssSnBaseNode *m_target = nullptr;
    QByteArray m_start;
};

TEST_F(Ports, whatCannotBeDoneToThemChangesNothing)
{
    const QStringList names = outputs();
    QStringList twice = names;
    twice.last() = twice.first();

    m_node->addInput(input("A"));
    m_node->addInput(input(""));
    m_node->addOutputPoint({text("A"), {}, OssSnDataKind::Color});
    m_node->addOutputPoint({});
    EXPECT_FALSE(m_node->removeInput(text("None")));
    EXPECT_FALSE(m_node->removeOutputPoint(text("None")));
    EXPECT_FALSE(m_node->renameInput(text("A"), {}));
    EXPECT_FALSE(m_node->renameInput(text("A"), text("B")));
    EXPECT_FALSE(m_node->renameInput(text("None"), text("D")));
    EXPECT_FALSE(m_node->renameOutputPoint(text("A"), {}));
    EXPECT_FALSE(m_node->renameOutputPoint(text("A"), text("B")));
    EXPECT_FALSE(m_node->renameOutputPoint(text("None"), text("D")));
    EXPECT_FALSE(m_node->reorderInputs({text("A")}));
    EXPECT_FALSE(m_node->reorderOutputs({text("A")}));
    EXPECT_FALSE(m_node->reorderOutputs(twice));
    m_node->setInputEnabled(text("None"), false);
    m_node->setInputEnabled(text("A"), true);
    m_node->setInputShared(text("None"), true);
    EXPECT_FALSE(m_node->isInputEnabled(text("None")));
    EXPECT_FALSE(m_node->hasInputTag(text("None"), text("_hidden")));
    EXPECT_EQ(m_project->stateHash(), m_start);
    EXPECT_TRUE(m_node->reorderInputs(inputs()));
    EXPECT_TRUE(m_node->reorderOutputs(outputs()));
    EXPECT_EQ(undoCount(), 0) << "nor where they are in that order";
}

TEST_F(Ports, theyGoAndComeBackInTheirPlacesWithTheirWires)
{
    QSignalSpy ordered(m_node, &OssSnBaseNode::inputOrderChanged);
    QSignalSpy refreshed(m_node, &OssSnBaseNode::outputsRefreshed);
    m_node->addInput(input("Middle"), 1);
    m_node->addOutputPoint({text("Middle"), {}, OssSnDataKind::Color}, 1);
    EXPECT_EQ(inputs().indexOf(text("Middle")), 1);
    EXPECT_EQ(outputs().indexOf(text("Middle")), 1);
    EXPECT_EQ(ordered.count(), 1) << "one in the middle moves the others";
    EXPECT_EQ(refreshed.count(), 1);
    m_node->addInput(input("Last"));
    m_node->addOutputPoint({text("Last"), {}, OssSnDataKind::Color});
    EXPECT_EQ(ordered.count(), 1);
    EXPECT_EQ(refreshed.count(), 1);
    EXPECT_TRUE(m_node->removeInput(text("B")));
    EXPECT_TRUE(m_node->removeOutputPoint(text("B")));
    EXPECT_TRUE(m_source->outgoingConnections().isEmpty());
    EXPECT_EQ(m_target->inputNode(text("Base")), nullptr);
    EXPECT_EQ(m_target->inputNode(text("Over")), m_node) << "that wire comes from elsewhere";
    OssSnBaseNode *other = m_network->node(text("Other"));
    ASSERT_TRUE(other->setInputNode(text("Base"), m_node, text("A")));
    EXPECT_TRUE(m_node->renameOutputPoint(text("C"), text("See")));
    EXPECT_EQ(other->inputOutputPoint(text("Base")), text("A"));
    EXPECT_EQ(m_target->inputOutputPoint(text("Over")), text("See"));
    QStringList back = outputs();
    std::reverse(back.begin(), back.end());
    EXPECT_TRUE(m_node->reorderOutputs(back));
    EXPECT_EQ(outputs(), back);
    EXPECT_EQ(undoCount(), 9);
    expectUndoIsExact(m_start);
    OssUndoManager::instance()->setIndex(0);
    EXPECT_EQ(m_node->inputNode(text("B")), m_source);
    EXPECT_EQ(m_target->inputOutputPoint(text("Base")), text("B"));
    EXPECT_EQ(m_target->inputOutputPoint(text("Over")), text("C"));
}

TEST_F(Ports, aRenamedPortTakesItsOwnWireAlongAndNoOther)
{
    ASSERT_TRUE(wire(m_source, m_node, "A"));
    ASSERT_TRUE(wire(m_source, m_target, "Mask"));
    EXPECT_TRUE(m_node->renameInput(text("B"), text("Bee")));
    QStringList ends;
    for (const auto &out : m_source->outgoingConnections())
        ends.append(out.target->name() + QLatin1Char(' ') + out.input);
    ends.sort();
    EXPECT_EQ(ends, (QStringList{text("Node A"), text("Node Bee"), text("Target Mask")}));
    m_source->disconnectAll();
    EXPECT_EQ(m_node->inputNode(text("Bee")), nullptr);
    EXPECT_EQ(m_node->inputNode(text("A")), nullptr);
    EXPECT_EQ(m_target->inputNode(text("Mask")), nullptr);
    EXPECT_TRUE(m_source->outgoingConnections().isEmpty());
    expectUndoIsExact(m_start);
}

TEST_F(Ports, aWireDroppedOnTheBodyGoesToTheFirstFreeOneThatIsMeant)
{
    OssSnBaseNode *merge = add("Layer/Merge");
    const ExpectedLog expected("has no input");
    const QStringList order{text("Base"), text("Over"), text("Mask"), QString()};
    for (const QString &input : order) {
        EXPECT_EQ(merge->preferredInput(), input);
        EXPECT_EQ(wire(m_source, merge, qPrintable(input)), !input.isEmpty());
    }
    merge->setInputNode(text("Mask"), nullptr, {});
    merge->setInputNode(text("Over"), nullptr, {});
    EXPECT_EQ(merge->preferredInput(), text("Over"));
    OssSnBaseNode *viewer = m_network->viewerNode();
    EXPECT_EQ(viewer->preferredInput(), text("1"));
    for (int i = 0; i < 10; ++i)
        ASSERT_TRUE(wire(m_source, viewer, qPrintable(QString::number(i))));
    EXPECT_EQ(viewer->preferredInput(), QString()) << "the hidden input is nobody's";
    EXPECT_TRUE(viewer->hasInputTag(text("ToView"), text("_hidden")));
    EXPECT_FALSE(viewer->hasInputTag(text("1"), text("_hidden")));
}

TEST_F(Ports, whatUsersMadeOfPortsAndTagsSurvivesSaving)
{
    auto *group = qobject_cast<OssSnGroupNode *>(add("Misc/Group", "Group"));
    group->createInput(text("Height"), OssSnDataKind::Scalar);
    group->createInput(text("Way"), OssSnDataKind::Vector);
    OssSnBaseNode::InputPort labelled = input("Labelled");
    labelled.label = text("What it says");
    labelled.preferred = true;
    m_node->addInput(labelled);
    m_node->addOutputPoint({text("Extra"), text("Further"), OssSnDataKind::Vector});
    m_node->setInputEnabled(text("B"), false);
    m_node->setInputEnabled(text("C"), false);
    m_node->addTag(text("_mine"));
    const QTemporaryDir folder;
    const QString path = folder.filePath(text("Ports.ossa"));
    ASSERT_TRUE(OssProjectManager::instance()->saveProjectAs(path));
    const QList<QByteArray> lines = stateLines();
    ASSERT_TRUE(OssProjectManager::instance()->openProject(path));
    m_project = OssProjectManager::instance()->currentProject();
    m_network = m_project->shadingGroups().first()->network();
    expectSame(stateLines(), lines);
    m_node = m_network->node(text("Node"));
    ASSERT_NE(m_node, nullptr);
    EXPECT_TRUE(m_node->isInputEnabled(text("A")));
    EXPECT_FALSE(m_node->isInputEnabled(text("B")));
    EXPECT_FALSE(m_node->isInputEnabled(text("C")));
    EXPECT_NE(m_node->inputNode(text("B")), nullptr) << "off, and wired all the same";
    EXPECT_TRUE(m_node->hasTag(text("_mine")));
    EXPECT_TRUE(m_node->tags().contains(text("_mine")));
    EXPECT_EQ(m_node->prettyInputNameList().last(), text("What it says"));
    EXPECT_TRUE(m_node->inputPorts().last().preferred);
    EXPECT_FALSE(m_node->inputPorts().at(1).preferred);
    EXPECT_EQ(m_node->prettyOutputNameList().last(), text("Further"));
    EXPECT_EQ(m_node->outputPoints().last().kind, OssSnDataKind::Vector);
    const OssSnBaseNode *saved = m_network->node(text("Group"));
    ASSERT_NE(saved, nullptr);
    EXPECT_EQ(saved->inputPorts().at(0).kind, OssSnDataKind::Scalar);
    EXPECT_EQ(saved->inputPorts().at(1).kind, OssSnDataKind::Vector);
}

TEST_F(Ports, evenASinglePortThatWasChangedIsSaved)
{
    // As many ports as the type has, and yet others.
    OssSnBaseNode *renamed = add("Filter/Blur", "Renamed");
    ASSERT_TRUE(renamed->renameInput(text("Input"), text("Source")));
    OssSnBaseNode *scalar = add("Filter/Blur", "Scalar");
    scalar->setPortKinds(OssSnDataKind::Scalar);
    OssSnBaseNode *named = add("Filter/Blur", "Named");
    ASSERT_TRUE(named->renameOutputPoint(text("Output"), text("Soft")));
    const QTemporaryDir folder;
    const QString path = folder.filePath(text("Ports.ossa"));
    ASSERT_TRUE(OssProjectManager::instance()->saveProjectAs(path));
    ASSERT_TRUE(OssProjectManager::instance()->openProject(path));
    m_network = OssProjectManager::instance()->currentProject()->shadingGroups().first()->network();
    EXPECT_TRUE(m_network->node(text("Renamed"))->hasInput(text("Source")));
    EXPECT_FALSE(m_network->node(text("Renamed"))->hasInput(text("Input")));
    EXPECT_EQ(m_network->node(text("Scalar"))->inputPorts().first().kind, OssSnDataKind::Scalar);
    EXPECT_EQ(m_network->node(text("Named"))->prefferedOutputPoint(), text("Soft"));
}

TEST_F(Ports, sharedInputsAreToldOnceAndAreNoPartOfTheDocument)
{
    QSignalSpy shared(m_node, &OssSnBaseNode::inputConnectionIsShared);
    m_node->setInputShared(text("A"), true);
    m_node->setInputShared(text("A"), true);
    EXPECT_EQ(shared.count(), 1);
    EXPECT_EQ(m_node->sharedInputNames(), QStringList{text("A")});
    EXPECT_EQ(m_project->stateHash(), m_start);
}

TEST_F(Ports, aSourceElsewhereIsRefusedUnlessItIsAllowed)
{
    auto *group = qobject_cast<OssSnGroupNode *>(add("Misc/Group"));
    OssSnBaseNode *inside = group->groupNetwork()->createNode(text("Procedural/Color"));
    OssSnBaseNode *viewer = m_network->viewerNode();
    const ExpectedLog expected("are in different networks");
    EXPECT_FALSE(viewer->connectInput(text("2"), inside, text("Output"), true, true, false, false));
    EXPECT_EQ(viewer->inputNode(text("2")), nullptr);
    EXPECT_TRUE(viewer->connectInput(text("2"), inside, text("Output"), true, true, true, false));
    EXPECT_EQ(viewer->inputNode(text("2")), inside);
    const int steps = undoCount();
    EXPECT_TRUE(viewer->setInputNode(text("2"), inside, text("Output")));
    EXPECT_EQ(undoCount(), steps) << "it was wired so";
    EXPECT_TRUE(viewer->connectInput(text("2"), nullptr, {}, false, true, true, false));
    EXPECT_EQ(undoCount(), steps) << "nobody asked for a step";
}

} // namespace
