#pragma once

#include "OssEvaluation/Graph/OssEvOperation.h"

#include <memory>

/// Hands one of several inputs on; the others are not computed.
namespace OssEvPick {

/// Inputs of those that pick.
constexpr int Most = 8;

/// `number`: the first is 1.
std::shared_ptr<const OssEvOperation> make(int number);

} // namespace OssEvPick
