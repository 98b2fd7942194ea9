#include "OssShaderNetworkView.h"

#include "OssCore/Program/OssDebug.h"
#include "OssNodeGraph/Items/OssNgNode.h"

namespace {

constexpr const char *Source = "OssShaderNetworkView";
constexpr int VisibleMargin = 50; // pixels kept around what is made visible

OssNgNode *asNode(QGraphicsItem *item)
{
    return dynamic_cast<OssNgNode *>(item);
}

} // namespace

int OssShaderNetworkView::selectionCount() const
{
    return scene() ? scene()->selectedItems().size() : 0;
}

QRectF OssShaderNetworkView::selectionBounds() const
{
    QRectF bounds;
    const QList<QGraphicsItem *> items = scene() ? scene()->selectedItems()
                                                 : QList<QGraphicsItem *>();
    for (QGraphicsItem *item : items) {
        if (const OssNgNode *node = asNode(item))
            bounds |= node->sceneBoundingRect();
    }
    return bounds;
}

QRectF OssShaderNetworkView::selectionOrAllBounds() const
{
    return selectionCount() <= 0 ? scene()->itemsBoundingRect() : selectionBounds();
}

void OssShaderNetworkView::capZoom()
{
    // In single precision: a fit that means 1:1 often ends a hair above it.
    const auto scale = float(transform().m11());
    if (scale > 1.0F)
        limitFittedZoom(1.0);
}

void OssShaderNetworkView::frameNodes(bool EntireScene)
{
    if (!scene())
        return;
    const QRectF selected = EntireScene ? QRectF() : selectionBounds(); // of wires there are none
    fitInView(selected.isEmpty() ? visibleNodeBounds() : selected, Qt::KeepAspectRatio);
    capZoom();
}

void OssShaderNetworkView::frameNodes()
{
    frameNodes(true);
}

void OssShaderNetworkView::frameSelectedNodes()
{
    frameNodes(false);
}

void OssShaderNetworkView::fitToViewAction()
{
    if (!scene()) {
        OssDebug(Source, __LINE__, "scene() is NULL");
        return;
    }
    const QRectF r = selectionOrAllBounds();
    OssDebug(Source, __LINE__,
             "[ !! ] --FIT TO VIEW[lt(%f, %f), rb(%f, %f), c(%f, %f) h(%f), w(%f)], scale : %f",
             r.left(), r.top(), r.right(), r.bottom(), r.center().x(), r.center().y(), r.height(),
             r.width(), transform().m11());
    fitInView(r, Qt::KeepAspectRatio);
    OssDebug(Source, __LINE__, "[ !! ] --POST FIT scale  %f", transform().m11());
    if (float(transform().m11()) > 1.0F) {
        capZoom();
        OssDebug(Source, __LINE__, "[ !! ] --Rectangle has been downscaled to %f",
                 transform().m11());
    }
}

void OssShaderNetworkView::ensureIsVisibleAction()
{
    if (!scene()) {
        OssDebug(Source, __LINE__, "scene() is NULL");
        return;
    }
    const QRectF r = selectionOrAllBounds();
    OssDebug(Source, __LINE__,
             "[ !! ] --ENSURING IS VISIBLE [lt(%f, %f), rb(%f, %f), c(%f, %f) h(%f), w(%f)]",
             r.left(), r.top(), r.right(), r.bottom(), r.center().x(), r.center().y(), r.height(),
             r.width());
    ensureVisible(r, VisibleMargin, VisibleMargin);
}
