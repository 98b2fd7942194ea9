#pragma once

#include "OssNodeGraph/OssNodeGraph_export.h"

#include <QRectF>
#include <QRegion>
#include <QTransform>
#include <QVector>

class OssNgEdge;
class OssNgSceneIndex;
class QGraphicsScene;
class QPainter;

/// Paints graphs, whole or in the layers that views and files have in common. Nothing here changes
/// a scene. GUI thread.
class OSSNODEGRAPH_EXPORT OssNgRenderer
{
public:
    /// Paints everything of the scene that lies in `source` into `target` of the painter, with full
    /// detail whatever the scale. The larger scale that fits both ways is not sought: `source` is
    /// stretched to `target`, so callers keep the proportions. Vector devices get vectors and text.
    static void paintSceneTo(QPainter *painter, QGraphicsScene *scene, const QRectF &source,
                             const QRectF &target);

    // Layers of a view. The painter maps from the scene unless said otherwise; `exposed` are the
    // rectangles of the scene that need painting.

    /// Canvas and its dots, which fade out as the zoom falls.
    static void paintCanvas(QPainter *painter, const QVector<QRectF> &exposed, qreal zoom);
    static void paintBackdrops(QPainter *painter, const OssNgSceneIndex &index,
                               const QVector<QRectF> &exposed, qreal zoom);
    static void paintWires(QPainter *painter, const OssNgSceneIndex &index,
                           const QVector<QRectF> &exposed, qreal zoom);
    static void paintWire(QPainter *painter, const OssNgEdge &edge, qreal zoom);
    /// As if its ends stood elsewhere.
    static void paintWire(QPainter *painter, const OssNgEdge &edge, qreal zoom,
                          const QPointF &sourceShift, const QPointF &destinationShift);
    /// Straight thin wires and plain boxes; visits no item. The painter maps from device pixels,
    /// `toDevice` from the scene to them.
    static void paintOverview(QPainter *painter, const OssNgSceneIndex &index,
                              const QTransform &toDevice, const QRectF &exposedScene);
    /// What the parts of a graph in overview are called, where there is room for it.
    static void paintNames(QPainter *painter, const OssNgSceneIndex &index,
                           const QTransform &toDevice, const QRectF &exposedScene);
};

/// Paints a scene to any device; see OssNgRenderer::paintSceneTo().
OSSNODEGRAPH_EXPORT void paintSceneTo(QPainter *painter, QGraphicsScene *scene,
                                      const QRectF &source, const QRectF &target);
