#pragma once

#include "OssCore/OssCore_export.h"
#include "OssCore/Values/OssResult.h"

#include <QByteArray>
#include <QString>

#include <functional>

/// The one way in which a user's file is written: the file holds the old content whole or the new
/// content whole, whatever fails in between, power included. Any thread.
///
/// The bytes go to a temporary file beside the target; they are flushed, synced to the disk, read
/// back and compared before the temporary file takes the target's name and the folder is synced.
/// Temporary files that a killed process left are swept away by the next write of the same file.
namespace OssAtomicFile {

/// Asked about the bytes as they were read back, before the old file is given up. A failure keeps
/// the old file.
using Validate = std::function<OssResult(const QByteArray &written)>;

/// Fails too when the new file took its place but the folder could not be synced: then power loss
/// may bring the old one back.
OSSCORE_EXPORT OssResult write(const QString &path, const QByteArray &content,
                               const Validate &validate = {});

/// Copies `path` to `copyPath` with the same care. The target may exist.
OSSCORE_EXPORT OssResult copy(const QString &path, const QString &copyPath);

/// Gives the content of `path` a second name, which must be free and on the same disk. Costs
/// nothing where the file system has hard links, a copy elsewhere. Neither name's content follows
/// later writes of the other.
OSSCORE_EXPORT OssResult keepAs(const QString &path, const QString &keptPath);

/// Renames a file or folder in one step on one disk. A file takes the place of an existing one.
OSSCORE_EXPORT OssResult move(const QString &path, const QString &newPath);

/// Makes a folder and those above it, to stay after power loss.
OSSCORE_EXPORT OssResult makeFolder(const QString &path);

/// Reads a whole file; refuses what is larger than `maximum` bytes.
OSSCORE_EXPORT OssResult read(const QString &path, qint64 maximum, QByteArray *content);

} // namespace OssAtomicFile
