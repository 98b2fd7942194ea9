#pragma once

#include "OssScriptObjects/OssScriptException.h"
#include "OssScriptObjects/OssScriptObjects_export.h"

/// Reports to the running script that the call it is in has failed; the caller then returns its
/// neutral value. Without a running script the report is a line in the log. `format` is a printf
/// format.
OSSSCRIPTOBJECTS_EXPORT void OssScriptError(OssScriptException::Type type, const char *file,
                                            int line, const char *format, ...)
    __attribute__((format(printf, 4, 5)));
