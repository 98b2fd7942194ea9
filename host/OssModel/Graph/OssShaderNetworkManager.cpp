#include "OssModel/Graph/OssShaderNetworkManager.h"

#include "OssCore/Program/OssDebug.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkContextLoader.h"
#include "OssModel/Graph/OssShadingGroup.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Types/OssSnTags.h"

#include <QMetaEnum>

OssShaderNetworkManager::OssShaderNetworkManager()
{
    setObjectName(QStringLiteral("OssShaderNetworkManager"));
    qRegisterMetaType<OssSnBaseNode *>();
    qRegisterMetaType<OssShaderNetwork *>();
    qRegisterMetaType<QList<OssSnBaseNode *>>("QList<OssSnBaseNode*>");
    qRegisterMetaType<OssSnBaseNodeCacheActiveState>("OssSnBaseNodeCacheActiveState");
    qRegisterMetaType<OssCustomAttribute>();
}

OssShaderNetworkManager::~OssShaderNetworkManager()
{
    for (const NamedLoader &entry : qAsConst(m_loaders)) {
        if (entry.loader && !entry.loader->parent())
            delete entry.loader.data();
    }
}

// --- node types

QStringList OssShaderNetworkManager::loadNodeTypes(const QString &folder)
{
    const QStringList faults = m_types.readFolder(folder);
    for (const QString &fault : faults)
        OssDebug("OssShaderNetworkManager", __LINE__, "[ !! ] %s", qPrintable(fault));
    Q_EMIT registeredNodePopulationChanged();
    return faults;
}

QStringList OssShaderNetworkManager::readUserNodeTypes(const QString &folder,
                                                       OssSnNodeTypeLibrary::Changes *changes)
{
    const QStringList faults = m_types.readChangingFolder(folder, changes);
    for (const QString &fault : faults) {
        if (!m_typeFaults.contains(fault)) // the folder is read again for each file that changes
            OssDebug("OssShaderNetworkManager", __LINE__, "[ !! ] %s", qPrintable(fault));
    }
    m_typeFaults = faults;
    if (!changes->isEmpty())
        Q_EMIT registeredNodePopulationChanged();
    return faults;
}

bool OssShaderNetworkManager::registerNodeType(const OssSnNodeTypeLibrary::TypePointer &type)
{
    if (!m_types.add(type))
        return false;
    Q_EMIT registeredNodePopulationChanged();
    return true;
}

OssSnNodeTypeLibrary::TypePointer OssShaderNetworkManager::nodeType(const QString &pathKey) const
{
    return m_types.find(pathKey);
}

QStringList OssShaderNetworkManager::nodeGraphPathKeys() const
{
    QStringList keys;
    const QStringList all = m_types.pathKeys();
    for (const QString &key : all) {
        if (!m_types.find(key)->tags.contains(OssSnTags::internal()))
            keys.append(key);
    }
    return keys;
}

QStringList OssShaderNetworkManager::nodePathKeys() const
{
    return m_types.pathKeys();
}

QString OssShaderNetworkManager::nodeMenuPath(const QString &pathKey) const
{
    const auto type = m_types.find(pathKey);
    return type ? type->menuPath : QString();
}

QString OssShaderNetworkManager::convertPathKeyToVersionUUID(const QString &pathKey) const
{
    const auto type = m_types.find(pathKey);
    return type ? type->versionUUID : QString();
}

// --- contexts and menus

void OssShaderNetworkManager::registerContextLoader(const QString &name,
                                                    OssShaderNetworkContextLoader *loader)
{
    if (!loader)
        return;
    m_loaders.append({name, loader});
    m_pristineHashes.clear();
}

void OssShaderNetworkManager::registerGlobalContextMenuAction(QObject *action)
{
    if (action)
        m_globalActions.append(action);
}

// --- current

OssShaderNetwork *OssShaderNetworkManager::currentShaderNetwork() const
{
    return m_current;
}

void OssShaderNetworkManager::setCurrentShaderNetwork(OssShaderNetwork *network)
{
    if (m_current == network)
        return;
    m_current = network;
    Q_EMIT currentShaderNetworkChanged(network);
}

OssShaderNetwork *OssShaderNetworkManager::currentViewNetwork() const
{
    return m_currentView;
}

void OssShaderNetworkManager::setCurrentViewNetwork(OssShaderNetwork *network)
{
    if (m_currentView == network)
        return;
    m_currentView = network;
    Q_EMIT currentViewNetworkChanged(network);
}

OssSnBaseNode *OssShaderNetworkManager::currentViewerNode() const
{
    return m_currentViewer;
}

void OssShaderNetworkManager::setCurrentViewerNode(OssSnBaseNode *node)
{
    m_currentViewer = node;
}

