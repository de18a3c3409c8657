#pragma once
// Paths, names, file types and histories: small functions without state of their own.
// Paths are byte strings. DisplayText makes them fit to be shown.

#include <dirent.h>
#include <sys/stat.h>

#include <cstdint>
#include <string>
#include <string_view>

#include "core/fnktable.h"

enum FileType : std::uint8_t {
    FT_DIRECTORY,
    FT_EXECUTE,
    FT_NORMAL,
    FT_CORE,
    FT_SYMLINK,
    FT_STALLED_LINK,
    FT_SOCKET,
    FT_DEVICE,
    FT_FIFO,
};

/// The kernel, too, follows this many links before it fails with ELOOP.
constexpr int kMaxLinks = 40;

/// Verdict on a path that the user typed.
enum PathStatus {
    PATH_EMPTY,
    PATH_TOO_LONG,      ///< Longer than kMaxPathBytes, as typed or once absolute, or than a name may be.
    PATH_OUTSIDE_ROOT,  ///< Resolves to a place outside RootDir.
    PATH_INVALID,       ///< Contains "//", or a directory on the way is missing.
    PATH_NO_PARENT,     ///< The parent is not a directory.
    PATH_NEW,           ///< Does not exist, but its parent directory does.
    PATH_DIRECTORY,
    PATH_FILE,  ///< Anything but a directory.
    PATH_NULL,  ///< A null pointer.
    PATH_LEFT,  ///< The user did not wait for the verdict.
};

/// The parent of an absolute path, ending in "/". The parent of "/" is "/". Empty for an empty path.
std::string GetParentDirectory(const std::string& path);
/// The last component of an absolute path, without a trailing "/". Empty for "/".
std::string GetLastPath(const std::string& path);
/// path with "/" appended, unless it ends in one.
std::string WithSlash(std::string path);

/// The value of "HOME". Empty if unset, or too long to append a "/".
std::string GetHomeDirectory();
/// 0 if path is RootDir, with or without its "/", or below it; else 1. Compares text only.
int CheckChildDirectory(const std::string& path);
/// Reads the target of a symbolic link. False, with errno, on failure or if the target is longer
/// than kMaxPathBytes.
bool ReadLink(const std::string& path, std::string& target);
/// Replaces the path of a symbolic link with that of its target. A relative target counts from the
/// directory of the link. False, with errno, if path is not a link or cannot be read.
bool FollowLink(std::string& path);
/// Whether path is RootDir, with or without its "/".
bool IsRootDirectory(const std::string& path);
/// The canonical path of a directory, ending in "/"; empty if it cannot be reached.
std::string GetRealDirectory(const std::string& path);
/// Replaces real_root at the beginning of a canonical path with RootDir. real_root is the canonical
/// form of RootDir; the two differ if the user gave the root by a path through a link. False if path
/// is outside real_root.
bool SpellFromRoot(std::string& path, const std::string& real_root);
/// 1 if path is a directory, else 0. A symbolic link is followed only if path ends in "/".
int IsDirectory(const std::string& path);
/// Whether entry, read from the open directory, is a directory and not a link to one.
bool IsDirectoryEntry(int directory, const struct dirent& entry);
bool IsDotOrDotDot(const char* name);

/// A byte count in its display unit, rounded to a tenth.
struct DisplaySize {
    std::uint64_t whole;
    unsigned tenth;  ///< 0 to 9.
    bool is_mega;    ///< The unit is 1024 * 1024 bytes, else 1024.
};
/// At least a tenth for anything but 0.
DisplaySize RoundSize(std::uint64_t size);
/// The rounded size as text, such as "1.5KByte".
std::string ConvertSize(std::uint64_t size);
/// 1 if ShowHidden and ShowBackup let an entry of this name appear, else 0.
int CheckFileName(std::string_view name);

/// Whether a typed path starts from the home directory: "~" alone or before "/".
bool BeginsWithTilde(std::string_view typed);
/// The directory or file that a typed path means, inside RootDir: "~" is the home directory, and links
/// are followed. What does not exist, or is reached only by a link that leads out of RootDir, comes back
/// as typed, but without "//", "." and "..". Empty if the path is relative, too long or outside RootDir.
/// Looks at the disk.
std::string ResolveTypedPath(const std::string& typed);

/// Judges a typed path. A relative one counts from CurrentDir. Makes path canonical, beginning with
/// RootDir if it is inside, unless the verdict is PATH_EMPTY, PATH_TOO_LONG, PATH_INVALID or
/// PATH_NULL.
PathStatus CheckFileExist(std::string* path);

/// Type of an entry of CurrentDir, given its absolute path and its lstat record.
FileType GetFileType(const std::string& path, const struct stat& st);

/// The real user and group of the process; they decide whether a file counts as executable.
struct UserIds {
    uid_t uid;
    gid_t gid;
};
UserIds GetUserIds();
/// The same without following a link, which counts as good. Faster for a listing, because it needs no
/// paths and no look-up of the ids.
FileType GetOwnType(const char* name, const struct stat& st, const UserIds& user);
/// FT_SYMLINK or FT_STALLED_LINK. A relative target counts from directory, whose path is base_length
/// bytes long. A target whose full path would exceed kMaxPathBytes counts as missing.
FileType GetLinkType(int directory, const char* name, std::size_t base_length);

/// Puts text at the front of a history of at most ten entries, moving an equal entry or dropping
/// the tenth. Ignores empty texts and texts longer than kMaxPathBytes.
void AddHistoryListS(History& list, const std::string& text);
