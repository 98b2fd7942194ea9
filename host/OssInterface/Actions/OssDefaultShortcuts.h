#pragma once

#include <QKeySequence>
#include <QList>
#include <QString>

/// The keys that commands have until the user says otherwise, by action identity. The table stands
/// in the source file: the one place where the application's keys are written down.
namespace OssDefaultShortcuts {

/// Empty for commands without a key.
QList<QKeySequence> keys(const QString &path);

} // namespace OssDefaultShortcuts
