#pragma once

#include "OssCore/Program/OssService.h"
#include "OssCore/Values/OssColor.h"
#include "OssEvaluation/Paint/OssEvBrush.h"

#include <QObject>
#include <QPointF>
#include <QSizeF>
#include <QTransform>

#include <optional>

/// A brush as it is kept: what strokes are painted with, and how it is led.
struct Brush
{
    OssEvBrush paint;
    double steadiness = 0.0; ///< pixels that the pointer leads it by
};

/// A sheet that stays on the screen: a stencil to paint through, or a picture to paint with. In pixels.
struct PaintSheet
{
    QPointF place;       ///< of its middle, from that of the view
    double half = 160.0; ///< half as wide as it is
    double angle = 0.0;  ///< in degrees, with the clock

    static constexpr double smallest = 8.0;
    static constexpr double largest = 8192.0;

    /// From a view of that size to the sheet, of which it makes -1 to 1.
    QTransform fromView(const QSizeF &view) const;
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
    /// As it was kept; the colours stay, and an eraser stays one. So do the object's mirrors, unless the brush has
    /// mirrors itself.
    void take(const Brush &brush);
    /// Changes it.
    void edit(const Brush &brush);

    /// Within its limits.
    void scale(double factor);
    void harden(double by);
    void setTool(OssEvBrush::Tool tool);
    /// To a tool, or from it to the brush.
    void toggleTool(OssEvBrush::Tool tool);
    void toggleMirror(int axis);
    /// None: nothing changes. Who takes a colour wants to paint.
    void takeColor(const std::optional<OssColor> &color);

    /// Whether something of the brush lies on the sheet.
    bool hasSheet() const;

    const PaintSheet &sheet() const { return m_sheet; }

    void setSheet(const PaintSheet &sheet);

Q_SIGNALS:
    void changed();

private:
    Brush m_brush;
    PaintSheet m_sheet;
};
