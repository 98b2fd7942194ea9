#include "Ossa/Commands/ExportCommands.h"

#include "Ossa/Commands/Commands.h"
#include "Ossa/Export/ExportPanel.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssInterface/Palettes/OssPalette.h"
#include "OssInterface/Palettes/OssPaletteManager.h"
#include "OssInterface/Popups/OssFileDialog.h"
#include "OssInterface/Popups/OssMessageBox.h"
#include "OssModel/Export/OssExportManager.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectManager.h"

#include <QAction>

ExportCommands::ExportCommands(QObject *parent)
    : QObject(parent)
{
    Commands::file(this, QStringLiteral("/Ossa/File/Export Textures..."), [] {
        if (OssPalette *palette = OssPaletteManager::instance()->find(
                QStringLiteral("export_palette")))
            palette->showBySidebar();
    });
    Commands::file(this, QStringLiteral("/Ossa/File/Export glTF..."), [] { askForGltf(); });
    Commands::file(this, QStringLiteral("/Ossa/File/Export Again"), [] { again(); });
    OssExportManager *exports = OssExportManager::instance();
    m_watch = Commands::file(this, QStringLiteral("/Ossa/File/Watch Exported Textures"),
                             [this, exports] {
                                 if (exports->canExportAgain())
                                     exports->setWatching(m_watch->isChecked());
                                 else
                                     OssStatusManager::instance()->showMessage(
                                         tr("Nothing of this project was exported yet"));
                                 refresh();
                             });
    m_watch->setCheckable(true);
    connect(exports, &OssExportManager::watchingChanged, this, &ExportCommands::refresh);
}

bool ExportCommands::mayQuit(QWidget *window)
{
    OssExportManager *exports = OssExportManager::instance();
    if (!exports->isRunning())
        return true;
    const auto answer = OssMessageBox::question(
        window, tr("Export"),
        tr("Textures are still being written. Stop that and leave? Files are whole or as they were."),
        QMessageBox::Yes | QMessageBox::Cancel, QMessageBox::Cancel);
    if (answer == QMessageBox::Yes && exports->isRunning())
        exports->job()->cancel();
    return answer == QMessageBox::Yes;
}

void ExportCommands::askForGltf()
{
    const OssProject *project = OssProjectManager::instance()->currentProject();
    if (!project)
        return;
    OssExportOptions options;
    options.resolution = ExportPanel::resolutionOf(project);
    options.file = OssFileDialog::getSaveFileName(tr("Export glTF"), tr("Binary glTF (*.glb)"),
                                                  QStringLiteral("ExportGltf"), nullptr,
                                                  project->name());
    if (options.file.isEmpty())
        return;
    OssExportPlan plan;
    OssResult result = OssExportPlan::makeGltf(project, options, &plan);
    if (result)
        result = OssExportManager::instance()->start(plan);
    if (!result)
        OssMessageBox::warning(nullptr, tr("Export glTF"), result.error());
    else if (!plan.notes.isEmpty())
        OssStatusManager::instance()->showMessage(plan.notes.join(QStringLiteral("; ")));
}

void ExportCommands::again()
{
    const OssResult begun = OssExportManager::instance()->exportAgain();
    if (!begun)
        OssStatusManager::instance()->showMessage(begun.error());
}

void ExportCommands::refresh()
{
    m_watch->setChecked(OssExportManager::instance()->isWatching());
}
