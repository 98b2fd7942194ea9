#pragma once

#include "OssNodeGraph/Items/OssNgNode.h"

/// A point through which a wire is led: a small disc in the colour of what flows through it.
class OSSNODEGRAPH_EXPORT OssNgDotNode : public OssNgNode
{
    Q_OBJECT

public:
    enum { Type = UserType + 12 };

    OssNgDotNode();

    int type() const override { return Type; }

    QPainterPath shape() const override;
    bool contains(const QPointF &point) const override;
    bool hitTest(const QPointF &local) const override;
    void paintDetailed(QPainter *painter) const override;
    void paintSimple(QPainter *painter) const override;

protected:
    QSizeF layoutBody() override;
};
