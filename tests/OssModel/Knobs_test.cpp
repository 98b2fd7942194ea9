#include "OssCore/Values/OssAttributeKind.h"
#include "OssEvaluation/Graph/OssEvGraph.h"
#include "OssModel/Evaluation/OssSnEvaluationGraph.h"
#include "OssModel/Graph/OssLinkedCustomAttributeManager.h"
#include "OssModel/Graph/OssShaderNetworkIO.h"
#include "OssModel/Nodes/OssSnResultKey.h"
#include "support/ModelFixture.h"
#include "support/Text.h"

#include <QTemporaryDir>

#include <algorithm>
#include <variant>

namespace {

const QString Radius = QStringLiteral("Radius");

/// A group with two blurs and a noise inside.
class Knobs : public ModelFixture
{
protected:
    void SetUp() override
    {
        ModelFixture::SetUp();
        OssSnBaseNode *first = add("Filter/Blur", "First");
        OssSnBaseNode *second = add("Filter/Blur", "Second");
        add("Procedural/Noise/Fractal Noise", "Noise");
        add("Procedural/Color", "Color");
        m_group = m_network->groupNodes({first, second, m_network->node(QStringLiteral("Noise"))});
        m_first = first;
        m_second = second;
        m_second->setAttribute(Radius, 3.0);
        m_linker = OssLinkedCustomAttributeManager::instance();
        OssUndoManager::instance()->clear();
        m_start = m_project->stateHash();
    }

    static void undoAll()
    {
        while (OssUndoManager::instance()->canUndo())
            OssUndoManager::instance()->undo();
    }

    int linkCount(const QString &knob) const { return m_linker->links(m_group, knob).size(); }

    static double valueOf(const OssSnBaseNode *node, const QString &name = Radius)
    {
        return node->attribute(name).toDouble();
    }

