#pragma once

#include "OssNodeGraph/Items/OssNgAnnotation.h"

#include <QPointer>
#include <QVector>

/// A titled area behind the nodes that it holds. Dragging it takes along the nodes that lie inside
/// when the drag begins; its edges can be dragged to resize it. Only the title bar and the edges
/// take clicks, so that nodes inside can be reached and rubber bands started.
class OSSNODEGRAPH_EXPORT OssNgBackdropNode : public OssNgAnnotation
{
    Q_OBJECT
    Q_PROPERTY(QRectF rect READ rect WRITE setRect)

public:
    enum { Type = UserType + 14 };

    OssNgBackdropNode();

    /// The area; starts at (0, 0) in all callers' use, a moved corner moves the node instead.
    QRectF rect() const { return {QPointF(), m_rectSize}; }

    /// Local. A top-left other than the origin moves the node by it.
    void setRect(const QRectF &rect);

    /// Remembers rect() for the next OssNgBackdropNodeRectChangeUndo.
    void saveBoundingRect() { m_savedRect = rect(); }

    QRectF savedBoundingRect() const { return m_savedRect; }

    qreal titleBarHeight() const;

    static QSizeF minimumSize() { return {80.0, 56.0}; }

    /// Nodes, other backdrops included, that lie inside now. This one is not among them.
    QList<OssNgNode *> nodesInside() const;

    /// What nodesInside() gave at the last refreshChildrenList(); dead ones are null.
    const QVector<QPointer<OssNgNode>> &childrenList() const { return m_children; }

    void refreshChildrenList();

    /// The innermost backdrop on which the middle of the node lies: what is let go there becomes its.
    /// One takes no other that is not smaller than itself. Null where there is none.
    static OssNgBackdropNode *under(const OssNgNode *node);

    /// Shows that it takes what is in the hand if that is let go now.
    void setInviting(bool inviting);

    bool isInviting() const { return m_inviting; }

    /// Order among backdrops. Announces nothing.
    void setZOrder(int order);

    int zOrder() const { return m_zOrder; }

    /// As the user's command: announced.
    void changeZOrder(int order);
    /// Place and size so that the title bar and a margin surround the scene rectangle.
    void wrapAroundSelection(const QRectF &sceneBounds);

    Q_INVOKABLE void setTitleText(const QString &title);

    const QString &titleText() const { return m_title; }

    /// The edges that a press at the point (node coordinates) would drag.
    Qt::Edges resizeEdgesAt(const QPointF &local) const;

    int type() const override { return Type; }

    QPainterPath shape() const override;
    bool contains(const QPointF &point) const override;
    bool hitTest(const QPointF &local) const override;
    void paintDetailed(QPainter *painter) const override;
    void paintSimple(QPainter *painter) const override;

    bool isBackground() const override { return true; }

    void copyStateFrom(const OssNgNode *other) override;

Q_SIGNALS:
    /// The user changed the order.
    void zOrderChanged(int order);

protected:
    QSizeF layoutBody() override;
    QColor usualBackground() const override;

private:
    QString m_title;
    QSizeF m_rectSize;
    QRectF m_savedRect;
    QVector<QPointer<OssNgNode>> m_children;
    int m_zOrder = 0;
    bool m_inviting = false;
};
