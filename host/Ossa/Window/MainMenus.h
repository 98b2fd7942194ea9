#pragma once

#include <QObject>
#include <QTimer>
#include <QVector>

class QMenu;
class QMenuBar;

/// The pull-down menus, made from the action tree each time they open. A menu without a command is
/// not there. What the definitions place nowhere stands in "More" of the Node Graph menu.
class MainMenus : public QObject
{
    Q_OBJECT

public:
    explicit MainMenus(QMenuBar *bar);

    /// Paths below /Ossa/NodeGraph that no menu of the bar names.
    static QStringList unplacedGraphCommands();

private:
    void fill(QMenu *menu, const QString &name);
    void refreshVisibility();

    struct Entry
    {
        QMenu *menu;
        QString name;
    };

    QVector<Entry> m_menus;
    QTimer m_refresh;
};
