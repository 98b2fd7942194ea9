#include "OssModel/Images/OssUdimPath.h"

#include "OssEvaluation/Files/OssEvUdim.h"

bool OssUdimPath::isPattern(const QString &path)
{
    return OssEvUdim::isPattern(path.toStdString());
}

QString OssUdimPath::pattern(const QString &path)
{
    return QString::fromStdString(OssEvUdim::pattern(path.toStdString()));
}

QString OssUdimPath::file(const QString &pattern, int patch)
{
    return QString::fromStdString(OssEvUdim::file(pattern.toStdString(), patch));
}

QList<int> OssUdimPath::patches(const QString &pattern)
{
    const std::vector<int> found = OssEvUdim::patches(pattern.toStdString());
    return {found.cbegin(), found.cend()};
}
