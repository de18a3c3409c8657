#include "core/fnkutil.h"

#include <fcntl.h>
#include <fnmatch.h>
#include <glib.h>
#include <langinfo.h>
#include <limits.h>
#include <locale.h>
#include <strings.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "core/fnkraii.h"

namespace {

constexpr std::size_t kHistoryLength = 10;

bool IsUtf8Locale()
{
    return std::strcmp(nl_langinfo(CODESET), "UTF-8") == 0;
}

/// Length in bytes of the UTF-8 sequence at position, 0 if it is invalid.
std::ptrdiff_t SequenceLength(const char* position, const char* end)
{
    const gunichar character = g_utf8_get_char_validated(position, end - position);
    if (character == static_cast<gunichar>(-1) || character == static_cast<gunichar>(-2)) {
        return 0;
    }
    return std::max(1, g_unichar_to_utf8(character, nullptr));
}

bool EndsWithIgnoringCase(std::string_view text, std::string_view ending)
{
    return text.size() >= ending.size() &&
           strncasecmp(text.data() + text.size() - ending.size(), ending.data(), ending.size()) == 0;
}

}  // namespace

CharStepper::CharStepper(const char* begin, const char* end)
    : end_(end), ill_formed_(begin - 1), utf8_locale_(IsUtf8Locale())
{
}

const char* CharStepper::Next(const char* position)
{
    if (position >= end_) {
        return end_;
    }
    if (static_cast<unsigned char>(*position) < 0x80) {
        return position + 1;
    }
    if (utf8_locale_ || IsWellFormedFrom(position)) {
        return position + std::max<std::ptrdiff_t>(1, SequenceLength(position, end_));
    }
    return std::min(position + 2, end_);
}

bool CharStepper::IsWellFormedFrom(const char* position)
{
    // Validation that fails at valid_end would fail from any position up to there: it either reaches
    // the same bad byte or starts inside a sequence.
    if (well_formed_ == nullptr && position > ill_formed_) {
        const char* valid_end = nullptr;
        if (g_utf8_validate(position, end_ - position, &valid_end)) {
            well_formed_ = position;
        } else {
            ill_formed_ = valid_end;
        }
    }
    return well_formed_ != nullptr;
}

const char* CharNext(const char* text, char delimiter)
{
    if (text == nullptr || *text == '\0') {
        return nullptr;
    }
    const char* const end = text + std::strlen(text);
    CharStepper stepper(text, end);
    const char* position = text;
    if (delimiter == '\0') {
        position = stepper.Next(position);
    } else {
        while (position != end && *position != delimiter) {
            position = stepper.Next(position);
        }
    }
    return position == end ? nullptr : position;
}

std::string GetParentDirectory(const std::string& path)
{
    std::size_t cut = 0;
    if (path.size() > 1) {
        const char* const text = path.c_str();
        const char* slash = CharNext(text + 1, '/');
        while (slash != nullptr && slash[1] != '\0') {
            cut = static_cast<std::size_t>(slash - text);
            slash = CharNext(slash + 1, '/');
        }
    }
    return path.substr(0, cut + 1);
}

std::string GetLastPath(const std::string& path)
{
    std::string name = path.substr(GetParentDirectory(path).size());
    if (!name.empty() && name.back() == '/') {
        name.pop_back();
    }
    return name;
}

std::string WithSlash(std::string path)
{
    if (path.empty() || path.back() != '/') {
        path += '/';
    }
    return path;
}

std::string GetHomeDirectory()
{
    const char* const home = std::getenv("HOME");
    return home == nullptr || std::strlen(home) >= kMaxPathBytes ? std::string() : std::string(home);
}

int CheckChildDirectory(const std::string& path)
{
    const std::string& root = pGTable->RootDir;
    const bool is_root_itself = path.size() + 1 == root.size() && root.starts_with(path);
    return is_root_itself || path.starts_with(root) ? 0 : 1;
}

namespace {

std::string RealPath(const std::string& path)
{
    struct Free {
        void operator()(char* text) const { std::free(text); }
    };
    const std::unique_ptr<char, Free> real(realpath(path.c_str(), nullptr));
    return real != nullptr ? real.get() : "";
}

}  // namespace

bool BeginsWithTilde(std::string_view typed)
{
    return typed == "~" || typed.starts_with("~/");
}

std::string ResolveTypedPath(const std::string& typed)
{
    std::string path = typed;
    if (BeginsWithTilde(path)) {
        path.replace(0, 1, GetHomeDirectory());
    }
    if (!path.starts_with('/') || path.size() > kMaxPathBytes) {
        return {};
    }
    const GlibPointer<char> plain(g_canonicalize_filename(path.c_str(), "/"));
    const std::string real = RealPath(path);
    const std::string root = WithSlash(RealPath(pGTable->RootDir));
    if (!real.empty() && WithSlash(real).starts_with(root)) {
        return WithSlash(real) == root ? pGTable->RootDir : pGTable->RootDir + real.substr(root.size());
    }
    return CheckChildDirectory(plain.get()) == 0 ? plain.get() : std::string();
}

