#pragma once

#include <QVector>

class QGraphicsItem;
class QGraphicsScene;

/// Parents without contents for the items of one scene, a few dozen items each. After every change
/// a scene visits all its top-level items, so that moving one would cost more the more there are.
///
/// Items are painted in the order in which they came, as without parents. Positions stay scene
/// coordinates. An item that leaves the scene leaves its bucket; a scene that dies with its items
/// takes the buckets along.
class OssNgItemBuckets
{
public:
    explicit OssNgItemBuckets(QGraphicsScene *scene);

    /// The item is in the scene and has no parent.
    void add(QGraphicsItem *item);
    /// Deletes the buckets. To be called when no item is left in them.
    void clear();

private:
    QGraphicsItem *openBucket();
    void dropEmptyBuckets();

    QGraphicsScene *m_scene;
    QVector<QGraphicsItem *> m_buckets; ///< owned by the scene
    int m_inLast = 0;                   ///< items that the last one was given
    int m_sweepAt = 64;                 ///< number of buckets from which empty ones are looked for
};
