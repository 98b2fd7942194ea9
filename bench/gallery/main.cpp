#include "Graphs.h"
#include "OssCore/OssCoreServices.h"
#include "OssNodeGraph/NodePicture.h"
#include "OssNodeGraph/View/OssNgView.h"
#include "support/Text.h"

#include <QApplication>
#include <QDir>
#include <QSvgGenerator>

namespace {

/// Where the pictures go.
QString fileIn(const QString &folder, const char *name)
{
    return folder + QLatin1Char('/') + text(name);
}

void save(const QImage &image, const QString &path)
{
    if (!image.save(path))
        qWarning("cannot write %s", qPrintable(path));
}

QRectF around(const QGraphicsScene &scene, qreal margin)
{
    return scene.itemsBoundingRect().adjusted(-margin, -margin, margin, margin);
}

void drawSvg(QGraphicsScene *scene, const QString &path)
{
    const QRectF source = around(*scene, 40);
    QSvgGenerator generator;
    generator.setFileName(path);
    generator.setSize(source.size().toSize());
    generator.setViewBox(QRectF(QPointF(), source.size()));
    QPainter vectors(&generator);
    paintSceneTo(&vectors, scene, source, QRectF(QPointF(), source.size()));
}

class Screen : public OssNgView
{
public:
    explicit Screen(QGraphicsScene *scene)
    {
        setScene(scene);
        init();
        resize(1068, 840);
        show();
    }

    void shoot(const QString &path)
    {
        QCoreApplication::processEvents();
        grab(); // the second picture comes from the cache
        save(grab().toImage(), path);
    }
};

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    const OssCoreServices services;
    const QString folder = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QDir::tempPath();
    QDir().mkpath(folder);

    GraphScene wall;
    buildBrickWall(&wall);
    Screen view(&wall);
    const std::pair<const char *, qreal> shots[] = {{"wall_100.png", 1.0},
                                                    {"wall_200.png", 2.0},
                                                    {"wall_075.png", 0.75},
                                                    {"wall_040.png", 0.4},
                                                    {"wall_020.png", 0.2}};
    for (const auto &[name, zoom] : shots) {
        view.scaleView(zoom / view.zoom());
        view.centerViewOn({560, 520}, false);
        view.shoot(fileIn(folder, name));
    }
    const QRectF all = around(wall, 40);
    save(picture(&wall, all, (all.size() * 2).toSize()), fileIn(folder, "file_2x.png"));
    drawSvg(&wall, fileIn(folder, "file.svg"));

    GraphScene marks;
    buildMarks(&marks);
    const QRectF marked = around(marks, 20);
    save(picture(&marks, marked, marked.size().toSize()), fileIn(folder, "marks.png"));

    GraphScene grid;
    buildGrid(&grid, 2000);
    Screen large(&grid);
    large.fitInView(large.visibleNodeBounds(), Qt::KeepAspectRatio);
    large.shoot(fileIn(folder, "grid_all.png"));
    return 0;
}
