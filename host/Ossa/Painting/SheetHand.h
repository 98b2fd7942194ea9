#pragma once

#include <QPointF>
#include <QSize>

class QMouseEvent;
class QPainter;
class QWheelEvent;

/// The hand that moves the sheet on the screen: with Ctrl and Shift held the left button moves it, the right
/// one turns it and the wheel makes it larger or smaller. Places in pixels of the view.
class SheetHand
{
public:
    /// Whether the event is for the sheet.
    bool press(const QMouseEvent &event);
    bool move(const QMouseEvent &event, const QSize &view);

    void release() { m_does = Nothing; }

    static bool wheel(const QWheelEvent &event);

    /// Draws it over a view, where there is one.
    static void draw(QPainter *painter, const QSize &view);

private:
    enum Does { Nothing, Moves, Turns };

    Does m_does = Nothing;
    QPointF m_last;
};
