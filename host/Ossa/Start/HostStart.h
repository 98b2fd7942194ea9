#pragma once

class PluginLoader;

/// What every way into the program has in common: window, command line, tools.
namespace HostStart {

/// Makes the managers that plug-ins file things with, so that they outlive them, reads the node
/// types and brings the plug-ins to life. Needs QApplication.
void start(PluginLoader *plugins);

/// Closes the project and takes down widgets, keys and actions while there is an application; what
/// lives longer finds nothing of them.
void shutdown();

} // namespace HostStart
