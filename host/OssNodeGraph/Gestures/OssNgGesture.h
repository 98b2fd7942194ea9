#pragma once

#include <QPointF>
#include <Qt>

class OssNgGestureHost;
class QMouseEvent;
class QPainter;

/// What the pointer does from a press to its release. Made and owned by the view, its host, which
/// has at most one in hand, and one more that moves the view under it.
class OssNgGesture
{
public:
    OssNgGesture(OssNgGestureHost *host, Qt::MouseButton button)
        : m_host(host)
        , m_button(button)
    {
    }

    OssNgGesture(const OssNgGesture &) = delete;
    OssNgGesture &operator=(const OssNgGesture &) = delete;
    virtual ~OssNgGesture() = default;

    Qt::MouseButton button() const { return m_button; }

    /// The view's OssNgGestureHost::InteractionState while this is in hand.
    virtual int state() const = 0;

    /// Once, after the view took it over.
    virtual void enter() {}

    /// Also called for a resting pointer when the view moved under it.
    virtual void move(QMouseEvent *event) = 0;
    virtual void release(QMouseEvent *event) = 0;

    /// Puts everything back; release() is not called then.
    virtual void cancel() {}

    /// Whether something else that begins meanwhile finds this done as if it were let go, and not put
    /// back.
    virtual bool finishesWhenInterrupted() const { return false; }

    /// False when someone else ended it, as a wire whose mouse grab was taken away.
    virtual bool isAlive() const { return true; }

    /// Whether the view goes on under a pointer that is held at its border.
    virtual bool pansAtBorders() const { return false; }

    /// Feedback on top of everything. Viewport pixels.
    virtual void paint(QPainter *) const {}

protected:
    OssNgGestureHost *host() const { return m_host; }

private:
    OssNgGestureHost *m_host;
    Qt::MouseButton m_button;
};
