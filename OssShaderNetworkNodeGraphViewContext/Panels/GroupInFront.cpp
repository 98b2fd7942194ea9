#include "Panels/GroupInFront.h"

#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssNodeGraph/Items/OssNgNode.h"
#include "OssShaderNetworkView.h"
#include "OssShaderNetworkWidget.h"
#include "OssSnGroupNodeGraphViewContext.h"
#include "OssSnNodeGraphViewContextManager.h"

#include <QScrollBar>

#include <algorithm>
#include <iterator>

namespace {

/// The largest part of an area beside what covers it.
QRect roomBeside(const QRect &area, const QRect &cover)
{
    if (!area.intersects(cover))
        return area;
    const QRect parts[] = {
        {area.topLeft(), QPoint(cover.left(), area.bottom())},
        {QPoint(cover.right(), area.top()), area.bottomRight()},
        {area.topLeft(), QPoint(area.right(), cover.top())},
        {QPoint(area.left(), cover.bottom()), area.bottomRight()},
    };
    const auto size = [](const QRect &part) {
        return part.isValid() ? part.width() * part.height() : 0;
    };
    return *std::max_element(
        std::begin(parts), std::end(parts),
        [size](const QRect &one, const QRect &other) { return size(one) < size(other); });
}

} // namespace

GroupInFront::GroupInFront(OssSnGroupNode *group)
{
    OssSnNodeGraphWidget *tabs = OssSnNodeGraphViewContextManager::instance()->nodeGraphWidget();
    auto *context = qobject_cast<OssSnGroupNodeGraphViewContext *>(
        OssSnNodeGraphViewContextManager::contextOf(group));
    OssShaderNetworkView *view = context ? context->groupView() : nullptr;
    if (!tabs || !view)
        return;
    m_inside = view;
    m_scrolled = {view->horizontalScrollBar()->value(), view->verticalScrollBar()->value()};
    if (tabs->currentWidget() == view)
        return;
    m_before = tabs->currentWidget();
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
    m_inside->horizontalScrollBar()->setValue(m_scrolled.x());
    m_inside->verticalScrollBar()->setValue(m_scrolled.y());
    if (tabs->currentWidget() == m_inside && m_before && tabs->indexOf(m_before) >= 0)
        tabs->setCurrentWidget(m_before);
    const int index = tabs->indexOf(m_inside);
    if (m_opened && index >= 0)
        tabs->hideTab(index);
}

void GroupInFront::reveal(const OssNgNode *item, const QWidget *dialog) const
{
    if (!m_inside || !item || item->scene() != m_inside->scene())
        return;
    const QWidget *viewport = m_inside->viewport();
    const QWidget *behind = dialog->parentWidget() ? dialog->parentWidget()->window() : dialog;
    QRect cover = dialog->frameGeometry() | behind->frameGeometry();
    cover.moveTopLeft(viewport->mapFromGlobal(cover.topLeft()));
    const QRect room = roomBeside(viewport->rect(), cover);
    const QRect place = m_inside->mapFromScene(item->sceneBoundingRect()).boundingRect();
    if (room.contains(place) || room.width() < place.width() || room.height() < place.height())
        return;
    const QPoint way = place.center() - room.center();
    m_inside->horizontalScrollBar()->setValue(m_inside->horizontalScrollBar()->value() + way.x());
    m_inside->verticalScrollBar()->setValue(m_inside->verticalScrollBar()->value() + way.y());
}
