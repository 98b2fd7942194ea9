#pragma once

#include "OssModel/OssModel_export.h"

#include <QList>
#include <QString>

/// UDIM patches as a user writes them.
namespace OssPatchList {

/// Patches of a text like "1001-1004,1011", ascending; empty when it makes no sense.
OSSMODEL_EXPORT QList<int> fromText(const QString &text);
/// The shortest text for patches in ascending order.
OSSMODEL_EXPORT QString toText(const QList<int> &patches);

} // namespace OssPatchList
