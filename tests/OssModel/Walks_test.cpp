#include "OssModel/Evaluation/OssDependencyMarks.h"
#include "OssModel/Evaluation/OssSolo.h"
#include "OssModel/Graph/OssLayerStreamUtils.h"
#include "OssModel/Graph/OssShaderNetworkUtils.h"
#include "OssModel/Layers/OssMaterialPaintManager.h"
#include "support/ModelFixture.h"

namespace {

using namespace OssShaderNetworkUtils;
using Nodes = QList<OssSnBaseNode *>;

QString text(const char *latin)
{
    return QString::fromLatin1(latin);
}

/// A stream through a group: color -> blur -> [In -> inner -> Out] -> merge -> levels, with a mask on
/// the merge and a second user of the colour.
class Walks : public ModelFixture
{
protected:
    void SetUp() override
    {
        ModelFixture::SetUp();
        m_color = add("Procedural/Color", "Color");
        m_blur = add("Filter/Blur", "Blur");
        m_group = qobject_cast<OssSnGroupNode *>(add("Misc/Group", "Group"));
        m_in = m_group->createInput(text("In"), OssSnDataKind::Color);
        m_out = m_group->createOutput(text("Out"), OssSnDataKind::Color);
        m_inner = m_group->groupNetwork()->createNode(text("Filter/Blur"), text("Inner"));
        m_merge = add("Layer/Merge", "Merge");
        m_mask = add("Procedural/Scalar", "Mask");
        m_levels = add("Adjust/Levels", "Levels");
        ASSERT_TRUE(wire(m_color, m_blur));
        ASSERT_TRUE(wire(m_blur, m_group, "In"));
        ASSERT_TRUE(wire(m_in, m_inner));
        ASSERT_TRUE(wire(m_inner, m_out));
        ASSERT_TRUE(wire(m_group, m_merge, "Base"));
        ASSERT_TRUE(wire(m_mask, m_merge, "Mask"));
        ASSERT_TRUE(wire(m_merge, m_levels));
    }

    static QString names(const Nodes &nodes)
    {
        QStringList list;
        for (const OssSnBaseNode *node : nodes)
            list.append(node->name());
        return list.join(QLatin1Char(' '));
    }

