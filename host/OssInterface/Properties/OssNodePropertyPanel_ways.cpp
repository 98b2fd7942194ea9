#include "OssInterface/Properties/OssNodePropertyPanel.h"

#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Types/OssSnTags.h"

#include <QMenu>

#include <algorithm>
#include <functional>

// From a panel to its node in the graph and to the panels of its neighbours.

namespace {

/// Those that have something to show, each once.
QList<OssSnBaseNode *> withPanels(const QList<OssSnBaseNode *> &nodes)
{
    QList<OssSnBaseNode *> shown;
    for (OssSnBaseNode *node : nodes) {
        if (node && !node->hasTag(OssSnTags::dot()) && !node->hasTag(OssSnTags::viewer())
            && !shown.contains(node))
            shown.append(node);
    }
    return shown;
}

} // namespace

void OssNodePropertyPanel::addWays(QMenu *menu)
{
    OssShaderNetworkManager *networks = OssShaderNetworkManager::instance();
    const auto add = [&](const QString &text, const std::function<void(OssSnBaseNode *)> &go) {
        return menu->addAction(text, this, [this, go] {
            if (m_node)
                go(m_node);
        });
    };
    add(tr("Go to Node"), [networks](OssSnBaseNode *node) { networks->goToNode(node); });
    add(tr("Look at It in the Viewer"),
        [networks](OssSnBaseNode *node) { networks->requestViewer(node); });
    // Panels of neighbours go where the stream has them: sources below, targets above.
    add(tr("Open Properties of What Feeds It"), [networks](OssSnBaseNode *node) {
        QList<OssSnBaseNode *> nodes = withPanels(node->inputNodes());
        std::reverse(nodes.begin(), nodes.end()); // each goes right below this panel
        for (OssSnBaseNode *source : qAsConst(nodes))
            networks->requestPropertiesAfter(source, node);
    })->setEnabled(m_node && !withPanels(m_node->inputNodes()).isEmpty());
    add(tr("Open Properties of What It Feeds"), [networks](OssSnBaseNode *node) {
        const QList<OssSnBaseNode *> nodes = withPanels(node->outputNodes());
        for (OssSnBaseNode *target : nodes)
            networks->requestPropertiesBefore(target, node);
    })->setEnabled(m_node && !withPanels(m_node->outputNodes()).isEmpty());
}
