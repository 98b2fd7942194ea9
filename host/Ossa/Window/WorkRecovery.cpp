#include "Ossa/Window/WorkRecovery.h"

#include "Ossa/Commands/Commands.h"
#include "Ossa/Commands/ProjectCommands.h"
#include "Ossa/Common/ApplicationPreferences.h"
#include "Ossa/Dialogs/RecoveryDialog.h"
#include "OssCore/Program/OssDebug.h"
#include "OssInterface/Popups/OssApplication.h"
#include "OssInterface/Popups/OssMessageBox.h"
#include "OssModel/Objects/OssCanvasManager.h"

#include <QDir>

#include <utility>

WorkRecovery::WorkRecovery(ProjectCommands *projects, QWidget *window)
    : QObject(window)
    , m_projects(projects)
    , m_window(window)
    , m_autosave(OssRecovery::standardFolder(), this)
{
    const auto *preferences = ApplicationPreferences::instance();
    const auto follow = [this, preferences] {
        m_autosave.setInterval(preferences->autosaveSeconds());
    };
    connect(preferences, &ApplicationPreferences::autosaveIntervalChanged, this, follow);
    follow();
    connect(&m_autosave, &OssAutosave::failed, this, [this](const QString &reason) {
        Q_EMIT trouble(tr("Unsaved work cannot be copied, a crash would lose it. %1").arg(reason));
    });
    connect(&m_autosave, &OssAutosave::copied, this, [this] { Q_EMIT trouble({}); });
    Commands::file(this, QStringLiteral("/Ossa/File/Recover Unsaved Work..."),
                   [this] { recoverNow(); });
}

WorkRecovery::~WorkRecovery() = default;

void WorkRecovery::forgetCopy()
{
    m_autosave.forgetCopy();
}

void WorkRecovery::keepCopy()
{
    // First without the paint, which takes a while: whoever ends programs may not be patient.
    m_autosave.takeCopy();
    const OssResult baked = OssCanvasManager::instance()->bakePaint();
    if (!baked)
        OssDebug("WorkRecovery", __LINE__, "[ !! ] %s", qPrintable(baked.error()));
    m_autosave.takeCopy();
    m_autosave.waitForDisk();
}

void WorkRecovery::report()
{
    const QVector<OssRecovery::Entry> entries = OssRecovery::entries(OssRecovery::standardFolder());
    for (const OssRecovery::Entry &entry : entries)
        OssMessageBox::report(
            tr("Unsaved Work"),
            entry.readable
                ? tr("\"%1\" was not saved before its session ended; its copy of %2 can be restored "
                     "in the window")
                      .arg(entry.name, RecoveryDialog::timeText(entry.copiedAt))
                : tr("a copy cannot be restored. %1").arg(entry.readable.error()));
}

QVector<OssRecovery::Entry> WorkRecovery::readableEntries()
{
    QVector<OssRecovery::Entry> readable;
    const QVector<OssRecovery::Entry> entries = OssRecovery::entries(OssRecovery::standardFolder());
    for (const OssRecovery::Entry &entry : entries) {
        if (entry.readable)
            readable.append(entry);
        else
            setAside(entry, entry.readable.error());
    }
    return readable;
}

void WorkRecovery::setAside(const OssRecovery::Entry &entry, const QString &reason)
{
    const QString place = OssRecovery::setAside(entry);
    QString text = tr("The copy of unsaved work cannot be opened.\n%1").arg(reason);
    if (!place.isEmpty())
        text += tr("\nIt was put aside as \"%1\".").arg(QDir::toNativeSeparators(place));
    OssMessageBox::warning(m_window, tr("Recover Unsaved Work"), text);
}

void WorkRecovery::ask()
{
    m_asked = true; // also where there is nothing to ask
    if (!OssApplication::popupsAllowed()) {
        report();
        return;
    }
    const QVector<OssRecovery::Entry> entries = readableEntries();
    if (!entries.isEmpty())
        choose(entries);
}

void WorkRecovery::choose(const QVector<OssRecovery::Entry> &entries)
{
    m_asked = true;
    RecoveryDialog dialog(entries, m_window);
    if (dialog.exec() == QDialog::Accepted)
        m_chosen = dialog.chosen();
}

bool WorkRecovery::restoreChosen()
{
    if (!m_asked)
        ask();
    m_asked = false;
    const std::optional<OssRecovery::Entry> chosen = std::exchange(m_chosen, std::nullopt);
    return chosen && restore(*chosen);
}

bool WorkRecovery::restore(const OssRecovery::Entry &entry)
{
    if (!m_projects->mayClose())
        return false;
    const OssResult opened = m_autosave.restore(entry);
    if (!opened)
        setAside(entry, opened.error());
    return opened.ok();
}

void WorkRecovery::recoverNow()
{
    const QVector<OssRecovery::Entry> entries = readableEntries();
    if (entries.isEmpty()) {
        OssMessageBox::information(m_window, tr("Recover Unsaved Work"),
                                   tr("No session left work that was not saved."));
        return;
    }
    choose(entries);
    restoreChosen();
}
