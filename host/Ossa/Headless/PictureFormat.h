#pragma once

#include <QFileInfo>
#include <QString>

/// Formats of pictures of graphs, told by the name of the file.
namespace PictureFormat {

enum Format { None, Png, Svg };

inline const char *const suffixes = ".png or .svg";

inline Format of(const QString &path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    return suffix == QLatin1String("png") ? Png : suffix == QLatin1String("svg") ? Svg : None;
}

} // namespace PictureFormat
