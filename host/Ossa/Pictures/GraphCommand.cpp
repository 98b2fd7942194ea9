#include "Ossa/Pictures/GraphCommand.h"

#include "Ossa/Headless/CommandLine.h"
#include "Ossa/Pictures/GraphPicture.h"
#include "OssInterface/Palettes/OssPalette.h"
#include "OssInterface/Palettes/OssPaletteManager.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectManager.h"
#include "OssNodeGraph/View/OssNgView.h"

#include <QCoreApplication>
#include <QTabWidget>

#include <cstdio>

namespace {

/// The scene that the Node Graph palette shows of the open project; null without the plug-in.
QGraphicsScene *shownScene()
{
    const OssPalette *palette = OssPaletteManager::instance()->find(
        QStringLiteral("node_graph_palette"));
    const auto *tabs = palette ? qobject_cast<QTabWidget *>(palette->originalWidget()) : nullptr;
    const auto *view = tabs ? qobject_cast<OssNgView *>(tabs->widget(0)) : nullptr;
    return view ? view->scene() : nullptr;
}

} // namespace

int runGraphCommand(const QString &project, const QString &output)
{
    OssProjectManager *projects = OssProjectManager::instance();
    const OssResult opened = projects->openProject(project);
    if (!opened)
        return failCommand(opened.error());
    QGraphicsScene *scene = shownScene();
    if (!scene)
        return failCommand(QCoreApplication::translate(
            "GraphCommand", "The graph cannot be drawn: the node graph plug-in is not loaded"));
    const OssResult written = GraphPicture::write(scene, projects->currentProject()->name(),
                                                  output);
    if (!written)
        return failCommand(written.error());
    std::printf("%s\n", qPrintable(output));
    return ExitCode::Success;
}
