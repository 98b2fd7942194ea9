#pragma once

#include "Ossa/Common/ApplicationPreferences.h"
#include "Ossa/Painting/Brushes.h"
#include "Ossa/Painting/PaintPreferences.h"
#include "OssScripting/OssScriptEngine.h"
#include "OssScriptObjects/OssScriptServices.h"

class PluginLoader;

/// What every way into the program has in common: window, command line, tools. Owns all services of
/// the process in the order in which they need each other; each library names its own and those
/// below it. Made after QApplication and gone before it; it stops scripts and closes the project
/// first.
class HostServices
{
public:
    HostServices() = default;
    ~HostServices();
    HostServices(const HostServices &) = delete;
    HostServices &operator=(const HostServices &) = delete;

    /// Reads the node types and brings the plug-ins to life, which file things with the services.
    void start(PluginLoader *plugins);

private:
    OssScriptServices m_services;
    ApplicationPreferences m_applicationPreferences;
    PaintPreferences m_paintPreferences;
    Brushes m_brushes;
    OssScriptEngine m_scriptEngine;
};
