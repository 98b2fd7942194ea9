#pragma once

#include "OssCore/Values/OssResult.h"

#include <QImage>

class OssSnMaterialNode;

/// A material as a small picture: its streams on a ball under one light.
namespace OssMaterialThumbnail {

/// `size` pixels wide and high, transparent around the ball. Computes the first patch of each
/// stream that it needs and waits, without blocking the interface.
OssResult make(const OssSnMaterialNode *material, int size, QImage *picture);

} // namespace OssMaterialThumbnail
