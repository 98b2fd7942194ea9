#pragma once

#include <QString>

class OssShaderNetwork;

/// Graphs to lay out, from seeds: always the same.
namespace Graphs {

enum class Shape {
    Near, ///< each node is fed by some of those shortly before it
    Wild, ///< by any before it
    Star, ///< one feeds all
    Tree, ///< two feed one
    Parts ///< six that nothing joins
};

/// Nodes lie scattered.
void fill(OssShaderNetwork *network, Shape shape, int count, unsigned seed);

} // namespace Graphs
