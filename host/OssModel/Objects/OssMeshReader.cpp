#include "OssModel/Objects/OssMeshReader.h"

#include "OssModel/Images/OssFileWatch.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QPointer>
#include <QThread>

/// Outlives the reader where that goes first.
struct OssMeshReader::Work
{
    OssEvCancel cancel;
    OssEvMeshFile::Reading reading;
    QString problem;
    QString content;
    QThread *thread = nullptr; ///< deletes itself
};

OssMeshReader::OssMeshReader(QObject *parent)
    : QObject(parent)
{
}

OssMeshReader::~OssMeshReader()
{
    if (!m_work)
        return;
    m_work->cancel.cancel();
    m_work->thread->wait(); // it asks the services
}

void OssMeshReader::start(const OssGeometrySource &source)
{
    if (m_work) {
        m_work->cancel.cancel();
        m_work->thread->wait();
    }
    m_source = source;
    m_reading = {};
    m_problem.clear();
    const auto work = std::make_shared<Work>();
    m_work = work;
    const QPointer<OssMeshReader> self(this);
    const auto later = [self, work](auto told) {
        QMetaObject::invokeMethod(
            qApp,
            [self, work, told] {
                if (self && self->m_work == work)
                    told(self.data());
            },
            Qt::QueuedConnection);
    };
    const std::string path = source.path().toStdString();
    work->thread = QThread::create([work, later, path, options = source.options] {
        work->content = OssFileWatch::instance()->readContent(QString::fromStdString(path));
        const OssEvResult result = OssEvMeshFile::read(
            path, options, &work->reading, &work->cancel, [&later](double share) {
                later([share](OssMeshReader *reader) {
                    Q_EMIT reader->progressed(int(share * 1000.0));
                });
            });
        work->problem = QString::fromStdString(result.error());
        later([](OssMeshReader *reader) {
            const std::shared_ptr<Work> done = std::exchange(reader->m_work, nullptr);
            reader->m_reading = std::move(done->reading);
            reader->m_problem = done->problem;
            reader->m_content = done->content;
            Q_EMIT reader->finished();
        });
    });
    connect(work->thread, &QThread::finished, work->thread, &QObject::deleteLater);
    work->thread->start();
}

bool OssMeshReader::isRunning() const
{
    return m_work != nullptr;
}

void OssMeshReader::cancel()
{
    if (m_work)
        m_work->cancel.cancel();
}

void OssMeshReader::wait()
{
    if (!m_work)
        return;
    QEventLoop loop;
    connect(this, &OssMeshReader::finished, &loop, &QEventLoop::quit);
    loop.exec(QEventLoop::ExcludeUserInputEvents);
}
