#pragma once

#include <QWidget>

class QLabel;
class QProgressBar;
class QToolButton;

/// How far the running export is, with Pause and Stop; hidden while none runs. The status bar has one,
/// and the palette.
class ExportProgress : public QWidget
{
    Q_OBJECT

public:
    explicit ExportProgress(QWidget *parent = nullptr);

private:
    void follow();
    void refresh();
    void pause(bool paused);

    QLabel *m_text;
    QProgressBar *m_bar;
    QToolButton *m_pause;
    QToolButton *m_stop;
};
