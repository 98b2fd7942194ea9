#pragma once

#include "Ossa/Surfaces/MaterialBalls.h"
#include "OssEvaluation/Schedule/OssEvEngine.h"

#include <QHash>
#include <QImage>
#include <QObject>
#include <QPointer>
#include <QTimer>

class OssNgNode;
class OssNgView;
class OssSnBaseNode;

/// Small pictures of what nodes give, in the node graph that is shown; of materials on a ball in light,
/// where OpenGL can be had. Computed for nodes in view that are large enough to show one, a few at a time and after everything else; made anew when what
/// a node gives has changed. A picture makes its node taller, but only as far as there is room: where
/// other nodes, or the end of its backdrop, come close it shows less or nothing. GUI thread, which never
/// waits for pixels.
class NodeThumbnails : public QObject
{
    Q_OBJECT

public:
    explicit NodeThumbnails(QObject *parent = nullptr);
    ~NodeThumbnails() override;

    /// Off at first. Off takes the pictures away and costs nothing.
    void setEnabled(bool enabled);

    bool isEnabled() const { return m_enabled; }

private:
    struct Shown
    {
        QPointer<OssNgNode> item;
        QString key; ///< of the picture that the item has, or that is on its way
        QImage picture;
        int rows = 0;      ///< of the picture that the item shows
        qreal grown = 0.0; ///< how much taller that makes the item
    };

    void look();
    void lookAt(OssNgNode *item);
    void start(OssNgNode *item, const OssSnBaseNode *node);
    void startBall(OssNgNode *item, const OssSnBaseNode *node);
    void startFlat(OssNgNode *item, const OssSnBaseNode *node);
    void showPicture(OssNgNode *item, const QImage &picture);
    void finish(OssEvEngine::Id id, const QImage &picture);
    /// Shows as much of the picture as there is room for.
    static void fit(Shown *shown);
    void forgetAll();

    bool m_enabled = false;
    bool m_dirty = true;
    QTimer m_timer;
    QRectF m_lastView;
    QHash<OssNgNode *, Shown> m_shown;
    QHash<OssEvEngine::Id, QPointer<OssNgNode>> m_running;
    MaterialBalls m_balls;
    int m_ballsRunning = 0;
};
