#pragma once

#include <QWidget>

class QLabel;
class QProgressBar;
class QToolButton;

/// How far work in the background is, with Pause and Stop. Who uses it says what it shows and hears.
class WorkProgress : public QWidget
{
    Q_OBJECT

public:
    WorkProgress(const QString &accessibleName, const QString &pauseTip, const QString &stopTip,
                 QWidget *parent);

Q_SIGNALS:
    void pauseAsked(bool paused);
    void stopAsked();

protected:
    void showWork(const QString &text, int thousandths, bool isPaused);

    /// "Name, 1:05 left", where the time is known.
    static QString withTimeLeft(const QString &name, int seconds);

private:
    QLabel *m_text;
    QProgressBar *m_bar;
    QToolButton *m_pause;
};
