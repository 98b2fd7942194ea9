#pragma once

#include <QWidget>

class QLabel;
class QPushButton;
class QUndoView;

/// The steps of the undo history; a click goes back or forth to one.
class HistoryPanel : public QWidget
{
    Q_OBJECT

public:
    explicit HistoryPanel(QWidget *parent = nullptr);

private:
    void refresh();

    QUndoView *m_view;
    QLabel *m_summary;
    QPushButton *m_undo;
    QPushButton *m_redo;
};
