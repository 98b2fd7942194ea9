#pragma once

#include "OssCore/Program/OssService.h"
#include "OssModel/Evaluation/WorkClock.h"
#include "OssModel/Graph/OssBakeReport.h"
#include "OssModel/OssModel_export.h"

#include <QElapsedTimer>
#include <QList>
#include <QObject>
#include <QTimer>

#include <list>
#include <memory>

class BakeTask;
class OssSnBakePointNode;
struct OssNodeBake;

/// Bakes bake points, and nodes for others, one after the other while the user goes on working. Each is computed from the
/// document as it is when its turn comes. Where it would be another by the time that it is done, it is
/// begun again as soon as the user rests. What is done becomes one step for each, and waits for that while
/// a gesture lasts, and while there are undone steps, which it would cost. GUI thread.
class OSSMODEL_EXPORT OssBakeManager
    : public QObject
    , public OssService<OssBakeManager>
{
    Q_OBJECT

public:
    /// Of the bake points that are named: those that are out of date, those that are empty too, or all.
    enum Which { OutOfDate, EmptyAndOutOfDate, Again };

    OssBakeManager();
    /// Stops what runs.
    ~OssBakeManager() override;

    /// They come after those that wait already, and those that they take from before them.
    void start(const QList<OssSnBakePointNode *> &nodes, Which which);
    /// After those that wait already.
    void start(OssNodeBake bake);

    bool isRunning() const { return m_isRunning; }

    bool isPaused() const { return m_isPaused; }

    /// What is being computed is still finished, a few rows of it.
    void setPaused(bool paused);
    /// What was baked until now stays.
    void cancel();

    /// Of the node that is baked; empty between two.
    QString currentNode() const;
    /// Why the current one is neither computed nor taken over, in words; empty mostly.
    QString waitsFor() const;
    /// Of all, 0 to 1000.
    int thousandths() const;
    /// -1 as long as nothing says.
    int secondsLeft() const;

    /// What became of them until now, since nothing ran.
    const OssBakeReport &report() const { return m_report; }

Q_SIGNALS:
    /// Several times a second, and when all are done.
    void progressed();

private:
    struct Current;

    void begin();
    void wait(std::unique_ptr<BakeTask> task);
    void next();
    void compute();
    void endWork();
    void take();
    void tick();
    void leave(const QString &failure);
    void leaveRemoved();
    void end();

    std::list<std::unique_ptr<BakeTask>> m_waiting;
    std::unique_ptr<Current> m_current;
    OssBakeReport m_report;
    int m_done = 0;
    int m_total = 0;
    bool m_isRunning = false;
    bool m_isPaused = false;
    bool m_isPreparing = false; ///< events may be handled then
    QTimer m_timer;
    QElapsedTimer m_sinceEdit;
    bool m_isEdited = false; ///< since the current one was looked at
    WorkClock m_clock;
};
