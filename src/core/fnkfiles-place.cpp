#include "core/fnkfiles-place.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "core/fnkutil.h"

std::string WithoutSlash(std::string path)
{
    if (path.size() > 1 && path.back() == '/') {
        path.pop_back();
    }
    return path;
}

PathPlace::PathPlace(const std::string& path)
    : path_(path),
      name_(GetLastPath(path)),
      parent_(open(GetParentDirectory(WithoutSlash(path)).c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)),
      error_(parent_ ? 0 : errno)
{
}

PathPlace::PathPlace(const std::string& path, const std::string& directory)
    : path_(path),
      name_(GetLastPath(path)),
      parent_(open(directory.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC)),
      error_(parent_ ? 0 : errno)
{
}

bool ReadStatus(const Place& place, struct stat* st)
{
    return fstatat(place.directory, place.name.c_str(), st, AT_SYMLINK_NOFOLLOW) == 0;
}

bool IsDirectory(const Place& place)
{
    struct stat st = {};
    return ReadStatus(place, &st) && S_ISDIR(st.st_mode);
}

bool IsSameObject(const struct stat& one, const struct stat& other)
{
    return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

DirectoryStream OpenDirectory(const Place& place)
{
    Descriptor descriptor(
        openat(place.directory, place.name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK));
    DirectoryStream stream(descriptor ? fdopendir(descriptor.Get()) : nullptr);
    if (stream != nullptr) {
        descriptor.Release();  // The stream closes it.
    }
    return stream;
}

bool ListEntries(DIR* stream, std::vector<std::string>& names)
{
    for (;;) {
        errno = 0;  // Allocating memory for a name may set it.
        const struct dirent* const entry = readdir(stream);
        if (entry == nullptr) {
            return errno == 0;
        }
        if (!IsDotOrDotDot(entry->d_name)) {
            names.emplace_back(entry->d_name);
        }
    }
}

int RenameIfFree(const Place& from, const Place& to)
{
    if (renameat2(from.directory, from.name.c_str(), to.directory, to.name.c_str(), RENAME_NOREPLACE) == 0) {
        return 0;
    }
    if (errno != EINVAL && errno != ENOSYS) {
        return errno;
    }
    // The file system lacks RENAME_NOREPLACE. Accept the race between the check and the rename.
    struct stat st = {};
    if (ReadStatus(to, &st)) {
        return EEXIST;
    }
    if (errno != ENOENT) {
        return errno;
    }
    return renameat(from.directory, from.name.c_str(), to.directory, to.name.c_str()) == 0 ? 0 : errno;
}

bool SetModeBits(int fd, mode_t bits)
{
    constexpr long kFchmodat2 = 452;  // Of Linux 6.6; older headers do not name it.
    // fchmod refuses O_PATH. The first way needs /proc, the second a new system, the third a directory.
    return chmod(DescriptorPath(fd).c_str(), bits) == 0 || syscall(kFchmodat2, fd, "", bits, AT_EMPTY_PATH) == 0 ||
           fchmodat(fd, ".", bits, 0) == 0;
}

std::string DescriptorPath(int fd)
{
    return "/proc/self/fd/" + std::to_string(fd);
}
