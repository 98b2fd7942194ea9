#pragma once

#include <QString>
#include <QVector>

#include <optional>

class OssImageSet;
class OssProject;
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

/// The node of a project whose images these are, also one in a group; null: none.
OssSnImageSetNodeBase *find(const OssProject *project, const OssImageSet *images);

/// The shader that is shown or gets what is shown, or the only one there is; null: none.
OssSnBaseNode *shownShader(OssShaderNetwork *network);

/// Puts paint over what a shader gets as color, roughness, metal and displacement: a layer that is painted at
/// once. The color's comes first. The new nodes are selected. One undo step.
Nodes makeLayer(OssSnBaseNode *shader);

/// What the shader behind a node takes as a number where nothing is connected; none behind others.
std::optional<double> usualOf(const OssSnBaseNode *node);

/// Puts paint over what goes into an input, and selects it. What is looked at there is looked at with the
/// paint; over what the viewer gets it lies for all nodes that get it. Null: there is no such input. One undo
/// step.
OssSnImageSetNodeBase *putOver(OssSnBaseNode *fed, const QString &input);

/// Puts a node left of the one that it feeds, where nothing lies.
void placeLeftOf(OssSnBaseNode *fed, OssSnBaseNode *node);

} // namespace PaintNodes
