#include "Ossa/HostStart.h"

#include "Ossa/PluginLoader.h"
#include "OssCore/OssDebug.h"
#include "OssCore/OssPreferenceManager.h"
#include "OssCore/OssResourceInfo.h"
#include "OssCore/OssStatusManager.h"
#include "OssCore/OssUndoManager.h"
#include "OssCoreModules/Evaluation/OssEvaluationService.h"
#include "OssCoreModules/Interface/OssActionTreeManager.h"
#include "OssCoreModules/Interface/OssMenuManager.h"
#include "OssCoreModules/Interface/OssPaletteManager.h"
#include "OssCoreModules/Interface/OssShortcutManager.h"
#include "OssCoreModules/Network/OssShaderNetworkManager.h"
#include "OssCoreModules/Project/OssProjectManager.h"
#include "OssCoreModules/Script/OssScriptManager.h"
#include "OssScripting/OssScriptEngine.h"

void HostStart::start(PluginLoader *plugins)
{
    OssDebugLog::instance();
    OssStatusManager::instance();
    OssUndoManager::instance();
    OssPreferenceManager::instance();
    OssActionTreeManager::instance();
    OssShortcutManager::instance();
    OssMenuManager::instance();
    OssPaletteManager::instance();
    OssScriptManager::instance();
    OssProjectManager::instance();
    OssShaderNetworkManager::instance()->loadNodeTypes(OssResourceInfo::instance()->nodeTypePath());
    plugins->load(OssResourceInfo::instance()->pluginPath());
}

void HostStart::shutdown()
{
    OssScriptEngine::instance()->shutdown();
    OssProjectManager::instance()->closeProject();
    OssShortcutManager::instance()->shutdown();
    OssPaletteManager::instance()->shutdown();
    OssActionTreeManager::instance()->shutdown();
    OssEvaluationService::instance()->shutdown();
}
