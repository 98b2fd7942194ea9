#include "OssScripting/OssScriptEngine.h"

#include "OssCore/OssDebug.h"
#include "OssCore/OssStatusManager.h"
#include "OssCoreModules/Interface/OssApplication.h"
#include "OssCoreModules/Script/OssScriptManager.h"
#include "OssScripting/OssScriptThread.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEvent>
#include <QKeyEvent>
#include <QWidget>

namespace {

const char UsableProperty[] = "ossaUsableWhileScriptsRun";
constexpr int ShutdownWait = 3000; // ms

bool isInput(QEvent::Type type)
{
    switch (type) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::ShortcutOverride:
    case QEvent::Shortcut:
    case QEvent::Wheel:
    case QEvent::ContextMenu:
    case QEvent::Drop:
    case QEvent::DragEnter:
    case QEvent::InputMethod:
    case QEvent::Close:
        return true;
    default:
        return false;
    }
}

bool isUsable(const QObject *object)
{
    for (; object; object = object->parent()) {
        if (object->property(UsableProperty).toBool())
            return true;
    }
    return false;
}

} // namespace

OssScriptEngine *OssScriptEngine::instance()
{
    static OssScriptEngine engine;
    return &engine;
}

OssScriptEngine::OssScriptEngine()
{
    OssScriptManager::instance(); // must outlive this object
}

OssScriptEngine::~OssScriptEngine()
{
    shutdown();
}

void OssScriptEngine::setOutput(Output output)
{
    m_output = output;
}

OssScriptThread *OssScriptEngine::thread()
{
    if (m_thread || m_isShutDown)
        return m_thread.get();
    m_thread = std::make_unique<OssScriptThread>(m_output);
    OssScriptThread *thread = m_thread.get();
    connect(thread, &OssScriptThread::incomplete, this, &OssScriptEngine::inputIncomplete);
    connect(thread, &OssScriptThread::completed, this, &OssScriptEngine::completed);
    connect(thread, &OssScriptThread::outputWaiting, this, [this] { m_thread->flushOutput(); });
    thread->start();
    return thread;
}

bool OssScriptEngine::isRunning() const
{
    return m_running || (m_thread && m_thread->isBusy());
}

bool OssScriptEngine::runFile(const QString &path, const QStringList &arguments)
{
    if (isRunning() || !thread())
        return false;
    OssScriptThread::Job job;
    job.kind = OssScriptThread::Job::File;
    job.text = path;
    job.arguments = arguments;
    thread()->post(job);
    return true;
}

bool OssScriptEngine::runInput(const QString &text, bool everything)
{
    if (isRunning() || !thread())
        return false;
    OssScriptThread::Job job;
    job.kind = OssScriptThread::Job::Input;
    job.text = text;
    job.everything = everything;
    thread()->post(job);
    return true;
}

void OssScriptEngine::complete(const QString &text)
{
    if (isRunning() || !thread())
        return;
    OssScriptThread::Job job;
    job.kind = OssScriptThread::Job::Completion;
    job.text = text;
    thread()->post(job);
}

void OssScriptEngine::resetNames()
{
    if (isRunning() || !thread())
        return;
    OssScriptThread::Job job;
    job.kind = OssScriptThread::Job::Reset;
    thread()->post(job);
}

void OssScriptEngine::begin(const QString &title)
{
    m_running = true;
    m_popups = OssApplication::popupsAllowed();
    OssApplication::setPopupsAllowed(false);
    qApp->installEventFilter(this);
    OssScriptManager::instance()->beginScript(title);
    Q_EMIT started(title);
}

void OssScriptEngine::end(int exitCode)
{
    if (!m_running)
        return;
    OssScriptManager::instance()->endScript();
    qApp->removeEventFilter(this);
    OssApplication::setPopupsAllowed(m_popups);
    m_running = false;
    m_thread->flushOutput();
    Q_EMIT finished(exitCode);
}

void OssScriptEngine::stop()
{
    if (!isRunning())
        return;
    OssStatusManager::instance()->cancel();
    m_thread->stop();
}

void OssScriptEngine::shutdown()
{
    m_isShutDown = true;
    if (!m_thread)
        return;
    stop();
    m_thread->post({});
    QElapsedTimer waited;
    waited.start();
    // The thread may be in a call, which this thread has to carry out.
    while (!m_thread->wait(10) && waited.elapsed() < ShutdownWait) {
        if (QCoreApplication::instance())
            QCoreApplication::sendPostedEvents(this);
    }
    if (m_thread->isRunning()) {
        OssDebug(__FILE__, __LINE__, "[ !! ] A script does not end");
        static_cast<void>(m_thread.release()); // it cannot be destroyed; it goes with the process
    }
    m_thread.reset();
}

void OssScriptEngine::keepUsable(QObject *widget)
{
    if (widget)
        widget->setProperty(UsableProperty, true);
}

bool OssScriptEngine::eventFilter(QObject *watched, QEvent *event)
{
    if (!m_running || !isInput(event->type()))
        return false;
    if (event->type() == QEvent::KeyPress
        && static_cast<QKeyEvent *>(event)->key() == Qt::Key_Escape) {
        stop();
        return true;
    }
    // A window passes what it gets to the widget it is meant for, which is asked again.
    if (!watched->isWidgetType() || isUsable(watched))
        return false;
    if (event->type() == QEvent::Close)
        event->ignore();
    return true;
}
