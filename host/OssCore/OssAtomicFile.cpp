#include "OssCore/OssAtomicFile.h"

#include <sys/stat.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

namespace {

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

/// Closes the descriptor, and removes the temporary file unless it took the target's name.
class TemporaryFile
{
public:
    explicit TemporaryFile(const QString &target)
        : m_path(QFile::encodeName(target) + ".XXXXXX")
        , m_descriptor(::mkostemp(m_path.data(), O_CLOEXEC))
    {
    }

    TemporaryFile(const TemporaryFile &) = delete;
    TemporaryFile &operator=(const TemporaryFile &) = delete;

    ~TemporaryFile()
    {
        closeFile();
        if (!m_renamed && isOpen())
            ::unlink(m_path.constData());
    }

    bool isOpen() const { return m_made || m_descriptor >= 0; }

    const char *path() const { return m_path.constData(); }

    bool writeAll(const QByteArray &content)
    {
        m_made = true;
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

    void takePermissionsOf(const QString &target)
    {
        struct stat existing = {};
        const bool exists = ::stat(QFile::encodeName(target).constData(), &existing) == 0;
        // A new file gets what any program of the user would give it.
        const mode_t mask = ::umask(0);
        ::umask(mask);
        const mode_t mode = exists ? existing.st_mode & 07777U : 0666U & ~mask;
        if (::fchmod(m_descriptor, mode) != 0)
            errno = 0; // the content matters more
    }

    bool closeFile()
    {
        const int descriptor = m_descriptor;
        m_descriptor = -1;
        return descriptor < 0 || ::close(descriptor) == 0;
    }

    bool renameTo(const QString &target)
    {
        m_renamed = ::rename(m_path.constData(), QFile::encodeName(target).constData()) == 0;
        return m_renamed;
    }

private:
    QByteArray m_path;
    int m_descriptor;
    bool m_made = false;
    bool m_renamed = false;
};

bool syncFolder(const QString &folder)
{
    const int descriptor = ::open(QFile::encodeName(folder).constData(),
                                  O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    const bool synced = ::fsync(descriptor) == 0 || errno == EINVAL;
    ::close(descriptor);
    return synced;
}

} // namespace

OssResult OssAtomicFile::write(const QString &path, const QByteArray &content,
                               const Validate &validate)
{
    const QFileInfo link(path);
    const QString target = link.isSymLink() ? link.symLinkTarget() : link.absoluteFilePath();
    TemporaryFile file(target);
    if (!file.isOpen())
        return failed(path, systemReason());
    if (!file.writeAll(content))
        return failed(path, systemReason());
    file.takePermissionsOf(target);
    if (!file.closeFile())
        return failed(path, systemReason());

    QFile check(QFile::decodeName(file.path()));
    if (!check.open(QIODevice::ReadOnly))
        return failed(path, check.errorString());
    const QByteArray written = check.readAll();
    if (written != content)
        return failed(path, tr("what was written reads back differently"));
    if (validate) {
        const OssResult valid = validate(written);
        if (!valid)
            return failed(path, valid.error());
    }
    if (!file.renameTo(target))
        return failed(path, systemReason());
    if (!syncFolder(QFileInfo(target).absolutePath()))
        return failed(path, systemReason());
    return {};
}

OssResult OssAtomicFile::copy(const QString &path, const QString &copyPath)
{
    QByteArray content;
    const OssResult result = read(path, qint64(1) << 31, &content);
    return result ? write(copyPath, content) : result;
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
