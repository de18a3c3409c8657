#pragma once
// Objects on the disk by the directory that holds them, for walks that no exchange of a directory
// for a link can lead astray.

#include <sys/stat.h>

#include <string>
#include <vector>

#include "core/fnkraii.h"

/// An object by its directory and its name there; path is what messages call it. The directory is
/// open, the caller owns all three.
struct Place {
    int directory;
    const std::string& name;
    const std::string& path;
};

/// The place of an absolute path of which only the last component is not followed if it is a link.
class PathPlace {
public:
    explicit PathPlace(const std::string& path);
    /// The place that path names in directory, which is no link: it may have become one.
    PathPlace(const std::string& path, const std::string& directory);
    /// False when the directory cannot be entered; Error says why.
    explicit operator bool() const { return static_cast<bool>(parent_); }
    int Error() const { return error_; }
    Place Get() const { return {parent_.Get(), name_, path_}; }

private:
    std::string path_;
    std::string name_;
    Descriptor parent_;
    int error_ = 0;
};

/// A path without the "/" at its end; "/" stays as it is.
std::string WithoutSlash(std::string path);

/// lstat. False, with errno, when there is nothing.
bool ReadStatus(const Place& place, struct stat* st);
bool IsDirectory(const Place& place);
/// Whether both records are of one object.
bool IsSameObject(const struct stat& one, const struct stat& other);

/// Opens a directory for reading without following a link. Null, with errno, when that fails.
DirectoryStream OpenDirectory(const Place& place);
/// Adds the names in a directory but "." and "..". Read whole before anything is changed: file
/// systems differ in what a directory that is being read makes of its entries' removal. False,
/// with errno, when reading failed.
bool ListEntries(DIR* stream, std::vector<std::string>& names);

/// Renames, across directories too, unless something has the new name. 0 or an errno.
int RenameIfFree(const Place& from, const Place& to);

/// Names an open file to calls that take no descriptor.
std::string DescriptorPath(int fd);
