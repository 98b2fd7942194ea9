#pragma once

#include <QList>
#include <QPointF>
#include <QRectF>
#include <QSet>
#include <QVector>

#include <functional>

class OssSnBaseNode;

/// What backdrops do when nodes come to them: they take them in, make room, grow, and keep those
/// that stand in line with them in line. A node belongs to the innermost backdrop that it lies on
/// wholly. All is recorded and joins the open macro. Scene units. What has no item is passed over.
namespace Backdrops {

/// A node that was put somewhere.
struct Placed
{
    OssSnBaseNode *node;
    OssSnBaseNode *before; ///< its containerOf() until then
};

bool isBackdrop(const OssSnBaseNode *node);
/// Of the item; empty without one.
QRectF rectOf(const OssSnBaseNode *node);
/// What lies on the backdrop wholly, other backdrops and what lies on them included.
QList<OssSnBaseNode *> inside(const OssSnBaseNode *backdrop);
/// The same without what lies on another backdrop that is inside.
QList<OssSnBaseNode *> members(const OssSnBaseNode *backdrop);
/// What goes where the backdrop goes: what lies on it, but for what belongs to another one and has
/// just come to lie there.
QList<OssSnBaseNode *> carriedBy(const OssSnBaseNode *backdrop);
/// The backdrop that the node belongs to, also where that was never said: nodes of older projects
/// lie on backdrops that do not know them.
OssSnBaseNode *containerOf(const OssSnBaseNode *node);
/// Moves the node, and what lies on it if it is a backdrop.
void shift(OssSnBaseNode *node, const QPointF &way);
/// The node belongs to what it lies on now; so do those that lie, or lay, on it.
void refreshMembership(OssSnBaseNode *node);
/// Does something by which the backdrop may grow: those around it hold it then, and those in line with it,
/// and below it, go along. What belongs to none and stood clear of it, or of what gives way, goes out of the
/// way: no backdrop takes it in by growing.
void grow(OssSnBaseNode *backdrop, const std::function<void()> &ask);
/// Puts the node, with what it carries, into the backdrop where it stands: it goes below those that begin higher where it lies
/// over them, and those that begin lower make room.
void takeIn(OssSnBaseNode *node, OssSnBaseNode *backdrop);
/// The same for one that does not lie on it as a member does.
void keepIn(OssSnBaseNode *node, OssSnBaseNode *backdrop);
/// Takes in those nodes whose middle lies on a backdrop (OssNgBackdropNode::under).
void settle(QVector<Placed> placed);
/// The same for a node that was just made and wired: it also joins the backdrop of a node that it is
/// wired to and stands near.
void settleNew(OssSnBaseNode *node);
/// Sets members apart from each other, fits each backdrop around its own, and gives those that stand
/// above each other one right edge.
void tidy(QList<OssSnBaseNode *> backdrops);
/// Puts the backdrops, as they lie over each other, before all others, or behind.
void reorder(QList<OssSnBaseNode *> backdrops, bool toFront);

} // namespace Backdrops
