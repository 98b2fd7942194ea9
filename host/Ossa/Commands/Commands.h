#pragma once

#include "OssInterface/Actions/OssCommandTable.h"

#include <QString>
#include <QStringList>

#include <functional>

class QAction;
class QObject;
class QWidget;

/// Brings the application's commands to life.
namespace Commands {

/// What a command does with a gesture that is half done when it comes.
enum class InHand {
    Ends, ///< first, also when the command then finds nothing to do
    Stays ///< the command itself knows what becomes of it
};

/// Makes the action of a row of the command table and files it. The owner owns it; `run` is not
/// called after the owner has died.
QAction *file(QObject *owner, const QString &path, const std::function<void()> &run,
              InHand inHand = InHand::Ends);

/// The same for what comes and goes while the program runs, such as recent files.
QAction *fileNamed(QObject *owner, const QString &folder, const QString &name,
                   const std::function<void()> &run, const QString &tip);

/// Gives a control the tip of the commands that do the same as it, with the keys that they have now.
/// `words` stands in place of the first one's tip.
void describe(QWidget *control, const QStringList &paths, const QString &words = {});

} // namespace Commands
