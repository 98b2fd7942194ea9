#pragma once

#include <QString>

/// The kinds of nodes that images become in the graph.
namespace ImageNodeTypes {

inline const QString Tiled = QStringLiteral("Procedural/Pattern/Tiled");
inline const QString TriPlanar = QStringLiteral("Environment/Tri Planar Projection");

} // namespace ImageNodeTypes
