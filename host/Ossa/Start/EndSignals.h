#pragma once

#include <QObject>

class QSocketNotifier;

/// The signals by which a system or a terminal ends a program (SIGTERM, SIGHUP, SIGINT), told in the
/// event loop. Only the first is told: one that follows ends the process at once. One object at a
/// time, on the GUI thread.
class EndSignals : public QObject
{
    Q_OBJECT

public:
    explicit EndSignals(QObject *parent = nullptr);
    ~EndSignals() override;

    /// The signal that came; 0 when none did.
    int received() const { return m_received; }

Q_SIGNALS:
    void endAsked();

private:
    void take();

    QSocketNotifier *m_notifier = nullptr;
    int m_received = 0;
};
