#include "engine/fnkfilemenu-property-change.h"

#include <fcntl.h>
#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <vector>

#include "core/fnkfiles-place.h"

namespace {

/// Opens an object, or the link itself, with O_PATH, which neither blocks on a pipe nor touches a
/// device.
Descriptor OpenAsPath(const std::string& path)
{
    return Descriptor(open(path.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
}

struct stat GetOpenFileStatus(const Descriptor& file)
{
    struct stat st = {};
    fstat(file.Get(), &st);
    return st;
}

History AllGroups()
{
    History names;
    setgrent();
    while (const struct group* const group = getgrent()) {
        names.emplace_back(group->gr_name);
    }
    endgrent();
    return names;
}

std::vector<gid_t> OwnGroups()
{
    std::vector<gid_t> groups(static_cast<std::size_t>(std::max(0, getgroups(0, nullptr))));
    const int count = getgroups(static_cast<int>(groups.size()), groups.data());
    groups.resize(static_cast<std::size_t>(std::max(0, count)));
    groups.insert(groups.begin(), getgid());
    return groups;
}

}  // namespace

namespace {

/// Calls one of the look-ups that are safe in threads, with a buffer of the size it needs. None if there
/// is no such entry.
template <typename Entry, typename LookUp>
std::optional<Entry> FindEntry(std::vector<char>& buffer, LookUp look_up)
{
    Entry entry = {};
    Entry* found = nullptr;
    buffer.resize(1024);
    while (look_up(&entry, buffer.data(), buffer.size(), &found) == ERANGE) {
        buffer.resize(2 * buffer.size());
    }
    return found != nullptr ? std::optional(entry) : std::nullopt;
}

}  // namespace

std::string FindUserName(uid_t user)
{
    std::vector<char> buffer;
    const auto entry = FindEntry<struct passwd>(buffer, [user](auto... rest) { return getpwuid_r(user, rest...); });
    return entry ? entry->pw_name : "";
}

std::string FindGroupName(gid_t group)
{
    std::vector<char> buffer;
    const auto entry = FindEntry<struct group>(buffer, [group](auto... rest) { return getgrgid_r(group, rest...); });
    return entry ? entry->gr_name : "";
}

std::optional<uid_t> FindUserId(const std::string& name)
{
    std::vector<char> buffer;
    const auto entry =
        FindEntry<struct passwd>(buffer, [&name](auto... rest) { return getpwnam_r(name.c_str(), rest...); });
    return entry ? std::optional(entry->pw_uid) : std::nullopt;
}

std::optional<gid_t> FindGroupId(const std::string& name)
{
    std::vector<char> buffer;
    const auto entry =
        FindEntry<struct group>(buffer, [&name](auto... rest) { return getgrnam_r(name.c_str(), rest...); });
    return entry ? std::optional(entry->gr_gid) : std::nullopt;
}

History ListOfferedGroups(gid_t file_group)
{
    if (getuid() == 0) {
        return AllGroups();
    }
    std::vector<gid_t> groups = OwnGroups();
    groups.insert(groups.begin(), file_group);
    History names;
    for (const gid_t group : groups) {
        std::string name = FindGroupName(group);
        if (!name.empty() && std::find(names.begin(), names.end(), name) == names.end()) {
            names.push_back(std::move(name));
        }
    }
    return names;
}

bool ChangeMode(const std::string& path, mode_t mode)
{
    const Descriptor file = OpenAsPath(path);
    const struct stat before = GetOpenFileStatus(file);
    if (!file || (before.st_mode & S_IFMT) != (mode & S_IFMT) || S_ISLNK(mode)) {
        return false;
    }
    const mode_t bits = mode & kPermissionBits;
    if (!SetModeBits(file.Get(), bits)) {
        // Neither /proc nor a new system: the file must be opened for reading, which waits for none.
        const Descriptor readable(open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
        if (!S_ISREG(mode) || !IsSameObject(before, GetOpenFileStatus(readable)) || fchmod(readable.Get(), bits) != 0) {
            return false;
        }
    }
    return (GetOpenFileStatus(file).st_mode & kPermissionBits) == bits;
}

bool ChangeOwner(const std::string& path, uid_t owner, gid_t group)
{
    const Descriptor file = OpenAsPath(path);
    return file && fchownat(file.Get(), "", owner, group, AT_EMPTY_PATH) == 0;
}
