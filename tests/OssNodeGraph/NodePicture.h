#pragma once

#include "OssNodeGraph/View/OssNgRenderer.h"
#include "support/ExampleGraph.h"

#include <QImage>
#include <QPainter>

/// What is painted of a node, which fills the picture.
inline QImage picture(GraphScene *scene, const OssNgNode *node, const QSize &size = {400, 200})
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    OssNgRenderer::paintSceneTo(&painter, scene, node->sceneBoundingRect(),
                                QRectF(QPointF(), size));
    painter.end();
    return image;
}
