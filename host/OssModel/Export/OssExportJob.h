#pragma once

#include "OssEvaluation/Values/OssEvKey.h"
#include "OssModel/Evaluation/WorkClock.h"
#include "OssModel/Export/OssExportPlan.h"
#include "OssModel/OssModel_export.h"

#include <QHash>
#include <QObject>
#include <QTimer>

#include <memory>

class QThread;

/// Writes the files of a plan in the background, one after the other, behind whatever is computed to be
/// looked at. What is written is the document as it was when the job began. A file is there whole, or as
/// it was before; one that cannot be written keeps no other from it. GUI thread.
class OSSMODEL_EXPORT OssExportJob : public QObject
{
    Q_OBJECT

public:
    using Keys = QHash<QString, OssEvKey>; ///< by path

    /// Files whose pixels are those of the keys, and that are there, are not written again.
    explicit OssExportJob(const OssExportPlan &plan, const Keys &known = {},
                          QObject *parent = nullptr);

    /// Paint that is in no image yet is written as it is, instead of being settled before: nothing in the
    /// document changes.
    void setLeavesPaint(bool leaves) { m_leavesPaint = leaves; }

    /// Cancels, and waits until nothing is written any more.
    ~OssExportJob() override;

    /// Copies what is computed out of the document. Only once.
    void start();

    bool isRunning() const { return m_thread != nullptr; }

    bool isPaused() const;
    /// What is being computed is still finished, a few rows of one file.
    void setPaused(bool paused);
    void cancel();

    const OssExportPlan &plan() const { return m_plan; }

    /// Of all the files' texels, 0 to 1000.
    int thousandths() const;
    /// The path that is written; empty before and after.
    QString currentFile() const;
    /// Reckoned from what is done; -1 as long as that says nothing.
    int secondsLeft() const;

    /// What became of it, when it has ended: files that are new, and reasons of those that are not.
    QStringList written() const;
    QStringList failures() const;
    QStringList failedFiles() const;
    /// Of all files that are as they should be, new or not.
    Keys keys() const;
    /// All of it: fails where a file could not be written; cancelled where the user stopped it.
    OssResult result() const;

Q_SIGNALS:
    /// Several times a second.
    void progressed();
    void finished();

private:
    struct Work;

    void end();
    void tellProblems() const;

    OssExportPlan m_plan;
    std::shared_ptr<Work> m_work; ///< what the worker has of it
    std::unique_ptr<QThread> m_thread;
    bool m_leavesPaint = false;
    QTimer m_timer;
    WorkClock m_clock;
};
