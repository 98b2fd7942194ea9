#include "OssScriptObjects/OssaActions.h"

#include "OssInterface/Actions/OssActionTreeManager.h"

#include <QAction>

namespace Ossa {

Actions::Actions(QObject *actionTree)
{
    initAs<OssActionTreeManager>(actionTree);
}

Actions::~Actions() = default;

QStringList Actions::paths(const QString &folder) const
{
    const auto *tree = wrapped<OssActionTreeManager>();
    if (!tree)
        return {};
    if (folder.isEmpty())
        return tree->paths();
    QStringList below;
    const auto entries = tree->entries(folder, true);
    for (const OssActionTreeManager::Entry &entry : entries) {
        if (!below.contains(entry.path))
            below.append(entry.path);
    }
    return below;
}

bool Actions::exists(const QString &path) const
{
    const auto *tree = wrapped<OssActionTreeManager>();
    return tree && tree->findAction(path);
}

QAction *Actions::action(const QString &path) const
{
    auto *tree = wrapped<OssActionTreeManager>();
    if (tree)
        tree->settleStates();
    QAction *found = tree ? tree->findAction(path) : nullptr;
    if (tree && !found)
        fail(OssScriptException::UnknownName,
             QStringLiteral("There is no command \"%1\"").arg(path));
    return found;
}

bool Actions::isEnabled(const QString &path) const
{
    const QAction *found = action(path);
    return found && found->isEnabled();
}

bool Actions::isChecked(const QString &path) const
{
    const QAction *found = action(path);
    return found && found->isChecked();
}

void Actions::trigger(const QString &path)
{
    QAction *found = action(path);
    if (!found)
        return;
    if (found->isEnabled())
        found->trigger();
    else
        fail(OssScriptException::NotAllowed,
             QStringLiteral("The command \"%1\" is not available now").arg(path));
}

} // namespace Ossa
