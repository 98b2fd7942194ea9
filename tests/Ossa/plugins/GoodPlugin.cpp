#include "TestPlugin.h"

/// A plug-in with a slot that wants a command.
class GoodPlugin : public TestPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID OssPluginInterface_iid)
    Q_INTERFACES(OssPluginInterface)

private Q_SLOTS:

    void dumpSelectedNodeInfo() { setProperty("dumps", property("dumps").toInt() + 1); }
};

#include "GoodPlugin.moc"
