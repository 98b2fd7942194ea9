#include "OssNodeGraph/Items/OssNgBackdropNodeRectChangeUndo.h"

#include "OssNodeGraph/Items/OssNgBackdropNode.h"

OssNgBackdropNodeRectChangeUndo::OssNgBackdropNodeRectChangeUndo(OssNgBackdropNode *node)
    : OssUndoStep(QStringLiteral("Resize backdrop"))
    , m_node(node)
    , m_oldRect(node ? node->savedBoundingRect() : QRectF())
    , m_newRect(node ? node->rect() : QRectF())
{
}

void OssNgBackdropNodeRectChangeUndo::undo()
{
    apply(m_oldRect);
}

void OssNgBackdropNodeRectChangeUndo::redo()
{
    apply(m_newRect);
}

QList<QObject *> OssNgBackdropNodeRectChangeUndo::subjects() const
{
    QObject *node = m_node ? m_node->businessNode() : nullptr;
    return node ? QList<QObject *>{node} : QList<QObject *>();
}

void OssNgBackdropNodeRectChangeUndo::apply(const QRectF &rect)
{
    if (m_node)
        m_node->setRect(rect);
}
