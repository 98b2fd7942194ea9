#include "Graphs.h"
#include "Measure.h"
#include "Ossa/Common/Theme.h"
#include "Ossa/Plugins/PluginLoader.h"
#include "Ossa/Start/HostServices.h"
#include "Ossa/Window/HostPalettes.h"
#include "Ossa/Window/MainWindow.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssInterface/Popups/OssApplication.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssShadingGroup.h"
#include "OssModel/Graph/OssSnBaseContext.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectManager.h"
#include "OssModel/Project/OssProjectSnapshot.h"

#include <QApplication>
#include <QSet>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include <malloc.h>

// The whole editor, with its window, on graphs of up to 100,000 nodes: what a user waits for.
//   ossa_bench_editor [COUNT...]

namespace {

OssProjectManager *projects()
{
    return OssProjectManager::instance();
}

OssShaderNetwork *network()
{
    return projects()->currentProject()->shadingGroups().first()->network();
}

void undo()
{
    OssUndoManager::instance()->undo();
}

/// Some of the nodes, spread over the graph.
QList<OssSnBaseNode *> someOf(const QList<OssSnBaseNode *> &nodes, int count)
{
    const int step = std::max(1, nodes.size() / count);
    QList<OssSnBaseNode *> some;
    for (int i = step / 2; i < nodes.size() && some.size() < count; i += step)
        some.append(nodes.at(i));
    return some;
}

/// Nodes that stand together, as one groups them.
QList<OssSnBaseNode *> neighbours(const QList<OssSnBaseNode *> &nodes, int count)
{
    return nodes.mid(nodes.size() / 3, count);
}

double allocatedKilobytes()
{
    return double(mallinfo2().uordblks) / 1024.0;
}

void benchFiles(int count, const QString &path)
{
    projects()->newProject(QStringLiteral("Bench"));
    Measure::row("populate through the operations", count, [&] { Graphs::fill(network(), count); });
    Measure::rest();
    Measure::row("save", count, [&] {
        if (!projects()->saveProjectAs(path))
            std::printf("failed to save\n");
    });
    projects()->closeProject();
    Measure::rest();
    const double before = allocatedKilobytes();
    Measure::rowUntilRest("open to first picture", count, [&] {
        if (!projects()->openProject(path))
            std::printf("failed to open\n");
    });
    const double open = allocatedKilobytes() - before;
    std::printf("%7d  %-44s %10.2f KB\n", count, "memory for each node and wire", open / count);
    Measure::row("close", count, [&] { projects()->closeProject(); });
    Measure::rest();
    std::printf("%7d  %-44s %10.1f %%\n", count, "given back by closing",
                100.0 * (open - (allocatedKilobytes() - before)) / open);
}

/// What keeps a copy of the work, as it steps while the user rests.
void benchSnapshot(int count)
{
    OssProjectSnapshot snapshot(projects()->currentProject(), {});
    double longest = 0.0;
    double all = 0.0;
    while (!snapshot.isDone()) {
        const double start = Measure::now();
        if (!snapshot.advance(4))
            break;
        const double spent = Measure::now() - start;
        longest = std::max(longest, spent);
        all += spent;
    }
    Measure::print("copy of the work: longest step", count, longest);
    Measure::print("copy of the work: all steps", count, all);
}

/// One node is edited, and all that follows from it.
void benchEdits(int count)
{
    const QList<OssSnBaseNode *> nodes = network()->nodes();
    OssSnBaseNode *node = nodes.at(nodes.size() / 2 / 5 * 5 + 1);
    node->setSelected(true);
    Measure::rest();
    Measure::rowUntilRest("nothing, until it rests", count, [] {});
    Measure::rowUntilRest("select another node", count,
                          [&] { network()->selectOnly({nodes.at(nodes.size() / 3)}); });
    Measure::rowUntilRest("attribute of one node", count,
                          [&] { node->setAttribute(QStringLiteral("radius"), 7.5); });
    Measure::rowUntilRest("rename one node", count,
                          [&] { node->setName(QStringLiteral("Other")); });
    Measure::rowUntilRest("move one node", count, [&] {
        node->viewContext()->setNodePositionUndo(node->viewContext()->nodePosition()
                                                 + QPointF(3, 3));
    });
    Measure::rowUntilRest("make one node", count,
                          [&] { network()->createNode(QStringLiteral("Filter/Blur")); });
    for (int i = 0; i < 4; ++i)
        Measure::rowUntilRest("undo that", count, undo);
}

void benchGroups(int count, const char *what, const QList<OssSnBaseNode *> &members)
{
    OssSnGroupNode *group = nullptr;
    const auto row = [&](const char *step, auto work) {
        char text[64];
        std::snprintf(text, sizeof text, "%s %s", step, what);
        Measure::rowUntilRest(text, count, work);
    };
    row("group", [&] { group = network()->groupNodes(members); });
    if (!group) {
        std::printf("no group was made\n");
        return;
    }
    row("undo of group", undo);
    row("redo of group", [] { OssUndoManager::instance()->redo(); });
    row("ungroup", [&] {
        for (OssSnBaseNode *node : network()->nodes()) {
            if (auto *made = qobject_cast<OssSnGroupNode *>(node))
                network()->ungroup(made);
        }
    });
    row("undo of ungroup", undo);
    undo();
    Measure::rest();
}

void benchMany(int count)
{
    const QList<OssSnBaseNode *> nodes = network()->nodes();
    const QList<OssSnBaseNode *> thousand = someOf(nodes, std::min(1000, count / 9));
    Measure::rowUntilRest("select all", count, [&] { network()->selectOnly(nodes); });
    Measure::rowUntilRest("select none", count, [&] { network()->selectOnly({}); });
    Measure::rowUntilRest("delete 1,000", count, [&] {
        network()->removeNodes(QSet<OssSnBaseNode *>(thousand.begin(), thousand.end()));
    });
    Measure::rowUntilRest("undo it", count, undo);
    Measure::rowUntilRest("extract 1,000", count,
                          [&] { network()->extractNodes(thousand, false); });
    Measure::rowUntilRest("undo it", count, undo);
    benchGroups(count, "1,000", neighbours(network()->nodes(), std::min(1000, count / 2)));
    benchGroups(count, "everything", network()->nodes());
    Measure::rowUntilRest("autoplace all", count, [&] {
        OssShaderNetworkManager::instance()->requestLayout(network(), network()->nodes());
    });
    Measure::rowUntilRest("undo it", count, undo);
    Measure::rowUntilRest("delete all", count, [&] {
        const QList<OssSnBaseNode *> all = network()->nodes();
        network()->removeNodes(QSet<OssSnBaseNode *>(all.begin(), all.end()));
    });
    Measure::rowUntilRest("undo it", count, undo);
}

void bench(int count, const QString &path)
{
    benchFiles(count, path);
    if (!projects()->openProject(path))
        std::printf("failed to open\n");
    Measure::rest();
    Measure::row("state hash", count, [] { projects()->currentProject()->stateHash(); });
    benchSnapshot(count);
    benchEdits(count);
    benchMany(count);
    projects()->closeProject();
    Measure::rest();
}

/// Nodes that all hang on one by a name cost what as many do that know nothing of each other.
void benchTeleports(const QString &path)
{
    constexpr int Count = 800;

    const QString channel = QStringLiteral("channel");
    const auto make = [&](OssShaderNetwork *network, const char *key, const QPointF &place) {
        OssSnBaseNode *node = network->createNode(QString::fromLatin1(key));
        node->viewContext()->setNodePosition(place);
        if (node->exists(channel))
            node->setAttribute(channel, QStringLiteral("Wall"));
        return node;
    };
    for (const char *key : {"Procedural/Color", "Teleport Receiver/Receiver"}) {
        OssShaderNetwork *network =
            projects()->newProject(QStringLiteral("Bench"))->shadingGroups().first()->network();
        OssSnBaseNode *sender = make(network, "Teleport Broadcast/Broadcast", {0.0, 400.0});
        Measure::row(key, Count, [&] {
            for (int i = 0; i < Count; ++i)
                make(network, key, {400.0 + (i % 28) * 240.0, (i / 28) * 180.0});
        });
        Measure::row("another channel for the sender", Count, [&] {
            sender->setAttribute(QStringLiteral("channel"), QStringLiteral("Other"));
        });
        Measure::row("save and open", Count, [&] {
            if (!projects()->saveProjectAs(path) || !projects()->openProject(path))
                std::printf("failed\n");
        });
        projects()->closeProject();
    }
}

} // namespace

int main(int argc, char **argv)
{
    qSetGlobalQHashSeed(0);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QTemporaryDir folder;
    qputenv("OSSA_CONFIG_DIR", folder.path().toLocal8Bit());
    const QApplication application(argc, argv);
    Theme::apply();
    OssApplication::setPopupsAllowed(false);
    PluginLoader plugins;
    HostServices services;
    services.start(&plugins);
    HostPalettes::registerAll();
    MainWindow window;
    window.resize(1920, 1080);
    window.show();
    Measure::calibrate();
    QList<int> counts;
    for (const QString &argument : QApplication::arguments().mid(1))
        counts.append(argument.toInt());
    if (counts.isEmpty())
        counts = {1000, 10000, 50000, 100000};
    for (const int count : counts)
        bench(count, folder.filePath(QStringLiteral("B%1.ossa").arg(count)));
    benchTeleports(folder.filePath(QStringLiteral("Teleports.ossa")));
    return 0;
}
