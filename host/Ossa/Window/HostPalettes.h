#pragma once

/// The palettes that are the application's own: the undo history and the log.
namespace HostPalettes {

/// Gives them to OssPaletteManager. Once per process.
void registerAll();

} // namespace HostPalettes
