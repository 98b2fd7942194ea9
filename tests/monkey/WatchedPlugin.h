#pragma once

#include <QStringList>

// What the plug-in under the monkey's hands tells about itself, beside what it tells the program.
// Looked up by name, for nothing is linked with a plug-in.

extern "C" {

/// Appends what is wrong now: see DocumentInvariants. The first call begins to watch what is saved.
Q_DECL_EXPORT void watchedPluginBroken(QStringList *broken);

/// Where the viewer stands and what it looks at is saved, but no step: puts it where two documents
/// can be compared.
Q_DECL_EXPORT void watchedPluginSettleViewer();
}