    OssSnGroupNode *m_group = nullptr;
    OssSnBaseNode *m_first = nullptr;
    OssSnBaseNode *m_second = nullptr;
    OssLinkedCustomAttributeManager *m_linker = nullptr;
    QByteArray m_start;
};

TEST_F(Knobs, changeOnEitherSideShowsOnBothAndIsOneStep)
{
    const ExpectedLog expected[] = {ExpectedLog("'Color' is no attribute of a node inside group"),
                                    ExpectedLog("'None' is no attribute of a node inside group")};
    const QString knob = m_group->createKnob(m_first, Radius);
    EXPECT_EQ(knob, Radius);
    EXPECT_EQ(m_group->nodeAttributes(), QStringList({QStringLiteral("First/Radius")}));
    EXPECT_EQ(undoCount(), 1);
    EXPECT_EQ(m_group->createKnob(m_first, Radius), knob); // one knob for one attribute
    EXPECT_EQ(undoCount(), 1);

    m_group->setAttribute(knob, 20.0);
    EXPECT_EQ(valueOf(m_first), 20.0);
    m_first->setAttribute(Radius, 30.0);
    EXPECT_EQ(valueOf(m_group, knob), 30.0);
    EXPECT_EQ(undoCount(), 3);
    OssUndoManager::instance()->undo();
    EXPECT_EQ(valueOf(m_first), 20.0);
    EXPECT_EQ(valueOf(m_group, knob), 20.0);
    OssUndoManager::instance()->undo();
    EXPECT_EQ(valueOf(m_first), 8.0);
    OssUndoManager::instance()->redo();
    EXPECT_EQ(valueOf(m_first), 20.0);
    expectUndoIsExact(m_start);

    EXPECT_EQ(
        m_group->createKnob(m_network->node(QStringLiteral("Color")), QStringLiteral("Color")),
        QString());
    EXPECT_EQ(m_group->createKnob(m_first, QStringLiteral("None")), QString());
}

TEST_F(Knobs, linkedKnobsBecomeOneWithTheFirstsValueAndComeBack)
{
    const ExpectedLog expected[] = {ExpectedLog("cannot become the one 'Both'"),
                                    ExpectedLog("cannot become the one 'Quality'")};
    const QString first = m_group->createKnob(m_first, Radius);
    const QString second = m_group->createKnob(m_second, Radius);
    const QString quality = m_group->createKnob(m_first, QStringLiteral("Quality"));
    EXPECT_EQ(second, QStringLiteral("Radius_2"));
    const int before = undoCount();
    EXPECT_FALSE(m_group->linkKnobs(QStringLiteral("Both"), {first, quality}));
    EXPECT_FALSE(m_group->linkKnobs(quality, {first, second}));
    EXPECT_EQ(undoCount(), before);

    ASSERT_TRUE(m_group->linkKnobs(QStringLiteral("Both"), {first, second}));
    EXPECT_EQ(undoCount(), before + 1);
    EXPECT_EQ(m_group->nodeAttributes(),
              QStringList({QStringLiteral("First/Both"), QStringLiteral("First/Quality")}));
    EXPECT_EQ(linkCount(QStringLiteral("Both")), 2);
    EXPECT_EQ(valueOf(m_second), 8.0);
    m_second->setAttribute(Radius, 5.0);
    EXPECT_EQ(valueOf(m_first), 5.0);

    OssUndoManager::instance()->undo();
    OssUndoManager::instance()->undo();
    EXPECT_EQ(valueOf(m_second), 3.0);
    EXPECT_EQ(valueOf(m_group, second), 3.0);
    EXPECT_EQ(valueOf(m_first), 8.0);
    OssUndoManager::instance()->redo();
    expectUndoIsExact(m_start);
}

TEST_F(Knobs, knobsOrderNamesAndLinksSurviveSaving)
{
    const QString radius = m_group->createKnob(m_first, Radius);
    const QString quality = m_group->createKnob(m_second, QStringLiteral("Quality"));
    m_group->addKnobLink(radius, m_second, Radius);
    m_group->renameKnobName(radius, QStringLiteral("Radius"), QStringLiteral("Wie <weich>"));
    m_group->setNodeAttributesUndo(
        {QStringLiteral("Second/Quality"), QStringLiteral("First/Radius")});
    EXPECT_EQ(m_group->nodeAttributes().first(), QStringLiteral("Second/Quality"));
    m_group->setNodeAttributesUndo({QStringLiteral("Second/Quality")}); // not all: refused
    EXPECT_EQ(m_group->nodeAttributes().size(), 2);
    m_second->setNodeAttributesUndo({QStringLiteral("Quality"), Radius});
    expectUndoIsExact(m_start);

    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("Knobs.ossa"));
    ASSERT_TRUE(OssProjectManager::instance()->saveProjectAs(path));
    const QByteArray hash = m_project->stateHash(); // a saved project has its file's name
    ASSERT_TRUE(OssProjectManager::instance()->openProject(path));
    m_project = OssProjectManager::instance()->currentProject();
    EXPECT_EQ(m_project->stateHash(), hash);
    m_network = m_project->shadingGroups().first()->network();
    m_group = qobject_cast<OssSnGroupNode *>(m_network->node(QStringLiteral("Group")));
    ASSERT_NE(m_group, nullptr);
    EXPECT_EQ(m_group->userAttribute(radius).prettyName(), QStringLiteral("Wie <weich>"));
    EXPECT_EQ(m_group->userAttribute(radius).definition().maximum.toDouble(), 500.0);
    m_group->setAttribute(radius, 77.0);
    m_group->setAttribute(quality, QStringLiteral("Box"));
    const OssShaderNetwork *inside = m_group->groupNetwork();
    EXPECT_EQ(inside->node(QStringLiteral("Second"))->nodeAttributes(),
              QStringList({QStringLiteral("Quality"), Radius}));
    EXPECT_EQ(valueOf(inside->node(QStringLiteral("First"))), 77.0);
    EXPECT_EQ(valueOf(inside->node(QStringLiteral("Second"))), 77.0);
    EXPECT_EQ(inside->node(QStringLiteral("Second"))->attribute(quality).toString(),
              QStringLiteral("Box"));
}

TEST_F(Knobs, copyOfAGroupDrivesItsOwnInside)
{
    const QString knob = m_group->createKnob(m_first, Radius);
    const auto copies = OssShaderNetworkIO::duplicateNodes(m_network, {m_group}, true);
    ASSERT_EQ(copies.size(), 1);
    auto *copy = qobject_cast<OssSnGroupNode *>(copies.first());
    copy->setAttribute(knob, 99.0);
    EXPECT_EQ(valueOf(copy->groupNetwork()->node(QStringLiteral("First"))), 99.0);
    EXPECT_EQ(valueOf(m_first), 8.0);
    EXPECT_EQ(valueOf(m_group, knob), 8.0);
}

