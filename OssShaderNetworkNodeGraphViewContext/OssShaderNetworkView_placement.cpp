#include "OssShaderNetworkView.h"

#include "OssCore/OssDebug.h"
#include "OssNodeGraph/OssNgBackdropNode.h"
#include "OssNodeGraph/OssNgNode.h"
#include "OssNodeGraph/OssNgSceneIndex.h"
#include "OssSnNodeGraphViewContextManager.h"

namespace {

constexpr const char *Source = "OssShaderNetworkView";
constexpr qreal Gap = 30.0; // scene units between a node and one that was moved out of its way
constexpr int MaximumRelocations = 1000;

/// The topmost node that collides with the item; backdrops do not count. Asks the scene's own
/// index: that of Qt looks at every item of the scene until the event loop has run.
OssNgNode *overlapped(const OssNgNode *guiNode, QGraphicsScene *scene)
{
    const QVector<OssNgNode *> near = OssNgSceneIndex::of(scene)->nodesIn(
        guiNode->sceneBoundingRect());
    for (auto other = near.crbegin(); other != near.crend(); ++other) {
        if (*other != guiNode && !qobject_cast<OssNgBackdropNode *>(*other)
            && guiNode->collidesWithItem(*other, Qt::IntersectsItemShape))
            return *other;
    }
    return nullptr;
}

} // namespace

void OssShaderNetworkView::placeNode(OssSnBaseNode *node)
{
    if (!scene()) {
        OssDebug(Source, __LINE__, "scene() is NULL");
        return;
    }
    OssNgNode *guiNode = OssSnNodeGraphViewContextManager::guiNodeOf(node);
    if (!guiNode)
        return;
    int relocations = 0;
    while (relocations < MaximumRelocations) {
        const OssNgNode *other = overlapped(guiNode, scene());
        if (!other)
            break;
        OssDebug(Source, __LINE__,
                 "[ -- ] Found overlapping node %p, '%s', will relocate THIS node (%p, '%s') ",
                 static_cast<const void *>(other), qPrintable(other->text()),
                 static_cast<void *>(guiNode), qPrintable(guiNode->text()));
        relocateNodeBeside(guiNode, other);
        ++relocations;
    }
    if (relocations > 0)
        Q_EMIT guiNode->posChanged(guiNode->pos());
}

void OssShaderNetworkView::relocateNodeBeside(OssNgNode *guiNode, const OssNgNode *other)
{
    const QRectF bounds = other->boundingRect();
    const auto x = float(other->pos().x() + bounds.width() + Gap);
    const auto y = float(other->pos().y() + bounds.height() + Gap);
    guiNode->setPosition({qreal(x), qreal(y)});
}
