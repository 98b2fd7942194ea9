#pragma once

#include <QWidget>

class QLabel;
class QTreeWidget;
class QTreeWidgetItem;

/// Body of the "Problems" palette: the nodes of the project that something is wrong with, and what.
/// Choosing one shows it in the graph.
class ProblemsPanel : public QWidget
{
    Q_OBJECT

public:
    explicit ProblemsPanel(QWidget *parent = nullptr);

private:
    void refresh();
    static void show(const QTreeWidgetItem *row);

    QTreeWidget *m_list;
    QLabel *m_none;
};
