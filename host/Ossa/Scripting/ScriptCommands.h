#pragma once

#include <QObject>

class QAction;

/// Commands of the Script menu.
class ScriptCommands : public QObject
{
    Q_OBJECT

public:
    explicit ScriptCommands(QWidget *window);

private:
    void showConsole();
    void runFile();
    void refresh();

    QWidget *m_window;
    QAction *m_run;
    QAction *m_stop;
};
