#pragma once

#include <QObject>

class OssShaderNetwork;
class OssShaderNetworkManager;
class OssSnGroupNode;

/// The application's own commands on groups, beside those that the node graph brings itself. They
/// act on the network that the node graph shows and its selected nodes, with a window or without.
class GroupCommands : public QObject
{
    Q_OBJECT

public:
    explicit GroupCommands(QObject *parent);

private:
    static OssShaderNetwork *network();
    /// The selected group, else the group whose inside is shown. Null for none or several.
    static OssSnGroupNode *group();
    static void groupSelected();
    static void ungroupSelected();
    static void addPort(bool input);
    static void orderPorts(void (OssShaderNetworkManager::*request)(OssSnGroupNode *),
                           const QString &nothingToDo);
    static void exportAsGizmo();
    static void publish();
    static void exportArchive(bool material);
};
