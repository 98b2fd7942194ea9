#include "OssScriptObjects/OssScriptError.h"

#include "OssScriptObjects/OssScriptManager.h"

#include <QFileInfo>

#include <cstdarg>

void OssScriptError(OssScriptException::Type type, const char *file, int line, const char *format,
                    ...)
{
    va_list arguments;
    va_start(arguments, format);
    const QString message = QString::vasprintf(format, arguments);
    va_end(arguments);
    OssScriptManager::instance()->reportError(
        {type, QFileInfo(QString::fromLocal8Bit(file)).fileName(), line, message});
}
