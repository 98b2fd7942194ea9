// What painting and editing a graph costs: thread CPU time in milliseconds and as a ratio to `cal`
// (painting 1000 antialiased rounded rectangles, measured in the same process), beside the same
// for the least that QGraphicsView needs for that picture.

#include "LimitScene.h"
#include "OssCore/OssCoreServices.h"
#include "OssNodeGraph/Items/OssNgEdge.h"
#include "OssNodeGraph/Items/OssNgSceneIndex.h"
#include "OssNodeGraph/View/OssNgView.h"
#include "support/ExampleGraph.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <functional>

#include <malloc.h>

namespace {

double now()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
}

double once(const std::function<void()> &work)
{
    const double start = now();
    work();
    return now() - start;
}

/// Median of several runs, after one that warms up.
double median(const std::function<void()> &work, int runs = 15)
{
    work();
    std::vector<double> times;
    for (int i = 0; i < runs; ++i)
        times.push_back(once(work));
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

double calibrate()
{
    QImage image(1920, 1080, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::black);
    return median([&image] {
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(Qt::gray, 1.0));
        painter.setBrush(Qt::darkCyan);
        for (int i = 0; i < 1000; ++i)
            painter.drawRoundedRect(QRectF(i % 12 * 155.0, i / 12 % 10 * 105.0, 138.0, 94.0), 8.0,
                                    8.0);
    });
}

void settle()
{
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
}

struct Result
{
    double populate = 0.0;
    double first = 0.0;
    double repaint = 0.0;
    double pan = 0.0;
    double all = 0.0;
    double drag = 0.0;
    double drag100 = 0.0;
    double hit = 0.0;
    double bytes = 0.0;
};

void prepare(QGraphicsView &view)
{
    view.resize(1920, 1080);
    view.setFrameShape(QFrame::NoFrame);
    view.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    view.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    view.setViewportUpdateMode(QGraphicsView::BoundingRectViewportUpdate);
    view.setOptimizationFlags(QGraphicsView::DontSavePainterState
                              | QGraphicsView::DontAdjustForAntialiasing);
    view.setRenderHint(QPainter::Antialiasing);
    view.show();
    settle();
}

void measurePainting(QGraphicsView &view, Result &result)
{
    const QRectF all = view.scene()->itemsBoundingRect();
    const qreal fit = std::min(1920.0 / all.width(), 1080.0 / all.height());
    const auto show = [&view](qreal zoom, const QPointF &center) {
        view.setTransform(QTransform::fromScale(zoom, zoom));
        view.centerOn(center);
    };
    result.first = once([&] {
        show(fit, all.center());
        view.viewport()->repaint();
    });
    bool near = false;
    result.all = median([&] {
        near = !near;
        show(near ? fit * 0.98 : fit, all.center());
        view.viewport()->repaint();
    });
    show(1.0, all.center());
    settle();
    result.repaint = median([&] { view.viewport()->repaint(); });
    int step = 0;
    result.pan = median(
        [&] {
            view.horizontalScrollBar()->setValue(view.horizontalScrollBar()->value()
                                                 + (++step % 40 < 20 ? 8 : -8));
            settle();
        },
        40);
}

Result measureOurs(int count)
{
    Result result;
    const auto before = mallinfo2().uordblks;
    GraphScene scene;
    result.populate = once([&] { buildGrid(&scene, count); });
    result.bytes = double(mallinfo2().uordblks - before) / count;
    OssNgView view;
    view.setScene(&scene);
    prepare(view);
    view.init();
    measurePainting(view, result);

    const QPointF middle = view.viewportInSceneCoords().center();
    const OssNgSceneIndex &index = *OssNgSceneIndex::of(&scene);
    OssNgNode *node = index.nodesIn({middle, QSizeF(300, 300)}).value(0);
    qreal way = 1.0;
    result.drag = median(
        [&] {
            way = -way;
            node->setPosition(node->pos() + QPointF(4 * way, 3 * way));
            settle();
        },
        60);
    const QVector<OssNgNode *> many = index.nodesIn(
        {middle - QPointF(1300, 800), QSizeF(2600, 1600)});
    result.drag100 = median([&] {
        way = -way;
        for (int i = 0; i < std::min(100, int(many.size())); ++i)
            many[i]->setPosition(many[i]->pos() + QPointF(4 * way, 3 * way));
        settle();
    });
    result.hit = median([&] {
                     for (int i = 0; i < 1000; ++i)
                         index.nodeAt(middle + QPointF(i % 37 * 11.0, i % 23 * 13.0));
                 })
                 / 1000.0;
    return result;
}

Result measureLimit(int count)
{
    Result result;
    const auto before = mallinfo2().uordblks;
    std::unique_ptr<LimitScene> scene;
    result.populate = once([&] { scene = std::make_unique<LimitScene>(count); });
    result.bytes = double(mallinfo2().uordblks - before) / count;
    QGraphicsView view;
    view.setScene(scene.get());
    view.setSceneRect(-200000, -200000, 400000, 400000);
    view.setBackgroundBrush(QColor(0x1b, 0x1d, 0x20));
    prepare(view);
    measurePainting(view, result);
    const int columns = int(std::sqrt(double(count)));
    const int middle = columns / 2 * columns + columns / 2;
    qreal way = 1.0;
    result.drag = median(
        [&] {
            way = -way;
            scene->moveNode(middle, {4 * way, 3 * way});
            settle();
        },
        60);
    return result;
}

void row(const char *name, double ours, double limit, double cal)
{
    std::printf("  %-34s %9.3f ms %7.3f cal", name, ours, ours / cal);
    if (limit > 0.0)
        std::printf("   limit %9.3f ms   x%.2f", limit, ours / limit);
    std::printf("\n");
}

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    const OssCoreServices services;
    const double cal = calibrate();
    std::printf("cal = %.2f ms of thread CPU time\n", cal);
    for (const int count : {1000, 5000, 10000}) {
        const Result limit = measureLimit(count);
        const Result ours = measureOurs(count);
        std::printf("%d nodes, about as many wires, 1920 x 1080\n", count);
        row("populate", ours.populate, limit.populate, cal);
        row("first picture, everything in view", ours.first, limit.first, cal);
        row("zoom step, everything in view", ours.all, limit.all, cal);
        row("full repaint at 1:1", ours.repaint, limit.repaint, cal);
        row("pan step at 1:1", ours.pan, limit.pan, cal);
        row("drag one node with its wires", ours.drag, limit.drag, cal);
        row("drag 100 nodes", ours.drag100, 0.0, cal);
        row("hit test", ours.hit, 0.0, cal);
        std::printf("  %-34s %9.0f B               limit %9.0f B\n", "memory per node and wire",
                    ours.bytes, limit.bytes);
    }
    return 0;
}
