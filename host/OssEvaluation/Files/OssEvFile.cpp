#include "OssEvaluation/Files/OssEvFile.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr std::size_t BufferSize = std::size_t(1) << 18;

std::string resolved(const std::string &path)
{
    // A link keeps pointing to what is written.
    char *real = ::realpath(path.c_str(), nullptr);
    if (real == nullptr)
        return path;
    std::string result(real);
    std::free(real);
    return result;
}

std::string folderOf(const std::string &path)
{
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos)
        return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

void takePermissions(int descriptor, const std::string &target)
{
    struct stat existing = {};
    const bool exists = ::stat(target.c_str(), &existing) == 0;
    // A new file gets what any program of the user would give it.
    const mode_t mask = ::umask(0);
    ::umask(mask);
    const mode_t mode = exists ? existing.st_mode & 07777U : 0666U & ~mask;
    if (::fchmod(descriptor, mode) != 0)
        errno = 0; // the content matters more
}

bool syncFolder(const std::string &folder)
{
    const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    const bool synced = ::fsync(descriptor) == 0 || errno == EINVAL;
    ::close(descriptor);
    return synced;
}

} // namespace

OssEvFile::OssEvFile(const std::string &path)
    : m_path(resolved(path))
    , m_temporary(m_path + ".XXXXXX")
    , m_descriptor(::mkostemp(m_temporary.data(), O_CLOEXEC))
    , m_exists(m_descriptor >= 0)
{
    if (m_exists)
        m_buffer.reserve(BufferSize);
    else
        failFromSystem();
}

OssEvFile::~OssEvFile()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
    if (m_exists)
        ::unlink(m_temporary.c_str());
}

bool OssEvFile::write(const void *data, std::size_t size)
{
    m_buffer.append(static_cast<const char *>(data), size);
    m_position += size;
    return m_buffer.size() < BufferSize ? m_error.empty() : flush();
}

bool OssEvFile::seek(std::uint64_t position)
{
    if (!flush())
        return false;
    if (::lseek(m_descriptor, off_t(position), SEEK_SET) < 0)
        failFromSystem();
    m_position = position;
    return m_error.empty();
}

bool OssEvFile::flush()
{
    const char *data = m_buffer.data();
    std::size_t left = m_buffer.size();
    while (left > 0 && m_error.empty()) {
        const ssize_t written = ::write(m_descriptor, data, left);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0) {
            failFromSystem();
            break;
        }
        data += written;
        left -= std::size_t(written);
    }
    m_buffer.clear();
    return m_error.empty();
}

void OssEvFile::takeReplaced()
{
    if (m_descriptor < 0)
        return;
    ::close(m_descriptor);
    m_descriptor = ::open(m_temporary.c_str(), O_RDWR | O_CLOEXEC);
    if (m_descriptor < 0)
        failFromSystem();
}

void OssEvFile::fail(const std::string &reason)
{
    if (m_error.empty())
        m_error = "Cannot write \"" + m_path + "\": " + reason;
}

void OssEvFile::failFromSystem()
{
    fail(std::strerror(errno));
}

OssEvResult OssEvFile::finish()
{
    if (m_error.empty() && flush()) {
        takePermissions(m_descriptor, m_path);
        if (::fsync(m_descriptor) != 0)
            failFromSystem();
    }
    const int descriptor = std::exchange(m_descriptor, -1);
    if (descriptor >= 0 && ::close(descriptor) != 0)
        failFromSystem();
    if (m_error.empty() && std::rename(m_temporary.c_str(), m_path.c_str()) == 0) {
        m_exists = false;
        if (!syncFolder(folderOf(m_path)))
            failFromSystem();
    } else {
        failFromSystem();
    }
    return m_error.empty() ? OssEvResult() : OssEvResult::failure(m_error);
}
