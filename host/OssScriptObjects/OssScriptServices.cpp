#include "OssScriptObjects/OssScriptServices.h"

#include "OssModel/Project/OssProjectManager.h"

OssScriptServices::OssScriptServices() = default;

OssScriptServices::~OssScriptServices()
{
    OssProjectManager::instance()->closeProject(); // while there is what follows its objects
}
