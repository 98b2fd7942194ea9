#pragma once

#include "OssInterface/OssInterfaceServices.h"
#include "OssScriptObjects/OssScriptManager.h"

/// The services for scripts and those below them, in the order in which they need each other.
class OSSSCRIPTOBJECTS_EXPORT OssScriptServices
{
public:
    OssScriptServices();
    ~OssScriptServices();
    OssScriptServices(const OssScriptServices &) = delete;
    OssScriptServices &operator=(const OssScriptServices &) = delete;

private:
    OssInterfaceServices m_interface;
    OssScriptManager m_scripts;
};
