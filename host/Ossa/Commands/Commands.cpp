#include "Ossa/Commands/Commands.h"

#include "OssInterface/Actions/OssActionTreeManager.h"

#include <QAction>

QAction *Commands::file(QObject *owner, const QString &folder, const QString &text,
                        const std::function<void()> &run, const QString &statusTip)
{
    auto *action = new QAction(text, owner);
    action->setStatusTip(statusTip);
    // Qt would guess roles from texts and move commands between menus on some desktops.
    action->setMenuRole(QAction::NoRole);
    QObject::connect(action, &QAction::triggered, owner, run);
    OssActionTreeManager::instance()->registerAction(folder, action);
    return action;
}
