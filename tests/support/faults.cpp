#include "faults.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

Faults faults;

namespace {

constexpr int kNeverAgain = 1'000'000;

bool FailsNow(const char* call)
{
    if (faults.is_logging) {
        faults.log += std::string(call) + " ";
    }
    if (faults.calls_to_go < 0) {
        return false;
    }
    ++faults.calls_made;
    if (faults.calls_to_go.fetch_sub(1) != 1) {
        return false;
    }
    faults.failed_call = call;
    faults.calls_to_go = kNeverAgain;  // The rest is only counted.
    if (faults.at_call) {
        faults.calls_to_go = -1;
        const int before = errno;
        faults.at_call();
        errno = before;
        faults.calls_to_go = kNeverAgain;
        return false;
    }
    errno = faults.error;
    return true;
}

}  // namespace

#define DECLARE(type, call, parameters)       \
    extern "C" type __real_##call parameters; \
    extern "C" type __wrap_##call parameters; \
    extern "C" type __wrap_##call parameters
#define WRAP(type, call, bad, parameters, ...)                       \
    DECLARE(type, call, parameters)                                  \
    {                                                                \
        return FailsNow(#call) ? (bad) : __real_##call(__VA_ARGS__); \
    }

WRAP(int, access, -1, (const char* path, int mode), path, mode)
WRAP(int, faccessat, -1, (int at, const char* path, int mode, int flags), at, path, mode, flags)
WRAP(int, lstat, -1, (const char* path, struct stat* st), path, st)
WRAP(int, fstat, -1, (int fd, struct stat* st), fd, st)
WRAP(int, fstatat, -1, (int at, const char* path, struct stat* st, int flags), at, path, st, flags)
WRAP(int, statx, -1, (int at, const char* path, int flags, unsigned mask, struct statx* st), at, path, flags, mask, st)
WRAP(ssize_t, readlink, -1, (const char* path, char* text, size_t size), path, text, size)
WRAP(ssize_t, readlinkat, -1, (int at, const char* path, char* text, size_t size), at, path, text, size)
WRAP(DIR*, fdopendir, nullptr, (int fd), fd)
WRAP(off_t, lseek, -1, (int fd, off_t to, int whence), fd, to, whence)
WRAP(ssize_t, pread, -1, (int fd, void* data, size_t size, off_t at), fd, data, size, at)
WRAP(ssize_t, pwrite, -1, (int fd, const void* data, size_t size, off_t at), fd, data, size, at)
WRAP(ssize_t, read, -1, (int fd, void* data, size_t size), fd, data, size)
WRAP(ssize_t, write, -1, (int fd, const void* data, size_t size), fd, data, size)
WRAP(ssize_t, copy_file_range, -1, (int from, off_t* at, int to, off_t* there, size_t size, unsigned flags), from, at,
     to, there, size, flags)
WRAP(int, ftruncate, -1, (int fd, off_t size), fd, size)
WRAP(int, chmod, -1, (const char* path, mode_t mode), path, mode)
WRAP(int, fchmod, -1, (int fd, mode_t mode), fd, mode)
WRAP(int, fchmodat, -1, (int at, const char* path, mode_t mode, int flags), at, path, mode, flags)
WRAP(int, mkdirat, -1, (int at, const char* path, mode_t mode), at, path, mode)
WRAP(int, symlinkat, -1, (const char* text, int at, const char* path), text, at, path)
WRAP(int, linkat, -1, (int from, const char* path, int to, const char* name, int flags), from, path, to, name, flags)
WRAP(int, unlinkat, -1, (int at, const char* path, int flags), at, path, flags)
WRAP(int, renameat, -1, (int from, const char* path, int to, const char* name), from, path, to, name)
WRAP(int, open, -1, (const char* path, int flags, mode_t mode), path, flags, mode)

DECLARE(int, openat, (int at, const char* path, int flags, mode_t mode))
{
    const bool is_new = (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
    if (faults.is_old_file_system && (flags & O_TMPFILE) == O_TMPFILE) {
        errno = EOPNOTSUPP;
        return -1;
    }
    return FailsNow(is_new ? "O_TMPFILE" : "openat") ? -1 : __real_openat(at, path, flags, mode);
}
// Hardened builds call openat by this name where they do not know the flags.
DECLARE(int, __openat_2, (int at, const char* path, int flags))
{
    return __wrap_openat(at, path, flags, 0);
}
DECLARE(int, renameat2, (int from, const char* path, int to, const char* name, unsigned flags))
{
    if (faults.is_old_file_system) {
        errno = EINVAL;
        return -1;
    }
    return FailsNow("renameat2") ? -1 : __real_renameat2(from, path, to, name, flags);
}
DECLARE(struct dirent*, readdir, (DIR * stream))
{
    struct dirent* const entry = FailsNow("readdir") ? nullptr : __real_readdir(stream);
    if (entry != nullptr && faults.is_old_file_system) {
        entry->d_type = DT_UNKNOWN;
    }
    return entry;
}
#define WRAP_SYNC(call)                                                           \
    DECLARE(int, call, (int fd))                                                  \
    {                                                                             \
        return FailsNow(#call) ? -1 : faults.spares_disk ? 0 : __real_##call(fd); \
    }
WRAP_SYNC(fdatasync)
WRAP_SYNC(fsync)
DECLARE(void, sync, ())
{
    ++faults.syncs;
}
DECLARE(int, syncfs, (int))
{
    ++faults.syncs;
    errno = faults.flush_error;
    return faults.flush_error != 0 ? -1 : 0;
}
