#pragma once

#include "OssNodeGraph/OssNodeGraph_export.h"

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QRect>
#include <QTimer>

class OssNgNode;
class OssNgView;
class QPainter;

/// A ring around one node of a view that lights up twice and fades, so that the eye finds the node to
/// which it was brought. Nothing of the scene changes. GUI thread.
class OSSNODEGRAPH_EXPORT OssNgFlash : public QObject
{
    Q_OBJECT

public:
    /// `view`: where it is painted; outlives the flash.
    explicit OssNgFlash(OssNgView *view);

    /// Begins anew. Null ends it.
    void start(OssNgNode *node);

    /// Null while nothing flashes.
    const OssNgNode *node() const;

    /// In viewport pixels.
    void paint(QPainter *painter) const;

private:
    /// In viewport pixels, with room for the ring.
    QRectF ringRect() const;
    void step();

    OssNgView *m_view;
    QPointer<OssNgNode> m_node;
    QElapsedTimer m_sinceStart;
    QTimer m_timer;
    QRect m_painted; ///< what the next step has to paint over
};
