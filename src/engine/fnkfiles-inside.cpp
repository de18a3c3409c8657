#include "engine/fnkfiles-inside.h"

#include <fcntl.h>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "core/fnkfiles-place.h"
#include "core/fnkutil.h"

namespace {

constexpr int kPlaceOnly = O_PATH | O_DIRECTORY | O_CLOEXEC;

/// Whether an errno of open() proves that the path names no directory.
bool MeansNoDirectory(int error)
{
    return error == ENOENT || error == ENOTDIR || error == ELOOP || error == ENAMETOOLONG;
}

/// Opens target if it is a directory, else its nearest existing parent. 0 or an errno.
int OpenNearestDirectory(const std::string& target, Descriptor* directory)
{
    *directory = Descriptor(open(target.c_str(), kPlaceOnly | O_NOFOLLOW));
    for (std::string path = target; !*directory && path != "/" && MeansNoDirectory(errno);) {
        path = GetParentDirectory(WithoutSlash(path));
        *directory = Descriptor(open(path.c_str(), kPlaceOnly));
    }
    return *directory ? 0 : errno;
}

/// Climbs from directory to the root and sets is_below if source is on the way. 0 or an errno.
int FindAmongAncestors(Descriptor directory, const struct stat& source, bool* is_below)
{
    struct stat st = {};
    while (fstat(directory.Get(), &st) == 0) {
        if (IsSameObject(st, source)) {
            *is_below = true;
            return 0;
        }
        Descriptor parent(openat(directory.Get(), "..", kPlaceOnly));
        struct stat parent_st = {};
        if (!parent || fstat(parent.Get(), &parent_st) != 0) {
            return errno;
        }
        if (IsSameObject(st, parent_st)) {
            return 0;
        }
        directory = std::move(parent);
    }
    return errno;
}

/// Decodes a field of the mount table, which writes white space and "\" as octal escapes.
std::string UnescapeOctal(const std::string& field)
{
    std::string text;
    for (std::size_t i = 0; i < field.size(); ++i) {
        if (field[i] == '\\' && i + 3 < field.size()) {
            text += static_cast<char>(std::strtol(field.substr(i + 1, 3).c_str(), nullptr, 8));
            i += 3;
        } else {
            text += field[i];
        }
    }
    return text;
}

struct Mount {
    std::string root;   ///< The mounted directory, as a path within its file system.
    std::string point;  ///< The mount point.
};

bool FindMount(std::uint64_t wanted, Mount* mount)
{
    std::ifstream table("/proc/self/mountinfo");
    for (std::string line; std::getline(table, line);) {
        std::istringstream fields(line);
        std::uint64_t id = 0;
        std::string parent;
        std::string device;
        if (fields >> id >> parent >> device >> mount->root >> mount->point && id == wanted) {
            *mount = {UnescapeOctal(mount->root), UnescapeOctal(mount->point)};
            return true;
        }
    }
    return false;
}

/// Where a directory is within its file system.
struct InnerPlace {
    std::string path;                  ///< Ends in "/"; empty if unknown.
    std::uint64_t unlisted_mount = 0;  ///< Id of a mount that the mount table lacks, else 0.
};

/// Needed for bind mounts: climbing from one leads to the parents of the mount point, not to those of
/// the mounted directory.
///
/// If "/" is not a mount point, as after chroot, the mount table lacks its mount. The path then
/// starts at "/" instead of at the root of the file system, so it can only be compared with other
/// paths on that mount.
InnerPlace FindInnerPlace(int directory)
{
    struct statx status = {};
    char path[PATH_MAX] = {};
    if (statx(directory, "", AT_EMPTY_PATH, STATX_MNT_ID, &status) != 0 || (status.stx_mask & STATX_MNT_ID) == 0 ||
        readlink(DescriptorPath(directory).c_str(), path, sizeof path - 1) <= 0 || path[0] != '/') {
        return {};
    }
    const std::string full = WithSlash(path);
    Mount mount;
    if (!FindMount(status.stx_mnt_id, &mount)) {
        return {full, status.stx_mnt_id};
    }
    const std::string point = WithSlash(mount.point);
    return {full.starts_with(point) ? WithSlash(mount.root) + full.substr(point.size()) : std::string(), 0};
}

}  // namespace

int CheckIsInside(const std::string& target, const std::string& source, bool* is_inside)
{
    *is_inside = target.starts_with(WithSlash(source));
    if (*is_inside) {
        return 0;
    }
    Descriptor target_directory;
    if (const int error = OpenNearestDirectory(target, &target_directory); error != 0) {
        return error;
    }
    const Descriptor source_directory(open(WithoutSlash(source).c_str(), kPlaceOnly | O_NOFOLLOW));
    struct stat target_st = {};
    struct stat source_st = {};
    if (!source_directory || fstat(target_directory.Get(), &target_st) != 0 ||
        fstat(source_directory.Get(), &source_st) != 0) {
        return errno;
    }
    bool are_paths_known = false;
    if (target_st.st_dev == source_st.st_dev) {
        const InnerPlace inner_source = FindInnerPlace(source_directory.Get());
        const InnerPlace inner_target = FindInnerPlace(target_directory.Get());
        are_paths_known = !inner_source.path.empty() && !inner_target.path.empty() &&
                          inner_source.unlisted_mount == inner_target.unlisted_mount;
        *is_inside = are_paths_known && inner_target.path.starts_with(inner_source.path);
    }
    const int error = *is_inside ? 0 : FindAmongAncestors(std::move(target_directory), source_st, is_inside);
    // Climbing needs search permission. Without it, the answer of the paths stands.
    return error == EACCES && are_paths_known ? 0 : error;
}

std::string FindMountPoint(int file)
{
    struct statx status = {};
    Mount mount;
    const bool is_known =
        statx(file, "", AT_EMPTY_PATH, STATX_MNT_ID, &status) == 0 && FindMount(status.stx_mnt_id, &mount);
    return is_known ? mount.point : "/";
}