TEST_F(Knobs, pastingIntoTheSameGroupLinksTheCopy)
{
    OssShaderNetworkManager *networks = OssShaderNetworkManager::instance();
    const QString knob = m_group->createKnob(m_first, Radius);
    const QByteArray text = OssShaderNetworkIO::nodesToText({m_first});
    m_group->setAttribute(knob, 12.0);
    OssUndoManager::instance()->clear();
    m_start = m_project->stateHash();

    const auto pasteInto = [&](OssShaderNetwork *network, bool smart) {
        const OssUndoManager::AutoMacro macro(QStringLiteral("Paste"));
        QList<OssSnBaseNode *> inserted;
        EXPECT_TRUE(OssShaderNetworkIO::nodesFromText(network, text, {}, &inserted));
        networks->setAttributeSmartLinkingEnabled(smart);
        networks->createDelayedKnobs(inserted);
        networks->setAttributeSmartLinkingEnabled(false);
        return inserted.value(0);
    };

    OssSnBaseNode *linked = pasteInto(m_group->groupNetwork(), true);
    EXPECT_EQ(linkCount(knob), 2);
    EXPECT_EQ(valueOf(linked), 12.0); // what the knob says now
    m_group->setAttribute(knob, 13.0);
    EXPECT_EQ(valueOf(linked), 13.0);
    pasteInto(m_group->groupNetwork(), false);
    pasteInto(m_network, true);
    EXPECT_EQ(linkCount(knob), 2);
    expectUndoIsExact(m_start);
}

TEST_F(Knobs, linkBreaksWithItsNodeHealsWithUndoAndCanBeRemoved)
{
    const QString knob = m_group->createKnob(m_first, Radius);
    m_group->addKnobLink(knob, m_second, Radius);
    m_group->groupNetwork()->removeNodes({m_first});
    EXPECT_EQ(m_group->brokenLinkCount(knob), 1);
    EXPECT_EQ(m_linker->links(m_group, knob).first().nodePath, QStringLiteral("First"));
    m_group->setAttribute(knob, 40.0);
    EXPECT_EQ(valueOf(m_second), 40.0);
    undoAll();
    EXPECT_EQ(valueOf(m_first), 8.0);
    EXPECT_EQ(m_project->stateHash(), m_start);
    while (OssUndoManager::instance()->canRedo())
        OssUndoManager::instance()->redo();

    EXPECT_EQ(m_group->removeBrokenLinks(), 1);
    EXPECT_EQ(linkCount(knob), 1);
    m_group->groupNetwork()->removeNodes({m_second});
    EXPECT_EQ(m_group->removeBrokenLinks(), 1);
    EXPECT_FALSE(m_group->exists(knob)); // it stood for nothing any more
    expectUndoIsExact(m_start);
}

TEST_F(Knobs, groupingAndUngroupingInsideKeepsKnobsOutside)
{
    // A knob that leads through the knob of an inner group, and one that goes straight there.
    OssSnGroupNode *inner = m_group->groupNetwork()->groupNodes({m_first});
    const QString innerKnob = inner->createKnob(m_first, Radius);
    const QString outer = m_group->createKnob(inner, innerKnob);
    const QString direct = m_group->createKnob(m_first, QStringLiteral("Quality"));
    ASSERT_FALSE(direct.isEmpty());
    EXPECT_EQ(m_linker->links(m_group, direct).first().nodePath,
              inner->name() + QStringLiteral("/First"));
    m_group->setAttribute(outer, 21.0);
    EXPECT_EQ(valueOf(m_first), 21.0);
    m_first->setAttribute(Radius, 22.0);
    EXPECT_EQ(valueOf(m_group, outer), 22.0);

    m_group->groupNetwork()->ungroup(inner);
    EXPECT_EQ(m_group->brokenLinkCount(outer), 0);
    m_group->setAttribute(outer, 23.0);
    EXPECT_EQ(valueOf(m_first), 23.0);
    m_group->setAttribute(direct, QStringLiteral("Box"));
    EXPECT_EQ(m_first->attribute(direct).toString(), QStringLiteral("Box"));
    expectUndoIsExact(m_start);
}

