#include "OssInterface/Actions/OssTabOrder.h"

#include <QLayout>
#include <QScrollArea>
#include <QSplitter>
#include <QWidget>

namespace {

void collect(QWidget *widget, QWidgetList *found);

void collect(const QLayout *layout, QWidgetList *found)
{
    for (int i = 0; i < layout->count(); ++i) {
        QLayoutItem *item = layout->itemAt(i);
        if (item->widget())
            collect(item->widget(), found);
        else if (item->layout())
            collect(item->layout(), found);
    }
}

void collectInside(const QWidget *widget, QWidgetList *found)
{
    if (const auto *splitter = qobject_cast<const QSplitter *>(widget)) {
        for (int i = 0; i < splitter->count(); ++i)
            collect(splitter->widget(i), found);
    } else if (const auto *area = qobject_cast<const QScrollArea *>(widget)) {
        if (area->widget())
            collect(area->widget(), found);
    } else if (widget->layout()) {
        collect(widget->layout(), found);
    }
}

void collect(QWidget *widget, QWidgetList *found)
{
    if (widget->focusPolicy() & Qt::TabFocus)
        found->append(widget);
    collectInside(widget, found);
}

} // namespace

void OssTabOrder::followLayout(QWidget *widget)
{
    QWidgetList found;
    collectInside(widget, &found);
    if (found.isEmpty())
        return;
    // The first comes after the widget itself, which Qt does for those alone that take the keyboard.
    QWidget *proxy = widget->focusProxy();
    const Qt::FocusPolicy policy = widget->focusPolicy();
    widget->setFocusProxy(nullptr);
    widget->setFocusPolicy(Qt::TabFocus);
    QWidget::setTabOrder(widget, found.first());
    widget->setFocusPolicy(policy);
    widget->setFocusProxy(proxy);
    for (int i = 1; i < found.size(); ++i)
        QWidget::setTabOrder(found.at(i - 1), found.at(i));
}
