#pragma once

#include <QString>

/// Why the Viewer has nothing to show, and what to do about it.
namespace ViewerHint {

/// Of what is looked at when nothing computes it.
QString whyNothing();

/// The same for a view of the object, which is seen without a material then.
QString whyBare();

} // namespace ViewerHint
