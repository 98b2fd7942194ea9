#include "TestPlugin.h"

/// Wants to start before the others, though its file name comes last.
class EarlyPlugin : public TestPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID OssPluginInterface_iid)
    Q_INTERFACES(OssPluginInterface)

public:
    int initializePriority() override { return -5; }
};

#include "EarlyPlugin.moc"
