#pragma once

#include <QObject>

class QAction;
class QWidget;

/// The commands by which textures leave the program.
class ExportCommands : public QObject
{
    Q_OBJECT

public:
    explicit ExportCommands(QObject *parent);

    /// Asks while textures are being written, and stops that when the user wants to go.
    static bool mayQuit(QWidget *window);

private:
    static void again();
    static void askForGltf();
    void refresh();

    QAction *m_watch;
};
