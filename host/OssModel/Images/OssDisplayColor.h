#pragma once

#include "OssCore/Values/OssColor.h"
#include "OssModel/OssModel_export.h"

#include <QColor>

/// Scene-linear colours (ITU-R BT.709 primaries) and what a screen is sent for them (sRGB, IEC
/// 61966-2-1). Any thread.
namespace OssDisplayColor {

/// Channels beyond what a screen shows are cut off.
OSSMODEL_EXPORT QColor ofLinear(const OssColor &color);
OSSMODEL_EXPORT OssColor toLinear(const QColor &shown);

} // namespace OssDisplayColor
