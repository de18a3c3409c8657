#include "core/fnkutil.h"

#include <fcntl.h>
#include <glib.h>
#include <limits.h>
#include <strings.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "core/fnkraii.h"
#include "core/fnkutil-text.h"

namespace {

constexpr std::size_t kHistoryLength = 10;

bool EndsWithIgnoringCase(std::string_view text, std::string_view ending)
{
    return text.size() >= ending.size() &&
           strncasecmp(text.data() + text.size() - ending.size(), ending.data(), ending.size()) == 0;
}

}  // namespace

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
