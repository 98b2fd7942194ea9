#include "OssSnNodeGraphViewContextManager.h"

#include "Manager/OssSnNodeGraphClassFactories.h"
#include "Manager/OssSnNodeGraphScene.h"
#include "Manager/OssSnNodeGraphViewContextLoader.h"
#include "Manager/SelectionCommands.h"
#include "OssCore/Program/OssDebug.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Evaluation/OssProblems.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Objects/OssChannel.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectManager.h"
#include "OssModel/Types/OssSnTags.h"
#include "OssNodeGraph/Items/OssNgEdge.h"
#include "OssNodeGraph/Items/OssNgNode.h"
#include "OssShaderNetworkView.h"
#include "OssShaderNetworkWidget.h"
#include "OssSnNodeGraphViewContext.h"
#include "OssSnUINodeGraphViewContext.h"
#include "View/MergeUpkeep.h"
#include "ZelGL/ZelTextureToken.h"

namespace {

constexpr const char *Source = "OssSnNodeGraphViewContextManager";
const ZelTextureToken TextureToken;

/// The entry of a network that is dying: no longer a network, only its address counts.
template <class Value>
auto findByAddress(QHash<OssShaderNetwork *, Value> &table, const QObject *network)
{
    auto entry = table.begin();
    while (entry != table.end() && static_cast<QObject *>(entry.key()) != network)
        ++entry;
    return entry;
}

/// With a debug line for the first that is not.
bool areThere(const OssShaderNetwork *network, const OssSnBaseNode *node)
{
    if (!network)
        OssDebug(Source, __LINE__, "Network is NULL");
    else if (!node)
        OssDebug(Source, __LINE__, "Node is NULL");
    return network && node;
}

/// On the nodes that have them.
void showProblems(QObject *listener)
{
    if (const OssProblems *problems = OssProblems::instance())
        QObject::connect(problems, &OssProblems::nodeChanged, listener, [](OssSnBaseNode *node) {
            if (auto *context = OssSnNodeGraphViewContextManager::contextOf(node))
                context->updateErrorText();
        });
}

} // namespace

OssSnNodeGraphViewContextManager *OssSnNodeGraphViewContextManager::instance()
{
    static OssSnNodeGraphViewContextManager manager;
    return &manager;
}

OssSnNodeGraphViewContextManager::OssSnNodeGraphViewContextManager()
    : m_selectionCommands(new SelectionCommands(this))
    , m_controlType(QStringLiteral("Kova"))
{
    setObjectName(QStringLiteral("OssSnNodeGraphViewContextManager"));
    // The names that the signals carry.
    qRegisterMetaType<ZoomTo>("ZoomTo");
    qRegisterMetaType<DefaultMCMCollapsedState>("DefaultMCMCollapsedState");
    loadPreferences();
    registerPreferences();
    // Owned by the network manager, which keeps loaders without a parent for the process.
    OssShaderNetworkManager::instance()->registerContextLoader(QStringLiteral("NodeGraphView"),
                                                               new OssSnNodeGraphViewContextLoader);
    registerNodeGraphClassFactories();
    connectToHost();
    new MergeUpkeep(this);
    createActions();
    initialiseNodeGraphPalette();
    initialiseNodePropertiesPalette();
}

// Scenes go when their network or the project goes; at the end of the process none is left.
OssSnNodeGraphViewContextManager::~OssSnNodeGraphViewContextManager() = default;

