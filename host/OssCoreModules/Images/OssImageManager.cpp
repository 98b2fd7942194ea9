#include "OssCoreModules/Images/OssImageManager.h"

#include "OssCoreModules/Images/OssImage.h"

OssImageManager *OssImageManager::instance()
{
    static OssImageManager manager;
    return &manager;
}

OssImageManager::~OssImageManager() = default;

void OssImageManager::registerGlobalContextMenuAction(QAction *action, const QString &menuTitle,
                                                      const QString &iconPath)
{
    if (action)
        m_actions.append({action, menuTitle, iconPath});
}

QVector<OssImageManager::ContextMenuAction> OssImageManager::globalContextMenuActions() const
{
    QVector<ContextMenuAction> living;
    for (const ContextMenuAction &entry : m_actions) {
        if (entry.action)
            living.append(entry);
    }
    return living;
}
