#include "RandomEdits.h"

#include "OssInterface/Popups/OssApplication.h"
#include "OssModel/Graph/OssShaderNetworkIO.h"
#include "OssNodeGraph/Items/OssNgBackdropNode.h"
#include "PluginUnderTest.h"
#include "support/OtherValue.h"
#include "View/Backdrops.h"

#include <QTemporaryDir>

#include <algorithm>

void RandomEdits::SetUp()
{
    ASSERT_TRUE(pluginUnderTest());
    GraphFixture::SetUp();
    m_popups = OssApplication::popupsAllowed();
    OssApplication::setPopupsAllowed(false);
}

void RandomEdits::TearDown()
{
    OssApplication::setPopupsAllowed(m_popups);
    GraphFixture::TearDown();
}

quint32 RandomEdits::startAnywhere()
{
    const quint32 seed = qEnvironmentVariableIsSet("OSSA_SEED")
                             ? quint32(qEnvironmentVariableIntValue("OSSA_SEED"))
                             : QRandomGenerator::global()->generate() % 1000000;
    std::printf("OSSA_SEED=%u\n", seed);
    m_random.seed(seed);
    return seed;
}

OssShaderNetwork *RandomEdits::anyNetwork()
{
    QList<OssShaderNetwork *> networks{m_network};
    const QList<OssSnBaseNode *> all = m_network->getAllNodes();
    for (OssSnBaseNode *node : all) {
        if (auto *group = qobject_cast<OssSnGroupNode *>(node))
            networks.append(group->groupNetwork());
    }
    return networks.at(below(networks.size()));
}

bool RandomEdits::connectAny()
{
    const QList<OssSnBaseNode *> nodes = anyNetwork()->nodes();
    if (nodes.size() < 2)
        return false;
    OssSnBaseNode *target = nodes.at(below(nodes.size()));
    OssSnBaseNode *source = nodes.at(below(nodes.size()));
    return target->setInputNode(anyOf(target->inputNames()), source,
                                anyOf(source->outputPointNames()));
}

bool RandomEdits::removeSome()
{
    OssShaderNetwork *network = anyNetwork();
    QSet<OssSnBaseNode *> some;
    const QList<OssSnBaseNode *> nodes = network->nodes();
    for (OssSnBaseNode *node : nodes) {
        const bool port = node->hasTag(QStringLiteral("_input"))
                          || node->hasTag(QStringLiteral("_output"));
        if (below(6) == 0 && !port && !node->hasTag(QStringLiteral("_viewer")))
            some.insert(node);
    }
    network->removeNodes(some);
    return !some.isEmpty();
}

bool RandomEdits::insertDot()
{
    QList<OssNgEdge *> edges;
    const QList<OssSnBaseNode *> nodes = m_network->nodes();
    for (const OssSnBaseNode *node : nodes)
        edges.append(itemOf(node)->inputs());
    if (edges.isEmpty())
        return false;
    OssNgEdge *edge = edges.at(below(edges.size()));
    edge->switchToDotableMode(true);
    edge->clickMarker();
    return true;
}

bool RandomEdits::setAnyAttribute()
{
    OssSnBaseNode *node = anyNode();
    const QString name = node ? anyOf(node->userAttributeNames()) : QString();
    if (name.isEmpty())
        return false;
    return node->setAttribute(name, otherValue(node->attribute(name), below(1000)));
}

bool RandomEdits::moveAny()
{
    OssSnBaseNode *node = anyNode();
    if (node)
        contextOf(node)->setNodePositionUndo({below(4000) - 2000.0, below(3000) / 7.0});
    return node != nullptr;
}

bool RandomEdits::resizeAny()
{
    OssSnBaseNode *node = anyNode();
    if (!node || !qobject_cast<OssNgBackdropNode *>(itemOf(node)))
        return false;
    contextOf(node)->setNodeSizeUndo({100.0 + below(500), 80.0 + below(400)});
    return true;
}

bool RandomEdits::dropOnBackdrop()
{
    QList<OssSnBaseNode *> areas = m_network->getAllNodes();
    areas.erase(std::remove_if(areas.begin(), areas.end(),
                               [](OssSnBaseNode *node) { return !Backdrops::isBackdrop(node); }),
                areas.end());
    if (areas.isEmpty())
        return false;
    OssSnBaseNode *area = areas.at(below(areas.size()));
    const QList<OssSnBaseNode *> around = area->network()->nodes();
    OssSnBaseNode *node = around.at(below(around.size()));
    if (node == area)
        return false;
    const OssUndoManager::AutoMacro macro(QStringLiteral("Drop"));
    const Backdrops::Placed placed{node, Backdrops::containerOf(node)};
    const QPointF way = rectOf(area).center() + QPointF(below(200) - 100.0, below(100) - 50.0)
                        - rectOf(node).center();
    Backdrops::shift(node, way);
    Backdrops::settle({placed});
    return true;
}

