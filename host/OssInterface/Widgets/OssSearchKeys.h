#pragma once

#include "OssInterface/OssInterface_export.h"

class QEvent;
class QWidget;

/// Keys of a search field above a list.
namespace OssSearchKeys {

/// For the field's event filter: Up, Down and the page keys go to the list, so that the cursor stays
/// in the field. True when the event was one of those.
OSSINTERFACE_EXPORT bool passOn(QEvent *event, QWidget *list);

} // namespace OssSearchKeys
