#include "OssModel/Evaluation/OssBakeProgress.h"

#include <algorithm>

namespace {

constexpr int Steps = 1000;

} // namespace

OssBakeProgress::OssBakeProgress(const QString &title, int parts)
    : m_work(title, OssStatusManager::Blocking)
    , m_parts(std::max(1, parts))
{
}

std::function<bool(int, int)> OssBakeProgress::forPart(int part, const QString &name)
{
    m_work.setPart(name);
    return [this, part](int done, int total) {
        const int within = total > 0 ? int(qint64(Steps) * done / total) : 0;
        m_work.setProgress(Steps * part + within, Steps * m_parts);
        return !isStopped();
    };
}
