#pragma once

#include <QWidget>

class OssNodeTypeListModel;
class QLineEdit;
class QListView;

/// The node types that can be made, to be dragged into the graph. A double click or Return makes
/// one in the middle of it.
class NodeTypesPanel : public QWidget
{
    Q_OBJECT

public:
    explicit NodeTypesPanel(QWidget *parent = nullptr);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void create(const QModelIndex &index);
    void readTypes();

    OssNodeTypeListModel *m_model = nullptr;
    QLineEdit *m_search;
    QListView *m_list;
};
