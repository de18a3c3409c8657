#pragma once
// A tree on the disk as one table: written, read and described.

#include <sys/stat.h>

#include <map>
#include <string>

struct Object {
    bool IsDirectory() const { return type == S_IFDIR; }
    bool IsLink() const { return type == S_IFLNK; }
    bool operator==(const Object&) const = default;

    mode_t type = S_IFREG;
    mode_t mode = 0644;
    std::string content;  ///< Or the text of a link.
    uid_t owner = 0;
    ino_t inode = 0;  ///< Files of the same inode are hard links.
};
/// By path below the top of the tree, without a "/" at the end.
using Disk = std::map<std::string, Object>;

/// top ends in "/". Zeros at the beginning of a file become a hole, and missing parents are made.
void WriteDisk(const std::string& top, const Disk& disk);
/// Unlocks what the owner may unlock.
Disk ReadDisk(const std::string& top);
/// Removes everything below top, whatever its mode.
void EmptyDisk(const std::string& top);

const Object* FindObject(const Disk& disk, const std::string& path);

/// One line an object: type and mode, owner, inode, content.
std::string Describe(const Disk& disk);
/// Escaped where it must be, and cut.
std::string Printable(const std::string& text);
