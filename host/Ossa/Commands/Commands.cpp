#include "Ossa/Commands/Commands.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssInterface/Actions/OssMenu.h"
#include "OssInterface/Actions/OssShortcutManager.h"

#include <QAction>
#include <QWidget>

namespace {

/// " ([, ])"; empty where there are no keys.
QString keysInBrackets(const QStringList &paths)
{
    QStringList texts;
    for (const QString &path : paths) {
        const QList<QKeySequence> keys = OssShortcutManager::instance()->keys(path);
        if (!keys.isEmpty())
            texts.append(keys.first().toString(QKeySequence::NativeText));
    }
    return texts.isEmpty() ? QString()
                           : QStringLiteral(" (%1)").arg(texts.join(QStringLiteral(", ")));
}

void endGestureFirst(QAction *action, QObject *owner)
{
    QObject::connect(action, &QAction::triggered, owner,
                     [] { OssUndoManager::instance()->endInteraction(); });
}

} // namespace

QAction *Commands::file(QObject *owner, const QString &path, const std::function<void()> &run,
                        InHand inHand)
{
    QAction *action = OssCommandTable::makeAction(path, owner);
    if (inHand == InHand::Ends)
        endGestureFirst(action, owner);
    QObject::connect(action, &QAction::triggered, owner, run);
    OssActionTreeManager::instance()->registerAction(OssActionTreeManager::folderOf(path), action);
    return action;
}

QAction *Commands::fileNamed(QObject *owner, const QString &folder, const QString &name,
                             const std::function<void()> &run, const QString &tip)
{
    auto *action = new QAction(OssMenu::asTyped(name), owner);
    OssActionTreeManager::setName(action, name);
    action->setStatusTip(tip);
    action->setMenuRole(QAction::NoRole); // as the table's have it
    endGestureFirst(action, owner);
    QObject::connect(action, &QAction::triggered, owner, run);
    OssActionTreeManager::instance()->registerAction(folder, action);
    return action;
}

void Commands::describe(QWidget *control, const QStringList &paths, const QString &words)
{
    const OssCommandTable::Row *row = OssCommandTable::find(paths.first());
    const QString tip = words.isEmpty() && row ? OssCommandTable::tip(*row) : words;
    const auto show = [control, paths, tip] {
        control->setToolTip(tip + keysInBrackets(paths));
    };
    show();
    QObject::connect(OssShortcutManager::instance(), &OssShortcutManager::keysChanged, control,
                     show);
}