TEST_F(Knobs, aLockHoldsOnBothSidesOfALinkAndAgainstLinking)
{
    const QString knob = m_group->createKnob(m_first, Radius);
    const QString other = m_group->createKnob(m_second, Radius);
    int told = 0;
    const QObject listener;
    QObject::connect(m_linker, &OssLinkedCustomAttributeManager::linksChanged, &listener,
                     [&told] { ++told; });
    m_group->setAttribute(knob, 20.0);
    m_first->setLocked(true);
    EXPECT_EQ(told, 1) << "the group's panel has to know";
    const QByteArray locked = m_project->stateHash();
    const int steps = undoCount();
    {
        const ExpectedLog expected[] = {ExpectedLog("the properties of \"First\" are locked"),
                                        ExpectedLog("cannot become the one 'Both'")};
        EXPECT_FALSE(m_group->setAttribute(knob, 5.0));
        EXPECT_FALSE(m_first->setAttribute(Radius, 5.0));
        EXPECT_FALSE(m_group->addKnobLink(other, m_first, Radius));
        EXPECT_FALSE(m_group->linkKnobs(QStringLiteral("Both"), {knob, other}));
    }
    EXPECT_EQ(m_project->stateHash(), locked);
    EXPECT_EQ(undoCount(), steps);
    EXPECT_TRUE(m_group->setAttribute(other, 5.0)) << "that is tied to the second only";
    EXPECT_EQ(valueOf(m_second), 5.0);
    expectUndoIsExact(m_start);

    // Also when the lock is no part of what is undone.
    undoAll();
    m_group->createKnob(m_first, Radius);
    m_group->setAttribute(knob, 20.0);
    {
        const OssUndoManager::Pause pause;
        m_first->setLocked(true);
    }
    OssUndoManager::instance()->undo();
    EXPECT_EQ(valueOf(m_first), 8.0);
    EXPECT_EQ(valueOf(m_group, knob), 8.0);
}

TEST_F(Knobs, choicesFromDifferentListsAreNotLinked)
{
    const QString quality = QStringLiteral("Quality");
    OssSnBaseNode *noise = m_group->groupNetwork()->node(QStringLiteral("Noise"));
    const QVector<OssCustomAttribute> attributes = noise->userAttributes();
    const auto choice = std::find_if(attributes.cbegin(), attributes.cend(), [](const auto &one) {
        return !OssAttributeKind::choices(one.value()).isEmpty();
    });
    ASSERT_NE(choice, attributes.cend());
    const QString first = m_group->createKnob(m_first, quality);
    const QString other = m_group->createKnob(noise, choice->name());
    const QByteArray before = m_project->stateHash();
    const ExpectedLog expected("have different lists of choices");
    EXPECT_FALSE(m_group->linkKnobs(QStringLiteral("Both"), {first, other}));
    EXPECT_FALSE(m_group->addKnobLink(first, noise, choice->name()));
    EXPECT_TRUE(m_group->canLinkKnobs({first, other}).error().contains(choice->prettyName()));
    EXPECT_TRUE(m_group->addKnobLink(first, m_second, quality)) << "of one list";
    EXPECT_EQ(OssAttributeKind::choices(noise->attribute(choice->name())),
              OssAttributeKind::choices(choice->value()));
    OssUndoManager::instance()->undo();
    EXPECT_EQ(m_project->stateHash(), before);
}

TEST_F(Knobs, renamedOneKeepsItsPlaceItsLinksAndThoseOfKnobsAround)
{
    const QString knob = m_group->createKnob(m_first, Radius);
    ASSERT_TRUE(m_group->addKnobLink(knob, m_second, Radius));
    m_group->createKnob(m_first, QStringLiteral("Quality"));
    OssSnGroupNode *outer = m_network->groupNodes({m_group});
    const QString above = outer->createKnob(m_group, knob);
    const QStringList order = m_group->userAttributeNames();
    OssUndoManager::instance()->clear();
    const QByteArray start = m_project->stateHash();
    QStringList told;
    QObject::connect(m_group, &OssSnBaseNode::nodeAttributeRenamed, m_group,
                     [&told](const QString &before, const QString &after) {
                         told.append(before + QLatin1Char('>') + after);
                     });

    const QString got = m_group->renameKnob(knob, QStringLiteral("  Soft/ness "));
    EXPECT_EQ(got, QStringLiteral("Soft_ness"));
    EXPECT_EQ(m_group->userAttribute(got).prettyName(), QStringLiteral("Soft/ness"));
    EXPECT_EQ(m_group->userAttributeNames().indexOf(got), order.indexOf(knob));
    EXPECT_FALSE(m_group->exists(knob));
    EXPECT_EQ(told, QStringList(QStringLiteral("Radius>Soft_ness")));
    outer->setAttribute(above, 17.0);
    EXPECT_EQ(valueOf(m_first), 17.0);
    EXPECT_EQ(valueOf(m_second), 17.0);
    EXPECT_EQ(valueOf(m_group, got), 17.0);
    EXPECT_EQ(undoCount(), 2);
    expectUndoIsExact(start);
    undoAll();
    EXPECT_EQ(told.last(), QStringLiteral("Soft_ness>Radius"));
    outer->setAttribute(above, 4.0);
    EXPECT_EQ(valueOf(m_second), 4.0);
}

