#pragma once

#include "OssCore/OssCore_export.h"
#include "OssCore/OssResult.h"

#include <QByteArray>
#include <QString>

#include <functional>

/// The one way in which a user's file is written: the file holds the old content whole or the new
/// content whole, whatever fails in between, power included.
///
/// The bytes go to a temporary file beside the target; they are flushed, synced to the disk, read
/// back and compared before the temporary file takes the target's name and the folder is synced.
namespace OssAtomicFile {

/// Asked about the bytes as they were read back, before the old file is given up. A failure keeps
/// the old file.
using Validate = std::function<OssResult(const QByteArray &written)>;

OSSCORE_EXPORT OssResult write(const QString &path, const QByteArray &content,
                               const Validate &validate = {});

/// Copies `path` to `copyPath` with the same care. The target may exist.
OSSCORE_EXPORT OssResult copy(const QString &path, const QString &copyPath);

/// Reads a whole file; refuses what is larger than `maximum` bytes.
OSSCORE_EXPORT OssResult read(const QString &path, qint64 maximum, QByteArray *content);

} // namespace OssAtomicFile
