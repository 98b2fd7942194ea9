#include "OssModel/Graph/OssShaderNetworkIO.h"
#include "OssModel/Graph/OssShaderNetworkUtils.h"
#include "OssModel/Nodes/OssSnBakePointNode.h"
#include "OssModel/Nodes/OssSnBaseTeleportNode.h"
#include "OssModel/Objects/OssImageSet.h"
#include "OssScriptObjects/OssaNode.h"
#include "OssScriptObjects/OssScriptManager.h"
#include "OssShaderNetworkWidget.h"
#include "OssSnGroupNodeGraphViewContext.h"
#include "RandomEdits.h"

#include <QTest>

#include <deque>

namespace {

/// Edits of which not all are steps: the viewer goes from network to network, groups are made of
/// anything and looked into, pixels are baked, undone steps are thrown away. The document holds
/// together after each, and but for the viewer's place undo and redo lead back to it.
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

    /// Where the viewer stands and what it looks at is saved, but not undone.
    QList<QByteArray> linesWithTheViewerAtHome()
    {
        const OssSnBaseNode *viewer = m_network->moveCurrentViewerNodeToNetwork();
        contextOf(viewer)->setNodePosition({});
        m_network->setViewerNodeCurrentEdge(1, true);
        return stateLines();
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

    /// Something a key or a menu does, whatever is in the hand.
    void meanwhile()
    {
        OssShaderNetworkView *view = m_manager->currentView();
        switch (below(10)) {
        case 0:
            OssUndoManager::instance()->undo();
            break;
        case 1:
            view->deleteSelectedNodes();
            break;
        case 2:
            view->duplicateSelectedNodes();
            break;
        case 3:
            view->extractSelectedNode();
            break;
        case 4:
            m_manager->beautifyNodesLayout();
            break;
        case 5:
            view->selectAll();
            break;
        case 6:
            view->scene()->clearSelection();
            break;
        case 7:
            OssUndoManager::instance()->redo();
            break;
        case 8:
            groupAny();
            break;
        default:
            view->toggleEdgeSeverAction();
            break;
        }
    }

    void pointer(QEvent::Type type, const QPoint &place, Qt::MouseButton button,
                 Qt::KeyboardModifiers keys)
    {
        QWidget *viewport = m_manager->currentView()->viewport();
        const bool held = type != QEvent::MouseButtonRelease;
        QMouseEvent event(type, QPointF(place), viewport->mapToGlobal(place),
                          type == QEvent::MouseMove ? Qt::NoButton : button,
                          held ? button : Qt::NoButton, keys);
        QCoreApplication::sendEvent(viewport, &event);
    }

    /// From somewhere to somewhere, over nodes, ports, wires and nothing.
    bool drag(bool interrupted)
    {
        OssShaderNetworkView *view = m_manager->currentView();
        if (!view || !view->network() || !small())
            return false;
        if (below(3) == 0)
            view->frameNodes(true);
        view->window()->show(); // or it has no size of its own
        const QList<OssSnBaseNode *> nodes = view->network()->nodes();
        const auto place = [&] {
            const OssNgNode *item = nodes.isEmpty() ? nullptr
                                                    : itemOf(nodes.at(below(nodes.size())));
            if (!item || below(4) == 0)
                return QPoint(below(view->viewport()->width()), below(view->viewport()->height()));
            const QRectF box = item->sceneBoundingRect();
            return view->mapFromScene(
                box.topLeft()
                + QPointF(box.width() * below(101) / 100.0, box.height() * below(101) / 100.0));
        };
        const Qt::KeyboardModifiers keys = below(3)   ? Qt::NoModifier
                                           : below(2) ? Qt::ShiftModifier
                                                      : Qt::ControlModifier;
        const Qt::MouseButton button = below(6) ? Qt::LeftButton : Qt::MiddleButton;
        const QPoint from = place();
        const QPoint to = place();
        pointer(QEvent::MouseButtonPress, from, button, keys);
        const int moves = below(6);
        for (int i = 1; i <= moves; ++i) {
            pointer(QEvent::MouseMove, from + (to - from) * i / moves, button, keys);
            if (interrupted && below(moves) == 0)
                meanwhile();
        }
        if (interrupted && below(3) == 0)
            QTest::keyClick(m_manager->currentView(), Qt::Key_Escape);
        pointer(QEvent::MouseButtonRelease, moves ? to : from, button, keys);
        m_network->setViewerNodeCurrentEdge(1, true); // no part of the history
        return true;
    }

    bool convertAny()
    {
        OssSnBaseNode *node = anyNode();
        const char *const keys[] = {"Filter/Blur", "Layer/Merge", "Procedural/Color", "Misc/Dot"};
        return node
               && OssShaderNetworkManager::instance()->convertNodeToKeyPath(
                   node, QLatin1String(keys[below(4)]));
    }

    bool exposeAny()
    {
        auto *group = any<OssSnGroupNode>();
        const QList<OssSnBaseNode *> inside = group ? group->groupNetwork()->nodes()
                                                    : QList<OssSnBaseNode *>();
        OssSnBaseNode *node = inside.isEmpty() ? nullptr : inside.at(below(inside.size()));
        if (!node || !OssSnGroupNode::offersKnobs(node))
            return false;
        group->createKnob(node, anyOf(node->userAttributeNames()));
        return true;
    }

    bool switchTab(bool close)
    {
        auto *tabs = m_manager->nodeGraphWidget();
        const int tab = below(tabs->count());
        if (close && tab > 0)
            tabs->hideTab(tab);
        else
            tabs->setCurrentIndex(tab);
        return tabs->count() > 1;
    }

    /// Through the object that stands for a node in scripts.
    bool script()
    {
        OssSnBaseNode *node = anyNode();
        auto *object = node ? qobject_cast<Ossa::Node *>(OssScriptManager::instance()->obtainAPI(
                           node, QStringLiteral("Ossa::Node")))
                            : nullptr;
        if (!object || node->hasTag(QStringLiteral("_viewer")))
            return false;
        const OssUndoManager::AutoMacro macro(QStringLiteral("Script"));
        object->setName(QStringLiteral("Script %1").arg(below(9)));
        object->setPosition({below(900) - 400.0, below(900) - 400.0});
        object->setEnabled(below(2) == 0);
        return true;
    }

    QVector<Operation> wild()
    {
        return {
            {"group any", by(&WildEdits::groupAny)},
            {"view any", by(&WildEdits::viewAny)},
            {"move viewer", by(&WildEdits::moveViewer)},
            {"look inside", by(&WildEdits::lookInside)},
            {"list ports", by(&WildEdits::listPorts)},
            {"bake point", by(&WildEdits::bakePoint)},
            {"bake", by(&WildEdits::bake)},
            {"duplicate bake point", by(&WildEdits::duplicateAny<OssSnBakePointNode>)},
            {"duplicate images", by(&WildEdits::duplicateAny<OssSnImageSetNodeBase>)},
            {"duplicate group", by(&WildEdits::duplicateAny<OssSnGroupNode>)},
            {"copy elsewhere", by(&WildEdits::copyElsewhere)},
            {"broadcast", make("Teleport Broadcast/Broadcast")},
            {"receiver", make("Teleport Receiver/Receiver")},
            {"retune", by(&WildEdits::retune)},
            {"create material", make("Misc/Channel Input")},
            {"remove group", by(&WildEdits::removeGroup)},
            {"throw away undone", by(&WildEdits::throwAwayUndone)},
            {"drag",
             [this] {
                 return drag(false);
             }},
            {"interrupted drag",
             [this] {
                 return drag(true);
             }},
            {"convert", by(&WildEdits::convertAny)},
            {"expose", by(&WildEdits::exposeAny)},
            {"switch tab",
             [this] {
                 return switchTab(false);
             }},
            {"close tab",
             [this] {
                 return switchTab(true);
             }},
            {"script", by(&WildEdits::script)},
        };
    }

    void edit()
    {
        constexpr int Steps = 250;
        QVector<Operation> all = operations() + commands();
        all += wild() + wild();
        supply();
        OssUndoManager::instance()->clear();
        for (int step = 0; step < Steps; ++step) {
            const Operation &operation = all.at(below(all.size()));
            if (operation.run())
                ++m_ran[operation.name];
            expectWhole();
            const QStringList bakes = DocumentInvariants::falseBakes();
            EXPECT_TRUE(bakes.isEmpty()) << qPrintable(bakes.join(QLatin1Char('\n')));
            if (HasFailure())
                FAIL() << "step " << step << ": " << operation.name;
        }
    }

    void expectThereAndBack()
    {
        OssUndoManager *undo = OssUndoManager::instance();
        const QList<QByteArray> end = linesWithTheViewerAtHome();
        const int index = undo->index();
        while (undo->canUndo())
            undo->undo();
        expectWhole();
        while (undo->index() < index)
            undo->redo();
        expectWhole();
        expectSame(linesWithTheViewerAtHome(), end);
    }

    QMap<QByteArray, int> m_ran;
};

} // namespace

