#include "Panels/GroupInFront.h"

#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssShaderNetworkView.h"
#include "OssShaderNetworkWidget.h"
#include "OssSnGroupNodeGraphViewContext.h"
#include "OssSnNodeGraphViewContextManager.h"

GroupInFront::GroupInFront(OssSnGroupNode *group)
{
    OssSnNodeGraphWidget *tabs = OssSnNodeGraphViewContextManager::instance()->nodeGraphWidget();
    auto *context = qobject_cast<OssSnGroupNodeGraphViewContext *>(
        OssSnNodeGraphViewContextManager::contextOf(group));
    OssShaderNetworkView *view = context ? context->groupView() : nullptr;
    if (!tabs || !view || tabs->currentWidget() == view)
        return;
    m_before = tabs->currentWidget();
    m_inside = view;
    m_opened = tabs->indexOf(view) < 0;
    if (m_opened)
        context->showGroupNodeTab();
    else
        tabs->setCurrentWidget(view);
}

GroupInFront::~GroupInFront()
{
    OssSnNodeGraphWidget *tabs = OssSnNodeGraphViewContextManager::instance()->nodeGraphWidget();
    if (!tabs || !m_inside)
        return;
    if (tabs->currentWidget() == m_inside && m_before && tabs->indexOf(m_before) >= 0)
        tabs->setCurrentWidget(m_before);
    const int index = tabs->indexOf(m_inside);
    if (m_opened && index >= 0)
        tabs->hideTab(index);
}
