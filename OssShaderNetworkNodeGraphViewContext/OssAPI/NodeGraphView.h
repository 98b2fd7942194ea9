#pragma once

#include "OssScriptObjects/OssaAPI.h"

#include <QPoint>
#include <QPointF>

class OssShaderNetworkView;

namespace Ossa {

class NodeGraph;

/// A view of a node graph for scripts. Errors are reported; the call then gives 0, null or (0, 0).
class Q_DECL_EXPORT NodeGraphView : public API
{
    Q_OBJECT
    Q_CLASSINFO("doc", "A view of a node graph.")
    Q_CLASSINFO("nodeGraph", "The graph that is shown.")
    Q_CLASSINFO("zoomLevel", "Pixels for each unit of the scene.")
    Q_CLASSINFO("setZoomLevel", "Zooms about the middle of the view.")
    Q_CLASSINFO("center", "The place of the scene under the middle of the view.")
    Q_CLASSINFO("setCenter", "Shows a place of the scene in the middle.")
    Q_CLASSINFO("posFromGlobalPos", "From the screen to the scene.")

public:
    /// Wraps a QGraphicsView; reports any other object and stays empty.
    explicit NodeGraphView(QObject *internal);
    ~NodeGraphView() override;

public Q_SLOTS:
    /// The graph that is shown; null when there is none.
    NodeGraph *nodeGraph() const;
    /// Pixels for each unit of the scene.
    float zoomLevel() const;
    /// About the middle of the view.
    void setZoomLevel(float ZoomLevel);
    /// The place of the scene under the middle of the view.
    QPointF center() const;
    void setCenter(QPointF Center);
    /// From the screen to the scene.
    QPointF posFromGlobalPos(QPoint GlobalPos) const;

Q_SIGNALS:
    /// The user made or removed a node in the view; of its name.
    void nodeAdded(const QString &name);
    void nodeRemoved(const QString &name);

private:
    /// Null, and reported, when it is gone or another kind of view.
    OssShaderNetworkView *view() const;
};

} // namespace Ossa