void OssSnNodeGraphViewContextManager::connectToHost()
{
    using Networks = OssShaderNetworkManager;
    using Manager = OssSnNodeGraphViewContextManager;
    Networks *networks = Networks::instance();
    connect(networks, &Networks::currentShaderNetworkChanged, this,
            &Manager::onCurrentShaderNetworkChanged);
    connect(networks, &Networks::shaderNetworkAdded, this, &Manager::onShaderNetworkAdded);
    connect(networks, &Networks::focusOnNodeRequest, this, &Manager::focusOnNode);
    connect(networks, &Networks::sightRequest, this, [this](const OssSnBaseNode *node) {
        if (OssShaderNetworkView *view = currentView())
            view->bringInSight(node);
    });
    connect(networks, &Networks::matchNodePositionRequest, this, &Manager::matchNodePosition);
    connect(networks, &Networks::afterShaderNetworkEndCollection, this,
            &Manager::onAfterShaderNetworkEndCollection);
    connect(networks, &Networks::showNodePropertiesAtPositionEndRequest, this,
            &Manager::showNodePropertiesAtPositionEnd);
    connect(networks, &Networks::showNodePropertiesAtPositionBeginRequest, this,
            &Manager::showNodePropertiesAtPositionBegin);
    connect(networks, &Networks::showNodePropertiesRequest, this, &Manager::showNodeProperties);
    connect(networks, &Networks::nodeReplaced, this, &Manager::replaceNodeProperties);
    connect(networks, &Networks::wholeLayoutRequested, this, &Manager::layOutAll);
    connect(networks, qOverload<OssShaderNetwork *>(&Networks::beautifyNodesLayout), this,
            qOverload<OssShaderNetwork *>(&Manager::beautifyNodesLayout));
    connect(networks,
            qOverload<OssShaderNetwork *, OssSnBaseNode *>(&Networks::beautifyNodesLayout), this,
            qOverload<OssShaderNetwork *, OssSnBaseNode *>(&Manager::beautifyNodesLayout));
    connect(networks,
            qOverload<OssShaderNetwork *, QList<OssSnBaseNode *>>(&Networks::beautifyNodesLayout),
            this,
            qOverload<OssShaderNetwork *, QList<OssSnBaseNode *>>(&Manager::beautifyNodesLayout));
    connect(networks, &Networks::nodeRegistered, this, &Manager::onNodeRegistered);
    connect(networks, &Networks::nodeDeregistered, this, &Manager::onNodeDeregistered);
    connect(networks, &Networks::reorderGroupInputsByPosRequested, this,
            &Manager::reorderGroupInputsByPos);
    connect(networks, &Networks::reorderGroupOutputsByPosRequested, this,
            &Manager::reorderGroupOutputsByPos);
    connect(networks, &Networks::arrangeGroupInputNodesByOrderRequested, this,
            &Manager::arrangeGroupInputNodesByOrder);
    connect(networks, &Networks::debugNodesChanged, this, &Manager::onDebugNodesChanged);
    connect(networks, &Networks::arrangeGroupOutputNodesByOrderRequested, this,
            &Manager::arrangeGroupOutputNodesByOrder);
    showProblems(this);
    OssProjectManager *projects = OssProjectManager::instance();
    connect(projects, &OssProjectManager::currentChannelChanged, this,
            &Manager::highlightCurrentImageSetNode);
    connect(projects, &OssProjectManager::projectClosing, this, &Manager::onProjectClosing);
    connect(projects, &OssProjectManager::projectOpenCompleted, this,
            &Manager::onProjectOpenCompleted);
    connect(projects, &OssProjectManager::onMakeProjectCurrent, this,
            &Manager::onProjectMadeCurrentUpgradeOldBadBackdrops);
}

// --- look-up

OssShaderNetworkView *OssSnNodeGraphViewContextManager::currentView() const
{
    return m_nodeGraphWidget ? m_nodeGraphWidget->currentView() : nullptr;
}

OssShaderNetworkView *OssSnNodeGraphViewContextManager::viewOrComplain() const
{
    if (!m_nodeGraphWidget) {
        OssDebug(Source, __LINE__, "GraphWidget is NULL");
        return nullptr;
    }
    QWidget *page = m_nodeGraphWidget->currentWidget();
    if (!page) {
        OssDebug(Source, __LINE__, "PageWidget is NULL");
        return nullptr;
    }
    auto *view = qobject_cast<OssShaderNetworkView *>(page);
    if (!view)
        OssDebug(Source, __LINE__, "GraphView is NULL");
    return view;
}

