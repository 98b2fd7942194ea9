#pragma once

#include <QStringList>
#include <QWidget>

/// Where Tab goes against the way in which one reads, "A before B", in what is shown of a widget: up or
/// to the left, though not from column to column or into the next row.
inline QStringList againstReading(const QWidget *inside)
{
    const auto whole = [inside](const QWidget *widget) {
        return QRect(widget->mapTo(inside, QPoint()), widget->size());
    };
    // Without what is scrolled out of sight.
    const auto place = [&](const QWidget *widget) {
        QRect rect = whole(widget);
        for (const QWidget *one = widget->parentWidget(); one != inside;
             one = one->parentWidget()) {
            const QRect area = whole(one);
            rect &= area;
        }
        return rect;
    };
    const auto name = [](const QWidget *widget) {
        const QString text = widget->property("text").toString();
        return QLatin1String(widget->metaObject()->className()) + QLatin1Char(' ')
               + (widget->accessibleName().isEmpty() ? text : widget->accessibleName());
    };
    QWidgetList chain;
    for (QWidget *one = inside->nextInFocusChain(); one && one != inside;
         one = one->nextInFocusChain()) {
        const bool takesTab = (one->focusPolicy() & Qt::TabFocus) == Qt::TabFocus;
        if (inside->isAncestorOf(one) && takesTab && one->isVisibleTo(inside) && !one->focusProxy()
            && !place(one).isEmpty())
            chain.append(one);
    }
    QStringList found;
    for (int i = 1; i < chain.size(); ++i) {
        const QRect a = place(chain.at(i - 1));
        const QRect b = place(chain.at(i));
        const bool isUp = b.bottom() < a.top() && b.left() < a.right();
        const bool isBack = b.right() < a.left() && b.bottom() > a.top() && b.top() < a.bottom();
        if (isUp || isBack)
            found.append(name(chain.at(i - 1)) + QStringLiteral(" before ") + name(chain.at(i)));
    }
    return found;
}
