#pragma once

#include "OssCoreModules/OssCoreModules_export.h"
#include "OssCoreModules/Script/OssScriptException.h"

/// Reports to the running script that the call it is in has failed; the caller then returns its
/// neutral value. Without a running script the report is a line in the log. `format` is a printf
/// format.
OSSCOREMODULES_EXPORT void OssScriptError(OssScriptException::Type type, const char *file, int line,
                                          const char *format, ...)
    __attribute__((format(printf, 4, 5)));
