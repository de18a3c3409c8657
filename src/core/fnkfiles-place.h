#pragma once
// Names objects on disk by an open directory and a name in it. Walks that do so cannot be led
// astray by someone who replaces a directory with a link.

#include <sys/stat.h>

#include <string>
#include <vector>

#include "core/fnkraii.h"

/// The bits of a mode that chmod sets.
constexpr mode_t kPermissionBits = 07777;

/// An object on disk. The caller owns all three fields.
struct Place {
    int directory;            ///< Open.
    const std::string& name;  ///< Within directory.
    const std::string& path;  ///< For messages.
};

/// The place of an absolute path. Links among its directories are followed.
class PathPlace {
public:
    explicit PathPlace(const std::string& path);
    /// For a path whose parent is directory. Fails if directory is a link and does not end in "/".
    PathPlace(const std::string& path, const std::string& directory);
    /// False if the parent cannot be opened; Error is then the errno.
    explicit operator bool() const { return static_cast<bool>(parent_); }
    int Error() const { return error_; }
    Place Get() const { return {parent_.Get(), name_, path_}; }

private:
    std::string path_;
    std::string name_;
    Descriptor parent_;
    int error_ = 0;
};

/// path without a trailing "/"; "/" stays as it is.
std::string WithoutSlash(std::string path);

/// lstat. False, with errno, on failure.
bool ReadStatus(const Place& place, struct stat* st);
bool IsDirectory(const Place& place);
/// Whether both records describe the same object.
bool IsSameObject(const struct stat& one, const struct stat& other);

/// Opens a directory for reading, unless it is a link. Null, with errno, on failure.
DirectoryStream OpenDirectory(const Place& place);
/// Appends the names in a directory except "." and "..". Read all names before you change the
/// directory: file systems differ in what they return if entries are removed during reading.
/// False, with errno, on failure.
bool ListEntries(DIR* stream, std::vector<std::string>& names);

/// Renames, also across directories. 0 or an errno: EEXIST if the new name is taken.
int RenameIfFree(const Place& from, const Place& to);

/// Sets the permission bits of an object that is open with O_PATH. False, with errno, on failure.
bool SetModeBits(int fd, mode_t bits);

/// A path to an open file, for calls that take no descriptor.
std::string DescriptorPath(int fd);
