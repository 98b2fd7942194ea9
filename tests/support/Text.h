#pragma once

#include <QString>

/// A text of a test, short to write.
inline QString text(const char *latin)
{
    return QString::fromLatin1(latin);
}
