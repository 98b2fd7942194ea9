#pragma once

#include <qtadvanceddocking/ads_globals.h>

#include <vector>

/// The palettes that the program knows: its own and, for their places, those that plug-ins bring.
namespace HostPalettes {

/// Where a palette stands in the default layout.
struct Place
{
    const char *helpKey = "";
    ads::DockWidgetArea area = ads::CenterDockWidgetArea;
    const char *besideHelpKey = nullptr; ///< null: beside everything
};

/// In order: later ones stand beside earlier ones. The first is the graph's.
const std::vector<Place> &places();

/// Gives the program's own to OssPaletteManager. Once per process.
void registerAll();

} // namespace HostPalettes
