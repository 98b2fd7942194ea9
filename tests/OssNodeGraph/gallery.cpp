#include "OssCore/OssCoreServices.h"
#include "OssNodeGraph/View/OssNgRenderer.h"
#include "OssNodeGraph/View/OssNgView.h"
#include "support/ExampleGraph.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QPainter>
#include <QSvgGenerator>

namespace {

void save(const QImage &image, const QString &path)
{
    if (!image.save(path))
        qWarning("cannot write %s", qPrintable(path));
}

void drawFile(QGraphicsScene *scene, const QString &folder)
{
    const QRectF source = scene->itemsBoundingRect().adjusted(-40, -40, 40, 40);
    QImage image((source.size() * 2).toSize(), QImage::Format_RGB32);
    QPainter painter(&image);
    paintSceneTo(&painter, scene, source, QRectF(QPointF(), QSizeF(image.size())));
    painter.end();
    save(image, folder + QStringLiteral("/file_2x.png"));

    QSvgGenerator generator;
    generator.setFileName(folder + QStringLiteral("/file.svg"));
    generator.setSize(source.size().toSize());
    generator.setViewBox(QRectF(QPointF(), source.size()));
    QPainter vectors(&generator);
    paintSceneTo(&vectors, scene, source, QRectF(QPointF(), source.size()));
}

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
    OssNgView view;
    view.setScene(&wall);
    view.init();
    view.resize(1068, 840);
    view.show();

    struct Shot
    {
        const char *name;
        qreal zoom;
    };

    for (const Shot &shot : {Shot{"wall_100", 1.0}, Shot{"wall_200", 2.0}, Shot{"wall_075", 0.75},
                             Shot{"wall_040", 0.4}, Shot{"wall_020", 0.2}}) {
        view.scaleView(shot.zoom / view.zoom());
        view.centerViewOn({560, 520}, false);
        QCoreApplication::processEvents();
        view.grab(); // the second picture comes from the cache
        save(view.grab().toImage(),
             folder + QLatin1Char('/') + QLatin1String(shot.name) + QStringLiteral(".png"));
    }
    drawFile(&wall, folder);

    GraphScene marks;
    buildMarks(&marks);
    const QRectF all = marks.itemsBoundingRect().adjusted(-20, -20, 20, 20);
    QImage image(all.size().toSize(), QImage::Format_RGB32);
    QPainter painter(&image);
    paintSceneTo(&painter, &marks, all, QRectF(QPointF(), QSizeF(image.size())));
    painter.end();
    save(image, folder + QStringLiteral("/marks.png"));

    GraphScene grid;
    buildGrid(&grid, 2000);
    OssNgView large;
    large.setScene(&grid);
    large.init();
    large.resize(1068, 840);
    large.show();
    large.fitInView(large.visibleNodeBounds(), Qt::KeepAspectRatio);
    QCoreApplication::processEvents();
    save(large.grab().toImage(), folder + QStringLiteral("/grid_all.png"));
    return 0;
}
