#pragma once

#include <QWidget>

class HistoryModel;
class QLabel;
class QListView;
class QPushButton;

/// The steps of the undo history; a click goes back or forth to one. The right button leaves the
/// history as it is and offers to go to what a step changes.
class HistoryPanel : public QWidget
{
    Q_OBJECT

public:
    explicit HistoryPanel(QWidget *parent = nullptr);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void refresh();
    void openMenu(const QPoint &globalPosition, int step);
    static void goTo(int step);

    void showCurrent();

    HistoryModel *m_model;
    QListView *m_view;
    QLabel *m_summary;
    QPushButton *m_undo;
    QPushButton *m_redo;
    QPushButton *m_goTo;
};
