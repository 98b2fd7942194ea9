#include "OssCore/Program/OssIcon.h"

#include "OssCore/Program/OssResourceInfo.h"

QString OssIcon::getIconPath(const QString &fileName)
{
    return OssResourceInfo::instance()->iconPath() + QLatin1Char('/') + fileName;
}

QIcon OssIcon::createIconFromFilename(const QString &fileName)
{
    const QPixmap pixmap(getIconPath(fileName));
    return pixmap.isNull() ? QIcon() : QIcon(pixmap);
}