OssSnNodeGraphWidget *OssSnNodeGraphViewContextManager::nodeGraphWidget() const
{
    return m_nodeGraphWidget;
}

OssSnNodeGraphViewContext *OssSnNodeGraphViewContextManager::contextOf(const OssSnBaseNode *node)
{
    return node ? qobject_cast<OssSnNodeGraphViewContext *>(node->viewContext()) : nullptr;
}

OssNgNode *OssSnNodeGraphViewContextManager::guiNodeOf(const OssSnBaseNode *node)
{
    OssSnNodeGraphViewContext *context = contextOf(node);
    return context ? context->guiNode() : nullptr;
}

void OssSnNodeGraphViewContextManager::registerGroupNetwork(OssShaderNetwork *network,
                                                            OssSnGroupNode *groupNode)
{
    m_groupNodes.insert(network, groupNode);
}

OssSnGroupNode *OssSnNodeGraphViewContextManager::groupOfNetwork(OssShaderNetwork *network) const
{
    return m_groupNodes.value(network);
}

// --- scenes

QGraphicsScene *OssSnNodeGraphViewContextManager::sceneForNetwork(OssShaderNetwork *network)
{
    if (!network)
        return nullptr;
    QGraphicsScene *&scene = m_scenes[network];
    if (!scene) {
        scene = new OssSnNodeGraphScene;
        connect(scene, &QGraphicsScene::selectionChanged, m_selectionCommands,
                &SelectionCommands::onChanged);
        // A network may get a second scene: those of a project go before its networks do.
        connect(network, &QObject::destroyed, this,
                &OssSnNodeGraphViewContextManager::onShaderNetworkDestroyed, Qt::UniqueConnection);
    }
    return scene;
}

void OssSnNodeGraphViewContextManager::showNetworkInView(OssShaderNetwork *network,
                                                         OssShaderNetworkView *view)
{
    view->interruptGesture();
    if (OssShaderNetwork *shown = view->network())
        m_viewRects.insert(shown, view->viewportInSceneCoords());
    view->setNetwork(network);
    view->setScene(sceneForNetwork(network));
    view->init();
    m_selectionCommands->onChanged();
    if (!network)
        return;
    const auto seen = m_viewRects.constFind(network);
    if (seen != m_viewRects.cend()) {
        view->fitInView(*seen, Qt::KeepAspectRatio);
        return;
    }
    view->frameNodes(true);
    m_viewRects.insert(network, view->viewportInSceneCoords());
    connect(network, &QObject::destroyed, this,
            &OssSnNodeGraphViewContextManager::onNetworkDestroyed);
}

void OssSnNodeGraphViewContextManager::onCurrentShaderNetworkChanged(OssShaderNetwork *Network)
{
    if (!m_nodeGraphWidget)
        return;
    showNetworkInView(Network, m_nodeGraphWidget->view());
    m_nodeGraphWidget->updateRootLevelText(Network);
    if (m_nodeGraphWidget->currentView() == m_nodeGraphWidget->view())
        OssShaderNetworkManager::instance()->setCurrentViewNetwork(Network);
}

void OssSnNodeGraphViewContextManager::onShaderNetworkAdded(OssShaderNetwork *Network)
{
    if (!m_nodeGraphWidget)
        return;
    const OssGeoEntity *entity = Network ? Network->geoEntity() : nullptr;
    OssDebugName(Network, entity ? entity->name() : tr("(none)"));
    OssDebug(Source, __LINE__, "[ -- ] About to recompile shader network %p",
             static_cast<void *>(Network));
    OssShaderNetworkManager::instance()->refreshGraph(Network);
}

void OssSnNodeGraphViewContextManager::onShaderNetworkDestroyed(QObject *Obj)
{
    const auto found = findByAddress(m_scenes, Obj);
    if (found == m_scenes.end()) {
        if (!m_scenes.isEmpty())
            OssDebug(Source, __LINE__, "Failed to find scene for network");
        return;
    }
    QGraphicsScene *scene = *found;
    m_scenes.erase(found);
    delete scene;
}