bool ReadLink(const std::string& path, std::string& target)
{
    char buffer[kMaxPathBytes + 1];
    const ssize_t length = readlink(path.c_str(), buffer, sizeof buffer);
    if (length < 0) {
        return false;
    }
    if (length > static_cast<ssize_t>(kMaxPathBytes)) {
        errno = ENAMETOOLONG;
        return false;
    }
    target.assign(buffer, static_cast<std::size_t>(length));
    return true;
}

bool FollowLink(std::string& path)
{
    char buffer[PATH_MAX];
    const ssize_t length = readlink(path.c_str(), buffer, sizeof buffer);
    if (length < 0) {
        return false;
    }
    const std::string target(buffer, static_cast<std::size_t>(length));
    path = target.starts_with('/') ? target : path.substr(0, path.rfind('/') + 1) + target;
    return true;
}

bool IsRootDirectory(const std::string& path)
{
    return WithSlash(path) == pGTable->RootDir;
}

std::string GetRealDirectory(const std::string& path)
{
    char real[PATH_MAX];
    return realpath(path.c_str(), real) != nullptr ? WithSlash(real) : std::string();
}

bool SpellFromRoot(std::string& path, const std::string& real_root)
{
    if (real_root.empty() || !WithSlash(path).starts_with(real_root)) {
        return false;
    }
    path = pGTable->RootDir + (path.size() > real_root.size() ? path.substr(real_root.size()) : "");
    return true;
}

int IsDirectory(const std::string& path)
{
    struct stat st = {};
    return lstat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode) ? 1 : 0;
}

bool IsDirectoryEntry(int directory, const struct dirent& entry)
{
    if (entry.d_type != DT_UNKNOWN) {
        return entry.d_type == DT_DIR;
    }
    struct stat st = {};
    return fstatat(directory, entry.d_name, &st, AT_SYMLINK_NOFOLLOW) == 0 && S_ISDIR(st.st_mode);
}

bool IsDotOrDotDot(const char* name)
{
    return std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0;
}

DisplaySize RoundSize(std::uint64_t size)
{
    constexpr std::uint64_t kKilo = 1024;
    constexpr std::uint64_t kMega = kKilo * kKilo;
    const bool is_mega = size >= kMega;
    const std::uint64_t divisor = is_mega ? kMega : kKilo;
    const std::uint64_t tenths = size % divisor * 10;
    std::uint64_t whole = size / divisor;
    auto tenth = static_cast<unsigned>(tenths / divisor);
    if (tenths % divisor >= divisor / 2) {
        ++tenth;
    }
    if (tenth == 10) {
        tenth = 0;
        ++whole;
    }
    if (size != 0 && whole == 0 && tenth == 0) {
        tenth = 1;  // Only an empty file is shown as 0.
    }
    return {whole, tenth, is_mega};
}

std::string ConvertSize(std::uint64_t size)
{
    const DisplaySize shown = RoundSize(size);
    std::string text = std::to_string(shown.whole);
    if (shown.tenth != 0) {
        text += '.';
        text += static_cast<char>('0' + shown.tenth);
    }
    return text + (shown.is_mega ? "MByte" : "KByte");
}

int CheckFileName(std::string_view name)
{
    if (!pGTable->ShowBackup) {
        if (!name.empty() && name.back() == '~') {
            return 0;
        }
        if (name.size() > 4 && EndsWithIgnoringCase(name, ".bak")) {
            return 0;
        }
    }
    if (pGTable->ShowHidden || name.empty() || name.front() != '.') {
        return 1;
    }
    return name == ".." ? 1 : 0;
}

