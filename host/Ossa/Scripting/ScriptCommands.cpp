#include "Ossa/Scripting/ScriptCommands.h"

#include "Ossa/Commands/Commands.h"
#include "Ossa/Scripting/ConsolePanel.h"
#include "OssInterface/Palettes/OssPalette.h"
#include "OssInterface/Palettes/OssPaletteManager.h"
#include "OssInterface/Popups/OssFileDialog.h"
#include "OssScripting/OssScriptEngine.h"

#include <QAction>
#include <QWidget>

ScriptCommands::ScriptCommands(QWidget *window)
    : QObject(window)
    , m_window(window)
{
    const QString folder = QStringLiteral("/Ossa/Script/");
    Commands::file(
        this, folder, tr("Console"), [this] { showConsole(); },
        tr("Type script lines, and see what was done by hand as script lines"));
    m_run = Commands::file(
        this, folder, tr("Run File..."), [this] { runFile(); },
        tr("Run a Python file as a script of its own"));
    m_stop = Commands::file(
        this, folder, tr("Stop"), [] { OssScriptEngine::instance()->stop(); },
        tr("Stop the running script"));
    const OssScriptEngine *engine = OssScriptEngine::instance();
    connect(engine, &OssScriptEngine::started, this, &ScriptCommands::refresh);
    connect(engine, &OssScriptEngine::finished, this, &ScriptCommands::refresh);
    refresh();
}

void ScriptCommands::showConsole()
{
    OssPalette *palette = OssPaletteManager::instance()->find(
        QStringLiteral("script_console_palette"));
    if (!palette)
        return;
    palette->showBySidebar();
    if (const auto *console = qobject_cast<ConsolePanel *>(palette->originalWidget()))
        console->focusInput();
}

void ScriptCommands::runFile()
{
    const QString path = OssFileDialog::getOpenFileName(
        tr("Run Script"), tr("Python scripts (*.py)"), QStringLiteral("scripts"), m_window);
    if (!path.isEmpty())
        OssScriptEngine::instance()->runFile(path, {});
}

void ScriptCommands::refresh()
{
    const bool running = OssScriptEngine::instance()->isRunning();
    m_run->setEnabled(!running);
    m_stop->setEnabled(running);
}
