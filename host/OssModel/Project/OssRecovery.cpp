#include "OssModel/Project/OssRecovery.h"

#include "OssCore/Documents/OssAtomicFile.h"
#include "OssCore/Documents/OssDeserializer.h"
#include "OssCore/Program/OssDebug.h"
#include "OssCore/Program/OssSettings.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectFile.h"

#include <sys/file.h>
#include <sys/stat.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUrl>
#include <QUuid>
#include <QXmlStreamReader>

#include <algorithm>

#include <fcntl.h>
#include <unistd.h>

namespace {

const QString CopySuffix = QStringLiteral(".ossa");
const QString LockSuffix = QStringLiteral(".lock");
const QString PathAttribute = QStringLiteral("recoveryOf");
const QString TimeAttribute = QStringLiteral("copiedAt");
const QString ReadOnlyAttribute = QStringLiteral("readOnly");

QString tr(const char *text)
{
    return QCoreApplication::translate("OssRecovery", text);
}

/// Moves to the next start, end or text that is not white space; the kind of it.
QXmlStreamReader::TokenType next(QXmlStreamReader &reader)
{
    while (!reader.atEnd()) {
        const auto token = reader.readNext();
        if (token == QXmlStreamReader::StartElement || token == QXmlStreamReader::EndElement
            || (token == QXmlStreamReader::Characters && !reader.isWhitespace()))
            return token;
    }
    return reader.tokenType();
}

/// Whether both say the same, whatever their white space. The first elements are not compared:
/// those of copies say more.
bool saysTheSame(const QByteArray &one, const QByteArray &other)
{
    QXmlStreamReader left(one);
    QXmlStreamReader right(other);
    next(left);
    next(right);
    while (!left.atEnd() && !right.atEnd()) {
        if (next(left) != next(right) || left.name() != right.name()
            || left.attributes() != right.attributes() || left.text() != right.text())
            return false;
    }
    return left.atEnd() == right.atEnd() && !left.hasError() && !right.hasError();
}

void readDescription(const QByteArray &document, OssRecovery::Entry *entry)
{
    QXmlStreamReader reader(document);
    if (next(reader) != QXmlStreamReader::StartElement)
        return;
    const QXmlStreamAttributes attributes = reader.attributes();
    const QString path = attributes.value(PathAttribute).toString();
    entry->path = QUrl::fromEncoded(path.toLatin1()).toLocalFile();
    entry->copiedAt = QDateTime::fromString(attributes.value(TimeAttribute).toString(),
                                            Qt::ISODate);
    entry->readOnly = attributes.value(ReadOnlyAttribute) == QLatin1String("true");
    if (next(reader) == QXmlStreamReader::StartElement)
        entry->name = reader.attributes().value(QLatin1String("name")).toString();
}

/// False when there is nothing in it that is not saved.
bool look(OssRecovery::Entry *entry)
{
    const QString document = OssProjectFile::documentPath(entry->copy);
    if (!QFileInfo::exists(document))
        return false;
    QByteArray copied;
    entry->readable = OssAtomicFile::read(document, OssDeserializer::MaximumSize, &copied);
    if (!entry->readable)
        return true;
    readDescription(copied, entry);
    entry->readable = OssProjectFile::checkText(copied, document);
    if (!entry->readable)
        return true;
    QByteArray saved;
    return entry->path.isEmpty()
           || !OssAtomicFile::read(OssProjectFile::documentPath(entry->path),
                                   OssDeserializer::MaximumSize, &saved)
           || !saysTheSame(copied, saved);
}

void removeFolder(const QString &path)
{
    // The document first: without it a copy is none, however far the rest comes.
    QFile::remove(OssProjectFile::documentPath(path));
    if (!QDir(path).removeRecursively())
        OssDebug("OssRecovery", __LINE__, "[ !! ] Cannot remove \"%s\"", qPrintable(path));
}

} // namespace

QString OssRecovery::standardFolder()
{
    return QDir(OssSettings::folderPath()).filePath(QStringLiteral("recovery"));
}

// --- locks

OssRecovery::Lock::Lock(QString path, int descriptor)
    : m_path(std::move(path))
    , m_descriptor(descriptor)
{
}

OssRecovery::Lock::~Lock()
{
    ::close(m_descriptor);
}

