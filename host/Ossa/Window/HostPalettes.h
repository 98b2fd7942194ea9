#pragma once

/// The palettes that are the application's own, whatever plug-ins add.
namespace HostPalettes {

/// Gives them to OssPaletteManager. Once per process.
void registerAll();

} // namespace HostPalettes
