#include "Ossa/Palettes/MaterialPictures.h"

#include "OssCore/Documents/OssAtomicFile.h"
#include "OssCore/Program/OssSettings.h"
#include "OssEvaluation/Geometry/OssEvMesh.h"
#include "OssModel/Export/OssSurfaceMaps.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Objects/OssMeshes.h"
#include "OssModel/Types/OssSnNodeType.h"

#include <QBuffer>
#include <QCryptographicHash>
#include <QDir>

#include <algorithm>

namespace {

// For displays with twice the pixels.
constexpr MaterialBalls::Format format{2 * MaterialPictures::side, 2 * MaterialPictures::side - 16,
                                       256};
constexpr int mostFiles = 400;
// Of what is drawn: another light, other pictures.
constexpr char drawing[] = "ball 1";

/// Names what a picture is of.
QString nameOf(const OssSnNodeType &type)
{
    QCryptographicHash hash(QCryptographicHash::Sha1);
    hash.addData(drawing);
    hash.addData(type.id.toUtf8());
    hash.addData(type.contentHash.toUtf8());
    return QString::fromLatin1(hash.result().toHex());
}

/// The output to look at: a whole surface, where there is one.
QString surfaceOf(const OssSnBaseNode &node)
{
    const auto &ports = node.outputPoints();
    const auto found = std::find_if(ports.begin(), ports.end(), [](const auto &port) {
        return port.kind == OssSnDataKind::Material;
    });
    return found != ports.end() ? found->name : node.prefferedOutputPoint();
}

QString fileOf(const QString &type)
{
    return QDir(MaterialPictures::folderPath()).filePath(type + QStringLiteral(".png"));
}

void forgetOldest()
{
    const QDir folder(MaterialPictures::folderPath());
    const QFileInfoList files = folder.entryInfoList({QStringLiteral("*.png")}, QDir::Files,
                                                     QDir::Time);
    for (const QFileInfo &file : files.mid(mostFiles))
        QFile::remove(file.filePath());
}

} // namespace

MaterialPictures::MaterialPictures(QObject *parent)
    : QObject(parent)
    , m_balls(format)
{
    m_next.setSingleShot(true);
    connect(&m_next, &QTimer::timeout, this, &MaterialPictures::next);
    connect(OssMeshes::instance(), &OssMeshes::changed, &m_next, qOverload<>(&QTimer::start));
}

QString MaterialPictures::folderPath()
{
    return QDir(OssSettings::folderPath()).filePath(QStringLiteral("MaterialPictures"));
}

QImage MaterialPictures::picture(const QString &pathKey)
{
    const auto type = OssShaderNetworkManager::instance()->nodeType(pathKey);
    if (!type)
        return {};
    const auto kept = m_pictures.constFind(pathKey);
    if (kept != m_pictures.cend() && kept->type == nameOf(*type))
        return kept->picture;
    if (!m_asked.contains(pathKey)) {
        m_asked.append(pathKey);
        m_next.start();
    }
    return {};
}

void MaterialPictures::next()
{
    if (m_isDrawing || m_asked.isEmpty())
        return;
    const QString pathKey = m_asked.first();
    const auto type = OssShaderNetworkManager::instance()->nodeType(pathKey);
    if (!type) {
        m_asked.removeFirst();
        m_next.start();
        return;
    }
    const QString name = nameOf(*type);
    if (!read(pathKey, name))
        draw(pathKey, name);
}

bool MaterialPictures::read(const QString &pathKey, const QString &type)
{
    const QImage picture(fileOf(type));
    if (picture.size() != QSize(format.size, format.size))
        return false;
    take(pathKey, type, picture);
    return true;
}

void MaterialPictures::draw(const QString &pathKey, const QString &type)
{
    if (m_balls.isHopeless()) {
        take(pathKey, type, {});
        return;
    }
    OssGeoEntity ball;
    ball.setGeometry(QStringLiteral("sphere"));
    const auto node = OssShaderNetwork::makeNode(
        OssShaderNetworkManager::instance()->nodeType(pathKey));
    const OssSurfaceMaps maps = OssSurfaceMaps::of(OssSnProducer::of(node.get(), surfaceOf(*node)),
                                                   &ball);
    if (!maps.problem().isEmpty()) {
        take(pathKey, type, {});
        return;
    }
    if (!maps.mesh() || maps.mesh()->patches().empty())
        return; // when it is read, this is called again
    m_isDrawing = true;
    m_balls.start(maps, [this, pathKey, type](const QImage &picture) {
        m_isDrawing = false;
        take(pathKey, type, picture);
        QByteArray png;
        QBuffer buffer(&png);
        if (picture.isNull() || !picture.save(&buffer, "PNG"))
            return;
        // A picture that cannot be kept is drawn again the next time.
        if (QDir().mkpath(folderPath()) && OssAtomicFile::write(fileOf(type), png))
            forgetOldest();
    });
}

void MaterialPictures::take(const QString &pathKey, const QString &type, const QImage &picture)
{
    m_pictures.insert(pathKey, {type, picture});
    m_asked.removeAll(pathKey);
    Q_EMIT made(pathKey);
    m_next.start();
}
