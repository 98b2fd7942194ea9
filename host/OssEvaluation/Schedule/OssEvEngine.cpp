#include "OssEvaluation/Schedule/OssEvEngine.h"

#include "OssEvaluation/Schedule/OssEvScheduler.h"

#include <utility>

OssEvEngine::OssEvEngine()
    : OssEvEngine(Options())
{
}

OssEvEngine::OssEvEngine(const Options &options)
    : m_scheduler(std::make_unique<OssEvScheduler>(
        options.cacheBytes > 0 ? options.cacheBytes : OssEvTileCache::defaultBudget(),
        options.threads))
{
}

OssEvEngine::~OssEvEngine() = default;

OssEvEngine::Id OssEvEngine::start(OssEvRequest request)
{
    return m_scheduler->start(std::move(request));
}

void OssEvEngine::cancel(Id id)
{
    m_scheduler->cancel(id);
}

void OssEvEngine::setFocus(Id id, double x, double y)
{
    m_scheduler->setFocus(id, x, y);
}

void OssEvEngine::wait(Id id)
{
    m_scheduler->wait(id);
}

OssEvTileCache &OssEvEngine::cache()
{
    return m_scheduler->cache();
}

OssEvStatistics OssEvEngine::statistics() const
{
    return m_scheduler->statistics();
}

void OssEvEngine::resetStatistics()
{
    m_scheduler->resetStatistics();
}