OssShaderNetwork *OssShaderNetworkManager::getShaderNetwork(OssShadingGroup *group) const
{
    return group ? group->network() : nullptr;
}

void OssShaderNetworkManager::refreshGraph(OssShaderNetwork *network)
{
    Q_EMIT graphRefreshRequested(network);
}

void OssShaderNetworkManager::emitNodeGraphIsManuallyChanged()
{
    Q_EMIT nodeGraphIsManuallyChanged();
}

// --- for networks

void OssShaderNetworkManager::addShaderNetwork(OssShaderNetwork *network)
{
    if (network)
        Q_EMIT shaderNetworkAdded(network);
}

void OssShaderNetworkManager::registerNode(OssShaderNetwork *network, OssSnBaseNode *node)
{
    Q_EMIT nodeRegistered(network, node);
}

void OssShaderNetworkManager::deregisterNode(OssShaderNetwork *network, OssSnBaseNode *node)
{
    Q_EMIT nodeDeregistered(network, node);
}

void OssShaderNetworkManager::endCollection(OssShaderNetwork *network)
{
    Q_EMIT afterShaderNetworkEndCollection(network);
}

void OssShaderNetworkManager::tellMade(OssSnBaseNode *node)
{
    if (OssUndoManager::instance()->isRecording())
        Q_EMIT nodeMade(node);
}

void OssShaderNetworkManager::tellInserted(OssSnBaseNode *node)
{
    if (OssUndoManager::instance()->isRecording())
        Q_EMIT nodeInserted(node);
}

void OssShaderNetworkManager::tellOfWiring(OssSnBaseNode *node)
{
    if (OssUndoManager::instance()->isRecording())
        Q_EMIT aboutToWire(node);
}

// --- requests

bool OssShaderNetworkManager::goToNode(OssSnBaseNode *node)
{
    if (!node || !node->network())
        return false;
    setCurrentShaderNetwork(node->network()->rootNetwork());
    Q_EMIT node->gotoNode(); // opens the tab of the group that it is in
    requestFocus(node);
    return true;
}

bool OssShaderNetworkManager::requestViewer(OssSnBaseNode *node, int input)
{
    if (!node || !node->network())
        return false;
    OssShaderNetwork *root = node->network()->rootNetwork();
    setCurrentShaderNetwork(root); // each object has a viewer of its own
    // 0 is the current material's.
    Q_EMIT node->attachViewerToNode(input > 0 ? input : qMax(1, root->viewerNodeCurrentEdge()));
    return true;
}

void OssShaderNetworkManager::requestPortsInOrderOfPlaces(OssSnGroupNode *group)
{
    const OssUndoManager::AutoMacro macro(tr("Order Ports by Position"));
    Q_EMIT reorderGroupInputsByPosRequested(group);
    Q_EMIT reorderGroupOutputsByPosRequested(group);
}

void OssShaderNetworkManager::requestPlacesInOrderOfPorts(OssSnGroupNode *group)
{
    if (group)
        Q_EMIT arrangeGroupInputNodesByOrderRequested(group->groupNetwork(), group->inputNames());
}

void OssShaderNetworkManager::requestPlacesInOrderOfOutputs(OssSnGroupNode *group)
{
    if (group)
        Q_EMIT arrangeGroupOutputNodesByOrderRequested(group->groupNetwork(),
                                                       group->outputPointNames());
}

void OssShaderNetworkManager::requestLayout(OssShaderNetwork *network,
                                            const QList<OssSnBaseNode *> &nodes)
{
    if (nodes.isEmpty())
        Q_EMIT wholeLayoutRequested(network);
    else if (nodes.size() == 1)
        Q_EMIT beautifyNodesLayout(network, nodes.first());
    else
        Q_EMIT beautifyNodesLayout(network, nodes);
}

QString OssShaderNetworkManager::nameOf(Arrangement how)
{
    QString words;
    const QString key = QLatin1String(QMetaEnum::fromType<Arrangement>().valueToKey(how));
    for (const QChar letter : key) {
        if (letter.isUpper() && !words.isEmpty())
            words += QLatin1Char(' ');
        words += letter.toLower();
    }
    return words;
}

OssResult OssShaderNetworkManager::requestArrangement(const QList<OssSnBaseNode *> &nodes,
                                                      Arrangement how)
{
    OssResult result = OssResult::failure(tr("The nodes are shown in no node graph"));
    Q_EMIT arrangementRequested(nodes, how, &result);
    return result;
}

void OssShaderNetworkManager::setDebugNodes(const DebugNodes &nodes, const DebugInputs &inputs)
{
    const DebugNodes oldNodes = std::exchange(m_debugNodes, nodes);
    const DebugInputs oldInputs = std::exchange(m_debugInputs, inputs);
    Q_EMIT debugNodesChanged(nodes, inputs, oldNodes, oldInputs);
}
