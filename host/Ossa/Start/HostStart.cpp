#include "Ossa/Start/HostStart.h"

#include "Ossa/Plugins/PluginLoader.h"
#include "OssCore/OssDebug.h"
#include "OssCore/OssPreferenceManager.h"
#include "OssCore/OssResourceInfo.h"
#include "OssCore/OssStatusManager.h"
#include "OssCore/OssUndoManager.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssInterface/Actions/OssMenuManager.h"
#include "OssInterface/Actions/OssShortcutManager.h"
#include "OssInterface/Palettes/OssPaletteManager.h"
#include "OssInterface/Popups/OssWorkDialog.h"
#include "OssModel/Evaluation/OssEvaluationService.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/OssModelServices.h"
#include "OssModel/Project/OssProjectManager.h"
#include "OssScripting/OssScriptEngine.h"
#include "OssScriptObjects/OssScriptManager.h"

void HostStart::start(PluginLoader *plugins)
{
    OssDebugLog::instance();
    static const OssModelServices model;
    static const OssWorkDialog workDialog;
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
