#pragma once

#include "OssCoreModules/OssCoreModules_export.h"

#include <QAction>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QVector>

class OssImage;

/// The images that are loaded, and the actions that every image's menu offers.
class OSSCOREMODULES_EXPORT OssImageManager : public QObject
{
    Q_OBJECT

public:
    struct ContextMenuAction
    {
        QPointer<QAction> action;
        QString menuTitle;
        QString iconPath;
    };

    static OssImageManager *instance();
    ~OssImageManager() override;

    /// In the order of loading.
    QList<OssImage *> images() const { return m_images; }

    /// Actions of one title share a submenu. They are not owned.
    void registerGlobalContextMenuAction(QAction *action, const QString &menuTitle,
                                         const QString &iconPath);
    QVector<ContextMenuAction> globalContextMenuActions() const;

private:
    OssImageManager() = default;

    QList<OssImage *> m_images;
    QVector<ContextMenuAction> m_actions;
};
