#include "Ossa/Scripting/ScriptCommands.h"

#include "Ossa/Commands/Commands.h"
#include "Ossa/Scripting/ConsolePanel.h"
#include "OssCore/Program/OssStatusManager.h"
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
    Commands::file(this, QStringLiteral("/Ossa/Script/Console"), [this] { showConsole(); });
    Commands::file(this, QStringLiteral("/Ossa/Script/Run File..."), [this] { runFile(); });
    Commands::file(this, QStringLiteral("/Ossa/Script/Stop"),
                   [] { OssScriptEngine::instance()->stop(); });
    Commands::file(this, QStringLiteral("/Ossa/Script/Forget Names"), [] {
        OssScriptEngine::instance()->resetNames();
        OssStatusManager::instance()->showMessage(tr("The console knows no names any more"));
    });
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
    OssCommandTable::setHolds(OssCommandTable::WithoutScript, !running);
    OssCommandTable::setHolds(OssCommandTable::WithScript, running);
}
