#pragma once

#include <QObject>

class QAction;
class QWidget;

/// The application's own commands of the Edit menu: undo and redo with the step's title, and the
/// dialogs for preferences and keys. Also those of the rows of panels.
class EditCommands : public QObject
{
    Q_OBJECT

public:
    /// `window` is the parent of dialogs; this object must not outlive it.
    explicit EditCommands(QWidget *window);

private:
    void refresh();
    static void runInRow(const QString &path);
    void showNodeTypeFolder();
    void showPreferences();
    void showShortcuts();

    QWidget *m_window;
    QAction *m_undo;
    QAction *m_redo;
};
