#include "Ossa/Painting/PaintJournal.h"

#include "OssCore/Program/OssDebug.h"
#include "OssCore/Program/OssSettings.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QRegularExpression>
#include <QSaveFile>
#include <QUuid>

#include <array>
#include <cstring>
#include <new>
#include <optional>

namespace {

using Place = OssEvPaintBuffer::Place;

// Bytes as the processor has them: it never leaves this machine.
using Head = std::array<char, 8>;
constexpr std::array<char, 4> magic{'O', 'P', 'T', '1'};
constexpr int largestResolution = 16384;
constexpr auto tileBytes = qint64(OssEvPaintTile::Bytes);

QString rootPath()
{
    return QDir(OssSettings::folderPath()).filePath(QStringLiteral("paint"));
}

QString pathOf(const QString &name, const Place &place)
{
    return QStringLiteral("%1/%2/%3_%4_%5.tile")
        .arg(rootPath(), name)
        .arg(place.patch)
        .arg(place.x)
        .arg(place.y);
}

Head headOf(qint32 resolution)
{
    Head head{};
    std::memcpy(head.data(), magic.data(), magic.size());
    std::memcpy(head.data() + magic.size(), &resolution, sizeof(resolution));
    return head;
}

// Not synced to the disk: it is the program that may be gone, not the machine.
void writeTile(const QString &path, int resolution, const OssEvPaintTile &tile)
{
    QSaveFile file(path);
    const Head head = headOf(resolution);
    const bool written = QDir().mkpath(QFileInfo(path).path()) && file.open(QIODevice::WriteOnly)
                         && file.write(head.data(), qint64(head.size())) == qint64(head.size())
                         && file.write(reinterpret_cast<const char *>(tile.values()), tileBytes)
                                == tileBytes
                         && file.commit();
    if (!written)
        OssDebug("PaintJournal", __LINE__, "[ !! ] No copy of the paint: %s",
                 qPrintable(file.errorString()));
}

OssResult damaged(const QString &path, const QString &reason)
{
    return OssResult::failure(
        QCoreApplication::translate("PaintJournal", "Cannot read the paint in \"%1\": %2")
            .arg(path, reason));
}

/// Texels across a patch as the file says; 0 where it is none of ours.
OssResult readTile(const QString &path, int *resolution, OssEvPaintTilePointer *tile)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return damaged(path, file.errorString());
    Head head{};
    if (file.size() != qint64(head.size()) + tileBytes
        || file.read(head.data(), qint64(head.size())) != qint64(head.size())
        || std::memcmp(head.data(), magic.data(), magic.size()) != 0)
        return damaged(path, QCoreApplication::translate("PaintJournal", "the file is damaged"));
    qint32 number = 0;
    std::memcpy(&number, head.data() + magic.size(), sizeof(number));
    const auto read = std::make_shared<OssEvPaintTile>();
    if (number < 1 || number > largestResolution
        || file.read(reinterpret_cast<char *>(read->values()), tileBytes) != tileBytes)
        return damaged(path, QCoreApplication::translate("PaintJournal", "the file is damaged"));
    *resolution = number;
    *tile = read;
    return {};
}

} // namespace

PaintJournal::PaintJournal()
{
    m_worker.setMaxThreadCount(1);
    m_worker.start(&PaintJournal::sweep);
}

PaintJournal::~PaintJournal()
{
    waitForDisk();
}

void PaintJournal::sweep()
{
    const QDateTime before = QDateTime::currentDateTime().addDays(-keptDays);
    const QFileInfoList folders = QDir(rootPath()).entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QFileInfo &folder : folders) {
        if (isName(folder.fileName()) && folder.lastModified() < before)
            QDir(folder.filePath()).removeRecursively();
    }
}

void PaintJournal::begin(int resolution)
{
    resume(QUuid::createUuid().toString(QUuid::WithoutBraces), resolution);
}

void PaintJournal::resume(const QString &name, int resolution)
{
    m_name = name;
    m_resolution = resolution;
}

void PaintJournal::write(const Tiles &tiles)
{
    m_worker.start([tiles, name = m_name, resolution = m_resolution] {
        for (const auto &[place, tile] : tiles) {
            const QString path = pathOf(name, place);
            if (tile)
                writeTile(path, resolution, *tile);
            else
                QFile::remove(path);
        }
    });
}

bool PaintJournal::isName(const QString &name)
{
    static const QRegularExpression form(
        QStringLiteral("^[0-9a-f]{8}(-[0-9a-f]{4}){3}-[0-9a-f]{12}$"));
    return form.match(name).hasMatch();
}

OssResult PaintJournal::read(const QString &name, OssEvPaintBuffer *paint)
{
    const QDir folder(rootPath() + QLatin1Char('/') + name);
    if (!isName(name) || !folder.exists())
        return damaged(folder.path(),
                       QCoreApplication::translate("PaintJournal", "there is no such folder"));
    static const QRegularExpression form(QStringLiteral("^(\\d{4})_(\\d{1,3})_(\\d{1,3})\\.tile$"));
    const QStringList files = folder.entryList({QStringLiteral("*.tile")}, QDir::Files);
    std::optional<OssEvPaintBuffer> read;
    try {
        for (const QString &file : files) {
            const QRegularExpressionMatch match = form.match(file);
            int resolution = 0;
            OssEvPaintTilePointer tile;
            const OssResult result = readTile(folder.filePath(file), &resolution, &tile);
            if (!result)
                return result;
            if (!read)
                read.emplace(resolution);
            if (!match.hasMatch() || read->resolution() != resolution)
                return damaged(folder.filePath(file),
                               QCoreApplication::translate("PaintJournal", "the file is damaged"));
            read->setTile(
                {match.captured(1).toInt(), match.captured(2).toInt(), match.captured(3).toInt()},
                tile);
        }
    } catch (const std::bad_alloc &) {
        return damaged(folder.path(),
                       QCoreApplication::translate("PaintJournal", "there is no memory left"));
    }
    *paint = read.value_or(OssEvPaintBuffer());
    return {};
}