bool RandomEdits::reorderPorts()
{
    QList<OssSnGroupNode *> groups;
    const QList<OssSnBaseNode *> all = m_network->getAllNodes();
    for (OssSnBaseNode *node : all) {
        auto *group = qobject_cast<OssSnGroupNode *>(node);
        if (group && group->inputNames().size() > 1)
            groups.append(group);
    }
    if (groups.isEmpty())
        return false;
    OssSnGroupNode *group = groups.at(below(groups.size()));
    QStringList names = group->inputNames();
    names.move(0, names.size() - 1);
    return group->reorderInputs(names);
}

void RandomEdits::supply()
{
    OssSnBaseNode *last = m_network->createNode(QStringLiteral("Procedural/Color"));
    for (int i = 0; i < 4; ++i) {
        OssSnBaseNode *next = m_network->createNode(QStringLiteral("Filter/Blur"));
        wire(last, next);
        last = next;
        create("Misc/Backdrop");
        auto *group = qobject_cast<OssSnGroupNode *>(
            m_network->createNode(QStringLiteral("Misc/Group")));
        for (const char *name : {"A", "B", "C"})
            group->createInput(QString::fromLatin1(name), OssSnDataKind::Color);
    }
}

bool RandomEdits::cancelled()
{
    OssUndoManager::AutoMacro macro(QStringLiteral("Cancelled"));
    create("Filter/Blur");
    connectAny();
    removeSome();
    macro.cancel();
    return true;
}

bool RandomEdits::command(const std::function<void()> &slot, int most)
{
    const QList<OssSnBaseNode *> nodes = m_network->nodes();
    if (nodes.isEmpty() || m_network->getAllNodes().size() > 400)
        return false;
    m_view->scene()->clearSelection();
    for (int i = below(most); i >= 0; --i)
        nodes.at(below(nodes.size()))->setSelected(true);
    slot();
    m_network->setViewerNodeCurrentEdge(1, true); // no part of the history
    return true;
}

QVector<RandomEdits::Operation> RandomEdits::commands()
{
    const auto on = [this](void (OssShaderNetworkView::*slot)(), int most = 4) {
        return [this, slot, most] {
            return command([this, slot] { (m_view->*slot)(); }, most);
        };
    };
    using View = OssShaderNetworkView;
    return {
        {"command delete", on(&View::deleteSelectedNodes, 2)},
        {"command extract", on(&View::extractSelectedNode)},
        {"command disable", on(&View::disableSelectedNodes)},
        {"command bypass", on(&View::bypassSelectedNode)},
        {"command swap", on(&View::swapInputs, 1)},
        {"command cut", on(&View::cutNodesAction, 2)},
        {"command copy", on(&View::copyNodesAction)},
        {"command paste", on(&View::pasteNodesAction)},
        {"command duplicate", on(&View::duplicateSelectedNodes)},
        {"command merge", on(qOverload<>(&View::createMergeNode))},
        {"command paint node", on(qOverload<>(&View::createPaintableNode))},
        {"command bake point", on(qOverload<>(&View::createBakePointNode))},
        {"command view", on(qOverload<>(&View::connectSelectedNodeToViewer), 1)},
        {"command arrange",
         [this] {
             const auto how = OssShaderNetworkManager::Arrangement(
                 below(OssShaderNetworkManager::PlaceAboveInStream + 1));
             return command([this, how] { m_view->arrange(how); });
         }},
        {"drop on a backdrop", by(&RandomEdits::dropOnBackdrop)},
    };
}

