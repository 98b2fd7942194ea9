#pragma once

#include "OssInterface/OssInterface_export.h"

class QWidget;

/// Tab goes as one reads.
namespace OssTabOrder {

/// Puts what takes the keyboard inside a widget in the order in which its layouts, and theirs, have it;
/// otherwise it is that in which the widgets were made. For when all are there; palettes do it with their
/// bodies.
OSSINTERFACE_EXPORT void followLayout(QWidget *widget);

} // namespace OssTabOrder
