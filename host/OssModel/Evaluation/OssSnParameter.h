#pragma once

#include "OssEvaluation/Values/OssEvParameter.h"
#include "OssModel/OssModel_export.h"

class QVariant;

/// What kernels see of attributes.
namespace OssSnParameter {

/// The kernel's form of an attribute's value: a choice is its name, images are the path of the first
/// one. False for values that say nothing to a kernel. GUI thread: looks images up.
OSSMODEL_EXPORT bool fromValue(const QVariant &value, OssEvParameter *parameter);

} // namespace OssSnParameter
