#pragma once

#include <QVector>

class OssShaderNetwork;
class OssSnBaseNode;
class OssSnImageSetNodeBase;

/// The nodes of a graph that can be painted on.
namespace PaintNodes {

using Nodes = QVector<OssSnImageSetNodeBase *>;

Nodes all(const OssShaderNetwork *network);

/// Those that are selected, and those in groups that are: what is grouped is painted together. Where other
/// nodes are selected as well, whoever did so did not mean to paint: one alone.
Nodes selected(const OssShaderNetwork *network);

/// The shader that is shown or gets what is shown, or the only one there is; null: none.
OssSnBaseNode *shownShader(OssShaderNetwork *network);

/// Puts paint over what a shader gets as color, roughness, metal and displacement: a layer that is painted at
/// once. Gives the new nodes, the color's first; they are selected. One undo step.
Nodes makeLayer(OssSnBaseNode *shader);

/// Puts a node left of the one that it feeds, where nothing lies.
void placeLeftOf(OssSnBaseNode *fed, OssSnBaseNode *node);

} // namespace PaintNodes
