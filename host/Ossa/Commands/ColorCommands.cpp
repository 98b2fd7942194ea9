#include "Ossa/Commands/ColorCommands.h"

#include "Ossa/Commands/Commands.h"
#include "Ossa/Dialogs/ProjectSettingsDialog.h"
#include "OssCore/Program/OssDebug.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssInterface/Popups/OssApplication.h"
#include "OssInterface/Popups/OssMessageBox.h"
#include "OssModel/Images/OssColorManagement.h"
#include "OssModel/Images/OssFilePath.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectColors.h"
#include "OssModel/Project/OssProjectManager.h"

#include <QPointer>

ColorCommands::ColorCommands(QWidget *window)
    : QObject(window)
    , m_window(window)
{
    Commands::file(this, QStringLiteral("/Ossa/Edit/Project Settings..."),
                   [this] { editSettings(); });
    connect(OssColorManagement::instance(), &OssColorManagement::changed, this,
            &ColorCommands::tellTrouble);
    tellTrouble();
}

void ColorCommands::tellTrouble()
{
    const QString problem = OssColorManagement::instance()->problem();
    if (problem == m_told)
        return;
    m_told = problem;
    if (!problem.isEmpty())
        OssDebug("ColorCommands", __LINE__, "[ !! ] %s", qPrintable(problem));
    Q_EMIT trouble(problem);
}

void ColorCommands::editSettings()
{
    const QPointer<OssProject> project = OssProjectManager::instance()->currentProject();
    if (!project || !OssApplication::popupsAllowed())
        return;
    OssUndoManager::instance()->endInteraction();
    ProjectSettingsDialog dialog(project, m_window);
    if (dialog.exec() != QDialog::Accepted || !project)
        return;
    OssColorSettings settings = dialog.settings();
    settings.config = OssFilePath::shortened(settings.config);
    if (settings == project->colors()) {
        OssColorManagement::instance()->use(settings); // its file may be there again
        return;
    }
    int converted = 0;
    const OssResult changed = OssProjectColors::change(
        project, settings,
        dialog.converts() ? OssProjectColors::Values::Converted : OssProjectColors::Values::Kept,
        &converted);
    if (!changed)
        OssMessageBox::warning(m_window, tr("Project Settings"), changed.error());
    else if (converted > 0)
        OssStatusManager::instance()->showMessage(
            converted == 1 ? tr("Converted 1 color of a node")
                           : tr("Converted %1 colors of nodes").arg(converted));
}
