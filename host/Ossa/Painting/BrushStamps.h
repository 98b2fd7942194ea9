#pragma once

#include "OssEvaluation/Paint/OssEvStamp.h"

#include <QStringList>

/// Stamps of the program's own making.
namespace BrushStamps {

/// Their names, which no file has.
QStringList names();
/// Null when there is none of that name. GUI thread.
OssEvStamp::Pointer make(const QString &name);

} // namespace BrushStamps
