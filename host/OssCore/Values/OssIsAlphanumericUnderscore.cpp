#include "OssCore/Values/OssIsAlphanumericUnderscore.h"

#include <algorithm>

bool OssIsAlphanumericUnderscore(const QString &text)
{
    return !text.isEmpty() && std::all_of(text.cbegin(), text.cend(), [](QChar c) {
        return c == QLatin1Char('_') || (c.unicode() < 128 && c.isLetterOrNumber());
    });
}
