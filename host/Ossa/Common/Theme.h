#pragma once

#include <QColor>
#include <QSize>

/// The look of the application: dark, calm, one accent colour. Every colour and style rule of the
/// window stands in the source file; the node graph's own are with the graph.
namespace Theme {

/// Sets style, palette, font and style sheet of the application object.
void apply();

/// A first size for a window, made smaller where it would not fit on the screen.
QSize fitting(const QSize &size);

QColor mutedText();
QColor warningText();

} // namespace Theme
