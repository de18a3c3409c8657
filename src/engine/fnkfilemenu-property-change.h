#pragma once
// Modes, owners and groups for the property dialog: their names, and changing them on the disk.
// A change reaches the very object that was looked at, never what a link leads to or what took
// its name in between.

#include <sys/types.h>

#include <optional>
#include <string>

#include "core/fnktable.h"

/// Empty when the id has no name.
std::string FindUserName(uid_t user);
std::string FindGroupName(gid_t group);
std::optional<uid_t> FindUserId(const std::string& name);
std::optional<gid_t> FindGroupId(const std::string& name);

/// The names of the groups to choose from for a file of that group: all for the super-user; for
/// others that one, then those that they are in.
History ListOfferedGroups(gid_t file_group);

/// Gives a file of the type that mode says the permission bits of mode. False, with nothing
/// changed, for a file of another type or a link, which has no bits of its own; false as well when
/// the system drops some of them.
bool ChangeMode(const std::string& path, mode_t mode);

/// Gives a file, or a link itself, to owner and group; the permission bits stay.
bool ChangeOwner(const std::string& path, uid_t owner, gid_t group);