void OssSnNodeGraphViewContextManager::onNetworkDestroyed(QObject *Obj)
{
    const auto found = findByAddress(m_viewRects, Obj);
    if (found != m_viewRects.end())
        m_viewRects.erase(found);
}

void OssSnNodeGraphViewContextManager::onProjectClosing()
{
    const QHash<OssShaderNetwork *, QGraphicsScene *> scenes = m_scenes;
    m_scenes.clear();
    m_groupNodes.clear();
    qDeleteAll(scenes);
}

// --- nodes

void OssSnNodeGraphViewContextManager::onNodeRegistered(OssShaderNetwork *Network,
                                                        OssSnBaseNode *Node)
{
    if (!areThere(Network, Node))
        return;
    QGraphicsScene *scene = sceneForNetwork(Network);
    if (!scene) {
        OssDebug(Source, __LINE__, "Scene is NULL");
        return;
    }
    OssNgNode *guiNode = guiNodeOf(Node);
    if (!guiNode)
        return;
    const auto add = [](QGraphicsItem *item, QGraphicsScene *to) {
        if (item->scene() != to)
            to->addItem(item);
    };
    add(guiNode, scene);
    // A viewer that comes from another network has left its virtual wire there.
    if (Node->hasTag(OssSnTags::viewer()))
        contextOf(Node)->updateGuiEdges();
    const QList<OssNgEdge *> sources = guiNode->inputs();
    for (OssNgEdge *edge : sources)
        add(edge, scene);
    // A wire stands where its target does: a viewer's may be another network.
    const QList<OssNgEdge *> targets = guiNode->outputs();
    for (OssNgEdge *edge : targets) {
        const bool elsewhere = edge->destination() && edge->destination()->scene();
        add(edge, elsewhere ? edge->destination()->scene() : scene);
    }
}

void OssSnNodeGraphViewContextManager::onNodeDeregistered(OssShaderNetwork *Network,
                                                          OssSnBaseNode *Node)
{
    if (!areThere(Network, Node))
        return;
    QGraphicsScene *scene = m_scenes.value(Network);
    if (!scene)
        return;
    Node->emitRemovedFromNetwork();
    OssNgNode *guiNode = guiNodeOf(Node);
    if (!guiNode)
        return;
    const auto remove = [scene](QGraphicsItem *item) {
        if (item->scene() == scene)
            scene->removeItem(item);
    };
    remove(guiNode);
    const QList<OssNgEdge *> edges = guiNode->inputs() + guiNode->outputs();
    for (OssNgEdge *edge : edges)
        remove(edge);
    guiNode->removeTemporaryOutputEdge();
    guiNode->removeVirtualInputEdge();
}

void OssSnNodeGraphViewContextManager::onAfterShaderNetworkEndCollection(OssShaderNetwork *Network)
{
    if (!Network) {
        OssDebug(Source, __LINE__, "Network is NULL");
        return;
    }
    const QList<OssSnBaseNode *> nodes = Network->nodes();
    for (const OssSnBaseNode *node : nodes) {
        if (OssSnNodeGraphViewContext *context = contextOf(node))
            context->updateGuiEdges();
    }
}

void OssSnNodeGraphViewContextManager::onContextInitialised(OssSnNodeGraphViewContext *context)
{
    const OssSnBaseNode *node = context->parentNode();
    if (node && context->guiNode())
        context->guiNode()->setGuiActive(node->isGuiActive()); // told before there was an item
}

void OssSnNodeGraphViewContextManager::onGroupPortNodeMoved(OssShaderNetwork *network, bool input)
{
    OssSnGroupNode *group = groupOfNetwork(network);
    // What undo and redo move, they put into order themselves.
    if (!group || !OssUndoManager::instance()->isRecording())
        return;
    if (input)
        reorderGroupInputsByPos(group);
    else
        reorderGroupOutputsByPos(group);
}
