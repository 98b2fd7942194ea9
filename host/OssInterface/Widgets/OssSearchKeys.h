#pragma once

#include "OssInterface/OssInterface_export.h"

#include <functional>

class QAbstractItemView;
class QEvent;
class QModelIndex;
class QWidget;

/// Keys of a search field above a list.
namespace OssSearchKeys {

/// For the field's event filter: Up, Down and the page keys go to the list, so that the cursor stays
/// in the field. True when the event was one of those.
OSSINTERFACE_EXPORT bool passOn(QEvent *event, QWidget *list);
/// The same, and Return and Enter choose the list's current row.
OSSINTERFACE_EXPORT bool passOn(QEvent *event, QAbstractItemView *list,
                                const std::function<void(const QModelIndex &row)> &choose);

} // namespace OssSearchKeys
