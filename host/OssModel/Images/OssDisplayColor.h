#pragma once

#include "OssCore/Values/OssColor.h"
#include "OssModel/OssModel_export.h"

#include <QColor>

/// Colours of the working space (OssColorManagement) and what a screen is sent for them. Any thread.
namespace OssDisplayColor {

/// Channels beyond what a screen shows are cut off.
OSSMODEL_EXPORT QColor ofLinear(const OssColor &color);
OSSMODEL_EXPORT OssColor toLinear(const QColor &shown);

} // namespace OssDisplayColor