std::unique_ptr<OssRecovery::Lock> OssRecovery::Lock::tryLock(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    const int descriptor = ::open(name.constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (descriptor < 0)
        return nullptr;
    std::unique_ptr<Lock> lock(new Lock(path, descriptor));
    // A file that its last holder removed between opening and locking locks nobody out.
    struct stat held = {};
    struct stat named = {};
    if (::flock(descriptor, LOCK_EX | LOCK_NB) != 0 || ::fstat(descriptor, &held) != 0
        || ::stat(name.constData(), &named) != 0 || held.st_ino != named.st_ino
        || held.st_dev != named.st_dev)
        return nullptr;
    return lock;
}

void OssRecovery::Lock::removeFile() const
{
    QFile::remove(m_path);
}

// --- copies of dead sessions

OssSerializer::Attributes OssRecovery::describe(const OssProject &project, const QDateTime &now)
{
    OssSerializer::Attributes attributes;
    attributes.insert(TimeAttribute, now.toUTC().toString(Qt::ISODate));
    if (!project.path().isEmpty())
        attributes.insert(PathAttribute,
                          QString::fromLatin1(QUrl::fromLocalFile(project.path()).toEncoded()));
    if (project.isReadOnly())
        attributes.insert(ReadOnlyAttribute, QStringLiteral("true"));
    return attributes;
}

namespace {

/// Lock files of sessions that died without a copy.
void removeStrayLocks(const QDir &folder)
{
    const QFileInfoList locks = folder.entryInfoList({QLatin1Char('*') + LockSuffix}, QDir::Files);
    for (const QFileInfo &file : locks) {
        if (folder.exists(file.completeBaseName() + CopySuffix))
            continue;
        if (const auto lock = OssRecovery::Lock::tryLock(file.absoluteFilePath()))
            lock->removeFile();
    }
}

} // namespace

QVector<OssRecovery::Entry> OssRecovery::entries(const QString &folder)
{
    removeStrayLocks(QDir(folder));
    QVector<Entry> found;
    const QFileInfoList copies = QDir(folder).entryInfoList({QLatin1Char('*') + CopySuffix},
                                                            QDir::Dirs);
    for (const QFileInfo &copy : copies) {
        Entry entry;
        entry.copy = copy.absoluteFilePath();
        entry.lock = Lock::tryLock(QDir(folder).filePath(copy.completeBaseName() + LockSuffix));
        if (!entry.lock)
            continue;
        if (look(&entry))
            found.append(entry);
        else
            discard(entry);
    }
    std::sort(found.begin(), found.end(),
              [](const Entry &a, const Entry &b) { return a.copiedAt > b.copiedAt; });
    return found;
}

void OssRecovery::discard(const Entry &entry)
{
    removeFolder(entry.copy);
    if (entry.lock)
        entry.lock->removeFile();
}

QString OssRecovery::setAside(const Entry &entry)
{
    const QFileInfo copy(entry.copy);
    const QDir aside(copy.dir().filePath(QStringLiteral("damaged")));
    const QString place = aside.filePath(copy.fileName());
    if (!OssAtomicFile::makeFolder(aside.path()) || !OssAtomicFile::move(entry.copy, place))
        return {};
    if (entry.lock)
        entry.lock->removeFile();
    return place;
}

// --- the copy of this session

OssRecovery::Session::Session(QString folder)
    : m_folder(std::move(folder))
{
}

OssRecovery::Session::~Session()
{
    // The lock of a copy that stays behind must be free, and its file is still needed.
    if (m_lock && !QFileInfo::exists(copyPath()))
        m_lock->removeFile();
}

OssResult OssRecovery::Session::begin()
{
    if (m_lock)
        return {};
    const OssResult made = OssAtomicFile::makeFolder(m_folder);
    if (!made)
        return made;
    // What a project's own folder hides from others must not be read here.
    QFile::setPermissions(m_folder,
                          QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    m_id = QUuid::createUuid().toString(QUuid::WithoutBraces);
    m_lock = Lock::tryLock(QDir(m_folder).filePath(m_id + LockSuffix));
    if (!m_lock)
        return OssResult::failure(tr("Cannot lock a file in \"%1\"").arg(m_folder));
    return {};
}

QString OssRecovery::Session::copyPath() const
{
    return QDir(m_folder).filePath(m_id + CopySuffix);
}

OssResult OssRecovery::Session::write(const QByteArray &document)
{
    const OssResult begun = begin();
    if (!begun)
        return begun;
    const OssResult made = OssAtomicFile::makeFolder(copyPath());
    if (!made)
        return made;
    const QString path = OssProjectFile::documentPath(copyPath());
    return OssAtomicFile::write(path, document, [&path](const QByteArray &written) {
        return OssProjectFile::checkText(written, path);
    });
}

void OssRecovery::Session::removeCopy()
{
    if (m_lock && QFileInfo::exists(copyPath()))
        removeFolder(copyPath());
}

OssResult OssRecovery::Session::adopt(const Entry &entry)
{
    const OssResult begun = begin();
    if (!begun)
        return begun;
    const OssResult moved = OssAtomicFile::move(entry.copy, copyPath());
    if (moved && entry.lock)
        entry.lock->removeFile();
    return moved;
}
