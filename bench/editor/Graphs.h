#pragma once

class OssShaderNetwork;

namespace Graphs {

/// Chains of five kinds of node in a square, each fed from nodes before it; nothing is recorded.
void fill(OssShaderNetwork *network, int count);

} // namespace Graphs
