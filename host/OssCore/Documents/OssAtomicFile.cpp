#include "OssCore/Documents/OssAtomicFile.h"

#include <sys/file.h>
#include <sys/stat.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

namespace {

const QString TemporaryMark = QStringLiteral(".part-");

QString tr(const char *text)
{
    return QCoreApplication::translate("OssAtomicFile", text);
}

OssResult failed(const QString &path, const QString &reason)
{
    return OssResult::failure(tr("Cannot write \"%1\": %2").arg(path, reason));
}

QString systemReason()
{
    return QString::fromLocal8Bit(std::strerror(errno));
}

/// The file beside the target that takes its name in the end; removed unless it did. While it is
/// being written it is locked, so that nobody takes it for one that a killed process left.
class TemporaryFile
{
public:
    explicit TemporaryFile(const QString &target)
        : m_target(QFile::encodeName(target))
    {
        // Whoever sweeps may take the file between its making and its locking: then once more.
        for (int attempt = 0; attempt < 3 && !isOpen(); ++attempt)
            open();
    }

    TemporaryFile(const TemporaryFile &) = delete;
    TemporaryFile &operator=(const TemporaryFile &) = delete;

    ~TemporaryFile()
    {
        const int reason = errno;
        if (m_descriptor >= 0 && !m_renamed)
            ::unlink(m_path.constData());
        closeFile();
        errno = reason;
    }

    bool isOpen() const { return m_descriptor >= 0; }

    bool writeAll(const QByteArray &content) const
    {
        const char *data = content.constData();
        qint64 left = content.size();
        while (left > 0) {
            const ssize_t written = ::write(m_descriptor, data, std::size_t(left));
            if (written < 0 && errno == EINTR)
                continue;
            if (written <= 0)
                return false;
            data += written;
            left -= written;
        }
        return ::fsync(m_descriptor) == 0;
    }

    bool readBack(QByteArray *content) const
    {
        struct stat state = {};
        if (::fstat(m_descriptor, &state) != 0)
            return false;
        content->resize(int(state.st_size));
        qint64 done = 0;
        while (done < content->size()) {
            const ssize_t got = ::pread(m_descriptor, content->data() + done,
                                        std::size_t(content->size() - done), done);
            if (got < 0 && errno == EINTR)
                continue;
            if (got <= 0)
                return false;
            done += got;
        }
        return true;
    }

