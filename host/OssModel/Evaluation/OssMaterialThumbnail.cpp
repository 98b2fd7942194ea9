#include "OssModel/Evaluation/OssMaterialThumbnail.h"

#include "OssModel/Evaluation/OssEvaluationService.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Images/OssDisplayColor.h"
#include "OssModel/Nodes/OssSnMaterialNode.h"

#include <QCoreApplication>
#include <QTemporaryDir>
#include <QtMath>
#include <QVector3D>

#include <algorithm>

namespace {

constexpr int Samples = 2; ///< each way in a pixel
constexpr float Ambient = 0.12F;
const QVector3D Light = QVector3D(-0.45F, 0.6F, 0.66F).normalized();
const QVector3D Eye(0.0F, 0.0F, 1.0F);

QString tr(const char *text)
{
    return QCoreApplication::translate("OssMaterialThumbnail", text);
}

/// The streams that a ball needs; a null picture where the material has none.
struct Streams
{
    QImage color;
    QImage roughness;
    QImage metallic;
};

OssResult bakeStream(const OssSnMaterialNode *material, const QString &stream, int size,
                     QImage *picture)
{
    if (!material->hasOutputPoint(stream))
        return {};
    const QTemporaryDir folder;
    OssEvaluationService::BakeJob job;
    job.node = material;
    job.outputPoint = stream;
    job.entity = material->network()->geoEntity();
    job.patches = OssEvaluationService::instance()->patches(job.entity).mid(0, 1);
    job.resolution = size;
    const OssResult baked = OssEvaluationService::instance()->bake(
        job, folder.filePath(QStringLiteral("stream.png")));
    if (baked)
        *picture = QImage(folder.filePath(QStringLiteral("stream.png")));
    return baked;
}

QColor texel(const QImage &image, float u, float v, const QColor &otherwise)
{
    if (image.isNull())
        return otherwise;
    return image.pixelColor(std::clamp(int(u * float(image.width())), 0, image.width() - 1),
                            std::clamp(int(v * float(image.height())), 0, image.height() - 1));
}

/// Lambert, and Blinn and Phong's highlight with the exponent that goes with the roughness.
QVector3D shade(const Streams &streams, const QVector3D &normal)
{
    const float u = 0.5F + std::atan2(normal.x(), normal.z()) / float(M_PI);
    const float v = 0.5F - std::asin(normal.y()) / float(M_PI);
    const OssColor seen = OssDisplayColor::toLinear(texel(streams.color, u, v, Qt::gray));
    const QVector3D base(float(seen.red()), float(seen.green()), float(seen.blue()));
    const float roughness = std::max(
        0.05F, float(texel(streams.roughness, u, v, QColor(128, 128, 128)).redF()));
    const float metallic = float(texel(streams.metallic, u, v, Qt::black).redF());
    const float lambert = std::max(0.0F, QVector3D::dotProduct(normal, Light));
    const float alpha = roughness * roughness;
    const float exponent = 2.0F / (alpha * alpha) - 2.0F;
    const float half = std::max(0.0F, QVector3D::dotProduct(normal, (Light + Eye).normalized()));
    const float gloss = (exponent + 2.0F) / 8.0F * std::pow(half, exponent) * lambert;
    const QVector3D mirrored = QVector3D(0.04F, 0.04F, 0.04F) * (1.0F - metallic) + base * metallic;
    return base * ((1.0F - 0.7F * metallic) * (lambert + Ambient))
           + mirrored * std::min(gloss, 8.0F);
}

QRgb pixelOf(const Streams &streams, int x, int y, int size)
{
    QVector3D sum;
    int hits = 0;
    for (int sample = 0; sample < Samples * Samples; ++sample) {
        const int column = sample % Samples;
        const int row = sample / Samples;
        const float sx = float(x) + (float(column) + 0.5F) / Samples;
        const float sy = float(y) + (float(row) + 0.5F) / Samples;
        const QVector3D at(2.0F * sx / float(size) - 1.0F, 1.0F - 2.0F * sy / float(size), 0.0F);
        const float left = 1.0F - at.lengthSquared();
        if (left <= 0.0F)
            continue;
        sum += shade(streams, {at.x(), at.y(), std::sqrt(left)});
        ++hits;
    }
    if (hits == 0)
        return qRgba(0, 0, 0, 0);
    sum /= float(hits);
    QColor shown = OssDisplayColor::ofLinear({double(sum.x()), double(sum.y()), double(sum.z())});
    shown.setAlpha(255 * hits / (Samples * Samples));
    return shown.rgba();
}

} // namespace

OssResult OssMaterialThumbnail::make(const OssSnMaterialNode *material, int size, QImage *picture)
{
    if (!material->network() || !material->shaderModel())
        return OssResult::failure(tr("%1 has no shader model").arg(material->name()));
    Streams streams;
    OssResult baked = bakeStream(material, QStringLiteral("Base Color"), size, &streams.color);
    if (baked)
        baked = bakeStream(material, QStringLiteral("Roughness"), size, &streams.roughness);
    if (baked)
        baked = bakeStream(material, QStringLiteral("Metallic"), size, &streams.metallic);
    if (!baked)
        return baked;
    *picture = QImage(size, size, QImage::Format_ARGB32);
    for (int y = 0; y < size; ++y) {
        auto *line = reinterpret_cast<QRgb *>(picture->scanLine(y));
        for (int x = 0; x < size; ++x)
            line[x] = pixelOf(streams, x, y, size);
    }
    return {};
}
