#include "OssSnGroupNodeGraphViewContext.h"

#include "OssCore/Program/OssDebug.h"
#include "OssCore/Program/OssResourceInfo.h"
#include "OssInterface/Actions/OssMenu.h"
#include "OssInterface/Popups/OssFileDialog.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Nodes/OssSnBakePointNode.h"
#include "OssModel/Nodes/OssSnMaterialNode.h"
#include "OssModel/Nodes/OssSnMultiChannelBakePointNode.h"
#include "OssModel/Nodes/OssSnMultiChannelBottomTransparencyNode.h"
#include "OssModel/Nodes/OssSnMultiChannelMergeNode.h"
#include "OssModel/Types/OssNodeSuffixes.h"
#include "OssModel/Types/OssSnTags.h"
#include "OssShaderNetworkView.h"
#include "OssShaderNetworkWidget.h"
#include "ZelGL/ZelTextureToken.h"

namespace {

constexpr const char *Source = "OssSnGroupNodeGraphViewContext";
const ZelTextureToken TextureToken;

constexpr int MaterialShape = 3;
constexpr int GroupShape = 4;
constexpr int MultiChannelShape = 7;

OssShaderNetwork *enclosing(const OssShaderNetwork *network)
{
    const OssSnGroupNode *group = network->parentGroupNode();
    return group ? group->network() : nullptr;
}

OssSnNodeGraphWidget *tabWidget()
{
    return OssSnNodeGraphViewContextManager::instance()->nodeGraphWidget();
}

} // namespace

OssSnGroupNodeGraphViewContext::OssSnGroupNodeGraphViewContext(QObject *node)
    : OssSnNodeGraphViewContext(node, true)
{
}

OssSnGroupNodeGraphViewContext::~OssSnGroupNodeGraphViewContext()
{
    delete m_view;
}

OssSnGroupNode *OssSnGroupNodeGraphViewContext::groupNode() const
{
    return qobject_cast<OssSnGroupNode *>(parentNode());
}

void OssSnGroupNodeGraphViewContext::initializeGui()
{
    OssSnGroupNode *group = groupNode();
    if (!group) {
        OssDebug(Source, __LINE__, "GroupNode is NULL");
        return;
    }
    OssSnNodeGraphViewContextManager::instance()->registerGroupNetwork(group->groupNetwork(),
                                                                       group);
    connectGroup(group);
    setShapeType(qobject_cast<OssSnMaterialNode *>(group)            ? MaterialShape
                 : qobject_cast<OssSnMultiChannelGroupNode *>(group) ? MultiChannelShape
                                                                     : GroupShape);
    OssSnNodeGraphViewContext::initializeGui();
    updateMultiChannelNodeUI();
    onBakedStateChanged();
    setupPortClusters();
    showInnerItems();
}

void OssSnGroupNodeGraphViewContext::connectGroup(OssSnGroupNode *group)
{
    using Context = OssSnGroupNodeGraphViewContext;
    connect(group, &OssSnBaseNode::nameChanged, this, &Context::changeGroupNodeTabText);
    connect(group, &OssSnGroupNode::openNodeGraph, this, &Context::forceOpenGroupSubgraph);
    connect(group, &OssSnGroupNode::newGroupNodeInputOutputCreated, this,
            &Context::adjustInputOutputPos);
    connect(group, &OssSnGroupNode::clearPortClusters, this, &Context::clearPortClusters);
    connect(group, &OssSnGroupNode::updatePortClusters, this, &Context::updatePortClusters);
    connect(OssShaderNetworkManager::instance(), &OssShaderNetworkManager::nodeDeregistered, this,
            &Context::hideGroupNodeTab);
    if (const auto *streams = qobject_cast<OssSnMultiChannelGroupNode *>(group))
        connect(streams, &OssSnMultiChannelGroupNode::validityChanged, this,
                &Context::updateMultiChannelNodeUI);
    if (const auto *bakes = qobject_cast<OssSnMultiChannelBakePointNode *>(group))
        connect(bakes, &OssSnMultiChannelBakePointNode::bakedStateChanged, this,
                &Context::onBakedStateChanged);
}

