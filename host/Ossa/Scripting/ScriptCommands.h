#pragma once

#include <QObject>

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
};
