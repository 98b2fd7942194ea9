#include "Ossa/Commands/Commands.h"

#include "OssInterface/Actions/OssActionTreeManager.h"

#include <QAction>

QAction *Commands::file(QObject *owner, const QString &path, const std::function<void()> &run)
{
    QAction *action = OssCommandTable::makeAction(path, owner);
    QObject::connect(action, &QAction::triggered, owner, run);
    OssActionTreeManager::instance()->registerAction(OssActionTreeManager::folderOf(path), action);
    return action;
}

QAction *Commands::fileNamed(QObject *owner, const QString &folder, const QString &name,
                             const std::function<void()> &run, const QString &tip)
{
    auto *action = new QAction(name, owner);
    action->setStatusTip(tip);
    action->setMenuRole(QAction::NoRole); // as the table's have it
    QObject::connect(action, &QAction::triggered, owner, run);
    OssActionTreeManager::instance()->registerAction(folder, action);
    return action;
}