void OssSnGroupNodeGraphViewContext::showInnerItems()
{
    // Contexts inside were made before this one, so their items stand in the inner scene already;
    // this brings in those that do not.
    OssShaderNetwork *network = groupNode()->groupNetwork();
    QGraphicsScene *scene = OssSnNodeGraphViewContextManager::instance()->sceneForNetwork(network);
    const QList<OssSnBaseNode *> nodes = network->nodes();
    for (OssSnBaseNode *node : nodes) {
        OssNgNode *item = OssSnNodeGraphViewContextManager::guiNodeOf(node);
        if (item && item->scene() != scene)
            OssSnNodeGraphViewContextManager::instance()->onNodeRegistered(network, node);
        if (node->hasTag(OssSnTags::input()) || node->hasTag(OssSnTags::output()))
            rememberPlace(node, {}); // one that stands anywhere else was put there
    }
}

OssShaderNetworkView *OssSnGroupNodeGraphViewContext::groupView()
{
    OssSnGroupNode *group = groupNode();
    if (m_view || !group)
        return m_view;
    // A view costs more than a node, and most groups are never opened.
    m_view = new OssShaderNetworkView(nullptr);
    OssSnNodeGraphViewContextManager::instance()->showNetworkInView(group->groupNetwork(), m_view);
    if (OssSnNodePropertiesWidget *panels = OssSnNodeGraphViewContextManager::instance()
                                                ->nodePropertiesWidget())
        connect(m_view.data(), &OssShaderNetworkView::nodeDoubleClicked, panels,
                &OssSnNodePropertiesWidget::openProperty);
    m_view->setNavigationControlType(OssSnNodeGraphViewContextManager::instance()->controlType());
    return m_view;
}

// --- tabs

void OssSnGroupNodeGraphViewContext::addTabToWidget(OssSnBaseNode *node)
{
    OssSnNodeGraphWidget *widget = tabWidget();
    if (!widget || !node || node != parentNode() || !groupView())
        return;
    if (widget->indexOf(m_view) < 0)
        widget->addTab(m_view, OssMenu::asTyped(node->name()));
}

void OssSnGroupNodeGraphViewContext::frameView()
{
    m_view->setFocus();
    m_view->frameNodes(true);
}

void OssSnGroupNodeGraphViewContext::showGroupNodeTab()
{
    addTabToWidget(parentNode());
    makeGroupNodeTabCurrent(parentNode());
}

void OssSnGroupNodeGraphViewContext::makeGroupNodeTabCurrent(OssSnBaseNode *node)
{
    OssSnNodeGraphWidget *widget = tabWidget();
    if (!widget || !node || node != parentNode() || !m_view || widget->indexOf(m_view) < 0)
        return;
    widget->setCurrentWidget(m_view);
    frameView();
    OssShaderNetworkManager::instance()->setCurrentViewNetwork(m_view->network());
}

void OssSnGroupNodeGraphViewContext::showGroupNodeTabBehind()
{
    OssSnNodeGraphWidget *widget = tabWidget();
    if (!widget)
        return;
    addTabToWidget(parentNode());
    QWidget *before = widget->currentWidget();
    if (!m_view || before == m_view)
        return;
    widget->setCurrentWidget(m_view);
    frameView();
    widget->setCurrentWidget(before);
}

void OssSnGroupNodeGraphViewContext::forceOpenGroupSubgraph()
{
    if (OssSnNodeGraphWidget *widget = tabWidget())
        widget->refreshCurrentChanged();
    showGroupNodeTab();
}

void OssSnGroupNodeGraphViewContext::hideGroupNodeTab(OssShaderNetwork *network,
                                                      OssSnBaseNode *node)
{
    OssSnNodeGraphWidget *widget = tabWidget();
    const OssSnGroupNode *group = groupNode();
    if (!widget || !group || node != group)
        return;
    // Groups inside leave the graph with this one, without a notice of their own.
    const QList<OssSnBaseNode *> inside = group->groupNetwork()->nodes();
    for (OssSnBaseNode *inner : inside) {
        auto *context = qobject_cast<OssSnGroupNodeGraphViewContext *>(
            OssSnNodeGraphViewContextManager::contextOf(inner));
        if (context)
            context->hideGroupNodeTab(group->groupNetwork(), inner);
    }
    const int index = m_view ? widget->indexOf(m_view) : -1;
    if (index < 0)
        return;
    // Whoever looked into it sees what it was in next, and there what took its place.
    for (; network && widget->currentWidget() == m_view; network = enclosing(network))
        widget->selectTabForNetwork(network);
    if (widget->currentWidget() == m_view)
        widget->setCurrentIndex(0);
    widget->hideTab(index);
}

