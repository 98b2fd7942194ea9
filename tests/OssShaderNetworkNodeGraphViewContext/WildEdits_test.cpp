#include "OssModel/Graph/OssShaderNetworkIO.h"
#include "OssModel/Graph/OssShaderNetworkUtils.h"
#include "OssModel/Nodes/OssSnBakePointNode.h"
#include "OssModel/Nodes/OssSnBaseTeleportNode.h"
#include "OssModel/Objects/OssImageSet.h"
#include "OssSnGroupNodeGraphViewContext.h"
#include "RandomEdits.h"

#include <deque>

namespace {

/// Edits of which not all are steps: the viewer goes from network to network, groups are made of
/// anything and looked into, pixels are baked, undone steps are thrown away. Undoing need not lead
/// to the start, but the document holds together after each.
class WildEdits : public RandomEdits
{
protected:
    /// Some of a network's nodes, whatever they are.
    QList<OssSnBaseNode *> some(OssShaderNetwork *network)
    {
        QList<OssSnBaseNode *> chosen;
        const QList<OssSnBaseNode *> all = network->nodes();
        const int share = 2 + below(4);
        for (OssSnBaseNode *node : all) {
            if (below(share) == 0)
                chosen.append(node);
        }
        return chosen;
    }

    bool small() { return m_network->getAllNodes().size() < 300; }

    bool groupAny()
    {
        OssShaderNetwork *network = anyNetwork();
        return network->groupNodes(some(network)) != nullptr;
    }

    bool viewAny()
    {
        OssSnBaseNode *node = anyNode();
        if (!node || node->outputPointNames().isEmpty() || node->hasTag(QStringLiteral("_viewer")))
            return false;
        OssSnBaseNode *viewer = node->network()->moveCurrentViewerNodeToNetwork();
        const int input = 1 + below(9);
        const OssUndoManager::AutoMacro macro(QStringLiteral("View"));
        const bool wired = viewer
                           && viewer->setInputNode(QString::number(input), node,
                                                   anyOf(node->outputPointNames()));
        m_network->setViewerNodeCurrentEdge(input, true);
        return wired;
    }

    bool moveViewer()
    {
        OssShaderNetwork *network = anyNetwork();
        return network->moveCurrentViewerNodeToNetwork() != nullptr;
    }

    bool lookInside()
    {
        auto *group = any<OssSnGroupNode>();
        auto *context = group ? qobject_cast<OssSnGroupNodeGraphViewContext *>(
                            OssSnNodeGraphViewContextManager::contextOf(group))
                              : nullptr;
        if (context)
            QMetaObject::invokeMethod(context, "forceOpenGroupSubgraph");
        return context;
    }

    bool listPorts()
    {
        OssSnBaseNode *node = anyNode();
        if (node)
            contextOf(node)->setPortListMode(below(5));
        return node;
    }

    bool bakePoint()
    {
        auto *point = qobject_cast<OssSnBakePointNode *>(
            anyNetwork()->createPaintableNode({}, QStringLiteral("Misc/Bake Point")));
        if (point && point->imageSet())
            point->imageSet()->setResolution(8);
        return point;
    }

    bool bake()
    {
        auto *point = any<OssSnBakePointNode>();
        return point && OssShaderNetworkUtils::bakeBakePoints({point}, true, below(2) == 0);
    }

    template <class Node>
    bool duplicateAny()
    {
        auto *node = any<Node>();
        return node && small()
               && !OssShaderNetworkIO::duplicateNodes(node->network(), {node}, true).isEmpty();
    }

    bool copyElsewhere()
    {
        OssShaderNetwork *from = anyNetwork();
        if (!small())
            return false;
        OssShaderNetworkIO::copyNodesToClipboard(some(from), {});
        return !OssShaderNetworkIO::pasteNodesFromClipboard(anyNetwork(), true).isEmpty();
    }

    bool retune()
    {
        auto *teleport = any<OssSnBaseTeleportNode>();
        return teleport
               && teleport->setAttribute(QStringLiteral("channel"),
                                         QStringLiteral("c%1").arg(below(3)));
    }