    bool takeTargetsName()
    {
        m_renamed = ::rename(m_path.constData(), m_target.constData()) == 0;
        return m_renamed;
    }

private:
    void open()
    {
        struct stat state = {};
        const bool exists = ::stat(m_target.constData(), &state) == 0;
        if (exists && ::access(m_target.constData(), W_OK) != 0)
            return; // the user's wish, though renaming could pass over it
        m_path = m_target + TemporaryMark.toLatin1()
                 + QByteArray::number(QRandomGenerator::global()->generate64(), 36);
        // A new file gets what any program of the user would give it.
        m_descriptor = ::open(m_path.constData(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC,
                              exists ? 0600 : 0666);
        if (m_descriptor < 0)
            return;
        // Neither must succeed everywhere; without locks nothing is swept.
        if (exists && ::fchmod(m_descriptor, state.st_mode & 07777U) != 0)
            errno = 0;
        ::flock(m_descriptor, LOCK_EX);
        if (::fstat(m_descriptor, &state) == 0 && state.st_nlink == 0)
            closeFile();
    }

    // Everything was synced: what closing says no longer matters.
    void closeFile()
    {
        if (m_descriptor >= 0)
            ::close(m_descriptor);
        m_descriptor = -1;
    }

    QByteArray m_target;
    QByteArray m_path;
    int m_descriptor = -1;
    bool m_renamed = false;
};

/// Removes the temporary files of the target that nobody holds.
void sweep(const QFileInfo &target)
{
    const QDir folder = target.absoluteDir();
    const QString start = target.fileName() + TemporaryMark;
    const QStringList names = folder.entryList(QDir::Files | QDir::Hidden);
    for (const QString &name : names) {
        if (!name.startsWith(start))
            continue;
        const QByteArray path = QFile::encodeName(folder.filePath(name));
        const int descriptor = ::open(path.constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW);
        if (descriptor < 0)
            continue;
        if (::flock(descriptor, LOCK_EX | LOCK_NB) == 0)
            ::unlink(path.constData());
        ::close(descriptor);
    }
}

// What a link leads to is written, so that the link stays one; it need not be there yet. Still a
// link where the links do not end.
QFileInfo behindLinks(const QString &path)
{
    constexpr int Most = 40; // what the system itself follows
    QFileInfo file(QFileInfo(path).absoluteFilePath());
    for (int i = 0; i < Most && file.isSymLink(); ++i)
        file = QFileInfo(file.symLinkTarget());
    return file;
}

bool syncFolder(const QString &folder)
{
    const int descriptor = ::open(QFile::encodeName(folder).constData(),
                                  O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    const bool synced = ::fsync(descriptor) == 0 || errno == EINVAL;
    const int reason = errno;
    ::close(descriptor);
    errno = reason;
    return synced;
}

} // namespace

OssResult OssAtomicFile::write(const QString &path, const QByteArray &content,
                               const Validate &validate)
{
    const QFileInfo target = behindLinks(path);
    if (target.isSymLink())
        return failed(path, QString::fromLocal8Bit(std::strerror(ELOOP)));
    sweep(target);
    TemporaryFile file(target.filePath());
    if (!file.isOpen() || !file.writeAll(content))
        return failed(path, systemReason());
    QByteArray written;
    if (!file.readBack(&written))
        return failed(path, systemReason());
    if (written != content)
        return failed(path, tr("what was written reads back differently"));
    if (validate) {
        const OssResult valid = validate(written);
        if (!valid)
            return failed(path, valid.error());
    }
    if (!file.takeTargetsName() || !syncFolder(target.absolutePath()))
        return failed(path, systemReason());
    return {};
}

OssResult OssAtomicFile::copy(const QString &path, const QString &copyPath)
{
    QByteArray content;
    const OssResult result = read(path, qint64(1) << 31, &content);
    return result ? write(copyPath, content) : result;
}

OssResult OssAtomicFile::keepAs(const QString &path, const QString &keptPath)
{
    if (::link(QFile::encodeName(path).constData(), QFile::encodeName(keptPath).constData()) != 0)
        return errno == EEXIST ? failed(keptPath, systemReason()) : copy(path, keptPath);
    if (!syncFolder(QFileInfo(keptPath).absolutePath()))
        return failed(keptPath, systemReason());
    return {};
}

OssResult OssAtomicFile::move(const QString &path, const QString &newPath)
{
    if (std::rename(QFile::encodeName(path).constData(), QFile::encodeName(newPath).constData())
            != 0
        || !syncFolder(QFileInfo(newPath).absolutePath()))
        return failed(newPath, systemReason());
    return {};
}

OssResult OssAtomicFile::makeFolder(const QString &path)
{
    const QFileInfo folder(QDir::cleanPath(QFileInfo(path).absoluteFilePath()));
    if (folder.isDir())
        return {};
    if (path.isEmpty())
        return OssResult::failure(tr("Cannot make a folder without a name"));
    if (!folder.isRoot()) {
        const OssResult above = makeFolder(folder.path());
        if (!above)
            return above;
    }
    const QByteArray name = QFile::encodeName(folder.filePath());
    // Somebody else may have made it meanwhile; a file in its place is another matter.
    const bool made = ::mkdir(name.constData(), 0777) == 0
                      || (errno == EEXIST && QFileInfo(folder.filePath()).isDir());
    if (!made || !syncFolder(folder.path()))
        return OssResult::failure(
            tr("Cannot make the folder \"%1\": %2").arg(path, systemReason()));
    return {};
}

OssResult OssAtomicFile::read(const QString &path, qint64 maximum, QByteArray *content)
{
    QFile file(path);
    const auto refused = [&path](const QString &reason) {
        return OssResult::failure(tr("Cannot read \"%1\": %2").arg(path, reason));
    };
    if (!QFileInfo(path).isFile())
        return refused(QFileInfo::exists(path) ? tr("it is not a file")
                                               : tr("there is no such file"));
    if (!file.open(QIODevice::ReadOnly))
        return refused(file.errorString());
    if (file.size() > maximum)
        return refused(tr("it is larger than %1 MB").arg(maximum >> 20));
    *content = file.readAll();
    if (file.error() != QFileDevice::NoError)
        return refused(file.errorString());
    return {};
}
