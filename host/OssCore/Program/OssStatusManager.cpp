#include "OssCore/Program/OssStatusManager.h"

OssStatusManager::Work::Work(const QString &title, Kind kind)
{
    OssStatusManager *status = instance();
    if (++status->m_depth > 1)
        return;
    status->m_title = title;
    status->m_kind = kind;
    status->m_done = 0;
    status->m_total = 0;
    status->m_cancelled = false;
    Q_EMIT status->beginProcessing(title);
}

OssStatusManager::Work::~Work()
{
    OssStatusManager *status = instance();
    if (--status->m_depth > 0)
        return;
    status->m_kind = Beside;
    Q_EMIT status->endProcessing();
}

void OssStatusManager::Work::setPart(const QString &part)
{
    OssStatusManager *status = instance();
    if (status->m_depth == 1)
        Q_EMIT status->partChanged(part);
}

void OssStatusManager::Work::setProgress(int done, int total)
{
    OssStatusManager *status = instance();
    if (status->m_depth > 1)
        return;
    if (qint64(done) * status->m_total < qint64(status->m_done) * total)
        return;
    status->m_done = done;
    status->m_total = total;
    Q_EMIT status->progressChanged(done, total);
}

bool OssStatusManager::Work::isCancelled() const
{
    return instance()->m_cancelled;
}

void OssStatusManager::cancel()
{
    if (inProgress())
        m_cancelled = true;
}

void OssStatusManager::askToStop()
{
    cancel();
    Q_EMIT stopAsked();
}

void OssStatusManager::showMessage(const QString &message)
{
    Q_EMIT messageShown(message);
}

void OssStatusManager::showMode(const QString &text)
{
    Q_EMIT modeShown(text);
}