    bool removeGroup()
    {
        auto *group = any<OssSnGroupNode>();
        if (group)
            group->network()->removeNodes({group});
        return group;
    }

    bool throwAwayUndone()
    {
        OssUndoManager *undo = OssUndoManager::instance();
        for (int i = below(8); i >= 0; --i)
            undo->undo();
        return create("Filter/Blur");
    }

    QVector<Operation> wild()
    {
        const auto make = [this](const char *key) {
            return [this, key] {
                return create(key);
            };
        };
        return {
            {"group any",
             [this] {
                 return groupAny();
             }},
            {"view any",
             [this] {
                 return viewAny();
             }},
            {"move viewer",
             [this] {
                 return moveViewer();
             }},
            {"look inside",
             [this] {
                 return lookInside();
             }},
            {"list ports",
             [this] {
                 return listPorts();
             }},
            {"bake point",
             [this] {
                 return bakePoint();
             }},
            {"bake",
             [this] {
                 return bake();
             }},
            {"duplicate bake point",
             [this] {
                 return duplicateAny<OssSnBakePointNode>();
             }},
            {"duplicate images",
             [this] {
                 return duplicateAny<OssSnImageSetNodeBase>();
             }},
            {"duplicate group",
             [this] {
                 return duplicateAny<OssSnGroupNode>();
             }},
            {"copy elsewhere",
             [this] {
                 return copyElsewhere();
             }},
            {"broadcast", make("Teleport Broadcast/Broadcast")},
            {"receiver", make("Teleport Receiver/Receiver")},
            {"retune",
             [this] {
                 return retune();
             }},
            {"create material", make("Misc/Channel Input")},
            {"remove group",
             [this] {
                 return removeGroup();
             }},
            {"throw away undone",
             [this] {
                 return throwAwayUndone();
             }},
        };
    }
};

} // namespace

TEST_F(WildEdits, theDocumentHoldsTogetherAfterEachOfThem)
{
    const int rounds = qEnvironmentVariableIntValue("OSSA_ROUNDS") > 0
                           ? qEnvironmentVariableIntValue("OSSA_ROUNDS")
                           : 3;
    constexpr int Steps = 250;
    std::deque<ExpectedLog> refusals;
    for (const char *text : {"Cannot connect: ", "Swap Inputs: ", "Nothing to autoplace.",
                             "The clipboard holds no nodes", "is protected and stays",
                             "An object has one viewer", "Grouping leaves out", "Bake"})
        refusals.emplace_back(text, ExpectedLog::Possible);
    const quint32 seed = qEnvironmentVariableIsSet("OSSA_SEED")
                             ? quint32(qEnvironmentVariableIntValue("OSSA_SEED"))
                             : QRandomGenerator::global()->generate() % 1000000;
    std::printf("OSSA_SEED=%u\n", seed);
    m_random.seed(seed);
    QVector<Operation> all = operations() + commands();
    all += wild() + wild();
    QMap<QByteArray, int> ran;
    for (int round = 0; round < rounds; ++round) {
        supply();
        OssUndoManager::instance()->clear();
        for (int step = 0; step < Steps; ++step) {
            const Operation &operation = all.at(below(all.size()));
            if (operation.run())
                ++ran[operation.name];
            expectWhole();
            if (HasFailure())
                FAIL() << "seed " << seed << ", round " << round << ", step " << step << ": "
                       << operation.name;
        }
        const QStringList bakes = DocumentInvariants::falseBakes();
        EXPECT_TRUE(bakes.isEmpty()) << qPrintable(bakes.join(QLatin1Char('\n')));
        OssUndoManager *undo = OssUndoManager::instance();
        while (undo->canUndo())
            undo->undo();
        expectWhole();
        while (undo->canRedo())
            undo->redo();
        expectWhole();
        reopen();
        if (HasFailure())
            FAIL() << "seed " << seed << ", round " << round;
    }
    const QVector<Operation> kinds = wild();
    for (const Operation &operation : kinds)
        EXPECT_GT(ran.value(operation.name), 0) << operation.name << ", seed " << seed;
}
