#pragma once

#include "OssEvaluation/Files/OssEvBake.h"
#include "OssModel/OssModel_export.h"

#include <QObject>
#include <QTimer>

#include <memory>
#include <vector>

class QThread;

/// Computes targets into files, one after the other, on a thread of its own. Of jobs that fail or are
/// stopped, no file is half written. GUI thread.
class OSSMODEL_EXPORT OssBakeWork : public QObject
{
    Q_OBJECT

public:
    explicit OssBakeWork(std::vector<OssEvBake::Job> jobs, QObject *parent = nullptr);
    /// Cancels, and waits until nothing is computed any more.
    ~OssBakeWork() override;

    /// Only once. Work `behind` other work gets what that leaves of the processor.
    void start(bool behind);

    bool isRunning() const { return m_thread != nullptr; }

    void setPaused(bool paused);
    void cancel();
    bool isCancelled() const;
    void wait();

    /// Of all jobs, 0 to 1000.
    int thousandths() const;
    /// Of the first that failed. Once it has ended.
    OssEvResult result() const;

Q_SIGNALS:
    /// Several times a second.
    void progressed();
    void finished();

private:
    struct Shared;

    void end();

    std::shared_ptr<Shared> m_shared; ///< what the worker has of it
    std::unique_ptr<QThread> m_thread;
    QTimer m_timer;
};
