#include "OssModel/Objects/OssMeshes.h"

#include "OssCore/Documents/OssAtomicFile.h"
#include "OssCore/Program/OssDebug.h"
#include "OssEvaluation/Geometry/OssEvMeshChange.h"
#include "OssEvaluation/Geometry/OssEvMeshPack.h"
#include "OssModel/Images/OssFileWatch.h"
#include "OssModel/Images/OssPixelStore.h"

#include <QEventLoop>
#include <QFile>
#include <QPointer>
#include <QRunnable>

#include <algorithm>
#include <chrono>

namespace {

QString text(const std::string &from)
{
    return QString::fromStdString(from);
}

/// On a worker: the name of the file, or nothing where the disk does not take it.
QString write(const OssEvMesh &mesh)
{
    const QString path = OssPixelStore::newMeshPath();
    QString name;
    OssResult result = OssAtomicFile::makeFolder(OssPixelStore::newFolder());
    if (result) {
        const OssEvResult written = OssEvMeshPack::write(path.toStdString(), mesh);
        result = written ? OssPixelStore::adopt(path, &name)
                         : OssResult::failure(text(written.error()));
    }
    if (!result) {
        QFile::remove(path);
        OssDebug("OssMeshes", __LINE__, "[ !! ] %s", qPrintable(result.error()));
    }
    return result ? name : QString();
}

bool isReady(const std::shared_future<QString> &future)
{
    return future.valid() && future.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
}

} // namespace

OssMeshes::OssMeshes()
{
    m_readers.setMaxThreadCount(1);
    m_keepers.setMaxThreadCount(1);
    connect(OssFileWatch::instance(), &OssFileWatch::changed, this, &OssMeshes::checkFiles);
}

OssMeshes::~OssMeshes()
{
    stopReading();
    m_readers.waitForDone();
    m_keepers.waitForDone();
}

template <class Work, class Done>
void OssMeshes::start(QThreadPool *pool, Work work, Done done)
{
    const int generation = m_generation;
    pool->start(QRunnable::create([this, work, done, generation] {
        const auto result = work();
        QMetaObject::invokeMethod(
            this,
            [this, result, done, generation] {
                if (generation == m_generation)
                    done(result);
            },
            Qt::QueuedConnection);
    }));
}

// --- looks

OssMeshes::Look OssMeshes::look(const OssGeometrySource &source)
{
    if (!source.isFile())
        return {State::Ready, source.builtIn(), {}, {}};
    const QString key = source.fileKey();
    const bool isNew = !m_files.contains(key);
    File &file = m_files[key];
    if (isNew) {
        file.path = source.path();
        m_sources.insert(key, source);
    }
    // Null where the watch has not looked yet: then what was read is as good as anything.
    const QString content = OssFileWatch::instance()->contentOf(file.path);
    const bool isOther = !content.isNull() && content != file.content;
    if (!file.cancel && (file.content.isNull() || isOther))
        read(key, source);
    const Part part = file.parts.value(source.part);
    Look seen{State::Ready, part.mesh, file.problem, part.report};
    if (seen.problem.isEmpty() && !file.cancel) {
        seen.problem = part.problem;
        if (!file.parts.contains(source.part))
            seen.problem = tr("Cannot read \"%1\": there is no \"%2\" in it any more")
                               .arg(file.path, source.part);
    }
    if (file.cancel && !part.mesh) {
        seen.state = State::Reading;
        return seen;
    }
    if (seen.problem.isEmpty())
        return seen;
    seen.state = State::Kept;
    if (seen.mesh)
        return seen;
    KeptMesh &kept = m_kept[source.kept];
    if (!kept.mesh && !kept.isGone)
        loadKept(source.kept);
    seen.mesh = m_kept[source.kept].mesh;
    if (!seen.mesh)
        seen.state = m_kept[source.kept].isGone ? State::Missing : State::Reading;
    return seen;
}

OssMeshes::Look OssMeshes::waitFor(const OssGeometrySource &source)
{
    const int generation = m_generation;
    const QString key = source.fileKey();
    const auto isDone = [&] {
        return generation != m_generation
               || (look(source).state != State::Reading && !m_files.value(key).cancel);
    };
    if (!source.isFile() || isDone())
        return generation == m_generation ? look(source) : Look();
    QEventLoop loop;
    const auto check = [&] {
        if (isDone())
            loop.quit();
    };
    connect(this, &OssMeshes::changed, &loop, check);
    connect(this, &OssMeshes::readingEnded, &loop, check);
    loop.exec(QEventLoop::ExcludeUserInputEvents);
    return generation == m_generation ? look(source) : Look();
}

QString OssMeshes::contentOf(const OssGeometrySource &source)
{
    if (!source.isFile())
        return source.shape == OssGeometrySource::usualShape() ? QLatin1String("") : source.shape;
    const Look seen = look(source);
    if (seen.state == State::Reading)
        return {};
    if (!seen.mesh)
        return QStringLiteral("missing");
    const OssEvKey key = seen.mesh->key();
    return QStringLiteral("%1%2").arg(key.high, 0, 36).arg(key.low, 0, 36);
}

bool OssMeshes::isReading() const
{
    return std::any_of(m_files.cbegin(), m_files.cend(),
                       [](const File &file) { return file.cancel != nullptr; });
}

// --- reading

