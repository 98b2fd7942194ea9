#pragma once

#include <QWidget>

class HistoryModel;
class QLabel;
class QListView;
class QPushButton;

/// The steps of the undo history; a click goes back or forth to one.
class HistoryPanel : public QWidget
{
    Q_OBJECT

public:
    explicit HistoryPanel(QWidget *parent = nullptr);

private:
    void refresh();

    void showCurrent();

    HistoryModel *m_model;
    QListView *m_view;
    QLabel *m_summary;
    QPushButton *m_undo;
    QPushButton *m_redo;
};
