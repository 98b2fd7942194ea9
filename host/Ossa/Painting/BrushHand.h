#pragma once

#include <QPointF>

class QTabletEvent;

/// The hand that leads a brush: how hard it presses, and how steady it is. Places in pixels.
class BrushHand
{
public:
    /// A pen's event; those of the mouse that follow have its pressure.
    void note(const QTabletEvent &event);

    double pressure() const { return m_pressure; }

    /// Puts the brush down.
    QPointF begin(const QPointF &pointer);
    /// Where the brush is when it hangs at the pointer by a string of that length.
    QPointF follow(const QPointF &pointer, double string);

private:
    double m_pressure = 1.0;
    QPointF m_brush;
};
