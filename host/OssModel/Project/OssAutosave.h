#pragma once

#include "OssModel/Project/OssProjectSnapshot.h"
#include "OssModel/Project/OssRecovery.h"

#include <QElapsedTimer>
#include <QObject>
#include <QThreadPool>
#include <QTimer>

#include <functional>
#include <memory>

/// Keeps a copy of the open project in the recovery folder while it has changes that are not saved.
/// The user's own file is never touched. GUI thread.
///
/// A copy is taken while the user rests, in steps of a few milliseconds that begin anew when the
/// user goes on; putting it together, checking and writing it is another thread's work. Saving,
/// closing and undoing to the saved state remove the copy. A copy that is there when this object
/// dies stays and will be offered: see forgetCopy().
class OSSMODEL_EXPORT OssAutosave : public QObject
{
    Q_OBJECT

public:
    /// What decides when a copy is taken; times in milliseconds.
    struct Situation
    {
        qint64 interval = 0;       ///< the user's choice
        qint64 sinceFirstEdit = 0; ///< of those that no copy holds
        qint64 sinceLastEdit = 0;
        qint64 sinceInput = 0;  ///< since the last key, click or turn of the wheel
        bool inGesture = false; ///< a button is held or an edit is half made
    };

    enum Decision {
        Wait,
        TakeInSteps,
        TakeAtOnce, ///< the user never rests
    };

    static constexpr qint64 RestAfterEdit = 10000; ///< then there is a copy, whatever the interval
    static constexpr qint64 RestOfHands = 2000;    ///< before a copy is begun

    static Decision decide(const Situation &now);

    explicit OssAutosave(const QString &recoveryFolder, QObject *parent = nullptr);
    /// Waits until the disk is done.
    ~OssAutosave() override;

    /// At the latest after this time the edits are in a copy. 0: no copies are made.
    void setInterval(int seconds);

    /// Takes a copy now, in one go, if the project is modified.
    void takeCopy();

    /// Opens what a dead session left, as the modified project that it was. Its copy is this
    /// session's from now on. On failure the open project and the copy are as they were.
    OssResult restore(const OssRecovery::Entry &entry);

    /// The user has given up the changes, or there are none.
    void forgetCopy();

    /// Returns when nothing is left to be written or removed.
    void waitForDisk();

Q_SIGNALS:
    void copied();
    /// Once for each row of failures.
    void failed(const QString &reason);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void noteEdit();
    void look();
    Situation situation() const;
    void begin();
    void step();
    void abandon();
    void hand(OssProjectSnapshot::Parts parts);
    void finish(const OssResult &result, int revision);
    void onWorker(std::function<void()> work);

    // Used by the worker only; dies after it.
    OssRecovery::Session m_session;
    QThreadPool m_worker; ///< one thread, so that things happen in order
    std::unique_ptr<OssProjectSnapshot> m_snapshot;
    QTimer m_looking;
    QTimer m_stepping;
    QElapsedTimer m_firstEdit;
    QElapsedTimer m_lastEdit;
    QElapsedTimer m_lastInput;
    int m_interval = 0; ///< seconds
    int m_revision = 0;
    int m_copiedRevision = 0;
    bool m_writing = false;
    bool m_failing = false;
};