    OssSnBaseNode *m_color = nullptr;
    OssSnBaseNode *m_blur = nullptr;
    OssSnGroupNode *m_group = nullptr;
    OssSnBaseNode *m_in = nullptr;
    OssSnBaseNode *m_inner = nullptr;
    OssSnBaseNode *m_out = nullptr;
    OssSnBaseNode *m_merge = nullptr;
    OssSnBaseNode *m_mask = nullptr;
    OssSnBaseNode *m_levels = nullptr;
};

TEST_F(Walks, theyGoAlongTheStreamOrTheWholeGraphAndThroughGroupsWhereTheyMay)
{
    const struct
    {
        Nodes found;
        const char *expected;
    } walks[] = {
        {getUpstreamNodes(m_levels, false, false, false), "Merge Group Blur Color"},
        {getUpstreamNodes(m_levels, false, false, true), "Levels Merge Group Blur Color"},
        {getUpstreamNodes(m_levels, false, true, false), "Merge Group Mask Blur Color"},
        {getUpstreamNodes(m_merge, true, false, false), "Group Out Blur Inner Color In"},
        {getUpstreamNodes(m_inner, false, true, false), "In"},
        {getUpstreamNodes(m_inner, true, true, false), "In Blur Color"},
        {getUpstreamNodes(m_group, true, true, false), "Out Blur Inner Color In"},
        {getUpstreamNodes(m_group, false, true, false), "Blur Color"},
        {getDownstreamNodes(m_blur, false, false), "Group Merge Levels"},
        {getDownstreamNodes(m_blur, true, true), "Group In Merge Inner Levels Out"},
        {getDownstreamNodes(m_mask, false, false), ""},
        {getDownstreamNodes(m_mask, false, true), "Merge Levels"},
        {getDownstreamNodes(m_inner, false, true), "Out"},
        {getDownstreamNodes(m_inner, true, true), "Out Merge Levels"},
        {getUpstreamNodes(static_cast<OssSnBaseNode *>(nullptr), true, true, true), ""},
        {getUpstreamNodes({m_merge, m_group}, false, true), "Group Mask Blur Color"},
        {getUpstreamNodes({m_blur, m_merge}, true, true), "Color Group Out Mask Blur Inner In"},
        {getDownstreamNodes({m_color, m_mask}, false, true), "Blur Merge Group Levels"},
        {nodesBetween({m_blur, m_levels}), "Group Merge"},
        {nodesBetween({m_blur, m_mask}), ""},
        {nodesBetween({m_blur, m_merge, m_levels}), "Group"},
    };

    int number = 0;
    for (const auto &walk : walks)
        EXPECT_EQ(names(walk.found).toStdString(), walk.expected) << "walk " << number++;
}

TEST_F(Walks, onlyTheOutputThatTheNodeInsideStandsForLeadsOut)
{
    OssSnBaseNode *other = m_group->createOutput(text("Other"), OssSnDataKind::Color);
    OssSnBaseNode *user = add("Adjust/Invert", "User");
    ASSERT_TRUE(user->setInputNode(text("Input"), m_group, text("Other")));
    EXPECT_EQ(names(getDownstreamNodes(other, true, true)).toStdString(), "User");
    EXPECT_EQ(names(getDownstreamNodes(m_out, true, true)).toStdString(), "Merge Levels");
    // The same for what comes in.
    OssSnBaseNode *second = m_group->createInput(text("Second"), OssSnDataKind::Color);
    ASSERT_TRUE(wire(m_mask, m_group, "Second"));
    EXPECT_EQ(names(getUpstreamNodes(second, true, true, false)).toStdString(), "Mask");
    EXPECT_EQ(names(getUpstreamNodes(m_in, true, true, false)).toStdString(), "Blur Color");
}

TEST_F(Walks, siblingsFeedTheSameNodeOrAreFedByTheSame)
{
    EXPECT_EQ(nextSibling(m_group), m_mask);
    EXPECT_EQ(prevSibling(m_mask), m_group);
    EXPECT_EQ(prevSibling(m_group), nullptr);
    EXPECT_EQ(nextSibling(m_mask), nullptr);
    EXPECT_EQ(nextSibling(nullptr), nullptr);
    // At the ends, and whatever the viewer looks at.
    OssSnBaseNode *first = add("Adjust/Invert");
    OssSnBaseNode *second = add("Adjust/Invert");
    OssSnBaseNode *viewer = m_network->viewerNode();
    ASSERT_TRUE(wire(m_levels, first));
    ASSERT_TRUE(wire(m_levels, viewer, "1"));
    ASSERT_TRUE(wire(first, viewer, "2"));
    ASSERT_TRUE(wire(m_levels, second));
    EXPECT_EQ(nextSibling(first), second);
    EXPECT_EQ(prevSibling(second), first);
    EXPECT_EQ(nextSibling(second), nullptr);
}

TEST_F(Walks, theStreamIsTheBaseOrThePreferredOrTheFirstThatIsFed)
{
    EXPECT_EQ(streamInput(m_merge), text("Base"));
    m_merge->setInputNode(text("Base"), nullptr, {});
    EXPECT_EQ(streamInput(m_merge), text("Mask")) << "what is not fed carries nothing";
    ASSERT_TRUE(wire(m_color, m_merge, "Over"));
    EXPECT_EQ(streamInput(m_merge), text("Over"));
    EXPECT_EQ(streamInput(m_color), QString());
    ASSERT_TRUE(wire(m_mask, m_blur, "Radius"));
    EXPECT_EQ(streamInput(m_blur), text("Input"));
    m_blur->setInputNode(text("Input"), nullptr, {});
    EXPECT_EQ(streamInput(m_blur), text("Radius"));

    EXPECT_TRUE(OssLayerStreamUtils::isBaseInput(m_merge, text("Base")));
    EXPECT_TRUE(OssLayerStreamUtils::isBaseInput(m_merge, text("Coat Base")));
    EXPECT_FALSE(OssLayerStreamUtils::isBaseInput(m_merge, text("Database")));
    EXPECT_FALSE(OssLayerStreamUtils::isBaseInput(m_merge, text("Over")));
    EXPECT_FALSE(OssLayerStreamUtils::isBaseInput(m_blur, text("Base")));
    EXPECT_FALSE(OssLayerStreamUtils::isMergeNode(nullptr));
}

TEST_F(Walks, outputsFindTheFreeInputsOfTheirNames)
{
    OssSnBaseNode *source = add("Filter/Blur", "Source");
    OssSnBaseNode *target = add("Filter/Blur", "Target");
    for (const char *name : {"Here", "Taken", "There"}) {
        source->addOutputPoint({text(name), {}, OssSnDataKind::Color});
        OssSnBaseNode::InputPort port;
        port.name = text(name);
        if (port.name != text("There"))
            target->addInput(port);
    }
    ASSERT_TRUE(wire(m_color, target, "Taken"));
    const int steps = undoCount();
    EXPECT_FALSE(batchConnect(source, nullptr));
    EXPECT_FALSE(batchConnect(nullptr, target));
    EXPECT_FALSE(batchConnect(m_color, m_merge));
    EXPECT_EQ(undoCount(), steps);
    EXPECT_TRUE(batchConnect(source, target));
    EXPECT_EQ(target->inputNode(text("Here")), source);
    EXPECT_EQ(target->inputNode(text("Taken")), m_color) << "it was not free";
    EXPECT_EQ(undoCount(), steps + 1);
    EXPECT_FALSE(batchConnect(source, target)) << "none is left";
}

TEST_F(Walks, aMergeFillsBaseThenOverThenMask)
{
    OssMaterialPaintManager *paint = OssMaterialPaintManager::instance();
    OssSnBaseNode *merge = add("Layer/Merge");
    EXPECT_FALSE(paint->autoconnectMergeNode(nullptr, merge));
    EXPECT_FALSE(paint->autoconnectMergeNode(m_color, nullptr));
    EXPECT_FALSE(paint->autoconnectMergeNode(m_network->viewerNode(), merge)) << "gives nothing";
    for (const char *input : {"Base", "Over", "Mask"}) {
        EXPECT_EQ(merge->inputNode(text(input)), nullptr);
        EXPECT_TRUE(paint->autoconnectMergeNode(m_color, merge)) << input;
        EXPECT_EQ(merge->inputNode(text(input)), m_color);
    }
    EXPECT_FALSE(paint->autoconnectMergeNode(m_color, merge)) << "it is full";
    EXPECT_FALSE(paint->autoconnectMergeNode(m_mask, m_blur)) << "it is no merge";
}

TEST_F(Walks, extractionLeavesAloneWhatIsNotOfTheNetwork)
{
    const QByteArray before = m_project->stateHash();
    m_network->extractNodes({nullptr, m_inner}, true);
    EXPECT_EQ(m_project->stateHash(), before);
    m_network->removeNode(m_inner, true, true);
    m_network->removeNode(nullptr, true, true);
    EXPECT_EQ(m_project->stateHash(), before);
    m_network->removeNode(m_mask, true, true);
    EXPECT_EQ(m_mask->network(), nullptr);
}

// --- what is looked at, and what it depends on

struct Marked
{
    QStringList nodes;
    QStringList wires; ///< "Node.input"

