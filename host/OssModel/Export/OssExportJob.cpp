#include "OssModel/Export/OssExportJob.h"

#include "OssCore/Documents/OssAtomicFile.h"
#include "OssCore/Program/OssDebug.h"
#include "OssEvaluation/Values/OssEvCancel.h"
#include "OssModel/Evaluation/OssEvaluationService.h"
#include "OssModel/Export/OssExportPack.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssSnBaseNode.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QThread>

#include <atomic>
#include <condition_variable>
#include <mutex>

namespace {

constexpr int TellEvery = 50; ///< milliseconds
constexpr int MostReasons = 5;

} // namespace

/// Shared with the worker: what it does, what it has done.
struct OssExportJob::Work
{
    struct Failure
    {
        int source;
        QString path;
        QString reason;
        std::string node;     ///< at fault; empty when none is known to be
        bool isWhole = false; ///< the reason is one sentence, the same for all files that it is for
    };

    // Set before the worker starts.
    QVector<OssExportFile> files;
    QVector<int> sourceOf; ///< index for each file
    QVector<OssExportSource> sources;
    Keys known;
    OssEvEngine *engine = nullptr;
    qint64 total = 0;
    OssEvGltf::Scene scene;
    QString gltf; ///< path of the one file; empty for textures

    OssEvCancel cancel;
    std::atomic<qint64> done{0}; ///< bytes

    mutable std::mutex mutex; ///< guards all below
    std::condition_variable changed;
    bool isPaused = false;
    QString current;
    QStringList written;
    QVector<Failure> failures;
    QVector<int> good; ///< sources of which a file was written
    Keys keys;

    void run()
    {
        qint64 before = 0;
        for (int i = 0; i < files.size() && !cancel.isCancelled(); ++i) {
            write(i, before);
            before += files.at(i).bytes();
            done = before;
        }
        if (!gltf.isEmpty() && !cancel.isCancelled())
            putTogether();
        const std::lock_guard<std::mutex> lock(mutex);
        current.clear();
    }

    /// What is written now is the one file, made of the others.
    void putTogether()
    {
        OssEvResult made;
        bool isWanted = false;
        {
            const std::lock_guard<std::mutex> lock(mutex);
            current = gltf;
            isWanted = failures.isEmpty() && (!written.isEmpty() || !QFile::exists(gltf));
            written.clear();
        }
        if (!isWanted)
            return;
        const OssResult folder = OssAtomicFile::makeFolder(QFileInfo(gltf).absolutePath());
        made = folder ? OssEvGltf::write(scene, gltf.toStdString(), &cancel)
                      : OssEvResult::failure(folder.error().toStdString());
        const std::lock_guard<std::mutex> lock(mutex);
        if (made)
            written.append(gltf);
        else if (!cancel.isCancelled())
            failures.append({0, gltf, QString::fromStdString(made.error()), {}, false});
    }

    void write(int index, qint64 before)
    {
        const OssExportFile &file = files.at(index);
        const OssExportSource &source = sources.at(sourceOf.at(index));
        {
            const std::lock_guard<std::mutex> lock(mutex);
            current = file.path;
        }
        OssEvKey key;
        std::string node;
        const OssResult folder = folderFor(file);
        OssResult result = folder ? source.state : folder;
        if (result) {
            const OssEvResult made = writePixels(file, source, before, &key);
            if (!made && cancel.isCancelled())
                return;
            result = made ? OssResult() : OssResult::failure(QString::fromStdString(made.error()));
            node = made.node();
        }
        const std::lock_guard<std::mutex> lock(mutex);
        if (result) {
            keys.insert(file.path, key);
            good.append(sourceOf.at(index));
        } else {
            failures.append({sourceOf.at(index), file.path, result.error(), node, !folder});
        }
    }

    /// Before anything is computed for it.
    OssResult folderFor(const OssExportFile &file) const
    {
        const QString path = QFileInfo(file.path).absolutePath();
        const OssResult made = OssAtomicFile::makeFolder(path);
        if (!made || QFileInfo(path).isWritable())
            return made;
        return OssResult::failure(
            tr("Cannot write into the folder \"%1\": it is not allowed").arg(path));
    }

    OssEvResult writePixels(const OssExportFile &file, const OssExportSource &source, qint64 before,
                            OssEvKey *key)
    {
        OssEvBake::Job job = source.job(file);
        OssEvResult result = OssEvBake::key(job, key);
        if (!result)
            return result;
        if (known.contains(file.path) && known.value(file.path) == *key && QFile::exists(file.path))
            return {};
        job.cancel = &cancel;
        job.onProgress = [this, before, bytes = file.bytes()](int rows, int all) {
            done = before + (all > 0 ? bytes * rows / all : 0);
            std::unique_lock<std::mutex> lock(mutex);
            changed.wait(lock, [this] { return !isPaused || cancel.isCancelled(); });
        };
        result = OssEvBake::run(engine, job);
        if (result) {
            const std::lock_guard<std::mutex> lock(mutex);
            written.append(file.path);
        }
        return result;
    }
};