TEST_F(WildEdits, theDocumentHoldsTogetherAfterEachOfThem)
{
    const int asked = qEnvironmentVariableIntValue("OSSA_ROUNDS");
    std::deque<ExpectedLog> refusals;
    for (const char *text :
         {"Cannot connect: ", "Swap Inputs: ", "Nothing to autoplace.", "holds no nodes",
          "is protected and stays", "An object has one viewer", "Grouping leaves out", "Bake",
          "cannot be converted", "has no place any more", "do not come along"})
        refusals.emplace_back(text, ExpectedLog::Possible);
    const quint32 seed = startAnywhere();
    for (int round = 0; round < (asked > 0 ? asked : 3); ++round) {
        edit();
        if (!HasFailure())
            expectThereAndBack();
        if (!HasFailure())
            reopen();
        if (HasFailure())
            FAIL() << "seed " << seed << ", round " << round;
    }
    const QVector<Operation> kinds = wild();
    QStringList never;
    for (const Operation &operation : kinds) {
        if (m_ran.value(operation.name) == 0)
            never.append(QString::fromLatin1(operation.name));
    }
    // Chance leaves one out now and then; a kind that cannot run any more would take others along.
    EXPECT_LE(never.size(), 2) << qPrintable(never.join(QLatin1String(", "))) << ", seed " << seed;
}
