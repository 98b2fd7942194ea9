#pragma once

#include <QCache>
#include <QPixmap>

class OssNgNode;

/// Pictures of the nodes that are on screen, at the zoom at which they were last shown. A picture
/// is made when a node is painted unchanged for the second time, so one-off frames (the first, each
/// step of zooming) cost nothing extra.
class OssNgPaintCache
{
public:
    struct Picture
    {
        QPixmap pixmap; ///< null: painted once
        quint32 revision = 0;
        qreal scale = 0.0;
    };

    static OssNgPaintCache &instance();

    /// Null when the node was never painted, or thrown away since.
    Picture *find(const OssNgNode *node) { return m_pictures.object(node); }

    void store(const OssNgNode *node, Picture *picture);

    void remove(const OssNgNode *node) { m_pictures.remove(node); }

    void clear() { m_pictures.clear(); }

private:
    OssNgPaintCache();

    QCache<const OssNgNode *, Picture> m_pictures;
};
