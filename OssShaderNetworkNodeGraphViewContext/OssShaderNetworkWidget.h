#pragma once

#include <QHash>
#include <QPointer>
#include <QTabWidget>
#include <QWidget>

class OssShaderNetwork;
class OssShaderNetworkView;
class OssSnBaseNode;
class OssSnGroupNode;
class QLineEdit;
class QScrollArea;
class QVBoxLayout;

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
    /// Goes on following the name of the network's object.
    void updateRootLevelText(OssShaderNetwork *Network);
    void setNavigationControlType(QString ControlType);
    void showGroupNodeSubgraph(const OssSnGroupNode *GroupNode);

protected Q_SLOTS:
    void onCurrentTabChanged(int Index);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    /// Keys are the graph's from now on, unless somebody types a text.
    void takeFocus();

    OssShaderNetworkView *m_rootView;
    QString m_navigationControlType;
    QMetaObject::Connection m_rootNamed; ///< the object after which the first tab is named
};

/// Body of the "Node Properties" palette: the panels of the nodes that were opened, the newest on
/// top, at most as many as the user wants. A panel is framed in its node's colour, is made anew when
/// the node's attributes are others, and goes with its node.
class OssSnNodePropertiesWidget : public QWidget
{
    Q_OBJECT

public:
    /// Double clicks on nodes of the view open panels; the view outlives the widget.
    OssSnNodePropertiesWidget(OssShaderNetworkView *view, QWidget *parent);
    ~OssSnNodePropertiesWidget() override;

    /// Whether what was opened last got a panel; viewers and dots have none.
    bool showsOpened() const { return m_showsOpened; }

    /// Null when the node has none.
    QWidget *panel(const OssSnBaseNode *node) const;
    /// Opens the node's panel, or moves it, to the place before or after that of another node. The
    /// top when that one has none.
    void insertBefore(OssSnBaseNode *node, const OssSnBaseNode *target);
    void insertAfter(OssSnBaseNode *node, const OssSnBaseNode *target);
    /// A panel of the replacement in the place of the old node's, if that has one.
    void replacePanel(OssSnBaseNode *old, OssSnBaseNode *replacement);

Q_SIGNALS:
    void nodeDoubledClicked();
    void propertiesUnderMouseChanged(OssSnBaseNode *NewUnderMouse, OssSnBaseNode *OldUnderMouse);

public Q_SLOTS:
    virtual void openProperty(OssSnBaseNode *Node);

protected Q_SLOTS:
    virtual QWidget *createPropertyWidget(OssSnBaseNode *Node, int InsertionPoint = 0);
    virtual void showGroupNodeKnobWidget();
    virtual void showGroupNodeSubgraph();
    virtual void onUserAttributePopulationChanged();
    virtual void refreshPropertiesForNode(OssSnBaseNode *Node);
    virtual void onUserAttributeChanged(QString AttributeName);
    virtual void onUserAttributeRenamed(QString OldAttributeName, QString NewAttributeName);

protected:
    bool event(QEvent *Event) override;

protected Q_SLOTS:
    void onMaxPanelsEditingFinished();
    void deleteAllProperties();
    void deletePanelsExceedingMax();
    void refreshPanel();
    void onEndProcessing();
    void onNodeRemoved();

private:
    void makeScrollArea();
    class QAction *makeDeleteAction();
    void makeBar(class QAction *deleteAll);
    QWidget *makePanel(OssSnBaseNode *node);
    void followSections(const QWidget *panel);
    void addGroupButtons(QWidget *panel, OssSnBaseNode *node);
    static QString frameStyle(const OssSnBaseNode *node, const QWidget *panel);
    void followNode(OssSnBaseNode *node);
    static void restyle(const OssSnBaseNode *node, QWidget *panel);
    /// To the graph view in which the user works.
    static void giveFocusBack();
    /// Takes the panel out of the list and deletes it when control is back in the event loop.
    void dismiss(QWidget *panel);
    void insertBeside(OssSnBaseNode *node, const OssSnBaseNode *target, int offset);
    /// Whether a change of the attribute is one that the node's panel shows.
    static bool isVisibleAttribute(const OssSnBaseNode *node, const QString &name);
    OssSnBaseNode *nodeUnderMouse() const;

    QVBoxLayout *m_panelLayout = nullptr;
    QHash<QString, bool> m_foldedSections; ///< by the panel's object name and the heading
    QHash<OssSnBaseNode *, QPointer<QWidget>> m_panels;
    QLineEdit *m_maxPanels = nullptr;
    bool m_refreshPending = false;
    bool m_showsOpened = true;
    QScrollArea *m_scrollArea = nullptr;
    QPointer<OssSnBaseNode> m_nodeUnderMouse;
};
