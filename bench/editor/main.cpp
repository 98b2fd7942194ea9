#include "Ossa/Plugins/PluginLoader.h"
#include "Ossa/Start/HostServices.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssInterface/Palettes/OssPalette.h"
#include "OssInterface/Palettes/OssPaletteManager.h"
#include "OssInterface/Popups/OssApplication.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssShadingGroup.h"
#include "OssModel/Graph/OssSnBaseContext.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectManager.h"
#include "OssNodeGraph/Items/OssNgSceneIndex.h"

#include <QApplication>
#include <QGraphicsView>
#include <QImage>
#include <QPainter>
#include <QRandomGenerator>
#include <QSet>
#include <QTemporaryDir>

#include <cstdio>
#include <ctime>

#include <malloc.h>

// The whole editor on graphs of 1,000 to 10,000 nodes: what a user waits for. Thread CPU time, in
// milliseconds and in units of "cal", the painting of 1000 antialiased rounded rectangles in the
// same process, so that runs on different machines can be compared.

namespace {

double now()
{
    timespec time = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
}

double g_cal = 1.0;

template <class Work>
void measure(const char *what, int count, Work work)
{
    const double start = now();
    work();
    const double spent = now() - start;
    std::printf("%7d  %-34s %9.1f ms %8.2f cal\n", count, what, spent, spent / g_cal);
}

double calibrate()
{
    QImage image(1920, 1080, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::darkGray);
    double best = 1e9;
    for (int round = 0; round < 5; ++round) {
        const double start = now();
        for (int i = 0; i < 1000; ++i)
            painter.drawRoundedRect(QRectF((i * 37) % 1700, (i * 91) % 950, 150, 90), 8, 8);
        best = std::min(best, now() - start);
    }
    return best;
}

/// Chains of five kinds of node in a square, each fed from nodes before it.
void fill(OssShaderNetwork *network, int count)
{
    const OssUndoManager::Pause pause;
    const OssShaderNetwork::ViewUpdateLock lock(network);
    const char *const keys[] = {"Layer/Merge", "Filter/Blur", "Adjust/Levels",
                                "Procedural/Noise/Fractal Noise", "Math/Math"};
    const char *const inputs[] = {"Base", "Input", "Input", "Frequency", "A"};
    QRandomGenerator random(7);
    const int side = int(std::ceil(std::sqrt(double(count))));
    std::vector<OssSnBaseNode *> nodes;
    for (int i = 0; i < count; ++i) {
        // New nodes appear at the origin, which is kept free: none has to make way.
        OssSnBaseNode *node = network->createNode(QString::fromLatin1(keys[i % 5]),
                                                  QStringLiteral("Node %1").arg(i));
        QMetaObject::invokeMethod(
            node->context(QStringLiteral("NodeGraphView")), "setNodePosition",
            Q_ARG(QPointF, QPointF(400.0 + (i % side) * 240.0, (i / side) * 180.0)));
        if (i > 0) {
            OssSnBaseNode *source = nodes[std::size_t(std::max(0, i - 1 - random.bounded(20)))];
            node->setInputNode(QString::fromLatin1(inputs[i % 5]), source,
                               source->prefferedOutputPoint());
        }
        nodes.push_back(node);
    }
}

QWidget *graphWidget()
{
    OssPalette *palette = OssPaletteManager::instance()->find(QStringLiteral("node_graph_palette"));
    palette->resize(1920, 1080);
    return palette;
}

/// Twice the area of a triangle; its sign says on which side of a to b the third point is.
double turn(const QPointF &a, const QPointF &b, const QPointF &point)
{
    return (b.x() - a.x()) * (point.y() - a.y()) - (b.y() - a.y()) * (point.x() - a.x());
}

bool cross(const OssNgSceneIndex::WireEntry &a, const OssNgSceneIndex::WireEntry &b)
{
    return turn(a.start, a.end, b.start) * turn(a.start, a.end, b.end) < 0.0
           && turn(b.start, b.end, a.start) * turn(b.start, b.end, a.end) < 0.0;
}

/// How well the graph can be read: wires that cross, taken for straight, and nodes on each other.
void judge(const char *what, int count)
{
    const auto *view = graphWidget()->findChild<QGraphicsView *>();
    const OssNgSceneIndex *index = view ? OssNgSceneIndex::of(view->scene()) : nullptr;
    if (!index)
        return;
    int crossings = 0;
    int overlaps = 0;
    const auto &wires = index->wireEntries();
    const auto &nodes = index->nodeEntries();
    for (std::size_t i = 0; i < wires.size(); ++i) {
        for (std::size_t j = i + 1; j < wires.size(); ++j)
            crossings += wires[i].edge && wires[j].edge && cross(wires[i], wires[j]) ? 1 : 0;
    }
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        for (std::size_t j = i + 1; j < nodes.size(); ++j)
            overlaps += nodes[i].node && nodes[j].node
                                && nodes[i].bounds.intersects(nodes[j].bounds)
                            ? 1
                            : 0;
    }
    std::printf("%7d  %-34s %9d crossings, %d overlaps\n", count, what, crossings, overlaps);
}

