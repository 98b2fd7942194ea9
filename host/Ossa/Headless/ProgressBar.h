#pragma once

#include <QString>

/// How far a command without a window is, as a line on stderr where that is a terminal. It wipes itself
/// away when it goes.
class ProgressBar
{
public:
    ProgressBar();
    ProgressBar(const ProgressBar &) = delete;
    ProgressBar &operator=(const ProgressBar &) = delete;
    ~ProgressBar();

    void show(const QString &name, int done, int total) const;

private:
    bool m_shown;
};
