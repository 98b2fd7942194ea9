#include "TestPlugin.h"

/// Cannot start.
class RefusingPlugin : public TestPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID OssPluginInterface_iid)
    Q_INTERFACES(OssPluginInterface)

public:
    bool initialize() override { return false; }
};

#include "RefusingPlugin.moc"
