#pragma once

#include "OssCore/OssCore_export.h"

#include <QString>

/// Whether the text has at least one character and only ASCII letters, digits and "_".
OSSCORE_EXPORT bool OssIsAlphanumericUnderscore(const QString &text);
