#include "Ossa/Window/StatusArea.h"

#include "Ossa/Export/BakeProgress.h"
#include "Ossa/Export/ExportProgress.h"
#include "OssCore/Program/OssIcon.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssInterface/Palettes/OssPalette.h"
#include "OssInterface/Palettes/OssPaletteManager.h"
#include "OssModel/Evaluation/OssProblems.h"
#include "OssModel/Images/OssColorManagement.h"
#include "OssModel/Objects/OssMeshes.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectManager.h"
#include "OssModel/Project/OssProjectMeshes.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QToolButton>

namespace {

constexpr int messageTime = 8000;   // ms
constexpr int commandTime = 300;    // ms
constexpr int patience = 500;       // ms before a step of progress lets events through
constexpr int eventsInterval = 100; // ms

bool isInput(QEvent::Type type)
{
    switch (type) {
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::ShortcutOverride:
    case QEvent::Shortcut:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::Wheel:
    case QEvent::ContextMenu:
    case QEvent::DragEnter:
    case QEvent::Drop:
    case QEvent::Close:
        return true;
    default:
        return false;
    }
}

/// For words with names, which may hold anything.
QLabel *plainLabel(QWidget *parent)
{
    auto *label = new QLabel(parent);
    label->setTextFormat(Qt::PlainText);
    return label;
}

} // namespace

StatusArea::StatusArea(QWidget *parent)
    : QStatusBar(parent)
    , m_mode(plainLabel(this))
    , m_title(plainLabel(this))
    , m_progress(new QProgressBar(this))
    , m_stop(new QPushButton(tr("Stop"), this))
    , m_problems(new QToolButton(this))
{
    setSizeGripEnabled(false);
    m_progress->setTextVisible(false);
    m_progress->setFixedWidth(180);
    m_progress->setAccessibleName(tr("Progress"));
    m_stop->setToolTip(tr("Stop the work that is running (Esc)"));
    for (QWidget *widget : {static_cast<QWidget *>(m_title), static_cast<QWidget *>(m_progress),
                            static_cast<QWidget *>(m_stop)}) {
        addPermanentWidget(widget);
        widget->hide();
    }
    m_mode->setObjectName(QStringLiteral("Mode"));
    insertPermanentWidget(0, m_mode);
    m_mode->hide();
    addPermanentWidget(new ExportProgress(this));
    addPermanentWidget(new BakeProgress(this));
    m_problems->setObjectName(QStringLiteral("Problems"));
    m_problems->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_problems->setIcon(OssIcon::createIconFromFilename(QStringLiteral("Problems.png")));
    m_problems->setToolTip(tr("Show what is wrong with nodes and objects"));
    addPermanentWidget(m_problems);
    connect(m_problems, &QToolButton::clicked, this, [] {
        if (OssPalette *palette = OssPaletteManager::instance()->find(
                QStringLiteral("problems_palette")))
            palette->showBySidebar();
    });
    connect(OssProblems::instance(), &OssProblems::changed, this, &StatusArea::showProblems);
    connect(OssMeshes::instance(), &OssMeshes::changed, this, &StatusArea::showProblems);
    connect(OssColorManagement::instance(), &OssColorManagement::changed, this,
            &StatusArea::showProblems);
    connect(OssProjectManager::instance(), &OssProjectManager::projectClosed, this,
            &StatusArea::showProblems);
    showProblems();
    auto *status = OssStatusManager::instance();
    connect(m_stop, &QPushButton::clicked, this, &StatusArea::stop);
    connect(status, &OssStatusManager::beginProcessing, this, &StatusArea::begin);
    connect(status, &OssStatusManager::partChanged, this, &StatusArea::showPart);
    connect(status, &OssStatusManager::progressChanged, this, &StatusArea::showProgress);
    connect(status, &OssStatusManager::endProcessing, this, &StatusArea::end);
    connect(status, &OssStatusManager::messageShown, this, [this](const QString &message) {
        showMessage(message, messageTime);
        m_sinceMessage.start();
    });
    connect(status, &OssStatusManager::modeShown, this, &StatusArea::showMode);
    const auto *history = OssUndoManager::instance();
    connect(history, &OssUndoManager::recorded, this, &StatusArea::dropOldMessage);
    connect(history, &OssUndoManager::undone, this, &StatusArea::dropOldMessage);
    connect(history, &OssUndoManager::redone, this, &StatusArea::dropOldMessage);
    connect(OssProjectManager::instance(), &OssProjectManager::projectClosed, this,
            &StatusArea::dropOldMessage);
}

void StatusArea::showMode(const QString &text)
{
    m_mode->setText(text);
    m_mode->setVisible(!text.isEmpty());
}

void StatusArea::dropOldMessage()
{
    // What a command says comes before or after its step.
    if (m_sinceMessage.isValid() && m_sinceMessage.elapsed() > commandTime)
        clearMessage();
}

bool StatusArea::eventFilter(QObject *watched, QEvent *event)
{
    if (!isInput(event->type()))
        return false;
    if (event->type() == QEvent::KeyPress
        && static_cast<const QKeyEvent *>(event)->key() == Qt::Key_Escape)
        stop();
    // Windows are let through: they hand the event on to a widget, which is looked at then. Keys of
    // commands arrive at the commands themselves.
    const bool forStop = watched == m_stop && event->type() != QEvent::Shortcut;
    if (forStop || (!watched->isWidgetType() && event->type() != QEvent::Shortcut))
        return false;
    m_releases.keep(watched, event);
    event->ignore(); // or a window would close all the same
    return true;
}

void StatusArea::begin(const QString &title)
{
    m_running.start();
    m_sinceEvents.start();
    m_work = title;
    showPart({});
    m_progress->setRange(0, 0);
    m_stop->setEnabled(true);
    m_title->show();
    m_progress->show();
    m_stop->show();
}

void StatusArea::showPart(const QString &part)
{
    m_title->setText(part.isEmpty() || m_work.contains(part) ? m_work
                                                             : tr("%1: %2").arg(m_work, part));
}

void StatusArea::showProblems()
{
    const int count = OssProblems::instance()->problems().size()
                      + OssProjectMeshes::troubles(OssProjectManager::instance()->currentProject())
                            .size()
                      + (OssColorManagement::instance()->problem().isEmpty() ? 0 : 1);
    m_problems->setText(count == 1 ? tr("1 problem") : tr("%1 problems").arg(count));
    m_problems->setVisible(count > 0);
}

void StatusArea::stop()
{
    OssStatusManager::instance()->cancel();
    m_stop->setEnabled(false);
}

void StatusArea::showProgress(int done, int total)
{
    m_progress->setRange(0, total);
    m_progress->setValue(done);
    if (m_running.elapsed() > patience && m_sinceEvents.elapsed() > eventsInterval)
        letStopThrough();
}

void StatusArea::end()
{
    m_releases.deliver();
    m_title->hide();
    m_progress->hide();
    m_stop->hide();
}

void StatusArea::letStopThrough()
{
    if (m_inEvents)
        return;
    m_inEvents = true;
    qApp->installEventFilter(this);
    QApplication::processEvents(QEventLoop::ExcludeSocketNotifiers);
    qApp->removeEventFilter(this);
    m_inEvents = false;
    m_sinceEvents.restart();
}
