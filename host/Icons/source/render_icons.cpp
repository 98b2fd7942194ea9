// Draws every SVG of this folder as a PNG of 64 units, the application's icon as one of 256, into
// the folder above. Run it after an SVG has changed: cmake --build BUILD --target icons

#include <QDir>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

#include <cstdio>

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    if (argc != 3) {
        std::fprintf(stderr, "usage: render_icons SVG_FOLDER PNG_FOLDER\n");
        return 2;
    }
    const QDir target(QString::fromLocal8Bit(argv[2]));
    const QDir source(QString::fromLocal8Bit(argv[1]));
    const QFileInfoList files = source.entryInfoList({QStringLiteral("*.svg")}, QDir::Files);
    for (const QFileInfo &file : files) {
        QSvgRenderer renderer(file.absoluteFilePath());
        const int size = renderer.defaultSize().width() > 64 ? 256 : 64;
        QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        renderer.render(&painter);
        painter.end();
        const QString path = target.filePath(file.completeBaseName() + QStringLiteral(".png"));
        if (!renderer.isValid() || !image.save(path)) {
            std::fprintf(stderr, "%s could not be drawn\n", qPrintable(file.filePath()));
            return 1;
        }
    }
    return 0;
}
