#include "OssNodeGraph/Drawing/OssNgPaintCache.h"

#include <QCoreApplication>

namespace {

constexpr int BudgetInKilobytes = 64 * 1024;

} // namespace

OssNgPaintCache::OssNgPaintCache()
    : m_pictures(BudgetInKilobytes)
{
}

OssNgPaintCache &OssNgPaintCache::instance()
{
    static OssNgPaintCache cache;
    static const bool tidied = [] {
        qAddPostRoutine([] { cache.clear(); });
        return true;
    }();
    Q_UNUSED(tidied)
    return cache;
}

void OssNgPaintCache::store(const OssNgNode *node, Picture *picture)
{
    const QPixmap &pixmap = picture->pixmap;
    m_pictures.insert(node, picture, 1 + pixmap.width() * pixmap.height() * 4 / 1024);
}
