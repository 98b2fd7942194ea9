#pragma once

#include "OssInterface/Popups/OssLateReleases.h"

#include <QElapsedTimer>
#include <QStatusBar>

class QLabel;
class QProgressBar;
class QPushButton;
class QToolButton;

/// The status bar: what just happened at the left; at the right, while work runs, its title, how
/// far it is, and a Stop button; what the pointer does, while that is another than usual; and how many
/// problems nodes have, when there are any.
///
/// Work that runs on the GUI thread blocks the event loop. Once it has taken half a second the bar
/// lets events through at each step of progress, but of keys and clicks only those for Stop, and Esc,
/// which does the same.
class StatusArea : public QStatusBar
{
    Q_OBJECT

public:
    explicit StatusArea(QWidget *parent = nullptr);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void begin(const QString &title);
    void showMode(const QString &text);
    void showProblems();
    void showPart(const QString &part);
    void showProgress(int done, int total);
    void end();
    void letStopThrough();
    void stop();
    /// Of what was before the user went on.
    void dropOldMessage();

    QString m_work;
    QElapsedTimer m_sinceMessage;

    QLabel *m_mode;
    QLabel *m_title;
    QProgressBar *m_progress;
    QPushButton *m_stop;
    QToolButton *m_problems;
    QElapsedTimer m_running;
    QElapsedTimer m_sinceEvents;
    OssLateReleases m_releases;
    bool m_inEvents = false;
};
