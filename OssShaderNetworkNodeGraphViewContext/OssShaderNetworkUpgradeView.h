#pragma once

#include "OssModel/Graph/OssSnBaseNode.h"

#include <QDialog>
#include <QList>
#include <QPointer>

class QLabel;
class QTreeWidget;
class QTreeWidgetItem;

/// The window "Node Version Control": nodes against the definitions of their types that are
/// installed, by version UUID and by how they compare. From its menu nodes are upgraded, converted
/// to other types, and their definitions written to the log.
class OssShaderNetworkUpgradeView : public QDialog
{
    Q_OBJECT

public:
    explicit OssShaderNetworkUpgradeView(QWidget *parent);
    ~OssShaderNetworkUpgradeView() override;

    /// Adds the nodes to what is shown.
    void populateNodes(const QList<OssSnBaseNode *> &nodes);

private Q_SLOTS:
    void onTreeWidgetCustomContextMenuRequested(QPoint pos);
    void onTreeWidgetItemEntered(QTreeWidgetItem *item, int column);

private:
    QTreeWidgetItem *addVersionRow(const QString &versionUUID, const QList<OssSnBaseNode *> &nodes);
    void addNodeRow(QTreeWidgetItem *versionRow, OssSnBaseNode *node, const QString &installedHash,
                    const QString &installedDate);
    void upgradeRows(QTreeWidgetItem *item, int column);
    bool upgradeRow(QTreeWidgetItem *row, OssSnBaseNode *node);
    void dumpRows(const QTreeWidgetItem *item) const;
    void convertSelectedRows(const QString &pathKey);
    /// What could not be kept is told once, where the user looks, without a box to close.
    void report(const QStringList &lost);
    QList<QTreeWidgetItem *> selectedNodeRows() const;
    /// As far as they live.
    QList<OssSnBaseNode *> shownNodes() const;
    /// Those of the nodes that are in the document, against the types as they are now.
    void showAnew(QList<OssSnBaseNode *> nodes);

    QTreeWidget *m_tree;
    QLabel *m_report;
    QTreeWidgetItem *m_enteredItem = nullptr;
    int m_enteredColumn = -1;
    QList<QPointer<OssSnBaseNode>> m_nodes;
    QStringList m_lost;
    int m_fillings = 0; ///< how often the rows were made anew
};
