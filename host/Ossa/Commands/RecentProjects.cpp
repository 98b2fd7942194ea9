#include "Ossa/Commands/RecentProjects.h"

#include "OssCore/Program/OssSettings.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace {

const QString settingsKey = QStringLiteral("RecentProjects");

QString tidy(const QString &path)
{
    return QDir::cleanPath(QFileInfo(path).absoluteFilePath());
}

} // namespace

QStringList RecentProjects::list()
{
    QStringList paths = OssSettings().value(settingsKey).toStringList();
    paths.erase(std::remove_if(paths.begin(), paths.end(),
                               [](const QString &path) { return !QFileInfo::exists(path); }),
                paths.end());
    return paths;
}

void RecentProjects::add(const QString &path)
{
    if (path.isEmpty())
        return;
    QStringList paths = list();
    paths.removeAll(tidy(path));
    paths.prepend(tidy(path));
    OssSettings().setValue(settingsKey, QStringList(paths.mid(0, maximum)));
}

void RecentProjects::clear()
{
    OssSettings().remove(settingsKey);
}
