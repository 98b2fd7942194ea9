#pragma once

#include "OssCore/Values/OssResult.h"
#include "OssRender/Values/OssRdPicture.h"

#include <QString>

/// Pictures that the renderer makes, in files: for screens, or as light in *.exr.
namespace StillFile {

/// Whether a file of that name can be written.
bool isPossible(const QString &path);
/// Whether it holds light, as floats with an alpha.
bool isLight(const QString &path);

OssResult write(const OssRdImage &picture, const QString &path);

} // namespace StillFile
