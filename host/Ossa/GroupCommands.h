#pragma once

class QObject;

namespace GroupCommands {

/// Files the commands for a selected group node that the group's own view context carries out but
/// offers nowhere. The owner owns them.
void file(QObject *owner);

} // namespace GroupCommands
