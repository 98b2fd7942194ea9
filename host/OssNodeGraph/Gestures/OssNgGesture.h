#pragma once

#include <QPointF>
#include <Qt>

class OssNgView;
class QMouseEvent;
class QPainter;

/// What the pointer does from a press to its release. Made by OssNgView, which holds at most one.
class OssNgGesture
{
public:
    OssNgGesture(OssNgView *view, Qt::MouseButton button)
        : m_view(view)
        , m_button(button)
    {
    }

    OssNgGesture(const OssNgGesture &) = delete;
    OssNgGesture &operator=(const OssNgGesture &) = delete;
    virtual ~OssNgGesture() = default;

    Qt::MouseButton button() const { return m_button; }

    /// OssNgView's interaction state while this is in hand.
    virtual int state() const = 0;

    /// Once, after the view took it over.
    virtual void enter() {}

    /// Also called for a resting pointer when the view moved under it.
    virtual void move(QMouseEvent *event) = 0;
    virtual void release(QMouseEvent *event) = 0;

    /// Puts everything back; release() is not called then.
    virtual void cancel() {}

    /// False when someone else ended it, as a wire whose mouse grab was taken away.
    virtual bool isAlive() const { return true; }

    /// Whether the view goes on under a pointer that is held at its border.
    virtual bool pansAtBorders() const { return false; }

    /// Feedback on top of everything. Viewport pixels.
    virtual void paint(QPainter *) const {}

protected:
    OssNgView *view() const { return m_view; }

private:
    OssNgView *m_view;
    Qt::MouseButton m_button;
};
