#pragma once

#include "OssCore/Documents/OssSerializableObject.h"
#include "OssModel/OssModel_export.h"

#include <QList>
#include <QPointF>
#include <QStringList>

class OssSnBaseNode;

/// How far the "keep the result" state of a node is.
enum OssSnBaseNodeCacheActiveState { CacheOff = 0, CachePending = 1, CacheActive = 2 };

/// What a node tells those that show it: its contexts, panels, the network around. Listeners hear of
/// a change when it has been made, on undo and redo too. GUI thread.
class OSSMODEL_EXPORT OssSnNodeNotices : public OssSerializableObject
{
    Q_OBJECT

public:
    /// Where a node goes relative to another, in grid steps.
    enum NodeLayoutType {
        LayoutFreeSpot = 0,
        LayoutBelow = 1,
        LayoutTwoRight = 2,
        LayoutLeftBelow = 3,
        LayoutRightAbove = 4,
        LayoutTwoBelow = 5,
        LayoutThreeRight = 6,
        LayoutTwoRightLoose = 7,
        LayoutLeft = 8,
        LayoutBeside = 9,
        LayoutSame = 10,
        LayoutRightAboveUneven = 11
    };
    Q_ENUM(NodeLayoutType)

    using OssSerializableObject::OssSerializableObject;

    /// Asks the contexts to place the node above the reference, moved aside.
    void positionNodeOnTopIndented(OssSnBaseNode *reference)
    {
        Q_EMIT nodePositionedOnTopIdented(reference);
    }

    /// Tells whoever shows the node that it left its network.
    void emitRemovedFromNetwork() { Q_EMIT nodeRemovedFromNetwork(); }

    void emitNodeStateRefreshed() { Q_EMIT nodeStateRefreshed(); }

    /// Tells whoever marks system shaders that the node, or a group around it, became one or is none
    /// any more.
    void emitSystemShaderStatus() { Q_EMIT systemShaderStatusSync(); }

Q_SIGNALS:
    void nameChanged(QString name);
    void descriptionChanged(QString description);
    void enabledChanged(int enabled);
    void bypassedChanged(bool bypassed);
    void lockedChanged(bool locked);
    void cacheActiveChanged(OssSnBaseNodeCacheActiveState state);
    void errorTextChanged(QString text);
    void inputNodeChanged(QString input, OssSnBaseNode *source, QString outputPoint);
    void outputNodeDetached(QString outputPoint);
    void inputAdded(QString name);
    void inputListAdded(QStringList names);
    void inputRemoved(QString name);
    void inputsRefreshed();
    void outputsRefreshed();
    void inputOrderChanged(QStringList names);
    void nodeInputRenamed(QString oldName, QString newName);
    void inputEnabledChanged(QString name, bool enabled);
    void outputPointAdded(QString name);
    void outputPointRemoved(QString name);
    /// At the first connection, resp. when the last one is gone.
    void outputPointUsed(QString name);
    void outputPointFreed(QString name);
    void outputPointRenamed(QString oldName, QString newName);
    void guiActiveChanged(bool active);
    void shaderModelChanged();
    void emitSetLayout(NodeLayoutType type, OssSnBaseNode *reference, bool freshCoordinates,
                       bool preventOverlap);
    void nodePositionedManual(OssSnBaseNode *reference, QPointF offset);
    void nodePositionedUnderneath(OssSnBaseNode *reference, int factor);
    void nodePositionedNextTo(OssSnBaseNode *reference);
    void nodeSyncedUnderneathNode(OssSnBaseNode *reference, bool ignoreContainerOfPreviousNode);
    void nodePositionedOnTopIdented(OssSnBaseNode *reference);
    void uniformariseContainers(QList<OssSnBaseNode *> nodes);
    void newNodeAdded();
    void inputConnectionIsShared(QString input);
    void systemShaderStatusSync();
    void attachViewerToNode(int input);
    void viewerNodeCurrentEdgeChanged(int edge);
    void viewerNodeRequestUpdateVirtualEdge();
    void gotoNode();
    void containerChildrenRefreshed(QList<OssSnBaseNode *> members, bool refreshed);
    void containerStretchedBy(OssSnBaseNode *reference);
    void containerPeersStretched(QList<OssSnBaseNode *> containers);
    void containerRespacedWrt(OssSnBaseNode *reference);
    void containerMovedDown(OssSnBaseNode *reference);
    void containerMovedToFreshLocation(bool preserveY);
    void zOrderChanged(int zOrder);
    void nodeRemovedFromNetwork();
    void nodeRefreshed();
    void visibleNodeAttributeRemoved(QString name);
    void nodeAttributesSet();
    void nodeStateRefreshed();
    void nodeAttributeCreated(QString name);
    void nodeAttributePrettyNameChanged(QString name);
    void nodeAttributeRenamed(QString oldName, QString newName);
};