void bench(int count, const QString &path)
{
    OssProjectManager *projects = OssProjectManager::instance();
    OssProject *project = projects->newProject(QStringLiteral("Bench"));
    measure("populate through the operations", count,
            [&] { fill(project->shadingGroups().first()->network(), count); });
    measure("save", count, [&] {
        if (!projects->saveProjectAs(path))
            std::printf("failed to save\n");
    });
    projects->closeProject();
    const auto before = mallinfo2().uordblks;
    measure("open to first picture", count, [&] {
        if (!projects->openProject(path))
            std::printf("failed to open\n");
        graphWidget()->grab();
    });
    std::printf("%7d  %-34s %9.1f KB\n", count, "memory for each node and wire",
                double(mallinfo2().uordblks - before) / 1024.0 / count);
    project = projects->currentProject();
    OssShaderNetwork *network = project->shadingGroups().first()->network();
    measure("state hash", count, [&] { project->stateHash(); });
    QSet<OssSnBaseNode *> some;
    const QList<OssSnBaseNode *> nodes = network->nodes();
    for (int i = 0; i < 1000 && i * 9 + 5 < nodes.size(); ++i)
        some.insert(nodes.at(i * 9 + 5));
    measure("select all", count, [&] {
        for (OssSnBaseNode *node : nodes)
            node->setSelected(true);
    });
    measure("delete 1,000 (or a ninth)", count, [&] { network->removeNodes(some); });
    measure("undo it", count, [&] { OssUndoManager::instance()->undo(); });
    for (OssSnBaseNode *node : nodes)
        node->setSelected(false);
    judge("as made", count);
    measure("autoplace", count,
            [&] { OssShaderNetworkManager::instance()->requestLayout(network, nodes); });
    judge("placed", count);
    measure("undo it", count, [&] { OssUndoManager::instance()->undo(); });
    measure("close", count, [&] { projects->closeProject(); });
}

/// Nodes that all hang on one by a name cost what as many do that know nothing of each other.
void benchTeleports(const QString &path)
{
    constexpr int Count = 800;
    OssProjectManager *projects = OssProjectManager::instance();
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
            projects->newProject(QStringLiteral("Bench"))->shadingGroups().first()->network();
        OssSnBaseNode *sender = make(network, "Teleport Broadcast/Broadcast", {0.0, 400.0});
        measure(key, Count, [&] {
            for (int i = 0; i < Count; ++i)
                make(network, key, {400.0 + (i % 28) * 240.0, (i / 28) * 180.0});
        });
        measure("another channel for the sender", Count,
                [&] { sender->setAttribute(QStringLiteral("channel"), QStringLiteral("Other")); });
        measure("save and open", Count, [&] {
            if (!projects->saveProjectAs(path) || !projects->openProject(path))
                std::printf("failed\n");
        });
        projects->closeProject();
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
    OssApplication::setPopupsAllowed(false);
    PluginLoader plugins;
    HostServices services;
    services.start(&plugins);
    g_cal = calibrate();
    std::printf("cal %.1f ms\n", g_cal);
    for (const int count : {50, 1000, 5000, 10000})
        bench(count, folder.filePath(QStringLiteral("B%1.ossa").arg(count)));
    benchTeleports(folder.filePath(QStringLiteral("Teleports.ossa")));
    return 0;
}
