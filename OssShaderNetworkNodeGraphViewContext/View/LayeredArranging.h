#pragma once

#include <QList>

class OssSnBaseNode;

/// Layouts that look at wires. Nodes are of one network and shown; all is recorded and joins the open macro.
namespace LayeredArranging {

/// Lays the nodes out in layers (see OssLyLayout). A backdrop stands for what lies on it, and is laid out with it
/// when all its members are among the nodes. Notes go with the node or backdrop at which they stand. What is laid
/// out for itself comes to stand where nothing else is in the way. With dots, wires that would run through nodes
/// are led around them.
void arrange(const QList<OssSnBaseNode *> &nodes, int withDots);
/// Moves nodes up or down so that the wires between them run level, from the last of each chain on; to the left
/// where two stand above each other.
void straighten(const QList<OssSnBaseNode *> &nodes, int);
/// Moves nodes that lie over others to the nearest free place.
void separate(const QList<OssSnBaseNode *> &nodes, int);

} // namespace LayeredArranging
