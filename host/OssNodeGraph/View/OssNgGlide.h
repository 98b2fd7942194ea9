#pragma once

#include "OssNodeGraph/OssNodeGraph_export.h"

#include <QElapsedTimer>
#include <QHash>
#include <QObject>
#include <QPointF>
#include <QTimer>

class OssNgNode;
class OssNgView;
class QPainter;

/// Shows nodes on their way from where they were to where they are. Only the picture lags behind: items have their
/// places from the start, and whatever the user does shows them there. GUI thread.
class OSSNODEGRAPH_EXPORT OssNgGlide : public QObject
{
    Q_OBJECT

public:
    using Places = QHash<const OssNgNode *, QPointF>;

    /// `view`: where it is painted; outlives the glide.
    explicit OssNgGlide(OssNgView *view);

    /// For all views of the process.
    static void setEnabled(bool enabled);
    static bool isEnabled();

    /// From these places. Nothing happens when gliding is off, for a view that is not seen, or for more nodes than
    /// can be drawn in time.
    void start(const Places &before);
    void stop();

    bool isActive() const { return m_timer.isActive(); }

    /// The whole viewport, as it is on the way.
    void paint(QPainter *painter) const;

private:
    void step();
    QPointF shiftOf(const OssNgNode *node) const;
    void paintNode(QPainter *painter, const OssNgNode *node) const;

    OssNgView *m_view;
    QHash<const OssNgNode *, QPointF> m_ways; ///< back to where they came from
    QElapsedTimer m_sinceStart;
    QTimer m_timer;
    qreal m_left = 0.0; ///< of the way, from 1 to 0
};
