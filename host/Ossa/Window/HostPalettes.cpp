#include "Ossa/Window/HostPalettes.h"

#include "Ossa/Palettes/HistoryPanel.h"
#include "Ossa/Palettes/ImagesPanel.h"
#include "Ossa/Palettes/LogPanel.h"
#include "Ossa/Palettes/NodeTypesPanel.h"
#include "Ossa/Scripting/ConsolePanel.h"
#include "Ossa/Viewer/ViewerPanel.h"
#include "OssCore/Program/OssIcon.h"
#include "OssInterface/Palettes/OssPalette.h"
#include "OssInterface/Palettes/OssPaletteManager.h"

#include <QCoreApplication>

namespace {

void registerPalette(const char *name, const char *helpKey, const char *icon, QWidget *body,
                     bool shownAtFirst)
{
    const QString title = QCoreApplication::translate("HostPalettes", name);
    auto *palette = new OssPalette; // owned by the palette manager
    palette->setObjectName(QString::fromLatin1(name));
    palette->setWindowTitle(title);
    palette->setContextHelpKey(QString::fromLatin1(helpKey));
    palette->setBodyWidget(body);
    OssPaletteManager::instance()->registerPalette(palette, shownAtFirst,
                                                   OssIcon::getIconPath(QString::fromLatin1(icon)));
}

} // namespace

void HostPalettes::registerAll()
{
    registerPalette("Viewer", "viewer_palette", "Viewer.png", new ViewerPanel, true);
    registerPalette("Images", "images_palette", "Images.png", new ImagesPanel, false);
    registerPalette("Nodes", "nodes_palette", "NodeTypes.png", new NodeTypesPanel, false);
    registerPalette("History", "history_palette", "History.png", new HistoryPanel, false);
    registerPalette("Script Console", "script_console_palette", "ScriptConsole.png",
                    new ConsolePanel, false);
    registerPalette("Log", "log_palette", "Log.png", new LogPanel, false);
}
