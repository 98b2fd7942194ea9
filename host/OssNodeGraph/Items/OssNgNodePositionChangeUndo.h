#pragma once

#include "OssCore/Undo/OssUndoStep.h"
#include "OssNodeGraph/OssNodeGraph_export.h"

#include <QPointer>
#include <QPointF>

class OssNgNode;

/// A node was moved. Moves that node only, also when it is a backdrop, and announces it. Without
/// effect once the node is gone.
class OSSNODEGRAPH_EXPORT OssNgNodePositionChangeUndo : public OssUndoStep
{
public:
    /// From where savePosition() was called to where the node is now.
    explicit OssNgNodePositionChangeUndo(OssNgNode *node);
    OssNgNodePositionChangeUndo(OssNgNode *node, const QPointF &oldPosition,
                                const QPointF &newPosition);

    void undo() override;
    void redo() override;
    /// What the item stands for.
    QList<QObject *> subjects() const override;
    bool mergeWith(const OssUndoStep &later) override;

private:
    void moveTo(const QPointF &position);

    QPointer<OssNgNode> m_node;
    QPointF m_oldPosition;
    QPointF m_newPosition;
};
