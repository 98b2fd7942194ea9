#include "Ossa/Commands/Commands.h"

#include "OssCore/Program/OssDebug.h"
#include "OssCore/Program/OssIcon.h"
#include "OssInterface/Actions/OssActionTreeManager.h"

#include <QAction>

namespace {

QAction *make(QObject *owner, const QString &text, const QString &tip,
              const std::function<void()> &run)
{
    auto *action = new QAction(text, owner);
    action->setStatusTip(tip);
    // Qt would guess roles from texts and move commands between menus on some desktops.
    action->setMenuRole(QAction::NoRole);
    QObject::connect(action, &QAction::triggered, owner, run);
    return action;
}

} // namespace

QAction *Commands::file(QObject *owner, const QString &path, const std::function<void()> &run)
{
    const OssCommandTable::Row *row = OssCommandTable::find(path);
    if (!row) {
        OssDebug("Commands", __LINE__, "[ !! ] The command %s is in no table", qPrintable(path));
        return nullptr;
    }
    QAction *action = make(owner, OssCommandTable::text(*row), OssCommandTable::tip(*row), run);
    if (*row->icon)
        action->setIcon(OssIcon::createIconFromFilename(QString::fromLatin1(row->icon)));
    OssActionTreeManager::setName(action, OssActionTreeManager::nameOf(path));
    OssActionTreeManager::instance()->registerAction(OssActionTreeManager::folderOf(path), action);
    return action;
}

QAction *Commands::fileNamed(QObject *owner, const QString &folder, const QString &name,
                             const std::function<void()> &run, const QString &tip)
{
    QAction *action = make(owner, name, tip, run);
    OssActionTreeManager::instance()->registerAction(folder, action);
    return action;
}

void Commands::setHolds(OssCommandTable::When when, bool holds)
{
    for (const OssCommandTable::Row &row : OssCommandTable::rows()) {
        if (row.when != when)
            continue;
        const QString path = QString::fromLatin1(row.path);
        if (QAction *action = OssActionTreeManager::instance()->findAction(path))
            action->setEnabled(holds);
    }
}
