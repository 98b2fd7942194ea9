#include "OssScriptObjects/OssaAPI.h"

#include "OssScriptObjects/OssScriptError.h"

namespace Ossa {

API::API(QObject *parent)
    : QObject(parent)
{
}

API::~API() = default;

void API::fail(OssScriptException::Type type, const QString &message, const char *file, int line)
{
    OssScriptError(type, file, line, "%s", qUtf8Printable(message));
}

void API::reportInvalid(const char *className)
{
    fail(OssScriptException::ObjectUnavailable,
         QStringLiteral("Not an object of class %1").arg(QLatin1String(className)));
}

void API::reportGone(const char *className)
{
    fail(OssScriptException::InternalObjectGone,
         QStringLiteral("Internal %1 object not valid").arg(QLatin1String(className)));
}

} // namespace Ossa
