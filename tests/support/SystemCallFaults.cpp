#include "support/SystemCallFaults.h"

#include <sys/stat.h>
#include <sys/types.h>

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <string>

#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

namespace {

struct State
{
    int left = 0; ///< calls until the fault; 0 when there will be none
    int error = 0;
    const char *failed = nullptr;
};

thread_local State state;

bool fails(const char *call)
{
    if (state.left == 0 || --state.left > 0)
        return false;
    state.failed = call;
    if (state.error == SystemCallFaults::Kill)
        ::kill(::getpid(), SIGKILL);
    if (state.error == SystemCallFaults::Spoil)
        return false;
    errno = state.error;
    return true;
}

template <class Function>
Function *real(Function *, const char *name)
{
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

} // namespace

SystemCallFaults::SystemCallFaults(int number, int error)
{
    state = {number, error, nullptr};
}

SystemCallFaults::~SystemCallFaults()
{
    state.left = 0;
}

bool SystemCallFaults::happened()
{
    return state.failed;
}

const char *SystemCallFaults::failedCall()
{
    return state.failed ? state.failed : "none";
}

// Under names of their own, so that they do not declare the system's anew.
#define OSSA_STAND_IN extern "C" __attribute__((visibility("default")))

OSSA_STAND_IN int failOrOpen(const char *path, int flags, ...) __asm__("open");
OSSA_STAND_IN int failOrOpen64(const char *path, int flags, ...) __asm__("open64");
OSSA_STAND_IN ssize_t failOrRead(int file, void *data, size_t size) __asm__("read");
OSSA_STAND_IN ssize_t failOrPread(int file, void *data, size_t size, off_t at) __asm__("pread");
OSSA_STAND_IN ssize_t failOrWrite(int file, const void *data, size_t size) __asm__("write");
OSSA_STAND_IN int failOrClose(int file) __asm__("close");
OSSA_STAND_IN int failOrFsync(int file) __asm__("fsync");
OSSA_STAND_IN int failOrRename(const char *path, const char *newPath) __asm__("rename");
OSSA_STAND_IN int failOrLink(const char *path, const char *newPath) __asm__("link");
OSSA_STAND_IN int failOrUnlink(const char *path) __asm__("unlink");
OSSA_STAND_IN int failOrMkdir(const char *path, mode_t mode) __asm__("mkdir");
OSSA_STAND_IN int failOrRmdir(const char *path) __asm__("rmdir");

int failOrOpen(const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = va_arg(arguments, mode_t);
    va_end(arguments);
    static auto *const call = real(&open, "open");
    return fails("open") ? -1 : call(path, flags, mode);
}

int failOrOpen64(const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = va_arg(arguments, mode_t);
    va_end(arguments);
    static auto *const call = real(&open64, "open64");
    return fails("open") ? -1 : call(path, flags, mode);
}

ssize_t failOrRead(int file, void *data, size_t size)
{
    static auto *const call = real(&read, "read");
    return fails("read") ? -1 : call(file, data, size);
}

ssize_t failOrPread(int file, void *data, size_t size, off_t at)
{
    static auto *const call = real(&pread, "pread");
    return fails("pread") ? -1 : call(file, data, size, at);
}

ssize_t failOrWrite(int file, const void *data, size_t size)
{
    static auto *const call = real(&write, "write");
    const bool isSpoilt = state.left == 1 && state.error == SystemCallFaults::Spoil && size > 0;
    if (!fails("write")) {
        if (!isSpoilt)
            return call(file, data, size);
        std::string other(static_cast<const char *>(data), size);
        other.front() = char(~other.front());
        return call(file, other.data(), size);
    }
    const int error = errno;
    if (error == EINTR || call(file, data, size / 2) >= 0)
        errno = error;
    return -1;
}

int failOrClose(int file)
{
    static auto *const call = real(&close, "close");
    const int closed = call(file);
    return fails("close") ? -1 : closed;
}

int failOrFsync(int file)
{
    static auto *const call = real(&fsync, "fsync");
    return fails("fsync") ? -1 : call(file);
}

int failOrRename(const char *path, const char *newPath)
{
    static auto *const call = real(&rename, "rename");
    return fails("rename") ? -1 : call(path, newPath);
}

int failOrLink(const char *path, const char *newPath)
{
    static auto *const call = real(&link, "link");
    return fails("link") ? -1 : call(path, newPath);
}

int failOrUnlink(const char *path)
{
    static auto *const call = real(&unlink, "unlink");
    return fails("unlink") ? -1 : call(path);
}

int failOrMkdir(const char *path, mode_t mode)
{
    static auto *const call = real(&mkdir, "mkdir");
    return fails("mkdir") ? -1 : call(path, mode);
}

int failOrRmdir(const char *path)
{
    static auto *const call = real(&rmdir, "rmdir");
    return fails("rmdir") ? -1 : call(path);
}
