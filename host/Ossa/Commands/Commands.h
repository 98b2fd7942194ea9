#pragma once

#include "OssInterface/Actions/OssCommandTable.h"

#include <QString>

#include <functional>

class QAction;
class QObject;

/// Brings the application's commands to life.
namespace Commands {

/// Makes the action of a row of the command table and files it. The owner owns it; `run` is not
/// called after the owner has died.
QAction *file(QObject *owner, const QString &path, const std::function<void()> &run);

/// The same for what comes and goes while the program runs, such as recent files.
QAction *fileNamed(QObject *owner, const QString &folder, const QString &name,
                   const std::function<void()> &run, const QString &tip);

} // namespace Commands
