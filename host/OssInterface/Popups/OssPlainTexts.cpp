#include "OssInterface/Popups/OssPlainTexts.h"

#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QHelpEvent>
#include <QLabel>
#include <QMenu>
#include <QTabBar>
#include <QTextDocument>
#include <QToolTip>

#include <algorithm>

namespace {

/// What Qt would show there; empty when nothing.
QString tipAt(QWidget *widget, const QPoint &position)
{
    auto *view = qobject_cast<QAbstractItemView *>(widget->parentWidget());
    if (view && view->viewport() == widget)
        return view->indexAt(position).data(Qt::ToolTipRole).toString();
    if (const auto *menu = qobject_cast<QMenu *>(widget)) {
        const QAction *action = menu->toolTipsVisible() ? menu->actionAt(position) : nullptr;
        return action ? action->toolTip() : QString();
    }
    if (const auto *tabs = qobject_cast<QTabBar *>(widget)) {
        const int tab = tabs->tabAt(position);
        if (tab >= 0 && !tabs->tabToolTip(tab).isEmpty())
            return tabs->tabToolTip(tab);
    }
    return widget->toolTip();
}

/// Lines that go across half of a screen; only what is markup gets broken by Qt.
bool hasLongLine(const QString &tip)
{
    constexpr int Longest = 80; // characters
    const QVector<QStringRef> lines = tip.splitRef(QLatin1Char('\n'));
    return std::any_of(lines.cbegin(), lines.cend(),
                       [](const QStringRef &line) { return line.size() > Longest; });
}

} // namespace

OssPlainTexts::OssPlainTexts()
{
    qApp->installEventFilter(this);
}

bool OssPlainTexts::isMarkup(const QString &text)
{
    return text.startsWith(QLatin1String("<html>")) && text.endsWith(QLatin1String("</html>"));
}

bool OssPlainTexts::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Polish) {
        auto *label = qobject_cast<QLabel *>(watched);
        // The label of tool tips is asked to show both.
        if (label && label->textFormat() == Qt::AutoText && !label->inherits("QTipLabel"))
            label->setTextFormat(Qt::PlainText);
    } else if (event->type() == QEvent::ToolTip && watched->isWidgetType()) {
        return showPlainTip(static_cast<QWidget *>(watched), *static_cast<QHelpEvent *>(event));
    }
    return false;
}

bool OssPlainTexts::showPlainTip(QWidget *widget, const QHelpEvent &help)
{
    const QString tip = tipAt(widget, help.pos());
    if (isMarkup(tip) || (!Qt::mightBeRichText(tip) && !hasLongLine(tip)))
        return false; // shown as it is by whoever has it
    QString text = tip.toHtmlEscaped();
    text.replace(QLatin1Char('\n'), QLatin1String("<br>"));
    QToolTip::showText(help.globalPos(), QStringLiteral("<html>%1</html>").arg(text), widget);
    return true;
}
