#pragma once

#include "OssCore/OssCore_export.h"
#include "OssCore/Values/OssResult.h"

#include <QByteArray>
#include <QMap>
#include <QString>

/// Archives of Ossa: zip files of a few named parts, held in memory. They come from anywhere, so
/// reading refuses what leads outside (absolute names, "..", links), names that stand twice, and
/// what is larger than the bounds; sizes are counted while inflating, not believed.
namespace OssArchive {

/// Names with "/" between folders; content.
using Parts = QMap<QString, QByteArray>;

constexpr int MostParts = 4096;
constexpr qint64 LargestPart = qint64(512) << 20;
constexpr qint64 LargestArchive = qint64(1) << 30; ///< inflated, all parts together

/// On failure `parts` is empty and the reason names the file. `largest`: bytes, inflated, all parts
/// together.
OSSCORE_EXPORT OssResult read(const QString &path, Parts *parts, qint64 largest = LargestArchive);
/// Atomic; deterministic for the same parts.
OSSCORE_EXPORT OssResult write(const QString &path, const Parts &parts);

} // namespace OssArchive
