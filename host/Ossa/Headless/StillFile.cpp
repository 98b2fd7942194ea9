#include "Ossa/Headless/StillFile.h"

#include "Ossa/Surfaces/LitPicture.h"
#include "OssCore/Documents/OssAtomicFile.h"
#include "OssEvaluation/Files/OssEvImageWriter.h"
#include "OssModel/Images/OssColorManagement.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QFileInfo>
#include <QImageWriter>

#include <algorithm>

namespace {

OssEvTilePointer tileAt(const OssRdImage &picture, int left, int top)
{
    auto tile = std::make_shared<OssEvTile>(4, OssEvTile::Format::Float);
    for (int y = 0; y < OssEvTile::Size; ++y) {
        for (int x = 0; x < OssEvTile::Size; ++x) {
            const glm::vec4 &color = picture.at(std::min(left + x, picture.width - 1),
                                                std::min(top + y, picture.height - 1));
            for (int channel = 0; channel < 4; ++channel)
                tile->floatPlane(channel)[y * OssEvTile::Size + x] = color[channel];
        }
    }
    return tile;
}

OssEvResult writeLight(const OssRdImage &picture, const std::string &path)
{
    OssEvImageWriter::Description description;
    description.width = picture.width;
    description.height = picture.height;
    description.form.depth = OssEvDepth::Float;
    description.form.colors = OssColorManagement::spaces();
    std::unique_ptr<OssEvImageWriter> writer;
    OssEvResult result = OssEvImageWriter::open(path, description, &writer);
    for (int top = 0; top < picture.height && result; top += OssEvTile::Size) {
        std::vector<OssEvTilePointer> tiles;
        for (int left = 0; left < picture.width; left += OssEvTile::Size)
            tiles.push_back(tileAt(picture, left, top));
        result = writer->writeTiles(tiles);
    }
    return result ? writer->finish() : result;
}

} // namespace

bool StillFile::isLight(const QString &path)
{
    return QFileInfo(path).suffix().toLower() == QLatin1String("exr");
}

bool StillFile::isPossible(const QString &path)
{
    const QByteArray suffix = QFileInfo(path).suffix().toLatin1().toLower();
    return isLight(path) || QImageWriter::supportedImageFormats().contains(suffix);
}

OssResult StillFile::write(const OssRdImage &picture, const QString &path)
{
    if (isLight(path)) {
        const OssEvResult written = writeLight(picture, path.toStdString());
        return written ? OssResult() : OssResult::failure(QString::fromStdString(written.error()));
    }
    LitPicture::Screen screen;
    screen.colors = OssColorManagement::spaces();
    const QImage shown = LitPicture::shown(picture, screen);
    QBuffer bytes;
    bytes.open(QIODevice::WriteOnly);
    QImageWriter writer(&bytes, QFileInfo(path).suffix().toLatin1());
    if (!writer.write(shown))
        return OssResult::failure(
            QCoreApplication::translate("RenderCommand", "Cannot write \"%1\": %2")
                .arg(path, writer.errorString()));
    return OssAtomicFile::write(path, bytes.data());
}
