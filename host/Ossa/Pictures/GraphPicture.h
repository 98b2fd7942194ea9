#pragma once

#include "OssCore/Values/OssResult.h"

#include <QString>

class QGraphicsScene;

/// Pictures of whole graphs as files. The format follows the file's name: ".svg" or ".png".
namespace GraphPicture {

/// Draws everything visible in the scene, with a margin, at one pixel per unit or, where that
/// would be too large, as large as can be. Fails for an empty scene or another suffix.
OssResult write(QGraphicsScene *scene, const QString &title, const QString &output);

} // namespace GraphPicture
