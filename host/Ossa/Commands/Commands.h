#pragma once

#include <QString>

#include <functional>

class QAction;
class QObject;

namespace Commands {

/// Makes a command of the application and files it under `folder` of the action tree. The owner
/// owns it; `run` is not called after the owner has died.
QAction *file(QObject *owner, const QString &folder, const QString &text,
              const std::function<void()> &run, const QString &statusTip = {});

} // namespace Commands
