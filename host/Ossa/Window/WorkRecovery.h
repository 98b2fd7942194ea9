#pragma once

#include "OssModel/Project/OssAutosave.h"

#include <QObject>

#include <optional>

class ProjectCommands;
class QWidget;

/// Copies unsaved work while the window is open, and offers what sessions left that died.
class WorkRecovery : public QObject
{
    Q_OBJECT

public:
    /// `window` is the parent of dialogs; this object must not outlive it.
    WorkRecovery(ProjectCommands *projects, QWidget *window);
    ~WorkRecovery() override;

    /// Asks what is to become of the copies of dead sessions, if there are any. Without a user it
    /// only reports them. Before anything of the last session comes into view: what made that one
    /// crash could make this one crash as well, and the work would be out of reach.
    void ask();
    /// Restores what the user chose; asks first if that was not done. True when there is a project.
    bool restoreChosen();

    /// Writes a copy now, paint that is in no image yet included, and returns when it is on the disk.
    void keepCopy();

    /// The changes of the open project were given up or saved.
    void forgetCopy();

    /// Writes a line to log and stderr for each copy of a dead session. Touches none.
    static void report();

Q_SIGNALS:
    /// What the user must know and need not answer; empty once that is no longer so.
    void trouble(const QString &text);

private:
    void recoverNow();
    void choose(const QVector<OssRecovery::Entry> &entries);
    bool restore(const OssRecovery::Entry &entry);
    QVector<OssRecovery::Entry> readableEntries();
    void setAside(const OssRecovery::Entry &entry, const QString &reason);

    ProjectCommands *m_projects;
    QWidget *m_window;
    OssAutosave m_autosave;
    bool m_asked = false;
    std::optional<OssRecovery::Entry> m_chosen;
};
