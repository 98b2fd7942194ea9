#include "OssAPI/NodeGraphView.h"

#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssScriptObjects/OssaNodeGraph.h"
#include "OssScriptObjects/OssScriptError.h"
#include "OssScriptObjects/OssScriptManager.h"
#include "OssShaderNetworkView.h"

#include <cmath>

namespace Ossa {

namespace {

constexpr float SmallestZoom = 1e-4F; // beyond these the view would not find back
constexpr float LargestZoom = 1e4F;

} // namespace

NodeGraphView::NodeGraphView(QObject *internal)
{
    if (qobject_cast<QGraphicsView *>(internal)) {
        initAPI(internal);
        if (const auto *shown = qobject_cast<OssShaderNetworkView *>(internal)) {
            connect(shown, &OssShaderNetworkView::nodeAdded, this,
                    [this](const OssSnBaseNode *node) { Q_EMIT nodeAdded(node->name()); });
            connect(shown, &OssShaderNetworkView::nodeRemoved, this,
                    [this](const OssSnBaseNode *node) { Q_EMIT nodeRemoved(node->name()); });
        }
    } else {
        OssScriptError(OssScriptException::ObjectUnavailable, __FILE__, __LINE__,
                       "Invalid QGraphicsView object passed to %s().",
                       "Ossa::NodeGraphView::NodeGraphView");
    }
}

NodeGraphView::~NodeGraphView() = default;

OssShaderNetworkView *NodeGraphView::view() const
{
    auto *wrapped = qobject_cast<QGraphicsView *>(internalObject());
    if (!wrapped) {
        OssScriptError(OssScriptException::InternalObjectGone, __FILE__, __LINE__,
                       "Internal QGraphicsView object not valid");
        return nullptr;
    }
    if (qstrcmp(wrapped->metaObject()->className(), "OssShaderNetworkView") != 0) {
        OssScriptError(OssScriptException::ObjectUnavailable, __FILE__, __LINE__,
                       "Cannot obtain the Node Graph view");
        return nullptr;
    }
    return static_cast<OssShaderNetworkView *>(wrapped);
}

NodeGraph *NodeGraphView::nodeGraph() const
{
    const OssShaderNetworkView *shown = view();
    OssShaderNetwork *network = shown ? shown->network() : nullptr;
    if (!network)
        return nullptr;
    return qobject_cast<NodeGraph *>(
        OssScriptManager::instance()->obtainAPI(network, QStringLiteral("Ossa::NodeGraph")));
}

float NodeGraphView::zoomLevel() const
{
    const OssShaderNetworkView *shown = view();
    return shown ? float(shown->transform().mapRect(QRectF(0.0, 0.0, 1.0, 1.0)).width()) : 0.0F;
}

void NodeGraphView::setZoomLevel(float ZoomLevel)
{
    OssShaderNetworkView *shown = view();
    if (!shown)
        return;
    if (!(ZoomLevel >= SmallestZoom && ZoomLevel <= LargestZoom)) {
        OssScriptError(OssScriptException::OutOfRange, __FILE__, __LINE__,
                       "ZoomLevel must be between 0.0001 and 10000");
        return;
    }
    const double now = shown->transform().mapRect(QRectF(0.0, 0.0, 1.0, 1.0)).width();
    shown->zoomOut(now, QGraphicsView::AnchorViewCenter);
    shown->zoomIn(double(ZoomLevel), QGraphicsView::AnchorViewCenter);
}

QPointF NodeGraphView::center() const
{
    const OssShaderNetworkView *shown = view();
    return shown ? shown->mapToScene(shown->width() / 2, shown->height() / 2) : QPointF();
}

void NodeGraphView::setCenter(QPointF Center)
{
    OssShaderNetworkView *shown = view();
    if (shown && std::isfinite(Center.x()) && std::isfinite(Center.y()))
        shown->centerOn(Center);
    else if (shown)
        OssScriptError(OssScriptException::OutOfRange, __FILE__, __LINE__,
                       "Center must be a finite point");
}

QPointF NodeGraphView::posFromGlobalPos(QPoint GlobalPos) const
{
    const OssShaderNetworkView *shown = view();
    return shown ? shown->mapToScene(shown->mapFromGlobal(GlobalPos)) : QPointF();
}

} // namespace Ossa
