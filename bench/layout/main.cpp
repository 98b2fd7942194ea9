#include "Dot.h"
#include "Graphs.h"
#include "Ossa/Plugins/PluginLoader.h"
#include "Ossa/Start/HostServices.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssGraphLayout/OssLyLayout.h"
#include "OssGraphLayout/OssLyMeasure.h"
#include "OssInterface/Palettes/OssPalette.h"
#include "OssInterface/Palettes/OssPaletteManager.h"
#include "OssInterface/Popups/OssApplication.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssShadingGroup.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectManager.h"
#include "OssModel/Types/OssSnTags.h"
#include "OssNodeGraph/Items/OssNgEdge.h"
#include "OssNodeGraph/Items/OssNgNode.h"
#include "OssNodeGraph/Items/OssNgSceneIndex.h"

#include <QApplication>
#include <QGraphicsView>
#include <QHash>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <ctime>

// How well both layouts of the program can be read, against each other and against `dot` where it is installed:
// wires that cross, run through nodes or backwards, taken for straight; the area; thread CPU time. The viewer does not
// count. Arguments: projects whose graphs are measured first.

namespace {

double now()
{
    timespec time = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
}

/// As it is shown, without backdrops.
OssLyGraph shownGraph()
{
    OssLyGraph graph;
    OssPalette *palette = OssPaletteManager::instance()->find(QStringLiteral("node_graph_palette"));
    const auto *view = palette->findChild<QGraphicsView *>();
    const OssNgSceneIndex *index = view ? OssNgSceneIndex::of(view->scene()) : nullptr;
    if (!index)
        return graph;
    QHash<const OssNgNode *, int> indexes;
    std::vector<const OssNgNode *> items;
    for (const OssNgSceneIndex::NodeEntry &entry : index->nodeEntries()) {
        const OssNgNode *item = entry.node;
        if (!item || item->isBackground() || !item->isVisible())
            continue;
        const auto *node = qobject_cast<OssSnBaseNode *>(item->businessNode());
        OssLyNode value;
        const QRectF rect = item->sceneBoundingRect();
        value.rect = {rect.x(), rect.y(), rect.width(), rect.height()};
        value.looksOnly = node && node->hasTag(OssSnTags::viewer());
        indexes.insert(item, int(items.size()));
        items.push_back(item);
        graph.nodes.push_back(value);
    }
    for (const OssNgNode *item : items) {
        const QList<OssNgEdge *> edges = item->inputs();
        for (const OssNgEdge *edge : edges) {
            const OssNgNode *source = edge->source();
            if (source && indexes.contains(source))
                graph.wires.push_back(
                    {indexes.value(source), indexes.value(item),
                     source->outputPortScenePos(edge->sourceOutput()).y() - source->y(),
                     item->inputPortScenePos(edge->destinationInput()).y() - item->y()});
        }
    }
    return graph;
}

void tell(const char *what, const OssLyGraph &graph, const std::vector<OssLyRect> &places,
          double milliseconds)
{
    const OssLyMeasure found = ossLyMeasured(graph, places);
    std::printf("    %-18s %7d crossings %6d through %5d backward %9.2f area %7.0f x %-7.0f", what,
                found.crossings, found.throughNodes, found.backward,
                found.width * found.height / 1e6, found.width, found.height);
    if (milliseconds >= 0.0)
        std::printf(" %9.1f ms", milliseconds);
    std::printf("\n");
    std::fflush(stdout);
}

void tellShown(const char *what, double milliseconds)
{
    const OssLyGraph graph = shownGraph();
    std::vector<OssLyRect> places;
    for (const OssLyNode &node : graph.nodes)
        places.push_back(node.rect);
    tell(what, graph, places, milliseconds);
}

/// What is shown, laid out in each way; undone each time.
void compare(OssShaderNetwork *network, const QString &folder, bool withAutoplace)
{
    auto *networks = OssShaderNetworkManager::instance();
    tellShown("as it is", -1.0);
    const OssLyGraph before = shownGraph();
    const auto run = [&](const char *what, auto work) {
        const double start = now();
        work();
        tellShown(what, now() - start);
        OssUndoManager::instance()->undo();
    };
    if (withAutoplace)
        run("Autoplace", [&] { networks->requestLayout(network, {}); });
    run("Arrange", [&] {
        const OssResult done = networks->requestArrangement(
            network->nodes(), OssShaderNetworkManager::ArrangeInLayers);
        if (!done)
            std::printf("%s\n", qPrintable(done.error()));
    });
    const double start = now();
    const OssLyPlaces places = OssLyLayout::arranged(before);
    tell("the layout alone", before, places.nodes, now() - start);
    double seconds = 0.0;
    const std::vector<OssLyRect> others = Dot::isInstalled() ? Dot::places(before, folder, &seconds)
                                                             : std::vector<OssLyRect>();
    if (!others.empty())
        tell("dot", before, others, seconds * 1e3);
    else
        std::printf("    dot %s\n", Dot::isInstalled() ? "took more than a minute"
                                                       : "is not installed (graphviz): skipped");
}

void compareProject(const QString &path, const QString &folder)
{
    OssProjectManager *projects = OssProjectManager::instance();
    if (!projects->openProject(path)) {
        std::printf("%s cannot be opened\n", qPrintable(path));
        return;
    }
    OssShaderNetwork *network = projects->currentProject()->shadingGroups().first()->network();
    std::printf("%s: %d nodes\n", qPrintable(path.section(QLatin1Char('/'), -1)),
                network->nodes().size());
    compare(network, folder, true);
    projects->closeProject();
}

} // namespace

int main(int argc, char **argv)
{
    qSetGlobalQHashSeed(0);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QTemporaryDir folder;
    qputenv("OSSA_CONFIG_DIR", folder.path().toLocal8Bit());
    const QApplication application(argc, argv);
    OssApplication::setPopupsAllowed(false);
    PluginLoader plugins;
    HostServices services;
    services.start(&plugins);
    OssPaletteManager::instance()->find(QStringLiteral("node_graph_palette"))->resize(1920, 1080);
    for (int i = 1; i < argc; ++i)
        compareProject(QString::fromLocal8Bit(argv[i]), folder.path());

    struct Row
    {
        const char *name;
        Graphs::Shape shape;
        int count;
        unsigned seeds;
    };

    const Row rows[] = {
        {"six parts", Graphs::Shape::Parts, 60, 3},
        {"star", Graphs::Shape::Star, 41, 1},
        {"tree", Graphs::Shape::Tree, 127, 1},
        {"near, 60", Graphs::Shape::Near, 60, 5},
        {"wild, 60", Graphs::Shape::Wild, 60, 5},
        {"near, 300", Graphs::Shape::Near, 300, 5},
        {"wild, 300", Graphs::Shape::Wild, 300, 3},
        {"near, 2,000", Graphs::Shape::Near, 2000, 2},
        {"near, 10,000", Graphs::Shape::Near, 10000, 1},
    };
    for (const Row &row : rows) {
        for (unsigned seed = 1; seed <= row.seeds; ++seed) {
            std::printf("%s, seed %u\n", row.name, seed);
            OssProjectManager *projects = OssProjectManager::instance();
            OssShaderNetwork *network =
                projects->newProject(QStringLiteral("Bench"))->shadingGroups().first()->network();
            Graphs::fill(network, row.shape, row.count, seed);
            compare(network, folder.path(), row.count <= 2000);
            projects->closeProject();
        }
    }
    return 0;
}
