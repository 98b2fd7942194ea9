#include "View/QuickCreation.h"

#include "OssCore/Program/OssSettings.h"
#include "OssInterface/Dialogs/OssNodeQuickFindDialog.h"
#include "OssSnNodeGraphViewContext.h"
#include "OssSnNodeGraphViewContextManager.h"

#include <algorithm>

namespace {

const QString SettingsGroup = QStringLiteral("Node Graph");
const QString LastUsedKey = QStringLiteral("LastUsedNodePaths");
const QString FavouritesKey = QStringLiteral("FavouriteNodePaths");

QStringList storedList(const QString &key)
{
    OssSettings settings;
    settings.beginGroup(SettingsGroup);
    return settings.value(key).toStringList();
}

void store(const QString &key, const QStringList &list)
{
    OssSettings settings;
    settings.beginGroup(SettingsGroup);
    settings.setValue(key, list);
}

QStringList withLatest(QStringList list, const QString &latest, int most)
{
    list.removeAll(latest);
    list.prepend(latest);
    return list.mid(0, std::max(0, most));
}

} // namespace

QString QuickCreation::findNodeType(QWidget *viewport, QPoint *position, const Filter &fits)
{
    const int most = OssSnNodeGraphViewContextManager::instance()
                         ->numberOfLastUsedNodePathsToStore();
    const QStringList lastUsed = storedList(LastUsedKey);
    OssNodeQuickFindDialog dialog(lastUsed, storedList(FavouritesKey), most, *position,
                                  viewport->size(), viewport);
    dialog.setColors(OssSnNodeGraphViewContext::categoryColor);
    if (fits)
        dialog.setFilter(fits);
    const bool accepted = dialog.exec() == QDialog::Accepted;
    store(FavouritesKey, dialog.favourites());
    const QString chosen = dialog.chosenPathKey();
    if (!accepted || chosen.isEmpty())
        return {};
    store(LastUsedKey, withLatest(lastUsed, chosen, most));
    *position = dialog.nodePosition();
    return chosen;
}
