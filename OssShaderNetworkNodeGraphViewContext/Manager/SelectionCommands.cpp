#include "Manager/SelectionCommands.h"

#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssInterface/Actions/OssCommandTable.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssShaderNetworkView.h"
#include "OssSnNodeGraphViewContextManager.h"

#include <algorithm>

SelectionCommands::SelectionCommands(QObject *parent)
    : QObject(parent)
{
    m_pause.setSingleShot(true);
    connect(&m_pause, &QTimer::timeout, this, &SelectionCommands::update);
    connect(OssActionTreeManager::instance(), &OssActionTreeManager::statesAsked, this,
            &SelectionCommands::settle);
    onChanged();
}

void SelectionCommands::settle()
{
    if (m_pause.isActive())
        update();
}

void SelectionCommands::update()
{
    m_pause.stop();
    const OssShaderNetworkView *view = OssSnNodeGraphViewContextManager::instance()->currentView();
    const OssShaderNetwork *network = view ? view->network() : nullptr;
    const QList<OssSnBaseNode *> nodes = network ? network->selectedNodes()
                                                 : QList<OssSnBaseNode *>();
    const bool inGroup = network && network->parentGroupNode();
    OssCommandTable::setHolds(
        OssCommandTable::WithKnobs,
        inGroup || std::any_of(nodes.cbegin(), nodes.cend(), [](const OssSnBaseNode *node) {
            return qobject_cast<const OssSnGroupNode *>(node);
        }));
    OssCommandTable::setHolds(
        OssCommandTable::WithExposed,
        inGroup && std::any_of(nodes.cbegin(), nodes.cend(), &OssSnGroupNode::offersKnobs));
}
