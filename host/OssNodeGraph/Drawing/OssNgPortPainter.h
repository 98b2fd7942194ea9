#pragma once

#include "OssNodeGraph/Drawing/OssNgPortKind.h"

#include <QPointF>

class QPainter;

/// Paints a port with its kind's shape. `hollow` shows the outline alone, `lit` lights it up as
/// the target of what the pointer holds.
void OssNgPaintPort(QPainter *painter, const QPointF &center, OssNgPortKind kind, bool hollow,
                    bool lit);
