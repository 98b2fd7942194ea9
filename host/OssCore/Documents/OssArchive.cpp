#include "OssCore/Documents/OssArchive.h"

#include "OssCore/Documents/OssAtomicFile.h"

#include <quazip/quazip.h>
#include <quazip/quazipfile.h>
#include <quazip/quazipfileinfo.h>
#include <quazip/quazipnewinfo.h>

#include <QBuffer>
#include <QCoreApplication>
#include <QDateTime>

namespace {

constexpr qint64 ChunkSize = 1 << 16;
constexpr quint32 UnixTypeMask = 0170000U << 16U;
constexpr quint32 UnixLink = 0120000U << 16U;
constexpr quint32 UnixFile = 0100000U << 16U;

QString tr(const char *text)
{
    return QCoreApplication::translate("OssArchive", text);
}

OssResult fault(const QString &path, const QString &reason)
{
    return OssResult::failure(path + QStringLiteral(": ") + reason);
}

bool leadsOutside(const QString &name)
{
    if (name.isEmpty() || name.startsWith(QLatin1Char('/')) || name.contains(QLatin1Char('\\'))
        || name.contains(QLatin1Char(':')) || name.contains(QChar(0)))
        return true;
    const QStringList folders = name.split(QLatin1Char('/'));
    return folders.contains(QStringLiteral("..")) || folders.contains(QStringLiteral("."));
}

QString faultOf(const QuaZipFileInfo64 &info, const OssArchive::Parts &parts)
{
    if (leadsOutside(info.name))
        return tr("\"%1\" leads outside of the archive").arg(info.name);
    const quint32 type = quint32(info.externalAttr) & UnixTypeMask;
    if (type == UnixLink || (type != 0 && type != UnixFile))
        return tr("\"%1\" is a link or no file").arg(info.name);
    if (parts.contains(info.name))
        return tr("\"%1\" is in it twice").arg(info.name);
    if (info.isEncrypted())
        return tr("\"%1\" is encrypted").arg(info.name);
    return {};
}

QString inflate(QuaZip *zip, qint64 room, QByteArray *content)
{
    QuaZipFile file(zip);
    if (!file.open(QIODevice::ReadOnly))
        return tr("a part of it cannot be read");
    while (true) {
        const QByteArray chunk = file.read(ChunkSize);
        if (chunk.isEmpty())
            break;
        content->append(chunk);
        if (content->size() > std::min(room, OssArchive::LargestPart))
            return tr("what is packed into it is too large");
    }
    file.close();
    return file.getZipError() == UNZ_OK ? QString() : tr("a part of it is damaged");
}

} // namespace

OssResult OssArchive::read(const QString &path, Parts *parts, qint64 largest)
{
    parts->clear();
    QByteArray packed;
    const OssResult result = OssAtomicFile::read(path, LargestArchive, &packed);
    if (!result)
        return result;
    QBuffer buffer(&packed);
    QuaZip zip(&buffer);
    zip.setFileNameCodec("UTF-8");
    if (!zip.open(QuaZip::mdUnzip))
        return fault(path, tr("it is no archive, or it is damaged"));
    Parts found;
    qint64 room = largest;
    for (bool more = zip.goToFirstFile(); more; more = zip.goToNextFile()) {
        QuaZipFileInfo64 info;
        if (!zip.getCurrentFileInfo(&info))
            return fault(path, tr("its table of contents is damaged"));
        if (info.name.endsWith(QLatin1Char('/')) && !leadsOutside(info.name))
            continue; // a folder
        QString reason = faultOf(info, found);
        QByteArray content;
        if (reason.isEmpty())
            reason = inflate(&zip, room, &content);
        if (reason.isEmpty() && found.size() >= MostParts)
            reason = tr("there are too many files in it");
        if (!reason.isEmpty())
            return fault(path, reason);
        room -= content.size();
        found.insert(info.name, content);
    }
    if (zip.getZipError() != UNZ_OK && zip.getZipError() != UNZ_END_OF_LIST_OF_FILE)
        return fault(path, tr("it is damaged"));
    *parts = found;
    return {};
}

OssResult OssArchive::write(const QString &path, const Parts &parts)
{
    QBuffer buffer;
    QuaZip zip(&buffer);
    zip.setFileNameCodec("UTF-8");
    zip.setUtf8Enabled(true);
    if (!zip.open(QuaZip::mdCreate))
        return fault(path, tr("the archive cannot be made"));
    for (auto part = parts.cbegin(); part != parts.cend(); ++part) {
        QuaZipNewInfo info(part.key());
        info.dateTime = QDateTime(QDate(1980, 1, 1), QTime(0, 0)); // the same bytes every time
        info.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner
                            | QFileDevice::ReadGroup | QFileDevice::ReadOther);
        QuaZipFile file(&zip);
        if (!file.open(QIODevice::WriteOnly, info)
            || file.write(part.value()) != part.value().size())
            return fault(path, tr("\"%1\" cannot be packed").arg(part.key()));
        file.close();
        if (file.getZipError() != ZIP_OK)
            return fault(path, tr("\"%1\" cannot be packed").arg(part.key()));
    }
    zip.close();
    return OssAtomicFile::write(path, buffer.data());
}
