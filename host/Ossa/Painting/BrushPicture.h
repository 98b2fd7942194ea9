#pragma once

#include "Ossa/Painting/Brushes.h"

#include <QImage>

/// A stroke with a brush, as a picture of it.
namespace BrushPicture {

/// Light on nothing; of so many pixels. A null picture when there is no memory.
QImage make(const Brush &brush, const QSize &size);

} // namespace BrushPicture
