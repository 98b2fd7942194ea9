#pragma once

#include "OssCore/Program/OssService.h"
#include "OssCore/Values/OssColor.h"
#include "OssEvaluation/Paint/OssEvBrush.h"

#include <QObject>

#include <optional>

/// A brush as it is kept: what strokes are painted with, and how it is led.
struct Brush
{
    OssEvBrush paint;
    double steadiness = 0.0; ///< pixels that the pointer leads it by
};

/// The brush that the user paints with, in all views. GUI thread.
class Brushes
    : public QObject
    , public OssService<Brushes>
{
    Q_OBJECT

public:
    /// In texels or pixels.
    static constexpr double smallestRadius = 0.5;
    static constexpr double largestRadius = 2048.0;

    const OssEvBrush &brush() const { return m_brush.paint; }

    double steadiness() const { return m_brush.steadiness; }

    const Brush &current() const { return m_brush; }

    void setBrush(const OssEvBrush &brush);
    /// As it was kept; the colour stays, and whether it erases.
    void take(const Brush &brush);

    /// Within its limits.
    void scale(double factor);
    void harden(double by);
    void setErasing(bool erases);
    void toggleMirror(int axis);
    /// None: nothing changes. Who takes a colour wants to paint.
    void takeColor(const std::optional<OssColor> &color);

Q_SIGNALS:
    void changed();

private:
    Brush m_brush;
};
