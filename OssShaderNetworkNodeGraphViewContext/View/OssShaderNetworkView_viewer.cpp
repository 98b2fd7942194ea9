#include "OssShaderNetworkView.h"

#include "OssCore/Program/OssDebug.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssInterface/Actions/OssMenu.h"
#include "OssInterface/Popups/OssApplication.h"
#include "OssModel/Evaluation/OssSolo.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Layers/OssLayerManager.h"
#include "OssModel/Layers/OssLayerShaderManager.h"
#include "OssModel/Nodes/OssSnMultiChannelGroupNode.h"
#include "OssModel/Types/OssLayerShaderModel.h"
#include "OssNodeGraph/Items/OssNgExtendedNode.h"
#include "OssSnNodeGraphViewContextManager.h"

#include <QMenu>

// Looking at nodes: the viewer and what its inputs show.

namespace {

constexpr const char *Source = "OssShaderNetworkView";

OssSnBaseNode *nodeProperty(const QAction *action, const char *name)
{
    return qobject_cast<OssSnBaseNode *>(action->property(name).value<QPointer<QObject>>());
}

void showAsCurrentMaterial(OssSnBaseNode *node)
{
    OssLayerManager::instance()->connectNodeToCurrentMaterialProxy(
        node->network(), node, node->prefferedOutputPoint(), {});
    OssLayerShaderManager *shaders = OssLayerShaderManager::instance();
    shaders->setCurrentShader(shaders->getCurrentMaterialProxyShader(node->network()));
}

void look(OssSnBaseNode *viewer, int num)
{
    OssSolo::instance()->end(); // or what was asked for would not be seen
    const OssShaderNetwork *network = viewer->network();
    if (network && network->rootNetwork())
        network->rootNetwork()->setViewerNodeCurrentEdge(num, true);
}

QString shownThrough(const OssSnBaseNode *viewer, int num)
{
    using View = OssShaderNetworkView;
    const OssSnBaseNode *shown = viewer->inputNode(QString::number(num));
    if (shown && !viewer->isInputEnabled(QString::number(num))) {
        return View::tr("The viewer's input %1 is switched off: point at its wire and use Toggle "
                        "Wire")
            .arg(num);
    }
    return shown ? View::tr("The viewer shows %1 at its input %2").arg(shown->name()).arg(num)
                 : View::tr("Nothing is connected to the viewer's input %1: select a node first")
                       .arg(num);
}

void connectToViewer(OssSnBaseNode *viewer, OssSnBaseNode *node, const QString &outputPoint,
                     int num)
{
    const OssUndoManager::AutoMacro macro(
        OssShaderNetworkView::tr("Connect node '%1' to Viewer").arg(node->name()));
    viewer->connectInput(QString::number(num), node, outputPoint, true, false, true, false);
    look(viewer, num);
}

/// Where the viewer of a network's object stands, to bring it back from another network, and what was
/// selected in the network, as far as any of it is still there then.
class Whereabouts
{
public:
    Whereabouts(OssShaderNetwork *shown, const QList<OssSnBaseNode *> &selected)
        : m_viewer(shown->viewerNode())
        , m_network(m_viewer ? m_viewer->network() : nullptr)
        , m_shown(shown)
        , m_selected(selected.cbegin(), selected.cend())
    {
        if (const OssNgNode *item = OssSnNodeGraphViewContextManager::guiNodeOf(m_viewer))
            m_position = item->pos();
    }

    void restore() const
    {
        if (m_viewer && m_network && m_viewer->network() != m_network) {
            m_network->moveCurrentViewerNodeToNetwork();
            if (OssNgNode *item = OssSnNodeGraphViewContextManager::guiNodeOf(m_viewer))
                item->setPosition(m_position);
        }
        QList<OssSnBaseNode *> selected;
        for (const auto &node : m_selected) {
            if (node)
                selected.append(node);
        }
        if (m_shown)
            m_shown->selectOnly(selected);
    }

private:
    QPointer<OssSnBaseNode> m_viewer;
    QPointer<OssShaderNetwork> m_network;
    QPointer<OssShaderNetwork> m_shown;
    QVector<QPointer<OssSnBaseNode>> m_selected;
    QPointF m_position;
};

} // namespace

void OssShaderNetworkView::connectNodeToViewer(OssSnBaseNode *node, int input)
{
    if (!m_network || !node || !node->network() || node->prefferedOutputPoint().isEmpty())
        return;
    OssSnBaseNode *viewer = m_network->moveCurrentViewerNodeToNetwork();
    if (!viewer)
        return;
    if (viewer->setInputNode(QString::number(input), node, node->prefferedOutputPoint()))
        look(viewer, input);
}

void OssShaderNetworkView::connectSelectedNodeToViewer()
{
    connectSelectedNodeToViewer(nullptr);
}

void OssShaderNetworkView::connectSelectedNodeToViewer(OssSnBaseNode *Node)
{
    connectSelectedNodeToViewer(Node, 1);
}

