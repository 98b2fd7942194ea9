#include "OssModel/Types/OssMaterialTypes.h"

namespace {

const QString Root = QStringLiteral("Materials/");

} // namespace

bool OssMaterialTypes::isMaterial(const QString &pathKey)
{
    return pathKey.startsWith(Root) && pathKey.size() > Root.size();
}

QString OssMaterialTypes::folderOf(const QString &pathKey)
{
    return isMaterial(pathKey) ? pathKey.mid(Root.size()).section(QLatin1Char('/'), 0, -2)
                               : QString();
}

QString OssMaterialTypes::categoryOf(const QString &folder)
{
    return Root + folder;
}
