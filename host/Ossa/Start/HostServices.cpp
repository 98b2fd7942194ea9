#include "Ossa/Start/HostServices.h"

#include "Ossa/Plugins/PluginLoader.h"
#include "OssCore/Program/OssResourceInfo.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Project/OssNodeTypeWatch.h"
#include "OssModel/Project/OssProjectManager.h"

HostServices::~HostServices()
{
    m_scriptEngine.shutdown();
    OssProjectManager::instance()->closeProject();
}

void HostServices::start(PluginLoader *plugins)
{
    const QStringList types = OssResourceInfo::instance()->nodeTypePaths();
    for (const QString &folder : types)
        OssShaderNetworkManager::instance()->loadNodeTypes(folder);
    OssNodeTypeWatch::instance()->start();
    plugins->load(OssResourceInfo::instance()->pluginPath(), OssResourceInfo::extensionPaths());
}
