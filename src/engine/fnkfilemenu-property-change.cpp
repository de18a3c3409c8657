#include "engine/fnkfilemenu-property-change.h"

#include <fcntl.h>
#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
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

/// Uses the path under /proc, because fchmod refuses an O_PATH descriptor. Also fails if the system
/// drops some of the bits.
bool SetPermissionBits(const Descriptor& file, mode_t bits)
{
    return chmod(DescriptorPath(file.Get()).c_str(), bits) == 0 &&
           (GetOpenFileStatus(file).st_mode & kPermissionBits) == bits;
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

std::string FindUserName(uid_t user)
{
    const struct passwd* const entry = getpwuid(user);
    return entry != nullptr ? entry->pw_name : "";
}

std::string FindGroupName(gid_t group)
{
    const struct group* const entry = getgrgid(group);
    return entry != nullptr ? entry->gr_name : "";
}

std::optional<uid_t> FindUserId(const std::string& name)
{
    const struct passwd* const entry = getpwnam(name.c_str());
    return entry != nullptr ? std::optional(entry->pw_uid) : std::nullopt;
}

std::optional<gid_t> FindGroupId(const std::string& name)
{
    const struct group* const entry = getgrnam(name.c_str());
    return entry != nullptr ? std::optional(entry->gr_gid) : std::nullopt;
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
    const bool is_same_type = file && (GetOpenFileStatus(file).st_mode & S_IFMT) == (mode & S_IFMT);
    return is_same_type && !S_ISLNK(mode) && SetPermissionBits(file, mode & kPermissionBits);
}

bool ChangeOwner(const std::string& path, uid_t owner, gid_t group)
{
    const Descriptor file = OpenAsPath(path);
    const mode_t before = GetOpenFileStatus(file).st_mode;
    if (!file || fchownat(file.Get(), "", owner, group, AT_EMPTY_PATH) != 0) {
        return false;
    }
    // The system clears set-id bits when the owner changes. The dialog shows them as set, so the
    // user expects to keep them.
    return GetOpenFileStatus(file).st_mode == before || SetPermissionBits(file, before & kPermissionBits);
}
