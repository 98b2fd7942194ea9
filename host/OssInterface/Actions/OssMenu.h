#pragma once

#include "OssInterface/OssInterface_export.h"

#include <QMenu>
#include <QString>
#include <QStringList>

/// A menu of commands. Submenus are owned by the menu they stand in, commands never. Tool tips of
/// the commands are shown.
class OSSINTERFACE_EXPORT OssMenu : public QMenu
{
    Q_OBJECT

public:
    /// With a parent menu: entered there as a submenu.
    /// A user's text, such as a name, for an action, a menu, a tab or a button: "&" is a letter there.
    static QString asTyped(const QString &text);
    /// The way back: such a text as it is seen, without marks of letters to press.
    static QString asSeen(const QString &text);

    explicit OssMenu(const QString &title = {}, QMenu *parentMenu = nullptr);

    /// The submenu of a menu at a path of titles, made as far as it is not there; the menu itself
    /// for an empty path.
    static QMenu *submenu(QMenu *menu, const QStringList &titles);

    /// Heading under which the shortcut editor lists the commands of this menu, those that are
    /// added later included. Submenus have their own.
    void setShortcutGroup(const QString &group);

protected:
    void actionEvent(QActionEvent *event) override;

private:
    void assignShortcutGroup(const QAction *action) const;

    QString m_shortcutGroup;
};
