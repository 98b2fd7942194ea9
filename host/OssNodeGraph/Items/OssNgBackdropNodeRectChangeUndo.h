#pragma once

#include "OssCore/Undo/OssUndoStep.h"
#include "OssNodeGraph/OssNodeGraph_export.h"

#include <QPointer>
#include <QRectF>

class OssNgBackdropNode;

/// A backdrop was resized: from what saveBoundingRect() remembered to what it is now. Its place is
/// another step. Without effect once the backdrop is gone.
class OSSNODEGRAPH_EXPORT OssNgBackdropNodeRectChangeUndo : public OssUndoStep
{
public:
    explicit OssNgBackdropNodeRectChangeUndo(OssNgBackdropNode *node);

    void undo() override;
    void redo() override;
    /// What the item stands for.
    QList<QObject *> subjects() const override;

private:
    void apply(const QRectF &rect);

    QPointer<OssNgBackdropNode> m_node;
    QRectF m_oldRect;
    QRectF m_newRect;
};
