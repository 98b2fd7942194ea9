#pragma once

#include "OssSnNodeGraphViewContext.h"

#include <QPointer>

class OssShaderNetworkView;
class OssSnGroupNode;

/// Context of a group node: besides the item, the view of the group's inside and its tab.
class OssSnGroupNodeGraphViewContext : public OssSnNodeGraphViewContext
{
    Q_OBJECT

public:
    explicit OssSnGroupNodeGraphViewContext(QObject *node);
    ~OssSnGroupNodeGraphViewContext() override;

    void copyGuiStateFrom(OssSnBaseContext *other) override;

    /// The view of the inside; made when it is first shown. Null when the node is no group.
    OssShaderNetworkView *groupView();

    void initializeGui() override;
    QString versionHashSource() const override;

public Q_SLOTS:
    /// Adds the tab if needed, makes it current and frames it.
    void showGroupNodeTab();
    /// Adds the tab behind the current one.
    void showGroupNodeTabBehind();
    // The node named must be this one: all group contexts hear of it.
    void addTabToWidget(OssSnBaseNode *node);
    void hideGroupNodeTab(OssShaderNetwork *network, OssSnBaseNode *node);
    void makeGroupNodeTabCurrent(OssSnBaseNode *node);

protected Q_SLOTS:
    /// Brings the nodes that stand for the ports beside what they are wired to; those that stand
    /// where the user put them stay there.
    void adjustInputOutputPos();
    void clearPortClusters();
    void updatePortClusters();
    void setupPortClusters();
    OssResult onExportAsGizmo(OssSnGroupNode *GroupNode);
    OssResult exportNode() override;
    void changeGroupNodeTabText(QString text);
    void updateMultiChannelNodeUI();
    void forceOpenGroupSubgraph();
    void onBakedStateChanged();

private:
    OssSnGroupNode *groupNode() const;
    void connectGroup(OssSnGroupNode *group);
    void showInnerItems();
    void frameView();
    bool isPlacedByHand(const OssSnBaseNode *port) const;
    void rememberPlace(OssSnBaseNode *port, const QPointF &position);

    /// The tab widget may take it over as a child; whoever dies first deletes it.
    QPointer<OssShaderNetworkView> m_view;

    struct PortPlace
    {
        QPointer<OssSnBaseNode> port;
        QPointF position; ///< where this context last put it
    };

    QVector<PortPlace> m_portPlaces;
};
