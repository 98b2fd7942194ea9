#pragma once

#include "OssNodeGraph/View/OssNgRenderer.h"
#include "support/ExampleGraph.h"

#include <QImage>
#include <QPainter>

/// A part of the scene as files of the graph show it.
inline QImage picture(QGraphicsScene *scene, const QRectF &area, const QSize &size)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    OssNgRenderer::paintSceneTo(&painter, scene, area, QRectF(QPointF(), size));
    return image;
}

/// A node that fills the picture.
inline QImage picture(const OssNgNode *node, const QSize &size = {400, 200})
{
    return picture(node->scene(), node->sceneBoundingRect(), size);
}
