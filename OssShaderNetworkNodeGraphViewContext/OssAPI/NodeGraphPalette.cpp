#include "OssAPI/NodeGraphPalette.h"

#include "OssInterface/Palettes/OssPalette.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssScriptObjects/OssaNodeGraph.h"
#include "OssScriptObjects/OssScriptError.h"
#include "OssScriptObjects/OssScriptManager.h"
#include "OssShaderNetworkView.h"
#include "OssShaderNetworkWidget.h"
#include "OssSnGroupNodeGraphViewContext.h"

namespace Ossa {

namespace {

void reportUnavailable(int line, const char *text)
{
    OssScriptError(OssScriptException::ObjectUnavailable, __FILE__, line, "%s", text);
}

NodeGraphView *scriptObjectOf(QWidget *page)
{
    if (!page)
        return nullptr;
    return qobject_cast<NodeGraphView *>(
        OssScriptManager::instance()->obtainAPI(page, QStringLiteral("Ossa::NodeGraphView")));
}

int tabOf(const OssSnNodeGraphWidget *tabs, const OssShaderNetwork *network)
{
    for (int i = 0; i < tabs->count(); ++i) {
        const auto *view = qobject_cast<OssShaderNetworkView *>(tabs->widget(i));
        if (view && view->network() == network)
            return i;
    }
    return -1;
}

void openTab(OssSnNodeGraphWidget *tabs, OssShaderNetwork *network)
{
    if (network->rootNetwork() == network) {
        tabs->addRootView();
        return;
    }
    OssSnGroupNode *group = network->parentGroupNode();
    auto *context = group ? qobject_cast<OssSnGroupNodeGraphViewContext *>(group->viewContext())
                          : nullptr;
    if (context)
        context->addTabToWidget(group);
}

} // namespace

NodeGraphPalette::NodeGraphPalette(QObject *internal)
{
    if (qobject_cast<OssPalette *>(internal))
        initAPI(internal);
    else
        OssScriptError(OssScriptException::ObjectUnavailable, __FILE__, __LINE__,
                       "Invalid OssPalette object passed to %s().",
                       "Ossa::NodeGraphPalette::NodeGraphPalette");
}

NodeGraphPalette::~NodeGraphPalette() = default;

OssSnNodeGraphWidget *NodeGraphPalette::widget() const
{
    const auto *palette = qobject_cast<OssPalette *>(internalObject());
    if (!palette) {
        OssScriptError(OssScriptException::InternalObjectGone, __FILE__, __LINE__,
                       "Internal OssPalette object not valid");
        return nullptr;
    }
    QWidget *body = palette->originalWidget();
    if (!body || qstrcmp(body->metaObject()->className(), "OssSnNodeGraphWidget") != 0) {
        reportUnavailable(__LINE__, "Cannot obtain the Node Graph widget");
        return nullptr;
    }
    return static_cast<OssSnNodeGraphWidget *>(body);
}

int NodeGraphPalette::currentTabIndex() const
{
    const OssSnNodeGraphWidget *tabs = widget();
    return tabs ? tabs->currentIndex() : -1;
}

void NodeGraphPalette::setCurrentTabIndex(int Index)
{
    OssSnNodeGraphWidget *tabs = widget();
    if (!tabs)
        return;
    if (Index < 0)
        OssScriptError(OssScriptException::OutOfRange, __FILE__, __LINE__,
                       "CurrentTabIndex cannot be a negative number");
    else if (Index >= tabs->count())
        OssScriptError(OssScriptException::OutOfRange, __FILE__, __LINE__,
                       "CurrentTabIndex cannot be larger than or equal to the number of open tabs");
    else
        tabs->setCurrentIndex(Index);
}

void NodeGraphPalette::closeTab(int Index)
{
    if (OssSnNodeGraphWidget *tabs = widget())
        tabs->hideTab(Index);
}

QList<NodeGraphView *> NodeGraphPalette::nodeGraphViewList() const
{
    QList<NodeGraphView *> views;
    const OssSnNodeGraphWidget *tabs = widget();
    for (int i = 0; tabs && i < tabs->count(); ++i) {
        if (NodeGraphView *view = scriptObjectOf(tabs->widget(i)))
            views.append(view);
    }
    return views;
}

NodeGraphView *NodeGraphPalette::nodeGraphView(int TabIndex) const
{
    const OssSnNodeGraphWidget *tabs = widget();
    return tabs ? scriptObjectOf(tabs->widget(TabIndex)) : nullptr;
}

int NodeGraphPalette::indexForNodeGraph(NodeGraph *NodeGraphObject)
{
    OssSnNodeGraphWidget *tabs = widget();
    if (!tabs)
        return -1;
    auto *network = NodeGraphObject
                        ? qobject_cast<OssShaderNetwork *>(NodeGraphObject->internalObject())
                        : nullptr;
    if (!network) {
        reportUnavailable(__LINE__, "Cannot obtain the Shader Network object");
        return -1;
    }
    int index = tabOf(tabs, network);
    if (index < 0) {
        openTab(tabs, network);
        index = tabOf(tabs, network);
    }
    if (index < 0)
        reportUnavailable(__LINE__, "Cannot create a NodeGraphView");
    return index;
}

} // namespace Ossa
