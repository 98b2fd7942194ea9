#pragma once

#include <QTabWidget>

class OssShaderNetwork;
class OssShaderNetworkView;
class OssSnGroupNode;

/// Body of the "Node Graph" palette: tab 0 is the root network's view and cannot be closed, further
/// tabs are views of groups, which their contexts own.
class OssSnNodeGraphWidget : public QTabWidget
{
    Q_OBJECT

public:
    OssSnNodeGraphWidget(const QString &controlType, QWidget *parent);
    ~OssSnNodeGraphWidget() override;

    void addRootView();

    /// The root view, whatever tab is current.
    OssShaderNetworkView *view() const { return m_rootView; }

    /// Null while the current page is no view.
    OssShaderNetworkView *currentView() const;
    /// Has everything that follows the current tab do so once more.
    void refreshCurrentChanged();
    /// The first tab that shows the network.
    void selectTabForNetwork(OssShaderNetwork *network);

public Q_SLOTS:
    void hideTab(int Index);
    void updateRootLevelText(OssShaderNetwork *Network);
    void setNavigationControlType(QString ControlType);
    void showGroupNodeSubgraph(const OssSnGroupNode *GroupNode);

protected Q_SLOTS:
    void onCurrentTabChanged(int Index);

protected:
    void mousePressEvent(QMouseEvent *event) override;

private:
    OssShaderNetworkView *m_rootView;
    QString m_navigationControlType;
};
