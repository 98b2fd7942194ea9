#include "Ossa/Plugins/PluginActions.h"

#include "Ossa/Plugins/PluginLoader.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssInterface/Actions/OssCommandTable.h"

#include <QAction>
#include <QMetaMethod>

namespace {

struct Row
{
    const char *name;
    const char *slot;
};

const Row table[] = {
    {"Dump Selected Node Info", "dumpSelectedNodeInfo()"},
    {"Upgrade Selected Node Info", "upgradeSelectedNodeInfo()"},
    {"Upgrade All Node Info", "upgradeAllNodeInfo()"},
};

const QString folder = QStringLiteral("/Ossa/NodeGraph/");

void fileFor(QObject *plugin)
{
    auto *tree = OssActionTreeManager::instance();
    const QMetaMethod triggered = QMetaMethod::fromSignal(&QAction::triggered);
    for (const Row &row : table) {
        const QString path = folder + QString::fromLatin1(row.name);
        const int slot = plugin->metaObject()->indexOfSlot(row.slot);
        if (slot < 0 || tree->hasAction(path))
            continue;
        QAction *action = OssCommandTable::makeAction(path, plugin);
        QObject::connect(action, triggered, plugin, plugin->metaObject()->method(slot));
        tree->registerAction(folder, action);
    }
}

} // namespace

void PluginActions::fileUnfiled(const PluginLoader &plugins)
{
    for (const PluginLoader::Plugin &plugin : plugins.plugins()) {
        if (plugin.object)
            fileFor(plugin.object);
    }
}
