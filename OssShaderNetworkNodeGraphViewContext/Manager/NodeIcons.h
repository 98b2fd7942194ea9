#pragma once

#include <QString>

/// Icons in the headers of types that are told apart by more than their category's color: what holds
/// pixels of its own, reads images, makes them of nothing, or is a material. They lie here and not in the types' descriptions,
/// of which each change makes another version.
namespace NodeIcons {

/// File in the icon folder; empty for types without one.
QString fileOf(const QString &pathKey);

} // namespace NodeIcons