namespace {

struct Resolution {
    std::string path;     ///< Canonical; on failure it ends with the component that failed.
    int error = 0;        ///< errno of the failed lookup.
    bool is_last = true;  ///< Nothing follows the component that failed.
};

/// Removes and returns the first component of rest. Empty if there is none.
std::string TakeComponent(std::string& rest)
{
    const std::size_t begin = rest.find_first_not_of('/');
    if (begin == std::string::npos) {
        rest.clear();
        return {};
    }
    const char* const slash = CharNext(rest.c_str() + begin, '/');
    const std::size_t end = slash == nullptr ? rest.size() : static_cast<std::size_t>(slash - rest.c_str());
    std::string component = rest.substr(begin, end - begin);
    rest.erase(0, end);
    return component;
}

/// Whether no file of this name can be made in a directory. Some file systems say only that there is none.
bool IsNameTooLong(const std::string& directory, const std::string& name)
{
    const long limit = pathconf(directory.c_str(), _PC_NAME_MAX);
    return limit > 0 && name.size() > static_cast<std::size_t>(limit);
}

/// Like realpath, but on failure also returns the part resolved so far. If a file is about to be
/// created, the last component of its path does not exist yet.
Resolution ResolvePath(const std::string& absolute)
{
    Resolution result{"/"};
    std::string rest = absolute;
    for (int links = 0;;) {
        const std::string component = TakeComponent(rest);
        if (component.empty()) {
            return result;
        }
        if (component == "." || component == "..") {
            if (!IsDirectory(result.path)) {
                result.path += "/" + component;
                result.error = ENOTDIR;
                return result;
            }
            if (component == "..") {
                result.path = GetParentDirectory(result.path);
                if (result.path.size() > 1) {
                    result.path.pop_back();
                }
            }
            continue;
        }
        const std::string parent = result.path;
        result.path = WithSlash(parent) + component;
        struct stat st = {};
        if (lstat(result.path.c_str(), &st) != 0) {
            result.error = errno == ENOENT && IsNameTooLong(parent, component) ? ENAMETOOLONG : errno;
            result.is_last = rest.find_first_not_of('/') == std::string::npos;
            return result;
        }
        if (!S_ISLNK(st.st_mode)) {
            continue;
        }
        std::string target;
        if (++links > kMaxLinks || !ReadLink(result.path, target)) {
            result.error = links > kMaxLinks ? ELOOP : errno;
            return result;
        }
        result.path = target.starts_with('/') ? "/" : parent;
        rest = target + "/" + rest;
    }
}

bool HasDoubleSlash(const std::string& path)
{
    const char* slash = CharNext(path.c_str(), '/');
    while (slash != nullptr && slash[1] != '/') {
        slash = CharNext(slash + 1, '/');
    }
    return slash != nullptr;
}

PathStatus JudgeResolvedPath(const std::string& path)
{
    if (CheckChildDirectory(path) != 0) {
        return PATH_OUTSIDE_ROOT;
    }
    if (!IsDirectory(GetParentDirectory(path))) {
        return PATH_NO_PARENT;
    }
    struct stat st = {};
    if (lstat(path.c_str(), &st) != 0) {
        return PATH_NEW;
    }
    return S_ISDIR(st.st_mode) ? PATH_DIRECTORY : PATH_FILE;
}

}  // namespace

PathStatus CheckFileExist(std::string* path)
{
    if (path == nullptr) {
        return PATH_NULL;
    }
    if (path->empty()) {
        return PATH_EMPTY;
    }
    if (path->size() > kMaxPathBytes) {
        return PATH_TOO_LONG;
    }
    if (HasDoubleSlash(*path)) {
        return PATH_INVALID;
    }
    if (path->front() != '/') {
        if (pGTable->CurrentDir.size() + path->size() > kMaxPathBytes) {
            return PATH_TOO_LONG;
        }
        path->insert(0, pGTable->CurrentDir);
    }
    Resolution resolved = ResolvePath(*path);
    if (resolved.path.size() > kMaxPathBytes || resolved.error == ENAMETOOLONG) {
        return PATH_TOO_LONG;
    }
    if (resolved.error == ENOENT && (!resolved.is_last || GetLastPath(*path) != GetLastPath(resolved.path))) {
        return PATH_INVALID;
    }
    *path = resolved.path;
    if (const std::string root = GetRealDirectory(pGTable->RootDir); root != pGTable->RootDir) {
        SpellFromRoot(*path, root);
    }
    return JudgeResolvedPath(*path);
}

namespace {

/// Replaces each invalid byte by a private-use character at the end of Unicode.
std::string WithBytesAsCharacters(const std::string& text)
{
    constexpr gunichar kByteCharacters = 0x10FF00;
    std::string result;
    for (const char *at = text.data(), *const end = at + text.size(); at < end;) {
        const std::ptrdiff_t length = SequenceLength(at, end);
        char buffer[6];
        const int written =
            length > 0 ? 0 : g_unichar_to_utf8(kByteCharacters + static_cast<unsigned char>(*at), buffer);
        result.append(length > 0 ? at : buffer, static_cast<std::size_t>(length > 0 ? length : written));
        at += std::max<std::ptrdiff_t>(1, length);
    }
    return result;
}

bool IsWellFormed(std::string_view text)
{
    return g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr) != FALSE;
}

bool IsAscii(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

/// Matches in the C locale, where every byte is a character.
bool MatchBytes(const std::string& pattern, const char* name)
{
    static const locale_t kBytes = newlocale(LC_ALL_MASK, "C", nullptr);
    const locale_t before = uselocale(kBytes);
    const bool matches = fnmatch(pattern.c_str(), name, 0) == 0;
    uselocale(before);
    return matches;
}

}  // namespace