void OssMeshes::read(const QString &key, const OssGeometrySource &source)
{
    File &file = m_files[key];
    const auto cancel = std::make_shared<OssEvCancel>();
    file.cancel = cancel;
    const QString path = file.path;
    const auto work = [this, path, cancel, options = source.options] {
        Outcome outcome;
        outcome.content = OssFileWatch::instance()->readContent(path);
        const auto tell = [this, path](double share) {
            QMetaObject::invokeMethod(
                this, [this, path, share] { Q_EMIT readingChanged(path, int(share * 1000.0)); },
                Qt::QueuedConnection);
        };
        const OssEvResult result = OssEvMeshFile::read(path.toStdString(), options,
                                                       &outcome.reading, cancel.get(), tell);
        outcome.problem = text(result.error());
        outcome.wasStopped = cancel->isCancelled();
        return outcome;
    };
    Q_EMIT readingChanged(path, 0);
    start(&m_readers, work, [this, key](const Outcome &outcome) { finish(key, outcome); });
}

void OssMeshes::finish(const QString &key, const Outcome &outcome)
{
    File &file = m_files[key];
    file.cancel.reset();
    file.content = outcome.content;
    file.problem = outcome.problem;
    Q_EMIT readingEnded(); // before what is told of it
    if (!outcome.problem.isEmpty()) {
        if (!outcome.wasStopped)
            OssDebug("OssMeshes", __LINE__, "[ !! ] %s", qPrintable(outcome.problem));
    } else {
        setParts(&file, outcome.reading);
    }
    Q_EMIT changed();
}

void OssMeshes::setParts(File *file, const OssEvMeshFile::Reading &reading)
{
    const QMap<QString, Part> before = std::exchange(file->parts, {});
    QStringList changes;
    for (const OssEvMeshFile::Part &read : reading.parts) {
        const QString name = text(read.name);
        Part &part = file->parts[name];
        part = before.value(name);
        part.report = read.report;
        part.problem.clear();
        if (!read.mesh) {
            part.problem = tr("Cannot use \"%1\": %2")
                               .arg(file->path, text(OssEvMeshCheck::inWords(read.report)));
            OssDebug("OssMeshes", __LINE__, "[ !! ] %s", qPrintable(part.problem));
            continue;
        }
        if (part.mesh && part.mesh->key() != read.mesh->key())
            changes.append(text(OssEvMeshChange::inWords(*part.mesh, *read.mesh)));
        if (!part.mesh || part.mesh->key() != read.mesh->key()) {
            part.mesh = read.mesh;
            part.kept = keep(read.mesh);
        }
    }
    if (!changes.isEmpty())
        Q_EMIT reread(file->path, changes.join(QStringLiteral("; ")));
}

void OssMeshes::take(const OssGeometrySource &source, const OssEvMeshFile::Reading &reading,
                     const QString &content)
{
    const QString key = source.fileKey();
    File &file = m_files[key];
    if (file.cancel)
        return; // it is just being read anyway
    file.path = source.path();
    file.content = content;
    file.problem.clear();
    m_sources.insert(key, source);
    setParts(&file, reading);
    Q_EMIT changed();
}

void OssMeshes::reload(const OssGeometrySource &source)
{
    const QString key = source.fileKey();
    if (!m_files.contains(key)) {
        look(source);
        return;
    }
    if (!m_files.value(key).cancel)
        read(key, source);
}

void OssMeshes::checkFiles()
{
    bool isAnyOther = false;
    const QStringList keys = m_files.keys();
    for (const QString &key : keys) {
        const File &file = m_files[key];
        const QString content = OssFileWatch::instance()->contentOf(file.path);
        if (file.cancel || content.isNull() || content == file.content)
            continue;
        read(key, m_sources.value(key));
        isAnyOther = true;
    }
    if (isAnyOther)
        Q_EMIT changed();
}

void OssMeshes::stopReading()
{
    for (const File &file : qAsConst(m_files)) {
        if (file.cancel)
            file.cancel->cancel();
    }
}

void OssMeshes::forget()
{
    stopReading();
    const bool wasReading = isReading();
    ++m_generation;
    m_files.clear();
    m_sources.clear();
    m_kept.clear();
    if (wasReading)
        Q_EMIT readingEnded();
}

// --- what is kept

std::shared_future<QString> OssMeshes::keep(const std::shared_ptr<const OssEvMesh> &mesh)
{
    auto task = std::make_shared<std::packaged_task<QString()>>([mesh] { return write(*mesh); });
    std::shared_future<QString> name = task->get_future().share();
    m_keepers.start(QRunnable::create([task] { (*task)(); }));
    return name;
}

QString OssMeshes::keptFile(const OssGeometrySource &source, bool waits)
{
    const auto file = m_files.constFind(source.fileKey());
    if (!source.isFile() || file == m_files.cend())
        return source.kept;
    const std::shared_future<QString> kept = file->parts.value(source.part).kept;
    if (!kept.valid() || (!waits && !isReady(kept)))
        return source.kept;
    const QString name = kept.get();
    return name.isEmpty() ? source.kept : name;
}

void OssMeshes::loadKept(const QString &name)
{
    KeptMesh &kept = m_kept[name];
    if (kept.isLoading)
        return;
    const QString path = OssPixelStore::find(name, OssPixelStore::projectFolder());
    if (path.isEmpty()) {
        kept.isGone = true;
        return;
    }
    kept.isLoading = true;
    using Mesh = std::shared_ptr<const OssEvMesh>;
    start(
        &m_readers,
        [path] {
            Mesh mesh;
            const OssEvResult result = OssEvMeshPack::read(path.toStdString(), &mesh);
            if (!result)
                OssDebug("OssMeshes", __LINE__, "[ !! ] %s", result.error().c_str());
            return mesh;
        },
        [this, name](const Mesh &mesh) {
            KeptMesh &loaded = m_kept[name];
            loaded.isLoading = false;
            loaded.mesh = mesh;
            loaded.isGone = !mesh;
            Q_EMIT changed();
        });
}
