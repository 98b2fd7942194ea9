#pragma once

#include "OssEvaluation/Graph/OssEvOperation.h"

#include <memory>

/// Operations that the planner puts between nodes; no node type names them.
namespace OssEvHidden {

/// The input at half the size, with binomial weights.
std::shared_ptr<const OssEvAreaOperation> halving();

/// The input at the block's size, by linear interpolation. Meant for factors of two and less in
/// either direction: an image reader and halving do the rest.
std::shared_ptr<const OssEvAreaOperation> resampling(const OssEvFrame &from, const OssEvFrame &to);

} // namespace OssEvHidden
