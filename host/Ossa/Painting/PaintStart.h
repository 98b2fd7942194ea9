#pragma once

#include <QPointF>
#include <QTransform>

#include <optional>

/// How a stroke begins.
struct PaintStart
{
    PaintStart(const QPointF &at, double presses = 1.0) // NOLINT: a place is a beginning
        : place(at)
        , pressure(presses)
    {
    }

    QPointF place; ///< in patches, v upwards, or as the view of an object has it
    double pressure;
    double pixel = 1.0; ///< texels that a pixel of the screen takes, where patches lie flat
    /// From lengths of the stroke's path, v upwards, to the sheet on the screen.
    QTransform toSheet{};
    /// In lengths of the path: from each place to the one whose colours are cloned.
    std::optional<QPointF> cloneFrom{};
};
