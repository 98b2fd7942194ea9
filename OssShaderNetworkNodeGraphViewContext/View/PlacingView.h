#pragma once

#include "OssNodeGraph/View/OssNgView.h"

#include <QList>

class OssNgBackdropNode;
class OssSnBaseNode;

/// A view that puts nodes where they ask to stand: clear of others, beside, under or around them.
/// Scene coordinates.
///
/// The nodes may stand in another network than the one that is shown: they are clear of what stands
/// in their own. What moves is recorded and joins the open macro. A node without an item, or whose reference has
/// none where one is needed, stays.
class PlacingView : public OssNgView
{
    Q_OBJECT

public:
    using OssNgView::OssNgView;

    /// The overlap rule: moves the node until it lies on no other; backdrops do not count.
    void placeNode(OssSnBaseNode *node);
    /// The same for what is made where the user points: where the rule leads out of sight, or far
    /// away, the node goes to the free place in view that is nearest to where it stands.
    void placeNodeInSight(OssSnBaseNode *node);
    /// Leaves it where it lies and brings the view there, unless it is seen already.
    void bringInSight(const OssSnBaseNode *node);
    /// Diagonally below and to the right of the other item, 30 units clear of its corner.
    void relocateNodeBeside(OssNgNode *guiNode, const OssNgNode *other);
    void positionNodeManual(OssSnBaseNode *node, OssSnBaseNode *reference, const QPointF &offset);
    void positionNodeUnderneath(OssSnBaseNode *node, OssSnBaseNode *reference, int factor);
    /// For backdrops: beside another backdrop, or beside a node at its own height.
    void positionNodeNextTo(OssSnBaseNode *node, OssSnBaseNode *reference);
    void positionNodeAtFreeSpot(OssSnBaseNode *node);
    /// With `freshCoordinates` both coordinates come from the reference; without, an axis in which
    /// there is no step keeps the node's own. Without a reference the free spot stands in.
    void positionNodeOnGrid(OssSnBaseNode *node, OssSnBaseNode *reference, int column, int row,
                            bool freshCoordinates);
    void positionNodeBesideReference(OssSnBaseNode *node, OssSnBaseNode *reference);

    // Containers, which are backdrops

    /// Puts the node underneath the reference and stretches its container around it, and around the
    /// reference's container where that is another one inside.
    void syncNodeUnderneath(OssSnBaseNode *node, OssSnBaseNode *container, OssSnBaseNode *reference,
                            OssSnBaseNode *referenceContainer);
    /// Gives the containers of a layer stack one right edge: that of the widest.
    void uniformariseContainers(const QList<OssSnBaseNode *> &containers);
    /// Makes the container hold the members: fitted around them, or only stretched where it is too
    /// small.
    void holdInContainer(OssSnBaseNode *container, const QList<OssSnBaseNode *> &members,
                         bool exactly);
    void stretchContainerBy(OssSnBaseNode *container, OssSnBaseNode *reference);
    /// Gives all of them the width of the widest.
    void stretchPeers(const QList<OssSnBaseNode *> &containers);
    /// Moves the members below the reference down until they are clear of it.
    void respaceContainer(OssSnBaseNode *container, OssSnBaseNode *reference);
    /// Below the reference, with what it holds; stays where it is clear of it.
    void moveContainerDown(OssSnBaseNode *container, OssSnBaseNode *reference);
    /// Clear of everything, with what it holds: right of it, at the top or at its own height.
    void moveContainerToFreshLocation(OssSnBaseNode *container, bool preserveY);
    /// After it was moved: the node belongs to the backdrop that it lies on now.
    static void refreshMembership(OssSnBaseNode *node);

protected:
    /// Null without one.
    static OssNgNode *itemOf(const OssSnBaseNode *node);
    /// Recorded. Nothing happens to one that stands there.
    static void moveNode(OssNgNode *guiNode, const QPointF &position);

private:
    static QRectF occupied(const OssNgNode *item);
    QRectF minimapInScene() const;
    bool isInSight(const OssNgNode *item) const;
    static QPointF freeSpotFor(const OssNgNode *item);
    /// Null for what is no container, with a line when it is something else.
    static OssNgBackdropNode *backdropOf(const OssSnBaseNode *container);
    static void resizeBackdrop(OssNgBackdropNode *backdrop, const QSizeF &size);
    static void stretchContainer(OssNgBackdropNode *backdrop, const QRectF &sceneRect);
    static void moveContainer(OssNgBackdropNode *backdrop, const QPointF &way);
};