void OssShaderNetworkView::connectSelectedNodeToViewer(OssSnBaseNode *Node, int Num)
{
    if (!hasNetwork())
        return;
    const QList<OssSnBaseNode *> selected = selectedNodes();
    if (!Node && selected.size() > 1) {
        tellUser(tr("The viewer shows one node at a time: select one"));
        return;
    }
    if (!Node)
        Node = selected.value(0);
    const auto *streams = qobject_cast<OssSnMultiChannelGroupNode *>(Node);
    const bool layerShader = OssLayerShaderManager::instance()->isLayerShader(Node);
    if (Node && !streams && !layerShader && Num == 0) {
        OssDebug(Source, __LINE__,
                 "[ !! ] Connecting a node to the viewer's input 0 is not allowed. Input 0 is "
                 "reserved.");
        tellUser(tr("Input 0 of the viewer is for materials"));
        return;
    }
    if (Node && !m_network->nodes().contains(Node)) {
        OssDebug(Source, __LINE__, "Node '%s' doesn't belong to the network",
                 qPrintable(Node->objectName()));
        return;
    }
    const Whereabouts before(m_network, selected);
    OssSnBaseNode *viewer = m_network->moveCurrentViewerNodeToNetwork();
    if (!viewer)
        return;
    if (!Node || Node == viewer) {
        look(viewer, Num);
        tellUser(shownThrough(viewer, Num));
        return;
    }
    if (scene())
        scene()->clearSelection();
    viewer->setSelected(true);
    if (Num == 0) {
        if (streams)
            showAsCurrentMaterial(Node);
        else
            OssLayerShaderManager::instance()->setCurrentShader(Node);
        return;
    }
    if (Node->outputPointCount() == 1) {
        connectToViewer(viewer, Node, Node->prefferedOutputPoint(), Num);
    } else if (Node->outputPointCount() == 0) {
        tellUser(tr("%1 has nothing to look at").arg(Node->name()));
    } else if (!chooseOutputPoint(Node, viewer, Num)) {
        before.restore();
    }
}

bool OssShaderNetworkView::chooseOutputPoint(OssSnBaseNode *node, OssSnBaseNode *viewer, int num)
{
    const OssNgNode *guiNode = OssSnNodeGraphViewContextManager::guiNodeOf(node);
    if (!guiNode || !OssApplication::popupsAllowed())
        return false;
    // The view may go, with what belongs to it, while the user chooses.
    const QPointer<QMenu> menu = new QMenu(this);
    const auto add = [&](const QString &text, const char *property, const QString &value) {
        QAction *action = menu->addAction(OssMenu::asTyped(text));
        action->setProperty(property, value);
        action->setProperty("node", QVariant::fromValue(QPointer<QObject>(node)));
        action->setProperty("viewer", QVariant::fromValue(QPointer<QObject>(viewer)));
        action->setProperty("num", num);
    };
    const auto *streams = qobject_cast<OssSnMultiChannelGroupNode *>(node);
    if (const OssLayerShaderModel *model = streams ? streams->shaderModel() : nullptr) {
        add(model->id(), "shaderModelName", model->id());
        menu->addSeparator();
    }
    const auto *extended = qobject_cast<const OssNgExtendedNode *>(guiNode);
    const QStringList points = extended ? extended->outputPortList() : guiNode->outputPortNames();
    for (const QString &point : points)
        add(guiNode->outputPointDescriptiveName(point), "outputPointName", point);
    connect(menu, &QMenu::triggered, this, &OssShaderNetworkView::onOutputPointSelected);
    menu->setActiveAction(menu->actions().first()); // Return takes it at once
    const bool chosen = menu->exec(QCursor::pos()) != nullptr;
    delete menu;
    return chosen;
}

void OssShaderNetworkView::onOutputPointSelected(QAction *action)
{
    OssSnBaseNode *node = action ? nodeProperty(action, "node") : nullptr;
    OssSnBaseNode *viewer = action ? nodeProperty(action, "viewer") : nullptr;
    if (!node || !viewer)
        return;
    if (!action->property("shaderModelName").toString().isEmpty()) {
        const OssUndoManager::AutoMacro macro(
            tr("View '%1' as Current Material").arg(node->name()));
        showAsCurrentMaterial(node);
        return;
    }
    connectToViewer(viewer, node, action->property("outputPointName").toString(),
                    action->property("num").toInt());
}

void OssShaderNetworkView::moveViewerToMouse()
{
    if (!hasNetwork())
        return;
    OssNgNode *guiNode = OssSnNodeGraphViewContextManager::guiNodeOf(
        m_network->moveCurrentViewerNodeToNetwork());
    if (!guiNode)
        return;
    const QPointF place = mapToScene(m_menuPoint ? *m_menuPoint
                                                 : viewport()->mapFromGlobal(QCursor::pos()));
    const QGraphicsItem *parent = guiNode->parentItem();
    guiNode->setPosition(parent ? parent->mapFromScene(place) : place);
    OssUndoManager::instance()->resetClean(); // it is saved, and no step
}
