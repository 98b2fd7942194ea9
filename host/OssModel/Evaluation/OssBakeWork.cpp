#include "OssModel/Evaluation/OssBakeWork.h"

#include "OssModel/Evaluation/OssEvaluationService.h"

#include <QThread>

#include <atomic>
#include <condition_variable>
#include <mutex>

namespace {

constexpr int TellEvery = 50; ///< milliseconds

} // namespace

struct OssBakeWork::Shared
{
    std::vector<OssEvBake::Job> jobs;
    OssEvEngine *engine = nullptr;
    OssEvCancel cancel;
    std::atomic<int> thousandths{0};
    OssEvResult result;

    std::mutex mutex; ///< guards isPaused
    std::condition_variable changed;
    bool isPaused = false;

    void run()
    {
        const int count = int(jobs.size());
        for (int i = 0; i < count && result; ++i) {
            OssEvBake::Job &job = jobs[std::size_t(i)];
            job.cancel = &cancel;
            job.onProgress = [this, i, count](int done, int total) {
                thousandths = (1000 * i + (total > 0 ? int(1000LL * done / total) : 0)) / count;
                std::unique_lock<std::mutex> lock(mutex);
                changed.wait(lock, [this] { return !isPaused || cancel.isCancelled(); });
            };
            result = OssEvBake::run(engine, job);
        }
    }
};

OssBakeWork::OssBakeWork(std::vector<OssEvBake::Job> jobs, QObject *parent)
    : QObject(parent)
    , m_shared(std::make_shared<Shared>())
{
    m_shared->jobs = std::move(jobs);
    m_timer.setInterval(TellEvery);
    connect(&m_timer, &QTimer::timeout, this, &OssBakeWork::progressed);
}

OssBakeWork::~OssBakeWork()
{
    cancel();
    wait();
}

void OssBakeWork::start(bool behind)
{
    m_shared->engine = OssEvaluationService::instance()->engine();
    m_thread.reset(QThread::create([shared = m_shared] { shared->run(); }));
    connect(m_thread.get(), &QThread::finished, this, &OssBakeWork::end);
    m_timer.start();
    m_thread->start(behind ? QThread::LowPriority : QThread::InheritPriority);
}

void OssBakeWork::setPaused(bool paused)
{
    {
        const std::lock_guard<std::mutex> lock(m_shared->mutex);
        m_shared->isPaused = paused;
    }
    m_shared->changed.notify_all();
}

void OssBakeWork::cancel()
{
    {
        const std::lock_guard<std::mutex> lock(m_shared->mutex);
        m_shared->cancel.cancel();
    }
    m_shared->changed.notify_all();
}

bool OssBakeWork::isCancelled() const
{
    return m_shared->cancel.isCancelled();
}

void OssBakeWork::wait()
{
    if (m_thread)
        m_thread->wait();
}

int OssBakeWork::thousandths() const
{
    return m_shared->thousandths;
}

OssEvResult OssBakeWork::result() const
{
    return m_shared->result;
}

void OssBakeWork::end()
{
    m_timer.stop();
    m_thread->wait();
    m_thread.reset();
    Q_EMIT finished();
}
