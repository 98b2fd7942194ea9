#pragma once

#include "OssCore/OssCore_export.h"

#include <QIcon>
#include <QString>

/// Icons of the application by file name.
class OSSCORE_EXPORT OssIcon
{
public:
    static QString getIconPath(const QString &fileName);
    /// A null icon when there is no such file.
    static QIcon createIconFromFilename(const QString &fileName);
};
