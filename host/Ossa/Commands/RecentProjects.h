#pragma once

#include <QString>
#include <QStringList>

/// The projects that were opened or saved last, most recent first. Kept in OssSettings.
namespace RecentProjects {

constexpr int maximum = 10;

/// Those that still exist.
QStringList list();
void add(const QString &path);
void clear();

} // namespace RecentProjects
