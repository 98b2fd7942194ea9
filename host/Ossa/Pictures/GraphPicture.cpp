#include "Ossa/Pictures/GraphPicture.h"

#include "Ossa/Headless/PictureFormat.h"
#include "OssCore/Documents/OssAtomicFile.h"
#include "OssNodeGraph/Items/OssNgSceneIndex.h"
#include "OssNodeGraph/View/OssNgRenderer.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QGraphicsScene>
#include <QImage>
#include <QPainter>
#include <QSvgGenerator>

#include <algorithm>

namespace {

constexpr qreal margin = 60.0;         // scene units
constexpr qreal largestSide = 12000.0; // pixels
constexpr qreal smallGraph = 1400.0;   // units: below it the picture is drawn twice as large

QString tr(const char *text)
{
    return QCoreApplication::translate("GraphPicture", text);
}

qreal scaleFor(const QSizeF &size)
{
    const qreal side = std::max(size.width(), size.height());
    const qreal wanted = side < smallGraph ? 2.0 : 1.0;
    return std::min(wanted, largestSide / side);
}

QByteArray asPng(QGraphicsScene *scene, const QRectF &source)
{
    const qreal scale = scaleFor(source.size());
    QImage image((source.size() * scale).toSize(), QImage::Format_RGB32);
    if (image.isNull())
        return {};
    QPainter painter(&image);
    OssNgRenderer::paintSceneTo(&painter, scene, source, QRectF(image.rect()));
    painter.end();
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return buffer.data();
}

QByteArray asSvg(QGraphicsScene *scene, const QRectF &source, const QString &title)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QSvgGenerator generator;
    generator.setOutputDevice(&buffer);
    generator.setTitle(title);
    generator.setSize(source.size().toSize());
    generator.setViewBox(QRectF(QPointF(), source.size()));
    QPainter painter(&generator);
    OssNgRenderer::paintSceneTo(&painter, scene, source, QRectF(QPointF(), source.size()));
    painter.end();
    return buffer.data();
}

} // namespace

OssResult GraphPicture::write(QGraphicsScene *scene, const QString &title, const QString &output)
{
    const auto failed = [&output](const QString &reason) {
        return OssResult::failure(tr("Cannot write \"%1\": %2").arg(output, reason));
    };
    const PictureFormat::Format format = PictureFormat::of(output);
    if (format == PictureFormat::None)
        return failed(tr("the name must end with %1").arg(QLatin1String(PictureFormat::suffixes)));
    const QRectF bounds = OssNgSceneIndex::of(scene)->visibleNodeBounds();
    if (bounds.isEmpty())
        return failed(tr("there is nothing in the graph"));
    const QRectF source = bounds.adjusted(-margin, -margin, margin, margin);
    const QByteArray content = format == PictureFormat::Png ? asPng(scene, source)
                                                            : asSvg(scene, source, title);
    if (content.isEmpty())
        return failed(tr("there is not enough memory for the picture"));
    return OssAtomicFile::write(output, content);
}
