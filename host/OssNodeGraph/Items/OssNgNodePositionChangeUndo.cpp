#include "OssNodeGraph/Items/OssNgNodePositionChangeUndo.h"

#include "OssNodeGraph/Items/OssNgNode.h"

OssNgNodePositionChangeUndo::OssNgNodePositionChangeUndo(OssNgNode *node)
    : OssNgNodePositionChangeUndo(node, node ? node->savedPosition() : QPointF(),
                                  node ? node->pos() : QPointF())
{
}

OssNgNodePositionChangeUndo::OssNgNodePositionChangeUndo(OssNgNode *node,
                                                         const QPointF &oldPosition,
                                                         const QPointF &newPosition)
    : OssUndoStep(QStringLiteral("Move node"))
    , m_node(node)
    , m_oldPosition(oldPosition)
    , m_newPosition(newPosition)
{
}

void OssNgNodePositionChangeUndo::undo()
{
    moveTo(m_oldPosition);
}

void OssNgNodePositionChangeUndo::redo()
{
    moveTo(m_newPosition);
}

QList<QObject *> OssNgNodePositionChangeUndo::subjects() const
{
    QObject *node = m_node ? m_node->businessNode() : nullptr;
    return node ? QList<QObject *>{node} : QList<QObject *>();
}

bool OssNgNodePositionChangeUndo::mergeWith(const OssUndoStep &later)
{
    const auto *move = dynamic_cast<const OssNgNodePositionChangeUndo *>(&later);
    if (!move || move->m_node != m_node)
        return false;
    m_newPosition = move->m_newPosition;
    return true;
}

void OssNgNodePositionChangeUndo::moveTo(const QPointF &position)
{
    if (!m_node)
        return;
    m_node->setPosition(position);
    Q_EMIT m_node->posChanged(position);
}
