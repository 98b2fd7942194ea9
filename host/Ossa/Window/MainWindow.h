#pragma once

#include "Ossa/Plugins/PluginLoader.h"

#include <QMainWindow>
#include <QPointer>

class NotificationBar;
class PaletteDocks;
class MeshCommands;
class ProjectCommands;
class WelcomePanel;
class WorkRecovery;

/// The application's window: menus, docked palettes, status bar. Only one at a time.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    MainWindow();
    ~MainWindow() override;

    /// Offers what crashed sessions left. Before anything else is restored or shown.
    void askForUnsavedWork();
    /// Size, place and docks of the last session.
    void restoreLayout();
    void tellAbout(const QVector<PluginLoader::Failure> &failures);

    /// What the box about the program lists.
    void setPlugins(const QVector<PluginLoader::Plugin> &plugins) { m_plugins = plugins; }

    /// The program and its plug-ins with author, version and legal notice, as markup.
    QString aboutText() const;
    /// Opens the unsaved work that the user chose, asked now if not before; else the project of the
    /// given path; with none, what the preferences say. Where nothing is opened the graph's place says
    /// how to go on.
    void openAtStart(const QString &path);

    /// The session ends and nobody can be asked: a copy of unsaved work is left for the next one.
    void keepWork();

    QString notificationText() const;

Q_SIGNALS:
    /// The user has left; other windows may still be open.
    void closed();

protected:
    void closeEvent(QCloseEvent *event) override;
    /// A project's folder that is dropped anywhere is opened.
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    /// Esc that nothing else takes stops what is being computed.
    void keyPressEvent(QKeyEvent *event) override;

private:
    void fileViewCommands();
    void fileHelpCommands();
    void showCommandPalette();
    void showAbout();
    void refreshTitle();
    void openSoon(const QString &path);
    void saveLayout() const;

    QVector<PluginLoader::Plugin> m_plugins;
    NotificationBar *m_notifications;
    PaletteDocks *m_docks;
    MeshCommands *m_meshes = nullptr;
    ProjectCommands *m_project;
    WorkRecovery *m_recovery;
    QPointer<WelcomePanel> m_welcome; ///< owned by the docks or the window
};
