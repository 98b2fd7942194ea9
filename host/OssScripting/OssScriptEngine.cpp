#include "OssScripting/OssScriptEngine.h"

#include "OssCore/Program/OssDebug.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssInterface/Popups/OssApplication.h"
#include "OssScripting/OssScriptThread.h"
#include "OssScriptObjects/OssScriptManager.h"

#include <QEvent>
#include <QGuiApplication>
#include <QKeyEvent>

namespace {

const char UsableProperty[] = "ossaUsableWhileScriptsRun";
constexpr int ShutdownWait = 3000; // ms
constexpr int Interrupted = 130;
constexpr int HandsOnWait = 50; // ms

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

OssScriptEngine::OssScriptEngine()
{
    m_callbacks.setSingleShot(true);
    connect(&m_callbacks, &QTimer::timeout, this, &OssScriptEngine::runCallback);
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

void OssScriptEngine::deliver(int callback, const QVariantList &values)
{
    if (!m_thread)
        return;
    m_thread->deliver(callback, values);
    m_callbacks.start(0);
}

void OssScriptEngine::runCallback()
{
    // A script that runs takes them; when it ends, this is asked again.
    if (m_isShutDown || !m_thread || isRunning() || !m_thread->hasCallback())
        return;
    // A dialog asks while it has what it needs to do so.
    const bool handsOn = QGuiApplication::mouseButtons() != Qt::NoButton
                         || QGuiApplication::modalWindow()
                         || OssUndoManager::instance()->isMacroOpen();
    OssScriptThread::Job job;
    if (handsOn)
        m_callbacks.start(HandsOnWait);
    else if (m_thread->takeCallback(&job))
        m_thread->post(job);
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
    m_stopping.invalidate();
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
    m_releases.deliver();
    OssApplication::setPopupsAllowed(m_popups);
    m_running = false;
    m_thread->flushOutput();
    m_callbacks.start(0);
    Q_EMIT finished(exitCode);
    if (m_closing)
        QMetaObject::invokeMethod(m_closing, &QWidget::close, Qt::QueuedConnection);
    m_closing.clear();
}

void OssScriptEngine::stop()
{
    if (!isRunning())
        return;
    OssStatusManager::instance()->cancel();
    m_thread->stop();
    if (!m_stopping.isValid())
        m_stopping.start();
    else if (m_stopping.hasExpired(ShutdownWait) && m_thread->abandon())
        abandon();
}

void OssScriptEngine::abandon()
{
    OssDebug(__FILE__, __LINE__, "[ !! ] A script does not end");
    m_isShutDown = true;
    const QString told = tr("The script does not end and is left alone. Scripts run again after a "
                            "new start.");
    Q_EMIT outputWritten(told + QLatin1Char('\n'), true);
    end(Interrupted);
    disconnect(m_thread.get(), nullptr, this, nullptr);
    static_cast<void>(m_thread.release()); // it cannot be destroyed; it goes with the process
    OssStatusManager::instance()->showMessage(told);
}

void OssScriptEngine::shutdown()
{
    m_isShutDown = true;
    if (!m_thread)
        return;
    stop();
    m_thread->postLast();
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
    // A window passes what it gets to the widget it is meant for, which is asked again. Shortcuts go
    // to actions.
    const bool isMeant = watched->isWidgetType() || event->type() == QEvent::Shortcut;
    if (!isMeant || isUsable(watched))
        return false;
    if (event->type() == QEvent::Close) {
        event->ignore();
        if (watched == OssApplication::mainWindow()) { // closes once the script has stopped
            m_closing = static_cast<QWidget *>(watched);
            stop();
        }
    }
    m_releases.keep(watched, event);
    return true;
}
