#pragma once

class PluginLoader;

namespace PluginActions {

/// Files commands for slots that plug-ins offer without a command of their own, so that menus,
/// keys and scripts reach them.
void fileUnfiled(const PluginLoader &plugins);

} // namespace PluginActions
