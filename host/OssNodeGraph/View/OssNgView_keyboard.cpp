#include "OssNodeGraph/View/OssNgView.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssNodeGraph/Drawing/OssNgStyle.h"
#include "OssNodeGraph/Items/OssNgMovedNodes.h"
#include "OssNodeGraph/Items/OssNgNode.h"
#include "OssNodeGraph/Items/OssNgNodePositionChangeUndo.h"

#include <QContextMenuEvent>
#include <QCoreApplication>
#include <QKeyEvent>

namespace {

/// Null for other keys.
QPointF arrowDirection(int key)
{
    switch (key) {
    case Qt::Key_Left:
        return {-1.0, 0.0};
    case Qt::Key_Right:
        return {1.0, 0.0};
    case Qt::Key_Up:
        return {0.0, -1.0};
    case Qt::Key_Down:
        return {0.0, 1.0};
    default:
        return {};
    }
}

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
    const bool used = takesBack ? cancelGesture()
                                : handleNavigationKey(event) || handleNudgeKey(event)
                                      || handleMenuKey(event);
    if (used)
        event->accept();
    else if (!isModifier(event->key()))
        interruptGesture(); // also keys of commands that can do nothing now
}

bool OssNgView::handleNavigationKey(const QKeyEvent *event)
{
    if (event->key() == Qt::Key_Plus) {
        zoomIn();
        return true;
    }
    if (event->key() == Qt::Key_Minus) {
        zoomOut();
        return true;
    }
    const QPointF direction = arrowDirection(event->key());
    const bool plain = !(event->modifiers() & ~Qt::KeypadModifier);
    if (direction.isNull() || !plain)
        return false;
    panByFraction(direction.x(), direction.y());
    return true;
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

bool OssNgView::handleNudgeKey(const QKeyEvent *event)
{
    const QPointF direction = arrowDirection(event->key());
    const Qt::KeyboardModifiers modifiers = event->modifiers() & ~Qt::KeypadModifier;
    const bool fine = modifiers == (Qt::AltModifier | Qt::ShiftModifier);
    if (direction.isNull() || !(fine || modifiers == Qt::AltModifier))
        return false;
    nudgeSelection(direction * (fine ? 1.0 : OssNgStyle::GridStep));
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
