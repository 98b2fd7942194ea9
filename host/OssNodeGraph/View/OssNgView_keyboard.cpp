#include "OssNodeGraph/View/OssNgView.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssNodeGraph/Items/OssNgMovedNodes.h"
#include "OssNodeGraph/Items/OssNgNode.h"
#include "OssNodeGraph/Items/OssNgNodePositionChangeUndo.h"

#include <QContextMenuEvent>
#include <QCoreApplication>
#include <QKeyEvent>

namespace {

bool isModifier(int key)
{
    return (key >= Qt::Key_Shift && key <= Qt::Key_ScrollLock) || key == Qt::Key_AltGr;
}

} // namespace

void OssNgView::keyPressEvent(QKeyEvent *event)
{
    // The command that undoes may be disabled: there may be no step yet.
    const bool takesBack = event->key() == Qt::Key_Escape
                           || (hasGesture() && event->matches(QKeySequence::Undo));
    const bool used = takesBack ? cancelGesture() || endSeverMode() : handleMenuKey(event);
    if (used)
        event->accept();
    else if (!isModifier(event->key()))
        interruptGesture(); // also keys of commands that can do nothing now
}

bool OssNgView::handleMenuKey(const QKeyEvent *event)
{
    // Qt knows the menu key, and this one only where the platform does.
    if (event->key() != Qt::Key_F10 || event->modifiers() != Qt::ShiftModifier)
        return false;
    const QPoint centre = viewport()->rect().center();
    QContextMenuEvent menu(QContextMenuEvent::Keyboard, centre, viewport()->mapToGlobal(centre));
    QCoreApplication::sendEvent(viewport(), &menu);
    return true;
}

void OssNgView::nudgeSelection(const QPointF &offset)
{
    if (!scene() || m_gesture || offset.isNull())
        return;
    const QVector<OssNgNode *> nodes = nodesMovedWithSelection(scene());
    if (nodes.isEmpty())
        return;
    // The same nodes again: only then do the steps of a held key pair off.
    QString key = QStringLiteral("nudge");
    for (const OssNgNode *node : nodes)
        key += QLatin1Char(' ') + QString::number(quintptr(node), 16);
    const OssUndoManager::AutoMacro macro(QStringLiteral("Nudge nodes"), key);
    for (OssNgNode *node : nodes) {
        const QPointF start = node->pos();
        node->setPosition(start + offset);
        OssUndoManager::instance()->addUndo(
            std::make_unique<OssNgNodePositionChangeUndo>(node, start, node->pos()));
        Q_EMIT node->posChanged(node->pos());
    }
}