QVector<RandomEdits::Operation> RandomEdits::operations()
{
    const auto forNode = [this](const std::function<void(OssSnBaseNode *)> &change) {
        return [this, change] {
            OssSnBaseNode *node = anyNode();
            if (node)
                change(node);
            return node != nullptr;
        };
    };
    const auto forGroup = [this](const std::function<bool(OssSnGroupNode *)> &change) {
        return [this, change] {
            auto *group = any<OssSnGroupNode>();
            return group && change(group);
        };
    };
    const auto label = [this] {
        return QStringLiteral("P%1").arg(below(1000));
    };
    return {
        {"create merge", make("Layer/Merge")},
        {"create blur", make("Filter/Blur")},
        {"create brick", make("Procedural/Pattern/Brick")},
        {"create backdrop", make("Misc/Backdrop")},
        {"create another backdrop", make("Misc/Backdrop")},
        {"create note", make("Misc/Sticky Note")},
        {"create dot", make("Misc/Dot")},
        {"create group", make("Misc/Group")},
        {"connect", by(&RandomEdits::connectAny)},
        {"connect more", by(&RandomEdits::connectAny)},
        {"disconnect", forNode([this](OssSnBaseNode *node) {
             node->setInputNode(anyOf(node->inputNames()), nullptr, {});
         })},
        {"disconnect all", forNode([](OssSnBaseNode *node) { node->disconnectAll(); })},
        {"remove", by(&RandomEdits::removeSome)},
        {"extract",
         forNode([](OssSnBaseNode *node) { node->network()->extractNodes({node}, true); })},
        {"rename", forNode([this](OssSnBaseNode *node) {
             if (!node->hasTag(QStringLiteral("_input"))
                 && !node->hasTag(QStringLiteral("_output")))
                 node->setName(QStringLiteral("Name %1").arg(below(20)));
         })},
        {"describe", forNode([this](OssSnBaseNode *node) {
             node->setDescription(QStringLiteral("d%1").arg(below(5)));
         })},
        {"disable", forNode([](OssSnBaseNode *node) { node->toggleDisable(); })},
        {"bypass", forNode([](OssSnBaseNode *node) { node->toggleBypass(); })},
        {"cache", forNode([this](OssSnBaseNode *node) { node->setCacheActive(below(3)); })},
        {"enable input", forNode([this](OssSnBaseNode *node) {
             node->setInputEnabled(anyOf(node->inputNames()), below(2) == 0);
         })},
        {"attribute", by(&RandomEdits::setAnyAttribute)},
        {"move", by(&RandomEdits::moveAny)},
        {"resize", by(&RandomEdits::resizeAny)},
        {"insert dot", by(&RandomEdits::insertDot)},
        {"group input", forGroup([label](OssSnGroupNode *group) {
             return group->createInput(label(), OssSnDataKind::Scalar) != nullptr;
         })},
        {"group output", forGroup([label](OssSnGroupNode *group) {
             return group->createOutput(label(), OssSnDataKind::Color) != nullptr;
         })},
        {"rename port", forGroup([this, label](OssSnGroupNode *group) {
             return group->renameInput(anyOf(group->inputNames()), label());
         })},
        {"remove port", forGroup([this](OssSnGroupNode *group) {
             return group->removeInput(anyOf(group->inputNames()));
         })},
        {"reorder ports", by(&RandomEdits::reorderPorts)},
        {"duplicate", forNode([this](OssSnBaseNode *node) {
             if (m_project->shadingGroups().first()->network()->getAllNodes().size() < 400)
                 OssShaderNetworkIO::duplicateNodes(node->network(), {node}, below(2) == 0);
         })},
        {"group", forNode([this](OssSnBaseNode *node) {
             const QList<OssSnBaseNode *> around = node->network()->nodes();
             QList<OssSnBaseNode *> chosen{node};
             for (OssSnBaseNode *other : around) {
                 if (other != node && below(4) == 0)
                     chosen.append(other);
             }
             node->network()->groupNodes(chosen);
         })},
        {"ungroup", forGroup([](OssSnGroupNode *group) {
             group->network()->ungroup(group);
             return true;
         })},
        {"autoplace", forNode([this](OssSnBaseNode *node) {
             m_manager->beautifyNodesLayout(node->network(), node);
         })},
        {"cancelled macro", by(&RandomEdits::cancelled)},
        {"select", forNode([](OssSnBaseNode *node) { node->setSelected(!node->selected()); })},
        {"undo",
         [this] {
             for (int i = below(4); i >= 0; --i)
                 OssUndoManager::instance()->undo();
             return true;
         }},
        {"redo",
         [] {
             OssUndoManager::instance()->redo();
             return true;
         }},
    };
}

void RandomEdits::expectWithinReach() const
{
    constexpr qreal Reach = 100000.0;
    const QList<OssSnBaseNode *> all = m_network->getAllNodes();
    for (const OssSnBaseNode *node : all) {
        const OssSnNodeGraphViewContext *context = contextOf(node);
        const QRectF place(context->nodePosition(), context->nodeSize());
        EXPECT_TRUE(QRectF(-Reach, -Reach, 2 * Reach, 2 * Reach).contains(place.center())
                    && place.width() < Reach && place.height() < Reach)
            << qPrintable(node->name());
    }
}

void RandomEdits::reopen()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(m_project->name() + QStringLiteral(".ossa"));
    const QByteArray hash = m_project->stateHash();
    const QList<QByteArray> lines = stateLines();
    OssProjectManager *projects = OssProjectManager::instance();
    ASSERT_TRUE(projects->saveProjectAs(path));
    const OssResult opened = projects->openProject(path);
    ASSERT_TRUE(opened) << qPrintable(opened.error());
    m_project = projects->currentProject();
    m_network = m_project->shadingGroups().first()->network();
    expectSame(stateLines(), lines);
    ASSERT_EQ(m_project->stateHash(), hash);
    expectWhole();
}
