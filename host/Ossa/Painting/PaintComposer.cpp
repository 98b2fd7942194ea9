#include "Ossa/Painting/PaintComposer.h"

#include "OssCore/Documents/OssAtomicFile.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssModel/Images/OssColorManagement.h"
#include "OssModel/Images/OssPixelStore.h"
#include "OssModel/Objects/OssImageSet.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectManager.h"

#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QThread>
#include <QTimer>

#include <atomic>

namespace {

constexpr int tellEvery = 50; ///< milliseconds

} // namespace

/// Work for the worker, and what came of it. Its atomic members are what two threads use at once.
struct PaintComposer::Batch
{
    QMap<int, QString> pixels; ///< with those that are known
    std::vector<OssEvPaintBake::Job> jobs;
    std::vector<Source> sources; ///< of the jobs
    OssEvResult result;
    std::atomic<int> done{0};
    std::atomic<bool> isWanted{true};

    void run()
    {
        for (const OssEvPaintBake::Job &job : jobs) {
            if (!isWanted)
                return;
            result = OssEvPaintBake::run(job);
            if (!result)
                return;
            ++done;
        }
    }
};

PaintComposer::PaintComposer(QObject *parent)
    : QObject(parent)
{
}

PaintComposer::~PaintComposer()
{
    giveUp();
    if (!m_thread)
        return;
    m_thread->wait();
    finish(*m_batch);
}

std::shared_ptr<PaintComposer::Batch> PaintComposer::prepare(const OssEvPaintBuffer &paint,
                                                             const OssImageSet *images) const
{
    const OssProject *project = OssProjectManager::instance()->currentProject();
    const QString folder = project ? project->path() : QString();
    auto batch = std::make_shared<Batch>();
    batch->pixels = images->pixels();
    const std::vector<int> patches = paint.patches();
    for (const int patch : patches) {
        Source source;
        for (const auto &entry : paint.tiles()) {
            if (entry.first.patch == patch)
                source.tiles.insert(entry);
        }
        source.beneath = images->pixels().value(patch);
        source.resolution = paint.resolution();
        source.isData = images->isScalar();
        source.isPrecise = images->depth() == OssImageSet::FloatDepth;
        source.colors = OssColorManagement::spaces();
        const auto made = m_made.constFind(patch);
        if (made != m_made.cend() && made->source == source) {
            batch->pixels[patch] = made->file;
            continue;
        }
        OssEvPaintBake::Job job;
        job.paint = paint;
        job.patch = patch;
        job.beneath = OssPixelStore::find(source.beneath, folder).toStdString();
        job.path = OssPixelStore::newPath().toStdString();
        job.isData = source.isData;
        job.isPrecise = source.isPrecise;
        job.colors = source.colors;
        batch->jobs.push_back(std::move(job));
        batch->sources.push_back(std::move(source));
    }
    if (!batch->jobs.empty()) {
        const OssResult made = OssAtomicFile::makeFolder(
            QFileInfo(QString::fromStdString(batch->jobs.front().path)).absolutePath());
        if (!made)
            batch->result = OssEvResult::failure(made.error().toStdString());
    }
    return batch;
}

OssResult PaintComposer::adopt(const Batch &batch, QMap<int, QString> *pixels)
{
    OssResult result;
    if (!batch.result)
        result = OssResult::failure(QString::fromStdString(batch.result.error()));
    *pixels = batch.pixels;
    for (std::size_t i = 0; i < batch.jobs.size(); ++i) {
        const OssEvPaintBake::Job &job = batch.jobs[i];
        const QString path = QString::fromStdString(job.path);
        QString file;
        if (result && batch.isWanted)
            result = OssPixelStore::adopt(path, &file);
        if (!result || !batch.isWanted) {
            QFile::remove(path);
            continue;
        }
        (*pixels)[job.patch] = file;
        m_made[job.patch] = {batch.sources[i], file};
    }
    return result;
}

OssResult PaintComposer::compose(const OssEvPaintBuffer &paint, const OssImageSet *images,
                                 QMap<int, QString> *pixels)
{
    giveUp();
    const std::shared_ptr<Batch> batch = prepare(paint, images);
    if (!batch->jobs.empty() && batch->result) {
        OssStatusManager::Work work(tr("Baking paint"));
        const std::unique_ptr<QThread> thread(QThread::create([batch] { batch->run(); }));
        QEventLoop loop;
        connect(thread.get(), &QThread::finished, &loop, &QEventLoop::quit);
        QTimer timer;
        connect(&timer, &QTimer::timeout, &loop,
                [&] { work.setProgress(batch->done, int(batch->jobs.size())); });
        timer.start(tellEvery);
        thread->start();
        loop.exec(QEventLoop::ExcludeUserInputEvents);
        // The loop also ends when the application does.
        thread->wait();
    }
    return adopt(*batch, pixels);
}

// --- without waiting

bool PaintComposer::start(const OssEvPaintBuffer &paint, const OssImageSet *images)
{
    if (m_thread)
        return false;
    m_batch = prepare(paint, images);
    if (!m_batch->result)
        m_batch->jobs.clear();
    m_thread.reset(QThread::create([batch = m_batch] { batch->run(); }));
    connect(m_thread.get(), &QThread::finished, this, [this] {
        m_thread->wait();
        m_thread.release()->deleteLater(); // it is still telling
        const std::shared_ptr<Batch> batch = std::move(m_batch);
        finish(*batch);
    });
    m_thread->start(QThread::LowPriority);
    return true;
}

void PaintComposer::giveUp()
{
    if (m_batch)
        m_batch->isWanted = false;
}

void PaintComposer::finish(const Batch &batch)
{
    QMap<int, QString> pixels;
    const OssResult result = adopt(batch, &pixels);
    if (!batch.isWanted)
        return;
    if (!result)
        Q_EMIT failed(result.error());
}
