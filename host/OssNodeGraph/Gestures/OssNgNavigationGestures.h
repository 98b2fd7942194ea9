#pragma once

#include "OssNodeGraph/Gestures/OssNgGesture.h"

/// The canvas sticks to the pointer.
class OssNgPanGesture final : public OssNgGesture
{
public:
    OssNgPanGesture(OssNgGestureHost *host, Qt::MouseButton button, const QPointF &start);

    int state() const override;
    void enter() override;
    void move(QMouseEvent *event) override;
    void release(QMouseEvent *event) override;

private:
    QPointF m_last;
};

/// Right and up zoom in, left and down zoom out, about the pressed point.
class OssNgZoomGesture final : public OssNgGesture
{
public:
    OssNgZoomGesture(OssNgGestureHost *host, Qt::MouseButton button, const QPointF &start);

    int state() const override;
    void move(QMouseEvent *event) override;

    void release(QMouseEvent *) override {}

private:
    QPointF m_start;
    QPointF m_anchor;
    qreal m_startZoom;
};

/// Moves the view to where the pointer is in the minimap.
class OssNgMinimapGesture final : public OssNgGesture
{
public:
    OssNgMinimapGesture(OssNgGestureHost *host, Qt::MouseButton button, const QPointF &start);

    int state() const override;
    void enter() override;
    void move(QMouseEvent *event) override;

    void release(QMouseEvent *) override {}

private:
    QPointF m_start;
};
