#pragma once

#include "OssCore/OssCore_export.h"
#include "OssCore/Program/OssService.h"

#include <QObject>
#include <QString>

/// Tells about long work: what runs, how far it is, and whether the user wants it stopped.
class OSSCORE_EXPORT OssStatusManager
    : public QObject
    , public OssService<OssStatusManager>
{
    Q_OBJECT

public:
    OssStatusManager() = default;

    /// Blocking: the user must not edit until the work ends; whoever shows it sees to that.
    enum Kind { Beside, Blocking };

    /// Work of the scope. Works nest; the outermost one is what the user sees.
    class OSSCORE_EXPORT Work
    {
    public:
        explicit Work(const QString &title, Kind kind = Beside);
        Work(const Work &) = delete;
        Work &operator=(const Work &) = delete;
        ~Work();

        /// Names what is being done just now.
        void setPart(const QString &part);
        /// `done` of `total`; a total of 0 means that the end is not known. What would lead back is
        /// not told.
        void setProgress(int done, int total);
        bool isCancelled() const;
    };

    bool inProgress() const { return m_depth > 0; }

    bool isBlocking() const { return m_kind == Blocking; }

    QString title() const { return m_title; }

    int done() const { return m_done; }

    int total() const { return m_total; }

    /// Asks the running work to stop. It does so at the next point where that is safe.
    void cancel();

    /// The user wants whatever is being computed to stop, what runs in the background too.
    void askToStop();

    /// One line for the status bar: what just happened.
    void showMessage(const QString &message);
    /// One line that stays there while the pointer does something else than usual, and says how that
    /// ends; empty when it has.
    void showMode(const QString &text);

Q_SIGNALS:
    void beginProcessing(const QString &title);
    void partChanged(const QString &part);
    void progressChanged(int done, int total);
    void endProcessing();
    /// To whoever computes in the background.
    void stopAsked();
    void messageShown(const QString &message);
    void modeShown(const QString &text);

private:
    QString m_title;
    Kind m_kind = Beside;
    int m_depth = 0;
    int m_done = 0;
    int m_total = 0;
    bool m_cancelled = false;
};
