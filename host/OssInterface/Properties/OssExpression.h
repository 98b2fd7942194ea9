#pragma once

#include "OssCore/Values/OssResult.h"
#include "OssInterface/OssInterface_export.h"

#include <QString>

/// Arithmetic that users type into number fields.
///
///     3*(1/7)   2^0.5   sin(pi/4)   min(x, 2)   50%
///
/// Numbers have a decimal point whatever the locale. Functions: sqrt abs floor ceil round exp log
/// sin cos tan (radians) rad deg min max pow clamp. "x" is the present value; a text that begins
/// with "*", "/", "+=" or "-=" changes it. Nothing but numbers goes in and comes out.
namespace OssExpression {

/// A failure names what is wrong; a result that is not finite is one.
OSSINTERFACE_EXPORT OssResult evaluate(const QString &text, double present, double *value);

} // namespace OssExpression
