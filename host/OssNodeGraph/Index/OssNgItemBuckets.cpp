#include "OssNodeGraph/Index/OssNgItemBuckets.h"

#include <QGraphicsItem>
#include <QGraphicsScene>

#include <algorithm>

namespace {

/// A change costs a visit to every bucket and to every item of the buckets concerned.
constexpr int BucketSize = 32;

class Bucket final : public QGraphicsItem
{
public:
    Bucket() { setFlag(ItemHasNoContents); }

    QRectF boundingRect() const override { return {}; }

    void paint(QPainter *, const QStyleOptionGraphicsItem *, QWidget *) override {}
};

} // namespace

OssNgItemBuckets::OssNgItemBuckets(QGraphicsScene *scene)
    : m_scene(scene)
{
}

QGraphicsItem *OssNgItemBuckets::openBucket()
{
    if (m_buckets.size() >= m_sweepAt) {
        dropEmptyBuckets();
        m_sweepAt = std::max(64, 2 * m_buckets.size());
    }
    m_buckets.append(new Bucket);
    m_scene->addItem(m_buckets.last());
    m_inLast = 0;
    return m_buckets.last();
}

void OssNgItemBuckets::dropEmptyBuckets()
{
    const auto empty = std::stable_partition(
        m_buckets.begin(), m_buckets.end(),
        [](const QGraphicsItem *bucket) { return !bucket->childItems().isEmpty(); });
    std::for_each(empty, m_buckets.end(), [](QGraphicsItem *bucket) { delete bucket; });
    m_buckets.erase(empty, m_buckets.end());
}

void OssNgItemBuckets::add(QGraphicsItem *item)
{
    QGraphicsItem *bucket = m_buckets.isEmpty() || m_inLast == BucketSize ? openBucket()
                                                                          : m_buckets.last();
    ++m_inLast;
    item->setParentItem(bucket);
}

void OssNgItemBuckets::clear()
{
    qDeleteAll(m_buckets);
    m_buckets.clear();
    m_inLast = 0;
}
