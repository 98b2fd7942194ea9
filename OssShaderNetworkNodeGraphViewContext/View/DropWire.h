#pragma once

#include <QPointer>
#include <QString>

class OssNgEdge;
class OssNgNode;
class OssShaderNetworkView;
class QMimeData;
class QPoint;
class QPointF;

/// The wire into which the type of node that is dragged over a view would go, lit while it is held there.
class DropWire
{
public:
    /// Lights the wire at the point (viewport) if one type is dragged of which a node fits in there and the view
    /// inserts, and puts out another.
    void show(const OssShaderNetworkView *view, const QMimeData *data, const QPoint &position);
    void hide();
    /// Null when none is lit, and when it has gone.
    OssNgEdge *wire() const;
    /// Puts a new node to the place (scene) and into the wire.
    void takeIn(OssNgNode *node, const QPointF &place) const;

private:
    QPointer<OssNgNode> m_destination;
    QString m_input;
};
