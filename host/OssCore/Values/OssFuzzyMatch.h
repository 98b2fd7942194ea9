#pragma once

#include "OssCore/OssCore_export.h"

#include <QString>

namespace OssFuzzyMatch {

/// How well `pattern` fits `text`; below 0 when its letters do not occur in it in this order.
/// Blanks in the pattern mean nothing, letter case neither. Beginnings of words and letters that
/// stand together count more, short texts more than long ones.
OSSCORE_EXPORT int score(const QString &pattern, const QString &text);

} // namespace OssFuzzyMatch
