#pragma once
// Paths, names, file types and histories: small functions without state of their own.
// Paths are byte strings; what is shown of them goes through DisplayText.

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

/// As many links as the kernel follows before it gives up with ELOOP.
constexpr int kMaxLinks = 40;

/// Verdict on a path that the user typed.
enum PathStatus {
    PATH_EMPTY,
    PATH_TOO_LONG,      ///< Longer than kMaxPathBytes, as typed or made absolute.
    PATH_OUTSIDE_ROOT,  ///< Resolves to a place outside RootDir.
    PATH_INVALID,       ///< Holds "//", or a directory on the way is missing.
    PATH_NO_PARENT,     ///< Its parent is not a directory.
    PATH_NEW,           ///< Does not exist, but its parent directory does.
    PATH_DIRECTORY,
    PATH_FILE,  ///< Something other than a directory.
    PATH_NULL,  ///< No text at all.
};

/// Steps through text of which the encoding is not known for sure.
///
/// Text that is well-formed UTF-8 from the position to the end is stepped by its sequences.
/// Otherwise a byte of 0x80 or above and the byte behind it are one character, as in the two-byte
/// encodings of Japan; in a UTF-8 locale a byte that belongs to no sequence is a character alone.
/// Positions handed to Next must not go backwards; a whole walk costs one pass over the text.
class CharStepper {
public:
    /// The text is [begin, end) and must outlive the stepper.
    CharStepper(const char* begin, const char* end);
    /// The character behind the one at position; never past the end.
    const char* Next(const char* position);

private:
    bool IsWellFormedFrom(const char* position);

    const char* end_;
    const char* ill_formed_;             ///< No position up to this one starts a well-formed rest.
    const char* well_formed_ = nullptr;  ///< From here on all is well-formed, once that is known.
    bool utf8_locale_;
};

/// With a delimiter: its first occurrence at a character boundary of text, text itself included.
/// With delimiter 0: the second character. Null when there is none, or no text.
const char* CharNext(const char* text, char delimiter);

/// The parent of path, ending in "/"; "/" is its own parent. Empty for an empty path.
std::string GetParentDirectory(const std::string& path);
/// The last component without a trailing "/"; empty when there is none, as for "/".
std::string GetLastPath(const std::string& path);
/// path with a "/" at its end, whether it had one or not.
std::string WithSlash(std::string path);

/// The value of "HOME"; empty when it is unset, empty or too long to take a "/" at its end.
std::string GetHomeDirectory();
/// 0 when path is RootDir, with or without its "/", or below it; 1 otherwise. Compares text only.
int CheckChildDirectory(const std::string& path);
/// Reads where a symbolic link points; false, with errno set, when it cannot be read or points to
/// more than kMaxPathBytes.
bool ReadLink(const std::string& path, std::string& target);
/// Replaces the path of a symbolic link by its target. A relative target counts from the directory
/// of the link. False, with errno, if path is no link or cannot be read.
bool FollowLink(std::string& path);
/// Whether path is RootDir, with or without its "/".
bool IsRootDirectory(const std::string& path);
/// The path of a directory without links and "..", ending in "/"; empty when it cannot be reached.
std::string GetRealDirectory(const std::string& path);
/// Makes a canonical path inside real_root, the canonical form of RootDir, begin with RootDir. The
/// two differ if the root was given by a path through a link. False if path is outside.
bool SpellFromRoot(std::string& path, const std::string& real_root);
/// 1 when path is a directory; a symbolic link to one is not, unless a "/" follows its name.
int IsDirectory(const std::string& path);
/// A byte count in the unit it is shown in, rounded to a tenth.
struct DisplaySize {
    std::uint64_t whole;
    unsigned tenth;  ///< 0 to 9.
    bool is_mega;    ///< Whether the unit is 1024 * 1024 bytes, else 1024.
};
DisplaySize RoundSize(std::uint64_t size);
/// Whether an entry read from the open directory is a directory; asks the disk only where reading
/// did not tell.
bool IsDirectoryEntry(int directory, const struct dirent& entry);
/// The two entries that every directory has.
bool IsDotOrDotDot(const char* name);
/// Display form of a byte count, as "1.5KByte"; at least "0.1KByte" for anything but 0.
std::string ConvertSize(std::uint64_t size);
/// 1 when an entry of this name is shown under ShowHidden and ShowBackup, else 0.
int CheckFileName(std::string_view name);

/// Judges a typed path and replaces it by its absolute form, for PATH_OUTSIDE_ROOT and from
/// PATH_NO_PARENT to PATH_FILE by its canonical form, told from RootDir if it is inside. Relative text counts from
/// CurrentDir.
PathStatus CheckFileExist(std::string* path);

/// Whether a name, bytes, matches a shell's wildcard pattern as a whole; case counts, and a leading
/// "." is nothing special. In a UTF-8 locale a byte that is part of no character counts as one, as
/// it does where names are shown.
bool MatchPattern(const std::string& pattern, const char* name);
/// Whether a typed text can be a pattern: it is not empty, and short enough to be stored.
bool IsUsablePattern(const std::string& text);

/// Class of an entry of CurrentDir, st being its lstat record.
FileType GetFileType(const std::string& path, const struct stat& st);

/// Who runs the program: what a file lets one execute depends on it.
struct UserIds {
    uid_t uid;
    gid_t gid;
};
UserIds GetUserIds();
/// The same for an entry called name of the open directory CurrentDir: no path is built, and a
/// listing asks for the ids once.
FileType GetFileTypeAt(int directory, const char* name, const struct stat& st, const UserIds& user);

/// Records text at the front: an entry that is there already moves, a list of ten or more loses
/// its tenth. An empty text or one longer than kMaxPathBytes is not recorded.
void AddHistoryListS(History& list, const std::string& text);

/// Bytes as valid UTF-8; what is not valid becomes the replacement character.
std::string DisplayText(std::string_view bytes);
/// The same on one line: what would end a line is shown as an arrow, as in the list.
std::string DisplayLine(std::string_view bytes);
/// printf into a string of whatever length it takes.
std::string FormatText(const char* format, ...) __attribute__((format(printf, 1, 2)));