TEST_F(Knobs, renamingGivesFreeNamesAndLeavesAloneWhatIsNoKnob)
{
    const QString knob = m_group->createKnob(m_first, Radius);
    const QString other = m_group->createKnob(m_second, Radius);
    EXPECT_EQ(m_group->renameKnob(other, knob), QStringLiteral("Radius_2")); // taken: what it had
    EXPECT_EQ(m_group->userAttribute(other).prettyName(), knob);
    EXPECT_EQ(m_group->renameKnob(other, QStringLiteral("__Wide")), QStringLiteral("Wide"));
    EXPECT_EQ(m_group->renameKnob(QStringLiteral("Wide"), QStringLiteral("_")),
              QStringLiteral("Knob"));
    EXPECT_TRUE(m_group->renameKnob(knob, QStringLiteral("  ")).isEmpty());
    EXPECT_TRUE(m_group->renameKnob(QStringLiteral("None"), QStringLiteral("A")).isEmpty());
    EXPECT_TRUE(m_group->exists(knob));
    const int steps = undoCount();
    EXPECT_EQ(m_group->renameKnob(knob, m_group->userAttribute(knob).prettyName()), knob);
    EXPECT_EQ(undoCount(), steps) << "the name that it has";
}

/// What the node hands on: its number in the graph that is evaluated, or why there is none.
QString handedOn(const OssSnBaseNode *node)
{
    const auto made = OssSnEvaluationGraph::of(node, QStringLiteral("Output"));
    if (!made.error.isEmpty())
        return made.error;
    const OssEvGraph::Node &copy = made.graph->nodes()[std::size_t(made.node)];
    return QString::number(std::get<double>(copy.parameters.at("Value")));
}

TEST_F(Knobs, nodesInsideReadAttributesOfTheGroupsAround)
{
    m_group->createKnob(m_first, Radius);
    OssSnBaseNode *reader = add("Logic/Group Attribute", "Reader");
    EXPECT_TRUE(handedOn(reader).contains(text("no group around it has an attribute")));
    reader->setAttribute(QStringLiteral("Attribute"), Radius);
    EXPECT_TRUE(handedOn(reader).endsWith(text("has an attribute \"Radius\"")));
    OssSnGroupNode *inner = m_network->groupNodes(
        {reader, m_network->node(QStringLiteral("Color"))});
    OssSnGroupNode *outer = m_network->groupNodes({m_group, inner});
    ASSERT_TRUE(inner && outer);
    EXPECT_TRUE(handedOn(reader).contains(text("no group")))
        << "the group with the knob is beside it";
    const QString around = outer->createKnob(m_group, Radius);
    outer->setAttribute(around, 12.5);
    EXPECT_EQ(handedOn(reader), text("12.5"));
    const QString key = OssSnResultKey::of(reader, text("Output"));
    outer->setAttribute(around, 20.0);
    EXPECT_EQ(handedOn(reader), text("20"));
    EXPECT_NE(OssSnResultKey::of(reader, text("Output")), key) << "what shows it begins anew";
    outer->renameKnob(around, text("Softness"));
    EXPECT_TRUE(handedOn(reader).contains(text("no group")));
    reader->setAttribute(QStringLiteral("Attribute"), text("Softness"));
    EXPECT_EQ(handedOn(reader), text("20"));
    OssUndoManager::instance()->undo();
    OssUndoManager::instance()->undo();
    EXPECT_EQ(handedOn(reader), text("20")) << "under its first name";
}

} // namespace
