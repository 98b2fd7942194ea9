#include "Ossa/Window/HostPalettes.h"

#include "Ossa/Export/ExportPanel.h"
#include "Ossa/Painting/BrushesPanel.h"
#include "Ossa/Palettes/HistoryPanel.h"
#include "Ossa/Palettes/ImagesPanel.h"
#include "Ossa/Palettes/LogPanel.h"
#include "Ossa/Palettes/MaterialsPanel.h"
#include "Ossa/Palettes/NodeTypesPanel.h"
#include "Ossa/Palettes/ProblemsPanel.h"
#include "Ossa/Scripting/ConsolePanel.h"
#include "Ossa/Viewer/ViewerPanel.h"
#include "OssCore/Program/OssIcon.h"
#include "OssInterface/Palettes/OssPalette.h"
#include "OssInterface/Palettes/OssPaletteManager.h"

#include <QCoreApplication>

namespace {

struct Row
{
    HostPalettes::Place place;
    const char *name = ""; ///< its title, translated
    const char *icon = "";
    bool shownAtFirst = false;
    QWidget *(*make)() = nullptr; ///< null: a plug-in brings it
};

template <class Panel>
QWidget *make()
{
    return new Panel; // its palette takes it
}

// Graph at the left, what is looked at and tuned at the right.
// clang-format off
const Row table[] = {
    {{"node_graph_palette", ads::LeftDockWidgetArea, nullptr}},
    {{"viewer_palette", ads::RightDockWidgetArea, nullptr}, QT_TRANSLATE_NOOP("HostPalettes", "Viewer"), "Viewer.png", true, make<ViewerPanel>},
    {{"node_properties_palette", ads::BottomDockWidgetArea, "viewer_palette"}},
    {{"images_palette", ads::CenterDockWidgetArea, "node_properties_palette"}, QT_TRANSLATE_NOOP("HostPalettes", "Images"), "Images.png", false, make<ImagesPanel>},
    {{"nodes_palette", ads::CenterDockWidgetArea, "node_properties_palette"}, QT_TRANSLATE_NOOP("HostPalettes", "Nodes"), "NodeTypes.png", false, make<NodeTypesPanel>},
    {{"materials_palette", ads::CenterDockWidgetArea, "node_properties_palette"}, QT_TRANSLATE_NOOP("HostPalettes", "Materials"), "Materials.png", false, make<MaterialsPanel>},
    {{"brushes_palette", ads::CenterDockWidgetArea, "node_properties_palette"}, QT_TRANSLATE_NOOP("HostPalettes", "Brushes"), "Brushes.png", false, make<BrushesPanel>},
    {{"history_palette", ads::CenterDockWidgetArea, "node_properties_palette"}, QT_TRANSLATE_NOOP("HostPalettes", "History"), "History.png", false, make<HistoryPanel>},
    {{"log_palette", ads::BottomDockWidgetArea, "node_graph_palette"}, QT_TRANSLATE_NOOP("HostPalettes", "Log"), "Log.png", false, make<LogPanel>},
    {{"script_console_palette", ads::CenterDockWidgetArea, "log_palette"}, QT_TRANSLATE_NOOP("HostPalettes", "Script Console"), "ScriptConsole.png", false, make<ConsolePanel>},
    {{"problems_palette", ads::CenterDockWidgetArea, "log_palette"}, QT_TRANSLATE_NOOP("HostPalettes", "Problems"), "Problems.png", false, make<ProblemsPanel>},
    {{"export_palette", ads::CenterDockWidgetArea, "log_palette"}, QT_TRANSLATE_NOOP("HostPalettes", "Export"), "Export.png", false, make<ExportPanel>},
};
// clang-format on

} // namespace

const std::vector<HostPalettes::Place> &HostPalettes::places()
{
    static const std::vector<Place> all = [] {
        std::vector<Place> found;
        for (const Row &row : table)
            found.push_back(row.place);
        return found;
    }();
    return all;
}

void HostPalettes::registerAll()
{
    for (const Row &row : table) {
        if (!row.make)
            continue;
        auto *palette = new OssPalette; // owned by the palette manager
        palette->setObjectName(QString::fromLatin1(row.name));
        palette->setWindowTitle(QCoreApplication::translate("HostPalettes", row.name));
        palette->setContextHelpKey(QString::fromLatin1(row.place.helpKey));
        palette->setBodyWidget(row.make());
        OssPaletteManager::instance()->registerPalette(
            palette, row.shownAtFirst, OssIcon::getIconPath(QString::fromLatin1(row.icon)));
    }
}