void OssSnGroupNodeGraphViewContext::changeGroupNodeTabText(QString text)
{
    OssSnNodeGraphWidget *widget = tabWidget();
    if (!widget) {
        OssDebug(Source, __LINE__, "Widget is NULL");
        return;
    }
    const int index = m_view ? widget->indexOf(m_view) : -1;
    if (index >= 0)
        widget->setTabText(index, OssMenu::asTyped(text));
}

OssResult OssSnGroupNodeGraphViewContext::onExportAsGizmo(OssSnGroupNode *GroupNode)
{
    if (!GroupNode) {
        OssDebug(Source, __LINE__,
                 "OssSnGroupNodeGraphViewContext::onExportAsGizmo GroupNode is NULL");
        return OssResult::failure(tr("There is no group"));
    }
    const QString path = OssFileDialog::getSaveFileName(
        tr("Export as Gizmo"), OssNodeSuffixes::filter(OssNodeSuffixes::Nodes),
        OssResourceInfo::instance()->defaultGizmoPathKey(), nullptr, GroupNode->name());
    return path.isEmpty() ? OssResult::cancelled(tr("No file was chosen"))
                          : GroupNode->exportAsGizmo(path);
}

OssResult OssSnGroupNodeGraphViewContext::exportNode()
{
    return onExportAsGizmo(qobject_cast<OssSnGroupNode *>(parentNode()));
}

// --- multi-channel groups

void OssSnGroupNodeGraphViewContext::updateMultiChannelNodeUI()
{
    const auto *streams = qobject_cast<OssSnMultiChannelGroupNode *>(parentNode());
    if (!streams || !guiNode())
        return;
    QString category;
    int shape = MultiChannelShape;
    if (qobject_cast<const OssSnMultiChannelMergeNode *>(streams)) {
        category = QStringLiteral("MultiChannelMerge");
    } else if (qobject_cast<const OssSnMultiChannelBakePointNode *>(streams)) {
        category = QStringLiteral("MultiChannelBakePoint");
    } else if (qobject_cast<const OssSnMultiChannelBottomTransparencyNode *>(streams)) {
        category = QStringLiteral("MultiChannelBottomTransparency");
    } else if (qobject_cast<const OssSnMaterialNode *>(streams)) {
        category = QStringLiteral("MultiChannelMaterial");
        shape = MaterialShape;
    } else {
        return;
    }
    if (!streams->isValid()) {
        category = QStringLiteral("MultiChannelInvalid");
        shape = GroupShape;
    }
    guiNode()->setCategory(category);
    setShapeType(shape);
    guiNode()->setShapeType(shape);
    guiNode()->updateShape();
}

void OssSnGroupNodeGraphViewContext::copyGuiStateFrom(OssSnBaseContext *other)
{
    OssSnNodeGraphViewContext::copyGuiStateFrom(other);
    updateMultiChannelNodeUI(); // the type's look is that of a valid node
}

void OssSnGroupNodeGraphViewContext::onBakedStateChanged()
{
    auto *node = qobject_cast<OssSnMultiChannelBakePointNode *>(parentNode());
    if (!node || !guiNode())
        return;
    bool baked = false;
    bool stale = false;
    const QList<OssSnBakePointNode *> active = node->activeBakePointNodes();
    for (const OssSnBakePointNode *bakePoint : active) {
        baked = baked || bakePoint->hasBakedResult();
        stale = stale || (bakePoint->hasBakedResult() && !bakePoint->isBakedResultUpToDate(false));
    }
    guiNode()->setBaked(baked);
    guiNode()->setStale(stale || (!active.isEmpty() && !baked));
    node->emitNodeStateRefreshed();
}

QString OssSnGroupNodeGraphViewContext::versionHashSource() const
{
    if (!parentNode()) {
        OssDebug(Source, __LINE__, "ParentNode is NULL");
        return {};
    }
    // The streams of a shader model decide what a multi-channel group is, not its look.
    if (qobject_cast<OssSnMultiChannelGroupNode *>(parentNode()))
        return {};
    return OssSnNodeGraphViewContext::versionHashSource();
}