    void sort()
    {
        nodes.sort();
        wires.sort();
    }
};

class Marks : public Walks
{
protected:
    void SetUp() override
    {
        Walks::SetUp();
        m_told = QObject::connect(
            OssShaderNetworkManager::instance(), &OssShaderNetworkManager::debugNodesChanged,
            [this](const auto &nodes, const auto &inputs) {
                m_marked = {};
                for (auto node = nodes.cbegin(); node != nodes.cend(); ++node)
                    m_marked.nodes.append(nameOf(node.key()));
                for (auto node = inputs.cbegin(); node != inputs.cend(); ++node) {
                    const QStringList names = node->keys();
                    for (const QString &input : names)
                        m_marked.wires.append(nameOf(node.key()) + QLatin1Char('.') + input);
                }
                m_marked.sort();
            });
    }

    void TearDown() override
    {
        OssDependencyMarks::instance()->mark({});
        QObject::disconnect(m_told);
        Walks::TearDown();
    }

    static QString nameOf(const OssObjectReference &reference)
    {
        return static_cast<OssSnBaseNode *>(
                   OssObjectReferenceManager::instance()->getPointer(reference))
            ->name();
    }

    static QStringList words(const char *names)
    {
        return text(names).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    }

    Marked m_marked;
    QMetaObject::Connection m_told;
};

TEST_F(Marks, whatComputesANodeIsMarkedWithTheWiresAndGroupsItComesThrough)
{
    OssDependencyMarks *marks = OssDependencyMarks::instance();
    marks->mark({m_levels});
    EXPECT_EQ(m_marked.nodes, words("Blur Color Group Inner Levels Mask Merge"));
    EXPECT_EQ(
        m_marked.wires,
        words("Blur.Input Group.In Inner.Input Levels.Input Merge.Base Merge.Mask Out.Input"));
    EXPECT_TRUE(marks->inWords().startsWith(text("6 "))) << qPrintable(marks->inWords());

    // What is off, or beyond what is asked for, does not count.
    m_merge->setInputEnabled(text("Mask"), false);
    m_inner->setBypassed(true);
    marks->mark({m_merge});
    EXPECT_EQ(m_marked.nodes, words("Blur Color Merge"));
    EXPECT_FALSE(m_marked.wires.contains(text("Merge.Mask")));
    EXPECT_TRUE(m_marked.wires.contains(text("Inner.Input")));
    marks->mark({});
    EXPECT_TRUE(m_marked.nodes.isEmpty() && m_marked.wires.isEmpty());
    EXPECT_TRUE(marks->inWords().isEmpty());
}

TEST_F(Marks, theyFollowWhatIsDoneByHandUndoneAndRedoneAndEndWithTheProject)
{
    OssUndoManager::instance()->clear();
    OssDependencyMarks::instance()->mark({m_merge});
    const QStringList all = m_marked.nodes;
    m_merge->setInputNode(text("Mask"), nullptr, {});
    EXPECT_EQ(m_marked.nodes, all) << "by a script";
    OssShaderNetworkManager::instance()->emitNodeGraphIsManuallyChanged();
    EXPECT_FALSE(m_marked.nodes.contains(text("Mask")));
    OssUndoManager::instance()->undo();
    EXPECT_EQ(m_marked.nodes, all);
    OssUndoManager::instance()->redo();
    EXPECT_FALSE(m_marked.nodes.contains(text("Mask")));
    m_network->removeNodes({m_merge});
    OssShaderNetworkManager::instance()->emitNodeGraphIsManuallyChanged();
    EXPECT_TRUE(m_marked.nodes.isEmpty());
    OssDependencyMarks::instance()->mark({m_blur});
    OssProjectManager::instance()->newProject(text("Next"));
    EXPECT_TRUE(m_marked.nodes.isEmpty());
}

TEST_F(Marks, theNodeThatIsLookedAtIsActiveAndNoOther)
{
    OssSnBaseNode *viewer = m_network->viewerNode();
    const auto active = [this] {
        QStringList names;
        const QList<OssSnBaseNode *> nodes = m_network->getAllNodes();
        for (const OssSnBaseNode *node : nodes) {
            if (node->isGuiActive())
                names.append(node->name());
        }
        return names;
    };
    EXPECT_EQ(active(), QStringList());
    ASSERT_TRUE(wire(m_blur, viewer, "1"));
    ASSERT_TRUE(wire(m_levels, viewer, "2"));
    EXPECT_EQ(active(), words("Blur"));
    m_network->setViewerNodeCurrentEdge(2, true);
    EXPECT_EQ(active(), words("Levels"));
    ASSERT_TRUE(OssSolo::instance()->look(m_inner));
    EXPECT_EQ(active(), words("Inner"));
    OssSolo::instance()->end();
    EXPECT_EQ(active(), words("Levels"));
    viewer->setInputEnabled(text("2"), false);
    EXPECT_EQ(active(), QStringList());
    viewer->setInputEnabled(text("2"), true);
    viewer->setInputNode(text("2"), nullptr, {});
    EXPECT_EQ(active(), QStringList());
    OssUndoManager::instance()->undo();
    EXPECT_EQ(active(), words("Levels"));
    m_network->removeNodes({m_levels});
    EXPECT_EQ(active(), QStringList());
    EXPECT_FALSE(m_levels->isGuiActive());
}

} // namespace