bool MatchPattern(const std::string& pattern, const char* name)
{
    // The common case. Matching in a UTF-8 locale is several times slower.
    if (IsAscii(name) && IsAscii(pattern)) {
        return MatchBytes(pattern, name);
    }
    // For a text with an invalid byte, fnmatch either treats all of it as bytes, so that "?" matches
    // part of a character, or matches nothing.
    if (IsUtf8Locale() && !(IsWellFormed(name) && IsWellFormed(pattern))) {
        return fnmatch(WithBytesAsCharacters(pattern).c_str(), WithBytesAsCharacters(name).c_str(), 0) == 0;
    }
    return fnmatch(pattern.c_str(), name, 0) == 0;
}

bool IsUsablePattern(const std::string& text)
{
    return !text.empty() && text.size() <= kMaxFilterBytes;
}

namespace {

bool MayExecute(const struct stat& st, const UserIds& user)
{
    if (st.st_uid == user.uid) {
        return (st.st_mode & S_IXUSR) != 0;
    }
    if (st.st_gid == user.gid) {
        return (st.st_mode & S_IXGRP) != 0;
    }
    return (st.st_mode & S_IXOTH) != 0;
}

}  // namespace

FileType GetLinkType(int directory, const char* name, std::size_t base_length)
{
    char target[kMaxPathBytes + 2] = {};
    const ssize_t length = readlinkat(directory, name, target, sizeof target - 1);
    if (length <= 0) {
        return FT_STALLED_LINK;
    }
    const std::size_t joined = static_cast<std::size_t>(length) + (target[0] == '/' ? 0 : base_length);
    struct stat st = {};
    if (joined > kMaxPathBytes || fstatat(directory, target, &st, AT_SYMLINK_NOFOLLOW) != 0) {
        return FT_STALLED_LINK;
    }
    return FT_SYMLINK;
}

UserIds GetUserIds()
{
    return {getuid(), getgid()};
}

FileType GetOwnType(const char* name, const struct stat& st, const UserIds& user)
{
    if (strcasecmp(name, "core") == 0) {
        return FT_CORE;
    }
    switch (st.st_mode & S_IFMT) {
    case S_IFLNK:
        return FT_SYMLINK;
    case S_IFDIR:
        return FT_DIRECTORY;
    case S_IFIFO:
        return FT_FIFO;
    case S_IFSOCK:
        return FT_SOCKET;
    case S_IFCHR:
    case S_IFBLK:
        return FT_DEVICE;
    default:
        return MayExecute(st, user) ? FT_EXECUTE : FT_NORMAL;
    }
}

FileType GetFileType(const std::string& path, const struct stat& st)
{
    const FileType type = GetOwnType(GetLastPath(path).c_str(), st, GetUserIds());
    if (type != FT_SYMLINK) {
        return type;
    }
    const Descriptor directory(open(pGTable->CurrentDir.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    return GetLinkType(directory.Get(), path.c_str(), pGTable->CurrentDir.size());
}

void AddHistoryListS(History& list, const std::string& text)
{
    if (text.empty() || text.size() > kMaxPathBytes) {
        return;
    }
    auto entry = std::find(list.begin(), list.end(), text);
    if (entry == list.end()) {
        if (list.size() >= kHistoryLength) {
            entry = list.begin() + kHistoryLength - 1;
            *entry = text;
        } else {
            entry = list.insert(list.end(), text);
        }
    }
    std::rotate(list.begin(), entry, entry + 1);
}

namespace {

/// Replaces characters that change the direction of the text around them, so that a name cannot pose as
/// another one. They are U+202A to U+202E and U+2066 to U+2069.
void SpellDirections(std::string& text)
{
    for (std::size_t at = 0; (at = text.find(char(0xE2), at)) != std::string::npos; ++at) {
        const gunichar character = g_utf8_get_char(text.c_str() + at);
        if ((character >= 0x202A && character <= 0x202E) || (character >= 0x2066 && character <= 0x2069)) {
            text.replace(at, 3, FormatText("[U+%04X]", character));
        }
    }
}

}  // namespace

std::string DisplayText(std::string_view bytes)
{
    if (bytes.empty()) {
        return {};
    }
    const GlibPointer<char> valid(g_utf8_make_valid(bytes.data(), static_cast<gssize>(bytes.size())));
    std::string text = valid.get();
    SpellDirections(text);
    return text;
}

std::string DisplayLine(std::string_view bytes)
{
    std::string text = DisplayText(bytes);
    for (const char* const end : {"\r", "\n", "\u2028", "\u2029"}) {
        for (std::size_t at = 0; (at = text.find(end, at)) != std::string::npos;) {
            text.replace(at, std::strlen(end), "\u21b5");
        }
    }
    return text;
}

std::string FormatText(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const GlibPointer<char> text(g_strdup_vprintf(format, arguments));
    va_end(arguments);
    return text.get();
}