OssExportJob::OssExportJob(const OssExportPlan &plan, const Keys &known, QObject *parent)
    : QObject(parent)
    , m_plan(plan)
    , m_work(std::make_shared<Work>())
{
    m_work->known = known;
    m_timer.setInterval(TellEvery);
    connect(&m_timer, &QTimer::timeout, this, &OssExportJob::progressed);
}

OssExportJob::~OssExportJob()
{
    cancel();
    if (m_thread)
        m_thread->wait();
}

void OssExportJob::start()
{
    QVector<const OssSnBaseNode *> known;
    for (const OssExportFile &file : qAsConst(m_plan.files)) {
        const OssExportMaterial &material = file.material;
        int source = known.indexOf(material.node);
        if (source < 0) {
            source = known.size();
            known.append(material.node);
            m_work->sources.append(m_leavesPaint ? OssExportSource::of(material)
                                                 : OssExportSource::withPaintSettled(material));
        }
        m_work->sourceOf.append(source);
        m_work->total += file.bytes();
    }
    m_work->files = m_plan.files;
    m_work->scene = m_plan.scene;
    m_work->gltf = m_plan.options.file;
    m_work->engine = OssEvaluationService::instance()->engine();
    m_thread.reset(QThread::create([work = m_work] { work->run(); }));
    connect(m_thread.get(), &QThread::finished, this, &OssExportJob::end);
    m_clock.start();
    m_timer.start();
    m_thread->start(QThread::LowPriority);
}

bool OssExportJob::isPaused() const
{
    const std::lock_guard<std::mutex> lock(m_work->mutex);
    return m_work->isPaused;
}

void OssExportJob::setPaused(bool paused)
{
    if (paused == isPaused() || !isRunning())
        return;
    m_clock.setResting(paused);
    {
        const std::lock_guard<std::mutex> lock(m_work->mutex);
        m_work->isPaused = paused;
    }
    m_work->changed.notify_all();
    Q_EMIT progressed();
}

void OssExportJob::cancel()
{
    {
        const std::lock_guard<std::mutex> lock(m_work->mutex);
        m_work->cancel.cancel();
    }
    m_work->changed.notify_all();
}

int OssExportJob::thousandths() const
{
    return m_work->total > 0 ? int(1000 * m_work->done / m_work->total) : 0;
}

QString OssExportJob::currentFile() const
{
    const std::lock_guard<std::mutex> lock(m_work->mutex);
    return m_work->current;
}

int OssExportJob::secondsLeft() const
{
    return m_clock.secondsLeft(m_work->done, m_work->total);
}

QStringList OssExportJob::written() const
{
    const std::lock_guard<std::mutex> lock(m_work->mutex);
    return m_work->written;
}

QStringList OssExportJob::failures() const
{
    const std::lock_guard<std::mutex> lock(m_work->mutex);
    QStringList reasons;
    for (const Work::Failure &failure : qAsConst(m_work->failures)) {
        // The engine names the file already.
        if (!failure.isWhole && !failure.reason.contains(failure.path))
            reasons.append(tr("Cannot write \"%1\": %2").arg(failure.path, failure.reason));
        else if (!reasons.contains(failure.reason))
            reasons.append(failure.reason);
    }
    return reasons;
}

QStringList OssExportJob::failedFiles() const
{
    const std::lock_guard<std::mutex> lock(m_work->mutex);
    QStringList paths;
    for (const Work::Failure &failure : qAsConst(m_work->failures))
        paths.append(failure.path);
    return paths;
}

OssExportJob::Keys OssExportJob::keys() const
{
    const std::lock_guard<std::mutex> lock(m_work->mutex);
    return m_work->keys;
}

OssResult OssExportJob::result() const
{
    if (m_work->cancel.isCancelled())
        return OssResult::cancelled(tr("The export was stopped"));
    QStringList reasons = failures();
    const int more = reasons.size() - MostReasons;
    if (more > 0) {
        reasons = reasons.mid(0, MostReasons);
        reasons.append(tr("and %1 more").arg(more));
    }
    return reasons.isEmpty() ? OssResult() : OssResult::failure(reasons.join(QLatin1Char('\n')));
}

void OssExportJob::tellProblems() const
{
    for (const Work::Failure &failure : qAsConst(m_work->failures))
        m_work->sources.at(failure.source).graph.tellProblem(failure.node, failure.reason);
    for (int i = 0; i < m_work->sources.size(); ++i) {
        const auto isOf = [i](const Work::Failure &failure) {
            return failure.source == i;
        };
        const bool failed = std::any_of(m_work->failures.cbegin(), m_work->failures.cend(), isOf);
        if (!failed && m_work->good.contains(i))
            m_work->sources.at(i).graph.tellSuccess();
    }
}

void OssExportJob::end()
{
    m_timer.stop();
    m_thread->wait();
    m_thread.reset();
    tellProblems();
    const QStringList files = written();
    for (const QString &file : files)
        OssDebug("OssExportJob", __LINE__, "[ -- ] Wrote %s", qPrintable(file));
    const QStringList reasons = failures();
    for (const QString &reason : reasons)
        OssDebug("OssExportJob", __LINE__, "[ !! ] %s", qPrintable(reason));
    Q_EMIT progressed();
    Q_EMIT finished();
}
