#pragma once

#include "OssCore/Program/OssPluginInterface.h"
#include "OssNodeGraphActions.h"

#include <QObject>
#include <QString>

class OssShaderNetworkView;

#define OSS_DECLARE_ACTION_SLOT(name, slot, call) void slot();
#define OSS_DECLARE_NO_SLOT(name, slot, call)
#define OSS_DECLARE_NAMED_SLOT(slot, call) void slot();

/// The door of the plug-in: starts everything up, and receives every node-graph action, which it
/// hands to the view the user is working in.
class OssShaderNetworkNodeGraphViewContextPlugin
    : public QObject
    , public OssPluginInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID OssPluginInterface_iid)
    Q_INTERFACES(OssPluginInterface)

public:
    bool initialize() override;
    bool uninitialize() override;
    QString name() override;
    QString description() override;
    QString authorName() override;
    QString legalNotice() override;
    int version() override;

private Q_SLOTS:
    /// One action for each node type that is offered in a menu; those that exist stay.
    void createNodeCreationActions();
    void createNodeFromAction();
    OSS_NODE_GRAPH_ACTIONS(OSS_DECLARE_ACTION_SLOT, OSS_DECLARE_NO_SLOT, OSS_DECLARE_ACTION_SLOT)
    OSS_NODE_GRAPH_NAMED_SLOTS(OSS_DECLARE_NAMED_SLOT)

private:
    void createActions();
    /// The focused view, else the manager's current one.
    OssShaderNetworkView *currentShaderNetworkView();
    /// What the view records is one undo step, with its own title or else with this.
    template <class Call>
    void forward(const QString &title, Call call);
    /// The same for what acts on selected nodes: says that none is where nothing else is said.
    template <class Call>
    void forwardOnNodes(const QString &title, Call call);
};
